// What one motion step of a large selection costs beside the toolkit's calls, against the same arithmetic written out
// by hand over arrays.
#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "benchmarks/compare.h"
#include "common_sources/motion_step.h"
#include "tests/unit/plain_motion.h"

namespace {

using Components = std::vector<plain::Component>;

Components makeComponents(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-1000, 1000), angle(-3, 3);
    Components components(count);
    for (auto& [position, isGood] : components) {
        const Matrix3 axes = rotation({1, 0, 0}, angle(random)) * rotation({0, 1, 0}, angle(random));
        toToolkit(axes, {place(random), place(random), place(random)}, position);
    }
    return components;
}

}  // namespace

int main() {
    Components ours = makeComponents(1000), theirs = ours;
    const Step step{{0.36, 0.48, -0.8}, {-0.8, 0.6, 0}, {0.48, 0.64, 0.6}, 0.3, -0.1, 0.2, 0.01, -0.02, 0.03};
    constexpr int kCalls = 100;
    bench::compare(
        {.what = "motion step, our own part, 1,000 components",
         .peer = "the same arithmetic by hand over arrays",
         .calls = kCalls},
        [&] {
            for (int i = 0; i < kCalls; ++i) plain::moveByMotionStep(ours, step);
        },
        [&] {
            for (int i = 0; i < kCalls; ++i) plain::move(theirs, step);
        });
    double difference = 0;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        for (int k = 0; k < 16; ++k) {
            difference =
                std::max(difference, std::fabs(ours[i].position[k / 4][k % 4] - theirs[i].position[k / 4][k % 4]));
        }
    }
    bench::expectSame(difference < 1e-6, "positions of the components");
}
