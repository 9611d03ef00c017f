#include "common_sources/rotation.h"

#include <cmath>

namespace {

double dot(const Vector3& a, const Vector3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

Vector3 cross(const Vector3& a, const Vector3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

}  // namespace

Vector3 operator+(const Vector3& a, const Vector3& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }

Vector3 operator-(const Vector3& a, const Vector3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

Vector3 operator*(const Vector3& a, double factor) { return {a[0] * factor, a[1] * factor, a[2] * factor}; }

Vector3 operator*(const Matrix3& m, const Vector3& v) { return {dot(m[0], v), dot(m[1], v), dot(m[2], v)}; }

Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
    const Matrix3 columns = transposed(b);
    Matrix3 product;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) product[i][k] = dot(a[i], columns[k]);
    }
    return product;
}

double length(const Vector3& v) { return std::sqrt(dot(v, v)); }

bool isFinite(const Vector3& v) { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]); }

bool isFinite(const Matrix3& m) { return isFinite(m[0]) && isFinite(m[1]) && isFinite(m[2]); }

Vector3 normalised(const Vector3& v) {
    const double size = length(v);
    return {v[0] / size, v[1] / size, v[2] / size};
}

Matrix3 transposed(const Matrix3& m) {
    return {{{m[0][0], m[1][0], m[2][0]}, {m[0][1], m[1][1], m[2][1]}, {m[0][2], m[1][2], m[2][2]}}};
}

Matrix3 rotation(const Vector3& axis, double angle) {
    const auto [u, v, w] = axis;
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    return {{{t * u * u + c, t * u * v - s * w, t * u * w + s * v},
             {t * u * v + s * w, t * v * v + c, t * v * w - s * u},
             {t * u * w - s * v, t * v * w + s * u, t * w * w + c}}};
}

double determinant(const Matrix3& m) { return dot(m[0], cross(m[1], m[2])); }

Matrix3 inverse(const Matrix3& m) {
    // The columns of the adjugate are the cross products of the rows.
    const Matrix3 cofactors{cross(m[1], m[2]), cross(m[2], m[0]), cross(m[0], m[1])};
    const double volume = determinant(m);
    Matrix3 adjugate = transposed(cofactors);
    for (auto& row : adjugate) {
        for (double& element : row) element /= volume;
    }
    return adjugate;
}

Matrix3 withUnitRows(const Matrix3& m) { return {normalised(m[0]), normalised(m[1]), normalised(m[2])}; }

void toToolkit(const Matrix3& block, const Vector3& origin, double (&out)[4][4]) {
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) out[i][k] = block[i][k];
        out[i][3] = 0.0;
        out[3][i] = origin[i];
    }
    out[3][3] = 1.0;
}

Matrix3 blockOf(const double (&matrix)[4][4]) {
    Matrix3 block;
    for (int i = 0; i < 3; ++i) block[i] = {matrix[i][0], matrix[i][1], matrix[i][2]};
    return block;
}

Vector3 originOf(const double (&matrix)[4][4]) { return {matrix[3][0], matrix[3][1], matrix[3][2]}; }
