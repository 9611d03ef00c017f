#include "workbench/host/toolkit/text_files.h"

#include <algorithm>
#include <cctype>

#include "workbench/host/model/text.h"

namespace workbench {
namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view BLANKS = " \t\r\n";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == text.npos ? std::string_view{} : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

std::string lower(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

std::vector<std::string_view> linesOf(std::string_view content) {
    std::vector<std::string_view> lines;
    while (!content.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        lines.push_back(trimmed(content.substr(0, end)));
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return lines;
}

// A field's name may have a blank in it ("startup dll" is name and value, "text_dir" one word): the first word counts.
std::pair<std::string, std::string> fieldOf(std::string_view line) {
    const std::size_t gap = std::min(line.find_first_of(" \t"), line.size());
    return {lower(line.substr(0, gap)), std::string(trimmed(line.substr(gap)))};
}

std::string complaint(const PluginEntry& entry) {
    if (entry.name.empty()) return "the entry has no name";
    if (entry.execFile.empty()) return "the entry \"" + entry.name + "\" has no exec_file";
    const auto startup = entry.fields.find("startup");
    if (startup != entry.fields.end() && lower(startup->second) != "dll") {
        return "the entry \"" + entry.name + "\" asks for start-up mode \"" + startup->second + "\", only dll is known";
    }
    return {};
}

}  // namespace

RegistryParse parseRegistry(std::string_view bytes) {
    RegistryParse parse;
    PluginEntry entry;
    int number = 0;
    const std::string content = fileTextToUtf8(bytes);
    for (const std::string_view line : linesOf(content)) {
        ++number;
        if (line.empty() || line.front() == '!') continue;
        auto [field, value] = fieldOf(line);
        if (field != "end") {
            if (field == "name") entry.name = value;
            if (field == "exec_file") entry.execFile = value;
            if (field == "text_dir") entry.textDir = utf8ToWide(value);
            entry.fields[field] = value;
            continue;
        }
        const std::string error = complaint(entry);
        if (error.empty()) {
            parse.entries.push_back(entry);
        } else {
            parse.errors.push_back("line " + std::to_string(number) + ": " + error);
        }
        entry = {};
    }
    if (!entry.fields.empty()) parse.errors.push_back("the last entry is not closed by \"end\"");
    return parse;
}

std::map<std::string, std::string> parseConfig(std::string_view bytes) {
    std::map<std::string, std::string> options;
    const std::string content = fileTextToUtf8(bytes);
    for (const std::string_view line : linesOf(content)) {
        if (line.empty() || line.front() == '!') continue;
        auto [option, value] = fieldOf(line);
        options[option] = value;
    }
    return options;
}

std::map<std::string, std::string> parseMessages(std::string_view bytes, bool wantsTranslation) {
    constexpr std::size_t LINES_PER_MESSAGE = 4;
    std::map<std::string, std::string> messages;
    const std::string content = fileTextToUtf8(bytes);
    const auto lines = linesOf(content);
    for (std::size_t i = 0; i + 2 < lines.size(); i += LINES_PER_MESSAGE) {
        const std::string_view translation = lines[i + 2];
        const bool isTranslated = wantsTranslation && !translation.empty();
        messages[std::string(lines[i])] = isTranslated ? translation : lines[i + 1];
    }
    return messages;
}

}  // namespace workbench
