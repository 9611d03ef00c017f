#include "common_sources/mnu/mnu_writer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

#include "common_sources/mnu/mnu_format.h"
#include "common_sources/mnu/mnu_own_entries.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_reader.h"
#include "config/cnfg.h"
#include "config/new_file.h"
#include "tests/substitutes/system.h"
#include "tests/unit/plain_reader.h"
#include "tests/unit/scratch.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class MenuFile : public testing::Test {
  protected:
    std::vector<std::string> commandsReadBack() const {
        Cnfg file(path);
        return plain::textsOf(readMenuFileContent(file).commands);
    }

    const ScratchFolder folder;
    const std::string path = folder.file("Creo.mnu");
};

constexpr char kScroll[] = "OB_Toggle_Scroll_Mode";
constexpr char kMove[] = "OB_Toggle_Object_Move_Mode";

TEST_F(MenuFile, IsWrittenToTheByte) {
    MNUParser parser;
    parser.start(nullptr, "french");
    parser.AddResource("VIEW_MENU_PANE.RES", "ProCmdViewShaded ProCmdViewRefit");
    parser.AddResource("EDIT_MENU_PANE.RES", "ProCmdEditUndo ProCmdViewRefit");
    parser.AddResource("PROCMDVIEWSHADED.TXT", "] COMMAND.LABEL\nShading\n&Schattieren\n");
    parser.AddResource("PROCMDVIEWREFIT.TXT", "] COMMAND.LABEL\nRefit\nEin&passen\n] COMMAND.HELPTEXT\nAll.\nAlles.\n");
    parser.AddResource("PROCMDEDITUNDO.TXT", "] COMMAND.LABEL\nUndo\nEin\n");
    parser.AddResource("PROCMDNOWHERE.TXT", "] COMMAND.LABEL\nA very long label\nEine sehr lange Beschriftung\n");
    ASSERT_TRUE(parser.WriteMNUFile(path)) << parser.failure();
    EXPECT_EQ(
        bytesOf(path),
        inTextMode(
            "# PTC Creo menubar file\n"
            " \n"
            "[Modes]\n"
            "Sketcher        = 1\nPart            = 2\nSheet_Metal     = 3\nComposite       = 4\n"
            "Scan_Model      = 5\nAssembly        = 6\nDrawing         = 7\nManufacture     = 8\n"
            "Mold            = 9\nCast            = 10\nDieface         = 11\nLayout          = 12\n"
            "Format          = 13\nReport          = 14\nMarkup          = 15\nDiagram         = 16\n"
            "Interchange     = 17\nLegacy          = 18\nUser_Defined    = 19\nVerify          = 20\n"
            "Process         = 21\nNc_Model        = 22\nDefault         = 23\n"
            " \n"
            "[MenuBar]\n"
            "0Orbikon        = {}\n"
            "1Toggle Scroll Mode= {}OB_Toggle_Scroll_Mode|Switches scrolling in trees and lists with the device's "
            "cap on and off.\n"
            "1Toggle Move Mode= {+ 6}OB_Toggle_Object_Move_Mode|Switches movement of a selected object in an "
            "assembly on and off.\n"
            "0EDIT_MENU      = {}\n"
            "Ein             = {}ProCmdEditUndo|\n"
            "Einpassen       = {}ProCmdViewRefit|Alles.\n"
            "0VIEW_MENU      = {}\n"
            "Einpassen       = {}ProCmdViewRefit|Alles.\n"
            "Schattieren     = {}ProCmdEnvMdlDisp*Shading|\n"
            " "));
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("Creo.mnu"));
}

