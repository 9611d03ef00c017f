// Writing of the menu file; docs/menu-file.md describes its format.
#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "common_sources/mnu/mnu_menus.h"

// Why the menu file's readers could not read a command's line back, so that it would be lost or would shift or cut
// the table of commands; null when they can.
const char* unreadableReason(const CommandRecord& record);

struct MenuFileOptions {
    bool isGerman = false;                      // language of the plug-in's own entries
    const std::atomic<bool>* cancel = nullptr;  // ends the writing when set; may be null
    std::function<void()> afterMenu = {};       // called after each of the menus; may be empty
};

// Writes a complete new menu file. Records that could not be read back are left out and logged. The file
// appears whole or not at all; an existing one is never replaced (see NewFile). Result: empty when done, otherwise the
// reason.
std::optional<std::string> writeMenuFile(const std::string& path, const MenuTables::Menus& menus,
                                         const MenuFileOptions& options);
