// Any label, command and help text between two ordinary ones: the file reads back with every command that was
// written, in its place. The input is the three texts.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "common_sources/mnu/mnu_reader.h"
#include "common_sources/mnu/mnu_writer.h"
#include "config/cnfg.h"
#include "fuzz/check.h"
#include "fuzz/texts.h"
#include "tests/unit/plain_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string path = "/tmp/orbikon_menu_file_fuzz." + std::to_string(getpid());
    std::string_view rest = textOf(data, size);
    CommandRecord any{"X", "", "", ""};
    any.label = takeText(rest);
    any.command = takeText(rest);
    any.helpText = takeText(rest);
    if (any.label.empty() || any.command.empty()) return 0;  // such a record reaches no menu
    const CommandRecord before{"A", "ProCmdBefore", "A", ""};
    const CommandRecord behind{"B", "ProCmdBehind", "B", ""};

    std::remove(path.c_str());
    check(!writeMenuFile(path, {{"0A", {&before}}, {"0B", {&any}}, {"0C", {&behind}}}, {}));
    Cnfg file(path);
    const MenuFileContent content = readMenuFileContent(file);
    std::remove(path.c_str());
    const auto commands = plain::textsOf(content.commands);

    std::vector<std::string> expected = {"OB_Toggle_Scroll_Mode", "OB_Toggle_Object_Move_Mode", before.command};
    if (!unreadableReason(any)) {
        check(commands.size() == 5);
        expected.push_back(commands[3].starts_with("ProCmdEnvMdlDisp*") ? commands[3] : any.command);
    }
    expected.push_back(behind.command);
    check(commands == expected);
    check(content.modeNames.size() == 23);
    return 0;
}
