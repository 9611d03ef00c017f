// Timers and threads of the plug-in. What it asks Windows for passes through the host, by the plug-in's import table,
// so that the host knows what is there, can refuse it, and can call timer procedures itself: Windows would call them
// through its own code, which hides where the stack lies.
#pragma once

#include <windows.h>

namespace workbench {

// Lets the module's calls of SetTimer, KillTimer and _beginthreadex pass through the host.
void watchSystemCallsOf(HMODULE module);

int liveTimers();   // that were set and neither killed nor gone with their window
int liveThreads();  // that were started and have not ended. Any thread
int timerTicks();   // timer messages of theirs so far

// Sees a timer message. Calls the timer's procedure on an offset stack, if misalignment is on and the procedure is
// known. False = that is left to Windows.
bool dispatchTimerOnOffsetStack(const MSG& timerMessage);

}  // namespace workbench
