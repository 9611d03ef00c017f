// Move mode and scroll mode by the menu and by buttons.
#include <algorithm>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

struct Toggle {
    const char* label;
    const char* command;
    bool isOnAtStart;
};
constexpr Toggle kToggles[] = {{kMoveToggle, kMoveCommand, false}, {kScrollToggle, kScrollCommand, true}};

constexpr const char* kMenuClass = "#32768";  // Windows' own for pop-up menus
constexpr int kMenuPatienceMs = 3000;

std::string onOff(bool isOn) { return isOn ? "on" : "off"; }

std::string menuLines(Stage& stage) {
    std::string text;
    for (const std::string& line : stage.bench().host("menu")) text += line + "\n";
    return text;
}

void pressAndCheck(Stage& stage, Step& step, const Toggle& toggle, bool wanted) {
    const bool before = stage.isToggled(toggle.label);
    stage.pressButton(toggle.command);
    waitFor([&] { return stage.isToggled(toggle.label) == wanted; });
    const bool after = stage.isToggled(toggle.label);
    step.check("Check mark after the button", onOff(before), onOff(after), onOff(wanted),
               before != wanted && after == wanted);
}

void clickAndCheck(Stage& stage, Step& step, const Toggle& toggle, bool wanted) {
    const bool before = stage.isToggled(toggle.label);
    stage.bench().host(std::string("menu click ") + toggle.label);
    const bool after = stage.isToggled(toggle.label);
    step.check("Check mark after the menu", onOff(before), onOff(after), onOff(wanted),
               before != wanted && after == wanted);
}

// The plug-in's menu is opened by keys, as a user does without the mouse, and closed again after the picture.
void shootMenu(Stage& stage, Step& step, const std::string& caption) {
    const HWND main = stage.window("main");
    const auto menus = stage.bench().host("menus");
    const auto place = std::ranges::find(menus, "Orbikon") - menus.begin();
    const auto isOpen = [] {
        const HWND popup = FindWindowA(kMenuClass, nullptr);
        return popup != nullptr && IsWindowVisible(popup);
    };
    PostMessageA(main, WM_SYSCOMMAND, SC_KEYMENU, 0);  // selects the first menu
    for (auto i = 0; i < place; ++i) PostMessageA(main, WM_KEYDOWN, VK_RIGHT, 0);
    PostMessageA(main, WM_KEYDOWN, VK_DOWN, 0);
    const bool wasOpen = waitFor(isOpen, kMenuPatienceMs);
    stage.awaitTicks();
    stage.shoot(step, caption);
    step.check("Menu open for the picture", "", wasOpen ? "yes" : "no", "yes", wasOpen);
    for (int i = 0; i < 2; ++i) PostMessageA(main, WM_KEYDOWN, VK_ESCAPE, 0);
    waitFor([&] { return !isOpen(); }, kMenuPatienceMs);
}

}  // namespace

void playToggles(Stage& stage) {
    stage.open();
    for (const Toggle& toggle : kToggles) {
        stage.step(std::string(toggle.label) + ": by button, then by menu",
                   "The device button was pressed; then the item was chosen in the menu; then both once more in the "
                   "other order.",
                   [&](Step& step) {
                       const bool start = toggle.isOnAtStart;
                       step.check("Check mark after the start", "", onOff(stage.isToggled(toggle.label)), onOff(start),
                                  stage.isToggled(toggle.label) == start);
                       pressAndCheck(stage, step, toggle, !start);
                       clickAndCheck(stage, step, toggle, start);
                       clickAndCheck(stage, step, toggle, !start);
                       step.excerpt = menuLines(stage);
                       shootMenu(stage, step, std::string("The menu after it was switched ") + onOff(!start) + ".");
                       pressAndCheck(stage, step, toggle, start);
                   });
    }
    stage.step("Scroll mode off is obeyed",
               "Scroll mode was switched off by the button; pointer on the tree, cap pulled.", [&](Step& step) {
                   pressAndCheck(stage, step, kToggles[1], false);
                   stage.bench().host("cursor tree");
                   const auto before = stage.bench().host("scroll tree");
                   const double scale = length(stage.view().axes[0]);
                   stage.pushUntil(step, {"The tree does not move; the view is zoomed.", true}, {.tz = 120},
                                   [&] { return length(stage.view().axes[0]) > scale * 1.1; });
                   step.check("Tree", before.at(0), stage.bench().host("scroll tree").at(0), "unchanged",
                              before == stage.bench().host("scroll tree"));
                   step.check("View's scale", text(scale), text(length(stage.view().axes[0])), "10 % more: zoomed",
                              length(stage.view().axes[0]) > scale * 1.1);
               });
}

}  // namespace workbench
