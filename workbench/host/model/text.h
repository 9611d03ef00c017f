// Texts between encodings, and from files.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace workbench {

std::optional<std::string> readFile(const std::filesystem::path& path);  // nothing when it cannot be opened

std::string wideToUtf8(std::wstring_view text);
std::wstring utf8ToWide(std::string_view text);
std::wstring ansiToWide(std::string_view text);  // process code page

// Content of a text file as UTF-8 without its byte order mark. A file without one is in the process code page, also
// when its bytes would make sense as UTF-8.
std::string fileTextToUtf8(std::string_view bytes);

}  // namespace workbench
