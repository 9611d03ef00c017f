// How the texts of the settings file become values. Pure, any thread.
#pragma once

#include <cstdint>
#include <string_view>

// The decimal integer that the text begins with: blanks and a sign allowed, 0 without digits, clamped to the range.
std::int32_t leadingInteger(std::string_view text);

// "on" anywhere counts, whatever else the text says.
inline bool isSwitchedOn(std::string_view text) { return text.find("on") != text.npos; }
