// The Creo side on windows of this program: the search for Creo's windows, the timer, scrolling, the mapkey's keys.
#include <windows.h>

#include <commctrl.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <utility>

#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "common_sources/legacy_com1.h"
#include "common_sources/life_cycle.h"
#include "common_sources/settings.h"
#include "tests/substitutes/driver.h"
#include "tests/substitutes/system.h"
#include "tests/substitutes/toolkit.h"
#include "tests/substitutes/windows_calls.h"
#include "tests/unit/scratch.h"

namespace {

using substitute::system;
using substitute::toolkit;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Timer = substitute::System::Timer;
using Kind = CreoProxy::ScrollKind;

constexpr char kTop[] = "OrbikonTestTop";
constexpr char kPlain[] = "OrbikonTestPlain";
constexpr char kGraphics[] = "PGLWindow";
constexpr UINT kHang = WM_APP, kEnd = WM_APP + 1;  // lParam of the first: two events, "hangs" and "go on"
constexpr UINT kRest = 100, kMoving = 10;
constexpr LPARAM kReleased = static_cast<LPARAM>(0xC0000001);

struct Message {
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const Message&) const = default;
};
std::vector<Message> scrolled;  // scroll messages that arrived, in any window

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_VSCROLL || message == WM_HSCROLL) scrolled.push_back({message, wParam, lParam});
    if (message == kEnd) PostQuitMessage(0);
    if (message == kHang) {
        const auto* events = reinterpret_cast<const HANDLE*>(lParam);
        SetEvent(events[0]);
        WaitForSingleObject(events[1], INFINITE);
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

HWND make(const char* className, HWND parent, const RECT& place = {0, 0, 100, 100}, DWORD style = WS_VISIBLE) {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = className;
    WNDCLASSA known;
    if (!GetClassInfoA(windowClass.hInstance, className, &known)) RegisterClassA(&windowClass);
    const HWND window = CreateWindowExA(0, className, "", style | (parent != nullptr ? WS_CHILD : WS_POPUP), place.left,
                                        place.top, place.right - place.left, place.bottom - place.top, parent, nullptr,
                                        windowClass.hInstance, nullptr);
    if (window == nullptr) throw std::runtime_error(std::string("no window of class ") + className);
    if (parent != nullptr) SetWindowPos(window, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
    return window;
}

void setRange(HWND window, int bar, int min, int max, UINT page, int position) {
    const SCROLLINFO info{sizeof info, SIF_ALL, min, max, page, position, 0};
    SetScrollInfo(window, bar, &info, FALSE);
}

// Posted messages of a range that wait for a window.
std::vector<Message> posted(HWND window, UINT first, UINT last) {
    std::vector<Message> messages;
    for (MSG m; PeekMessageA(&m, window, first, last, PM_REMOVE);) messages.push_back({m.message, m.wParam, m.lParam});
    return messages;
}

// A window of another thread that answers, but while it hangs.
class OtherThread {
  public:
    explicit OtherThread(const char* className) {
        std::promise<HWND> made;
        mThread = std::thread([&made, className] {
            made.set_value(make(className, nullptr, {0, 0, 100, 100}, WS_VISIBLE | WS_VSCROLL | WS_HSCROLL));
            for (MSG message; GetMessageA(&message, nullptr, 0, 0) > 0;) DispatchMessageA(&message);
        });
        window = made.get_future().get();
    }
    ~OtherThread() {
        goOn();
        PostMessageA(window, kEnd, 0, 0);
        mThread.join();
        for (const HANDLE event : mEvents) CloseHandle(event);
    }
    void hang() {
        PostMessageA(window, kHang, 0, reinterpret_cast<LPARAM>(mEvents.data()));
        WaitForSingleObject(mEvents[0], INFINITE);
    }
    void goOn() { SetEvent(mEvents[1]); }

    HWND window;

  private:
    std::array<HANDLE, 2> mEvents{CreateEventA(nullptr, FALSE, FALSE, nullptr),
                                  CreateEventA(nullptr, FALSE, FALSE, nullptr)};
    std::thread mThread;
};

// Two top-level windows, the graphics window deep below the second.
class CreoWindows : public testing::Test {
  protected:
    CreoWindows() {
        setVariable("USERPROFILE", profile.path().c_str());
        SetEnvironmentVariableA("TMP", profile.path().c_str());
        substitute::driver().reset();
        toolkit().reset();
        system().reset();
        scrolled.clear();
        settings = std::make_unique<Settings>();
        settings->mUseMapkeyForCommands = false;
        settings->mIsModeToRead = true;
        LoggingParameters& log = settings->mLogPars;
        log.mLogFile = profile.file("plug.log");
        log.mIsLogToFile = log.mIsWarning = log.mIsTrace = log.mIsInfo = log.mIsDebug = true;
        gLogging.init(log);
        writeFile(settings->settingsDirPath() + "\\Creo.mnu", "[Modes]\nA = 1\nB = 2\n[MenuBar]\nx = {}ProCmdX*Y|h\n");
        for (HWND& top : tops) top = make(kTop, nullptr);
        // The later one is in front of the other.
        std::swap(tops[0], tops[1]);
        system().inFront = tops[0];
        inner = make(kPlain, make(kPlain, tops[1]));
        graphics = make(kGraphics, inner);
        make(kPlain, graphics);
    }
    ~CreoWindows() override {
        creo.reset();
        for (const HWND top : tops) DestroyWindow(top);
        gLogging.init(LoggingParameters());
        EXPECT_THAT(toolkit().faults, IsEmpty());
    }
    void start() {
        lifeCycle.initialise();
        creo = std::make_unique<CreoProxy>(*settings, handOver, legacyCom1, lifeCycle);
    }
    std::string log() const { return textOf(profile.file("plug.log")); }

    // Timers that were set and killed since the last call.
    std::vector<Timer> timersSet() { return std::exchange(system().timersSet, {}); }
    std::vector<Timer> timersKilled() { return std::exchange(system().timersKilled, {}); }
    Timer timerOf(HWND window, UINT interval = kRest) const { return {window, 99, interval}; }
    void access() { toolkit().commands.at("Orbikon_ToggleMoveMode").access(0); }

    Kind classify(HWND underPointer) {
        system().underPointer = underPointer;
        return creo->classifyPointerWindow(x, y, found);
    }
    bool scroll(HWND underPointer, std::int16_t tx, std::int16_t ty, std::int16_t tz) {
        system().underPointer = underPointer;
        scrolled.clear();
        system().pauses.clear();
        return creo->scrollTreeAndList(tx, ty, tz);
    }

    ScratchFolder profile;
    std::unique_ptr<Settings> settings;
    HandOver handOver;
    LegacyCom1 legacyCom1{handOver};
    LifeCycle lifeCycle{{[] { return true; }, [] {}, [] {}, [] {}}};
    std::unique_ptr<CreoProxy> creo;
    std::array<HWND, 2> tops{};
    HWND inner = nullptr, graphics = nullptr;
    int x = 0, y = 0;  // of the last classification
    HWND found = nullptr;
};

// ---- Search and timer ----

TEST_F(CreoWindows, TimerHangsOnTheFirstTopWindowAndTheSearchEndsWithTheGraphicsWindow) {
    start();
    EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0])));
    access();  // both windows are known
    EXPECT_THAT(timersSet(), IsEmpty());
    // Each window that goes is looked for with each callback until it is found.
    DestroyWindow(graphics);
    make("PGLWindows", tops[0]);
    for (int i = 0; i < 2; ++i) {
        access();
        EXPECT_THAT(timersKilled(), ElementsAre(timerOf(tops[0], 0)));
        EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0])));
    }
    graphics = make(kGraphics, tops[0]);
    access();
    timersSet();
    access();
    EXPECT_THAT(timersSet(), IsEmpty());
    DestroyWindow(tops[0]);
    make(kGraphics, inner);
    toolkit().notifications.at(24)();
    EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[1])));
    access();
    EXPECT_THAT(timersSet(), IsEmpty());
    timersKilled();
    creo.reset();
    EXPECT_THAT(timersKilled(), ElementsAre(timerOf(tops[1], 0)));
    EXPECT_EQ(log().find("No valid Creo Window"), std::string::npos);
}

