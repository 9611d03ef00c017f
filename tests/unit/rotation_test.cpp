#include "common_sources/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

void expectNear(const Vector3& actual, const Vector3& expected, double tolerance = 1e-12) {
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "coordinate " << i;
}

TEST(Rotation, TurnsRightHandedAboutEachAxis) {
    constexpr double kQuarter = std::numbers::pi / 2;
    expectNear(rotation({0, 0, 1}, kQuarter) * Vector3{1, 0, 0}, {0, 1, 0});
    expectNear(rotation({1, 0, 0}, kQuarter) * Vector3{0, 1, 0}, {0, 0, 1});
    expectNear(rotation({0, 1, 0}, kQuarter) * Vector3{0, 0, 1}, {1, 0, 0});
}

}  // namespace
