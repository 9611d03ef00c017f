// Move mode and scroll mode by the menu and by buttons.
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

struct Toggle {
    const char* label;
    const char* command;
    bool isOnAtStart;
};
constexpr Toggle kToggles[] = {{kMoveToggle, kMoveCommand, false}, {kScrollToggle, kScrollCommand, true}};

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

// The menu is opened as by the keyboard, so that it stands open for the picture, and closed again.
void shootMenu(Stage& stage, Step& step, const std::string& caption) {
    const HWND main = stage.window("main");
    const auto popup = [] { return FindWindowW(L"#32768", nullptr); };
    PostMessageW(main, WM_SYSCOMMAND, SC_KEYMENU, 'o');
    const bool isOpen = waitFor([&] { return popup() != nullptr && IsWindowVisible(popup()); }, 3000);
    if (isOpen) {
        stage.awaitTicks();
        stage.shootScreen(step, caption);
    }
    step.check("Menu is open for the picture", "", isOpen ? "yes" : "no", "yes", isOpen);
    PostMessageW(main, WM_CANCELMODE, 0, 0);
    waitFor([&] { return popup() == nullptr || !IsWindowVisible(popup()); }, 3000);
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
                   stage.pushUntil({.tz = 120}, [&] { return length(stage.view().axes[0]) > scale * 1.1; });
                   step.check("Tree", before.at(0), stage.bench().host("scroll tree").at(0), "unchanged",
                              before == stage.bench().host("scroll tree"));
                   step.check("View's scale", text(scale), text(length(stage.view().axes[0])), "10 % more: zoomed",
                              length(stage.view().axes[0]) > scale * 1.1);
                   stage.shootWithPointer(step, "The tree has not moved; the view was zoomed.");
               });
}

}  // namespace workbench
