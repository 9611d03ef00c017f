#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

// Folder of the test program, with a backslash at its end; by its short name, which a narrow path holds whatever the
// checkout's folder is called.
inline std::string programFolder() {
    wchar_t path[1024] = L"";
    GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)));
    const std::wstring folder = std::filesystem::path(path).parent_path().wstring() + L'\\';
    GetShortPathNameW(folder.c_str(), path, static_cast<DWORD>(std::size(path)));
    return std::filesystem::path(path).string();
}

// Folder of the test libraries and expected menu files, with a backslash at its end.
inline std::string dataFolder() { return programFolder() + "mnu_data\\"; }
