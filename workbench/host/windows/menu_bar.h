// The main window's menu bar as data; the window's menu is built from it.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

#include "toolkit/pro_toolkit.h"

namespace workbench {

struct MenuItem {
    std::string name;
    std::string label;
    std::string command;  // "" = separator
    std::string option;
    std::string help;
};

struct Menu {
    std::string name;
    std::string label;
    std::vector<MenuItem> items;
    bool isOfPlugin = false;
};

class MenuBar {
  public:
    MenuBar();  // the host's own menus

    // Beside the neighbour; at the end without one. PRO_TK_E_FOUND when the name is taken, PRO_TK_E_NOT_FOUND when
    // the neighbour or the parent menu does not exist.
    ProError add(Menu menu, const std::string& neighbour, bool after);
    ProError addItem(const std::string& parent, MenuItem item, const std::string& neighbour, bool after);
    void dropPluginMenus();

    const std::vector<Menu>& menus() const { return mMenus; }

    // Windows menu with the items, null without any menu; their identifiers are those of itemById.
    HMENU build() const;
    const MenuItem* itemById(unsigned id) const;
    // Marks and greys the items of a menu as their commands' callbacks tell.
    void update(HMENU popup) const;

  private:
    std::vector<Menu> mMenus;
};

MenuBar& menuBar();

}  // namespace workbench
