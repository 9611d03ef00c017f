// The host's command line.
#pragma once

#include <string>
#include <vector>

#include "workbench/host/model/creo_variant.h"

namespace workbench {

struct Options {
    bool loadsPlugin = true;       // --no-plugin
    bool requiresPlugin = false;   // --require-plugin: exit code when none could be started
    bool isInteractive = false;    // --interactive: keys push the cap
    bool isHidden = false;         // --hidden: the windows are made but not shown
    bool misaligns = false;        // --misalign: as control's "misalign on", from the start
    unsigned long parent = 0;      // --parent PID: end with that process
    CreoVariant creo{};            // --creo VARIANT,...: another Creo, in these ways
    bool isVersionWanted = false;  // --version: shown on standard output, nothing is started
    std::string error;             // "" when the command line is understood
};

Options parseOptions(const std::vector<std::string>& arguments);

inline constexpr const char* USAGE =
    "creo_host [--no-plugin] [--require-plugin] [--interactive] [--hidden] [--misalign] [--parent PID]\n"
    "          [--creo modes,module,matrix,macros,no-menu-bar,windows] [--version]";

}  // namespace workbench
