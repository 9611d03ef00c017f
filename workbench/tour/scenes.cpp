#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr Scene kScenes[] = {
    {"first-start", "First start: the menu file is made from Creo's resources",
     "A user without any settings. The plug-in writes its settings file and makes the menu file of all commands, and "
     "shows how far it is; a device button can then be bound to any of these commands.",
     playFirstStart},
    {"start", "Start: the plug-in's menu beside Help", "Host and plug-in as they look after the start.", playStart},
    {"view", "The cap turns the view",
     "As long as the plug-in has no use for the motion, the device's legacy channel carries it to the host's own "
     "device support, which turns the view.",
     playViewTurn},
    {"move-mode", "Components selected, move mode on",
     "With components selected in move mode the plug-in claims the motion: it switches the legacy channel off.",
     playMoveMode},
    {"translation", "Components move along the screen's axes",
     "Whatever the view is, the cap's axes move the selection to the right, up, and towards the viewer.",
     playTranslation},
    {"group-turn", "Components turn as a group",
     "Several components turn like one body about the middle of their origins; one alone turns about its own origin.",
     playGroupTurn},
    {"release", "Cap released, selection cleared", "The way back: the view gets the motion again.", playRelease},
    {"tree", "The model tree scrolls under the pointer",
     "With the mouse pointer over a tree or a list of the window in front, the cap scrolls it.", playTreeScrolling},
    {"lists", "Lists, also sideways, and windows that know the wheel only", "The same for the other kinds of controls.",
     playListScrolling},
    {"macro", "A button runs a command: by macro",
     "A device button is bound to \"ProCmdEnvMdlDisp*Wireframe\" of the menu file. Run as a macro, the command costs "
     "the host's undo stack.",
     playCommandByMacro},
    {"mapkey", "A button runs a command: by mapkey and trail file",
     "The same button with useMapkeyForCommands on. The plug-in types the mapkey, which plays a trail file, and the "
     "undo stack is kept.",
     playCommandByMapkey},
    {"views", "Standard views by the device's special buttons",
     "Each of the special events sets its view; one fits the model into the window.", playStandardViews},
    {"toggles", "Two toggles, one state",
     "Move mode and scroll mode can be switched by the menu and by device buttons; the check marks follow both.",
     playToggles},
    {"panel", "Without a device: the control panel",
     "The panel's cap is pushed with the mouse, a button bound to a command that is found while one types, and "
     "pressed.",
     playPanel},
    {"daemon", "The device daemon goes and comes back",
     "The daemon is killed. Host and plug-in go on; once a daemon is there again, the plug-in connects and tells its "
     "mode anew.",
     playDaemonLoss},
    {"installer", "The installer, and the seat behind it",
     "What packaging/package.sh has made is installed for a load point, looked at by the doctor, and removed again.",
     playInstaller, isPackageThere},
    {"trouble", "Something is wrong: the doctor finds it",
     "Somebody has edited the settings file and left an empty line in a section, which ends the section there. The cap "
     "is dead; the doctor names line and remedy.",
     playTrouble},
    {"first-contact", "First contact: what of our assumptions holds in a Creo",
     "Nobody here has Creo. A probe that is registered like the plug-in checks what the plug-in takes for granted, "
     "lists "
     "what its user is to do, and writes a report that says which file to change.",
     playFirstContact},
};

}  // namespace

std::span<const Scene> scenes() { return kScenes; }

}  // namespace workbench
