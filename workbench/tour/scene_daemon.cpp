// The device daemon is lost and found again.
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr int kPump = 58;
constexpr double kWay = 50.0;

}  // namespace

void playDaemonLoss(Stage& stage) {
    stage.open();
    Workbench& bench = stage.bench();
    stage.selectForMoving(std::to_string(kPump));
    const auto right = stage.screenAxes()[0];
    stage.step("The daemon is killed", "OIL_PUMP.ASM was moved to the right; then the daemon's process was killed.",
               [&](Step& step) {
                   const Vector start = stage.position(kPump).origin;
                   const auto way = [&] { return dot(stage.position(kPump).origin - start, right); };
                   stage.pushUntil(step, "While the cap was pushed, before the daemon was killed.", {.tx = 100},
                                   [&] { return way() > kWay; });
                   step.check("Pump moved to the right by", "0", text(way()), "more than 50", way() > kWay);
                   const Poses before = stage.positions();
                   bench.killDaemon();
                   const bool isNoticed = waitFor([&] { return contains(bench.log(), "Error in obGetDevNum()!"); });
                   step.check("Plug-in's log", "", isNoticed ? "Error in obGetDevNum()!" : "-", "the loss is noticed",
                              isNoticed);
                   stage.awaitTicks();
                   step.check("Plug-in", "initialised", stage.status("plugin"), "initialised, its timer goes on",
                              stage.status("plugin") == "initialised");
                   const double moved = greatestWay(before, stage.positions());
                   step.check("Components moved by", "0", text(moved), "0", moved == 0.0);
                   step.check("Errors that the host counted", "0", stage.status("errors"), "0",
                              stage.number("errors") == 0);
                   stage.shoot(step, "The host goes on without the device.");
               });
    stage.step("The daemon comes back",
               "The selection was cleared and a new daemon started; the plug-in looks for one every two seconds.",
               [&](Step& step) {
                   bench.host("select none");
                   bench.startDaemon();
                   const bool isBack = waitFor([&] { return bench.daemonStatus("mode") == kAssemblyMode; });
                   step.check("Applications connected", "0", bench.daemonStatus("clients"), "1",
                              bench.daemonStatus("clients") == "1");
                   step.check("Mode told to the new daemon", "none", bench.daemonStatus("mode"), kAssemblyMode, isBack);
                   stage.awaitTicks();
                   step.check("LegacyCOM1", "", bench.daemonStatus("legacy"), "1 (nothing is selected)",
                              bench.daemonStatus("legacy") == "1");
                   stage.shoot(step, "The pump is where it was left.");
               });
    stage.step(
        "The cap works again", "The pump was selected and the cap pushed to the left (tx = -100).", [&](Step& step) {
            bench.host("select " + std::to_string(kPump));
            const bool isOff = waitFor([&] { return bench.daemonStatus("legacy") == "0"; });
            step.check("LegacyCOM1", "1", bench.daemonStatus("legacy"), "0 (claimed)", isOff);
            const Vector start = stage.position(kPump).origin;
            const Pose view = stage.view();
            const auto way = [&] { return dot(stage.position(kPump).origin - start, right); };
            stage.pushUntil(step, "The pump goes back to the left.", {.tx = -100}, [&] { return way() < -kWay; });
            step.check("Pump moved to the right by", "0", text(way()), "less than -50", way() < -kWay);
            const double viewMoved = greatestWay(view, stage.view());
            step.check("View changed by", "", text(viewMoved), "0", viewMoved == 0.0);
        });
}

}  // namespace workbench
