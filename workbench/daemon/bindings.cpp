#include "workbench/daemon/bindings.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string_view>

#include "workbench/pipes/numbers.h"

namespace workbench {
namespace {

constexpr int kMaxButton = 999;
constexpr std::string_view kMenuSection = "[MenuBar]";
constexpr std::string_view kDefaultMode = "Default";
constexpr std::string_view kBlanks = " \t\r";

std::string_view trim(std::string_view text) {
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::ifstream openText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
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

void Bindings::load(const std::string& bindFile, const std::string& menuFile) {
    const std::vector<std::string> functions = readMenuFunctions(menuFile);
    std::ifstream file = openText(bindFile);
    std::map<std::string, Buttons> modes;
    Buttons* buttons = nullptr;
    std::string unknown;
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        const std::string_view line = trim(text);
        if (line.empty() || line.front() == '#') continue;
        if (line.front() == '[' && line.back() == ']') {
            buttons = &modes[std::string(trim(line.substr(1, line.size() - 2)))];
            continue;
        }
        const std::size_t equals = line.find('=');
        const std::string place = bindFile + ':' + std::to_string(number) + ": ";
        if (equals == std::string_view::npos) throw std::runtime_error(place + "neither [Mode] nor button = command");
        if (buttons == nullptr) throw std::runtime_error(place + "a binding before the first [Mode]");
        const auto button = static_cast<int>(parseNumber(trim(line.substr(0, equals)), 1, kMaxButton));
        const std::string_view command = trim(line.substr(equals + 1));
        const auto found = std::ranges::find(functions, command);
        if (found == functions.end()) unknown += (unknown.empty() ? "" : ", ") + std::string(command);
        (*buttons)[button] = static_cast<int>(found - functions.begin());
    }
    if (!unknown.empty()) throw std::runtime_error("not in \"" + menuFile + "\": " + unknown);
    mModes = std::move(modes);
}

int Bindings::functionIndex(const std::string& mode, int button) const {
    for (const std::string& candidate : {mode, std::string(kDefaultMode)}) {
        const auto buttons = mModes.find(candidate);
        if (buttons == mModes.end()) continue;
        const auto found = buttons->second.find(button);
        if (found != buttons->second.end()) return found->second;
    }
    throw std::runtime_error("button " + std::to_string(button) + " is not bound in mode \"" + mode + '"');
}

std::size_t Bindings::count() const {
    std::size_t count = 0;
    for (const auto& [mode, buttons] : mModes) count += buttons.size();
    return count;
}

}  // namespace workbench
