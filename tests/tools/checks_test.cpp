// What is found in files that people edit and in libraries: settings, menu files, message files, registered DLLs.
#include <gmock/gmock.h>

#include "common_sources/load_point.h"
#include "common_sources/mnu/mnu_check.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/nearest_name.h"
#include "common_sources/settings.h"
#include "tests/tools/pe_bytes.h"
#include "tests/unit/scratch.h"
#include "tools/seat/load_points.h"
#include "tools/seat/message_file.h"
#include "tools/seat/pe_file.h"
#include "tools/seat/private_names.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string replaced(std::string text, const std::string& old, const std::string& by) {
    const auto at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), by);
}

TEST(SettingsCheck, EachMistakeIsNamedWithItsPlace) {
    using enum SettingsProblem;
    const std::string whole = Settings(Settings::DefaultsOnly{}).fileText();
    EXPECT_THAT(checkSettings(whole, Settings::keys()).findings, IsEmpty());
    const auto line = [&](const std::string& key) {
        const auto begin = whole.find("\t" + key + " ");
        return whole.substr(begin, whole.find('\n', begin) + 1 - begin);
    };
    struct Case {
        std::string bytes;
        std::vector<std::pair<SettingsProblem, std::string>> problems;  // in order, with a part of the text
    };
    const std::string timeLine = line("maxContMoveTime");
    for (const auto& [bytes, problems] : std::vector<Case>{
             {"\xFF\xFE[\0", {{notText, "UTF-16"}, {capDead, "not found"}, {noTranslation, ""}, {noRotation, ""}}},
             {"", {{empty, "no key"}, {capDead, "not found"}, {noTranslation, ""}, {noRotation, ""}}},
             {replaced(whole, "[LOGGING]", "[Loging]"), {{missingSection, "line 18 has [Loging]"}}},
             {replaced(whole, timeLine, ""), {{missingKey, "'maxContMoveTime' is missing"}, {capDead, "not found"}}},
             {replaced(whole, line("mapkeyDefinition"), "\n" + line("mapkeyDefinition")),
              {{behindEnd, "'mapkeyDefinition' in line 17 stands behind line 16, which ended section [PROGRAM]"}}},
             {replaced(whole, line("tmp"), "  # indented\n" + line("tmp")),
              {{behindEnd, "'tmp' in line 31"}, {behindEnd, "'fileToLog' in line 32"}}},
             {replaced(whole, "\ttrace ", "\tTrase "),
              {{unknownKey, "not read; the nearest known key is 'trace'"}, {missingKey, "'trace'"}}},
             {replaced(whole, line("tmp"), line("tmp") + line("name")),
              {{unknownKey, "it belongs to section [PROGRAM]"}}},
             {replaced(whole, line("tmp"), line("tmp") + "tmp = on\n"), {{repeatedKey, "again in line 31"}}},
             {replaced(whole, line("tmp"), "tmp = On\n"), {{switchValue, "'On' of 'tmp' in line 30"}}},
             {replaced(whole, line("tmp"), "tmp = none\n"), {{switchValue, "taken for on"}}},
             {replaced(whole, line("maxSize"), "maxSize = 5 MB\n"), {{numberValue, "taken for 5"}}},
             {replaced(whole, timeLine, "maxContMoveTime = -1\n"), {{capDead, "is -1 (in line 9)"}}},
             {replaced(whole, line("transSensBase"), "transSensBase = 499\n"), {{noTranslation, "500 or more"}}},
             {replaced(whole, line("rotSensBase"), "rotSensBase = 0\n"), {{noRotation, "not be 0"}}},
             {replaced(whole, line("rotSensBase"), "rotSensBase = -1\n"), {}},
         }) {
        const SettingsReading reading = checkSettings(bytes, Settings::keys());
        ASSERT_EQ(reading.findings.size(), problems.size()) << bytes;
        for (std::size_t i = 0; i < problems.size(); ++i) {
            EXPECT_EQ(reading.findings[i].problem, problems[i].first) << reading.findings[i].text;
            EXPECT_THAT(reading.findings[i].text, HasSubstr(problems[i].second));
        }
    }
}

// Lines that mean nothing do not hide what makes the cap dead.
TEST(SettingsCheck, TellsWhatMattersAfterHundredsOfOtherFindings) {
    std::string repeated, unknown;
    for (int i = 0; i < 300; ++i) {
        repeated += "name = again\n";
        unknown += "key" + std::to_string(i) + " = 1\n";
    }
    for (const std::string& lines : {repeated, unknown}) {
        const auto reading = checkSettings("[PROGRAM]\nname = a\n" + lines + "maxContMoveTime = 0\n\n" + lines +
                                               "version = 1\n[LOGGING]\nlogFile = a\n",
                                           Settings::keys());
        for (const auto problem : {SettingsProblem::capDead, SettingsProblem::behindEnd, SettingsProblem::missingKey}) {
            EXPECT_TRUE(reading.has(problem)) << static_cast<int>(problem);
        }
        EXPECT_LT(reading.findings.size(), 300u);
    }
}

