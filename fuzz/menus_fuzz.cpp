// Any order of panes and commands: the menus are those of the plain search. The input is lines; "p" and a digit begin
// a pane's text, "c" begins a command's name, "m" asks for the menus in between.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "common_sources/mnu/mnu_menus.h"
#include "fuzz/check.h"
#include "tests/mnu/plain_menus.h"

namespace {

void checkSame(const MenuTables::Menus& menus, const PlainMenus& plain) {
    check(menus.size() == plain.menus.size());
    for (const auto& [key, records] : plain.menus) {
        const auto found = menus.find(key);
        check(found != menus.end() && found->second.size() == records.size());
        for (std::size_t i = 0; i < records.size(); ++i) {
            check(found->second[i]->label == records[i].label && found->second[i]->command == records[i].command);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    MenuTables tables;
    PlainMenus plain;
    for (int step = 0; !rest.empty(); ++step) {
        const std::string line(rest.substr(0, rest.find('\n')));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (line.starts_with('p')) {
            const std::string key = line.substr(1, 1);
            const std::string text = line.substr(std::min<std::size_t>(2, line.size()));
            tables.setPane(key, text);
            plain.setPane(key, text);
        } else if (line.starts_with('c')) {
            const CommandRecord record{line.substr(1), "", std::to_string(step), ""};
            tables.addCommand(record);
            plain.addCommand(record);
        } else if (line.starts_with('m')) {
            tables.menus();
        }
    }
    checkSame(tables.menus(), plain);
    return 0;
}
