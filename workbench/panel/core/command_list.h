// The commands that a button can be bound to: a menu file's menus and items, and the search in them. Texts are UTF-8,
// commands as the menu file has them. Pure; any thread once made.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class Cnfg;

namespace workbench {

class CommandList {
  public:
    struct Menu {
        std::string title;
        std::size_t first, last;  // its items, last one not included
    };
    struct Item {
        std::size_t menu;
        std::string label;
        std::string command;
        std::string help;
    };

    CommandList() = default;
    explicit CommandList(Cnfg& menuFile);  // read as the plug-in reads it, so that both count the same items

    const std::vector<std::string>& modes() const { return mModes; }
    const std::vector<Menu>& menus() const { return mMenus; }
    const std::vector<Item>& items() const { return mItems; }
    bool isWhole() const { return mIsWhole; }  // false: the file could not be read to its end

    // Positions of the items that hold all of the words in label or command, without regard to letter case; first those
    // whose label begins with the first word, each group in file order. All items without a word.
    std::vector<std::size_t> search(std::string_view words) const;

    const Item* find(const std::string& command) const;  // the first of that command; null when there is none

  private:
    std::vector<std::string> mModes;
    std::vector<Menu> mMenus;
    std::vector<Item> mItems;
    std::vector<std::string> mFolded;  // "label\ncommand" of each item, as search compares it
    std::unordered_map<std::string, std::size_t> mByCommand;
    bool mIsWhole = true;
};

// Small letters for capital ones, of ASCII and the western European letters.
std::string foldedCase(std::string_view utf8);

}  // namespace workbench
