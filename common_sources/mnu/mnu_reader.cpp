#include "common_sources/mnu/mnu_reader.h"

#include <algorithm>
#include <iterator>

#include "common_sources/mnu/mnu_format.h"
#include "common_sources/mnu/mnu_own_entries.h"
#include "config/cnfg.h"

namespace {

// Calls visit(key, value) for each entry. Answers whether the file could be read.
template <typename Visit>
bool readSection(Cnfg& file, std::string_view section, Visit visit) {
    std::string_view key, value;
    std::int32_t status = file.positionOnSection(section);
    while (status == Cnfg::kOk) {
        status = file.nextParameter(key, value);
        if (status == Cnfg::kOk) visit(key, value);
    }
    return status != Cnfg::kReadFailed;
}

std::string_view behindPlacement(std::string_view value) {
    const auto brace = value.find(mnu_format::kPlacementEnd);
    return brace == value.npos ? value : value.substr(brace + 1);
}

bool hasKey(const auto& items, std::string_view key) {
    return std::ranges::find(items, key, &mnu_format::OwnEntry::key) != std::end(items);
}

}  // namespace

void OwnLanguage::takeKey(std::string_view key) {
    isEnglish = isEnglish || hasKey(mnu_format::kOwnItems, key);
    isGerman = isGerman || hasKey(mnu_format::kOwnGermanItems, key);
}

MenuFileTree readMenuFileTree(Cnfg& file) {
    MenuFileTree tree;
    const auto takeEntry = [&tree](std::string_view key, std::string_view value) {
        const auto command = commandPart(value);
        if (command.empty() || tree.menus.empty()) tree.menus.emplace_back(command.empty() ? key : std::string_view());
        if (command.empty()) return;
        const auto help = behindPlacement(value).substr(command.size());  // behind its bar, if there is one
        tree.items.push_back({tree.menus.size() - 1, std::string(key), std::string(command),
                              std::string(help.empty() ? help : help.substr(1))});
    };
    tree.isWhole =
        readSection(file, mnu_format::kModesSection, [&](auto key, auto) { tree.modeNames.emplace_back(key); }) &&
        readSection(file, mnu_format::kMenuBarSection, takeEntry);
    return tree;
}

MenuFileContent readMenuFileContent(Cnfg& file) {
    MenuFileContent content;
    content.commands.reserve(file.size());  // more than enough, and no more than it would grow to step by step
    content.isWhole =
        readSection(file, mnu_format::kModesSection, [&](auto key, auto) { content.modeNames.emplace_back(key); }) &&
        readSection(file, mnu_format::kMenuBarSection, [&](auto key, auto value) {
            content.ownLanguage.takeKey(key);
            const auto command = commandPart(value);
            if (!command.empty()) content.commands.add(command);
        });
    return content;
}

std::string_view commandPart(std::string_view value) {
    const std::string_view rest = behindPlacement(value);
    return rest.substr(0, rest.find(mnu_format::kCommandEnd));
}
