// Vectors, matrices and rotations in double precision. Matrices here are applied to column vectors
// (out = matrix x in) unless a function says that it works on the toolkit's row convention (out = in x matrix).
#pragma once

#include <array>

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;  // three rows

inline constexpr Matrix3 kIdentity3{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

Vector3 operator+(const Vector3& a, const Vector3& b);
Vector3 operator-(const Vector3& a, const Vector3& b);
Vector3 operator*(const Vector3& a, double factor);
Vector3 operator*(const Matrix3& m, const Vector3& v);
Matrix3 operator*(const Matrix3& a, const Matrix3& b);

double length(const Vector3& v);
bool isFinite(const Vector3& v);
bool isFinite(const Matrix3& m);

// Unit vector of that direction; not finite for the null vector.
Vector3 normalised(const Vector3& v);

Matrix3 transposed(const Matrix3& m);

// Right-handed rotation by an angle in radians about a unit axis.
Matrix3 rotation(const Vector3& axis, double angle);

// Volume that the rows span, negative when they are left-handed.
double determinant(const Matrix3& m);

// Adjugate divided by the determinant; not finite for a singular matrix.
Matrix3 inverse(const Matrix3& m);

// Every row divided by its length; not finite when one is null.
Matrix3 withUnitRows(const Matrix3& m);

// The toolkit's 4 x 4 row-convention matrix: block in the upper left, origin in row 4, last column 0, 0, 0, 1.
void toToolkit(const Matrix3& block, const Vector3& origin, double (&out)[4][4]);
Matrix3 blockOf(const double (&matrix)[4][4]);
Vector3 originOf(const double (&matrix)[4][4]);