TEST(NearestName, AFewWrongLettersAreForgiven) {
    constexpr std::string_view names[] = {"logFile", "logToFile", "tmp", "trace"};
    for (const auto& [written, meant] : std::map<std::string, std::string>{{"LOGFILE", "logFile"},
                                                                           {"logToFlie", "logToFile"},
                                                                           {"tm", ""},
                                                                           {"tpm", ""},
                                                                           {"race", "trace"},
                                                                           {"trac", "trace"},
                                                                           {"colour", ""},
                                                                           {"", ""},
                                                                           {std::string(1000, 'x'), ""}}) {
        EXPECT_EQ(nearestName(written, names), meant) << written;
    }
}

TEST(PrivateNames, EachIsReplacedTheLongestFirst) {
    const seat::PrivateNames names = {{"jo", "%USERNAME%"}, {"/home/jo", "%USERPROFILE%"}, {"x", "too short"}};
    EXPECT_EQ(seat::withoutNames("jo Jo, /HOME/jo x JO", names), "%USERNAME% %USERNAME%, %USERPROFILE% x %USERNAME%");
}

TEST(MenuCheck, CountsWhatItsReaderReadsAndNamesTheRest) {
    const MenuFileFacts good = menuFileFacts(
        "# PTC Creo menubar file\r\n \r\n[Modes]\r\nPart = 1\r\n \r\n[MenuBar]\r\n0Orbikon = {}\r\n"
        "1Toggle Scroll Mode= {}OB_Toggle_Scroll_Mode|x\r\n0A = {}\r\nCopy = {}ProCmdCopy|y\r\n ");
    EXPECT_EQ(good.modes, 1u);
    EXPECT_EQ(good.menus, 2u);
    EXPECT_EQ(good.commands, 2u);
    EXPECT_THAT(good.duplicates, IsEmpty());
    EXPECT_THAT(good.unreadable, IsEmpty());
    EXPECT_TRUE(good.ownLanguage.isForeignTo("german"));
    EXPECT_FALSE(good.ownLanguage.isForeignTo("french"));

    const MenuFileFacts bad = menuFileFacts(
        "[MenuBar]\n1Bewegungsmodus umschalten = {+ 6}OB_Toggle_Object_Move_Mode|x\n0A = {}\nCopy = {}ProCmdCopy|\n"
        "Copy = {}ProCmdCopy|again\nEmpty = {}|help\n\nLost = {}ProCmdLost|x\n[Modes]\nPart = 1\n"
        "[MenuBar]\nUnseen = {}ProCmdUnseen|x\n");  // the first of its sections counts
    EXPECT_EQ(bad.commands, 3u);
    EXPECT_THAT(bad.duplicates, ElementsAre("line 5: the same entry as in line 4"));
    EXPECT_THAT(bad.unreadable,
                ElementsAre(HasSubstr("line 6: has no command"), HasSubstr("line 8: stands below line 7")));
    EXPECT_TRUE(bad.ownLanguage.isForeignTo("english"));
    EXPECT_FALSE(bad.ownLanguage.isForeignTo("german"));
    EXPECT_EQ(menuFileFacts("").commands, 0u);
}

TEST(MessageFile, EncodingGroupsAndLength) {
    using enum seat::MessageProblem::Kind;
    const std::string good = "Key\nText\nÜbersetzung\n#\nKey2\r\nText\r\n\r\n\r\n";
    const std::string mark = "\xEF\xBB\xBF";
    struct Case {
        std::string bytes;
        std::vector<seat::MessageProblem::Kind> kinds;
        std::string place = "";  // that the first problem names
    };
    for (const auto& [bytes, kinds, place] : std::vector<Case>{
             {mark + good, {}},
             {mark + good + "\n\n\n", {}},
             {good, {encoding}, "line 3 "},
             {mark + "Key\nText\n\xDC\n#\n", {encoding}},
             {"Key\nText\n\n#\nKey2\nText\n", {groups}, "line 5 "},
             {"Key\nText\n\nKey2\nText\n\n#\n", {groups}, "line 4 "},
             {"\nKey\nText\n\n#\n", {groups}, "line 1 "},
             {"Key\n\n\n#\n", {groups}, "line 2 "},
             {"", {groups}},
             {"Key\n" + std::string(4097, 'x') + "\n\n#\n", {lineLength}},
             {"Key\n" + std::string(4096, 'x') + "\n\n#\n", {}},
         }) {
        std::vector<seat::MessageProblem::Kind> found;
        const auto problems = seat::checkMessageFile(bytes).problems;
        for (const auto& problem : problems) found.push_back(problem.kind);
        EXPECT_EQ(found, kinds) << bytes;
        EXPECT_THAT(problems.empty() ? "" : problems[0].text, testing::StartsWith(place));
    }
}

