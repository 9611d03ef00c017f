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
    stage.step("Daemon killed while components move",
               "OIL_PUMP.ASM was on its way to the right when the daemon's process was killed.", [&](Step& step) {
                   const Vector start = stage.position(kPump).origin;
                   const auto way = [&] { return length(stage.position(kPump).origin - start); };
                   stage.push({.tx = 100});
                   const bool isMoving = waitFor([&] { return way() > kWay; });
                   step.check("Pump moved by, until the daemon was killed", "0", text(way()), "more than 50", isMoving);
                   bench.killDaemon();
                   stage.awaitTicks();
                   stage.awaitTicks();
                   step.check("Plug-in", "initialised", stage.status("plugin"), "initialised, and the host answers",
                              stage.status("plugin") == "initialised");
                   step.check("Daemon's process", "running", bench.isDaemonRunning() ? "running" : "gone", "gone",
                              !bench.isDaemonRunning());
                   const Vector before = stage.position(kPump).origin;
                   stage.awaitTicks();
                   const double creep = length(stage.position(kPump).origin - before);
                   step.tell("Way of the pump during a further tick", "", text(creep));
                   step.check("Errors that the host counted", "0", stage.status("errors"), "0",
                              stage.number("errors") == 0);
                   stage.shoot(step, "The host goes on without the device.");
               });
    stage.step("Daemon started again", "A new daemon was started; the plug-in looks for one every two seconds.",
               [&](Step& step) {
                   bench.startDaemon();
                   const bool isBack = waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; });
                   step.check("Applications connected", "0", bench.daemonStatus("clients"), "1",
                              bench.daemonStatus("clients") == "1");
                   step.check("Mode told to the new daemon", "none", bench.daemonStatus("mode"), "Assembly", isBack);
                   stage.release();
                   stage.shoot(step, "The pump is where it was left.");
               });
    stage.step("The cap works again", "The cap was pushed to the left (tx = -100); the pump is still selected.",
               [&](Step& step) {
                   const auto right = stage.screenAxes()[0];
                   const Vector start = stage.position(kPump).origin;
                   const auto way = [&] { return dot(stage.position(kPump).origin - start, right); };
                   stage.pushUntil({.tx = -100}, [&] { return way() < -kWay; });
                   step.check("Pump moved to the right by", "0", text(way()), "less than -50", way() < -kWay);
                   const bool isOff = waitFor([&] { return bench.daemonStatus("legacy") == "0"; });
                   step.check("LegacyCOM1 in the new daemon", "1", bench.daemonStatus("legacy"), "0 (claimed)", isOff);
                   stage.shoot(step, "The pump has gone back to the left.");
               });
}

}  // namespace workbench