TEST_F(MenuFile, FollowsTheLanguage) {
    struct Case {
        const char *language, *label, *ownItems;
    };
    constexpr char kItems[] =
        "\n1Toggle Scroll Mode= {}OB_Toggle_Scroll_Mode|Switches scrolling in trees and lists with the device's cap on "
        "and off.\n1Toggle Move Mode= {+ 6}OB_Toggle_Object_Move_Mode|Switches movement of a selected object in an "
        "assembly on and off.\n";
    constexpr char kGermanItems[] =
        "\n1Fensterrollmodus umschalten= {}OB_Toggle_Scroll_Mode|Schaltet das Rollen in Listen und Baeumen ein und "
        "aus.\n1Bewegungsmodus umschalten= {+ 6}OB_Toggle_Object_Move_Mode|Schaltet das Bewegen von selektierten "
        "Objekten in einer Baugruppe ein und aus.\n";
    MNUParser parser;
    for (const auto& [language, label, ownItems] : {Case{"english", "\nShading ", kItems},
                                                    {"german", "\nSchattieren ", kGermanItems},
                                                    {"French", "\nSchattieren ", kItems}}) {
        parser.start(nullptr, language);
        parser.AddResource("VIEW_MENU_PANE.RES", "ProCmdViewShaded");
        parser.AddResource("PROCMDVIEWSHADED.TXT", "] COMMAND.LABEL\nShading\n&Schattieren\n");
        ASSERT_TRUE(parser.WriteMNUFile(path)) << parser.failure();
        EXPECT_THAT(textOf(path), HasSubstr(label));
        EXPECT_THAT(textOf(path), HasSubstr(ownItems));
        EXPECT_EQ(commandsReadBack().size(), 3u) << "nothing is left of the language before";
        std::filesystem::remove(path);
    }
}

TEST_F(MenuFile, ProgressGrowsInFixedStepsToALimit) {
    constexpr double kPane = 0.006, kCommand = 0.00017142857142857145, kMenu = (1.0 - 0.9) / 2;
    std::atomic<double> progress{0.0};
    MNUParser parser;
    parser.start(&progress, "english");
    const auto pane = [&] { parser.AddResource("VIEW_PANE.RES", "ProCmdOne"); };
    const auto other = [&] { parser.AddResource("VIEW.RES", "ProCmdOne"); };
    const auto command = [&] { parser.AddResource("PROCMDONE.TXT", "] COMMAND.LABEL\nOne\n"); };
    const auto unnamed = [&] { parser.AddResource("PROCMDONE.TXT", "none"); };
    struct Case {
        std::function<void()> action;
        double from, to;
    };
    for (const auto& [action, from, to] : {Case{pane, 0.0, kPane},
                                           {pane, 0.299, 0.3},
                                           {pane, 0.3, 0.3},
                                           {pane, 0.5, 0.5},
                                           {pane, -1.0, -1.0},
                                           {other, 0.1, 0.1},
                                           {command, 0.3, 0.3 + kCommand},
                                           {unnamed, 0.0, kCommand},
                                           {command, 0.8999, 0.9},
                                           {command, 0.95, 0.95}}) {
        progress = from;
        action();
        EXPECT_EQ(progress, to) << from;
    }
    parser.AddResource("EDIT_PANE.RES", "ProCmdOne");
    command();
    for (const auto& [from, to] : {std::pair{0.25, 0.25 + kMenu + kMenu}, {0.9, 0.999999}}) {
        progress = from;
        ASSERT_TRUE(parser.WriteMNUFile(path));
        EXPECT_EQ(progress, to);
        std::filesystem::remove(path);
    }
}

struct RecordCase {
    const char* what;
    CommandRecord record;
    const char* reason;  // why it is left out; null: it is not
};

