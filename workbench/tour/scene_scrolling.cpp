// Controls under the mouse pointer scroll with the cap.
#include <cstdio>
#include <cstdlib>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr int kLines = 6;

struct Bars {
    int vertical = 0, horizontal = 0;  // positions of the scroll bars, as far as the window has them
    int top = 0;                       // first line shown
    int wheel = 0;                     // notches received
};

Bars barsOf(Stage& stage, const std::string& window) {
    Bars bars;
    for (const std::string& line : stage.bench().host("scroll " + window)) {
        char name[16] = "";
        int numbers[4] = {};
        const int read =
            std::sscanf(line.c_str(), "%15s %d %d %d %d", name, &numbers[0], &numbers[1], &numbers[2], &numbers[3]);
        const std::string key = name;
        if (key == "vertical" && read == 5) bars.vertical = numbers[3];
        if (key == "horizontal" && read == 5) bars.horizontal = numbers[3];
        if (key == "top" && read == 2) bars.top = numbers[0];
        if (key == "wheel" && read == 2) bars.wheel = numbers[0];
    }
    return bars;
}

enum class Watched { top, horizontal, wheel };

int watchedOf(const Bars& bars, Watched watched) {
    return watched == Watched::top ? bars.top : watched == Watched::horizontal ? bars.horizontal : bars.wheel;
}

struct ListCase {
    const char* title;
    const char* action;
    const char* panel;
    const char* window;
    Push push;
    Watched watched;
    const char* what;
    int change;  // at least; the sign counts
};
constexpr ListCase kLists[] = {
    {"List view (SysListView32), downwards",
     "Pointer on the list view; the cap was pulled (tz = 150).",
     "properties",
     "listview",
     {.tz = 150},
     Watched::top,
     "First row shown",
     8},
    {"List view, sideways",
     "The cap was pushed to the right (tx = 150).",
     "properties",
     "listview",
     {.tx = 150},
     Watched::horizontal,
     "Horizontal position",
     40},
    {"List box (ListBox), downwards by pushing down",
     "Pointer on the list box; the cap was pushed down (ty = -150).",
     "library",
     "listbox",
     {.ty = -150},
     Watched::top,
     "First row shown",
     8},
    {"List box, sideways",
     "The cap was pushed to the right (tx = 150).",
     "library",
     "listbox",
     {.tx = 150},
     Watched::horizontal,
     "Horizontal position",
     40},
    {"Window that knows the wheel only (uintGraphDrawArea)",
     "Pointer on the diagram; the cap was pulled (tz = 150).",
     "tables",
     "graphdraw",
     {.tz = 150},
     Watched::wheel,
     "Notches of the wheel received",
     -4},
};

bool isReached(int from, int now, int change) { return change > 0 ? now >= from + change : now <= from + change; }

void playList(Stage& stage, Step& step, const ListCase& list) {
    Workbench& bench = stage.bench();
    bench.host(std::string("panel ") + list.panel);
    bench.host(std::string("cursor ") + list.window);
    const bool isClaimed = waitFor([&] { return bench.daemonStatus("legacy") == "0"; });
    step.check("LegacyCOM1 once the pointer is there", "", bench.daemonStatus("legacy"), "0 (claimed)", isClaimed);
    const Vector row = stage.view().axes[0];
    const Bars before = barsOf(stage, list.window);
    stage.shoot(step, {"Before.", true});
    stage.pushUntil(step, {"While the cap is pushed.", true}, list.push, [&] {
        return isReached(watchedOf(before, list.watched), watchedOf(barsOf(stage, list.window), list.watched),
                         list.change);
    });
    const Bars after = barsOf(stage, list.window);
    const int from = watchedOf(before, list.watched);
    const int to = watchedOf(after, list.watched);
    step.check(list.what, std::to_string(from), std::to_string(to),
               (list.change > 0 ? "at least " : "at most ") + std::to_string(from + list.change),
               isReached(from, to, list.change));
    if (list.watched == Watched::wheel) {
        step.check("First line shown", std::to_string(before.top), std::to_string(after.top), "further down",
                   after.top > before.top);
    }
    if (list.watched == Watched::horizontal) {
        step.check("First row shown", std::to_string(before.top), std::to_string(after.top), "unchanged",
                   before.top == after.top);
    }
    const double viewMoved = length(stage.view().axes[0] - row);
    step.check("View changed by", "", text(viewMoved), "0", viewMoved == 0.0);
}

