// Plays a file of control commands.
#pragma once

#include <windows.h>

#include <string>

#include "workbench/daemon/control.h"

namespace workbench {

// Does the commands of the file one after the other, and two of its own: "wait MS" pauses, "wait-connected MS" waits
// until an application is connected, MS at most. Empty lines and lines that begin with "#" are skipped. A line that
// cannot be done is reported on the error output with its place, and the script goes on. Returns early when `stop` is
// signalled. True when every line was done.
bool playScript(const std::string& path, Control& control, Device& device, HANDLE stop);

}  // namespace workbench
