#include "workbench/host/windows/menu_bar.h"

#include <algorithm>

#include "workbench/host/commands/commands.h"
#include "workbench/host/model/creo_variant.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"

namespace workbench {
namespace {

constexpr unsigned FIRST_ID = 1000;
constexpr unsigned IDS_PER_MENU = 100;

MenuItem item(const char* label, const char* command, const char* option = "") {
    return {label, label, command, option, ""};
}
MenuItem separator() { return {}; }

std::vector<Menu> ownMenus() {
    return {
        {"File",
         "&File",
         {item("Open &GEARBOX.ASM", "ProCmdModelOpen", "GEARBOX"),
          item("Open &DRIVE_SHAFT.PRT", "ProCmdModelOpen", "DRIVE_SHAFT"),
          item("Open &BRACKET.PRT (sketch)", "ProCmdModelOpen", "BRACKET"), separator(),
          item("E&xit", "ProCmdAppExit")}},
        {"Edit",
         "&Edit",
         {item("&Undo\tCtrl+Z", "ProCmdEditUndo"), item("&Redo\tCtrl+Y", "ProCmdEditRedo"), separator(),
          item("&Delete", "ProCmdCompDelete"), item("&Suppress", "ProCmdCompSuppress"),
          item("Res&ume all", "ProCmdCompResume"), separator(), item("Select &all", "ProCmdSelectAll"),
          item("Select &none", "ProCmdSelectNone")}},
        {"View",
         "&View",
         {item("&Wireframe", "ProCmdEnvMdlDisp", "Wireframe"),
          item("&Hidden line", "ProCmdEnvMdlDisp", "Hidden line"),
          item("&No hidden", "ProCmdEnvMdlDisp", "No hidden"),
          item("&Shading", "ProCmdEnvMdlDisp", "Shading"),
          separator(),
          item("&Default orientation", "ProCmdViewDefault"),
          item("&Front", "ProCmdViewFront"),
          item("&Back", "ProCmdViewBack"),
          item("&Top", "ProCmdViewTop"),
          item("B&ottom", "ProCmdViewBottom"),
          item("&Left", "ProCmdViewLeft"),
          item("&Right", "ProCmdViewRight"),
          separator(),
          item("R&efit", "ProCmdViewRefit"),
          item("Zoom &in", "ProCmdViewZoomIn"),
          item("Zoom o&ut", "ProCmdViewZoomOut"),
          item("Re&paint", "ProCmdViewRepaint"),
          separator(),
          item("&Model tree", "ProCmdViewModelTree"),
          item("A&xis triad", "ProCmdViewTriad")}},
        {"Tools", "&Tools", {item("Play trail &file...", "ProCmdUtilTrailPlay")}},
        {"Window", "&Window", {item("&Accessory window", "ProCmdWindowActivate")}},
        {"Help", "&Help", {item("&Keys and mouse", "ProCmdHelpKeys"), item("&About", "ProCmdHelpAbout")}},
    };
}

// Where something goes beside its neighbour; nothing when that does not exist.
template <typename Named>
ProError insertBeside(std::vector<Named>& all, Named added, const std::string& neighbour, bool after) {
    const auto byName = [&](const std::string& name) {
        return std::find_if(all.begin(), all.end(), [&](const Named& n) { return n.name == name; });
    };
    if (byName(added.name) != all.end()) return PRO_TK_E_FOUND;
    if (neighbour.empty()) {
        all.push_back(std::move(added));
        return PRO_TK_NO_ERROR;
    }
    const auto beside = byName(neighbour);
    if (beside == all.end()) return PRO_TK_E_NOT_FOUND;
    all.insert(after ? beside + 1 : beside, std::move(added));
    return PRO_TK_NO_ERROR;
}

}  // namespace

MenuBar& menuBar() {
    static MenuBar bar;
    return bar;
}

MenuBar::MenuBar() : mMenus(creoVariant().isWithoutMenuBar ? std::vector<Menu>{} : ownMenus()) {}

ProError MenuBar::add(Menu menu, const std::string& neighbour, bool after) {
    return insertBeside(mMenus, std::move(menu), neighbour, after);
}

ProError MenuBar::addItem(const std::string& parent, MenuItem added, const std::string& neighbour, bool after) {
    const auto menu = std::find_if(mMenus.begin(), mMenus.end(), [&](const Menu& m) { return m.name == parent; });
    if (menu == mMenus.end()) return PRO_TK_E_NOT_FOUND;
    return insertBeside(menu->items, std::move(added), neighbour, after);
}

void MenuBar::dropPluginMenus() {
    std::erase_if(mMenus, [](const Menu& menu) { return menu.isOfPlugin; });
}

HMENU MenuBar::build() const {
    if (mMenus.empty()) return nullptr;
    HMENU bar = CreateMenu();
    unsigned id = FIRST_ID;
    for (const Menu& menu : mMenus) {
        HMENU popup = CreatePopupMenu();
        for (std::size_t i = 0; i < menu.items.size(); ++i) {
            const MenuItem& entry = menu.items[i];
            AppendMenuW(popup, entry.command.empty() ? MF_SEPARATOR : MF_STRING, id + i,
                        utf8ToWide(entry.label).c_str());
        }
        AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), utf8ToWide(menu.label).c_str());
        id += IDS_PER_MENU;
    }
    return bar;
}

const MenuItem* MenuBar::itemById(unsigned id) const {
    if (id < FIRST_ID) return nullptr;
    const std::size_t menu = (id - FIRST_ID) / IDS_PER_MENU;
    const std::size_t index = (id - FIRST_ID) % IDS_PER_MENU;
    if (menu >= mMenus.size() || index >= mMenus[menu].items.size()) return nullptr;
    return &mMenus[menu].items[index];
}

void MenuBar::update(HMENU popup) const {
    const int count = GetMenuItemCount(popup);
    for (int i = 0; i < count; ++i) {
        const MenuItem* entry = itemById(GetMenuItemID(popup, i));
        const Command* command = entry == nullptr ? nullptr : commands().find(entry->command);
        if (command == nullptr) continue;
        const bool isOn = command->isCheck
                              ? isChecked(*command)
                              : entry->command == "ProCmdEnvMdlDisp" && entry->option == styleName(host().style);
        const bool isEnabled = accessOf(*command) == ACCESS_AVAILABLE;
        CheckMenuItem(popup, static_cast<UINT>(i), MF_BYPOSITION | (isOn ? MF_CHECKED : MF_UNCHECKED));
        EnableMenuItem(popup, static_cast<UINT>(i), MF_BYPOSITION | (isEnabled ? MF_ENABLED : MF_GRAYED));
    }
}

}  // namespace workbench