TEST_F(CreoWindows, WithoutAWindowThePlugInWaitsForOne) {
    std::thread([this] {  // it has none
        toolkit().reset();
        start();
        EXPECT_THAT(log(), HasSubstr("| No valid Creo Window Handle found for Timer"));
        EXPECT_THAT(timersSet(), IsEmpty());
        const HWND top = make(kTop, nullptr);
        access();
        EXPECT_THAT(timersSet(), ElementsAre(timerOf(top)));
        DestroyWindow(top);
        creo.reset();
    })
        .join();
}

TEST_F(CreoWindows, IntervalFollowsTheCap) {
    settings->mMinThreshold = 10;
    start();
    timersSet();
    for (const auto& [axis, interval] : {std::pair{11, kMoving}, {11, kMoving}, {10, kRest}, {0, kRest}}) {
        handOver.motion.rz.store(static_cast<std::int16_t>(axis), handOver.motion.losses);
        system().tick();
        EXPECT_THAT(timersKilled(), ElementsAre(timerOf(tops[0], 0)));
        EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0], interval))) << axis;
    }
    const std::string written = log();
    EXPECT_THAT(written, HasSubstr("| Window Handle found for Timer: "));
    EXPECT_LT(written.rfind("| Timer Callback start\n"), written.rfind("| Do Transformation\n"));
    EXPECT_LT(written.rfind("| Do Transformation\n"), written.rfind("| timerIntvl: 100\n"));
    EXPECT_TRUE(written.ends_with("| Timer Callback end\n"));
    EXPECT_EQ(handOver.menuFileProgress, 1.0) << "the menu file was loaded";
    EXPECT_EQ(toolkit().calls("ProModeCurrentGet"), 4);
    settings->mIsModeToRead = false;
    writeFile(settings->settingsDirPath() + "\\Creo.mnu", "[Modes]\nC = 1\nD = 2\n");
    system().tick();
    EXPECT_EQ(toolkit().calls("ProModeCurrentGet"), 4);
    EXPECT_EQ(creo->modeName(), "B") << "and is not loaded again";
}

