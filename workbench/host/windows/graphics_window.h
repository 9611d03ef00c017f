// The window that shows the current model: class "PGLWindow".
// Left button selects (Ctrl adds), middle button turns (Shift pans), wheel zooms.
#pragma once

#include <windows.h>

namespace workbench {

HWND makeGraphicsWindow(HWND parent);

// The picture is out of date; it is painted with the next WM_PAINT.
void invalidateGraphics(HWND graphics);

}  // namespace workbench
