// The control panel, driven through its windows as a person would, beside a running host with the plug-in.
#include <windows.h>
// after windows.h
#include <commctrl.h>

#include <array>
#include <chrono>
#include <fstream>
#include <map>
#include <optional>
#include <thread>

#include "tests/e2e/e2e.h"
#include "workbench/control/panel_window.h"

namespace e2e {
namespace {

using namespace workbench::panel;
using workbench::PanelWindow;

constexpr char kRest[] = "0 0 0 0 0 0";
constexpr int kWay = 40;  // of a drag, in pixels

class Panel : public ::testing::Test {
  protected:
    void start(const std::string& bindings = "") {
        if (!bindings.empty()) workbench::writeTextFile(bindFile(), bindings);
        panel.emplace(bench, bindFile());
    }
    std::filesystem::path bindFile() const { return bench.folder() / "buttons.txt"; }

    std::string axes() { return bench.daemonStatus("axes"); }
    bool waitForAxes(const std::string& wanted) {
        return waitFor([&] { return axes() == wanted; });
    }
    bool waitForCaption(Control id, const std::string& wanted) {
        return waitFor([&] { return panel->caption(id) == wanted; });
    }
    void drag(bool isTurning = false) {
        panel->drag(kWay, 0, isTurning);
        ASSERT_TRUE(waitFor([&] { return axes() != kRest; }));
    }
    void bindBySearch(const char* words) const {
        panel->search(words);
        panel->press(kBind);
    }

    Bench bench{Keys{{"useMapkeyForCommands", "on"}},
                {"ProCmdEnvMdlDisp*Wireframe", "ProCmdEnvMdlDisp*Shading", "ProCmdViewTop"}};
    std::optional<PanelWindow> panel;
};

TEST_F(Panel, DragIsAxesAtTheDaemonAndTheHostSees) {
    start();
    const Pose before = bench.view();
    drag();
    const std::string pushed = axes();
    EXPECT_GT(std::stoi(pushed), 0) << pushed;
    EXPECT_TRUE(pushed.ends_with(" 0 0 0 0 0")) << pushed << ": to the right, and nowhere else";
    EXPECT_TRUE(waitFor([&] { return length(bench.view().origin - before.origin) > 1e-6; }));
    PostMessageW(panel->cap(), WM_MOUSEWHEEL, MAKEWPARAM(MK_LBUTTON, WHEEL_DELTA), 0);
    EXPECT_TRUE(waitFor([&] { return axes().find("0 70 ") != std::string::npos; })) << axes();
    panel->letGo();
    ASSERT_TRUE(waitForAxes(kRest));
    drag(true);
    EXPECT_TRUE(axes().starts_with("0 0 0 0 ")) << axes() << ": turned about the second axis";
}

// Whatever ends a push, the daemon's cap is at rest.
TEST_F(Panel, EveryWayOfLettingGoIsZeros) {
    const std::map<std::string, std::function<void()>> ways = {
        {"button up", [&] { panel->letGo(); }},
        {"capture lost", [&] { SendMessageW(panel->cap(), WM_CANCELMODE, 0, 0); }},
        {"focus lost", [&] { SendMessageW(panel->window(), WM_ACTIVATE, WA_INACTIVE, 0); }},
        {"double click", [&] { PostMessageW(panel->cap(), WM_LBUTTONDBLCLK, 0, MAKELPARAM(100, 100)); }},
        {"closed", [&] { PostMessageW(panel->window(), WM_CLOSE, 0, 0); }},
        {"killed", [&] { panel->process().kill(); }},
    };
    for (const auto& [name, letGo] : ways) {
        SCOPED_TRACE(name);
        start();
        drag();
        letGo();
        EXPECT_TRUE(waitForAxes(kRest)) << axes();
    }
    start();
    panel->press(kHold);
    drag();
    panel->letGo();
    SendMessageW(panel->cap(), WM_NULL, 0, 0);
    EXPECT_NE(axes(), kRest) << "held";
    panel->process().kill();
    EXPECT_TRUE(waitForAxes(kRest)) << "held by nobody";
}

TEST_F(Panel, DaemonThatGoesAndReturnsFindsTheCapAtRest) {
    start();
    panel->press(kHold);
    drag();
    bench.killDaemon();
    ASSERT_TRUE(waitFor([&] { return !IsWindowEnabled(panel->control(kDie)); }));
    bench.startDaemon();
    ASSERT_TRUE(waitFor([&] { return IsWindowEnabled(panel->control(kDie)); }));
    EXPECT_EQ(axes(), kRest);
    panel->letGo();
    drag();
}

TEST_F(Panel, BoundBySearchPressedAndRunInTheHostPerMode) {
    bench.host("model GEARBOX.ASM");
    ASSERT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; }));
    start();
    bindBySearch("wirefr");
    panel->chooseMode("Assembly");
    bindBySearch("view top");
    EXPECT_EQ(workbench::readTextFile(bindFile()),
              "[Assembly]\n1 = ProCmdViewTop\n[Default]\n1 = ProCmdEnvMdlDisp*Wireframe\n");
    EXPECT_TRUE(waitForCaption(kFirstButton, "1\nLabel of ProCmdViewTop")) << panel->caption(kFirstButton);
    SetForegroundWindow(panel->window());  // where a person's click would bring it; the command needs the host in front
    const std::string before = bench.host("view").at(0);
    panel->press(kFirstButton);
    EXPECT_TRUE(waitFor([&] { return bench.host("view").at(0) != before; }));
    EXPECT_EQ(bench.status("style"), "Shading");

    panel->press(kUndo);  // the assembly's own binding goes
    EXPECT_TRUE(waitForCaption(kFirstButton, "1\nLabel of ProCmdEnvMdlDisp*Wireframe")) << panel->caption(kFirstButton);
    PostMessageW(panel->cap(), WM_KEYDOWN, '1', 0);
    EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));
}

