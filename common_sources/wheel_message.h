// The two words of a WM_MOUSEWHEEL message, without Windows' headers. Pure functions, any thread.
#pragma once

#include <cstdint>

// One notch of the wheel: upwards (towards the top of the content) for a negative drive, downwards for a positive one.
constexpr std::uint32_t wheelWParam(int drive) {
    constexpr int kNotch = 120;
    return static_cast<std::uint32_t>(drive < 0 ? kNotch : -kNotch) << 16;
}

// The pointer's screen position; coordinates left of or above the main screen are negative.
constexpr std::uint32_t wheelLParam(int x, int y) {
    return static_cast<std::uint32_t>(y) << 16 | (static_cast<std::uint32_t>(x) & 0xFFFF);
}
