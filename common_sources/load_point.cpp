#include "common_sources/load_point.h"

#include <cctype>
#include <cstdlib>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

namespace fs = std::filesystem;

namespace {

std::string systemLanguage() {
#ifdef _WIN32
    char name[32] = "";
    GetLocaleInfoA(LOCALE_SYSTEM_DEFAULT, LOCALE_SENGLANGUAGE, name, sizeof name);
    return name;
#else
    return {};
#endif
}

CreoLanguage deciding(const std::string& mnuLanguage) {
    if (!mnuLanguage.empty()) return {mnuLanguage, "the setting mnuLanguage"};
    if (const char* value = std::getenv("PRO_LANG")) return {value, "the variable PRO_LANG"};
    if (const char* value = std::getenv("LANG")) return {value, "the variable LANG"};
    return {systemLanguage(), "the system"};
}

}  // namespace

fs::path compiledResources(const fs::path& loadPoint) { return loadPoint / "text" / "compiled_resource"; }

fs::path findLoadPoint(const fs::path& executable) {
    std::error_code error;
    for (fs::path folder = executable.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
        if (fs::is_directory(compiledResources(folder), error)) return folder;
    }
    return {};
}

CreoLanguage creoLanguage(const std::string& mnuLanguage) {
    CreoLanguage language = deciding(mnuLanguage);
    for (char& c : language.name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return language;
}