// A toolkit call dispatches messages, and with them the timer's, Creo's own callbacks and the end.
TEST_F(CreoWindows, TickInsideATickDoesNothing) {
    start();
    timersSet();
    toolkit().onCall("ProModeCurrentGet", [this, isInside = false]() mutable {
        if (std::exchange(isInside, true)) return;
        timersKilled();
        system().tick();
        toolkit().notifications.at(72)();
        EXPECT_THAT(timersKilled(), IsEmpty());
        EXPECT_THAT(timersSet(), IsEmpty()) << "the tick arms it when it is over";
    });
    system().tick();
    EXPECT_EQ(toolkit().calls("ProModeCurrentGet"), 2) << "of the tick and the notification";
    EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0])));
    handOver.isEnding = true;
    system().tick();
    access();
    EXPECT_THAT(timersSet(), IsEmpty());
}

// Windows may refuse a timer, and something may be thrown in a tick: whoever calls next arms it.
TEST_F(CreoWindows, TimerThatIsNotArmedIsArmedByTheNextCallback) {
    system().areTimersRefused = true;
    std::optional<substitute::ClockStands> now(std::in_place);
    start();
    access();
    now.reset();
    EXPECT_THAT(timersSet(), IsEmpty());
    const std::string line = "| Error in SetTimer()! err=1450";
    EXPECT_THAT(log(), HasSubstr(line));
    EXPECT_EQ(log().find(line), log().rfind(line)) << "one line a second";
    for (const bool isThrown : {false, true}) {
        for (const int notification : {0, 41, 73}) {
            system().areTimersRefused = false;
            notification == 0 ? access() : static_cast<void>(toolkit().notifications.at(notification)());
            EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0])));
            access();
            EXPECT_THAT(timersSet(), IsEmpty());
            system().areTimersRefused = !isThrown;
            toolkit().onCall("ProModeCurrentGet", [isThrown] {
                if (isThrown) throw std::runtime_error("host");
            });
            system().tick();
            toolkit().onCall("ProModeCurrentGet", {});
            EXPECT_THAT(timersSet(), IsEmpty());
        }
    }
    system().tick();  // of a timer that Windows made all the same
    EXPECT_THAT(timersSet(), ElementsAre(timerOf(tops[0])));
    EXPECT_THAT(log(), HasSubstr("| Error TimerProc()"));
}

