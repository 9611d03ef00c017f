// UTF-8 and the wide texts of Windows. What is ill-formed becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace seat {

std::wstring wideText(std::string_view utf8);
std::string utf8Text(std::wstring_view wide);

}  // namespace seat
