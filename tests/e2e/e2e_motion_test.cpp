// Components of a running host's assembly follow the cap.
#include <cmath>

#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

constexpr int kShaft = 41;

void expectUnmoved(const Poses& before, const Poses& after, const std::vector<int>& exceptions) {
    for (const auto& [id, frame] : before) {
        if (std::find(exceptions.begin(), exceptions.end(), id) != exceptions.end()) continue;
        EXPECT_LT(length(after.at(id).origin - frame.origin), 1e-12) << "component " << id;
    }
}

// Each axis of the cap moves the selection along the screen's axis of the same name, whatever the view is.
TEST(Motion, TranslationFollowsTheScreensAxes) {
    Bench bench;
    bench.openAssemblyForMoving();
    bench.host("view set 0.36 0.48 -0.8 -0.8 0.6 0 0.48 0.64 0.6");
    bench.selectForMoving(std::to_string(kShaft));
    const auto screen = bench.screenAxes();
    for (int axis = 0; axis < 3; ++axis) {
        for (const int push : {200, -200}) {
            const Poses before = bench.positions();
            std::array<int, 3> t{};
            t[axis] = push;
            bench.push(t[0], t[1], t[2], 0, 0, 0);
            ASSERT_TRUE(waitFor([&] {
                return length(bench.positions().at(kShaft).origin - before.at(kShaft).origin) > 1.0;
            })) << "axis "
                << axis;
            bench.release();
            const Poses after = bench.positions();
            const Vector way = after.at(kShaft).origin - before.at(kShaft).origin;
            EXPECT_NEAR(dot(way, screen[axis]) * (push > 0 ? 1 : -1) / length(way), 1.0, 1e-9) << "axis " << axis;
            // A step is axis / (transSensBase / 500) = 2.5 model units; only whole steps were made.
            const double steps = length(way) / (200.0 / 80);
            EXPECT_NEAR(steps, std::round(steps), 1e-6);
            expectUnmoved(before, after, {kShaft});
        }
    }
    EXPECT_EQ(bench.status("outstanding_arrays"), "0");
    EXPECT_EQ(bench.status("wrong_thread_calls"), "0");
}

TEST(Motion, LegacyChannelIsOnUnlessThePlugInUsesTheMotion) {
    Bench bench;
    bench.host("model GEARBOX.ASM");
    bench.host("select none");
    // Left alone, the motion moves the view and nothing else.
    const Pose viewBefore = bench.view();
    const Poses before = bench.positions();
    bench.push(0, 0, 0, 0, 150, 0);
    EXPECT_TRUE(waitFor([&] { return length(bench.view().axes[0] - viewBefore.axes[0]) > 1e-3; }));
    bench.release();
    expectUnmoved(before, bench.positions(), {});
    EXPECT_EQ(bench.daemonStatus("legacy"), "1");

    // Move mode alone, without a selection, changes nothing about that.
    bench.host("menu click Toggle Move Mode");
    bench.push(0, 0, 0, 0, 150, 0);
    const Pose viewMiddle = bench.view();
    EXPECT_TRUE(waitFor([&] { return length(bench.view().axes[0] - viewMiddle.axes[0]) > 1e-3; }));
    bench.release();
    EXPECT_EQ(bench.daemonStatus("legacy_sets"), "0");

    // With a selection the channel goes off, once, and comes back, once, when the selection is gone.
    bench.selectForMoving(std::to_string(kShaft));
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "0"; }));
    const Pose viewAtRest = bench.view();
    bench.push(100, 0, 0, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return length(bench.positions().at(kShaft).origin - before.at(kShaft).origin) > 1.0; }));
    bench.release();
    EXPECT_LT(length(bench.view().origin - viewAtRest.origin), 1e-9) << "the view moved, too";
    EXPECT_EQ(bench.daemonStatus("legacy_sets"), "1");
    bench.host("select none");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "1"; }));
    EXPECT_EQ(bench.daemonStatus("legacy_sets"), "2");

    // The end of the plug-in gives the channel back.
    bench.selectForMoving(std::to_string(kShaft));
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "0"; }));
    bench.host("plugin terminate");
    EXPECT_EQ(bench.daemonStatus("legacy"), "1");
}

}  // namespace
}  // namespace e2e
