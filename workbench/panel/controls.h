// The panel's windows for those who steer it.
#pragma once

namespace workbench::panel {

inline constexpr const wchar_t* kCapClass = L"ObkPanelCap";

enum Page : int { kButtonsPage, kBindingsPage, kDevicePage };  // of the tabs

// Control ids, unique in the whole panel; kFirst... are those of the first of several.
enum Control : int {
    // around the cap
    kFirstSlider = 100,
    kHold = 110,
    kGain,
    kCurve,
    kRelease,
    kTabs,
    kStatus,
    kFirstNumber = 120,
    // page of buttons
    kFirstButton = 200,
    kFirstSpecial = 300,
    // page of bindings
    kModes = 400,
    kButtons,
    kSearch,
    kTree,
    kResults,
    kBind,
    kUnbind,
    kUndo,
    kHelp,
    kCount,
    // page of the device
    kFirstField = 500,
    kApply = 503,
    kDie,
    kReturn,
    kRecord,
    kApplications,
};

}  // namespace workbench::panel
