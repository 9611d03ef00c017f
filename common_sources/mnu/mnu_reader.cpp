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

MenuFileContent readMenuFileContent(Cnfg& file) {
    MenuFileContent content;
    content.isWhole = readSection(file, mnu_format::kModesSection,
                                  [&](const auto& key, const auto&) { content.modeNames.push_back(key); }) &&
                      readSection(file, mnu_format::kMenuBarSection, [&](const auto&, const auto& value) {
                          const auto command = commandPart(value);
                          if (!command.empty()) content.commands.emplace_back(command);
                      });
    return content;
}

std::string_view commandPart(std::string_view value) {
    if (const auto brace = value.find(mnu_format::kPlacementEnd); brace != std::string_view::npos)
        value.remove_prefix(brace + 1);
    return value.substr(0, value.find(mnu_format::kCommandEnd));
}
