#include "tools/mnu_make/reachable_name.h"

#include <windows.h>

#include <string_view>

#include "common_sources/mnu/mnu_encoding.h"
#include "tools/seat/file.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kLongestPath = MAX_PATH - 1;

// Empty when there is none. Paths behind the mark are taken as they are, so the folder is an absolute one with
// backslashes.
fs::path shortName(const fs::path& folder) {
    // Behind this mark Windows takes a path of any length; a server's would have to be written in another way there.
    const std::wstring_view mark = folder.native().starts_with(LR"(\\)") ? L"" : LR"(\\?\)";
    const std::wstring name = std::wstring(mark) + folder.native();
    std::wstring result(GetShortPathNameW(name.c_str(), nullptr, 0), L'\0');
    result.resize(GetShortPathNameW(name.c_str(), result.data(), static_cast<DWORD>(result.size())));
    return result.starts_with(mark) ? result.substr(mark.size()) : result;
}

}  // namespace

bool isInCodePage(const std::string& utf8) { return utf8FromCodePage(codePageFromUtf8(utf8)) == utf8; }

std::optional<std::string> reachableName(const fs::path& folder, std::size_t room) {
    const auto usable = [&](const fs::path& name) -> std::optional<std::string> {
        const std::string utf8 = seat::textOf(name);
        if (utf8.empty() || name.native().size() + room > kLongestPath || !isInCodePage(utf8)) return std::nullopt;
        return codePageFromUtf8(utf8);
    };
    const auto own = usable(folder);
    return own ? own : usable(shortName(folder));
}
