#include "workbench/panel/core/cap_state.h"

#include <algorithm>
#include <cmath>

namespace workbench {
namespace {

double cut(double amount) { return std::isfinite(amount) ? std::clamp(amount, -1.0, 1.0) : 0.0; }

}  // namespace

void CapState::deflect(Hand hand, std::size_t axis, double amount) {
    mHands[static_cast<std::size_t>(hand)].at(axis) = cut(amount);
    mHeld[axis] = 0.0;  // whoever takes hold of an axis anew leads it
}

void CapState::drag(CapMotion motion, double right, double up) {
    if (motion == CapMotion::push) {
        deflect(Hand::drag, 0, right);
        deflect(Hand::drag, 1, up);
    } else {
        deflect(Hand::drag, 4, right);
        deflect(Hand::drag, 3, -up);  // tipped away from the hand
    }
}

void CapState::letGo(Hand hand) {
    for (std::size_t axis = 0; axis < kCapAxes; ++axis) letGo(hand, axis);
}

void CapState::letGo(Hand hand, std::size_t axis) {
    double& amount = mHands[static_cast<std::size_t>(hand)].at(axis);
    if (mIsHolding) mHeld[axis] = cut(mHeld[axis] + amount);
    amount = 0.0;
}

void CapState::releaseAll() {
    mHands = {};
    mHeld = {};
}

void CapState::setHold(bool isHeld) {
    mIsHolding = isHeld;
    if (!isHeld) mHeld = {};
}

void CapState::setGain(double gain) { mGain = std::clamp(gain, kLeastGain, kGreatestGain); }

void CapState::setCurve(double curve) { mCurve = std::clamp(curve, kLeastCurve, kGreatestCurve); }

double CapState::deflection(std::size_t axis) const {
    double sum = mHeld.at(axis);
    for (const Amounts& hand : mHands) sum += hand[axis];
    return cut(sum);
}

CapAxes CapState::axes() const {
    CapAxes axes{};
    for (std::size_t i = 0; i < kCapAxes; ++i) {
        const double amount = deflection(i);
        axes[i] = static_cast<std::int16_t>(
            std::lround(std::copysign(std::pow(std::abs(amount), mCurve), amount) * mGain * kReach));
    }
    return axes;
}

}  // namespace workbench
