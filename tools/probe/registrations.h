// What the probe registers with Creo: its menu, a command for each active step, and commands that macros run. Creo's
// thread.
#pragma once

#include <functional>
#include <string>

#include "tools/probe/findings.h"

namespace probe {

inline constexpr const char* kMenuName = "OrbikonProbe";
inline constexpr const wchar_t* kUmlauts = L"\u00C4 \u00D6 \u00DC \u00DF";  // at the end of the menu's last item

// Commands that macros and the mapkey run: "OrbikonProbe_Mark" and one of the letters A, B, C.
std::string markCommand(char mark);
// The marks that have run since the last call, in order.
std::string takeMarks();

// Registers everything and tells how that went. `onChoice` is called when the user chooses a step in the menu.
void registerAll(Findings& findings, std::function<void(Task)> onChoice);
void forgetRegistrations();  // callbacks that still come do nothing

}  // namespace probe
