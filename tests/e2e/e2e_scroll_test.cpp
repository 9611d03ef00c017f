// The cap scrolls what is under the mouse pointer, on the host's real windows.
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
    // The plug-in has seen what the cap does, and nothing moves.
    void expectAtRest(const std::string& window) {
        bench.awaitTick();
        const auto before = bench.host("scroll " + window);
        bench.awaitTick();
        EXPECT_EQ(bench.host("scroll " + window), before) << window;
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
