#include "common_sources/mnu/mnu_reader.h"

#include "common_sources/mnu/mnu_format.h"
#include "config/cnfg.h"

MenuFileContent readMenuFileContent(Cnfg& file) {
    MenuFileContent content;
    std::string key, value;
    if (file.positionOnSection(std::string(mnu_format::kModesSection)) == Cnfg::kOk) {
        while (file.nextParameter(key, value) == Cnfg::kOk) content.modeNames.push_back(key);
    }
    if (file.positionOnSection(std::string(mnu_format::kMenuBarSection)) == Cnfg::kOk) {
        while (file.nextParameter(key, value) == Cnfg::kOk) {
            if (const auto command = commandPart(value); !command.empty()) content.commands.emplace_back(command);
        }
    }
    return content;
}

std::string_view commandPart(std::string_view value) {
    if (const auto brace = value.find(mnu_format::kPlacementEnd); brace != std::string_view::npos)
        value.remove_prefix(brace + 1);
    return value.substr(0, value.find(mnu_format::kCommandEnd));
}
