// The arithmetic of moving the selected components by one step: no toolkit call, nothing kept. Positions are the
// toolkit's matrices. Pure, any thread.
#pragma once

#include <array>

#include "common_sources/rotation.h"

// One step of the selection along (model units) and about (radians) the screen's axes.
struct Step {
    Vector3 ax, ay, az;  // screen right, screen up, towards the viewer; unit vectors in model coordinates
    double dtx, dty, dtz;
    double drx, dry, drz;
};

using Position = double[4][4];

// Whether a component there can be turned: the origin is finite, and the axes point in three directions.
bool isTurnable(const Position& position);

// Bounding box of the components' origins.
class OriginBox {
  public:
    void add(const Vector3& origin);
    Vector3 centre() const;  // not finite when they are too far apart

  private:
    Vector3 mLow{}, mHigh{};
    bool mIsSeeded = false;
};

// A step about a centre, worked out once for all components.
class GroupMove {
  public:
    GroupMove(const Step& step, const Vector3& centre);

    // False when the result would not be finite; the position is of no use then.
    bool apply(Position& position) const;

  private:
    Matrix3 mPivotRotation;  // turns the origins about the centre
    Matrix3 mAxisRotation;   // turns the components' own axes
    Vector3 mCentre;
    bool mIsShifting;
    std::array<Vector3, 3> mShifts;  // along each of the screen's axes
};
