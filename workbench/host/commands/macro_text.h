// The texts that make the host do things: macros, trail files, mapkey definitions. No window, no state.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

// One statement of a macro: "~ Verb `argument` `argument`"; a doubled backslash in an argument stands for one.
struct MacroStatement {
    std::string verb;
    std::vector<std::string> arguments;
};

struct MacroParse {
    std::vector<MacroStatement> statements;
    std::string error;  // "" when the text is well-formed
};

// Statements end with ";", which the last one may lack.
MacroParse parseMacro(std::string_view text);

// Content of a trail file: a version line, statements and comments ("!..."), an end line. The statements of all lines
// in order.
MacroParse parseTrailFile(std::string_view content);

struct Mapkey {
    std::string keys;
    std::string label;  // "" when none is given
    std::string macro;
};

// Value of the configuration option "mapkey": "keys @MAPKEY_LABELlabel;macro". Nothing when the keys or the macro are
// missing, or when the keys are no printable characters.
std::optional<Mapkey> parseMapkey(std::string_view value);

}  // namespace workbench
