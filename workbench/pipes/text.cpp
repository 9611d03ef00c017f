#include "workbench/pipes/text.h"

#include <windows.h>
// after windows.h
#include <shellapi.h>

#include <algorithm>

namespace workbench {
namespace {

bool isUnderWine() {
    static const bool isIt = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return isIt;
}

}  // namespace

std::wstring wideText(const std::string& utf8) {
    const int size = static_cast<int>(utf8.size());
    std::wstring text(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), static_cast<int>(text.size()));
    return text;
}

std::string utf8Text(const std::wstring& wide) {
    const int size = static_cast<int>(wide.size());
    std::string text(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)),
        '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
    return text;
}

std::vector<std::string> commandLineArguments() {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(utf8Text(words[i]));
    LocalFree(words);
    return arguments;
}

std::filesystem::path programFile() {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length < name.size()) return name.substr(0, length);
        name.resize(name.size() * 2);
    }
}

std::filesystem::path hostPath(const std::string& utf8) {
    return pathOf(utf8.starts_with('/') && isUnderWine() ? "Z:" + utf8 : utf8);
}

std::string shellPath(const std::filesystem::path& path) {
    std::string text = textOf(path);
    if (!isUnderWine()) return text;
    // The C library's way is Wine's own: it knows the prefix's drives.
    using GetUnixName = char*(CDECL*)(const wchar_t*);
    const auto getUnixName = reinterpret_cast<GetUnixName>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    char* const name = getUnixName != nullptr ? getUnixName(path.c_str()) : nullptr;
    if (name == nullptr) return text;
    text = name;
    HeapFree(GetProcessHeap(), 0, name);
    return text;
}

}  // namespace workbench
