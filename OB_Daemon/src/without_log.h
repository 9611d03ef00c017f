// What goes on without the log: folders for its file, and words for whom it cannot reach. Any thread; nothing throws
// but lack of memory.
#pragma once

#include <string>

#ifdef _WIN32
inline constexpr char kPathSeparator = '\\';
#else
inline constexpr char kPathSeparator = '/';
#endif

// Makes what is missing of a folder's path, which is in the process code page. What cannot be made shows when a file in
// it is opened.
void makeDirectories(const std::string& path);

// For what keeps the log itself from being read: to the debugger's output and the standard error stream.
void tellWithoutLog(const std::string& text);
