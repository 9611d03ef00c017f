// Texts that the plug-in keeps in message files.
#pragma once

#include <filesystem>
#include <string>

namespace workbench {

// The folder that holds "text" with the message files of the plug-in that is being started.
void setTextDirectory(const std::filesystem::path& directory);

// Text for a keyword: from text\<language>\<file>, then text\usascii\<file>; the keyword itself when neither has it.
// The language is that of PRO_LANG, then LANG. UTF-8.
std::string messageText(const wchar_t* file, const char* keyword);

}  // namespace workbench
