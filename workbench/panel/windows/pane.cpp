#include "workbench/panel/windows/pane.h"

#include <cmath>
#include <stdexcept>

namespace workbench {
namespace {

constexpr int kPlainDpi = 96;
constexpr int kFontHeight = 12;
constexpr int kMaxText = 512;

int currentDpi = kPlainDpi;
HFONT font = nullptr;

template <typename Function>
Function* find(const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), name)));
}

int round(double value) { return static_cast<int>(std::lround(value)); }

// A pen and a brush for the time of a scope.
class Tools {
  public:
    Tools(HDC dc, COLORREF edge, int thickness, COLORREF inside)
        : mDc(dc),
          mPen(CreatePen(PS_SOLID, thickness, edge)),
          mBrush(CreateSolidBrush(inside)),
          mPenBefore(SelectObject(dc, mPen)),
          mBrushBefore(SelectObject(dc, mBrush)) {}
    ~Tools() {
        SelectObject(mDc, mPenBefore);
        SelectObject(mDc, mBrushBefore);
        DeleteObject(mPen);
        DeleteObject(mBrush);
    }
    Tools(const Tools&) = delete;
    Tools& operator=(const Tools&) = delete;

  private:
    HDC mDc;
    HPEN mPen;
    HBRUSH mBrush;
    HGDIOBJ mPenBefore, mBrushBefore;
};

}  // namespace

int dpiOf(HWND window) {
    if (const auto ask = find<UINT WINAPI(HWND)>("GetDpiForWindow")) return static_cast<int>(ask(window));
    const HDC screen = GetDC(nullptr);
    const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return dpi;
}

void setDpi(int dpi) {
    currentDpi = dpi > 0 ? dpi : kPlainDpi;
    if (font != nullptr) DeleteObject(font);
    font = CreateFontW(-px(kFontHeight), 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                       CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Segoe UI");
}

int px(int pixels) { return MulDiv(pixels, currentDpi, kPlainDpi); }

HFONT uiFont() { return font; }

void Pane::create(HWND parent, const wchar_t* className, const wchar_t* title, DWORD style, DWORD extended) {
    WNDCLASSW description{};
    description.lpfnWndProc = procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = className;
    description.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    description.style = CS_DBLCLKS;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hIcon = LoadIconW(description.hInstance, MAKEINTRESOURCEW(1));
    RegisterClassW(&description);
    CreateWindowExW(extended, className, title, style, CW_USEDEFAULT, CW_USEDEFAULT, px(100), px(100), parent, nullptr,
                    description.hInstance, this);
    if (mWindow == nullptr) throw std::runtime_error("a window cannot be made");
}

HWND Pane::add(const wchar_t* className, const wchar_t* caption, DWORD style, int id, DWORD extended) const {
    const HWND control =
        CreateWindowExW(extended, className, caption, WS_CHILD | WS_VISIBLE | style, 0, 0, 10, 10, mWindow,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    if (control == nullptr) throw std::runtime_error("a control cannot be made");
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(uiFont()), TRUE);
    return control;
}

void Pane::layOutAgain() {
    RECT area{};
    GetClientRect(mWindow, &area);
    layOut(area.right, area.bottom);
}

LRESULT Pane::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(mWindow, message, wParam, lParam);
}

LRESULT CALLBACK Pane::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* self = static_cast<Pane*>(reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams);
        self->mWindow = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    auto* self = reinterpret_cast<Pane*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (self == nullptr) return DefWindowProcW(window, message, wParam, lParam);
    if (message == WM_NCDESTROY) SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    if (message == WM_SIZE && wParam != SIZE_MINIMIZED) self->layOut(LOWORD(lParam), HIWORD(lParam));
    return self->handle(message, wParam, lParam);
}

void place(HWND window, int x, int y, int width, int height) {
    SetWindowPos(window, nullptr, x, y, width > 0 ? width : 0, height > 0 ? height : 0,
                 SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOCOPYBITS);
}

std::wstring textOfWindow(HWND window) {
    wchar_t caption[kMaxText];
    return {caption, static_cast<std::size_t>(GetWindowTextW(window, caption, kMaxText))};
}

void setText(HWND window, const std::wstring& caption) {
    if (textOfWindow(window) != caption.substr(0, kMaxText - 1)) SetWindowTextW(window, caption.c_str());
}

Canvas::Canvas(HWND window) : mWindow(window) {
    const HDC screen = BeginPaint(window, &mPaint);
    GetClientRect(window, &mArea);
    mMemory = CreateCompatibleDC(screen);
    mBitmap = CreateCompatibleBitmap(screen, mArea.right > 0 ? mArea.right : 1, mArea.bottom > 0 ? mArea.bottom : 1);
    mBefore = SelectObject(mMemory, mBitmap);
    SelectObject(mMemory, uiFont());
    SetBkMode(mMemory, TRANSPARENT);
}

Canvas::~Canvas() {
    BitBlt(mPaint.hdc, 0, 0, mArea.right, mArea.bottom, mMemory, 0, 0, SRCCOPY);
    SelectObject(mMemory, mBefore);
    DeleteObject(mBitmap);
    DeleteDC(mMemory);
    EndPaint(mWindow, &mPaint);
}

void Canvas::fill(const RECT& area, COLORREF colour) const {
    SetBkColor(mMemory, colour);
    ExtTextOutW(mMemory, 0, 0, ETO_OPAQUE, &area, nullptr, 0, nullptr);
    SetBkMode(mMemory, TRANSPARENT);
}

void Canvas::ellipse(double x, double y, double rx, double ry, COLORREF inside, COLORREF edge, int thickness) const {
    const Tools tools(mMemory, edge, thickness, inside);
    Ellipse(mMemory, round(x - rx), round(y - ry), round(x + rx) + 1, round(y + ry) + 1);
}

void Canvas::line(double x1, double y1, double x2, double y2, COLORREF colour, int thickness) const {
    const Tools tools(mMemory, colour, thickness, colour);
    MoveToEx(mMemory, round(x1), round(y1), nullptr);
    LineTo(mMemory, round(x2), round(y2));
}

void Canvas::arrow(double x1, double y1, double x2, double y2, COLORREF colour, int thickness) const {
    constexpr double kHead = 3.0;  // times the thickness
    const double length = std::hypot(x2 - x1, y2 - y1);
    if (length < 1.0) return;
    const double ux = (x2 - x1) / length, uy = (y2 - y1) / length, head = kHead * thickness;
    line(x1, y1, x2 - ux * head, y2 - uy * head, colour, thickness);
    const Tools tools(mMemory, colour, 1, colour);
    const POINT points[] = {{round(x2), round(y2)},
                            {round(x2 - ux * head * 1.5 - uy * head), round(y2 - uy * head * 1.5 + ux * head)},
                            {round(x2 - ux * head * 1.5 + uy * head), round(y2 - uy * head * 1.5 - ux * head)}};
    Polygon(mMemory, points, 3);
}

}  // namespace workbench
