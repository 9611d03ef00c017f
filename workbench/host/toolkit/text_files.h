// The small text files that the host reads: registrations of plug-ins, configuration options, message files. They are
// UTF-8 with a byte order mark, or in the process code page without one; what was read is UTF-8.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

// One entry of a registry file (protk.dat): "field value" lines closed by "end".
struct PluginEntry {
    std::string name;
    std::string execFile;
    std::filesystem::path textDir;
    std::map<std::string, std::string> fields;  // all of them, lower-case keys
};

struct RegistryParse {
    std::vector<PluginEntry> entries;
    std::vector<std::string> errors;  // "line 7: ..."; entries with errors are left out
};
RegistryParse parseRegistry(std::string_view bytes);

// "option value" lines; "!" begins a comment. Keys in lower case, the last value wins.
std::map<std::string, std::string> parseConfig(std::string_view bytes);

// Texts of a message file by keyword; each message is four lines: keyword, English text, translation (may be blank),
// one reserved line.
std::map<std::string, std::string> parseMessages(std::string_view bytes, bool wantsTranslation);

}  // namespace workbench
