#include "common_sources/motion_step.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <vector>

#include "tests/unit/plain_motion.h"

namespace {

// Ordinary positions, and ones with a number that is too large, too small or none.
TEST(MotionStep, EqualsThePlainArithmeticOnRandomPositions) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kHostile[] = {0.0, -0.0, 1e-320, 1e160, -1.7e308, kInfinity, std::nan("")};
    std::mt19937 random(20261122);
    std::uniform_real_distribution<double> place(-1000, 1000), angle(-3, 3);
    const auto oneOf = [&](const auto& values) { return values[random() % std::size(values)]; };
    const auto turn = [&] { return rotation({1, 0, 0}, angle(random)) * rotation({0, 1, 0}, angle(random)); };
    int good = 0, senseless = 0, lost = 0;
    for (int round = 0; round < 3000; ++round) {
        std::vector<plain::Component> ours(1 + random() % 5);
        for (auto& [position, isGood] : ours) {
            toToolkit(turn(), {place(random), place(random), place(random)}, position);
            if (random() % 4 == 0) position[random() % 4][random() % 3] = oneOf(kHostile);
        }
        std::vector<plain::Component> byHand = ours;
        const Matrix3 screen = turn();
        Step step{screen[0], screen[1], screen[2], 0, 0, 0, 0, 0, 0};
        for (double* part : {&step.dtx, &step.dty, &step.dtz, &step.drx, &step.dry, &step.drz}) {
            if (random() % 3 != 0) *part = random() % 50 == 0 ? oneOf(kHostile) : angle(random);
        }
        plain::moveByMotionStep(ours, step);
        plain::move(byHand, step);
        for (std::size_t i = 0; i < ours.size(); ++i) {
            const Position &a = ours[i].position, &b = byHand[i].position;
            ASSERT_EQ(isTurnable(a), plain::isTurnable(b)) << round;
            ASSERT_EQ(ours[i].isGood, byHand[i].isGood) << round;
            ++(!ours[i].isGood ? lost : isTurnable(a) ? good : senseless);
            for (int k = 0; k < 16 && ours[i].isGood && isTurnable(a); ++k) {
                const double expected = b[k / 4][k % 4];
                ASSERT_NEAR(a[k / 4][k % 4], expected, 1e-9 * (1 + std::abs(expected))) << round << " " << k;
            }
        }
    }
    EXPECT_GT(good, 1000);
    EXPECT_GT(senseless, 100);
    EXPECT_GT(lost, 10);
}

}  // namespace
