#include "workbench/host/toolkit/message_texts.h"

#include <cstdlib>

#include "workbench/host/model/text.h"
#include "workbench/host/toolkit/text_files.h"

namespace workbench {
namespace {

constexpr const char* ENGLISH = "usascii";

std::filesystem::path textDirectory;

std::string language() {
    for (const char* variable : {"PRO_LANG", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != '\0') return value;
    }
    return ENGLISH;
}

std::string lookUp(const std::string& languageName, const wchar_t* file, const std::string& keyword) {
    const auto content = readFile(textDirectory / "text" / languageName / file);
    if (!content) return {};
    const auto messages = parseMessages(*content, languageName != ENGLISH);
    const auto found = messages.find(keyword);
    return found == messages.end() ? std::string{} : found->second;
}

}  // namespace

void setTextDirectory(const std::filesystem::path& directory) { textDirectory = directory; }

std::string messageText(const wchar_t* file, const char* keyword) {
    const std::string wanted = wideToUtf8(ansiToWide(keyword));
    for (const std::string& name : {language(), std::string(ENGLISH)}) {
        std::string text = lookUp(name, file, wanted);
        if (!text.empty()) return text;
    }
    return wanted;
}

}  // namespace workbench
