#include "workbench/host/windows/scroll_window.h"

#include <algorithm>
#include <memory>
#include <set>

#include "workbench/host/windows/window_tools.h"

namespace workbench {
namespace {

constexpr int LINE_HEIGHT = 17;
constexpr int MARGIN = 4;
constexpr int COLUMN_STEP = 12;     // pixels that one request scrolls sideways
constexpr int CHARACTER_WIDTH = 7;  // generous estimate for the content's width
constexpr int LINES_PER_NOTCH = 3;

std::set<HWND> scrollWindows;  // to tell them from all others

}  // namespace

HWND ScrollWindow::make(HWND parent, const wchar_t* className, ScrollKind kind, std::vector<std::wstring> lines) {
    registerWindowClass(className, procedure, GetSysColorBrush(COLOR_WINDOW), CS_HREDRAW | CS_VREDRAW);
    const HWND window =
        makeChild(parent, className, L"", kind == ScrollKind::BARS ? WS_VSCROLL | WS_HSCROLL : 0, WS_EX_CLIENTEDGE);
    auto content = std::unique_ptr<ScrollWindow>(new ScrollWindow(window, kind, std::move(lines)));
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(content.release()));
    scrollWindows.insert(window);
    return window;
}

const ScrollWindow* ScrollWindow::of(HWND window) {
    return scrollWindows.contains(window) ? reinterpret_cast<ScrollWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))
                                          : nullptr;
}

ScrollWindow::ScrollWindow(HWND window, ScrollKind kind, std::vector<std::wstring> lines)
    : mWindow(window), mKind(kind), mLines(std::move(lines)) {}

LRESULT CALLBACK ScrollWindow::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ScrollWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    switch (message) {
        case WM_PAINT:
            self->paint();
            return 0;
        case WM_SIZE:
            self->scrollTo(self->mTop, self->mLeft);
            return 0;
        case WM_VSCROLL:
            self->scrollByBar(SB_VERT, LOWORD(wParam));
            return 0;
        case WM_HSCROLL:
            self->scrollByBar(SB_HORZ, LOWORD(wParam));
            return 0;
        case WM_MOUSEWHEEL:
            self->mWheelWParam = wParam;
            self->mWheelLParam = lParam;
            self->turnWheel(GET_WHEEL_DELTA_WPARAM(wParam));
            return 0;
        case WM_LBUTTONDOWN:
            SetFocus(window);
            return 0;
        case WM_NCDESTROY:
            scrollWindows.erase(window);
            SetWindowLongPtrW(window, GWLP_USERDATA, 0);
            delete self;
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

void ScrollWindow::paint() const {
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(mWindow, &paint);
    const HGDIOBJ before = SelectObject(dc, uiFont());
    SetBkMode(dc, TRANSPARENT);
    const int count = static_cast<int>(mLines.size());
    for (int line = mTop; line < count && line <= mTop + pageLines(); ++line) {
        const std::wstring& text = mLines[static_cast<std::size_t>(line)];
        TextOutW(dc, MARGIN - mLeft, MARGIN + (line - mTop) * LINE_HEIGHT, text.c_str(), static_cast<int>(text.size()));
    }
    SelectObject(dc, before);
    EndPaint(mWindow, &paint);
}

void ScrollWindow::scrollTo(int top, int left) {
    mTop = std::clamp(top, 0, std::max(0, static_cast<int>(mLines.size()) - pageLines()));
    mLeft = std::clamp(left, 0, std::max(0, contentWidth() - pageWidth()));
    updateBars();
    InvalidateRect(mWindow, nullptr, TRUE);
}

void ScrollWindow::scrollByBar(int bar, int request) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    GetScrollInfo(mWindow, bar, &info);
    const int line = bar == SB_VERT ? 1 : COLUMN_STEP;
    const int page = std::max(line, static_cast<int>(info.nPage) - line);
    int position = bar == SB_VERT ? mTop : mLeft;
    switch (request) {  // the codes are the same for both bars (SB_LINEUP is SB_LINELEFT, and so on)
        case SB_LINEUP:
            position -= line;
            break;
        case SB_LINEDOWN:
            position += line;
            break;
        case SB_PAGEUP:
            position -= page;
            break;
        case SB_PAGEDOWN:
            position += page;
            break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            position = info.nTrackPos;
            break;
        case SB_TOP:
            position = info.nMin;
            break;
        case SB_BOTTOM:
            position = info.nMax;
            break;
        default:
            return;
    }
    bar == SB_VERT ? scrollTo(position, mLeft) : scrollTo(mTop, position);
}

void ScrollWindow::turnWheel(int delta) {
    mWheelNotches += delta / WHEEL_DELTA;
    scrollTo(mTop - LINES_PER_NOTCH * delta / WHEEL_DELTA, mLeft);
}

void ScrollWindow::updateBars() const {
    if (mKind != ScrollKind::BARS) return;
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_ALL;
    info.nMax = static_cast<int>(mLines.size()) - 1;
    info.nPage = static_cast<UINT>(pageLines());
    info.nPos = mTop;
    SetScrollInfo(mWindow, SB_VERT, &info, TRUE);
    info.nMax = contentWidth() - 1;
    info.nPage = static_cast<UINT>(pageWidth());
    info.nPos = mLeft;
    SetScrollInfo(mWindow, SB_HORZ, &info, TRUE);
}

int ScrollWindow::pageLines() const {
    RECT client;
    GetClientRect(mWindow, &client);
    return std::max(1L, (client.bottom - MARGIN) / LINE_HEIGHT);
}

int ScrollWindow::pageWidth() const {
    RECT client;
    GetClientRect(mWindow, &client);
    return std::max(1L, client.right);
}

int ScrollWindow::contentWidth() const {
    std::size_t longest = 0;
    for (const std::wstring& line : mLines) longest = std::max(longest, line.size());
    return static_cast<int>(longest) * CHARACTER_WIDTH + 2 * MARGIN;
}

}  // namespace workbench
