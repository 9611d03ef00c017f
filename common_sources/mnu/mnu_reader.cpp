#include "common_sources/mnu/mnu_reader.h"

#include "common_sources/mnu/mnu_format.h"
#include "config/cnfg.h"

namespace {

// Calls visit(key, value) for each entry. Answers whether the file could be read.
template <typename Visit>
bool readSection(Cnfg& file, std::string_view section, Visit visit) {
    std::string key, value;
    std::int32_t status = file.positionOnSection(std::string(section));
    while (status == Cnfg::kOk) {
        status = file.nextParameter(key, value);
        if (status == Cnfg::kOk) visit(key, value);
    }
    return status != Cnfg::kReadFailed;
}

}  // namespace

MenuFileTree readMenuFileTree(Cnfg& file) {
    MenuFileTree tree;
    const auto takeEntry = [&tree](const std::string& key, std::string_view value) {
        const auto command = commandPart(value);
        if (command.empty() || tree.menus.empty()) tree.menus.push_back(command.empty() ? key : std::string());
        if (command.empty()) return;
        const auto help = value.find(mnu_format::kCommandEnd);
        tree.items.push_back({tree.menus.size() - 1, key, std::string(command),
                              std::string(help == value.npos ? std::string_view() : value.substr(help + 1))});
    };
    tree.isWhole = readSection(file, mnu_format::kModesSection,
                               [&](const auto& key, const auto&) { tree.modeNames.push_back(key); }) &&
                   readSection(file, mnu_format::kMenuBarSection,
                               [&](const auto& key, const auto& value) { takeEntry(key, value); });
    return tree;
}

MenuFileContent readMenuFileContent(Cnfg& file) {
    MenuFileTree tree = readMenuFileTree(file);
    MenuFileContent content{.modeNames = std::move(tree.modeNames), .commands = {}, .isWhole = tree.isWhole};
    for (MenuFileItem& item : tree.items) content.commands.push_back(std::move(item.command));
    return content;
}

std::string_view commandPart(std::string_view value) {
    if (const auto brace = value.find(mnu_format::kPlacementEnd); brace != std::string_view::npos)
        value.remove_prefix(brace + 1);
    return value.substr(0, value.find(mnu_format::kCommandEnd));
}
