#include "common_sources/mnu/mnu_text.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>

namespace {

TEST(ResourceKind, FollowsTheNameInAnyCase) {
    struct Case {
        const char* name;
        ResourceKind kind;
    };
    constexpr Case kCases[] = {
        {"PROCMDVIEWREFIT.TXT", ResourceKind::kCommandText},
        {"ProCmdViewRefit.txt", ResourceKind::kCommandText},
        {"PROCMD.TXT", ResourceKind::kCommandText},
        {"VIEW_MENU_PANE.RES", ResourceKind::kPane},
        {"view_menu_pane.res", ResourceKind::kPane},
        {"_PANE.RES", ResourceKind::kPane},
        {"PROCMD_PANE.RES", ResourceKind::kPane},
        {"XPROCMDVIEWREFIT.TXT", ResourceKind::kOther},
        {"PROCMDVIEWREFIT.TXT2", ResourceKind::kOther},
        {"PROCMDVIEWREFIT", ResourceKind::kOther},
        {"VIEWPANE.RES", ResourceKind::kOther},
        {"PROCMTXT", ResourceKind::kOther},
        {".TXT", ResourceKind::kOther},
        {"", ResourceKind::kOther},
    };
    for (const Case& c : kCases) EXPECT_EQ(resourceKind(c.name), c.kind) << c.name;
    EXPECT_EQ(resourceCommandName("ProCmdViewRefit.txt"), "PROCMDVIEWREFIT");
}

TEST(MenuKeyOfPane, IsReadableForOrdinaryNames) {
    EXPECT_EQ(menuKeyOfPane("FILE_MENU_PANE.RES"), "0FILE_MENU");
    EXPECT_EQ(menuKeyOfPane("file_menu_pane.res"), "0FILE_MENU");
    EXPECT_EQ(menuKeyOfPane("_PANE.RES"), "0");
}

TEST(MenuKeyOfPane, SortsAsNamesDoAndHoldsNothingTheReaderStumblesOver) {
    std::mt19937 random(1);
    std::set<std::string> stems = {"FILE", "FILE_MENU", "FILEX", "FILE1", "A=B", "A#B", "A\tB", "A B", "A ", "A\n"};
    constexpr std::string_view kRiskyCharacters = " !\"#$<=>?\t\r\n\x7f~}\x80\xff\x01_AZ09";
    while (stems.size() < 3000) {
        std::string stem;
        for (auto size = random() % 6; size > 0; --size) {
            stem += random() % 2 ? kRiskyCharacters[random() % kRiskyCharacters.size()]
                                 : static_cast<char>(1 + random() % 255);
        }
        stems.insert(asciiUpper(stem));
    }
    std::vector<std::string> keys;
    for (const std::string& stem : stems) keys.push_back(menuKeyOfPane(stem + "_PANE.RES"));
    EXPECT_TRUE(std::ranges::is_sorted(keys));
    EXPECT_EQ(std::ranges::adjacent_find(keys), keys.end()) << "two names share a key";
    for (const std::string& key : keys) {
        EXPECT_EQ(key.find_first_of("=#\t\r\n\x7f"), key.npos) << key;
        EXPECT_TRUE(key.starts_with('0') && !key.ends_with(' ')) << key;
    }
}

struct TextCase {
    const char* what;
    std::string text;
    TextLine line;
    const char* label;
    const char* helpText;
};

TEST(ParseCommandText, TakesTheLinesBelowTheKeys) {
    const std::string both =
        "#1 [X] Command.Label\nE&nglish\nDe&utsch\n#2 [X] Command.HelpText\nHelp & more\nHilfe & mehr\n";
    std::string withCrLf;
    for (const char c : both) withCrLf.append(c == '\n' ? "\r\n" : std::string(1, c));
    const TextCase cases[] = {
        {"first", both, TextLine::kFirst, "English", "Help & more"},
        {"second", both, TextLine::kSecond, "Deutsch", "Hilfe & mehr"},
        {"carriage returns", withCrLf, TextLine::kSecond, "Deutsch", "Hilfe & mehr"},
        {"a carriage return inside is text", "] COMMAND.LABEL\nA\rB\n", TextLine::kFirst, "A\rB", ""},
        {"every ampersand goes", "] COMMAND.LABEL\n&&A & B&\n", TextLine::kFirst, "A  B", ""},
        {"nothing but ampersands", "] COMMAND.LABEL\n&&&\n", TextLine::kFirst, "", ""},
        {"key on the last line", "x\n] COMMAND.LABEL", TextLine::kFirst, "", ""},
        {"only one line below", "] COMMAND.LABEL\nEnglish", TextLine::kSecond, "", ""},
        {"no line end behind the last", "] COMMAND.LABEL\nE\nD", TextLine::kSecond, "D", ""},
        {"of several the last counts", "] COMMAND.LABEL\nA\n] command.label\nB\n", TextLine::kFirst, "B", ""},
        {"a label key wins on a line with both", "] COMMAND.HELPTEXT ] COMMAND.LABEL\nA\n", TextLine::kFirst, "A", ""},
        {"without the bracket it is no key", "COMMAND.LABEL\nA\n", TextLine::kFirst, "", ""},
        {"ends at a NUL", std::string("] COMMAND.LABEL\nA\0B\n", 20), TextLine::kFirst, "A", ""},
        {"empty", "", TextLine::kFirst, "", ""},
        {"no UTF-8", "] COMMAND.LABEL\n\xff\xc3\n", TextLine::kFirst, "\xff\xc3", ""},
    };
    for (const TextCase& c : cases) {
        const CommandText result = parseCommandText(c.text, c.line);
        EXPECT_EQ(result.label, c.label) << c.what;
        EXPECT_EQ(result.helpText, c.helpText) << c.what;
    }
}

TEST(ParseCommandText, ReadsTenMegabytes) {
    constexpr std::size_t kSize = 10'000'000;
    const std::string lineEnds(kSize, '\n');
    EXPECT_EQ(parseCommandText(lineEnds + "] COMMAND.LABEL\nA\n", TextLine::kFirst).label, "A");
    const std::string oneLine(kSize, 'x');
    EXPECT_EQ(parseCommandText("] COMMAND.LABEL\n" + oneLine, TextLine::kFirst).label, oneLine);
}

}  // namespace
