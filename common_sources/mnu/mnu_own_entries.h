// The plug-in's own menu, the first of every menu file: toggles in the file's language.
#pragma once

#include <string_view>

#include "common_sources/mnu/mnu_format.h"

namespace mnu_format {

struct OwnEntry {
    std::string_view key;
    std::string_view value;
};

inline constexpr OwnEntry kOwnMenu = {"0Orbikon", kNoPlacement};
inline constexpr OwnEntry kOwnItems[] = {
    {"1Toggle Scroll Mode",
     "{}OB_Toggle_Scroll_Mode|Switches scrolling in trees and lists with the device's cap on and off."},
    {"1Toggle Move Mode",
     "{+ 6}OB_Toggle_Object_Move_Mode|Switches movement of a selected object in an assembly on and off."},
};
inline constexpr OwnEntry kOwnGermanItems[] = {
    {"1Fensterrollmodus umschalten", "{}OB_Toggle_Scroll_Mode|Schaltet das Rollen in Listen und Baeumen ein und aus."},
    {"1Bewegungsmodus umschalten",
     "{+ 6}OB_Toggle_Object_Move_Mode|"
     "Schaltet das Bewegen von selektierten Objekten in einer Baugruppe ein und aus."},
};

}  // namespace mnu_format
