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

}  // namespace workbench
