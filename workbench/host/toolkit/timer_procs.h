// Timer procedures of the plug-in. Windows hands them their calls through its own code, which would hide where the
// stack lies; so the host notes them when they are set and can call them itself.
#pragma once

#include <windows.h>

namespace workbench {

// Lets the module's calls of SetTimer pass through the host, by its import table.
void watchTimersOf(HMODULE module);

// Calls the timer's procedure on an offset stack, if misalignment is on and the procedure is known. False = not done.
bool dispatchTimerOnOffsetStack(const MSG& timerMessage);

}  // namespace workbench
