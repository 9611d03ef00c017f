#include "common_sources/motion_step.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

// Rot(first) * Rot(second) * Rot(third); a factor whose angle is exactly 0 is left out.
struct AxisAngle {
    const Vector3& axis;
    double angle;
};
Matrix3 composedRotation(const AxisAngle& first, const AxisAngle& second, const AxisAngle& third) {
    Matrix3 composed = kIdentity3;
    for (const auto& [axis, angle] : {first, second, third}) {
        if (angle != 0.0) composed = composed * rotation(axis, angle);
    }
    return composed;
}

}  // namespace

bool isTurnable(const Position& position) {
    constexpr double kFlat = 1e-9;
    // What is not finite does not span anything.
    return isFinite(originOf(position)) && std::abs(determinant(withUnitRows(blockOf(position)))) > kFlat;
}

void OriginBox::add(const Vector3& origin) {
    if (!mIsSeeded) mLow = mHigh = origin;
    mIsSeeded = true;
    for (int k = 0; k < 3; ++k) {
        mLow[k] = std::min(mLow[k], origin[k]);
        mHigh[k] = std::max(mHigh[k], origin[k]);
    }
}

Vector3 OriginBox::centre() const { return mLow + (mHigh - mLow) * 0.5; }

GroupMove::GroupMove(const Step& step, const Vector3& centre)
    : mCentre(centre),
      mIsShifting(step.dtx != 0.0 || step.dty != 0.0 || step.dtz != 0.0),
      mShifts{step.ax * step.dtx, step.ay * step.dty, step.az * step.dtz} {
    const AxisAngle x{step.ax, step.drx}, y{step.ay, step.dry}, z{step.az, step.drz};
    mPivotRotation = composedRotation(x, y, z);
    mAxisRotation = composedRotation(z, y, x);  // the other order, as it always was
}

bool GroupMove::apply(Position& position) const {
    Vector3 origin = mPivotRotation * (originOf(position) - mCentre) + mCentre;
    Matrix3 axes = blockOf(position);
    for (auto& axis : axes) axis = mAxisRotation * axis;
    // The columns, not the axes, get unit length.
    axes = transposed(withUnitRows(transposed(axes)));
    if (mIsShifting) origin = origin + mShifts[0] + mShifts[1] + mShifts[2];
    toToolkit(axes, origin, position);
    return isFinite(axes) && isFinite(origin);
}
