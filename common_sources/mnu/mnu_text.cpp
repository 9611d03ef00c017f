#include "common_sources/mnu/mnu_text.h"

#include <algorithm>
#include <vector>

namespace {

constexpr std::string_view kCommandPrefix = "PROCMD";
constexpr std::string_view kCommandSuffix = ".TXT";
constexpr std::string_view kPaneSuffix = "_PANE.RES";
constexpr std::string_view kLabelKey = "] COMMAND.LABEL";
constexpr std::string_view kHelpTextKey = "] COMMAND.HELPTEXT";
constexpr char kMenuLevel = '0';

bool containsUpper(std::string_view text, std::string_view upperCaseWanted) {
    return std::search(text.begin(), text.end(), upperCaseWanted.begin(), upperCaseWanted.end(),
                       [](char have, char wanted) { return asciiUpper(have) == wanted; }) != text.end();
}

// Lines end at a line feed; a carriage return before it belongs to the line end.
std::vector<std::string_view> splitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    for (;;) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (end != text.npos && line.ends_with('\r')) line.remove_suffix(1);
        lines.push_back(line);
        if (end == text.npos) return lines;
        text.remove_prefix(end + 1);
    }
}

std::string withoutAmpersands(std::string_view label) {
    std::string result(label);
    std::erase(result, '&');
    return result;
}

// Appends a character of a pane's name to the key. What must not stand in a key takes the place of the character
// below it in byte order, followed by one that keeps the two apart and in order; that way keys sort as names do.
void appendKeyCharacter(std::string& key, char c) {
    constexpr char kFirst = '1';
    constexpr char kSecond = '2';
    if (c >= 0 && c <= ' ') {
        key += ' ';
        key += static_cast<char>('@' + c);
    } else if (c == '"' || c == '<') {
        key += c;
        key += kFirst;
    } else if (c == '#' || c == '=') {
        key += static_cast<char>(c - 1);
        key += kSecond;
    } else if (c == '~' || c == '\x7f') {
        key += '~';
        key += c == '~' ? kFirst : kSecond;
    } else {
        key += c;
    }
}

}  // namespace

std::string asciiUpper(std::string_view text) {
    std::string result(text);
    for (char& c : result) c = asciiUpper(c);
    return result;
}

ResourceKind resourceKind(std::string_view name) {
    const std::string upper = asciiUpper(name);
    if (upper.starts_with(kCommandPrefix) && upper.ends_with(kCommandSuffix)) return ResourceKind::kCommandText;
    if (upper.ends_with(kPaneSuffix)) return ResourceKind::kPane;
    return ResourceKind::kOther;
}

std::string resourceCommandName(std::string_view name) {
    name.remove_suffix(kCommandSuffix.size());
    return asciiUpper(name);
}

std::string menuKeyOfPane(std::string_view name) {
    name.remove_suffix(kPaneSuffix.size());
    std::string key(1, kMenuLevel);
    for (const char c : name) appendKeyCharacter(key, asciiUpper(c));
    return key;
}

CommandText parseCommandText(std::string_view text, TextLine line) {
    const std::vector<std::string_view> lines = splitLines(text.substr(0, text.find('\0')));
    const auto distance = static_cast<std::size_t>(line);
    CommandText result;
    for (std::size_t key = 0; key + distance < lines.size(); ++key) {
        if (containsUpper(lines[key], kLabelKey)) {
            result.label = withoutAmpersands(lines[key + distance]);
        } else if (containsUpper(lines[key], kHelpTextKey)) {
            result.helpText = lines[key + distance];
        }
    }
    return result;
}
