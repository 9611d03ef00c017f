// The model tree: one row for each component with rows for its features below. What is selected is bold, the last
// one has the bar.
#pragma once

#include <windows.h>

namespace workbench {

HWND makeTree(HWND parent);
void fillTree(HWND tree);           // from the current model
void showTreeSelection(HWND tree);  // from the host's selection

// A notification from the tree; the user's choice of a row becomes the selection.
void answerTreeNotify(HWND tree, const NMHDR& header);

}  // namespace workbench
