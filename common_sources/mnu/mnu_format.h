// Format of the menu file, shared by what reads and what writes it; docs/menu-file.md describes it.
//
//     # PTC Creo menubar file
//     [Modes]
//     Sketcher      = 1
//     ...
//     [MenuBar]
//     0Orbikon      = {}                                      menu: nothing behind the braces
//     1Move Mode    = {+ 6}OB_Toggle_Object_Move_Mode|Help    item: {placement}command|help text
#pragma once

#include <string_view>

namespace mnu_format {

inline constexpr std::string_view kFirstLine = "# PTC Creo menubar file";
inline constexpr std::string_view kModesSection = "Modes";
inline constexpr std::string_view kMenuBarSection = "MenuBar";

// Between keys, values and parts of a value.
inline constexpr std::string_view kKeyEnd = "= ";
inline constexpr char kPlacementEnd = '}';
inline constexpr char kCommandEnd = '|';
inline constexpr std::string_view kNoPlacement = "{}";  // also the whole value of a menu

// What readers take for something else than a key or a part of a value.
inline constexpr char kComment = '#';
inline constexpr char kSectionBegin = '[';
inline constexpr char kKeyEndMark = '=';

// In the order of their numbers, which begin at 1; Creo's mode value 0 is the first.
inline constexpr std::string_view kModes[] = {
    "Sketcher",    "Part",   "Sheet_Metal",  "Composite", "Scan_Model", "Assembly", "Drawing", "Manufacture",
    "Mold",        "Cast",   "Dieface",      "Layout",    "Format",     "Report",   "Markup",  "Diagram",
    "Interchange", "Legacy", "User_Defined", "Verify",    "Process",    "Nc_Model", "Default",
};

}  // namespace mnu_format
