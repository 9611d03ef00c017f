// The rules of the configuration reader once more, on the whole text at once: what tests and fuzzers compare the reader
// with.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace plain {

using Entries = std::vector<std::pair<std::string, std::string>>;

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::string line;
    for (const char c : text) {
        if (c != '\n') {
            line += c;
            continue;
        }
        lines.push_back(line);
        line.clear();
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

inline bool isBlank(char c) { return c == ' ' || c == '\t'; }

inline std::string withoutIndent(std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    while (!line.empty() && isBlank(line.front())) line.erase(line.begin());
    return line;
}

inline bool isHeaderOf(const std::string& line, const std::string& section) {
    const std::string text = withoutIndent(line);
    return text.substr(0, section.size() + 2) == "[" + section + "]";
}

// The entry of a line; an empty key when it has none.
inline Entries::value_type entryOf(const std::string& line) {
    std::string rest = withoutIndent(line), key, value;
    if (rest.empty() || rest[0] == '#' || rest[0] == '[') return {};
    while (!rest.empty() && rest[0] != '=' && rest[0] != '\t') {
        key += rest[0];
        rest.erase(rest.begin());
    }
    while (!key.empty() && key.back() == ' ') key.pop_back();
    while (!rest.empty() && (rest[0] == '=' || rest[0] == '\t')) rest.erase(rest.begin());
    for (const char c : rest) {
        if (c == '#' || c == '\r') break;
        if (!value.empty() || !isBlank(c)) value += c;
    }
    while (!value.empty() && isBlank(value.back())) value.pop_back();
    if (key.empty()) return {};
    return {key, value};
}

inline Entries section(const std::string& text, const std::string& name) {
    const auto lines = linesOf(text);
    auto line = std::find_if(lines.begin(), lines.end(), [&](const auto& l) { return isHeaderOf(l, name); });
    Entries entries;
    if (line == lines.end()) return entries;
    for (++line; line != lines.end(); ++line) {
        if (!line->empty() && (line->front() == '#' || line->front() == '\r')) continue;
        const auto entry = entryOf(*line);
        if (entry.first.empty()) break;
        entries.push_back(entry);
    }
    return entries;
}

struct Item {
    std::string label, command, help;
    bool operator==(const Item&) const = default;
};

// Items of a menu file: the entries of its section MenuBar that have a command.
inline std::vector<Item> menuItems(const std::string& text) {
    std::vector<Item> items;
    for (const auto& [key, value] : section(text, "MenuBar")) {
        Item item{key, "", ""};
        std::string* part = value.find('}') == std::string::npos ? &item.command : nullptr;
        for (const char c : value) {
            if (part == nullptr) {
                if (c == '}') part = &item.command;
            } else if (part == &item.command && c == '|') {
                part = &item.help;
            } else {
                *part += c;
            }
        }
        if (!item.command.empty()) items.push_back(item);
    }
    return items;
}

// Of a table of commands.
std::vector<std::string> textsOf(const auto& table) {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < table.size(); ++i) texts.emplace_back(table[i]);
    return texts;
}

inline std::string valueOf(const Entries& entries, const std::string& key) {
    for (const auto& [name, value] : entries) {
        if (name == key) return value;
    }
    return {};
}

}  // namespace plain
