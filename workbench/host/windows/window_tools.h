// Small helpers for windows.
#pragma once

#include <stdexcept>
#include <string>

#include <windows.h>

#include "workbench/host/model/creo_variant.h"

namespace workbench {

// A window as the control pipe knows it.
struct NamedWindow {
    std::string name;
    HWND window;
};

inline HINSTANCE program() { return GetModuleHandleW(nullptr); }

// The one font of all controls.
inline HFONT uiFont() {
    static const HFONT FONT =
        CreateFontW(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                    CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_SWISS, L"DejaVu Sans");
    return FONT;
}

inline void registerWindowClass(const wchar_t* name, WNDPROC procedure, HBRUSH background, UINT style = 0) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = procedure;
    windowClass.hInstance = program();
    windowClass.lpszClassName = name;
    windowClass.hbrBackground = background;
    windowClass.style = style;
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    RegisterClassW(&windowClass);
}

// The class of a Creo whose classes have other names; the same otherwise.
inline std::wstring classInThisCreo(const wchar_t* className) {
    if (!creoVariant().hasOtherClasses) return className;
    const std::wstring other = std::wstring(L"Other") + className;
    WNDCLASSW windowClass{};
    GetClassInfoW(program(), className, &windowClass);
    windowClass.hInstance = program();
    windowClass.lpszClassName = other.c_str();
    RegisterClassW(&windowClass);
    return other;
}

inline HWND makeChild(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, DWORD extended = 0) {
    const HWND window = CreateWindowExW(extended, classInThisCreo(className).c_str(), text,
                                        WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | style, 0, 0, 10, 10, parent, nullptr,
                                        program(), nullptr);
    if (window == nullptr) throw std::runtime_error("a child window cannot be made");
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(uiFont()), TRUE);
    return window;
}

// Shows a top-level window above the others and gives it the focus; without a window manager the one does not imply the
// other.
inline void bringInFront(HWND window) {
    ShowWindow(window, SW_SHOW);
    SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    SetForegroundWindow(window);
    RedrawWindow(window, nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
}

inline void place(HWND window, int x, int y, int width, int height) {
    SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
}

}  // namespace workbench