// Whatever stands in the resources: the commands before and behind it keep their places in the table.
TEST_F(MenuFile, ReadsBackWithoutShiftOrCut) {
    const auto labelled = [](const std::string& label) { return CommandRecord{"X", "ProCmdX", label, "help"}; };
    const auto named = [](const std::string& name) { return CommandRecord{"X", name, "label", "help"}; };
    const auto helped = [](const std::string& help) { return CommandRecord{"X", "ProCmdX", "label", help}; };
    const RecordCase cases[] = {
        {"ordinary", labelled("Refit"), nullptr},
        {"blanks around", labelled("  Refit  "), nullptr},
        {"comment inside", labelled("C# tool"), nullptr},
        {"section inside", labelled("Tools [all]"), nullptr},
        {"brace", labelled("a}b|c"), nullptr},
        {"code page",
         labelled("\xdc"
                  "bersicht"),
         nullptr},
        {"blank", labelled("   "), "its label is blank"},
        {"comment", labelled("#1 tool"), "its label would be read as a comment"},
        {"comment behind blanks", labelled("  #1 tool"), "its label would be read as a comment"},
        {"section", labelled("[Modes]"), "its label would be read as a section"},
        {"open section", labelled("[Modes"), "its label would be read as a section"},
        {"equals", labelled("a=b"), "its label holds a '='"},
        {"equals and comment", labelled("a=#"), "its label holds a '='"},
        {"tab", labelled("a\tb"), "its label holds a control character"},
        {"tab and comment", labelled("a\t#"), "its label holds a control character"},
        {"carriage return", labelled("a\rb"), "its label holds a control character"},
        {"line feed", labelled("a\n[Modes]"), "its label holds a control character"},
        {"NUL", labelled(std::string("a\0b", 3)), "its label holds a control character"},
        {"end of text file", labelled("a\x1a"), "its label holds a control character"},
        {"longest", labelled(std::string(1000, 'x')), nullptr},
        {"longer", labelled(std::string(1001, 'x')), "its label is too long"},
        {"delete", labelled("a\x7f"), "its label holds a control character"},
        {"last control character", labelled("a\x1f"), "its label holds a control character"},
        {"as long as a book", labelled(std::string(10'000'000, 'x')), "its label is too long"},
        {"name with comment", named("ProCmd#"), "its name holds a '#' or '|'"},
        {"name with bar", named("ProCmd|X"), "its name holds a '#' or '|'"},
        {"name with line feed", named("ProCmd\n"), "its name holds a control character"},
        {"name with end of text file", named("ProCmd\x1a"), "its name holds a control character"},
        {"name with brace", named("ProCmd}X"), nullptr},
        {"help with comment", helped("# number"), nullptr},
        {"help with everything", helped("a = {b} | [c]\t"), nullptr},
        {"help with line feed", helped("a\nb"), "its help text holds a control character"},
        {"help with carriage return", helped("a\rb"), "its help text holds a control character"},
        {"help with end of text file", helped("a\x1a"), "its help text holds a control character"},
    };
    for (const RecordCase& c : cases) {
        EXPECT_STREQ(unreadableReason(c.record), c.reason) << c.what;
        const CommandRecord before{"A", "ProCmdBefore", "!", "help"};
        const CommandRecord behind{"B", "ProCmdBehind", "\xff", "help"};
        const MenuTables::Menus menus = {{"0M", {&before, &c.record, &behind}}, {"0N", {&behind}}};
        ASSERT_EQ(writeMenuFile(path, menus, {}), std::nullopt) << c.what;
        std::vector<std::string> expected = {kScroll, kMove, before.command, behind.command, behind.command};
        const auto at = expected.begin() + (c.record.label < before.label ? 2 : 3);
        if (c.reason == nullptr) expected.insert(at, c.record.command);
        EXPECT_EQ(commandsReadBack(), expected) << c.what;
        std::filesystem::remove(path);
    }
}

TEST_F(MenuFile, LeavesOutAMenuWithoutReadableCommandsAndItsWidth) {
    const CommandRecord unreadable{"X", "ProCmdX", "# a label much longer than the others", ""};
    const CommandRecord readable{"Y", "ProCmdY", "Short", ""};
    ASSERT_EQ(writeMenuFile(path, {{"0M", {&unreadable}}, {"0N", {&readable}}}, {.isGerman = true}), std::nullopt);
    EXPECT_THAT(textOf(path), testing::Not(HasSubstr("0M")));
    EXPECT_THAT(textOf(path), HasSubstr("\n0N        = {}\nShort     = {}ProCmdY|\n "));
}

TEST_F(MenuFile, SubstitutesFourCommands) {
    const std::pair<const char*, const char*> cases[] = {
        {"ProCmdViewWireframe", "ProCmdEnvMdlDisp*Wireframe"},
        {"ProCmdViewShaded", "ProCmdEnvMdlDisp*Shading"},
        {"ProCmdViewHiddenLine", "ProCmdEnvMdlDisp*Hidden line"},
        {"ProCmdViewNoHidden", "ProCmdEnvMdlDisp*No hidden"},
        {"ProCmdViewShadedX", "ProCmdViewShadedX"},
        {"ProCmdViewshaded", "ProCmdViewshaded"},
    };
    for (const auto& [gathered, written] : cases) {
        const CommandRecord record{"X", gathered, "label", ""};
        ASSERT_EQ(writeMenuFile(path, {{"0M", {&record}}}, {}), std::nullopt);
        EXPECT_EQ(commandsReadBack().back(), written);
        std::filesystem::remove(path);
    }
}

