// Texts and paths between the workbench, where all texts are UTF-8, and Windows, where they are UTF-16.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

inline std::filesystem::path pathOf(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }

inline std::string textOf(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

#ifdef _WIN32
// What is no valid text becomes a substitute character.
std::wstring wideText(const std::string& utf8);
std::string utf8Text(const std::wstring& wide);

// The program's arguments without its own name, whatever letters are in them.
std::vector<std::string> commandLineArguments();

// Where the program lies.
std::filesystem::path programFile();

// A path as somebody at a Unix shell writes it ("/home/me/x") under Wine, which shows that file system as drive Z.
std::filesystem::path hostPath(const std::string& utf8);

// The other way round: what a person at the shell can paste. On Windows the path as it is.
std::string shellPath(const std::filesystem::path& path);
#endif

}  // namespace workbench
