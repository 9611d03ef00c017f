#include "workbench/host/model/view.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <numbers>

namespace workbench {
namespace {

constexpr double UNIT_TOLERANCE = 1e-6;
constexpr double FIT_SHARE = 1.1;  // of the window's shorter side; a body is smaller than its box's diagonal
constexpr double SCALE_MIN = 1e-3;
constexpr double SCALE_MAX = 1e4;
constexpr Vec3 X{1.0, 0.0, 0.0};
constexpr Vec3 Y{0.0, 1.0, 0.0};
constexpr double QUARTER = std::numbers::pi / 2.0;

const StandardView* standardViews(std::size_t& count) {
    // The model's z axis is up: the front view looks along +y.
    static const StandardView VIEWS[] = {
        {"top", {}},
        {"bottom", Transform::turn(X, 2.0 * QUARTER)},
        {"front", Transform::turn(X, -QUARTER)},
        {"back", Transform::turn({0.0, 0.0, 1.0}, 2.0 * QUARTER) * Transform::turn(X, -QUARTER)},
        {"left", Transform::turn({0.0, 0.0, 1.0}, QUARTER) * Transform::turn(X, -QUARTER)},
        {"right", Transform::turn({0.0, 0.0, 1.0}, -QUARTER) * Transform::turn(X, -QUARTER)},
        {"default", Transform::turn({0.0, 0.0, 1.0}, -0.6) * Transform::turn(X, -1.0)},
    };
    count = std::size(VIEWS);
    return VIEWS;
}

Transform rotationPart(const Transform& t) {
    Transform r = t;
    for (std::size_t i = 0; i < 3; ++i) r.m[i][3] = 0.0;
    r.m[3] = {0.0, 0.0, 0.0, 1.0};
    return r;
}

}  // namespace

const StandardView* findStandardView(const char* name) {
    std::size_t count = 0;
    const StandardView* views = standardViews(count);
    const auto found =
        std::find_if(views, views + count, [&](const auto& v) { return std::strcmp(v.name, name) == 0; });
    return found == views + count ? nullptr : found;
}

View::View() { setDefaultOrientation(); }

Transform View::matrix() const {
    const Vec3 middle{mWidth / 2.0, mHeight / 2.0, 0.0};
    return Transform::shift(mPivot * -1.0) * mOrientation * Transform::scale(mScale) *
           Transform::shift(middle + mShift);
}

bool View::setOrientation(const Transform& orientation) {
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& row = orientation.m[i];
        if (!(std::abs(length({row[0], row[1], row[2]}) - 1.0) <= UNIT_TOLERANCE)) return false;
    }
    mOrientation = rotationPart(orientation);
    return true;
}

void View::setDefaultOrientation() { mOrientation = findStandardView("default")->orientation; }

void View::refit(const Bounds& box) {
    if (box.isEmpty()) return;
    mPivot = box.centre();
    mShift = {};
    zoom(FIT_SHARE * std::min(mWidth, mHeight) / std::max(box.diagonal() * mScale, 1e-9));
}

void View::resize(int width, int height) {
    mWidth = std::max(width, 1);
    mHeight = std::max(height, 1);
}

void View::turn(Vec3 angles) {
    const double angle = length(angles);
    if (angle > 0.0) mOrientation = mOrientation * Transform::turn(normalised(angles), angle);
}

void View::pan(double dx, double dy) { mShift = mShift + Vec3{dx, dy, 0.0}; }

void View::zoom(double factor) {
    const double scale = std::clamp(mScale * factor, SCALE_MIN, SCALE_MAX);
    mShift = mShift * (scale / mScale);
    mScale = scale;
}

}  // namespace workbench
