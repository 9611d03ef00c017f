// Vectors and transforms in the toolkit's row convention: a point is a row, out = in x matrix; rows 0-2 of a transform
// are the images of the axes, row 3 is the image of the origin.
#pragma once

#include <array>
#include <cmath>

namespace workbench {

struct Vec3 {
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline Vec3 operator+(Vec3 a, Vec3 b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vec3 operator-(Vec3 a, Vec3 b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vec3 operator*(Vec3 a, double f) { return {a.x * f, a.y * f, a.z * f}; }
inline double dot(Vec3 a, Vec3 b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vec3 cross(Vec3 a, Vec3 b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
inline double length(Vec3 a) { return std::sqrt(dot(a, a)); }

// The vector at length 1; a vector of length 0 stays as it is.
Vec3 normalised(Vec3 a);

struct Transform {
    std::array<std::array<double, 4>, 4> m = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

    static Transform shift(Vec3 by);
    static Transform scale(double factor);
    // Right-handed turn about a unit axis through the origin, radians.
    static Transform turn(Vec3 axis, double angle);

    Vec3 point(Vec3 p) const;      // with the shift
    Vec3 direction(Vec3 d) const;  // without it
    Vec3 origin() const { return {m[3][0], m[3][1], m[3][2]}; }
    bool isFinite() const;
};

// First a, then b.
Transform operator*(const Transform& a, const Transform& b);

// Axis-aligned box; empty until a point was added.
struct Bounds {
    Vec3 low{1e300, 1e300, 1e300};
    Vec3 high{-1e300, -1e300, -1e300};

    void add(Vec3 p);
    bool isEmpty() const { return low.x > high.x; }
    Vec3 centre() const { return (low + high) * 0.5; }
    double diagonal() const { return isEmpty() ? 0.0 : length(high - low); }
};

}  // namespace workbench
