// Start, view, move mode, release: who gets the motion.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr double kExact = 1e-9;
constexpr double kDegree = std::numbers::pi / 180.0;
constexpr const char* kSelection = "58 61";  // oil pump and cover block, in front of the others

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += (text.empty() ? "" : ", ") + line;
    return text;
}

}  // namespace

void playStart(Stage& stage) {
    stage.step(
        "Host and plug-in start", "Daemon and host were started; the host loaded the plug-in's DLL.", [&](Step& step) {
            stage.open();
            const auto menus = stage.bench().host("menus");
            const auto help = std::ranges::find(menus, "&Help");
            const bool isBeside = help != menus.begin() && help != menus.end() &&
                                  (*(help - 1) == "Orbikon" || (help + 1 != menus.end() && help[1] == "Orbikon"));
            step.check("Menu bar", "", joined(menus), "\"Orbikon\" beside \"Help\"", isBeside);
            const auto items = stage.bench().host("menu");
            step.check("Items of the plug-in's menu", "", joined(items), "two check items, both available",
                       items.size() == 2 &&
                           std::ranges::all_of(items, [](const auto& item) { return contains(item, "enabled=1"); }));
            step.check("Plug-in", "", stage.status("plugin"), "initialised", stage.status("plugin") == "initialised");
            step.check("Applications connected to the daemon", "", stage.bench().daemonStatus("clients"), "1",
                       stage.bench().daemonStatus("clients") == "1");
            step.check("Mode told to the daemon", "", stage.bench().daemonStatus("mode"), "Assembly",
                       stage.bench().daemonStatus("mode") == kAssemblyMode);
            stage.shoot(step, "Model tree on the left, graphics in the middle, panels on the right.");
        });
}

void playViewTurn(Stage& stage) {
    stage.open();
    stage.step(
        "Cap turned about the screen's vertical axis",
        "Nothing is selected. The cap was turned (ry = 150) until the view had turned by 30 degrees.", [&](Step& step) {
            const auto rows = stage.viewRows();
            const auto axes = stage.screenAxes();
            const Poses before = stage.positions();
            const int sets = stage.calls("ProViewMatrixSet");
            stage.shoot(step, "Before.");
            // Each model axis turns about the screen's y axis; any one off that axis tells the angle.
            constexpr Vector kUp{0, 1, 0};
            const auto angle = [&] { return angleAbout(kUp, rows[0], stage.viewRows()[0]) / kDegree; };
            stage.pushUntil(step, "While the cap is turned: the view turns, the assembly does not change.", {.ry = 150},
                            [&] { return angle() > 30.0; });
            const auto rowsNow = stage.viewRows();
            step.check("Turn about screen up, degrees", "0", text(angle()), "more than 30, right-handed",
                       angle() > 30.0);
            double error = 0.0;
            for (std::size_t i = 0; i < 3; ++i) {
                error = std::max(error, length(turned(rows[i], kUp, angle() * kDegree) - rowsNow[i]));
            }
            step.check("View rows: difference from a turn by that angle", "", text(error), "0 (1e-9)", error < kExact);
            for (std::size_t i = 0; i < 3; ++i) {
                step.tell("View matrix, row " + std::to_string(i + 1), text(rows[i], 4), text(rowsNow[i], 4));
            }
            const double upMoved = length(stage.screenAxes()[1] - axes[1]);
            step.check("Screen's up axis in the model: change", "", text(upMoved), "0 (1e-9)", upMoved < kExact);
            const double moved = greatestWay(before, stage.positions());
            step.check("Components moved by", "0", text(moved), "0", moved == 0.0);
            step.check("LegacyCOM1", "1", stage.bench().daemonStatus("legacy"), "1",
                       stage.bench().daemonStatus("legacy") == "1");
            const int setsNow = stage.calls("ProViewMatrixSet");
            step.check("View set by the plug-in, times", std::to_string(sets), std::to_string(setsNow), "unchanged",
                       sets == setsNow);
        });
}

