#include "workbench/pipes/numbers.h"

#include <charconv>
#include <stdexcept>
#include <string>

namespace workbench {

long long parseNumber(std::string_view text, long long least, long long greatest) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = text.substr(isHex ? 2 : 0);
    long long number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10);
    const bool isWhole = !digits.empty() && stop == digits.data() + digits.size();
    if (!isWhole || error == std::errc::invalid_argument || (isHex && digits.front() == '-')) {
        throw std::runtime_error('"' + std::string(text) + "\" is not a number");
    }
    if (error != std::errc() || number < least || number > greatest) {
        throw std::runtime_error('"' + std::string(text) + "\" is not in " + std::to_string(least) + " .. " +
                                 std::to_string(greatest));
    }
    return number;
}

}  // namespace workbench
