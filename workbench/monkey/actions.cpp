#include "workbench/monkey/actions.h"

#include <algorithm>
#include <numeric>

namespace workbench {
namespace {

using Words = std::vector<std::string>;

const Words kToolkitFunctions{
    "ProArraySizeGet",
    "ProAsmcompPositionGet",
    "ProAsmcompPositionSet",
    "ProAsmcompRegenerate",
    "ProAssemblyDynPosSet",
    "ProCmdChkbuttonValueSet",
    "ProCmdDesignate",
    "ProCmdOptionAdd",
    "ProConfigoptSet",
    "ProFeatureInit",
    "ProMacroLoad",
    "ProMdlCurrentGet",
    "ProMenubarMenuAdd",
    "ProModeCurrentGet",
    "ProMenubarmenuChkbuttonAdd",
    "ProNotificationSet",
    "ProNotificationUnset",
    "ProSectionIsActive",
    "ProSelbufferSelectionsGet",
    "ProSelectionAsmcomppathGet",
    "ProSelectionarrayFree",
    "ProVectorTrfEval",
    "ProViewMatrixGet",
    "ProViewMatrixSet",
    "ProViewRefit",
    "ProWindowCurrentGet",
    "ProWindowRefresh",
};
const Words kSystemFunctions{"SetTimer", "_beginthreadex"};
const Words kDriverOperations{
    "obConnect",    "obDisconnect", "obReadDeviceData", "obGetAdvancedSettings", "obGetOption",
    "obGetDevInfo", "obGetDevNum",  "obSetOption",      "obSetDllLogFlags",      "obSetAppMode",
};
const Words kComponents{"39", "41", "43", "46", "47", "52", "53", "58", "58/3", "58/7", "61", "64", "root"};
const Words kModels{"GEARBOX.ASM", "GEARBOX.ASM", "DRIVE_SHAFT.PRT", "BRACKET.PRT"};
const Words kModes{"assembly", "assembly", "part", "sketcher", "drawing", "none", "auto", "auto", "22", "77", "-5"};
const Words kPanels{"properties", "library", "tables", "results", "browser", "palette"};
const Words kTopWindows{"main", "accessory"};
const Words kWindows{"main",  "tree", "graphics",  "graphics", "listview",  "edit",    "listbox",       "treeview",
                     "gxwnd", "list", "graphdraw", "toolbar",  "wheeltree", "browser", "overlap_small", "dock"};
const Words kMenuItems{"Toggle Move Mode", "Toggle Move Mode", "Toggle Scroll Mode"};
const Words kUserCommands{
    "ProCmdSelectAll",    "ProCmdSelectNone", "ProCmdEditUndo",      "ProCmdEditRedo",       "ProCmdCompDelete",
    "ProCmdCompSuppress", "ProCmdCompResume", "ProCmdViewModelTree", "ProCmdWindowActivate", "ProCmdViewRefit",
};
const Words kViews{
    "1 0 0 0 1 0 0 0 1", "0 1 0 0 0 1 1 0 0", "0.6 0.8 0 -0.8 0.6 0 0 0 1", "1 0 0 0 0 1 0 -1 0",
    "1 0 0 1 0 0 0 0 1",  // of no use: two axes are one
};
const Words kNotifications{"18", "24", "41", "72", "73"};
const Words kEntryPoints{"terminate",      "initialize",      "unload",         "load",
                         "call terminate", "call initialize", "call initialize"};

std::string axes(Dice& dice) {
    if (dice.oneIn(3)) return "daemon axes 0 0 0 0 0 0";
    constexpr int kPush = 350;
    constexpr int kEdges[] = {-32768, -32767, 32767, 1, -1};
    std::string line = "daemon axes";
    for (int i = 0; i < 6; ++i) {
        const int value = dice.oneIn(2) ? 0 : dice.oneIn(40) ? dice.pick(kEdges) : dice.between(-kPush, kPush);
        line += ' ' + std::to_string(value);
    }
    return line;
}

std::string event(Dice& dice) {
    constexpr int kFirstFunction = 0x20020;
    constexpr int kSpecial[] = {0x20001, 0x20002, 0x20009, 0x2000A,    0x2000B, 0x2000C, 0x2000D, 0x20013, 0x20016,
                                0x20017, 0x20018, 0x20019, 0x7fffffff, -1,      -77,     0,       12};
    const int functions = static_cast<int>(boundCommands().size()) + 4;
    const int code = dice.oneIn(3) ? dice.pick(kSpecial) : kFirstFunction + dice.below(functions);
    return "daemon event " + std::to_string(code) + (dice.oneIn(8) ? " failing" : "");
}

std::string deviceChange(Dice& dice) {
    constexpr int kCounts[] = {1, 1, 1, 0, 2, 16, -1, 1000000, 2147483647};
    constexpr int kRotationModes[] = {0, 1, 4, 13, 104, 113, -7, 2147483647};
    switch (dice.below(4)) {
        case 0:
            return "daemon devices " + std::to_string(dice.pick(kCounts));
        case 1:
            return "daemon extras " + std::to_string(dice.below(1000)) + " -5";
        case 2:
            return std::string("daemon hold ") + (dice.oneIn(3) ? "on" : "off");
        default:
            return "daemon settings " + std::to_string(dice.pick(kRotationModes)) + ' ' +
                   std::to_string(dice.below(256));
    }
}

std::string selection(Dice& dice) {
    if (dice.oneIn(4)) return "host select none";
    if (dice.oneIn(6)) return "host select all";
    std::string line = "host select";
    for (int i = dice.between(1, 3); i > 0; --i) line += ' ' + dice.pick(kComponents);
    return line;
}

std::string document(Dice& dice) {
    switch (dice.below(8)) {
        case 0:
            return "host sketch " + std::string(dice.oneIn(3) ? "on" : "auto");
        case 1:
            return "host window " + (dice.oneIn(2) ? "auto" : std::to_string(dice.between(-1, 4)));
        case 2:
            return "host components " + std::to_string(dice.between(1, 60));
        case 3:
        case 4:
            return "host mode " + dice.pick(kModes);
        default:
            return "host model " + dice.pick(kModels);
    }
}

std::string user(Dice& dice) {
    switch (dice.below(8)) {
        case 0:
            return "host view set " + dice.pick(kViews);
        case 1:
            return dice.oneIn(2) ? "host undo" : "host redo";
        case 2:
            return "host keys " + std::string(dice.oneIn(2) ? "ob" : "xo b");
        case 3:
            return "host macro ~ Command `ProCmdViewTop`;";
        case 4:
        case 5:
            return "host command " + dice.pick(kUserCommands);
        default:
            return "host menu click " + dice.pick(kMenuItems);
    }
}

std::string windows(Dice& dice) {
    switch (dice.below(9)) {
        case 0:
            return "host panel " + dice.pick(kPanels);
        case 1:
            return "host front " + dice.pick(kTopWindows);
        case 2:
            return "host resize " + std::to_string(dice.between(200, 700)) + ' ' +
                   std::to_string(dice.between(150, 500));
        case 3:
            return dice.oneIn(6) ? "host rebuild" : "host menu";
        case 4:
            return "host cursor " + std::to_string(dice.below(1280)) + ' ' + std::to_string(dice.below(960));
        case 5:
            return "host notify " + dice.pick(kNotifications);
        default:
            return "host cursor " + dice.pick(kWindows);
    }
}

std::string which(Dice& dice) {
    if (dice.oneIn(8)) return "always";
    const int first = dice.between(1, 6);
    return dice.oneIn(4) ? std::to_string(first) + '-' + std::to_string(first + dice.below(5)) : std::to_string(first);
}

// What is to fail always would soon be everything, hence the calm.
std::string fault(Dice& dice) {
    constexpr int kLongHangMs = 1500;
    const bool isDriver = dice.oneIn(3);
    const std::string who = isDriver ? "daemon " : "host ";
    const std::string& function = dice.pick(isDriver ? kDriverOperations : kToolkitFunctions);
    switch (dice.below(10)) {
        case 0:
        case 1:
        case 2:
            return who + "calm";
        case 3:
            return who + "chaos " + std::to_string(dice.below(1000000)) + ' ' + std::to_string(dice.between(1, 100));
        case 4:
            return who + "hang " + function + ' ' +
                   std::to_string(isDriver && dice.oneIn(10) ? kLongHangMs : dice.between(1, 60));
        case 5:
            return who + "pump " + function + ' ' + which(dice);
        case 6:
            return "host fail " + dice.pick(kSystemFunctions) + ' ' + std::to_string(dice.between(1, 3));
        default:
            return who + "fail " + function + ' ' + which(dice);
    }
}

// Something happens while the plug-in is inside a toolkit call.
std::string nested(Dice& dice) {
    const std::string line = "host during " + dice.pick(kToolkitFunctions) + ' ';
    constexpr int kEntryPointEvery = 5;
    if (dice.oneIn(kEntryPointEvery)) return line + "plugin " + dice.pick(kEntryPoints);
    std::string (*const kinds[])(Dice&) = {selection, document, user, windows};
    for (;;) {
        const std::string action = dice.pick(kinds)(dice);
        if (action.starts_with("host ")) return line + action.substr(std::string("host ").size());
    }
}

std::string entryPoint(Dice& dice) { return "host plugin " + dice.pick(kEntryPoints); }

std::string daemonLife(Dice& dice) {
    constexpr const char* kDeaths[] = {"kill daemon", "daemon die", "daemon quit"};
    return dice.oneIn(4) ? dice.pick(kDeaths) : "start daemon";
}

// Now and then so long that the plug-in looks after its connection.
std::string pause(Dice& dice) {
    constexpr int kLongPauseMs = 2500;
    return "pause " + std::to_string(dice.oneIn(40) ? kLongPauseMs : dice.between(5, 60));
}

struct Kind {
    int weight;
    std::string (*make)(Dice&);
};
// Ends of the plug-in take seconds each, so there are few.
constexpr Kind kKinds[] = {
    {240, axes},   {120, event}, {30, deviceChange}, {150, selection}, {70, document},   {90, user},
    {90, windows}, {110, fault}, {50, nested},       {5, entryPoint},  {20, daemonLife}, {40, pause},
};

}  // namespace

std::string nextAction(Dice& dice) {
    constexpr int kTotal = std::accumulate(std::begin(kKinds), std::end(kKinds), 0,
                                           [](int sum, const Kind& kind) { return sum + kind.weight; });
    int rest = dice.below(kTotal);
    for (const auto& [weight, make] : kKinds) {
        if (rest < weight) return make(dice);
        rest -= weight;
    }
    return "pause 0";
}

const std::vector<std::string>& boundCommands() {
    static const std::vector<std::string> kCommands{
        "ProCmdEnvMdlDisp*Wireframe",
        "ProCmdEnvMdlDisp*Shading",
        "ProCmdViewTop",
        "ProCmdViewDefault",
        "ProCmdSelectAll",
        "ProCmdViewModelTree",
        "ProCmdEditUndo",
        "ProCmdNowhere",
    };
    return kCommands;
}

}  // namespace workbench
