// What is found in files that people edit and in libraries: settings, menu files, message files, registered DLLs.
#include <gmock/gmock.h>

#include "common_sources/load_point.h"
#include "common_sources/mnu/mnu_check.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/nearest_name.h"
#include "common_sources/settings.h"
#include "tests/unit/scratch.h"
#include "tools/seat/load_points.h"
#include "tools/seat/message_file.h"
#include "tools/seat/pe_file.h"

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
             {replaced(whole, "\ttrace ", "\tTrase "), {{unknownKey, "'Trase' in line 25"}, {missingKey, "'trace'"}}},
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

TEST(MenuCheck, CountsWhatItsReaderReadsAndNamesTheRest) {
    const MenuFileFacts good = menuFileFacts(
        "# PTC Creo menubar file\r\n \r\n[Modes]\r\nPart = 1\r\n \r\n[MenuBar]\r\n0Orbikon = {}\r\n"
        "1Toggle Scroll Mode= {}OB_Toggle_Scroll_Mode|x\r\n0A = {}\r\nCopy = {}ProCmdCopy|y\r\n ");
    EXPECT_EQ(good.modes, 1u);
    EXPECT_EQ(good.menus, 2u);
    EXPECT_EQ(good.commands, 2u);
    EXPECT_THAT(good.duplicates, IsEmpty());
    EXPECT_THAT(good.unreadable, IsEmpty());
    EXPECT_TRUE(good.isForeignTo("german"));
    EXPECT_FALSE(good.isForeignTo("french"));

    const MenuFileFacts bad = menuFileFacts(
        "[MenuBar]\n1Bewegungsmodus umschalten = {+ 6}OB_Toggle_Object_Move_Mode|x\n0A = {}\nCopy = {}ProCmdCopy|\n"
        "Copy = {}ProCmdCopy|again\nEmpty = {}|help\n\nLost = {}ProCmdLost|x\n[Modes]\nPart = 1\n");
    EXPECT_EQ(bad.commands, 3u);
    EXPECT_THAT(bad.duplicates, ElementsAre("line 5: the same entry as in line 4"));
    EXPECT_THAT(bad.unreadable,
                ElementsAre(HasSubstr("line 6: has no command"), HasSubstr("line 8: stands below line 7")));
    EXPECT_TRUE(bad.isForeignTo("english"));
    EXPECT_FALSE(bad.isForeignTo("german"));
    EXPECT_EQ(menuFileFacts("").commands, 0u);
}

TEST(MessageFile, EncodingGroupsAndLength) {
    using enum seat::MessageProblem::Kind;
    const std::string good = "Key\nText\nÜbersetzung\n#\nKey2\r\nText\r\n\r\n\r\n";
    const std::string mark = "\xEF\xBB\xBF";
    struct Case {
        std::string bytes;
        std::vector<seat::MessageProblem::Kind> kinds;
    };
    for (const auto& [bytes, kinds] : std::vector<Case>{
             {mark + good, {}},
             {mark + good + "\n\n\n", {}},
             {good, {encoding}},
             {mark + "Key\nText\n\xDC\n#\n", {encoding}},
             {"Key\nText\n\n#\nKey2\nText\n", {groups}},
             {"Key\nText\n\nKey2\nText\n\n#\n", {groups}},
             {"\nKey\nText\n\n#\n", {groups}},
             {"Key\n\n\n#\n", {groups}},
             {"", {groups}},
             {"Key\n" + std::string(4097, 'x') + "\n\n#\n", {lineLength}},
             {"Key\n" + std::string(4096, 'x') + "\n\n#\n", {}},
         }) {
        std::vector<seat::MessageProblem::Kind> found;
        for (const auto& problem : seat::checkMessageFile(bytes).problems) found.push_back(problem.kind);
        EXPECT_EQ(found, kinds) << bytes;
    }
}