// ---- Scrolling ----

TEST_F(CreoWindows, ClassesThatScroll) {
    const INITCOMMONCONTROLSEX controls{sizeof controls, ICC_WIN95_CLASSES};
    InitCommonControlsEx(&controls);
    start();
    const std::pair<Kind, std::vector<const char*>> cases[] = {
        {Kind::scrollBar, {"SysTreeView32", "TreeView", "SysListView32", "ListBox", "Edit", "GXWND"}},
        {Kind::wheel, {"ToolbarWindow32", "uintGraphDrawArea", "List", "Tree", "Internet Explorer_Server"}},
        {Kind::none, {kPlain, "Button", "Lis", "Trees"}},
    };
    system().pointer = {12, 34};
    for (const auto& [kind, names] : cases) {
        for (const char* name : names) {
            const HWND window = make(name, tops[0]);
            x = y = 0;
            EXPECT_EQ(classify(window), kind) << name;
            EXPECT_EQ(std::tuple(x, y, found), std::tuple(12, 34, window));
        }
    }
    const HWND window = make("List", tops[0]);
    EXPECT_EQ(classify(nullptr), Kind::none);
    system().inFront = tops[1];
    EXPECT_EQ(classify(window), Kind::none) << "not the window in front";
    system().inFront = system().ofOtherProcess = tops[0];
    EXPECT_EQ(classify(window), Kind::none) << "another program's";
    system().ofOtherProcess = nullptr;
    ASSERT_EQ(classify(window), Kind::wheel);
    x = y = 0;
    found = nullptr;
    system().pointer.reset();
    EXPECT_EQ(classify(window), Kind::none);
    system().pointer = {12, 34};
    settings->mScrollTreeAndList = false;
    EXPECT_EQ(classify(window), Kind::none);
    EXPECT_EQ(std::tuple(x, y, found), std::tuple(0, 0, nullptr)) << "nothing is written then";
}

// Siblings from the one in front to the one behind, and a child with a child in one of them.
TEST_F(CreoWindows, SmallestOfOverlappingWindows) {
    start();
    struct Case {
        const char* what;
        std::vector<RECT> siblings;
        std::size_t start;
        std::size_t expected;
        bool isHidden = false;  // the expected one
    };
    const RECT all{0, 0, 300, 300}, large{0, 0, 200, 200}, small{40, 40, 60, 60}, beside{100, 100, 110, 110};
    const RECT flat{0, 45, 300, 55}, same{20, 20, 220, 220};
    const Case cases[] = {
        {"alone", {large}, 0, 0},
        {"larger on top", {large, small}, 0, 1},
        {"smaller on top", {small, large}, 0, 0},
        {"the pointer is beside", {large, beside}, 0, 0},
        {"smallest in the middle", {all, small, large}, 0, 1},
        {"smallest last", {all, large, small}, 0, 2},
        {"those in front do not count", {small, large}, 1, 1},
        {"the same size", {large, same}, 0, 0},
        {"width times height", {large, flat}, 0, 1},
        {"further right and down", {{0, 0, 100, 100}, {45, 45, 140, 140}}, 0, 1},
        {"hidden", {large, small}, 0, 1, true},
    };
    system().pointer = {50, 50};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const HWND parent = make(kPlain, tops[0], all);
        std::vector<HWND> siblings;
        for (const RECT& place : c.siblings) siblings.push_back(make(kPlain, parent, place));
        if (c.isHidden) ShowWindow(siblings[c.expected], SW_HIDE);
        classify(siblings[c.start]);
        EXPECT_EQ(found, siblings[c.isHidden ? c.start : c.expected]);
        // Children are looked at in a window that has won over another, the first one included, and so on.
        const HWND other = make(kPlain, siblings[c.expected], {0, 0, 1, 1});
        const HWND child = make(kPlain, siblings[c.expected], {0, 0, 19, 19});
        const HWND grandchild = make(kPlain, child, {5, 5, 18, 18});
        classify(siblings[c.start]);
        const bool hasWon = c.expected != c.start && !c.isHidden;
        const bool isUnderPointer = c.siblings[c.expected].left >= small.left;
        EXPECT_EQ(found, !hasWon ? siblings[c.start] : isUnderPointer ? grandchild : siblings[c.expected]);
        EXPECT_NE(found, other);
        DestroyWindow(parent);
    }
    classify(tops[0]);
    EXPECT_EQ(found, tops[0]);
}

