#include "workbench/host/model/geometry.h"

#include <algorithm>

namespace workbench {

Vec3 normalised(Vec3 a) {
    const double size = length(a);
    return size > 0.0 ? a * (1.0 / size) : a;
}

Transform Transform::shift(Vec3 by) {
    Transform t;
    t.m[3] = {by.x, by.y, by.z, 1.0};
    return t;
}

Transform Transform::scale(double factor) {
    Transform t;
    for (std::size_t i = 0; i < 3; ++i) t.m[i][i] = factor;
    return t;
}

Transform Transform::turn(Vec3 axis, double angle) {
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    const auto [u, v, w] = axis;
    Transform r;  // transposed against the column convention, since points are rows
    r.m[0] = {t * u * u + c, t * u * v + s * w, t * u * w - s * v, 0.0};
    r.m[1] = {t * u * v - s * w, t * v * v + c, t * v * w + s * u, 0.0};
    r.m[2] = {t * u * w + s * v, t * v * w - s * u, t * w * w + c, 0.0};
    return r;
}

Vec3 Transform::direction(Vec3 d) const {
    return {d.x * m[0][0] + d.y * m[1][0] + d.z * m[2][0], d.x * m[0][1] + d.y * m[1][1] + d.z * m[2][1],
            d.x * m[0][2] + d.y * m[1][2] + d.z * m[2][2]};
}

Vec3 Transform::point(Vec3 p) const { return direction(p) + origin(); }

bool Transform::isFinite() const {
    return std::all_of(m.begin(), m.end(), [](const auto& row) {
        return std::all_of(row.begin(), row.end(), [](double value) { return std::isfinite(value); });
    });
}

Transform operator*(const Transform& a, const Transform& b) {
    Transform out;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            double sum = 0.0;
            for (std::size_t k = 0; k < 4; ++k) sum += a.m[i][k] * b.m[k][j];
            out.m[i][j] = sum;
        }
    }
    return out;
}

void Bounds::add(Vec3 p) {
    low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
}

}  // namespace workbench
