#include "common_sources/command_text.h"

#include <gtest/gtest.h>

#include "common_sources/mnu/mnu_reader.h"

namespace {

TEST(CommandText, Macros) {
    const std::pair<const char*, const char*> cases[] = {
        {"ProCmdX", "~ Command `ProCmdX`;"},
        {"ProCmdEnvMdlDisp*Wireframe", "~ Command `ProCmdEnvMdlDisp` `Wireframe`;"},
        {"ProCmdEnvMdlDisp*Hidden line", "~ Command `ProCmdEnvMdlDisp` `Hidden line`;"},
        {"ProCmdX*", "~ Command `ProCmdX`;"},
        {"a*b*c", "~ Command `a` `b*c`;"},
        {"*b", "~ Command `` `b`;"},
    };
    for (const auto& [command, macro] : cases) EXPECT_EQ(commandMacro(command), macro);
}

TEST(CommandText, MapkeySequences) {
    const std::pair<const char*, const char*> cases[] = {
        {"ob", "ob"}, {"F5", "5"},   {"Ab9x", "b9"},  {"", "ob"},   {"--", "ob"},   {"ABC", "ob"},
        {"a", "a"},   {"abc", "ab"}, {"- a-z", "az"}, {"`{", "ob"}, {"\xe4z", "z"}, {"/0:9", "09"},
    };
    for (const auto& [definition, keys] : cases) EXPECT_EQ(mapkeySequence(definition), keys) << definition;
}

TEST(CommandText, BackslashesBecomeTwo) {
    const std::pair<const char*, const char*> cases[] = {
        {"C:\\Temp\\orbikon-trail.txt", "C:\\\\Temp\\\\orbikon-trail.txt"},
        {"C:\\\\Temp\\\\x", "C:\\\\Temp\\\\x"},
        {"\\\\\\\\server\\x\\", "\\\\server\\\\x\\\\"},
        {"", ""},
        {"a/b", "a/b"},
    };
    for (const auto& [path, doubled] : cases) EXPECT_EQ(withDoubledBackslashes(path), doubled);
}

TEST(CommandText, MapkeyAndTrailFile) {
    EXPECT_EQ(mapkeyValue("ob", "C:\\\\Temp\\\\orbikon-trail.txt"),
              "ob @MAPKEY_LABELOrbikonController;~ Command `ProCmdUtilTrailTrain` ;~ Update `file_open` `Inputname` "
              "`C:\\\\Temp\\\\orbikon-trail.txt`;~ Command `ProFileSelPushOpen@context_dlg_open_cmd`;");
    EXPECT_EQ(trailFileText("~ Command `X`;"), "!trail file version No. 1500\n~ Command `X`;\n!End of Trail File\n");
    EXPECT_EQ(toWide("~ `a1`;"), L"~ `a1`;");
    EXPECT_EQ(toWide(""), L"");
}

TEST(CommandText, CommandPartOfAMenuValue) {
    const std::pair<const char*, const char*> cases[] = {
        {"{}OB_Toggle_Scroll_Mode|Switches.", "OB_Toggle_Scroll_Mode"},
        {"{+ 6}OB_Toggle_Object_Move_Mode|x", "OB_Toggle_Object_Move_Mode"},
        {"{}", ""},
        {"", ""},
        {"{}|help", ""},
        {"Cmd|help", "Cmd"},  // without "}" the value is taken whole
        {"{Cmd|help", "{Cmd"},
        {"{}Cmd", "Cmd"},
        {"{}a}b|c|d", "a}b"},  // the first "}", the first "|"
        {"x|y}Cmd|z", "Cmd"},
        {"{}ProCmdX*opt|h", "ProCmdX*opt"},
    };
    for (const auto& [value, command] : cases) EXPECT_EQ(commandPart(value), command) << value;
}

}  // namespace
