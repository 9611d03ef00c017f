// Scrolls the tree, list or edit field under the mouse pointer by the cap's motion.
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "common_sources/creo_proxy.h"
#include "common_sources/scroll_plan.h"

namespace {

using ScrollKind = CreoProxy::ScrollKind;

constexpr int kClassNameSize = 255;
constexpr int kMostWindows = 10000;

struct ScrollClass {
    std::string_view name;
    ScrollKind kind;
};
constexpr std::array<ScrollClass, 11> kScrollClasses{{
    {"SysTreeView32", ScrollKind::scrollBar},
    {"TreeView", ScrollKind::scrollBar},
    {"SysListView32", ScrollKind::scrollBar},
    {"ListBox", ScrollKind::scrollBar},
    {"Edit", ScrollKind::scrollBar},
    {"GXWND", ScrollKind::scrollBar},
    {"ToolbarWindow32", ScrollKind::wheel},
    {"uintGraphDrawArea", ScrollKind::wheel},
    {"List", ScrollKind::wheel},
    {"Tree", ScrollKind::wheel},
    {"Internet Explorer_Server", ScrollKind::wheel},
}};

struct ScrollBar {
    int bar;
    UINT message;
    WPARAM backward;
    WPARAM forward;
};
constexpr ScrollBar kVertical{SB_VERT, WM_VSCROLL, SB_LINEUP, SB_LINEDOWN};
constexpr ScrollBar kHorizontal{SB_HORZ, WM_HSCROLL, SB_LINELEFT, SB_LINERIGHT};

// Windows of other threads that did not answer in time. They are left alone for a while: whoever hangs once will not
// answer with the next step, and Creo would stand still each time.
class Unresponsive {
  public:
    void add(HWND window) {
        mEntries[mNext] = {window, GetTickCount64() + kLeftAloneMs};
        mNext = (mNext + 1) % mEntries.size();
    }
    bool contains(HWND window) const {
        const ULONGLONG now = GetTickCount64();
        return std::any_of(mEntries.begin(), mEntries.end(),
                           [&](const Entry& entry) { return entry.window == window && now < entry.until; });
    }

  private:
    struct Entry {
        HWND window;
        ULONGLONG until;
    };
    static constexpr ULONGLONG kLeftAloneMs = 5000;

    std::array<Entry, 8> mEntries{};  // the oldest makes room
    std::size_t mNext = 0;
};
Unresponsive unresponsive;

// Sends to one window during one step. Windows of Creo's own thread are sent to as ever. Those of another thread may
// hang: together their answers take a tenth of a second at most.
class Sender {
  public:
    explicit Sender(HWND window)
        : mWindow(window), mIsOwnThread(GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) {}

    bool isOwnThread() const { return mIsOwnThread; }

    // False when the window did not answer in time; it is left alone then.
    bool send(UINT message, WPARAM wParam = 0) const {
        if (mIsOwnThread) {
            SendMessageA(mWindow, message, wParam, 0);
            return true;
        }
        const ULONGLONG used = GetTickCount64() - mStart;
        DWORD_PTR ignored = 0;
        if (used < kPatienceMs && SendMessageTimeoutA(mWindow, message, wParam, 0, SMTO_ABORTIFHUNG,
                                                      static_cast<UINT>(kPatienceMs - used), &ignored) != 0) {
            return true;
        }
        unresponsive.add(mWindow);
        return false;
    }

  private:
    static constexpr ULONGLONG kPatienceMs = 100;

