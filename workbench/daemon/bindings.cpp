#include "workbench/daemon/bindings.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr std::string_view kMenuSection = "[MenuBar]";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::ifstream openText(const std::string& path) {
    std::ifstream file(pathOf(path), std::ios::binary);
    if (!file) throw std::runtime_error("cannot read \"" + path + '"');
    return file;
}

// Value of a menu file's line, empty when it has none: what follows the "=" (or tab) behind the key, up to a comment.
std::string_view menuValue(std::string_view line) {
    const std::size_t separator = line.find_first_of("=\t");
    if (separator == std::string_view::npos) return {};
    line.remove_prefix(std::min(line.find_first_not_of("=\t", separator), line.size()));
    return trim(line.substr(0, line.find('#')));
}

// Command part of a value "{placement}command|help".
std::string_view commandOf(std::string_view value) {
    const std::size_t brace = value.find('}');
    if (brace != std::string_view::npos) value.remove_prefix(brace + 1);
    return value.substr(0, value.find('|'));
}

}  // namespace

std::vector<std::string> readMenuFunctions(const std::string& menuFile) {
    std::ifstream file = openText(menuFile);
    std::vector<std::string> functions;
    std::string line;
    while (std::getline(file, line) && trim(line) != kMenuSection) {
    }
    if (!file) throw std::runtime_error('"' + menuFile + "\" has no section " + std::string(kMenuSection));
    while (std::getline(file, line)) {
        if (line.starts_with('#')) continue;
        const std::string_view entry = trim(line);
        if (entry.empty() || entry.front() == '[' || entry.front() == '#') break;  // a line without a key ends it
        const std::string_view command = commandOf(menuValue(entry));
        if (!command.empty()) functions.emplace_back(command);
    }
    return functions;
}

void Bindings::load(const std::string& bindFile, const std::string& menuFile, UnknownCommands unknown) {
    std::map<std::string, int> indices;
    int index = 0;
    for (const std::string& command : readMenuFunctions(menuFile)) indices.emplace(command, index++);
    BindFile file = readBindFile(pathOf(bindFile));
    std::string missing;
    for (const auto& [mode, buttons] : file.modes) {
        for (const auto& [button, command] : buttons) {
            if (!indices.contains(command)) missing += (missing.empty() ? "" : ", ") + command;
        }
    }
    if (!missing.empty() && unknown == UnknownCommands::refused) {
        throw std::runtime_error("not in \"" + menuFile + "\": " + missing);
    }
    mFile = std::move(file);
    mIndices = std::move(indices);
    mMenuFile = menuFile;
}

int Bindings::functionIndex(const std::string& mode, int button) const {
    const std::string* command = mFile.find(mode, button);
    const std::string name = "button " + std::to_string(button);
    if (command == nullptr) throw std::runtime_error(name + " is not bound in mode \"" + mode + '"');
    const auto found = mIndices.find(*command);
    if (found != mIndices.end()) return found->second;
    throw std::runtime_error(name + " is bound to " + *command + ", which is not in \"" + mMenuFile + '"');
}

std::size_t Bindings::count() const {
    std::size_t count = 0;
    for (const auto& [mode, buttons] : mFile.modes) count += buttons.size();
    return count;
}

std::vector<std::string> Bindings::lines() const {
    std::vector<std::string> lines;
    for (const auto& [mode, buttons] : mFile.modes) {
        for (const auto& [button, command] : buttons) {
            const auto found = mIndices.find(command);
            const int index = found == mIndices.end() ? -1 : found->second;
            lines.push_back(mode + '|' + std::to_string(button) + '|' + command + '|' + std::to_string(index));
        }
    }
    return lines;
}

}  // namespace workbench
