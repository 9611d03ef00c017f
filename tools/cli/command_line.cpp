#include "tools/cli/command_line.h"

#include <algorithm>

#include "common_sources/nearest_name.h"

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

std::string utf8(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string result(WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), static_cast<int>(result.size()), nullptr,
                        nullptr);
    return result;
}

std::wstring wide(std::string_view text) {
    const int size = static_cast<int>(text.size());
    std::wstring result(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), size, result.data(), static_cast<int>(result.size()));
    return result;
}

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
    for (int i = 1; i < count; ++i) result.push_back(utf8(words[i]));
    LocalFree(words);
    return result;
}

void print(std::FILE* stream, std::string_view text) {
    if (const HANDLE console = consoleOf(stream)) {
        std::fflush(stream);
        const std::wstring shown = wide(text);
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
