// How a translation of the cap scrolls, without Windows: which steps a scroll bar or the wheel takes, and the pause
// behind them. Pure functions, any thread.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// What the cap's translation asks for: the larger of two drives down (tz, or ty inverted), and one to the right.
struct ScrollDrive {
    int vertical;
    int horizontal;

    constexpr ScrollDrive(int tx, int ty, int tz) : vertical(std::abs(tz) < std::abs(ty) ? -ty : tz), horizontal(tx) {}

    constexpr bool isEqual() const { return std::abs(vertical) == std::abs(horizontal); }
    constexpr bool isVertical() const { return std::abs(horizontal) < std::abs(vertical); }
    constexpr int larger() const { return isVertical() ? vertical : horizontal; }

    // The pause between two steps, in milliseconds: shorter the further the cap is deflected.
    constexpr int pauseMs() const {
        constexpr int kLongest = 150;
        constexpr int kShortest = 1;
        return std::max(kShortest, kLongest - std::abs(larger()) / 2);
    }
};

// A scroll bar's state in Windows' terms: the content is min to max, of which `page` is shown from `position` on.
struct ScrollRange {
    int min;
    int max;
    std::uint32_t page;
    int position;

    // Whether there is anything to scroll; max is above 0 then.
    constexpr bool isSensible() const { return min >= 0 && max > min && page != 0; }

    // Line steps that one call takes, more in a long content: negative = back, 0 = it is at that end already.
    constexpr int steps(int drive) const {
        constexpr int kMost = 10;
        constexpr int kContentPerStep = 100;
        const int count = std::clamp(max / kContentPerStep, 1, kMost);
        if (drive < 0 && position > 0) return -count;
        if (drive > 0 && std::int64_t{position} + page <= max) return count;
        return 0;
    }

    // What a short content adds to the pause, in milliseconds.
    constexpr int extraPauseMs() const {
        constexpr int kShort = 50;
        return std::max(0, kShort - max);
    }
};

// The two words of a WM_MOUSEWHEEL message: one notch, upwards (towards the top of the content) for a negative drive
// and downwards for a positive one,
constexpr std::uint32_t wheelWParam(int drive) {
    constexpr int kNotch = 120;
    return static_cast<std::uint32_t>(drive < 0 ? kNotch : -kNotch) << 16;
}

// and the pointer's screen position; coordinates left of or above the main screen are negative.
constexpr std::uint32_t wheelLParam(int x, int y) {
    return static_cast<std::uint32_t>(y) << 16 | (static_cast<std::uint32_t>(x) & 0xFFFF);
}
