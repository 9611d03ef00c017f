// Components of a running host's assembly follow the cap.
#include <cmath>

#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

constexpr int kShaft = 41;

bool isOrthonormal(const Pose& frame, double tolerance) {
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) {
            if (std::abs(dot(frame.axes[i], frame.axes[k]) - (i == k ? 1.0 : 0.0)) > tolerance) return false;
        }
    }
    return true;
}

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

TEST(Motion, OneComponentTurnsAboutItsOwnOriginRightHanded) {
    Bench bench;
    bench.openAssemblyForMoving();
    bench.selectForMoving(std::to_string(kShaft));
    const auto screen = bench.screenAxes();
    for (int axis = 0; axis < 3; ++axis) {
        const Pose before = bench.positions().at(kShaft);
        std::array<int, 3> r{};
        r[axis] = 40;  // 0.004 radians a step
        bench.push(0, 0, 0, r[0], r[1], r[2]);
        ASSERT_TRUE(waitFor([&] {
            return length(bench.positions().at(kShaft).axes[(axis + 1) % 3] - before.axes[(axis + 1) % 3]) > 0.01;
        }));
        bench.release();
        const Pose after = bench.positions().at(kShaft);
        EXPECT_LT(length(after.origin - before.origin), 1e-9);
        EXPECT_TRUE(isOrthonormal(after, 1e-9));
        // The angle is what the first axis that is not the turning axis says; all three axes must agree with it.
        double angle = 0;
        for (int steps = 1; steps < 100000; ++steps) {
            if (length(turned(before.axes[0], screen[axis], steps * 0.004) - after.axes[0]) < 1e-7 &&
                length(turned(before.axes[1], screen[axis], steps * 0.004) - after.axes[1]) < 1e-7) {
                angle = steps * 0.004;
                break;
            }
        }
        ASSERT_GT(angle, 0.0) << "no whole number of steps about screen axis " << axis;
        EXPECT_LT(length(turned(before.axes[2], screen[axis], angle) - after.axes[2]), 1e-7);
    }
}

