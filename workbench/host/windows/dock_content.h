// What the dock's panels show: material lists, notes and tables of the gear box.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace workbench {

void fillListView(HWND list, int rows);
void fillListBox(HWND list, int rows);
void fillEdit(HWND edit, int rows);
std::vector<std::wstring> tableLines(const std::wstring& title, int rows);

}  // namespace workbench
