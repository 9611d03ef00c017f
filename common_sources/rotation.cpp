#include "common_sources/rotation.h"

Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
    const Matrix3 columns = transposed(b);
    Matrix3 product;
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) product[i][k] = dot(a[i], columns[k]);
    }
    return product;
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
