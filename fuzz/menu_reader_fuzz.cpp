// Any bytes as the menu file: modes and commands are what the plain reading of its two sections says.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include "common_sources/mnu/mnu_check.h"
#include "common_sources/mnu/mnu_reader.h"
#include "config/cnfg.h"
#include "fuzz/check.h"
#include "tests/unit/plain_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/tmp/orbikon_menu_reader_fuzz." + std::to_string(getpid());
    const std::string text(reinterpret_cast<const char*>(data), size);
    std::ofstream(path, std::ios::binary) << text;
    Cnfg file(path);
    const MenuFileContent content = readMenuFileContent(file);
    const MenuFileTree tree = readMenuFileTree(file);
    std::remove(path.c_str());

    std::vector<std::string> modes, commands;
    for (const auto& [key, value] : plain::section(text, "Modes")) modes.push_back(key);
    const auto items = plain::menuItems(text);
    for (const auto& item : items) commands.push_back(item.command);
    check(content.modeNames == modes);
    check(plain::textsOf(content.commands) == commands);
    check(tree.modeNames == modes && tree.items.size() == items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        const auto& [menu, label, command, help] = tree.items[i];
        check(menu < tree.menus.size() && plain::Item{label, command, help} == items[i]);
    }
    if (text.find('\r') != std::string::npos) return 0;  // a line of one alone counts on Windows only
    const MenuFileFacts facts = menuFileFacts(text);
    check(facts.modes == modes.size() && facts.commands == commands.size());
    return 0;
}
