// The cap in somebody's hand: where it is pushed and turned to, and the axes that come of it. Pure; one thread at a
// time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace workbench {

inline constexpr std::size_t kCapAxes = 6;  // tx ty tz rx ry rz
using CapAxes = std::array<std::int16_t, kCapAxes>;

// What a drag does: sideways and up, or turning that way; and each has a third axis.
enum class CapMotion { push, turn };

class CapState {
  public:
    static constexpr int kReach = 350;  // of an axis of the device
    static constexpr double kLeastGain = 0.1, kGreatestGain = 1.0;
    static constexpr double kLeastCurve = 1.0, kGreatestCurve = 3.0;

    // What holds the cap. Each lets go by itself; together they pull at the same cap.
    enum class Hand : std::size_t { drag, wheel, keys, sliders };

    // Amounts are parts of the whole way, -1 to 1; more is cut.
    void deflect(Hand hand, std::size_t axis, double amount);
    void drag(CapMotion motion, double right, double up);  // the first two axes of the motion
    static std::size_t thirdAxis(CapMotion motion) { return motion == CapMotion::push ? 2 : 5; }

    // The cap springs back where this hand held it, or stays so while it is held.
    void letGo(Hand hand);
    void letGo(Hand hand, std::size_t axis);
    void releaseAll();  // of everything, and what is held

    void setHold(bool isHeld);  // off: what was held springs back
    bool isHeld() const { return mIsHolding; }
    void setGain(double gain);    // part of the device's reach that the whole way gives
    void setCurve(double curve);  // 1 = straight; more = finer around the middle

    double deflection(std::size_t axis) const;
    CapAxes axes() const;
    bool isAtRest() const { return axes() == CapAxes{}; }

  private:
    static constexpr std::size_t kHands = 4;
    using Amounts = std::array<double, kCapAxes>;

    std::array<Amounts, kHands> mHands{};
    Amounts mHeld{};
    bool mIsHolding = false;
    double mGain = kGreatestGain;
    double mCurve = kLeastCurve;
};

}  // namespace workbench
