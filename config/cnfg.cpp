#include "config/cnfg.h"

#include <algorithm>

namespace {

constexpr char kComment = '#';
constexpr std::string_view kSeparators = "=\t";
constexpr std::string_view kCommentOrReturn = "#\r";

constexpr bool isBlank(char c) { return c == ' ' || c == '\t'; }
constexpr bool isSeparator(char c) { return c == '=' || c == '\t'; }

// Most of a line that was written in columns is blanks, so they are skipped without a call for each, which
// std::string_view's own searches for one of several characters make.
template <typename Is>
std::string_view trimStart(std::string_view text, Is is) {
    while (!text.empty() && is(text.front())) text.remove_prefix(1);
    return text;
}

template <typename Is>
std::string_view trimEnd(std::string_view text, Is is) {
    while (!text.empty() && is(text.back())) text.remove_suffix(1);
    return text;
}

// What stands before the first of the characters. One search for each, of many bytes at a time.
std::string_view before(std::string_view text, std::string_view characters) {
    for (const char c : characters) text = text.substr(0, text.find(c));
    return text;
}

}  // namespace

Cnfg::Cnfg(const std::string& fileName) : mFileName(fileName), mFile(fileName, FileText::Mode::text) {
    if (!isOpen()) fail(kFileNotFound);
}

Cnfg::Line Cnfg::split(std::string_view line) {
    Line result;
    if (line.ends_with('\r')) line.remove_suffix(1);
    line = trimStart(line, isBlank);
    if (line.empty() || line.front() == kComment) return result;
    if (line.front() == '[') {
        const auto end = line.find(']');
        result.isSection = end != std::string_view::npos;
        if (result.isSection) result.section = line.substr(1, end - 1);
        return result;
    }
    const auto key = before(line, kSeparators);
    result.key = trimEnd(key, [](char c) { return c == ' '; });
    const auto value = before(trimStart(line.substr(key.size()), isSeparator), kCommentOrReturn);
    result.value = trimEnd(trimStart(value, isBlank), isBlank);
    return result;
}

bool Cnfg::nextLine(std::string_view& line) {
    const std::string_view rest = mFile.text().substr(mAt);
    if (rest.empty()) return false;
    line = rest.substr(0, rest.find('\n'));
    mAt = std::min(mAt + line.size() + 1, mFile.text().size());
    return true;
}

std::int32_t Cnfg::positionOnSection(std::string_view section) {
    mSection = section;
    if (!isOpen()) return fail(kFileNotFound);
    mAt = 0;
    for (std::string_view text; nextLine(text);) {
        if (text.find('[') == text.npos) continue;
        const Line line = split(text);
        if (line.isSection && line.section == section) return fail(kOk);
    }
    return failAtEnd(kSectionNotFound);
}

std::int32_t Cnfg::nextParameter(std::string_view& key, std::string_view& value) {
    key = value = {};
    if (!isOpen()) return fail(kFileNotFound);
    std::string_view text;
    do {
        if (!nextLine(text)) return failAtEnd(kNoFurtherParameter);
    } while (text.starts_with(kComment) || text.starts_with('\r'));
    const Line line = split(text);
    if (line.key.empty()) return fail(kNoFurtherParameter);
    key = line.key;
    value = line.value;
    return fail(kOk);
}

std::int32_t Cnfg::readParameter(std::string_view section, std::string_view key, std::string_view& value) {
    mParameter = key;
    value = {};
    if (section.empty()) {
        std::string_view nextKey, nextValue;
        while (nextParameter(nextKey, nextValue) == kOk) {
            if (nextKey != key) continue;
            value = nextValue;
            return mError;
        }
        return mError == kNoFurtherParameter ? fail(kParameterNotFound) : mError;
    }
    if (listSection(section) != kOk) return mError;
    const auto found = std::ranges::find(mListed.entries, key, &Entry::key);
    const bool isFound = found != mListed.entries.end();
    mAt = isFound ? found->end : mListed.end;
    if (!isFound) return fail(mListed.endError == kNoFurtherParameter ? kParameterNotFound : mListed.endError);
    value = found->value;
    return fail(kOk);
}

std::int32_t Cnfg::listSection(std::string_view section) {
    if (mListed.isValid && mListed.section == section) {
        mSection = section;
        return kOk;
    }
    mListed.isValid = false;
    if (positionOnSection(section) != kOk) return mError;
    mListed.entries.clear();
    std::string_view key, value;
    while (nextParameter(key, value) == kOk) mListed.entries.push_back({key, value, mAt});
    mListed.section = section;
    mListed.end = mAt;
    mListed.endError = mError;
    mListed.isValid = true;
    return kOk;
}

std::string Cnfg::errorText() const {
    switch (mError) {
        case kOk:
            return "OK";
        case kFileNotFound:
            return "File '" + mFileName + "' not found!";
        case kSectionNotFound:
            return "Section '" + mSection + "' not found!";
        case kParameterNotFound:
            return "Parameter '" + mParameter + "' in section '" + mSection + "' not found! (" + mFileName + ")";
        case kNoFurtherParameter:
            return "No further parameter in section '" + mSection + "'!";
        default:
            return "Unknown error in class Cnfg!";
    }
}