// The file as a stream writes it, line by line and each menu for itself.
std::string plainMenuFile(const MenuTables::Menus& menus, bool isGerman) {
    std::map<std::string, std::vector<CommandRecord>> readable;
    std::size_t longest = 0;
    for (const auto& [key, records] : menus) {
        for (const CommandRecord* record : records) {
            if (unreadableReason(*record)) continue;
            readable[key].push_back(*record);
            longest = std::max(longest, record->label.size());
        }
    }
    std::ostringstream out;
    const auto entry = [&](std::string_view key, const auto&... value) {
        out << std::left << std::setw(static_cast<int>(longest) + 5) << key << "= ";
        (out << ... << value) << "\n";
    };
    out << "# PTC Creo menubar file\n \n[Modes]\n";
    for (int i = 0; i < std::ssize(mnu_format::kModes); ++i) entry(mnu_format::kModes[i], i + 1);
    out << " \n[MenuBar]\n";
    entry("0Orbikon", "{}");
    for (const auto& [key, value] : isGerman ? mnu_format::kOwnGermanItems : mnu_format::kOwnItems) entry(key, value);
    for (auto& [key, records] : readable) {
        entry(key, "{}");
        std::ranges::stable_sort(records, {}, &CommandRecord::label);
        for (const CommandRecord& record : records) {
            const bool isShaded = record.command == "ProCmdViewShaded";
            entry(record.label, "{}", isShaded ? "ProCmdEnvMdlDisp*Shading" : record.command, "|", record.helpText);
        }
    }
    out << " ";
    return out.str();
}

// Each command in several menus, labels that are equal, longer than others or unreadable, and enough of them to be
// written in several pieces.
TEST_F(MenuFile, EqualsThePlainFileOnRandomMenus) {
    constexpr std::string_view kPieces[] = {"a", "A", "ab", "b ", "\xfc", "|", "}",
                                            "#", "=", "\t", "\n", "  ",   "x", "yz"};
    std::mt19937 random(5);
    const auto text = [&](std::size_t most) {
        std::string result;
        for (auto count = random() % (most + 1); count > 0; --count) result += kPieces[random() % std::size(kPieces)];
        return result;
    };
    for (int round = 0; round < 200; ++round) {
        std::vector<CommandRecord> records(1 + random() % (round % 50 == 0 ? 500 : 20));
        for (CommandRecord& record : records) {
            const std::string command = random() % 9 == 0 ? "ProCmdViewShaded" : "ProCmd" + text(1);
            record = {"X", command, text(3), text(3) + std::string(round % 50 == 0 ? random() % 500 : 0, 'h')};
        }
        MenuTables::Menus menus;
        for (auto count = random() % 6; count > 0; --count) {
            auto& menu = menus["0" + text(2)];
            for (const CommandRecord& record : records) {
                if (random() % 2 == 0) menu.push_back(&record);
            }
        }
        const bool isGerman = random() % 2 == 0;
        ASSERT_EQ(writeMenuFile(path, menus, {.isGerman = isGerman}), std::nullopt);
        ASSERT_EQ(bytesOf(path), inTextMode(plainMenuFile(menus, isGerman))) << round;
        std::filesystem::remove(path);
    }
}

TEST_F(MenuFile, ReadingEqualsThePlainReadingOnRandomFiles) {
    constexpr std::string_view kPieces[] = {"[Modes]\n",   "[MenuBar]\n",
                                            "[MenuBar]\n", "0A",
                                            "label",       "= ",
                                            "= {}",        "=",
                                            "{+ 6}",       "}",
                                            "{",           "|",
                                            "|help",       "Pro",
                                            "\n",          "\n",
                                            "\n",          "#",
                                            " ",           "\t",
                                            "\r\n",        "\n1a= {}b|c\n1d= {}e\n",
                                            "\n0M= {}\n",  "\xfc"};
    std::mt19937 random(6);
    for (int round = 0; round < 1000; ++round) {
        std::string text;
        for (auto count = random() % 40; count > 0; --count) text += kPieces[random() % std::size(kPieces)];
        writeFile(path, text);
        std::ifstream asText(path);  // with the system's line ends
        text.assign(std::istreambuf_iterator<char>(asText), {});
        Cnfg file(path);
        const MenuFileContent content = readMenuFileContent(file);
        const MenuFileTree tree = readMenuFileTree(file);
        std::vector<std::string> modes, commands;
        for (const auto& [key, value] : plain::section(text, "Modes")) modes.push_back(key);
        const auto expected = plain::menuItems(text);
        for (const auto& item : expected) commands.push_back(item.command);
        std::vector<plain::Item> items;
        for (const MenuFileItem& item : tree.items) items.push_back({item.label, item.command, item.help});
        ASSERT_TRUE(content.isWhole && tree.isWhole);
        ASSERT_EQ(content.modeNames, modes) << text;
        ASSERT_EQ(tree.modeNames, modes) << text;
        ASSERT_EQ(plain::textsOf(content.commands), commands) << text;
        ASSERT_EQ(items, expected) << text;
    }
}

