// The plug-in's settings file as the tour wants it.
#pragma once

#include <map>
#include <string>

namespace workbench {

// A whole settings file: the plug-in's defaults, but short rounds of component motion and a log of all ticks;
// `changes` replaces values by key.
std::string settingsText(const std::map<std::string, std::string>& changes);

}  // namespace workbench
