#pragma once

#include <windows.h>

#include <string>

// Folder of the test program, with a backslash at its end.
inline std::string programFolder() {
    char path[1024] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    const std::string text = path;
    return text.substr(0, text.rfind('\\') + 1);
}

// Folder of the test libraries and expected menu files, with a backslash at its end.
inline std::string dataFolder() { return programFolder() + "mnu_data\\"; }