TEST_F(CreoWindows, ScrollBarsTakeLineSteps) {
    start();
    const HWND window = make("TreeView", tops[0], {0, 0, 100, 100}, WS_VISIBLE | WS_VSCROLL | WS_HSCROLL);
    struct Case {
        std::array<int, 4> vertical, horizontal;  // min, max, page, position
        std::int16_t tx, ty, tz;
        bool isConsumed;
        UINT message;
        WPARAM request;
        std::size_t steps;
        DWORD pause;  // 0: none
    };
    const std::array<int, 4> inside{0, 250, 10, 100}, wide{0, 340, 10, 7};
    const Case cases[] = {
        {inside, wide, 1, 2, 40, true, WM_VSCROLL, SB_LINEDOWN, 2, 130},
        {inside, wide, 1, 2, -40, true, WM_VSCROLL, SB_LINEUP, 2, 130},
        {inside, wide, 1, 60, 40, true, WM_VSCROLL, SB_LINEUP, 2, 120},
        {inside, wide, 80, 2, 40, true, WM_HSCROLL, SB_LINERIGHT, 3, 110},
        {inside, wide, -80, 2, 40, true, WM_HSCROLL, SB_LINELEFT, 3, 110},
        {{0, 20, 5, 5}, wide, 0, 0, 40, true, WM_VSCROLL, SB_LINEDOWN, 1, 160},
        {inside, {0, 20, 5, 5}, 400, 0, 0, true, WM_HSCROLL, SB_LINERIGHT, 1, 31},
        {{0, 5000, 10, 5}, wide, 0, 0, 400, true, WM_VSCROLL, SB_LINEDOWN, 10, 1},
        // At the end: no step, but the pause.
        {{0, 250, 10, 0}, wide, 0, 0, -40, true, 0, 0, 0, 130},
        {{0, 250, 10, 241}, wide, 0, 0, 40, true, 0, 0, 0, 130},
        // Equal drives consume the motion and nothing else.
        {inside, wide, 40, 0, -40, true, 0, 0, 0, 0},
        // Without a range that makes sense the motion is somebody else's.
        {{0, 250, 0, 100}, wide, 0, 0, 40, false, 0, 0, 0, 0},
        {{-1, 250, 10, 100}, wide, 0, 0, 40, false, 0, 0, 0, 0},
        {{0, 0, 1, 0}, wide, 0, 0, 40, false, 0, 0, 0, 0},
        {inside, {-1, 340, 10, 7}, 80, 0, 0, false, 0, 0, 0, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.tx << " " << c.ty << " " << c.tz << " of " << c.vertical[1]);
        setRange(window, SB_VERT, c.vertical[0], c.vertical[1], static_cast<UINT>(c.vertical[2]), c.vertical[3]);
        setRange(window, SB_HORZ, c.horizontal[0], c.horizontal[1], static_cast<UINT>(c.horizontal[2]),
                 c.horizontal[3]);
        EXPECT_EQ(scroll(window, c.tx, c.ty, c.tz), c.isConsumed);
        EXPECT_EQ(scrolled, std::vector<Message>(c.steps, {c.message, c.request, 0}));
        EXPECT_EQ(system().pauses, std::vector<DWORD>(c.pause > 0 ? 1 : 0, c.pause));
    }
    EXPECT_THAT(system().timeouts, IsEmpty()) << "windows of Creo's own thread have all the time they want";
    EXPECT_FALSE(scroll(make("GXWND", tops[0]), 0, 0, 40)) << "it has no scroll bars";
    EXPECT_FALSE(scroll(make(kPlain, tops[0]), 0, 0, 40));
}

