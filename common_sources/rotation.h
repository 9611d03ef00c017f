// Vectors, matrices and rotations in double precision. Matrices here are applied to column vectors
// (out = matrix x in) unless a function says that it works on the toolkit's row convention (out = in x matrix).
//
// What is called for every component in every step is inline: a call costs more than the arithmetic in it.
#pragma once

#include <array>
#include <cmath>

using Vector3 = std::array<double, 3>;
using Matrix3 = std::array<Vector3, 3>;  // three rows

inline constexpr Matrix3 kIdentity3{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

inline Vector3 operator+(const Vector3& a, const Vector3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline Vector3 operator*(const Vector3& a, double factor) { return {a[0] * factor, a[1] * factor, a[2] * factor}; }

inline double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline Vector3 operator*(const Matrix3& m, const Vector3& v) { return {dot(m[0], v), dot(m[1], v), dot(m[2], v)}; }
Matrix3 operator*(const Matrix3& a, const Matrix3& b);

inline double length(const Vector3& v) { return std::sqrt(dot(v, v)); }
inline bool isFinite(const Vector3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }
inline bool isFinite(const Matrix3& m) { return isFinite(m[0]) && isFinite(m[1]) && isFinite(m[2]); }

// Unit vector of that direction; not finite for the null vector.
inline Vector3 normalised(const Vector3& v) {
    const double size = length(v);
    return {v[0] / size, v[1] / size, v[2] / size};
}

inline Matrix3 transposed(const Matrix3& m) {
    return {{{m[0][0], m[1][0], m[2][0]}, {m[0][1], m[1][1], m[2][1]}, {m[0][2], m[1][2], m[2][2]}}};
}

// Right-handed rotation by an angle in radians about a unit axis.
Matrix3 rotation(const Vector3& axis, double angle);

// Volume that the rows span, negative when they are left-handed.
inline double determinant(const Matrix3& m) { return dot(m[0], cross(m[1], m[2])); }

// Adjugate divided by the determinant; not finite for a singular matrix.
Matrix3 inverse(const Matrix3& m);

// Every row divided by its length; not finite when one is null.
inline Matrix3 withUnitRows(const Matrix3& m) { return {normalised(m[0]), normalised(m[1]), normalised(m[2])}; }

// The toolkit's 4 x 4 row-convention matrix: block in the upper left, origin in row 4, last column 0, 0, 0, 1.
inline void toToolkit(const Matrix3& block, const Vector3& origin, double (&out)[4][4]) {
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) out[i][k] = block[i][k];
        out[i][3] = 0.0;
        out[3][i] = origin[i];
    }
    out[3][3] = 1.0;
}
inline Matrix3 blockOf(const double (&matrix)[4][4]) {
    Matrix3 block;
    for (int i = 0; i < 3; ++i) block[i] = {matrix[i][0], matrix[i][1], matrix[i][2]};
    return block;
}
inline Vector3 originOf(const double (&matrix)[4][4]) { return {matrix[3][0], matrix[3][1], matrix[3][2]}; }
