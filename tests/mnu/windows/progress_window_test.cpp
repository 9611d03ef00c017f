#include "common_sources/progress_window.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <commctrl.h>

#include <array>
#include <cmath>
#include <string>
#include <utility>

#include "tests/unit/scratch.h"

// The program's own entry for a function of Windows, which the loader has filled in.
#ifdef _WIN64
extern void* gCreateWindow asm("__imp_CreateWindowExA");
#else
extern void* gCreateWindow asm("__imp__CreateWindowExA@48");
#endif

namespace {

constexpr char kClass[] = "MNUDlgClass";
HWND findFrame() { return FindWindowA(kClass, "Orbikon"); }
HWND findText() { return FindWindowExA(findFrame(), nullptr, "STATIC", nullptr); }
HWND findBar() { return FindWindowExA(findFrame(), nullptr, PROGRESS_CLASSA, nullptr); }

std::string shownText() {
    char text[100] = "";
    SendMessageA(findText(), WM_GETTEXT, sizeof text, reinterpret_cast<LPARAM>(text));
    return text;
}

int shownPosition() { return static_cast<int>(SendMessageA(findBar(), PBM_GETPOS, 0, 0)); }

bool isShown() { return findBar() && IsWindowVisible(findBar()); }

TEST(ProgressWindow, ShowsTheProgressAndIgnoresOtherValues) {
    ProgressWindow window;
    window.update(0.5);  // no window yet
    window.start();
    EXPECT_TRUE(window.isRunning());
    ASSERT_TRUE(waitUntil(isShown));
    EXPECT_EQ(shownText(), "Preparing for first start...");

    struct Case {
        double progress;
        int percent;
    };
    constexpr Case kCases[] = {{0.0, 0},  {0.007, 0},  {0.29, 28}, {0.5, 50},      {-0.1, 50}, {1.01, 50},
                               {NAN, 50}, {1e300, 50}, {0.3, 30},  {0.999999, 99}, {1.0, 100}};
    for (const Case& c : kCases) {
        window.update(c.progress);
        EXPECT_EQ(shownPosition(), c.percent) << c.progress;
        EXPECT_EQ(shownText(), "Preparing for first start... " + std::to_string(c.percent) + "%") << c.progress;
    }
}

TEST(ProgressWindow, HasItsPlaceAndStaysOnTop) {
    ProgressWindow window;
    window.start();
    ASSERT_TRUE(waitUntil(isShown));
    RECT frame;
    GetWindowRect(findFrame(), &frame);
    EXPECT_EQ(frame.right - frame.left, 216);
    EXPECT_EQ(frame.bottom - frame.top, 80);
    EXPECT_EQ(GetWindowLongA(findFrame(), GWL_EXSTYLE) & (WS_EX_TOPMOST | WS_EX_TOOLWINDOW),
              WS_EX_TOPMOST | WS_EX_TOOLWINDOW);
    EXPECT_EQ(GetWindowLongA(findFrame(), GWL_STYLE) & WS_OVERLAPPEDWINDOW, WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(GetClassLongPtrA(findFrame(), GCL_STYLE), CS_HREDRAW | CS_VREDRAW);
    EXPECT_EQ(GetClassLongPtrA(findFrame(), GCLP_HBRBACKGROUND), COLOR_WINDOW);
    const auto icon = reinterpret_cast<ULONG_PTR>(LoadIconA(nullptr, IDI_APPLICATION));
    EXPECT_EQ(GetClassLongPtrA(findFrame(), GCLP_HICON), icon);
    EXPECT_EQ(GetClassLongPtrA(findFrame(), GCLP_HICONSM), icon);
    EXPECT_EQ(GetClassLongPtrA(findFrame(), GCLP_HCURSOR),
              reinterpret_cast<ULONG_PTR>(LoadCursorA(nullptr, IDC_ARROW)));
    constexpr LONG kChildStyle = WS_CHILD | WS_VISIBLE | WS_GROUP;
    constexpr LONG kKnownStyle = kChildStyle | 0xFFFF;  // what each class has of its own
    EXPECT_EQ(GetWindowLongA(findText(), GWL_STYLE) & kKnownStyle, kChildStyle);
    EXPECT_EQ(GetWindowLongA(findBar(), GWL_STYLE) & kKnownStyle, WS_CHILD | WS_VISIBLE);
    EXPECT_EQ(GetWindowLongA(findText(), GWL_EXSTYLE) & WS_EX_NOPARENTNOTIFY, WS_EX_NOPARENTNOTIFY);
    EXPECT_EQ(GetWindowLongA(findBar(), GWL_EXSTYLE) & WS_EX_NOPARENTNOTIFY, 0);
    EXPECT_EQ(SendMessageA(findText(), WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(GetStockObject(DEFAULT_GUI_FONT)));
    EXPECT_EQ(SendMessageA(findBar(), PBM_GETRANGE, TRUE, 0), 0);
    EXPECT_EQ(SendMessageA(findBar(), PBM_GETRANGE, FALSE, 0), 100);
    const auto placeOf = [](HWND child) {
        RECT place;
        GetWindowRect(child, &place);
        MapWindowPoints(nullptr, findFrame(), reinterpret_cast<POINT*>(&place), 2);
        return std::array<LONG, 4>{place.left, place.top, place.right - place.left, place.bottom - place.top};
    };
    EXPECT_EQ(placeOf(findBar()), (std::array<LONG, 4>{0, 4, 200, 18}));
    EXPECT_EQ(placeOf(findText()), (std::array<LONG, 4>{0, 25, 200, 20}));
}

TEST(ProgressWindow, CannotBeClosedByTheUser) {
    ProgressWindow window;
    window.start();
    ASSERT_TRUE(waitUntil(isShown));
    EXPECT_EQ(SendMessageA(findFrame(), WM_CLOSE, 0, 0), 0);
    SendMessageA(findFrame(), WM_SYSCOMMAND, SC_CLOSE, 0);
    SendMessageA(findFrame(), WM_SETTEXT, 0, reinterpret_cast<LPARAM>("All else is handled as usual"));
    EXPECT_NE(FindWindowA(kClass, "All else is handled as usual"), nullptr);
    SendMessageA(FindWindowA(kClass, nullptr), WM_SETTEXT, 0, reinterpret_cast<LPARAM>("Orbikon"));
    window.update(0.25);
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(window.isRunning());
    EXPECT_EQ(shownText(), "Preparing for first start... 25%");
}

TEST(ProgressWindow, IsGoneWithItsThreadAfterStop) {
    for (const bool isShownFirst : {true, false, true, false}) {
        ProgressWindow window;
        window.start();
        if (isShownFirst) {
            ASSERT_TRUE(waitUntil(isShown));
        }
        const DWORD threadId = GetWindowThreadProcessId(findFrame(), nullptr);
        const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, threadId);
        window.stop();
        EXPECT_FALSE(window.isRunning());
        EXPECT_EQ(findFrame(), nullptr);
        if (isShownFirst) {
            EXPECT_EQ(WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
        }
        if (thread) CloseHandle(thread);
        WNDCLASSEXA info = {};
        info.cbSize = sizeof info;
        EXPECT_FALSE(GetClassInfoExA(GetModuleHandleA(nullptr), kClass, &info)) << "the class is still registered";
        window.update(0.5);
        window.stop();
    }
}

TEST(ProgressWindow, EndsWhileUpdatesKeepComing) {
    for (int round = 0; round < 5; ++round) {
        ProgressWindow window;
        window.start();
        for (int i = 0; i < 10; ++i) window.update(i / 10.0);
    }
    EXPECT_EQ(findFrame(), nullptr);
}

// For the time of a scope Windows makes no window for this program.
class RefusedFrames {
  public:
    RefusedFrames() : mCreateWindow(set(reinterpret_cast<void*>(&refuse))) {}
    ~RefusedFrames() { set(mCreateWindow); }

  private:
    static HWND WINAPI refuse(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE, LPVOID) {
        return nullptr;
    }
    static void* set(void* function) {
        DWORD before = 0;
        VirtualProtect(&gCreateWindow, sizeof gCreateWindow, PAGE_READWRITE, &before);
        return std::exchange(gCreateWindow, function);
    }
    void* mCreateWindow;
};

// With the class's name taken the window cannot be made: a message box says so, stop() takes it away, and a later
// start tries again. The same without a frame.
TEST(ProgressWindow, SaysWhenItCannotBeMade) {
    WNDCLASSEXA taken = {};
    taken.cbSize = sizeof taken;
    taken.lpfnWndProc = DefWindowProcA;
    taken.hInstance = GetModuleHandleA(nullptr);
    taken.lpszClassName = kClass;
    ASSERT_NE(RegisterClassExA(&taken), 0);
    const auto findBox = [] { return FindWindowA("#32770", "Error!"); };
    ProgressWindow window;
    const auto says = [&](const char* text) {
        window.start();
        const bool isSaid = waitUntil([&] { return FindWindowExA(findBox(), nullptr, "STATIC", text) != nullptr; });
        window.update(0.5);
        window.stop();
        EXPECT_EQ(findBox(), nullptr);
        return isSaid;
    };
    EXPECT_TRUE(says("Window Registration Failed!"));

    window.start();
    ASSERT_TRUE(waitUntil([&] { return findBox() != nullptr; }));
    PostMessageA(findBox(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(waitUntil([&] { return !window.isRunning(); })) << "the thread clears the flag when it ends";
    UnregisterClassA(kClass, GetModuleHandleA(nullptr));
    {
        const RefusedFrames refused;
        EXPECT_TRUE(says("Window Creation Failed!"));
    }
    window.start();
    EXPECT_TRUE(waitUntil(isShown));
}

}  // namespace
