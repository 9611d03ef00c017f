// Rotation by quaternions in extended precision: another way to the results of common_sources/rotation.h.
#pragma once

#include <array>
#include <cmath>

struct Quaternion {
    long double w, x, y, z;
};

inline Quaternion operator*(const Quaternion& a, const Quaternion& b) {
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

// v turned right-handed by an angle in radians about a unit axis.
inline std::array<double, 3> turned(const std::array<double, 3>& v, const std::array<double, 3>& axis, double angle) {
    const long double half = static_cast<long double>(angle) / 2, s = std::sin(half);
    const Quaternion turn{std::cos(half), s * axis[0], s * axis[1], s * axis[2]};
    const Quaternion back{turn.w, -turn.x, -turn.y, -turn.z};
    const Quaternion result = turn * Quaternion{0, v[0], v[1], v[2]} * back;
    return {static_cast<double>(result.x), static_cast<double>(result.y), static_cast<double>(result.z)};
}
