#include "workbench/host/windows/tool_strip.h"

#include <commctrl.h>

#include <algorithm>

#include "workbench/host/commands/commands.h"
#include "workbench/host/windows/window_tools.h"

namespace workbench {
namespace {

constexpr wchar_t CLASS_NAME[] = L"CreoToolStrip";
constexpr int FIRST_ID = 1;
constexpr int STEP = 60;  // pixels a notch
constexpr int HEIGHT = 26;
constexpr int MORE_WIDTH = 26;
constexpr int MORE_ID = 1000;

struct Button {
    const wchar_t* label;
    const char* command;
    const char* option;
};
constexpr Button BUTTONS[] = {
    {L"Undo", "ProCmdEditUndo", ""},
    {L"Redo", "ProCmdEditRedo", ""},
    {L"Refit", "ProCmdViewRefit", ""},
    {L"Zoom in", "ProCmdViewZoomIn", ""},
    {L"Zoom out", "ProCmdViewZoomOut", ""},
    {L"Repaint", "ProCmdViewRepaint", ""},
    {L"Wireframe", "ProCmdEnvMdlDisp", "Wireframe"},
    {L"Hidden line", "ProCmdEnvMdlDisp", "Hidden line"},
    {L"No hidden", "ProCmdEnvMdlDisp", "No hidden"},
    {L"Shading", "ProCmdEnvMdlDisp", "Shading"},
    {L"Default", "ProCmdViewDefault", ""},
    {L"Front", "ProCmdViewFront", ""},
    {L"Back", "ProCmdViewBack", ""},
    {L"Top", "ProCmdViewTop", ""},
    {L"Bottom", "ProCmdViewBottom", ""},
    {L"Left", "ProCmdViewLeft", ""},
    {L"Right", "ProCmdViewRight", ""},
    {L"Select all", "ProCmdSelectAll", ""},
    {L"Select none", "ProCmdSelectNone", ""},
    {L"Suppress", "ProCmdCompSuppress", ""},
    {L"Resume all", "ProCmdCompResume", ""},
    {L"Model tree", "ProCmdViewModelTree", ""},
    {L"Axis triad", "ProCmdViewTriad", ""},
};

WNDPROC toolbarDefault = nullptr;
HWND toolbar = nullptr;
HWND more = nullptr;  // shown while buttons are out of sight; lists them
int offset = 0;

int toolbarWidth() {
    SIZE size{};
    SendMessageW(toolbar, TB_GETMAXSIZE, 0, reinterpret_cast<LPARAM>(&size));
    return size.cx;
}

// Part of the strip that shows buttons.
int visibleWidth() {
    RECT strip;
    GetClientRect(GetParent(toolbar), &strip);
    return toolbarWidth() > strip.right ? strip.right - MORE_WIDTH : strip.right;
}

void moveTo(int wanted) {
    const int width = visibleWidth();
    const bool isWhole = toolbarWidth() <= width;
    offset = std::clamp(wanted, 0, std::max(0, toolbarWidth() - width));
    place(toolbar, -offset, 0, std::max(toolbarWidth(), width), HEIGHT);
    ShowWindow(more, isWhole ? SW_HIDE : SW_SHOW);
    SetWindowPos(more, HWND_TOP, width, 0, MORE_WIDTH, HEIGHT, SWP_NOACTIVATE);
}

// A menu of the buttons that are out of sight; chosen, they do what they do.
void showMore() {
    const HMENU list = CreatePopupMenu();
    for (int i = 0; i < static_cast<int>(std::size(BUTTONS)); ++i) {
        RECT button{};
        SendMessageW(toolbar, TB_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&button));
        const bool isInSight = button.left >= offset && button.right <= offset + visibleWidth();
        if (!isInSight) AppendMenuW(list, MF_STRING, static_cast<UINT_PTR>(FIRST_ID + i), BUTTONS[i].label);
    }
    RECT place{};
    GetWindowRect(more, &place);
    TrackPopupMenu(list, TPM_RIGHTALIGN, place.right, place.bottom, 0, GetParent(toolbar), nullptr);
    DestroyMenu(list);
}

LRESULT CALLBACK toolbarProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_MOUSEWHEEL) {
        moveTo(offset - STEP * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA);
        return 0;
    }
    // A flat tool bar paints its texts without erasing first; repainted from outside they would grow bold.
    if (message == WM_PAINT) InvalidateRect(window, nullptr, TRUE);
    return CallWindowProcW(toolbarDefault, window, message, wParam, lParam);
}

LRESULT CALLBACK stripProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE && more != nullptr) moveTo(offset);
    if (message == WM_COMMAND && LOWORD(wParam) == MORE_ID) showMore();
    const int number = LOWORD(wParam) - FIRST_ID;
    if (message == WM_COMMAND && number >= 0 && number < static_cast<int>(std::size(BUTTONS))) {
        runCommand(BUTTONS[number].command, BUTTONS[number].option);
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void addButtons() {
    SendMessageW(toolbar, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
    SendMessageW(toolbar, TB_SETBITMAPSIZE, 0, 0);
    int id = FIRST_ID;
    for (const Button& button : BUTTONS) {
        TBBUTTON entry{};
        entry.iBitmap = I_IMAGENONE;
        entry.idCommand = id++;
        entry.fsState = TBSTATE_ENABLED;
        entry.fsStyle = BTNS_BUTTON | BTNS_AUTOSIZE | BTNS_SHOWTEXT;
        entry.iString = reinterpret_cast<INT_PTR>(button.label);
        SendMessageW(toolbar, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&entry));
    }
}

}  // namespace

ToolStrip makeToolStrip(HWND parent) {
    registerWindowClass(CLASS_NAME, stripProc, GetSysColorBrush(COLOR_BTNFACE));
    toolbar = more = nullptr;
    offset = 0;
    const HWND strip = makeChild(parent, CLASS_NAME, L"", WS_CLIPCHILDREN);
    toolbar = makeChild(strip, TOOLBARCLASSNAMEW, L"",
                        TBSTYLE_FLAT | TBSTYLE_LIST | CCS_NORESIZE | CCS_NOPARENTALIGN | CCS_NODIVIDER);
    addButtons();
    more = makeChild(strip, L"BUTTON", L"\u00BB", BS_PUSHBUTTON);
    SetWindowLongPtrW(more, GWLP_ID, MORE_ID);
    toolbarDefault =
        reinterpret_cast<WNDPROC>(SetWindowLongPtrW(toolbar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(toolbarProc)));
    return {strip, toolbar};
}

int toolbarOffset() { return offset; }

}  // namespace workbench
