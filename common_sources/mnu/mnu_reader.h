// What the plug-in needs of a menu file. Pure, any thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

class Cnfg;

// The commands of a menu file, one behind the other in one text: there are tens of thousands of them.
class CommandTable {
  public:
    void reserve(std::size_t textSize) { mText.reserve(textSize); }
    void add(std::string_view command) {
        mText += command;
        mEnds.push_back(mText.size());
    }
    std::size_t size() const { return mEnds.size(); }
    std::string_view operator[](std::size_t index) const {
        const std::size_t begin = index == 0 ? 0 : mEnds[index - 1];
        return std::string_view(mText).substr(begin, mEnds[index] - begin);
    }

  private:
    std::string mText;
    std::vector<std::size_t> mEnds;  // of each command
};

// Which of the languages that the plug-in's own entries come in a menu file has; neither when it has none of them.
struct OwnLanguage {
    bool isGerman = false;
    bool isEnglish = false;

    void takeKey(std::string_view key);  // of an entry
    // Whether the entries are those of another language (lower case) than this one.
    bool isForeignTo(std::string_view language) const {
        return language == "german" ? isEnglish && !isGerman : isGerman && !isEnglish;
    }
};

struct MenuFileContent {
    std::vector<std::string> modeNames;  // keys of section Modes, in file order; mode value 0 is the first
    CommandTable commands;               // command strings of section MenuBar; a button's function index counts these
    OwnLanguage ownLanguage;
    bool isWhole = true;  // false: the file could not be read to its end
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
