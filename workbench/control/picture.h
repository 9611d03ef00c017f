// Pictures of the screen, for the tour and for checks of what a user would see.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

namespace workbench {

struct Colour {
    std::uint8_t red = 0, green = 0, blue = 0;
    bool operator==(const Colour&) const = default;
};

// A copy of a rectangle of the screen. Coordinates begin at its upper left corner.
class Picture {
  public:
    // The screen where a window lies, whatever covers it there. Throws std::runtime_error when the window is gone or
    // has no area.
    static Picture ofWindow(HWND window);
    static Picture ofDesktop();                      // the whole virtual desktop
    static Picture ofScreen(const RECT& rectangle);  // screen coordinates

    int width() const { return mWidth; }
    int height() const { return mHeight; }

    Colour pixel(int x, int y) const;  // throws std::out_of_range outside the picture

    // Number of pixels whose parts each differ by `tolerance` at most. The rectangle is cut at the picture's edges.
    int countNear(const RECT& rectangle, Colour colour, int tolerance) const;
    int countNear(Colour colour, int tolerance) const;

    bool operator==(const Picture&) const = default;

    // Has something drawn over it by Windows' means.
    void draw(const std::function<void(HDC)>& paint);

    // Writes a PNG file. Throws std::runtime_error when that fails.
    void save(const std::filesystem::path& file) const;

  private:
    Picture(int width, int height);

    int mWidth, mHeight;
    std::vector<std::uint32_t> mPixels;  // 0x00RRGGBB, upper row first
};

}  // namespace workbench
