// The part of mnu_libraries.h that looks into folders, which the plug-in itself does not.
#include <algorithm>
#include <cctype>
#include <string_view>
#include <system_error>

#include "common_sources/mnu/mnu_libraries.h"

namespace fs = std::filesystem;

namespace mnu_libraries {
namespace {

std::string lowerCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

}  // namespace

std::vector<std::string> languagesIn(const fs::path& folder) {
    const std::string suffix = "_" + std::string(kSuffix);
    std::vector<std::string> languages;
    std::error_code error;
    for (fs::directory_iterator file(folder, error), end; !error && file != end; file.increment(error)) {
        const auto text = file->path().filename().u8string();
        const std::string name = lowerCase({text.begin(), text.end()});
        if (!name.starts_with(kPrefix) || !name.ends_with(suffix) || name.size() <= kPrefix.size() + suffix.size())
            continue;
        languages.push_back(name.substr(kPrefix.size(), name.size() - kPrefix.size() - suffix.size()));
    }
    if (std::ranges::find(languages, kGerman) != languages.end()) languages.emplace_back(kEnglish);
    std::ranges::sort(languages);
    return languages;
}

}  // namespace mnu_libraries
