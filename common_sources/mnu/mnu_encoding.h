// Texts lie in resource libraries as UTF-8; in the plug-in and in the menu file they are in the process code page.
#pragma once

#include <string>
#include <string_view>

// What the other encoding cannot hold, or is no valid text, becomes a substitute character. Outside Windows the
// process code page is UTF-8 and texts pass unchanged.
std::string codePageFromUtf8(std::string_view utf8);
std::string utf8FromCodePage(std::string_view text);
