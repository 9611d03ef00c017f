#include "workbench/host/toolkit/text_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "workbench/host/model/text.h"

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

TEST(Registry, PathsAreUtf8WithAMarkAndInTheCodePageWithout) {
    for (const char* content :
         {"\xEF\xBB\xBFname A\nexec_file C:\\Ger\xC3\xA4t\\a.dll\ntext_dir C:\\Ger\xC3\xA4t\nend\n",
          "name A\nexec_file C:\\Ger\xE4t\\a.dll\ntext_dir C:\\Ger\xE4t\nend\n"}) {
        const RegistryParse parse = parseRegistry(content);
        ASSERT_EQ(parse.entries.size(), 1u) << content;
        EXPECT_EQ(parse.entries[0].execFile, "C:\\Ger\xC3\xA4t\\a.dll");
        EXPECT_EQ(parse.entries[0].textDir, L"C:\\Ger\u00E4t");
    }
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

// Of the build folder, in which the test program's folder lies.
std::filesystem::path textFolder() {
    wchar_t program[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return std::filesystem::path(program).parent_path().parent_path() / "text";
}

TEST(Messages, AreUtf8WithAMarkAndInTheCodePageWithout) {
    ASSERT_EQ(GetACP(), 1252u);
    struct Case {
        const char* translation;
        const char* shown;
    };
    constexpr Case kCases[] = {
        {"\xEF\xBB\xBFKey\nText\nAn\xC3\xA9mone\n#\n", "An\xC3\xA9mone"},
        {"Key\nText\nAn\xE9mone\n#\n", "An\xC3\xA9mone"},
        {"Key\r\nText\r\nAn\xC3\xA9mone\r\n#\r\n", "An\xC3\x83\xC2\xA9mone"},  // garbled, as in Creo
    };
    for (const Case& c : kCases) EXPECT_EQ(parseMessages(c.translation, true).at("Key"), c.shown);
}

// Every file as the host reads it: whole messages, each with a text of its own language, and legible.
TEST(Messages, OfThePluginAreCompleteInEveryLanguage) {
    constexpr std::size_t kLongestLine = 4096;
    const auto english = parseMessages(*readFile(textFolder() / "usascii" / "Orbikon.txt"), false);
    ASSERT_EQ(english.size(), 3u);
    std::set<std::string> letters;
    for (const auto& folder : std::filesystem::directory_iterator(textFolder())) {
        if (!folder.is_directory() || folder.path().filename() == "CMakeFiles") continue;
        SCOPED_TRACE(folder.path().string());
        const std::string bytes = readFile(folder.path() / "Orbikon.txt").value_or("");
        const std::string content = fileTextToUtf8(bytes);
        EXPECT_EQ(std::ranges::count(content, '\n') % 4, 0);
        EXPECT_TRUE(content.ends_with('\n'));
        const auto messages = parseMessages(bytes, true);
        ASSERT_EQ(messages.size(), english.size());
        for (const auto& [keyword, text] : messages) {
            EXPECT_TRUE(english.contains(keyword)) << keyword;
            EXPECT_LT(text.size(), kLongestLine);
            const auto isForeign = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
            // Letters of two bytes that were read byte by byte begin with one of these.
            EXPECT_EQ(text.find("\xC3\x83"), text.npos) << text;
            if (std::ranges::any_of(text, isForeign)) letters.insert(folder.path().filename().string());
        }
    }
    EXPECT_THAT(letters, testing::ElementsAre("french")) << "no file has letters that could be garbled";
}

}  // namespace
}  // namespace workbench