// What a message points to must lie in the panel's own memory.
class PanelMemory {
  public:
    PanelMemory(const workbench::Process& process, const void* content, std::size_t size)
        : mProcess(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, process.id())),
          mPlace(VirtualAllocEx(mProcess.get(), nullptr, size, MEM_COMMIT, PAGE_READWRITE)) {
        if (!WriteProcessMemory(mProcess.get(), mPlace, content, size, nullptr)) mPlace = nullptr;
    }
    LPARAM place() const { return reinterpret_cast<LPARAM>(mPlace); }

  private:
    workbench::Handle mProcess;
    void* mPlace;  // goes with the process
};

int rowHeight(HWND list) {
    const auto heightOf = [&](WPARAM rows) {
        return HIWORD(SendMessageW(list, LVM_APPROXIMATEVIEWRECT, rows, MAKELPARAM(-1, -1)));
    };
    return heightOf(2) - heightOf(1);
}

RECT areaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}

// The middle of a button's row, on the screen.
POINT rowOfButton(const PanelWindow& panel, int button) {
    const HWND list = panel.control(kButtons);
    const RECT header = areaOf(reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0)));
    return {header.left + 20, header.bottom + rowHeight(list) * (2 * button - 1) / 2};
}

bool hasCapture(HWND window) {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    return GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info) && info.hwndCapture == window;
}

