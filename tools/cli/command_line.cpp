#include "tools/cli/command_line.h"

#include <algorithm>

#include "common_sources/nearest_name.h"
#include "tools/seat/wide_text.h"

#ifdef _WIN32
#include <io.h>
#include <windows.h>
// after windows.h
#include <shellapi.h>
#else
#include <unistd.h>
#endif

namespace cli {

#ifdef _WIN32
namespace {

HANDLE consoleOf(std::FILE* stream) {
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    DWORD mode = 0;
    return GetConsoleMode(handle, &mode) ? handle : nullptr;
}

}  // namespace

// main()'s arguments are in the process code page, which does not hold every letter.
std::vector<std::string> arguments(int, char**) {
    std::vector<std::string> result;
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) result.push_back(seat::utf8Text(words[i]));
    LocalFree(words);
    return result;
}

void print(std::FILE* stream, std::string_view text) {
    if (const HANDLE console = consoleOf(stream)) {
        std::fflush(stream);
        const std::wstring shown = seat::wideText(text);
        DWORD written = 0;
        WriteConsoleW(console, shown.data(), static_cast<DWORD>(shown.size()), &written, nullptr);
        return;
    }
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

bool isTerminal(std::FILE* stream) { return consoleOf(stream) != nullptr; }
#else
std::vector<std::string> arguments(int argc, char** argv) { return {argv + 1, argv + argc}; }

void print(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

bool isTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }
#endif

std::string ParsedArguments::value(std::string_view option) const {
    const auto found = options.find(option);
    return found == options.end() ? std::string() : found->second;
}

namespace {

std::string unknown(const std::string& word, std::span<const Option> known) {
    std::vector<std::string_view> names;
    for (const Option& option : known) names.push_back(option.name);
    const std::string_view nearest = nearestName(word, names);
    return "unknown option '" + word + "'" +
           (nearest.empty() ? std::string() : "; did you mean '" + std::string(nearest) + "'?");
}

}  // namespace

ParsedArguments parse(const std::vector<std::string>& arguments, std::span<const Option> known) {
    ParsedArguments parsed;
    bool isOptionAllowed = true;
    for (auto word = arguments.begin(); word != arguments.end() && parsed.problem.empty(); ++word) {
        if (isOptionAllowed && *word == "--") {
            isOptionAllowed = false;
        } else if (!isOptionAllowed || !word->starts_with("--")) {
            parsed.operands.push_back(*word);
        } else if (const auto option = std::ranges::find(known, std::string_view(*word), &Option::name);
                   option == known.end()) {
            parsed.problem = unknown(*word, known);
        } else if (parsed.has(*word)) {
            parsed.problem = "option '" + *word + "' is given twice";
        } else if (!option->takesValue) {
            parsed.options[*word];
        } else if (const auto value = std::next(word);
                   value == arguments.end() || value->empty() || value->starts_with("--")) {
            parsed.problem = "option '" + *word + "' needs a value";
        } else {
            parsed.options[*word] = *value;
            word = value;
        }
    }
    return parsed;
}

}  // namespace cli
