// Small helpers for text of files that people edit. Letters are those of ASCII.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace seat {

inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text);  // without blanks, tabs and line ends at both ends
std::string lowerCase(std::string_view text);
bool isSameName(std::string_view a, std::string_view b);  // but for letter case
bool isAscii(std::string_view text);
bool isUtf8(std::string_view text);  // well-formed

// Lines without their line ends (LF, or CR LF); what follows the last line end counts when it is not empty.
std::vector<std::string_view> linesOf(std::string_view text);

// What stands behind the last separator of either kind.
std::string_view fileNameOf(std::string_view path);

// "1 command", "2 commands".
std::string counted(std::size_t number, std::string_view thing);

}  // namespace seat
