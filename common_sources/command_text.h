// The texts by which Creo runs commands: macros, mapkeys, trail files. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

// A menu command: Creo's command name, and behind the first "*" an option value (empty = none).
struct CommandString {
    std::string name;
    std::string option;
};
CommandString splitCommand(std::string_view command);

// "~ Command `name`;" or "~ Command `name` `option`;".
std::string commandMacro(std::string_view command);

// The first two lower-case letters a-z or digits of a mapkey definition, "ob" when it has none.
std::string mapkeySequence(std::string_view definition);

// Every run of backslashes as exactly two.
std::string withDoubledBackslashes(std::string_view path);

// Value of the configuration option "mapkey": the keys play the trail file. The path has doubled backslashes.
std::string mapkeyValue(std::string_view keySequence, std::string_view trailFilePath);

// The three lines of a trail file that plays the macro.
std::string trailFileText(std::string_view macro);

// Process code page to wide characters. What has no wide form becomes the code page's replacement.
std::wstring toWide(std::string_view text);
