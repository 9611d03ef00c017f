// The strip of command buttons under the menu. The tool bar is wider than the strip; the wheel moves it sideways.
#pragma once

#include <windows.h>

namespace workbench {

struct ToolStrip {
    HWND strip = nullptr;
    HWND toolbar = nullptr;
};
ToolStrip makeToolStrip(HWND parent);
int toolbarOffset();  // pixels that the tool bar is moved to the left

}  // namespace workbench