    HWND mWindow;
    bool mIsOwnThread;
    ULONGLONG mStart = GetTickCount64();
};

std::int64_t area(const RECT& rect) {
    return std::int64_t{rect.right - rect.left} * std::int64_t{rect.bottom - rect.top};
}

// Innermost visible window at a screen point, the smallest of overlapping siblings; null when there is none. Other
// threads may put their windows elsewhere meanwhile, and a walk from one to the next would never come to an end, so it
// ends after a number of windows that Creo never has.
HWND windowAtPoint(POINT point) {
    HWND best = WindowFromPoint(point);
    if (best == nullptr) return nullptr;
    RECT bestRect{};
    GetWindowRect(best, &bestRect);
    HWND parent = GetParent(best);
    if (parent == nullptr) return best;
    HWND sibling = GetWindow(best, GW_HWNDNEXT);
    int left = kMostWindows;
    for (;;) {
        bool isReplaced = false;
        for (; sibling != nullptr && left > 0; sibling = GetWindow(sibling, GW_HWNDNEXT), --left) {
            RECT rect{};
            if (!GetWindowRect(sibling, &rect) || !PtInRect(&rect, point)) continue;
            if (GetParent(sibling) != parent || !IsWindowVisible(sibling) || area(rect) >= area(bestRect)) continue;
            best = sibling;
            bestRect = rect;
            isReplaced = true;
        }
        if (!isReplaced) return best;
        sibling = GetWindow(best, GW_CHILD);
        if (sibling == nullptr) return best;
        parent = best;
    }
}

// Another application's window may be the one in front; its controls are none of ours to scroll.
bool isOwnProcess(HWND window) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId();
}

// True when the window has a range to scroll, whether or not it moved.
bool scrollBarWindow(HWND window, const ScrollDrive& drive) {
    if (drive.isEqual()) return true;
    const ScrollBar& bar = drive.isVertical() ? kVertical : kHorizontal;
    const Sender sender(window);
    // Asking for the range has no time limit of its own, so a window that may hang gives a sign of life first.
    if (!sender.isOwnThread() && !sender.send(WM_NULL)) return false;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    if (!GetScrollInfo(window, bar.bar, &info)) return false;
    const ScrollRange range{info.nMin, info.nMax, info.nPage, info.nPos};
    if (!range.isSensible()) return false;
    const int steps = range.steps(drive.larger());
    for (int i = 0; i < std::abs(steps); ++i) {
        if (!sender.send(bar.message, steps < 0 ? bar.backward : bar.forward)) return false;
    }
    Sleep(static_cast<DWORD>(drive.pauseMs() + range.extraPauseMs()));
    return true;
}

// Both drives turn the one wheel that there is, the vertical one. False when the window hangs.
bool wheelWindow(HWND window, const ScrollDrive& drive, int x, int y) {
    if (!drive.isEqual()) {
        PostMessageA(window, WM_MOUSEWHEEL, wheelWParam(drive.larger()), static_cast<LPARAM>(wheelLParam(x, y)));
        const Sender sender(window);
        if (sender.isOwnThread()) {
            UpdateWindow(window);
        } else if (!sender.send(WM_PAINT)) {  // what UpdateWindow sends, without its patience
            return false;
        }
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE);
    }
    Sleep(static_cast<DWORD>(drive.pauseMs()));
    return true;
}

}  // namespace

CreoProxy::ScrollKind CreoProxy::classifyPointerWindow(int& x, int& y, WindowHandle& window) const {
    if (!isScrollingOn()) return ScrollKind::none;
    POINT point{};
    if (!GetCursorPos(&point)) return ScrollKind::none;
    x = point.x;
    y = point.y;
    window = windowAtPoint(point);
    if (window == nullptr) return ScrollKind::none;
    const HWND root = GetAncestor(window, GA_ROOT);
    if (root != nullptr && root != GetForegroundWindow()) return ScrollKind::none;
    if (!isOwnProcess(root != nullptr ? root : window)) return ScrollKind::none;
    if (unresponsive.contains(window)) return ScrollKind::none;
    char name[kClassNameSize] = "";
    GetClassNameA(window, name, kClassNameSize);
    for (const auto& scrollClass : kScrollClasses) {
        if (scrollClass.name == name) return scrollClass.kind;
    }
    return ScrollKind::none;
}

bool CreoProxy::scrollTreeAndList(std::int16_t tx, std::int16_t ty, std::int16_t tz) const {
    int x = 0, y = 0;
    WindowHandle window = nullptr;
    const ScrollDrive drive(tx, ty, tz);
    switch (classifyPointerWindow(x, y, window)) {
        case ScrollKind::scrollBar:
            return scrollBarWindow(window, drive);
        case ScrollKind::wheel:
            return wheelWindow(window, drive, x, y);
        case ScrollKind::none:
            break;
    }
    return false;
}
