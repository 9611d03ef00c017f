// The control panel, driven through its windows as a person would, beside a running host with the plug-in.
#include <map>

#include "tests/e2e/e2e.h"
#include "workbench/control/process.h"

namespace e2e {
namespace {

using workbench::kPatienceMs;
using workbench::Process;

constexpr char kRest[] = "0 0 0 0 0 0";
constexpr int kHold = 110, kModes = 400, kButtons = 401, kSearch = 402, kBind = 405, kUndo = 407, kFirstButton = 200;
constexpr int kAssemblyRow = 6;  // behind "all modes"

struct Search {
    DWORD process;
    int id;
    std::wstring className;
    HWND found;
};

BOOL CALLBACK takeIfWanted(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search.process) return TRUE;
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    const bool isWanted = search.className.empty() ? GetDlgCtrlID(window) == search.id : name == search.className;
    if (isWanted) search.found = window;
    if (!isWanted) EnumChildWindows(window, takeIfWanted, parameter);
    return search.found == nullptr;
}

class Panel : public ::testing::Test {
  protected:
    void start(const std::string& bindings = "") {
        if (!bindings.empty()) workbench::writeTextFile(bindFile(), bindings);
        mPanel.emplace(bench.start(workbench::buildFolder() / "workbench" / "obk_panel.exe",
                                   {"--language", "english", "--bindings", bindFile().string()},
                                   bench.folder() / "panel.txt"));
        ASSERT_TRUE(waitFor([&] { return cap() != nullptr && IsWindowVisible(cap()); }))
            << workbench::readTextFile(bench.folder() / "panel.txt");
        ASSERT_TRUE(waitFor([&] { return IsWindowEnabled(find(504, L"")); })) << "the panel has found the daemon";
    }
    std::filesystem::path bindFile() const { return bench.folder() / "buttons.txt"; }

