// What the command-line programs share: arguments of any script, their options, and output to a console, pipe or file.
// All texts are UTF-8.
#pragma once

#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

// The process's arguments without the program's name. main()'s own are used where they are UTF-8 already.
std::vector<std::string> arguments(int argc, char** argv);

struct Option {
    std::string_view name;  // "--profile"
    bool takesValue;
};

struct ParsedArguments {
    std::map<std::string, std::string, std::less<>> options;  // by name; a switch has an empty value
    std::vector<std::string> operands;
    std::string problem;  // a sentence for the user; empty when all is understood

    bool has(std::string_view option) const { return options.contains(option); }
    std::string value(std::string_view option) const;  // empty when it is not given
};

// Options and operands in any order; behind "--" everything is an operand.
ParsedArguments parse(const std::vector<std::string>& arguments, std::span<const Option> known);

// Prints a text: on a console whatever its code page is, into a pipe or file as UTF-8.
void print(std::FILE* stream, std::string_view text);

bool isTerminal(std::FILE* stream);

}  // namespace cli