// A group turns about the middle of its origins: that point stays, distances stay, axes stay orthonormal.
TEST(Motion, GroupTurnsAboutItsCentreAsARigidBody) {
    Bench bench(Keys{{"rotSensBase", "20000"}});
    bench.openAssemblyForMoving();
    bench.selectForMoving("39 41 58/3");  // a part of the sub-assembly stands for the whole of it
    const std::vector<int> group{39, 41, 58};
    const auto centreOf = [&](const Poses& frames) {
        Vector low = frames.at(39).origin, high = low;
        for (const int id : group) {
            for (int k = 0; k < 3; ++k) {
                low[k] = std::min(low[k], frames.at(id).origin[k]);
                high[k] = std::max(high[k], frames.at(id).origin[k]);
            }
        }
        return low + (high - low) * 0.5;
    };
    const Poses before = bench.positions();
    const Vector centre = centreOf(before);
    const auto screen = bench.screenAxes();
    bench.push(0, 0, 0, 0, 0, 1);  // so small a step that the centre's own way does not count
    ASSERT_TRUE(waitFor([&] { return length(bench.positions().at(58).origin - before.at(58).origin) > 0.05; }));
    bench.release();
    const Poses after = bench.positions();
    for (const int id : group) {
        const Vector armBefore = before.at(id).origin - centre;
        const Vector armAfter = after.at(id).origin - centre;
        EXPECT_NEAR(dot(armAfter, screen[2]), dot(armBefore, screen[2]), 1e-3) << "about the view's axis: " << id;
        for (const int other : group) {
            EXPECT_NEAR(length(after.at(id).origin - after.at(other).origin),
                        length(before.at(id).origin - before.at(other).origin), 1e-6);
        }
        EXPECT_TRUE(isOrthonormal(after.at(id), 1e-9));
    }
    expectUnmoved(before, after, group);
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

TEST(Motion, ThousandComponents) {
    Bench bench(Keys{{"maxContMoveTime", "1"}});
    bench.host("components 1000");
    bench.openAssemblyForMoving();
    bench.host("components 1000");
    bench.selectForMoving("all");
    const Poses before = bench.positions();
    ASSERT_EQ(before.size(), 1000u);
    const auto screen = bench.screenAxes();
    bench.push(80, 0, 0, 0, 0, 0);
    const int first = before.begin()->first;
    ASSERT_TRUE(waitFor([&] { return length(bench.positions().at(first).origin - before.at(first).origin) > 0.5; }));
    bench.release();
    const Poses after = bench.positions();
    const Vector way = after.at(first).origin - before.at(first).origin;
    EXPECT_NEAR(dot(way, screen[0]) / length(way), 1.0, 1e-9);
    for (const auto& [id, frame] : before) {
        ASSERT_LT(length(after.at(id).origin - frame.origin - way), 1e-6) << "component " << id;
    }
    EXPECT_EQ(bench.status("outstanding_arrays"), "0");
}

// Long turning about all axes, as a user does: the frame stays a frame.
TEST(Motion, ThousandsOfStepsKeepTheFrameOrthonormal) {
    Bench bench(Keys{{"maxContMoveTime", "500"}});
    bench.openAssemblyForMoving();
    bench.selectForMoving(std::to_string(kShaft));
    const auto steps = [&] { return std::stoi(bench.host("calls ProAsmcompPositionSet").at(0)); };
    bench.host("resize 400 300");  // each step is drawn, and thousands are wanted
    bench.push(3, -2, 1, 300, -200, 350);
    ASSERT_TRUE(waitFor([&] { return steps() > 3000; }, 120000)) << steps() << " steps";
    bench.release();
    EXPECT_TRUE(isOrthonormal(bench.positions().at(kShaft), 1e-9));
}

// Toolkit functions that fail, one after the other: nothing crashes, no array is lost, and afterwards all is well.
TEST(Motion, FailingToolkit) {
    Bench bench;
    bench.openAssemblyForMoving();
    bench.selectForMoving(std::to_string(kShaft));
    bench.push(50, 0, 0, 0, 0, 20);
    for (const char* function :
         {"ProViewMatrixGet", "ProVectorTrfEval", "ProMdlCurrentGet", "ProSelbufferSelectionsGet", "ProArraySizeGet",
          "ProSelectionAsmcomppathGet", "ProFeatureInit", "ProAsmcompPositionGet", "ProAsmcompPositionSet",
          "ProAsmcompRegenerate", "ProAssemblyDynPosSet", "ProWindowCurrentGet", "ProWindowRefresh",
          "ProSelectionarrayFree", "ProModeCurrentGet", "ProSectionIsActive"}) {
        const std::string name(function);
        bench.host("fail " + name + " always");
        const int calls = std::stoi(bench.host("calls " + name).at(0));
        EXPECT_TRUE(waitFor([&] { return std::stoi(bench.host("calls " + name).at(0)) >= calls + 2; }, 5000) ||
                    name == "ProFeatureInit")
            << name << " was not called while it failed";
        const Pose frame = bench.positions().at(kShaft);
        EXPECT_TRUE(isOrthonormal(frame, 1e-9)) << name;
        bench.host("fail " + name + " never");
    }
    const Pose before = bench.positions().at(kShaft);
    EXPECT_TRUE(waitFor([&] { return length(bench.positions().at(kShaft).origin - before.origin) > 1.0; }))
        << "motion goes on once the toolkit works again";
    bench.release();
}

// Settings whose divisors become 0 move nothing, and say so.
TEST(Motion, UselessDivisorsMoveNothing) {
    Bench bench(Keys{{"transSensBase", "499"}, {"rotSensBase", "0"}});
    bench.openAssemblyForMoving();
    bench.selectForMoving("all");
    const Poses before = bench.positions();
    bench.push(100, 100, 100, 100, 100, 100);
    bench.expectLog("transSensBase or rotSensBase too small");
    bench.release();
    expectUnmoved(before, bench.positions(), {});
}

}  // namespace
}  // namespace e2e
