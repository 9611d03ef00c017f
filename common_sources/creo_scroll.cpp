// Scrolls the tree, list or edit field under the mouse pointer by the cap's motion.
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "common_sources/creo_proxy.h"
#include "common_sources/wheel_message.h"

namespace {

using ScrollKind = CreoProxy::ScrollKind;

constexpr int kClassNameSize = 255;

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

// The pause between two steps is shorter the further the cap is deflected, and longer in a short range.
constexpr int kLongestPauseMs = 150;
constexpr int kShortestPauseMs = 1;
constexpr int kShortRange = 50;

constexpr int kMaxSteps = 10;
constexpr int kRangePerStep = 100;

struct ScrollBar {
    int bar;
    UINT message;
    WPARAM backward;
    WPARAM forward;
};
constexpr ScrollBar kVertical{SB_VERT, WM_VSCROLL, SB_LINEUP, SB_LINEDOWN};
constexpr ScrollBar kHorizontal{SB_HORZ, WM_HSCROLL, SB_LINELEFT, SB_LINERIGHT};

// What the cap's translation asks for: the larger of two drives down (tz, or ty inverted), and one to the right.
struct Drive {
    int vertical;
    int horizontal;
    int a;  // size of the vertical drive
    int h;  // size of the horizontal drive

    Drive(int tx, int ty, int tz)
        : vertical(std::abs(tz) < std::abs(ty) ? -ty : tz),
          horizontal(tx),
          a(std::abs(vertical)),
          h(std::abs(horizontal)) {}

    int pauseMs() const { return std::max(kShortestPauseMs, kLongestPauseMs - std::max(a, h) / 2); }
};

std::int64_t area(const RECT& rect) {
    return std::int64_t{rect.right - rect.left} * std::int64_t{rect.bottom - rect.top};
}

// Innermost visible window at a screen point, the smallest of overlapping siblings; null when there is none.
HWND windowAtPoint(POINT point) {
    HWND best = WindowFromPoint(point);
    if (best == nullptr) return nullptr;
    RECT bestRect{};
    GetWindowRect(best, &bestRect);
    HWND parent = GetParent(best);
    if (parent == nullptr) return best;
    HWND sibling = GetWindow(best, GW_HWNDNEXT);
    for (;;) {
        bool isReplaced = false;
        for (; sibling != nullptr; sibling = GetWindow(sibling, GW_HWNDNEXT)) {
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

// One call's worth of line steps. True when the window has a range to scroll, whether or not it moved.
bool scrollByBar(HWND window, const ScrollBar& bar, int drive, int& nMax) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    if (!GetScrollInfo(window, bar.bar, &info)) return false;
    nMax = info.nMax;
    if (info.nMin < 0 || info.nMax < 0 || info.nMax <= info.nMin || info.nPage == 0) return false;
    const bool canGoBackward = drive < 0 && info.nPos > 0;
    const bool canGoForward = drive > 0 && std::int64_t{info.nPos} + info.nPage <= info.nMax;
    const int steps = std::clamp(info.nMax / kRangePerStep, 1, kMaxSteps);
    for (int i = 0; i < steps; ++i) {
        if (canGoBackward) SendMessageA(window, bar.message, bar.backward, 0);
        if (canGoForward) SendMessageA(window, bar.message, bar.forward, 0);
    }
    return true;
}

bool scrollBarWindow(HWND window, const Drive& drive) {
    if (drive.a == drive.h) return true;
    const bool isVertical = drive.h < drive.a;
    int nMax = 0;
    if (!scrollByBar(window, isVertical ? kVertical : kHorizontal, isVertical ? drive.vertical : drive.horizontal,
                     nMax)) {
        return false;
    }
    if (nMax < 1) return false;
    Sleep(static_cast<DWORD>(drive.pauseMs() + std::max(0, kShortRange - nMax)));
    return true;
}

// Both drives turn the one wheel that there is, the vertical one.
void wheelWindow(HWND window, const Drive& drive, int x, int y) {
    if (drive.a != drive.h) {
        const int direction = drive.h < drive.a ? drive.vertical : drive.horizontal;
        PostMessageA(window, WM_MOUSEWHEEL, wheelWParam(direction), static_cast<LPARAM>(wheelLParam(x, y)));
        UpdateWindow(window);
        RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE);
    }
    Sleep(static_cast<DWORD>(drive.pauseMs()));
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
    const Drive drive(tx, ty, tz);
    switch (classifyPointerWindow(x, y, window)) {
        case ScrollKind::scrollBar:
            return scrollBarWindow(window, drive);
        case ScrollKind::wheel:
            wheelWindow(window, drive, x, y);
            return true;
        case ScrollKind::none:
            break;
    }
    return false;
}
