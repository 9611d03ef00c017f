// Inputs that consist of several texts, each ended by a byte 0xFF.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// Takes the first text out of the rest.
inline std::string takeText(std::string_view& rest) {
    const std::string text(rest.substr(0, rest.find('\xff')));
    rest.remove_prefix(std::min(text.size() + 1, rest.size()));
    return text;
}
