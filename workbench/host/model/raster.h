// Picture in memory with a depth and an item number for each pixel.
#pragma once

#include <cstdint>
#include <vector>

#include "workbench/host/model/geometry.h"

namespace workbench {

using Colour = std::uint32_t;  // 0xRRGGBB

Colour mixed(Colour a, Colour b, double shareOfB);
Colour shaded(Colour colour, double brightness);  // 0 black, 1 unchanged

enum class LineVisibility { ALL, IN_FRONT_ONLY, BEHIND_ONLY };

class Raster {
  public:
    static constexpr int NO_ITEM = -1;

    void resize(int width, int height);
    void clear(Colour top, Colour bottom);  // vertical run of colours, nothing in front

    // Points in screen coordinates (y up, z towards the viewer).
    void triangle(const Vec3 corners[3], Colour colour, int item, bool paints);  // without paint only depth and item
    void line(Vec3 from, Vec3 to, Colour colour, LineVisibility visibility);

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    const Colour* pixels() const { return mPixels.data(); }  // rows from the top
    int itemAt(int x, int yFromTop) const;                   // NO_ITEM outside and on the background

  private:
    std::size_t index(int x, int y) const { return static_cast<std::size_t>(mHeight - 1 - y) * mWidth + x; }

    int mWidth = 0;
    int mHeight = 0;
    std::vector<Colour> mPixels;
    std::vector<float> mDepth;  // larger is nearer
    std::vector<int> mItems;
};

}  // namespace workbench
