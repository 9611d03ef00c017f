#pragma once

#include <windows.h>

#include <string>

// What a process holds, counted by the system.
int countHandles(DWORD process);
int countThreads(DWORD process);

// Folder of the running program, without a backslash at its end.
std::string programFolder();
