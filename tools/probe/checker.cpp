#include "tools/probe/checker.h"

#include <algorithm>

#include "tools/seat/wide_text.h"

namespace probe {

namespace {

BOOL CALLBACK takeWindow(HWND window, LPARAM found) {
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

}  // namespace

bool Context::has(std::initializer_list<const char*> functions) {
    const HMODULE main = GetModuleHandleA(nullptr);
    return std::ranges::all_of(functions, [&](const char* name) { return GetProcAddress(main, name) != nullptr; });
}

std::string classOf(HWND window) {
    wchar_t name[256] = L"";
    GetClassNameW(window, name, 256);
    return seat::utf8Text(name);
}

HWND firstThreadWindow() {
    HWND first = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), takeWindow, reinterpret_cast<LPARAM>(&first));
    return first;
}

}  // namespace probe
