#include "workbench/host/model/solid.h"

#include <numbers>

namespace workbench {
namespace {

constexpr int ROUND_SIDES = 32;
constexpr double SMOOTH_COSINE = 0.87;  // flatter corners (30 degrees) show no edge

struct Corner {
    double x;
    double y;
};
using Profile = std::vector<Corner>;

Corner onCircle(double radius, double angle) { return {radius * std::cos(angle), radius * std::sin(angle)}; }

Profile circle(int sides, double radius) {
    Profile profile;
    for (int i = 0; i < sides; ++i) profile.push_back(onCircle(radius, 2.0 * std::numbers::pi * i / sides));
    return profile;
}

// Outward normal of the wall from corner i to the next one of a counter-clockwise profile.
Vec3 wallNormal(const Profile& profile, std::size_t i) {
    const Corner& from = profile[i];
    const Corner& to = profile[(i + 1) % profile.size()];
    return normalised({to.y - from.y, from.x - to.x, 0.0});
}

// Walls of a closed profile between z = 0 and the height; `outwards` is false for the wall of a hole. Answers the index
// of the first point; the points come in pairs (bottom, top).
int addWalls(Solid& solid, const Profile& profile, double height, bool outwards) {
    const int first = static_cast<int>(solid.points.size());
    const int n = static_cast<int>(profile.size());
    for (const Corner& c : profile) {
        solid.points.push_back({c.x, c.y, 0.0});
        solid.points.push_back({c.x, c.y, height});
    }
    for (int i = 0; i < n; ++i) {
        const int a = first + 2 * i;
        const int b = first + 2 * ((i + 1) % n);
        solid.triangles.push_back(outwards ? std::array{a, b, b + 1} : std::array{a, b + 1, b});
        solid.triangles.push_back(outwards ? std::array{a, b + 1, a + 1} : std::array{a, a + 1, b + 1});
        solid.edges.emplace_back(a, b);
        solid.edges.emplace_back(a + 1, b + 1);
        const Vec3 before = wallNormal(profile, static_cast<std::size_t>((i + n - 1) % n));
        const Vec3 after = wallNormal(profile, static_cast<std::size_t>(i));
        if (dot(before, after) < SMOOTH_COSINE) {
            solid.edges.emplace_back(a, a + 1);
        } else {
            solid.silhouettes.push_back({a, a + 1, {before, after}});
        }
    }
    return first;
}

// Body of a profile that can be seen whole from the origin.
Solid extrude(const Profile& profile, double height) {
    Solid solid;
    const int first = addWalls(solid, profile, height, true);
    const int n = static_cast<int>(profile.size());
    const int bottom = static_cast<int>(solid.points.size());
    solid.points.push_back({0.0, 0.0, 0.0});
    solid.points.push_back({0.0, 0.0, height});
    for (int i = 0; i < n; ++i) {
        const int a = first + 2 * i;
        const int b = first + 2 * ((i + 1) % n);
        solid.triangles.push_back({bottom, b, a});
        solid.triangles.push_back({bottom + 1, a + 1, b + 1});
    }
    return solid;
}

}  // namespace

void Solid::add(const Solid& other, const Transform& at) {
    const int offset = static_cast<int>(points.size());
    for (const Vec3& p : other.points) points.push_back(at.point(p));
    for (const auto& t : other.triangles) triangles.push_back({t[0] + offset, t[1] + offset, t[2] + offset});
    for (const auto& [from, to] : other.edges) edges.emplace_back(from + offset, to + offset);
    for (const auto& [from, to, normals] : other.silhouettes) {
        silhouettes.push_back({from + offset, to + offset, {at.direction(normals[0]), at.direction(normals[1])}});
    }
}

Solid makeBox(double width, double depth, double height) {
    const double w = width / 2.0;
    const double d = depth / 2.0;
    return extrude({{-w, -d}, {w, -d}, {w, d}, {-w, d}}, height);
}

Solid makePrism(int sides, double radius, double height) { return extrude(circle(sides, radius), height); }

Solid makeRing(int sides, double inner, double outer, double height) {
    Solid solid;
    const int out = addWalls(solid, circle(sides, outer), height, true);
    const int in = addWalls(solid, circle(sides, inner), height, false);
    for (int i = 0; i < sides; ++i) {
        const int next = 2 * ((i + 1) % sides);
        const int a = out + 2 * i, b = out + next, c = in + next, d = in + 2 * i;
        solid.triangles.push_back({a, c, b});
        solid.triangles.push_back({a, d, c});
        solid.triangles.push_back({a + 1, b + 1, c + 1});
        solid.triangles.push_back({a + 1, c + 1, d + 1});
    }
    return solid;
}

Solid makeGear(int teeth, double rootRadius, double tipRadius, double height) {
    constexpr double FLANK[4] = {0.0, 0.15, 0.45, 0.6};  // share of the pitch: root, tip, tip, root
    Profile profile;
    for (int i = 0; i < teeth; ++i) {
        const double pitch = 2.0 * std::numbers::pi / teeth;
        for (int k = 0; k < 4; ++k) {
            profile.push_back(onCircle(k == 1 || k == 2 ? tipRadius : rootRadius, (i + FLANK[k]) * pitch));
        }
    }
    return extrude(profile, height);
}

Solid makeShaft(const std::vector<Step>& steps) {
    Solid solid;
    double z = 0.0;
    for (const Step& step : steps) {
        solid.add(makePrism(ROUND_SIDES, step.radius, step.length), Transform::shift({0.0, 0.0, z}));
        z += step.length;
    }
    return solid;
}

}  // namespace workbench
