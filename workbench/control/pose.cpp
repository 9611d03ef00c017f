#include "workbench/control/pose.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace workbench {
namespace {

constexpr std::size_t kMatrixSize = 16;

Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

}  // namespace

Vector operator+(const Vector& a, const Vector& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
Vector operator-(const Vector& a, const Vector& b) { return a + b * -1.0; }
Vector operator*(const Vector& a, double factor) { return {a[0] * factor, a[1] * factor, a[2] * factor}; }
double dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
double length(const Vector& a) { return std::sqrt(dot(a, a)); }
Vector normalised(const Vector& a) { return a * (1.0 / length(a)); }

Vector turned(const Vector& v, const Vector& axis, double angle) {
    const Vector along = axis * dot(v, axis);
    const Vector across = v - along;
    return along + across * std::cos(angle) + cross(axis, across) * std::sin(angle);
}

double angleAbout(const Vector& axis, const Vector& from, const Vector& to) {
    const Vector a = from - axis * dot(from, axis);
    const Vector b = to - axis * dot(to, axis);
    return std::atan2(dot(axis, cross(a, b)), dot(a, b));
}

Pose poseOf(const std::string& numbers) {
    std::istringstream stream(numbers);
    std::vector<double> m;
    for (double number = 0; stream >> number;) m.push_back(number);
    if (m.size() != kMatrixSize) throw std::runtime_error("not a matrix of 16 numbers: " + numbers);
    return {{{{m[0], m[1], m[2]}, {m[4], m[5], m[6]}, {m[8], m[9], m[10]}}}, {m[12], m[13], m[14]}};
}

double greatestWay(const Pose& before, const Pose& after) {
    double way = length(after.origin - before.origin);
    for (std::size_t i = 0; i < 3; ++i) {
        way = std::max(way, length((after.origin + after.axes[i]) - (before.origin + before.axes[i])));
    }
    return way;
}

double greatestWay(const Poses& before, const Poses& after) {
    double way = 0.0;
    for (const auto& [id, pose] : before) way = std::max(way, greatestWay(pose, after.at(id)));
    return way;
}

std::string text(double value, int digits) {
    char buffer[48];
    const bool isTiny = value != 0.0 && std::abs(value) < 0.5 * std::pow(10.0, -digits);
    std::snprintf(buffer, sizeof buffer, isTiny ? "%.*e" : "%.*f", isTiny ? 0 : digits, value);
    return buffer;
}

std::string text(const Vector& value, int digits) {
    const auto part = [&](double number) { return text(std::abs(number) < 1e-9 ? 0.0 : number, digits); };
    return "(" + part(value[0]) + ", " + part(value[1]) + ", " + part(value[2]) + ")";
}

}  // namespace workbench
