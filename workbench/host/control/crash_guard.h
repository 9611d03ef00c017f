// A fault in the host's or the plug-in's code ends the program with a message. Windows would swallow one in a timer
// procedure, and the program would seem to go on.
#pragma once

namespace workbench {

inline constexpr int EXIT_CRASHED = 70;

void guardAgainstCrashes();

}  // namespace workbench
