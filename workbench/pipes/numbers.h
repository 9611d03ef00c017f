// Numbers in requests, commands and files.
#pragma once

#include <limits>
#include <string_view>

namespace workbench {

// The whole text as a decimal or ("0x") hexadecimal number within the range. Throws std::runtime_error naming the
// text and what is wrong with it.
long long parseNumber(std::string_view text, long long least, long long greatest);

template <typename Number>
Number parseNumber(std::string_view text) {
    return static_cast<Number>(
        parseNumber(text, std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max()));
}

}  // namespace workbench
