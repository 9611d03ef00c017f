// Folders of the user's, as narrow paths in the process code page: that is what the C run-time opens files by.
#pragma once

#include <string>

// The user's profile (USERPROFILE) without a closing separator; empty when the variable is not set. Where the code page
// cannot hold the folder's name it is the short path, which can; without one, substitutes stand for the letters that
// are missing, and nothing will be found there. Any thread.
std::string profileFolder();

#ifdef _WIN32
// The same for any path of an existing file or folder.
std::string narrowPath(const std::wstring& path);
#endif
