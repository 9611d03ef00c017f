#include "workbench/host/model/raster.h"

#include <algorithm>
#include <limits>

namespace workbench {
namespace {

constexpr float FARTHEST = std::numeric_limits<float>::lowest();
constexpr double LINE_BIAS = 1.5;  // pixels that a line is drawn in front of the faces it borders

unsigned channel(Colour colour, int shift) { return (colour >> shift) & 0xFFu; }

// Signed double area; the sign tells the sense of rotation.
double area(const Vec3& a, const Vec3& b, double x, double y) {
    return (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
}

int pixelBelow(double v) { return static_cast<int>(std::floor(std::clamp(v, -1e6, 1e6))); }

// Part of from + t * (to - from), 0 <= t <= 1, with a coordinate between 0 and the size.
void clip(double from, double to, double size, double& low, double& high) {
    const double d = to - from;
    if (d == 0.0) {
        if (from < 0.0 || from > size) high = -1.0;
        return;
    }
    const double a = -from / d;
    const double b = (size - from) / d;
    low = std::max(low, std::min(a, b));
    high = std::min(high, std::max(a, b));
}

}  // namespace

Colour mixed(Colour a, Colour b, double shareOfB) {
    Colour out = 0;
    for (const int shift : {0, 8, 16}) {
        const double value = channel(a, shift) * (1.0 - shareOfB) + channel(b, shift) * shareOfB;
        out |= static_cast<Colour>(std::clamp(value, 0.0, 255.0)) << shift;
    }
    return out;
}

Colour shaded(Colour colour, double brightness) { return mixed(0, colour, brightness); }

void Raster::resize(int width, int height) {
    mWidth = std::max(width, 1);
    mHeight = std::max(height, 1);
    const std::size_t count = static_cast<std::size_t>(mWidth) * mHeight;
    mPixels.resize(count);
    mDepth.resize(count);
    mItems.resize(count);
}

void Raster::clear(Colour top, Colour bottom) {
    for (int y = 0; y < mHeight; ++y) {
        const auto row = mPixels.begin() + static_cast<std::ptrdiff_t>(y) * mWidth;
        std::fill(row, row + mWidth, mixed(top, bottom, static_cast<double>(y) / mHeight));
    }
    std::fill(mDepth.begin(), mDepth.end(), FARTHEST);
    std::fill(mItems.begin(), mItems.end(), NO_ITEM);
}

void Raster::triangle(const Vec3 corners[3], Colour colour, int item, bool paints) {
    const Vec3 &a = corners[0], &b = corners[1], &c = corners[2];
    const double whole = area(a, b, c.x, c.y);
    if (!(std::abs(whole) > 1e-9)) return;
    const int left = std::max(0, pixelBelow(std::min({a.x, b.x, c.x})));
    const int right = std::min(mWidth - 1, pixelBelow(std::max({a.x, b.x, c.x})));
    const int low = std::max(0, pixelBelow(std::min({a.y, b.y, c.y})));
    const int high = std::min(mHeight - 1, pixelBelow(std::max({a.y, b.y, c.y})));
    for (int y = low; y <= high; ++y) {
        for (int x = left; x <= right; ++x) {
            const double wa = area(b, c, x + 0.5, y + 0.5) / whole;
            const double wb = area(c, a, x + 0.5, y + 0.5) / whole;
            const double wc = 1.0 - wa - wb;
            if (wa < 0.0 || wb < 0.0 || wc < 0.0) continue;
            const auto depth = static_cast<float>(wa * a.z + wb * b.z + wc * c.z);
            const std::size_t at = index(x, y);
            if (depth <= mDepth[at]) continue;
            mDepth[at] = depth;
            mItems[at] = item;
            if (paints) mPixels[at] = colour;
        }
    }
}

void Raster::line(Vec3 from, Vec3 to, Colour colour, LineVisibility visibility) {
    double low = 0.0;
    double high = 1.0;
    clip(from.x, to.x, mWidth - 1, low, high);
    clip(from.y, to.y, mHeight - 1, low, high);
    if (!(low <= high)) return;
    const Vec3 d = to - from;
    const double steps = std::ceil(std::max({std::abs(d.x), std::abs(d.y), 1.0}) * (high - low));
    for (double i = 0.0; i <= steps; ++i) {
        const Vec3 p = from + d * (low + (high - low) * i / std::max(steps, 1.0));
        const int x = std::clamp(pixelBelow(p.x), 0, mWidth - 1);
        const int y = std::clamp(pixelBelow(p.y), 0, mHeight - 1);
        const std::size_t at = index(x, y);
        const bool isInFront = p.z + LINE_BIAS >= static_cast<double>(mDepth[at]);
        if (visibility == LineVisibility::IN_FRONT_ONLY && !isInFront) continue;
        if (visibility == LineVisibility::BEHIND_ONLY && isInFront) continue;
        mPixels[at] = colour;
    }
}

int Raster::itemAt(int x, int yFromTop) const {
    if (x < 0 || x >= mWidth || yFromTop < 0 || yFromTop >= mHeight) return NO_ITEM;
    return mItems[static_cast<std::size_t>(yFromTop) * mWidth + x];
}

}  // namespace workbench
