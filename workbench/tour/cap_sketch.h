// A small cap with arrows, drawn into a picture: how the device's cap is deflected while the picture is taken, so that
// one sees why things move.
#pragma once

#include <array>

#include "workbench/control/picture.h"

namespace workbench {

using CapDeflection = std::array<int, 6>;  // tx ty tz rx ry rz; zeros = at rest

// With its upper left corner at this place of the picture. Throws std::runtime_error when it cannot be drawn.
void drawCapSketch(Picture& picture, int left, int top, const CapDeflection& cap);

}  // namespace workbench
