// A settings file for the plug-in, as tests and the tour want it.
#pragma once

#include <map>
#include <string>

namespace workbench {

// A whole settings file: the plug-in's defaults, but short rounds of component motion and a log of all ticks;
// `changes` replaces values by key.
std::string settingsText(const std::map<std::string, std::string>& changes);

}  // namespace workbench
