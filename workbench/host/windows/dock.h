// The dock at the main window's right: panels behind tabs, full of things that scroll.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

#include "workbench/host/windows/window_tools.h"

namespace workbench {

HWND makeDock(HWND parent);
void layOutDock(HWND dock);
bool showDockPanel(const std::string& name);  // false when there is no such panel
std::vector<NamedWindow> dockWindows();

}  // namespace workbench