TEST_F(Panel, CommandsAreDraggedToButtonsFromTheTreeAndFromWhatWasFound) {
    start();
    panel->openPage(kBindingsPage);
    const HWND tree = panel->control(kTree), results = panel->control(kResults), page = GetParent(tree);
    const auto drag = [&](HWND from, int x, int y, int button) {
        POINT goal = rowOfButton(*panel, button);
        SetCursorPos(goal.x, goal.y);  // windows are told where the pointer really is, too
        panel->awaitPainted();
        PostMessageW(from, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
        PostMessageW(from, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(x - 30, y + 30));
        ASSERT_TRUE(waitFor([&] { return hasCapture(page); })) << "nothing is dragged";
        ScreenToClient(page, &goal);
        PostMessageW(page, WM_LBUTTONUP, 0, MAKELPARAM(goal.x, goal.y));
    };
    const auto isBindFile = [&](const std::string& text) {
        return waitFor([&] { return workbench::readTextFile(bindFile()) == text; });
    };
    const LRESULT ownMenu = SendMessageW(tree, TVM_GETNEXTITEM, TVGN_ROOT, 0);
    SendMessageW(tree, TVM_EXPAND, TVE_EXPAND, SendMessageW(tree, TVM_GETNEXTITEM, TVGN_NEXT, ownMenu));
    const auto line = static_cast<int>(SendMessageW(tree, TVM_GETITEMHEIGHT, 0, 0));
    drag(tree, 80, line * 7 / 2, 3);  // two menus stand above the first two items
    EXPECT_TRUE(isBindFile("[Default]\n3 = ProCmdEnvMdlDisp*Shading\n")) << workbench::readTextFile(bindFile());
    panel->search("view");
    drag(results, 40, HIWORD(SendMessageW(results, LVM_APPROXIMATEVIEWRECT, 1, MAKELPARAM(-1, -1))) - line / 2, 11);
    EXPECT_TRUE(isBindFile("[Default]\n3 = ProCmdEnvMdlDisp*Shading\n11 = ProCmdViewTop\n"))
        << workbench::readTextFile(bindFile());
}

// The window comes to a screen of another scale, and back, where it keeps its size.
TEST_F(Panel, FollowsTheScaleOfTheScreen) {
    start();
    panel->openPage(kBindingsPage);
    const RECT area{0, 0, 1200, 900};
    const PanelMemory remote(panel->process(), &area, sizeof area);
    const HWND list = panel->control(kButtons), slider = panel->control(kFirstSlider);
    const auto measures = [&] {
        const RECT place = areaOf(slider);
        return std::array{static_cast<int>(place.bottom - place.top), rowHeight(list),
                          static_cast<int>(SendMessageW(list, LVM_GETCOLUMNWIDTH, 0, 0))};
    };
    const auto before = measures();
    SendMessageW(panel->window(), 0x02E0, MAKEWPARAM(192, 192), remote.place());  // WM_DPICHANGED
    const auto doubled = measures();
    EXPECT_EQ(doubled[0], 2 * before[0]);
    EXPECT_GT(doubled[1], before[1] * 3 / 2) << "the font";
    EXPECT_EQ(doubled[2], 2 * before[2]);
    EXPECT_EQ(areaOf(panel->window()).right, area.right) << "as the system wants it";
    SendMessageW(panel->window(), 0x02E0, MAKEWPARAM(96, 96), remote.place());
    EXPECT_EQ(measures(), before);
}

TEST_F(Panel, BindingsToCommandsThatAreGoneAreShownAndKept) {
    start("# mine\n[Default]\n1 = ProCmdGone\n2 = ProCmdViewTop\n");
    EXPECT_EQ(panel->caption(kFirstButton), "1\nno longer in the menu file: ProCmdGone");
    EXPECT_EQ(panel->caption(kFirstButton, 1), "2\nLabel of ProCmdViewTop");
    panel->chooseMode("Assembly");
    bindBySearch("shading");
    EXPECT_EQ(workbench::readTextFile(bindFile()),
              "# mine\n[Assembly]\n1 = ProCmdEnvMdlDisp*Shading\n[Default]\n1 = ProCmdGone\n2 = ProCmdViewTop\n");
}

TEST_F(Panel, BindFileThatSomebodyReadsIsWrittenAMomentLater) {
    start("[Default]\n1 = ProCmdViewTop\n");
    std::ifstream reader(bindFile());
    ASSERT_TRUE(reader.is_open());
    const std::jthread ends([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        reader.close();
    });
    bindBySearch("shading");
    EXPECT_EQ(workbench::readTextFile(bindFile()), "[Default]\n1 = ProCmdEnvMdlDisp*Shading\n");
}

TEST_F(Panel, DamagedBindFileIsNotLost) {
    start("[Default]\n1 = ProCmdViewTop\nnonsense\n");
    EXPECT_TRUE(waitFor([&] { return panel->caption(kStatus).find("buttons.txt:3: neither") != std::string::npos; }))
        << panel->caption(kStatus);
    bindBySearch("shading");
    EXPECT_EQ(workbench::readTextFile(bindFile()), "[Default]\n1 = ProCmdEnvMdlDisp*Shading\n");
    EXPECT_EQ(workbench::readTextFile(bindFile().string() + ".damaged"), "[Default]\n1 = ProCmdViewTop\nnonsense\n");
}

// How far a push goes depends on how often the plug-in looks, so the way is compared by its direction; the view that an
// event sets is the same to the last digit.
TEST_F(Panel, RecordIsReplayedInTheHost) {
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
    const auto place = [&] { return bench.positions().at(41).origin; };
    const auto way = [&](const Vector& from) { return place() - from; };
    const Vector start = place();
    const auto setView = [&](const char* event) {
        const std::string before = bench.host("view").at(0);
        bench.daemon(event);
        ASSERT_TRUE(waitFor([&] { return bench.host("view").at(0) != before; }));
    };
    setView("event 0x20009");
    bench.daemon("record record.txt");
    bench.push(120, 0, 60, 0, 0, 0);
    ASSERT_TRUE(waitFor([&] { return length(way(start)) > 5.0; }));
    bench.release();
    setView("event 0x2000A");
    bench.daemon("record off");
    const Vector first = way(start);
    const std::string view = bench.host("view").at(0);

    setView("event 0x20009");
    bench.host("undo");
    ASSERT_LT(length(way(start)), 1e-9);
    bench.selectForMoving("41");
    bench.daemon("replay record.txt");
    EXPECT_TRUE(waitFor([&] { return bench.host("view").at(0) == view; }));
    bench.awaitTick();
    EXPECT_EQ(axes(), kRest);
    const Vector again = way(start);
    EXPECT_GT(length(again), 1.0);
    EXPECT_LT(length(workbench::normalised(again) - workbench::normalised(first)), 1e-6);
}

}  // namespace
}  // namespace e2e