TEST_F(CreoWindows, WheelIsTurnedAndTheWindowRepainted) {
    start();
    const HWND window = make("List", tops[0]);
    system().pointer = {640, -3};
    constexpr LPARAM kPlace = static_cast<LPARAM>(0xFFFD0280);
    constexpr WPARAM kUp = 0x00780000, kDown = 0xFF880000;
    struct Case {
        std::int16_t tx, ty, tz;
        WPARAM wParam;  // 0: no message
        DWORD pause;
    };
    for (const auto& c : {Case{0, 0, 200, kDown, 50},
                          {0, 200, 0, kUp, 50},
                          {100, 0, 0, kDown, 100},
                          {-100, 0, 50, kUp, 100},
                          {-40, 40, 0, 0, 130}}) {
        SCOPED_TRACE(testing::Message() << c.tx << " " << c.ty << " " << c.tz);
        system().updated.clear();
        system().invalidated.clear();
        EXPECT_TRUE(scroll(window, c.tx, c.ty, c.tz));
        const std::size_t count = c.wParam != 0 ? 1 : 0;
        EXPECT_EQ(posted(window, WM_MOUSEWHEEL, WM_MOUSEWHEEL),
                  std::vector<Message>(count, {WM_MOUSEWHEEL, c.wParam, kPlace}));
        EXPECT_EQ(system().updated, std::vector<HWND>(count, window));
        EXPECT_EQ(system().invalidated, std::vector<HWND>(count, window));
        EXPECT_THAT(system().pauses, ElementsAre(c.pause));
    }
}

// A window of another thread that hangs would hold Creo up for as long: it is given up soon, and left alone for a
// while.
TEST_F(CreoWindows, WindowOfAnotherThreadThatHangsIsLeftAlone) {
    start();
    for (const auto& [name, kind] : {std::pair{"TreeView", Kind::scrollBar}, {"List", Kind::wheel}}) {
        SCOPED_TRACE(name);
        OtherThread other(name);
        setRange(other.window, SB_VERT, 0, 250, 10, 100);
        system().inFront = other.window;
        EXPECT_TRUE(scroll(other.window, 0, 0, 40));
        EXPECT_EQ(scrolled, std::vector<Message>(kind == Kind::scrollBar ? 2 : 0, {WM_VSCROLL, SB_LINEDOWN, 0}));
        other.hang();
        system().isAnswering = false;
        EXPECT_FALSE(scroll(other.window, 0, 0, 40));
        EXPECT_THAT(system().pauses, IsEmpty());
        EXPECT_THAT(system().updated, IsEmpty());
        EXPECT_EQ(classify(other.window), Kind::none) << "left alone, so that Creo gets the motion";
        system().clock += 4999;
        EXPECT_EQ(classify(other.window), Kind::none);
        system().clock += 1;
        EXPECT_EQ(classify(other.window), kind);
        other.goOn();
        system().isAnswering = true;
        EXPECT_TRUE(scroll(other.window, 0, 0, 40));
    }
}

// One that answers slowly has a tenth of a second for all of a step's messages.
TEST_F(CreoWindows, WindowOfAnotherThreadHasATenthOfASecondInAll) {
    start();
    OtherThread other("GXWND");
    system().inFront = other.window;
    setRange(other.window, SB_VERT, 0, 900, 10, 100);
    system().answerTime = 30;
    EXPECT_FALSE(scroll(other.window, 0, 0, 40));
    EXPECT_THAT(system().timeouts, ElementsAre(100, 70, 40, 10));
    EXPECT_EQ(scrolled.size(), 3u);
    EXPECT_THAT(system().pauses, IsEmpty());
    EXPECT_EQ(classify(other.window), Kind::none);
}

// ---- Mapkey ----

class Mapkey : public CreoWindows {
  protected:
    void startWithMapkey(const std::string& definition) {
        settings->mUseMapkeyForCommands = true;
        settings->mMapkeyDefinition = definition;
        start();
        creo->loadMenufile();
    }
    std::string trailFile() const { return profile.file("orbikon-trail.txt"); }
    std::vector<Message> keys() { return posted(tops[0], WM_KEYFIRST, WM_KEYLAST); }
};

