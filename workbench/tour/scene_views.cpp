// Standard views by the device's special buttons.
#include <cmath>
#include <cstdio>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

using Rows = std::array<Vector, 3>;

// The angles that the buttons turn by are truncated after the sixth digit.
constexpr double kTolerance = 1e-5;
constexpr int kFit = 0x2000C;

struct StandardView {
    int event;
    const char* title;
    Rows rows;  // where the view shows the model's axes: right, up, towards the viewer
};
constexpr StandardView kViews[] = {
    {0x20009, "x right, y up", {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}},
    {0x2000A, "z right, y up", {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}}},
    {0x2000B, "x right, z up", {{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}}},
    {0x20016, "x left, y up", {{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}},
    {0x20017, "z left, y up", {{{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}}}},
    {0x20018, "x right, z down", {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}}},
};

std::string hex(int code) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(code));
    return text;
}

double difference(const Rows& a, const Rows& b) {
    double greatest = 0.0;
    for (std::size_t i = 0; i < 3; ++i) greatest = std::max(greatest, length(a[i] - b[i]));
    return greatest;
}

void playView(Stage& stage, Step& step, const StandardView& wanted) {
    const Poses components = stage.positions();
    const Rows before = stage.viewRows();
    stage.bench().daemon("event " + std::to_string(wanted.event));
    waitFor([&] { return difference(stage.viewRows(), wanted.rows) < kTolerance; });
    const Rows after = stage.viewRows();
    constexpr const char* kAxes[] = {"x", "y", "z"};
    for (std::size_t i = 0; i < 3; ++i) {
        step.check(std::string("Model's ") + kAxes[i] + " axis on the screen", text(before[i], 3), text(after[i], 3),
                   text(wanted.rows[i], 0), length(after[i] - wanted.rows[i]) < kTolerance);
    }
    const double moved = greatestWay(components, stage.positions());
    step.check("Components moved by", "", text(moved), "0", moved == 0.0);
    stage.shoot(step, std::string("View with ") + wanted.title + "; the triad at the lower left shows the axes.");
}

void playFit(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    bench.host("command ProCmdViewDefault");
    bench.host("command ProCmdViewRefit");
    const Pose fitted = stage.view();  // by the host's own command
    for (int i = 0; i < 5; ++i) bench.host("command ProCmdViewZoomIn");
    const Pose before = stage.view();
    stage.shoot(step, "Before: zoomed in too far.");
    bench.daemon("event " + std::to_string(kFit));
    waitFor([&] { return greatestWay(stage.view(), fitted) < kTolerance; });
    const Pose after = stage.view();
    step.check("Scale, pixels per model unit", text(length(before.axes[0])), text(length(after.axes[0])),
               text(length(fitted.axes[0])) + ", as the host's own Refit",
               std::abs(length(after.axes[0]) - length(fitted.axes[0])) < kTolerance);
    step.check("Difference from the host's own Refit", text(greatestWay(before, fitted)),
               text(greatestWay(after, fitted)), "0", greatestWay(after, fitted) < kTolerance);
    stage.shoot(step, "After: the assembly fits the window.");
}

}  // namespace

void playStandardViews(Stage& stage) {
    stage.open();
    for (const StandardView& view : kViews) {
        stage.step("Event " + hex(view.event) + ": " + view.title,
                   "The device sent the special event " + hex(view.event) + ".",
                   [&](Step& step) { playView(stage, step, view); });
    }
    stage.step("Event " + hex(kFit) + ": fit", "After zooming in, the device sent the special event " + hex(kFit) + ".",
               [&](Step& step) { playFit(stage, step); });
}

}  // namespace workbench
