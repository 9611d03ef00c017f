// The cap scrolls what is under the mouse pointer, on the host's real windows.
#include <cmath>

#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

struct BarState {
    int min, max, page, pos;
};

class Scroll : public ::testing::Test {
  protected:
    Bench bench{Keys{{"scrollTreeAndList", "on"}}};

    void SetUp() override { bench.host("front main"); }

    BarState bar(const std::string& window, const std::string& name) {
        for (const std::string& line : bench.host("scroll " + window)) {
            std::istringstream stream(line);
            std::string kind;
            BarState state{};
            stream >> kind >> state.min >> state.max >> state.page >> state.pos;
            if (kind == name && stream) return state;
        }
        throw std::runtime_error(window + " has no " + name + " bar");
    }
    int value(const std::string& window, const std::string& name) {
        for (const std::string& line : bench.host("scroll " + window)) {
            if (line.starts_with(name + " ")) return std::stoi(line.substr(name.size() + 1));
        }
        throw std::runtime_error(window + " has no " + name);
    }
    int pos(const std::string& window, bool isVertical = true) {
        return bar(window, isVertical ? "vertical" : "horizontal").pos;
    }
    // Nothing moves although the tick ran: the log's clock of it is the legacy channel's state and a second reading.
    void expectAtRest(const std::string& window) {
        const auto before = bench.host("scroll " + window);
        EXPECT_FALSE(waitFor([&] { return bench.host("scroll " + window) != before; }, 600)) << window;
    }
};

struct BarWindow {
    const char* panel;
    const char* window;
    bool isHorizontal;
};

TEST_F(Scroll, WindowsWithScrollBars) {
    for (const auto& [panel, window, isHorizontal] : {BarWindow{"properties", "listview", true},
                                                      {"properties", "edit", true},
                                                      {"library", "listbox", true},
                                                      {"library", "treeview", true},
                                                      {"tables", "gxwnd", true}}) {
        SCOPED_TRACE(window);
        bench.host("panel " + std::string(panel));
        bench.host("cursor " + std::string(window));
        const int start = pos(window);
        bench.push(0, 0, 200, 0, 0, 0);  // pulled towards the user: down
        EXPECT_TRUE(waitFor([&] { return pos(window) > start; }));
        bench.push(0, 250, 200, 0, 0, 0);  // the larger of two wins, and up is up
        EXPECT_TRUE(waitFor([&] { return pos(window) == 0; }));
        if (isHorizontal) {
            bench.push(250, 0, 100, 0, 0, 0);
            EXPECT_TRUE(waitFor([&] { return pos(window, false) > 0; }));
            bench.push(-250, 0, 100, 0, 0, 0);
            EXPECT_TRUE(waitFor([&] { return pos(window, false) == 0; }));
        }
        EXPECT_EQ(bench.daemonStatus("legacy"), "0") << "the view does not get this motion";
        bench.release();
    }
}

TEST_F(Scroll, EndsAreRespectedAndTheMotionStaysConsumed) {
    bench.host("panel library");
    bench.host("cursor listbox");
    const Pose view = bench.view();
    bench.push(0, 0, 350, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] {
        const BarState state = bar("listbox", "vertical");
        return state.pos + state.page > state.max;
    }));
    expectAtRest("listbox");
    EXPECT_EQ(bench.daemonStatus("legacy"), "0");
    bench.release();
    EXPECT_LT(length(bench.view().axes[0] - view.axes[0]), 1e-9);
}

TEST_F(Scroll, EqualDriveConsumesWithoutMoving) {
    bench.host("panel library");
    bench.host("cursor listbox");
    bench.push(100, 0, 100, 0, 0, 0);
    expectAtRest("listbox");
    EXPECT_EQ(bench.daemonStatus("legacy"), "0");
    bench.push(-100, 100, 0, 0, 0, 0);
    expectAtRest("listbox");
    bench.release();
}

TEST_F(Scroll, TreeStopsWhenThePointerLeaves) {
    bench.host("cursor tree");
    const int start = pos("tree");
    bench.push(0, 0, 150, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return pos("tree") > start; }));
    bench.host("cursor graphics");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "1"; }));
    expectAtRest("tree");
    bench.release();
}