void scrollTree(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    bench.host("cursor tree");
    const Bars before = barsOf(stage, "tree");
    stage.shoot(step, {"Before: the pointer is on the model tree.", true});
    const bool isScrolled = stage.pushUntil(step, {"The tree scrolls down while the cap is pulled.", true}, {.tz = 120},
                                            [&] { return barsOf(stage, "tree").top >= before.top + kLines; });
    step.check("LegacyCOM1", "1", bench.daemonStatus("legacy"), "0 (claimed)", bench.daemonStatus("legacy") == "0");
    const Bars after = barsOf(stage, "tree");
    step.check("First row shown", std::to_string(before.top), std::to_string(after.top),
               "at least " + std::to_string(before.top + kLines), isScrolled);
}

void scrollTreeBack(Stage& stage, Step& step) {
    const int from = barsOf(stage, "tree").top;
    const bool isBack = stage.pushUntil(step, {"The tree shows its beginning, with the cap still lifted.", true},
                                        {.ty = 120}, [&] { return barsOf(stage, "tree").top == 0; });
    step.check("First row shown", std::to_string(from), std::to_string(barsOf(stage, "tree").top), "0",
               isBack && from > 0);
}

void leaveTree(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    stage.push({.tz = 40});
    const bool isMoving = waitFor([&] { return barsOf(stage, "tree").top >= 2; });
    step.check("Tree scrolls while the pointer is on it, first row", "0", std::to_string(barsOf(stage, "tree").top),
               "at least 2", isMoving);
    bench.host("cursor graphics");
    const bool isOver = waitFor([&] { return bench.daemonStatus("legacy") == "1"; });
    step.check("LegacyCOM1 once the pointer is on the graphics", "0", bench.daemonStatus("legacy"), "1", isOver);
    const int left = barsOf(stage, "tree").top;
    const int motions = stage.number("legacy_motions");
    const bool isViewMoving = waitFor([&] { return stage.number("legacy_motions") >= motions + 10; });
    const int later = barsOf(stage, "tree").top;
    step.check("First row shown, the cap still pushed", std::to_string(left), std::to_string(later), "unchanged",
               left == later);
    step.check("Motions of the view meanwhile", "0", std::to_string(stage.number("legacy_motions") - motions),
               "at least 10: the view has them now", isViewMoving);
    stage.shoot(step, {"The tree has stopped; the motion zooms the view instead.", true});
    stage.release();
}

// Equal drive in both directions is consumed, but scrolls nothing.
void pushEvenly(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    bench.host("panel properties");
    bench.host("cursor listview");
    stage.push({.tz = 150});
    waitFor([&] { return barsOf(stage, "listview").top >= kLines; });
    stage.release();
    const Bars before = barsOf(stage, "listview");
    const Pose view = stage.view();
    stage.push({.tx = 120, .tz = 120});
    waitFor([&] { return bench.daemonStatus("legacy") == "0"; });
    stage.awaitTicks();
    stage.awaitTicks();
    const std::string legacy = bench.daemonStatus("legacy");
    stage.shoot(step, {"Neither the list nor the view moves.", true});
    stage.release();
    const Bars after = barsOf(stage, "listview");
    const auto placeOf = [](const Bars& bars) {
        return "row " + std::to_string(bars.top) + ", " + std::to_string(bars.horizontal) + " to the right";
    };
    step.check("Place of the list view", placeOf(before), placeOf(after), "unchanged",
               before.top == after.top && before.horizontal == after.horizontal);
    step.check("LegacyCOM1", "", legacy, "0 (claimed)", legacy == "0");
    const double viewMoved = greatestWay(view, stage.view());
    step.check("View changed by", "", text(viewMoved), "0", viewMoved == 0.0);
}

}  // namespace

void playTreeScrolling(Stage& stage) {
    stage.open();
    stage.step("Tree scrolls down", "The pointer was put on the tree and the cap pulled (tz = 120).",
               [&](Step& step) { scrollTree(stage, step); });
    stage.step("Tree scrolls up", "The cap was lifted (ty = 120).", [&](Step& step) { scrollTreeBack(stage, step); });
    stage.step("Pointer leaves the tree", "With the cap pulled (tz = 40) the pointer was moved to the graphics.",
               [&](Step& step) { leaveTree(stage, step); });
}

void playListScrolling(Stage& stage) {
    stage.open();
    for (const ListCase& list : kLists) {
        stage.step(list.title, list.action, [&](Step& step) { playList(stage, step, list); });
    }
    stage.step("Equal drive in both directions", "The cap was pushed right and pulled equally (tx = tz = 120).",
               [&](Step& step) { pushEvenly(stage, step); });
}

}  // namespace workbench
