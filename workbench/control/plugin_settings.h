// Settings file and menu file for the plug-in, as tests and the tour want it.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace workbench {

// A whole settings file: the plug-in's defaults, but short rounds of component motion and a log of all ticks;
// `changes` replaces values by key.
std::string settingsText(const std::map<std::string, std::string>& changes);

// A menu file with the modes and the given commands, one menu; indices 0 and 1 are the plug-in's own toggles.
std::string menuText(const std::vector<std::string>& commands = {});

}  // namespace workbench
