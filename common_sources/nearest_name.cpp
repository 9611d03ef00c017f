#include "common_sources/nearest_name.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

constexpr std::size_t kLongestName = 64;  // nobody's key or option is longer
constexpr std::size_t kLettersPerMistake = 3;

constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// How many letters must be added, taken out or replaced to get from one to the other.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < b.size(); ++k) {
            const std::size_t replaced = diagonal + (lower(a[i]) == lower(b[k]) ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({replaced, row[k] + 1, diagonal + 1});
        }
    }
    return row.back();
}

}  // namespace

std::string_view nearestName(std::string_view written, std::span<const std::string_view> names) {
    if (written.size() > kLongestName) return {};
    std::string_view nearest;
    std::size_t least = written.size() / kLettersPerMistake + 1;  // as many are too many
    for (const std::string_view name : names) {
        const std::size_t mistakes = distance(written, name);
        if (mistakes >= least) continue;
        least = mistakes;
        nearest = name;
    }
    return nearest;
}