TEST_F(Scroll, WheelWindows) {
    for (const auto& [panel, window] :
         {std::pair{"tables", "graphdraw"}, {"results", "list"}, {"results", "wheeltree"}, {"browser", "browser"}}) {
        SCOPED_TRACE(window);
        bench.host("panel " + std::string(panel));
        bench.host("cursor " + std::string(window));
        bench.push(0, 0, 200, 0, 0, 0);
        EXPECT_TRUE(waitFor([&] { return value(window, "top") > 0; }));
        bench.push(0, 0, -200, 0, 0, 0);
        EXPECT_TRUE(waitFor([&] { return value(window, "top") == 0; }));
        bench.push(200, 0, 0, 0, 0, 0);  // sideways turns the same wheel
        EXPECT_TRUE(waitFor([&] { return value(window, "top") > 0; }));
        bench.release();
    }
    bench.host("cursor toolbar");
    const int offset = value("toolbar", "offset");
    bench.push(0, 0, 200, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return value("toolbar", "offset") != offset; }));
    bench.release();
}

// One notch by its sign, nothing else in the word; the pointer's place on the screen in the other.
TEST_F(Scroll, WheelMessagesToTheBit) {
    constexpr int kTowardsTheTop = 0x00780000;
    constexpr int kTowardsTheEnd = static_cast<int>(0xFF880000);
    bench.host("panel results");
    bench.host("cursor list");
    POINT pointer{};
    ASSERT_TRUE(GetCursorPos(&pointer));
    const int place = pointer.y << 16 | pointer.x;
    struct Case {
        int tx, ty, tz;
        int wParam;
    };
    for (const auto& [tx, ty, tz, wParam] : {Case{0, 0, 200, kTowardsTheEnd},
                                             {0, 200, 0, kTowardsTheTop},
                                             {100, 0, 0, kTowardsTheEnd},
                                             {-100, 0, 50, kTowardsTheTop}}) {
        bench.push(tx, ty, tz, 0, 0, 0);
        EXPECT_TRUE(waitFor([&] { return value("list", "wheel_wparam") == wParam; })) << tx << " " << ty << " " << tz;
        EXPECT_EQ(value("list", "wheel_lparam"), place);
    }
    bench.release();
}

// Two siblings lie upon each other: the smaller one under the pointer scrolls, the larger one beside it.
TEST_F(Scroll, SmallestOfOverlappingSiblings) {
    bench.host("panel palette");
    bench.host("cursor overlap_small");
    bench.push(0, 0, 150, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return pos("overlap_small") > 0; }));
    EXPECT_EQ(pos("overlap_large"), 0);
    bench.release();
    RECT rect{};
    for (const std::string& line : bench.host("windows")) {
        std::istringstream stream(line);
        std::string name, className, handle;
        stream >> name >> className >> handle;
        if (name == "overlap_large") stream >> rect.left >> rect.top >> rect.right >> rect.bottom;
    }
    ASSERT_GT(rect.right, rect.left);
    bench.host("cursor " + std::to_string((rect.left + rect.right) / 2) + " " + std::to_string(rect.bottom - 25));
    const int small = pos("overlap_small");
    bench.push(0, 0, 150, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return pos("overlap_large") > 0; }));
    EXPECT_EQ(pos("overlap_small"), small);
    bench.release();
}

// Only controls of the window in front scroll; and nothing does when scrolling is off.
TEST_F(Scroll, OnlyInTheWindowInFrontAndOnlyWhenSwitchedOn) {
    bench.host("panel library");
    bench.host("front accessory");  // beside the list, not upon it
    bench.host("cursor listbox");
    bench.push(0, 0, 150, 0, 0, 0);
    expectAtRest("listbox");
    EXPECT_EQ(bench.daemonStatus("legacy"), "1");
    bench.host("front main");
    EXPECT_TRUE(waitFor([&] { return pos("listbox") > 0; }));
    bench.host("menu click Toggle Scroll Mode");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "1"; }));
    expectAtRest("listbox");
    bench.release();
}

}  // namespace
}  // namespace e2e