void playMoveMode(Stage& stage) {
    stage.open();
    Workbench& bench = stage.bench();
    stage.step(
        "Components selected", "OIL_PUMP.ASM and COVER_BLOCK.PRT were selected; move mode is off.", [&](Step& step) {
            const int before = stage.selectedPixels();
            bench.host(std::string("select ") + kSelection);
            stage.awaitTicks();
            step.check("Selected", "", stage.status("selection"), kSelection, stage.status("selection") == kSelection);
            const int after = stage.selectedPixels();
            step.check("Pixels in the colour of the selection", std::to_string(before), std::to_string(after),
                       "0, then hundreds", before == 0 && after > 200);
            step.check("LegacyCOM1", "1", bench.daemonStatus("legacy"), "1 (selecting alone claims nothing)",
                       bench.daemonStatus("legacy") == "1");
            stage.shoot(step, "Selected components are green, in the graphics and bold in the tree.");
        });
    stage.step("Move mode switched on", "\"Toggle Move Mode\" was chosen in the plug-in's menu.", [&](Step& step) {
        const std::string before = bench.daemonStatus("legacy");
        stage.setToggle(kMoveToggle, true);
        const bool isOff = waitFor([&] { return bench.daemonStatus("legacy") == "0"; });
        step.check("LegacyCOM1", before, bench.daemonStatus("legacy"), "1, then 0", before == "1" && isOff);
        step.check("Legacy channel switched, times", "0", bench.daemonStatus("legacy_sets"), "1",
                   bench.daemonStatus("legacy_sets") == "1");
        step.check("Check mark at \"Toggle Move Mode\"", "off", stage.isToggled(kMoveToggle) ? "on" : "off", "on",
                   stage.isToggled(kMoveToggle));
        stage.shoot(step, "The cap is now for the components.");
    });
}

void playRelease(Stage& stage) {
    stage.open();
    Workbench& bench = stage.bench();
    stage.selectForMoving(kSelection);
    stage.step("Cap released", "The pump and the block were moved to the right, then the cap was let go.",
               [&](Step& step) {
                   const Poses before = stage.positions();
                   stage.pushUntil(step, "Before the release.", {.tx = 150},
                                   [&] { return greatestWay(before, stage.positions()) > 40.0; });
                   const Poses atRest = stage.positions();
                   step.check("Selection moved by", "0", text(greatestWay(before, atRest)), "more than 40",
                              greatestWay(before, atRest) > 40.0);
                   stage.awaitTicks();
                   stage.awaitTicks();
                   const double creep = greatestWay(atRest, stage.positions());
                   step.check("Way after the release", "", text(creep), "0", creep == 0.0);
                   step.check("LegacyCOM1", "0", bench.daemonStatus("legacy"), "0 (still claimed)",
                              bench.daemonStatus("legacy") == "0");
                   step.check("Plug-in's log", "", contains(bench.log(), "Cap released.") ? "Cap released." : "-",
                              "\"Cap released.\"", contains(bench.log(), "Cap released."));
                   stage.shoot(step, "Everything rests.");
               });
    stage.step("Selection cleared", "Nothing is selected any more; move mode is still on.", [&](Step& step) {
        const std::string before = bench.daemonStatus("legacy");
        bench.host("select none");
        const bool isOn = waitFor([&] { return bench.daemonStatus("legacy") == "1"; });
        step.check("LegacyCOM1", before, bench.daemonStatus("legacy"), "0, then 1", before == "0" && isOn);
        step.check("Legacy channel switched, times", "1", bench.daemonStatus("legacy_sets"), "2 (off and on)",
                   bench.daemonStatus("legacy_sets") == "2");
        step.check("Selection arrays that the plug-in kept", "", stage.status("outstanding_arrays"), "0",
                   stage.status("outstanding_arrays") == "0");
        stage.shoot(step, "Nothing is green any more.");
    });
    stage.step("The view gets the motion again", "The cap was turned (rz = 150).", [&](Step& step) {
        const Poses before = stage.positions();
        const Vector row = stage.viewRows()[0];
        constexpr Vector kTowardsViewer{0, 0, 1};
        const auto angle = [&] { return angleAbout(kTowardsViewer, row, stage.viewRows()[0]) / kDegree; };
        stage.pushUntil(step, "The whole assembly is shown turned, with the cap still turned.", {.rz = 150},
                        [&] { return angle() > 20.0; });
        step.check("View turned in the screen, degrees", "0", text(angle()), "more than 20", angle() > 20.0);
        const double moved = greatestWay(before, stage.positions());
        step.check("Components moved by", "0", text(moved), "0", moved == 0.0);
    });
}

}  // namespace workbench
