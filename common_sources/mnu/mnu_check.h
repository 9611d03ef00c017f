// What a menu file says to its reader, and what a user may not expect of it. Works on the file's bytes. Pure, any
// thread.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common_sources/mnu/mnu_reader.h"

struct MenuFileFacts {
    std::size_t modes = 0;
    std::size_t menus = 0;
    std::size_t commands = 0;  // what a button's function index counts
    OwnLanguage ownLanguage;
    std::size_t unreadLine = 0;  // that ended the menus with entries below it, 0 = none; they are not read

    // A bounded number of each, as "line 7: ...".
    std::vector<std::string> duplicates;  // the same label and command twice in a menu
    std::vector<std::string> unreadable;  // below that line, or without a command
};

MenuFileFacts menuFileFacts(std::string_view bytes);
