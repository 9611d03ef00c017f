#include "workbench/host/commands/macro_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "workbench/host/commands/key_sequence.h"

namespace workbench {
namespace {

using testing::ElementsAre;

TEST(Macro, StatementsAndTheirArguments) {
    const MacroParse parse = parseMacro(
        "~ Command `ProCmdUtilTrailTrain` ;~ Update `file_open` `Inputname` `C:\\\\Temp\\\\a b.txt`;"
        "~ Command `ProCmdEnvMdlDisp` `Hidden line`");
    ASSERT_EQ(parse.error, "");
    ASSERT_EQ(parse.statements.size(), 3u);
    EXPECT_THAT(parse.statements[0].arguments, ElementsAre("ProCmdUtilTrailTrain"));
    EXPECT_EQ(parse.statements[1].verb, "Update");
    EXPECT_THAT(parse.statements[1].arguments, ElementsAre("file_open", "Inputname", "C:\\Temp\\a b.txt"));
    EXPECT_THAT(parse.statements[2].arguments, ElementsAre("ProCmdEnvMdlDisp", "Hidden line"));
}

TEST(Macro, MalformedTextsAreRefused) {
    for (const char* text : {"", " ; ", "Command `a`;", "~ `a`;", "~ Command `a;", "~", "~ Command `a`; rest"}) {
        EXPECT_NE(parseMacro(text).error, "") << text;
    }
}

TEST(TrailFile, NeedsItsFirstAndItsLastLine) {
    const std::string head = "!trail file version No. 1500\r\n";
    const std::string macro = "~ Command `ProCmdViewFront`;\r\n";
    const std::string end = "!End of Trail File\r\n";
    EXPECT_EQ(parseTrailFile(head + "! a comment\n\n" + macro + macro + end).statements.size(), 2u);
    EXPECT_EQ(parseTrailFile(head + end + "what follows the end is not read").error, "");
    for (const std::string& content :
         {std::string(), macro + end, head + macro, "!trail file version No. \n" + end, head + "Command\n" + end}) {
        EXPECT_NE(parseTrailFile(content).error, "") << content;
    }
}

TEST(MapkeyValue, KeysLabelAndMacro) {
    const auto labelled = parseMapkey("ob @MAPKEY_LABELThe label;~ Command `a`;~ Command `b`;");
    ASSERT_TRUE(labelled);
    EXPECT_EQ(labelled->keys, "ob");
    EXPECT_EQ(labelled->label, "The label");
    EXPECT_EQ(labelled->macro, "~ Command `a`;~ Command `b`;");
    EXPECT_EQ(parseMapkey("$ ~ Command `a`;")->label, "");
    for (const char* value :
         {"", "ob", "ob @MAPKEY_LABELx", "ob @MAPKEY_LABELx;", "@MAPKEY_LABELx;~ Command `a`;", "~ Command `a`;"}) {
        EXPECT_FALSE(parseMapkey(value)) << value;
    }
}

TEST(KeySequence, IsRecognisedWhateverIsTypedBefore) {
    struct Case {
        const char* typed;
        int found;
    };
    for (const auto& [typed, found] : {Case{"ob", 1}, Case{"oob", 1}, Case{"xob", 1}, Case{"oxb", 0}, Case{"obob", 2},
                                       Case{"oxob", 1}, Case{"o", 0}}) {
        KeySequence keys;
        keys.define({"ob", "", "macro"});
        int count = 0;
        for (const char* key = typed; *key != '\0'; ++key) count += keys.type(*key, 0) != nullptr ? 1 : 0;
        EXPECT_EQ(count, found) << typed;
    }
}

TEST(KeySequence, APauseBeginsAnewAndADefinitionReplacesTheOldOne) {
    KeySequence keys;
    keys.define({"ob", "", "old"});
    keys.define({"ob", "", "new"});
    keys.type('o', 100);
    EXPECT_EQ(keys.type('b', 101 + KeySequence::PAUSE_MS), nullptr);
    keys.type('o', 10000);
    const Mapkey* found = keys.type('b', 10001);
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(found->macro, "new");
}

}  // namespace
}  // namespace workbench
