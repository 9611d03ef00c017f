#include "common_sources/settings_value.h"

#include <charconv>
#include <limits>

std::int32_t leadingInteger(std::string_view text) {
    std::size_t begin = text.find_first_not_of(" \t");
    if (begin == text.npos) return 0;
    const bool isNegative = text[begin] == '-';
    if (isNegative || text[begin] == '+') ++begin;
    if (begin == text.size() || text[begin] < '0' || text[begin] > '9') return 0;
    std::int32_t value = 0;
    const char* first = text.data() + begin - (isNegative ? 1 : 0);
    const auto result = std::from_chars(first, text.data() + text.size(), value);
    if (result.ec != std::errc::result_out_of_range) return value;
    return isNegative ? std::numeric_limits<std::int32_t>::min() : std::numeric_limits<std::int32_t>::max();
}
