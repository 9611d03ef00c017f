// Paints a model into a raster.
#pragma once

#include <set>
#include <vector>

#include "workbench/host/model/model.h"
#include "workbench/host/model/raster.h"

namespace workbench {

enum class DisplayStyle { WIREFRAME, HIDDEN_LINE, NO_HIDDEN, SHADING };

struct Scene {
    const Model& model;
    Transform view;  // model to screen
    DisplayStyle style;
    std::set<ComponentPath> selection;
    bool hasTriad;
};

// Answers the painted components' paths; the raster's item numbers are indices into them.
std::vector<ComponentPath> paint(const Scene& scene, Raster& raster);

}  // namespace workbench
