#include "workbench/host/windows/accessory_window.h"

#include <commctrl.h>

#include "workbench/host/windows/dock_content.h"

namespace workbench {
namespace {

constexpr wchar_t CLASS_NAME[] = L"CreoAccessory";
constexpr int ROWS = 120;

HWND accessory = nullptr;
HWND list = nullptr;

LRESULT CALLBACK accessoryProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_SIZE:
            place(list, 0, 0, LOWORD(lParam), HIWORD(lParam));
            return 0;
        case WM_CLOSE:
            ShowWindow(window, SW_HIDE);
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

}  // namespace

HWND makeAccessory() {
    registerWindowClass(CLASS_NAME, accessoryProc, GetSysColorBrush(COLOR_BTNFACE));
    accessory = CreateWindowExW(0, CLASS_NAME, L"Component interface", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 300, 260,
                                360, 300, nullptr, nullptr, program(), nullptr);
    if (accessory == nullptr) throw std::runtime_error("the accessory window cannot be made");
    list = makeChild(accessory, WC_LISTBOXW, L"", WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT);
    fillListBox(list, ROWS);
    return accessory;
}

std::vector<NamedWindow> accessoryWindows() { return {{"accessory", accessory}, {"accessory_list", list}}; }

}  // namespace workbench
