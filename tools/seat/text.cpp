#include "tools/seat/text.h"

#include <algorithm>

namespace seat {

namespace {

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Number of bytes of the sequence that begins with this one, 0 when none does.
std::size_t sequenceSize(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    return lead >= 0xF0 && lead <= 0xF4 ? 4 : 0;
}

// Whether a lead byte may be followed by this one: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isSecond(unsigned char lead, unsigned char byte) {
    if (lead == 0xE0) return byte >= 0xA0;
    if (lead == 0xED) return byte <= 0x9F;
    if (lead == 0xF0) return byte >= 0x90;
    return lead != 0xF4 || byte <= 0x8F;
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto begin = text.find_first_not_of(kBlanks);
    if (begin == text.npos) return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::string lowerCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), lower);
    return result;
}

bool isSameName(std::string_view a, std::string_view b) { return std::ranges::equal(a, b, {}, lower, lower); }

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool isUtf8(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t size = sequenceSize(lead);
        if (size == 0 || size > text.size() - i) return false;
        for (std::size_t k = 1; k < size; ++k) {
            const auto byte = static_cast<unsigned char>(text[i + k]);
            if ((byte & 0xC0) != 0x80 || (k == 1 && !isSecond(lead, byte))) return false;
        }
        i += size;
    }
    return true;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return lines;
}

std::string_view fileNameOf(std::string_view path) {
    const auto cut = path.find_last_of("\\/");
    return cut == path.npos ? path : path.substr(cut + 1);
}

std::string counted(std::size_t number, std::string_view thing) {
    return std::to_string(number) + " " + std::string(thing) + (number == 1 ? "" : "s");
}

}  // namespace seat
