// Any command of a menu file, definition of a mapkey and path of a trail file: what Creo is told can be taken apart
// again. The input is the three texts.
#include "common_sources/command_text.h"
#include "fuzz/check.h"
#include "fuzz/texts.h"

namespace {

void checkCommand(const std::string& command) {
    const CommandString parts = splitCommand(command);
    check(parts.name.find('*') == std::string::npos);
    const bool hasOption = command.size() > parts.name.size();
    check(parts.name + (hasOption ? "*" + parts.option : "") == command);

    const std::string macro = commandMacro(command);
    check(macro.starts_with("~ Command `" + parts.name + '`'));
    check(parts.option.empty() || macro.ends_with(" `" + parts.option + "`;"));
    check(trailFileText(macro).find('\n' + macro + '\n') != std::string::npos);
}

void checkMapkey(const std::string& definition, const std::string& path) {
    std::string expected = definition;
    std::erase_if(expected, [](char c) { return !((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9')); });
    expected = expected.empty() ? "ob" : expected.substr(0, 2);
    const std::string keys = mapkeySequence(definition);
    check(keys == expected);

    std::string single = path, doubled;
    single.erase(std::unique(single.begin(), single.end(), [](char a, char b) { return a == '\\' && b == '\\'; }),
                 single.end());
    for (const char c : single) doubled += c == '\\' ? "\\\\" : std::string(1, c);
    check(withDoubledBackslashes(path) == doubled);
    const std::string value = mapkeyValue(keys, doubled);
    check(value.starts_with(keys + " @MAPKEY_LABEL") && value.find('`' + doubled + "`;") != std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string_view rest = textOf(data, size);
    checkCommand(takeText(rest));
    const std::string definition = takeText(rest);
    checkMapkey(definition, takeText(rest));
    return 0;
}
