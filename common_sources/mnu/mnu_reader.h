// What the plug-in needs of a menu file. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class Cnfg;

struct MenuFileContent {
    std::vector<std::string> modeNames;  // keys of section Modes, in file order; mode value 0 is the first
    std::vector<std::string> commands;   // command strings of section MenuBar; a button's function index counts these
    bool isWhole = true;                 // false: the file could not be read to its end
};

// The same entries as somebody who chooses among them sees them: menus with items. The position of an item among all
// items is its function index, as it is that of its command in MenuFileContent. Texts are in the process code page.
struct MenuFileItem {
    std::size_t menu;  // index into MenuFileTree::menus
    std::string label;
    std::string command;
    std::string help;
};
struct MenuFileTree {
    std::vector<std::string> modeNames;
    std::vector<std::string>
        menus;  // as their headers name them; an item before the first header makes one without a name
    std::vector<MenuFileItem> items;
    bool isWhole = true;
};

MenuFileTree readMenuFileTree(Cnfg& file);

// Reads both sections; a missing one gives an empty list.
MenuFileContent readMenuFileContent(Cnfg& file);

// The command part of an entry's value: what stands behind the first "}" (if there is one) and before the first "|".
// Empty for a menu's header.
std::string_view commandPart(std::string_view value);
