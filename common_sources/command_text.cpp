#include "common_sources/command_text.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

constexpr std::size_t kMaxMapkeyLength = 2;
constexpr char kDefaultMapkey[] = "ob";

std::string quoted(std::string_view text) { return "`" + std::string(text) + "`"; }

}  // namespace

CommandString splitCommand(std::string_view command) {
    const auto star = command.find('*');
    if (star == std::string_view::npos) return {std::string(command), {}};
    return {std::string(command.substr(0, star)), std::string(command.substr(star + 1))};
}

std::string commandMacro(std::string_view command) {
    const CommandString parts = splitCommand(command);
    std::string macro = "~ Command " + quoted(parts.name);
    if (!parts.option.empty()) macro += " " + quoted(parts.option);
    return macro + ";";
}

std::string mapkeySequence(std::string_view definition) {
    std::string keys;
    for (const char c : definition) {
        if ((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')) keys += c;
        if (keys.size() == kMaxMapkeyLength) break;
    }
    return keys.empty() ? kDefaultMapkey : keys;
}

std::string withDoubledBackslashes(std::string_view path) {
    std::string doubled;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] != '\\') {
            doubled += path[i];
        } else if (i == 0 || path[i - 1] != '\\') {
            doubled += "\\\\";
        }
    }
    return doubled;
}

std::string mapkeyValue(std::string_view keySequence, std::string_view trailFilePath) {
    return std::string(keySequence) +
           " @MAPKEY_LABELOrbikonController;~ Command `ProCmdUtilTrailTrain` ;~ Update `file_open` `Inputname` " +
           quoted(trailFilePath) + ";~ Command `ProFileSelPushOpen@context_dlg_open_cmd`;";
}

std::string trailFileText(std::string_view macro) {
    return "!trail file version No. 1500\n" + std::string(macro) + "\n!End of Trail File\n";
}

std::wstring toWide(std::string_view text) {
#ifdef _WIN32
    const int size = static_cast<int>(text.size());
    std::wstring wide(text.size(), L'\0');  // never more wide characters than bytes
    wide.resize(static_cast<std::size_t>(
        MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()))));
    return wide;
#else
    std::wstring wide;
    for (const char c : text) wide += static_cast<wchar_t>(static_cast<unsigned char>(c));
    return wide;
#endif
}
