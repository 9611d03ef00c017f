// What the device's control panel keeps: which button runs which command in which mode.
//
// A bind file is text. "[Mode]" begins the bindings of a mode ("[Default]" holds for modes that do not bind the
// button), "button = command" binds a button, counted from 1. A command is written as in the menu file, for example
// "ProCmdEnvMdlDisp*Wireframe" or "OB_Toggle_Object_Move_Mode". Empty lines and lines that begin with "#" are skipped.
//
// Texts pass as they are: commands and modes in the encoding of the menu file. One thread at a time.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace workbench {

inline constexpr std::string_view kDefaultMode = "Default";
inline constexpr int kMaxButton = 999;

struct BindFile {
    using Buttons = std::map<int, std::string>;  // command by button
    std::string heading;                         // comment lines before the first mode, kept when written again
    std::map<std::string, Buttons> modes;

    // What the button is bound to in a mode, or else in the default mode; null when to nothing.
    const std::string* find(const std::string& mode, int button) const;

    bool operator==(const BindFile&) const = default;
};

// `name` stands in what is said of a line that cannot be understood (std::runtime_error, with its place).
BindFile parseBindFile(std::string_view text, const std::string& name);
std::string bindFileText(const BindFile& file);

// Throw std::runtime_error naming the file when it cannot be read or written. What is written replaces the file as a
// whole, so that a full disk costs nothing of it; while somebody reads the file, writing is tried for a second.
BindFile readBindFile(const std::filesystem::path& path);
void writeBindFile(const BindFile& file, const std::filesystem::path& path);

}  // namespace workbench
