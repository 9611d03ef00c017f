// A second top-level window of the host, with a list in it that scrolls.
#pragma once

#include <vector>

#include <windows.h>

#include "workbench/host/windows/window_tools.h"

namespace workbench {

HWND makeAccessory();  // hidden
std::vector<NamedWindow> accessoryWindows();

}  // namespace workbench
