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

// Reads both sections; a missing one gives an empty list.
MenuFileContent readMenuFileContent(Cnfg& file);

// The command part of an entry's value: what stands behind the first "}" (if there is one) and before the first "|".
// Empty for a menu's header.
std::string_view commandPart(std::string_view value);
