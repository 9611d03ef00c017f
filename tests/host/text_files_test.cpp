#include "workbench/host/toolkit/text_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace workbench {
namespace {

TEST(Registry, EntriesWithTheirFields) {
    const RegistryParse parse = parseRegistry(
        "name Orbikon\r\nstartup dll\r\nexec_file C:\\Program Files\\Orbikon\\orbikon_creo.dll\r\n"
        "text_dir C:\\Program Files\\Orbikon\r\nallow_stop TRUE\r\nend\r\n\r\n"
        "! a comment\nNAME Other\nEXEC_FILE other.dll\nend\n");
    EXPECT_THAT(parse.errors, testing::IsEmpty());
    ASSERT_EQ(parse.entries.size(), 2u);
    EXPECT_EQ(parse.entries[0].execFile, "C:\\Program Files\\Orbikon\\orbikon_creo.dll");
    EXPECT_EQ(parse.entries[0].textDir, L"C:\\Program Files\\Orbikon");
    EXPECT_EQ(parse.entries[0].fields.at("allow_stop"), "TRUE");
    EXPECT_EQ(parse.entries[1].name, "Other");
}

TEST(Registry, FaultyEntriesAreNamedAndTheOthersKept) {
    const RegistryParse parse = parseRegistry(
        "startup dll\nexec_file a.dll\nend\nname B\nend\nname C\nstartup spawn\nexec_file c.exe\nend\n"
        "name D\nexec_file d.dll\nend\nname E\nexec_file e.dll\n");
    ASSERT_EQ(parse.entries.size(), 1u);
    EXPECT_EQ(parse.entries[0].name, "D");
    EXPECT_THAT(parse.errors, testing::ElementsAre(testing::StartsWith("line 3:"), testing::StartsWith("line 5:"),
                                                   testing::StartsWith("line 9:"), testing::HasSubstr("not closed")));
}

TEST(Messages, TranslationsWinWhereThereAreAny) {
    const char* content = "Key one\nEnglish one\nDeutsch eins\n#\nKey two\nEnglish two\n\n#\n";
    const auto english = parseMessages(content, false);
    const auto german = parseMessages(content, true);
    EXPECT_EQ(english.at("Key one"), "English one");
    EXPECT_EQ(german.at("Key one"), "Deutsch eins");
    EXPECT_EQ(german.at("Key two"), "English two");
}

}  // namespace
}  // namespace workbench
