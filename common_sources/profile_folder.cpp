#include "common_sources/profile_folder.h"

#ifdef _WIN32
#include <windows.h>

namespace {

// False when the code page lacks a letter, so that a substitute stands for it.
bool toCodePage(const std::wstring& text, std::string& narrow) {
    const int size = static_cast<int>(text.size());
    BOOL isLossy = FALSE;
    narrow.assign(WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), size, nullptr, 0, nullptr, nullptr),
                  '\0');
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), size, narrow.data(), static_cast<int>(narrow.size()),
                        nullptr, &isLossy);
    return !isLossy;
}

// Calls a function of Windows that fills a buffer and answers the length, or the size that it needs.
template <typename Fill>
std::wstring filled(const Fill& fill) {
    std::wstring text(fill(nullptr, 0), L'\0');
    if (!text.empty()) text.resize(fill(text.data(), static_cast<DWORD>(text.size())));
    return text;
}

}  // namespace

std::string narrowPath(const std::wstring& path) {
    std::string narrow;
    if (toCodePage(path, narrow)) return narrow;
    const std::wstring shortPath =
        filled([&](wchar_t* text, DWORD size) { return GetShortPathNameW(path.c_str(), text, size); });
    if (!shortPath.empty()) toCodePage(shortPath, narrow);
    return narrow;
}

std::string profileFolder() {
    return narrowPath(
        filled([](wchar_t* text, DWORD size) { return GetEnvironmentVariableW(L"USERPROFILE", text, size); }));
}
#else
#include <cstdlib>

std::string profileFolder() {
    const char* value = std::getenv("USERPROFILE");
    return value != nullptr ? value : "";
}
#endif
