// Boundary of a body as flat triangles plus the edges that a drawing shows.
#pragma once

#include <array>
#include <utility>
#include <vector>

#include "workbench/host/model/geometry.h"

namespace workbench {

// Line between two faces of a rounded wall: drawn only where one of them looks towards the viewer and the other away.
struct SilhouetteLine {
    int from;
    int to;
    Vec3 normals[2];
};

struct Solid {
    std::vector<Vec3> points;
    std::vector<std::array<int, 3>> triangles;  // counter-clockwise seen from outside
    std::vector<std::pair<int, int>> edges;
    std::vector<SilhouetteLine> silhouettes;

    // Takes over another body, placed by `at`.
    void add(const Solid& other, const Transform& at = {});
};

struct Step {  // one length of a turned part
    double radius;
    double length;
};

// Box about the origin in x and y, standing on z = 0.
Solid makeBox(double width, double depth, double height);

// Regular prism about the z axis, standing on z = 0; many sides make a cylinder.
Solid makePrism(int sides, double radius, double height);

// Ring about the z axis, standing on z = 0.
Solid makeRing(int sides, double inner, double outer, double height);

// Spur gear with straight flanks about the z axis, standing on z = 0.
Solid makeGear(int teeth, double rootRadius, double tipRadius, double height);

// Cylinders one behind the other along z.
Solid makeShaft(const std::vector<Step>& steps);

}  // namespace workbench