TEST_F(Mapkey, IsTypedIntoCreosMainWindowOnceTheTrailFileIsWritten) {
    startWithMapkey("F5x");
    const std::wstring value = toolkit().options.at(L"mapkey");
    EXPECT_TRUE(value.starts_with(L"5x @MAPKEY_LABELOrbikonController;~ Command `ProCmdUtilTrailTrain` ;"))
        << value.size();
    EXPECT_NE(value.find(L"\\\\orbikon-trail.txt`;"), std::wstring::npos);
    EXPECT_THAT(log(), HasSubstr("| Mapkey (5x) is set successfully to trailfile "));
    EXPECT_THAT(log(), HasSubstr("\\\\orbikon-trail.txt!\n"));
    system().inFront = make(kPlain, tops[1]);  // in any window of Creo's
    creo->execApplFunction(0);
    EXPECT_EQ(bytesOf(trailFile()),
              "!trail file version No. 1500\r\n~ Command `ProCmdX` `Y`;\r\n!End of Trail File\r\n");
    EXPECT_THAT(keys(),
                ElementsAre(Message{WM_KEYDOWN, '5', 1}, Message{WM_CHAR, '5', 1}, Message{WM_KEYUP, '5', kReleased},
                            Message{WM_KEYDOWN, 'X', 1}, Message{WM_CHAR, 'x', 1}, Message{WM_KEYUP, 'X', kReleased}));
    const std::string written = log();
    for (const char* line : {"| Writing new trail file ...", "| Trail file written.", "| Mapkey command 5x sent."}) {
        EXPECT_THAT(written, HasSubstr(line));
    }
    EXPECT_THAT(toolkit().macros, IsEmpty());
}

TEST_F(Mapkey, NothingIsTypedWhenSomethingIsMissing) {
    startWithMapkey("");
    const auto expectDropped = [this](const std::string& line) {
        creo->execApplFunction(0);
        creo->execApplFunction(0);
        EXPECT_THAT(log(), HasSubstr("| " + line));
        EXPECT_THAT(keys(), IsEmpty()) << line;
        EXPECT_THAT(log(), Not(HasSubstr(" sent.")));
    };
    const std::string behind = "executeCommandByMapkey, but Creo is not activ window...";
    for (const HWND inFront : {static_cast<HWND>(nullptr), make(kPlain, tops[0])}) {
        system().inFront = inFront;
        system().ofOtherProcess = tops[0];
        expectDropped(behind);
        EXPECT_FALSE(std::filesystem::exists(trailFile()));
    }
    system().ofOtherProcess = nullptr;
    std::filesystem::create_directories(trailFile());
    expectDropped("Cannot write trail file '");
    EXPECT_THAT(log(), HasSubstr("\\\\orbikon-trail.txt' failed!\n"));
    std::filesystem::remove(trailFile());
    system().inFront = tops[1];
    DestroyWindow(tops[0]);
    const std::string gone = "No Creo window for the mapkey, command dropped!";
    const substitute::ClockStands now;
    expectDropped(gone);
    EXPECT_EQ(log().find(gone), log().rfind(gone)) << "one line a second";
    EXPECT_THAT(posted(tops[1], WM_KEYFIRST, WM_KEYLAST), IsEmpty());
}

TEST_F(Mapkey, EachAllocationMayFail) {
    startWithMapkey("ob");
    system().inFront = tops[0];
    const auto check = [this](const std::string&) {
        const auto typed = keys().size();
        return typed == 0 || typed == 6 ? "" : "half of the keys";
    };
    EXPECT_THAT(substitute::failEachCall([this] { creo->execApplFunction(0); }, check), IsEmpty());
    EXPECT_THAT(log(), HasSubstr("Error executeCommandByMapkey()"));
}

TEST_F(Mapkey, RefusedDefinitionFallsBackToMacros) {
    toolkit().fail("ProConfigoptSet");
    startWithMapkey("-");
    EXPECT_THAT(log(), HasSubstr("| Cannot set Mapkey (ob)! => Normal Methode"));
    creo->execApplFunction(0);
    EXPECT_THAT(toolkit().macros, ElementsAre(L"~ Command `ProCmdX` `Y`;"));
    EXPECT_THAT(keys(), IsEmpty());
}

TEST_F(Mapkey, TemporaryFolderThatWindowsDoesNotTell) {
    SetEnvironmentVariableA("TMP", ("C:\\" + std::string(300, 't')).c_str());
    startWithMapkey("ob");
    EXPECT_THAT(log(), HasSubstr("| Error in GetTempPathA()!"));
    EXPECT_NE(toolkit().options.at(L"mapkey").find(L"`\\\\orbikon-trail.txt`"), std::wstring::npos);
}

}  // namespace
