#include "config/cnfg.h"

#include <algorithm>

namespace {

constexpr char kComment = '#';
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kSeparators = "=\t";
constexpr std::string_view kCommentOrLineEnd = "#\r\n";

std::string_view trimEnd(std::string_view text, std::string_view blanks) {
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

std::string_view trim(std::string_view text) {
    const auto begin = text.find_first_not_of(kBlanks);
    return begin == std::string_view::npos ? std::string_view{} : trimEnd(text.substr(begin), kBlanks);
}

}  // namespace

Cnfg::Cnfg(const std::string& fileName) : mFileName(fileName), mStream(fileName) {
    // Some systems open a folder like a file; only the first read fails then.
    mStream.peek();
    if (mStream.bad()) mStream.close();
    mStream.clear();
    if (!isOpen()) fail(kFileNotFound);
}

Cnfg::Line Cnfg::split(std::string_view line) {
    Line result;
    if (line.ends_with('\r')) line.remove_suffix(1);
    const auto begin = line.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos || line[begin] == kComment) return result;
    line.remove_prefix(begin);
    if (line.front() == '[') {
        const auto end = line.find(']');
        result.isSection = end != std::string_view::npos;
        if (result.isSection) result.section = line.substr(1, end - 1);
        return result;
    }
    const auto keyEnd = line.find_first_of(kSeparators);
    result.key = trimEnd(line.substr(0, keyEnd), " ");
    if (keyEnd == std::string_view::npos) return result;
    const auto valueBegin = std::min(line.find_first_not_of(kSeparators, keyEnd), line.size());
    const auto value = line.substr(valueBegin);
    result.value = trim(value.substr(0, value.find_first_of(kCommentOrLineEnd)));
    return result;
}

std::int32_t Cnfg::positionOnSection(const std::string& section) {
    mSection = section;
    if (!isOpen()) return fail(kFileNotFound);
    mStream.clear();
    mStream.seekg(0);
    while (std::getline(mStream, mLine)) {
        const Line line = split(mLine);
        if (line.isSection && line.section == section) return fail(kOk);
    }
    return failAtEnd(kSectionNotFound);
}

std::int32_t Cnfg::nextParameter(std::string& key, std::string& value) {
    key.clear();
    value.clear();
    if (!isOpen()) return fail(kFileNotFound);
    do {
        if (!std::getline(mStream, mLine)) return failAtEnd(kNoFurtherParameter);
    } while (mLine.starts_with(kComment) || mLine.starts_with('\r'));
    const Line line = split(mLine);
    if (line.key.empty()) return fail(kNoFurtherParameter);
    key = line.key;
    value = line.value;
    return fail(kOk);
}

std::int32_t Cnfg::readParameter(const std::string& section, const std::string& key, std::string& value) {
    mParameter = key;
    value.clear();
    if (!section.empty() && positionOnSection(section) != kOk) return mError;
    std::string nextKey, nextValue;
    while (nextParameter(nextKey, nextValue) == kOk) {
        if (nextKey != key) continue;
        value = nextValue;
        return mError;
    }
    return mError == kNoFurtherParameter ? fail(kParameterNotFound) : mError;
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
