#include "tools/probe/checker.h"

#include <algorithm>

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

std::string utf8(const wchar_t* text) {
    std::string result(
        static_cast<std::size_t>(std::max(1, WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr))),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), static_cast<int>(result.size()), nullptr, nullptr);
    result.pop_back();  // the end
    return result;
}

std::string classOf(HWND window) {
    wchar_t name[256] = L"";
    GetClassNameW(window, name, 256);
    return utf8(name);
}

HWND firstThreadWindow() {
    HWND first = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), takeWindow, reinterpret_cast<LPARAM>(&first));
    return first;
}

}  // namespace probe
