#include "tests/mnu/plain_menus.h"

#include "common_sources/mnu/mnu_text.h"

std::size_t plainFind(const std::string& text, const std::string& upperName) {
    for (std::size_t at = 0; at + upperName.size() <= text.size(); ++at) {
        std::size_t same = 0;
        while (same < upperName.size() && asciiUpper(text[at + same]) == upperName[same]) ++same;
        if (same == upperName.size()) return at;
    }
    return std::string::npos;
}

void PlainMenus::addCommand(CommandRecord record) {
    if (record.resourceCommandName.empty() || record.label.empty()) return;
    const std::string name = asciiUpper(record.resourceCommandName);
    for (const auto& [key, text] : panes) {
        const std::size_t at = plainFind(text, name);
        if (at == std::string::npos) continue;
        if (record.command.empty()) record.command = text.substr(at, name.size());
        menus[key].push_back(record);
    }
}
