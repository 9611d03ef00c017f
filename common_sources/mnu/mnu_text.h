// Reading of what lies in a compiled resource library: names of resources, command texts. Pure functions on text,
// for any thread.
//
// Upper case here is that of ASCII: names of commands and panes are ASCII, and so the outcome depends on no locale.
// Bytes of 0x80 and above compare as they are.
#pragma once

#include <string>
#include <string_view>

constexpr char asciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
std::string asciiUpper(std::string_view text);

enum class ResourceKind { kOther, kCommandText, kPane };

// Kind of a resource by its name, in whatever letter case: "PROCMD...TXT" or "..._PANE.RES".
ResourceKind resourceKind(std::string_view name);

// Upper-case name of a command text's resource without ".TXT". `name` is that of a command text.
std::string resourceCommandName(std::string_view name);

// Menu key of a pane: the level digit "0" and the pane's upper-case name without "_PANE.RES", as
// "FILE_MENU_PANE.RES" -> "0FILE_MENU". Keys sort in byte order as those names do, no two names share a key, and a
// key holds nothing that the menu file's reader takes for something else: no '=', '#' or control character, no
// blank at its end. `name` is that of a pane.
std::string menuKeyOfPane(std::string_view name);

// Label and help text of a command, in the encoding of the text; empty when the text has none.
struct CommandText {
    std::string label;
    std::string helpText;
};

// Which line below a key line is taken.
enum class TextLine { kFirst = 1, kSecond = 2 };

// Reads a command text up to its first NUL. The label is the line below one with "] COMMAND.LABEL", without its '&';
// the help text the line below one with "] COMMAND.HELPTEXT". Of several the last counts.
CommandText parseCommandText(std::string_view text, TextLine line);
