#include "common_sources/mnu/mnu_libraries.h"

#include <algorithm>
#include <cctype>
#include <system_error>

namespace fs = std::filesystem;

namespace mnu_libraries {
namespace {

constexpr char kPrefix[] = "pro_default_";
constexpr char kSuffix[] = "resources.dll";

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

std::string mainLibrary() { return std::string(kPrefix) + kSuffix; }

std::string languageLibrary(const std::string& language) {
    return kPrefix + (language == kEnglish ? kGerman : language) + "_" + kSuffix;
}

std::vector<std::string> languagesIn(const fs::path& folder) {
    constexpr std::size_t kPrefixSize = sizeof kPrefix - 1;
    const std::string suffix = std::string("_") + kSuffix;
    std::vector<std::string> languages;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
        const auto text = file->path().filename().u8string();
        const std::string name = lowerCase({text.begin(), text.end()});
        if (!name.starts_with(kPrefix) || !name.ends_with(suffix) || name.size() <= kPrefixSize + suffix.size())
            continue;
        languages.push_back(name.substr(kPrefixSize, name.size() - kPrefixSize - suffix.size()));
    }
    if (std::ranges::find(languages, kGerman) != languages.end()) languages.emplace_back(kEnglish);
    std::ranges::sort(languages);
    return languages;
}

}  // namespace mnu_libraries