// A small 32-bit library: one section with an export of each kind, an import, a resource and a version.
std::string libraryBytes() {
    std::string bytes(0x600, '\0');
    const auto put = [&](std::size_t at, std::uint32_t value, unsigned size = 4) {
        for (unsigned i = 0; i < size; ++i) bytes[at + i] = static_cast<char>(value >> 8 * i);
    };
    const auto write = [&](std::size_t at, const std::string& text) { bytes.replace(at, text.size(), text); };
    write(0, "MZ");
    put(0x3C, 0x40);
    write(0x40, "PE");
    put(0x44, 0x14C, 2);      // machine
    put(0x46, 1, 2);          // sections
    put(0x54, 0xE0, 2);       // size of what follows
    put(0x56, 0x2102, 2);     // a library
    put(0x58, 0x10B, 2);      // of 32 bits
    put(0x58 + 92, 16);       // directories
    put(0x58 + 96, 0x1000);   // exports
    put(0x58 + 104, 0x1080);  // imports
    put(0x58 + 112, 0x1100);  // resources
    const std::size_t section = 0x58 + 0xE0;
    put(section + 8, 0x400);
    put(section + 12, 0x1000);
    put(section + 16, 0x400);
    put(section + 20, 0x200);
    put(0x200 + 16, 206);  // first ordinal
    put(0x200 + 20, 3);    // functions, the second missing
    put(0x200 + 24, 1);    // names
    put(0x200 + 28, 0x1028);
    put(0x200 + 32, 0x1034);
    put(0x200 + 36, 0x1038);
    put(0x228, 0x1111);
    put(0x230, 0x2222);
    put(0x234, 0x1040);
    put(0x238, 2, 2);
    write(0x240, "user_initialize");
    put(0x280 + 12, 0x10B0);
    write(0x2B0, "KERNEL32.dll");
    put(0x300 + 12, 1, 2);  // a named type, and one by number
    put(0x300 + 14, 1, 2);
    put(0x310, 0x80000000);
    put(0x314, 0x80000040);
    put(0x318, 16);
    put(0x31C, 0x80000060);
    put(0x340 + 12, 1, 2);
    put(0x350, 0x80000100);  // name of a resource
    put(0x354, 0x200);
    put(0x360 + 14, 1, 2);
    put(0x370, 1);
    put(0x374, 0x80000080);
    put(0x380 + 14, 1, 2);
    put(0x390, 0x407);
    put(0x394, 0xC0);
    put(0x3C0, 0x1280);
    put(0x400, 3, 2);
    write(0x402, std::string("A\0.\0\xE4\0", 6));
    put(0x480 + 40, 0xFEEF04BD);
    put(0x480 + 48, 0x00010002);
    put(0x480 + 52, 0x00030004);
    return bytes;
}

TEST(PeFile, TellsMachineExportsImportsVersionAndResources) {
    const auto file = seat::readPeFile(libraryBytes());
    ASSERT_TRUE(file);
    EXPECT_EQ(seat::machineName(file->machine), "32-bit");
    EXPECT_TRUE(file->isLibrary);
    EXPECT_TRUE(file->hasExport(206u) && !file->hasExport(207u) && file->hasExport(208u));
    EXPECT_EQ(file->exports[1].name, "user_initialize");
    EXPECT_THAT(file->imports, ElementsAre("KERNEL32.dll"));
    EXPECT_THAT(file->fileVersion, testing::Optional(ElementsAre(1, 2, 3, 4)));
    EXPECT_THAT(file->resourceNames, ElementsAre("A.?"));
}

TEST(PeFile, StandsAnyDamage) {
    const std::string whole = libraryBytes();
    for (std::size_t size = 0; size < whole.size(); size += 7) seat::readPeFile(whole.substr(0, size));
    std::size_t readable = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const char byte : {'\0', '\x7F', '\xFF'}) {
            std::string damaged = whole;
            damaged[at] = byte;
            if (seat::readPeFile(damaged)) ++readable;
        }
    }
    EXPECT_GT(readable, whole.size() * 2);
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
    const auto host = make("PTC/Creo 3.0/M190/Common Files/i486_nt/obj/xtop.exe", libraryBytes());
    EXPECT_EQ(seat::findHost(found[1]).file, host);
    EXPECT_EQ(seat::findHost(found[1]).machineType, "i486_nt");
    EXPECT_EQ(findLoadPoint(host), std::filesystem::path());
    const auto libraries = compiledResources(found[1]);
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
