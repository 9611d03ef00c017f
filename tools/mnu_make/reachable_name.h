// The making of a menu file takes paths in the process code page, and of limited length; users' folders have any.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

// Whether the code page has all letters of a text in UTF-8.
bool isInCodePage(const std::string& utf8);

// A name in the code page under which a folder (absolute, with backslashes) can be reached, with `room` characters
// left for a backslash and a file's name: its own, or its short one if it is there and its drive has short names.
// Nothing when there is none.
std::optional<std::string> reachableName(const std::filesystem::path& folder, std::size_t room);
