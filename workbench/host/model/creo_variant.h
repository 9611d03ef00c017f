// In which ways the host is another Creo than the one that the plug-in knows: each a deviation of a line or two, to
// show what notices it.
#pragma once

#include <string>

namespace workbench {

struct CreoVariant {
    bool hasOtherModes = false;      // "modes": parts and all modes behind them have the next number
    bool hasOtherModule = false;     // "module": the toolkit functions are in another module than the main one
    bool hasColumnMatrices = false;  // "matrix": column convention, in both directions
    bool runsMacrosAtOnce = false;   // "macros": inside ProMacroLoad
    bool isWithoutMenuBar = false;   // "no-menu-bar"
    bool hasOtherClasses = false;    // "windows": windows have classes of other names
};

// The host's own; written once, before anything else.
CreoVariant& creoVariant();

// Names of deviations, parted by commas. Throws std::runtime_error for one that is none.
CreoVariant parseCreoVariant(const std::string& names);

}  // namespace workbench