TEST(PeFile, TellsMachineExportsImportsVersionAndResources) {
    const auto file =
        seat::readPeFile(peBytes({.names = {"user_initialize"}, .ordinals = {206, 208}, .resource = "A.\xE4"}));
    ASSERT_TRUE(file);
    EXPECT_EQ(seat::machineName(file->machine), "32-bit");
    EXPECT_TRUE(file->isLibrary);
    EXPECT_TRUE(file->hasExport(206u) && !file->hasExport(207u) && file->hasExport(208u));
    EXPECT_EQ(file->exports[0].name, "user_initialize");
    EXPECT_THAT(file->imports, ElementsAre("KERNEL32.dll"));
    EXPECT_THAT(file->fileVersion, testing::Optional(ElementsAre(1, 2, 3, 4)));
    EXPECT_THAT(file->resourceNames, ElementsAre("A.?"));
}

TEST(PeFile, StandsAnyDamage) {
    std::string bytes = peBytes({.names = {"user_initialize"}, .ordinals = {206, 208}, .resource = "A.\xE4"});
    for (std::size_t size = 0; size < bytes.size(); size += 97) seat::readPeFile(bytes.substr(0, size));
    std::size_t tried = 0, readable = 0;
    for (char& byte : bytes) {
        const char whole = byte;
        if (whole == 0) continue;
        for (const char damage : {'\0', '\x7F', '\xFF'}) {
            byte = damage;
            ++tried;
            if (seat::readPeFile(bytes)) ++readable;
        }
        byte = whole;
    }
    EXPECT_GT(readable, tried / 2);
    EXPECT_FALSE(seat::readPeFile("MZ"));
    EXPECT_FALSE(seat::readPeFile(""));
}

TEST(Installations, LoadPointsHostsAndLanguagesAreFound) {
    ScratchFolder scratch;
    const std::filesystem::path root = scratch.path();
    const auto make = [&](const std::filesystem::path& file, const std::string& bytes = "") {
        std::filesystem::create_directories((root / file).parent_path());
        writeFile((root / file).string(), bytes);
        return root / file;
    };
    make("PTC/Creo 4.0/F000/Common Files/text/x");
    make("PTC/Creo 3.0/M190/Common Files/text/x");
    make("PTC/Creo 2.0/Common Files/text/x");
    make("PTC/Windchill/Common Files/text/x");
    make("PTC/Creo 5.0/none/x");
    const auto found = seat::findLoadPoints({root, root, root / "missing"});
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[1], root / "PTC/Creo 3.0/M190/Common Files");

    EXPECT_TRUE(seat::findHost(found[1]).file.empty());
    const auto host = make("PTC/Creo 3.0/M190/Common Files/i486_nt/obj/xtop.exe",
                           peBytes({.names = {"user_initialize"}, .ordinals = {206, 208}, .resource = "A.\xE4"}));
    EXPECT_EQ(seat::findHost(found[1]).file, host);
    EXPECT_EQ(seat::findHost(found[1]).machineType, "i486_nt");
    EXPECT_EQ(findLoadPoint(host), std::filesystem::path());
    const std::filesystem::path libraries = compiledResources(found[1]);
    std::filesystem::create_directories(libraries);
    EXPECT_EQ(findLoadPoint(host), found[1]);
    for (const char* name : {"pro_default_resources.dll", "PRO_DEFAULT_German_resources.dll",
                             "pro_default_french_resources.dll", "pro_default__resources.dll", "other.dll"}) {
        writeFile((libraries / name).string(), "");
    }
    EXPECT_THAT(mnu_libraries::languagesIn(libraries), ElementsAre("english", "french", "german"));

    const auto languageBy = [](const char* proLang, const char* lang, const std::string& setting) {
        setVariable("PRO_LANG", proLang);
        setVariable("LANG", lang);
        return creoLanguage(setting).name;
    };
    EXPECT_EQ(languageBy("German", "french", "Italian"), "italian");
    EXPECT_EQ(languageBy("German", "french", ""), "german");
    EXPECT_EQ(languageBy(nullptr, "French", ""), "french");
}

}  // namespace