    HWND find(int id, const std::wstring& className) const {
        Search search{mPanel->id(), id, className, nullptr};
        EnumWindows(takeIfWanted, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }
    HWND control(int id) const { return find(id, L""); }
    HWND cap() const { return find(0, L"ObkPanelCap"); }
    HWND top() const { return GetAncestor(cap(), GA_ROOT); }
    std::string caption(HWND window) const {
        char text[512] = "";
        SendMessageA(window, WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
        return text;
    }
    std::string axes() { return bench.daemonStatus("axes"); }
    bool waitForAxes(const std::string& wanted) {
        return waitFor([&] { return axes() == wanted; });
    }
    static LPARAM at(int x, int y) { return MAKELPARAM(x, y); }
    void drag(UINT down = WM_LBUTTONDOWN) {
        POINT goal{140, 100};  // the system tells a window that takes the mouse where the pointer really is
        ClientToScreen(cap(), &goal);
        SetCursorPos(goal.x, goal.y);
        PostMessageW(cap(), down, 0, at(100, 100));
        PostMessageW(cap(), WM_MOUSEMOVE, MK_LBUTTON, at(140, 100));
        ASSERT_TRUE(waitFor([&] { return axes() != kRest; }));
    }
    void choose(int row) const {
        SendMessageW(control(kModes), LB_SETCURSEL, static_cast<WPARAM>(row), 0);
        SendMessageW(GetParent(control(kModes)), WM_COMMAND, MAKEWPARAM(kModes, LBN_SELCHANGE),
                     reinterpret_cast<LPARAM>(control(kModes)));
    }
    void bindBySearch(const char* words) const {
        SendMessageA(control(kSearch), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(words));
        SendMessageW(control(kBind), BM_CLICK, 0, 0);
    }

    Bench bench{Keys{{"useMapkeyForCommands", "on"}},
                {"ProCmdEnvMdlDisp*Wireframe", "ProCmdEnvMdlDisp*Shading", "ProCmdViewTop"}};
    std::optional<Process> mPanel;
};

TEST_F(Panel, DragIsAxesAtTheDaemonAndTheHostSees) {
    start();
    const Pose before = bench.view();
    drag();
    const std::string pushed = axes();
    EXPECT_GT(std::stoi(pushed), 0) << pushed;
    EXPECT_TRUE(pushed.ends_with(" 0 0 0 0 0")) << pushed << ": to the right, and nowhere else";
    EXPECT_TRUE(waitFor([&] { return length(bench.view().origin - before.origin) > 1e-6; }));
    PostMessageW(cap(), WM_MOUSEWHEEL, MAKEWPARAM(MK_LBUTTON, WHEEL_DELTA), 0);
    EXPECT_TRUE(waitFor([&] { return axes().find("0 70 ") != std::string::npos; })) << axes();
    PostMessageW(cap(), WM_LBUTTONUP, 0, at(140, 100));
    ASSERT_TRUE(waitForAxes(kRest));
    drag(WM_RBUTTONDOWN);
    EXPECT_TRUE(axes().starts_with("0 0 0 0 ")) << axes() << ": turned about the second axis";
}

// Whatever ends a push, the daemon's cap is at rest.
TEST_F(Panel, EveryWayOfLettingGoIsZeros) {
    const std::map<std::string, std::function<void()>> ways = {
        {"button up", [&] { PostMessageW(cap(), WM_LBUTTONUP, 0, at(140, 100)); }},
        {"capture lost", [&] { SendMessageW(cap(), WM_CANCELMODE, 0, 0); }},
        {"focus lost", [&] { SendMessageW(top(), WM_ACTIVATE, WA_INACTIVE, 0); }},
        {"double click", [&] { PostMessageW(cap(), WM_LBUTTONDBLCLK, 0, at(100, 100)); }},
        {"closed", [&] { PostMessageW(top(), WM_CLOSE, 0, 0); }},
        {"killed", [&] { mPanel->kill(); }},
    };
    for (const auto& [name, letGo] : ways) {
        SCOPED_TRACE(name);
        start();
        drag();
        letGo();
        EXPECT_TRUE(waitForAxes(kRest)) << axes();
    }
    start();
    SendMessageW(control(kHold), BM_CLICK, 0, 0);
    drag();
    PostMessageW(cap(), WM_LBUTTONUP, 0, at(140, 100));
    SendMessageW(cap(), WM_NULL, 0, 0);
    EXPECT_NE(axes(), kRest) << "held";
    mPanel->kill();
    EXPECT_TRUE(waitForAxes(kRest)) << "held by nobody";
}

TEST_F(Panel, DaemonThatGoesAndReturnsFindsTheCapAtRest) {
    start();
    SendMessageW(control(kHold), BM_CLICK, 0, 0);
    drag();
    bench.killDaemon();
    ASSERT_TRUE(waitFor([&] { return !IsWindowEnabled(control(504)); }));
    bench.startDaemon();
    ASSERT_TRUE(waitFor([&] { return IsWindowEnabled(control(504)); }));
    EXPECT_EQ(axes(), kRest);
    PostMessageW(cap(), WM_LBUTTONUP, 0, at(140, 100));
    drag();
}

TEST_F(Panel, BoundBySearchPressedAndRunInTheHostPerMode) {
    bench.host("model GEARBOX.ASM");
    ASSERT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; }));
    start();
    bindBySearch("wirefr");
    choose(kAssemblyRow);
    bindBySearch("view top");
    EXPECT_EQ(workbench::readTextFile(bindFile()),
              "[Assembly]\n1 = ProCmdViewTop\n[Default]\n1 = ProCmdEnvMdlDisp*Wireframe\n");
    EXPECT_TRUE(waitFor([&] { return caption(control(kFirstButton)) == "1\nLabel of ProCmdViewTop"; }))
        << caption(control(kFirstButton));
    SetForegroundWindow(top());  // where a person's click would bring it; the command needs the host in front
    const std::string before = bench.host("view").at(0);
    SendMessageW(control(kFirstButton), BM_CLICK, 0, 0);
    EXPECT_TRUE(waitFor([&] { return bench.host("view").at(0) != before; }));
    EXPECT_EQ(bench.status("style"), "Shading");

    SendMessageW(control(kUndo), BM_CLICK, 0, 0);  // the assembly's own binding goes
    EXPECT_TRUE(waitFor([&] { return caption(control(kFirstButton)) == "1\nLabel of ProCmdEnvMdlDisp*Wireframe"; }))
        << caption(control(kFirstButton));
    PostMessageW(cap(), WM_KEYDOWN, '1', 0);
    EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));
}

TEST_F(Panel, BindingsToCommandsThatAreGoneAreShownAndKept) {
    start("# mine\n[Default]\n1 = ProCmdGone\n2 = ProCmdViewTop\n");
    EXPECT_EQ(caption(control(kFirstButton)), "1\nno longer in the menu file: ProCmdGone");
    EXPECT_EQ(caption(control(kFirstButton + 1)), "2\nLabel of ProCmdViewTop");
    choose(kAssemblyRow);
    bindBySearch("shading");
    EXPECT_EQ(workbench::readTextFile(bindFile()),
              "# mine\n[Assembly]\n1 = ProCmdEnvMdlDisp*Shading\n[Default]\n1 = ProCmdGone\n2 = ProCmdViewTop\n");
}

TEST_F(Panel, DamagedBindFileIsNotLost) {
    start("[Default]\n1 = ProCmdViewTop\nnonsense\n");
    EXPECT_TRUE(waitFor([&] { return caption(control(115)).find("buttons.txt:3: neither") != std::string::npos; }))
        << caption(control(115));
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
