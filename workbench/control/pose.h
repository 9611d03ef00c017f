// Vectors and poses as tests and the tour measure them on the host's model.
#pragma once

#include <array>
#include <map>
#include <string>

namespace workbench {

using Vector = std::array<double, 3>;

// Where a component is, or how the view looks: axes and origin, each a row.
struct Pose {
    std::array<Vector, 3> axes{};
    Vector origin{};
};
using Poses = std::map<int, Pose>;  // by component id

Vector operator+(const Vector& a, const Vector& b);
Vector operator-(const Vector& a, const Vector& b);
Vector operator*(const Vector& a, double factor);
double dot(const Vector& a, const Vector& b);
double length(const Vector& a);
Vector normalised(const Vector& a);  // of a vector that is not null

// Turned right-handed about a unit axis, angle in radians.
Vector turned(const Vector& v, const Vector& axis, double angle);

// Angle in radians, right-handed about a unit axis, from one vector to another; what lies along the axis is left out.
double angleAbout(const Vector& axis, const Vector& from, const Vector& to);

// The sixteen numbers of a control answer's 4x4 matrix. Throws std::runtime_error when there are others.
Pose poseOf(const std::string& numbers);

// Greatest way that an origin, or end point of an axis, made.
double greatestWay(const Pose& before, const Pose& after);
double greatestWay(const Poses& before, const Poses& after);

std::string text(double value, int digits = 3);  // fixed; tiny values as power of ten
std::string text(const Vector& value, int digits = 2);

}  // namespace workbench