TEST_F(MenuFile, TellsInTheLogWhatBecameOfIt) {
    LoggingParameters parameters;
    parameters.mLogFile = folder.file("log.txt");
    parameters.mIsLogToFile = parameters.mIsWarning = parameters.mIsDebug = parameters.mIsCreation = true;
    gLogging.init(parameters);
    {
        MNUParser parser;
        parser.AddResource("VIEW_MENU_PANE.RES", "ProCmdA");
        parser.AddResource("PROCMDA.TXT", "] COMMAND.LABEL\n#\n#\n");
        EXPECT_TRUE(parser.WriteMNUFile(path));
        EXPECT_FALSE(parser.WriteMNUFile(path));
    }
    gLogging.init(LoggingParameters());
    EXPECT_THAT(logged(folder.file("log.txt")),
                ElementsAre("CRT Constructing ...", "CRT Constructed.", "DBG Create MNU File: " + path,
                            "WRN Command left out, its label would be read as a comment: PROCMDA",
                            "DBG MNU File created successfully: " + path, "DBG Create MNU File: " + path,
                            "ERR Menu file exists already: " + path, "CRT Destructing ...", "CRT Destructed."));
}

TEST_F(MenuFile, IsNeverReplaced) {
    writeFile(path, "mine");
    MNUParser parser;
    EXPECT_FALSE(parser.WriteMNUFile(path));
    EXPECT_EQ(parser.failure(), "Menu file exists already: " + path);
    EXPECT_EQ(textOf(path), "mine");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("Creo.mnu"));
}

// Somebody else's file that appears while this one is being written stays as it is.
TEST_F(MenuFile, DoesNotReplaceOneThatAppearsMeanwhile) {
    const CommandRecord record{"X", "ProCmdX", "label", ""};
    const auto reason = writeMenuFile(path, {{"0M", {&record}}}, {.afterMenu = [&] { writeFile(path, "other"); }});
    EXPECT_EQ(reason, "Menu file cannot be created (File exists): " + path);
    EXPECT_EQ(textOf(path), "other");
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("Creo.mnu"));
}

TEST_F(MenuFile, LeavesNothingBehindWhenCancelled) {
    const CommandRecord record{"X", "ProCmdX", "label", ""};
    std::atomic<bool> cancel{false};
    const MenuTables::Menus menus = {{"0M", {&record}}, {"0N", {&record}}};
    const auto reason = writeMenuFile(path, menus, {.cancel = &cancel, .afterMenu = [&] { cancel = true; }});
    EXPECT_EQ(reason, "Menu file generation was cancelled");
    EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

TEST_F(MenuFile, FailsInAFolderThatDoesNotExist) {
    MNUParser parser;
    EXPECT_FALSE(parser.WriteMNUFile(folder.file("missing") + kPathSeparator + "Creo.mnu"));
    EXPECT_FALSE(parser.failure().empty());
    EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}

#ifndef _WIN32
TEST_F(MenuFile, LeavesNothingBehindWhenTheDiskIsFull) {
    const CommandRecord record{"X", "ProCmdX", "label", std::string(100'000, 'x')};
    std::optional<std::string> reason;
    {
        const FullDisk full(50'000);
        reason = writeMenuFile(path, {{"0M", {&record}}}, {});
    }
    EXPECT_EQ(reason, "Menu file cannot be written: " + path + "." + std::to_string(processId()) + ".tmp");
    EXPECT_THAT(namesIn(folder.path()), IsEmpty());
}
#endif

TEST_F(MenuFile, AppearsWholeOrNotAtAllWhateverFails) {
    const auto write = [&] {
        MNUParser parser;
        parser.start(nullptr, "english");
        parser.AddResource("VIEW_MENU_PANE.RES", "ProCmdViewShaded");
        parser.AddResource("PROCMDVIEWSHADED.TXT", "] COMMAND.LABEL\nShading\n");
        parser.WriteMNUFile(path);
    };
    write();
    const std::string whole = bytesOf(path);
    const auto check = [&](const std::string& which) -> std::string {
        if (isNameTaken(path) && bytesOf(path) != whole) return "half a file";
        std::filesystem::remove(path);
        return namesIn(folder.path()).empty() || which == "remove 1" ? "" : "rest";
    };
    EXPECT_THAT(substitute::failEachCall(write, check), IsEmpty());
}

}  // namespace
