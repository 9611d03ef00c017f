#include "common_sources/load_point.h"

#include <cctype>
#include <cstdlib>
#include <string_view>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/stat.h>
#endif

namespace {

constexpr auto kSeparator = std::filesystem::path::preferred_separator;

bool isFolder(const NativePath& path) {
#ifdef _WIN32
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
#else
    struct stat facts {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
#endif
}

// Empty above the first folder of a drive or server.
NativePath parentOf(const NativePath& path) {
    static constexpr NativePath::value_type kSeparators[] = {kSeparator, '/', 0};
    NativePath parent = path.substr(0, path.find_last_of(kSeparators) + 1);
    parent.resize(parent.find_last_not_of(kSeparators) + 1);
    if (kSeparator == '/') return parent;
    const auto firstFolder = parent.find_first_of(kSeparators, parent.find_first_not_of(kSeparators));
    return firstFolder == parent.npos ? NativePath() : parent;  // "C:" or "\\server"
}

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

NativePath compiledResources(const NativePath& loadPoint) {
    NativePath path = loadPoint;
    for (const std::string_view folder : {"text", "compiled_resource"}) {
        path += kSeparator;
        path.append(folder.begin(), folder.end());
    }
    return path;
}

NativePath findLoadPoint(const NativePath& executable) {
    for (NativePath folder = parentOf(executable); !folder.empty(); folder = parentOf(folder)) {
        if (isFolder(compiledResources(folder))) return folder;
    }
    return {};
}

CreoLanguage creoLanguage(const std::string& mnuLanguage) {
    CreoLanguage language = deciding(mnuLanguage);
    for (char& c : language.name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return language;
}
