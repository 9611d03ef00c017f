// The same job as MenuTables, done the plain way: each command is looked for in each pane's text when it is added.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "common_sources/mnu/mnu_menus.h"

struct PlainMenus {
    std::map<std::string, std::string> panes;
    std::map<std::string, std::vector<CommandRecord>> menus;

    void setPane(const std::string& key, const std::string& text) { panes[key] = text; }
    void addCommand(CommandRecord record);
};

// Position of the upper-case name in a text, without regard to ASCII letter case; npos when it is not there.
std::size_t plainFind(const std::string& text, const std::string& upperName);
