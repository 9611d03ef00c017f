#include "tools/seat/private_names.h"

#include <algorithm>

#include "tools/seat/text.h"

namespace seat {

namespace {

constexpr std::size_t kShortestName = 2;  // what is shorter occurs in too many words

// Replaces a name in any letter case.
void replaceAll(std::string& text, const std::string& name, const std::string& replacement) {
    if (name.size() < kShortestName) return;
    const std::string wanted = lowerCase(name);
    std::string lower = lowerCase(text);
    for (std::size_t at = lower.find(wanted); at != std::string::npos;
         at = lower.find(wanted, at + replacement.size())) {
        text.replace(at, name.size(), replacement);
        lower.replace(at, name.size(), replacement);
    }
}

}  // namespace

std::string withoutNames(std::string text, PrivateNames names) {
    std::ranges::sort(names, std::ranges::greater{}, [](const auto& name) { return name.first.size(); });
    for (const auto& [name, replacement] : names) replaceAll(text, name, replacement);
    return text;
}

}  // namespace seat
