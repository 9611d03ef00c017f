// Loading of the menu file, whatever state it is in.
#include "tests/substitutes/system.h"
#include "tests/unit/plugin.h"

namespace {

using substitute::GenerationEnd;
using testing::Contains;

class Menu : public PlugIn {
  protected:
    // Size of the table as the log tells it; the message of an index that is too big shows the last index.
    int entries() {
        newLog();
        creo().execApplFunction(4294967295u);
        const std::string line = newLog().back();
        const auto begin = line.find("max. is ") + 8;
        return std::stoi(line.substr(begin)) + 1;
    }
    std::string macro(std::uint32_t index) {
        toolkit().macros.clear();
        creo().execApplFunction(index);
        std::string text;
        for (const auto& wide : toolkit().macros) {
            for (const wchar_t c : wide) text += static_cast<char>(c);
        }
        return text;
    }
};

TEST_F(Menu, FilesOfEveryKind) {
    start();
    struct Case {
        const char* what;
        std::string file;
        int entries;
        std::string firstMacro;
    };
    const Case cases[] = {
        {"empty", "", 0, ""},
        {"NULs", std::string(100, '\0'), 0, ""},
        {"NULs in an entry", std::string("[MenuBar]\na = {}b\0c|d\n", 21), 1, "~ Command `b"},
        {"no menu", "[Modes]\nPart = 1\n", 0, ""},
        {"headers take no index", "[MenuBar]\n0A = {}\nx = {}one|h\n0B = {}\ny = {}two|h\n", 2, "~ Command `one`;"},
        {"no brace", "[MenuBar]\nx = one|h\n", 1, "~ Command `one`;"},
        {"open brace", "[MenuBar]\nx = {one|h\n", 1, "~ Command `{one`;"},
        {"empty commands", "[MenuBar]\na = {}\nb =\nc = {}|help\nd = {+ 6}\ne = {}one\n", 1, "~ Command `one`;"},
        {"equal names", "[MenuBar]\na = {}one|h\na = {}two|h\na = {}one|h\n", 3, "~ Command `one`;"},
        {"end at the empty line", "[MenuBar]\na = {}one|h\n\nb = {}two|h\n", 1, "~ Command `one`;"},
        {"closing blank", "[MenuBar]\na = {}one|h\n ", 1, "~ Command `one`;"},
        {"carriage returns", "[MenuBar]\r\na = {}one\r\nb = {}two|h\r\n", 2, "~ Command `one`;"},
        {"comment in the help", "[MenuBar]\na = {}one|see # 1\n", 1, "~ Command `one`;"},
        {"long line", "[MenuBar]\na = {}" + std::string(1'000'000, 'c') + "|h\n", 1,
         "~ Command `" + std::string(1'000'000, 'c') + "`;"},
        {"long help", "[MenuBar]\na = {}one|" + std::string(1'000'000, 'h') + "\n", 1, "~ Command `one`;"},
        {"sections in the other order", "[MenuBar]\na = {}one\n\n[Modes]\nA = 1\n", 1, "~ Command `one`;"},
    };
    for (const auto& c : cases) {
        writeMenuFile(c.file);
        newLog();
        creo().loadMenufile();
        EXPECT_EQ(handOver().menuFileProgress, 1.0);
        EXPECT_THAT(newLog(), Contains("TRC Menu file '" + menuFile() + "' with " + std::to_string(c.entries) +
                                       " entries loaded."));
        EXPECT_EQ(entries(), c.entries) << c.what;
        EXPECT_TRUE(macro(0) == c.firstMacro) << c.what;
        EXPECT_EQ(bytesOf(menuFile()), c.file) << c.what;
    }
}

// A file that can be read and does not serve: made in another language, or without anything for a button.
TEST_F(Menu, FileThatDoesNotServeIsNamed) {
    const std::string own = "[MenuBar]\n0Orbikon = {}\n";
    const std::string german = own + "1Bewegungsmodus umschalten = {}OB_Toggle_Object_Move_Mode|x\n";
    const std::string english = own + "1Toggle Move Mode = {}OB_Toggle_Object_Move_Mode|x\n";
    struct Case {
        const char* language;
        std::string file, line;
    };
    const std::string remedy = "; delete it, start Creo, which makes it anew, and bind the device's buttons again.";
    const Case cases[] = {
        {"german", german, ""},
        {"german", english, "is English, Creo's language is 'german'"},
        {"French", german, "is German, Creo's language is 'french'"},
        {"french", english, ""},
        {"english", own + "A = {}one|h\n", ""},
        {"english", own, "has no entry, buttons run no commands"},
    };
    for (const auto& [language, file, line] : cases) {
        start(Threads::none, kProgram + std::string("mnuLanguage = ") + language + "\n");
        writeMenuFile(file);
        newLog();
        creo().loadMenufile();
        const auto lines = newLogWithout({"TRC", "DBG", "INF", "CRT", "TMP"});
        using Lines = std::vector<std::string>;
        EXPECT_EQ(lines, line.empty() ? Lines{} : Lines{"WRN Menu file '" + menuFile() + "' " + line + remedy});
        stop();
    }
}

TEST_F(Menu, GenerationDecidesWhatIsLoaded) {
    struct Case {
        const char* what;
        GenerationEnd end;
        std::string file;  // what the generation writes; empty: nothing
        int entries;
    };
    const Case cases[] = {
        {"succeeds", GenerationEnd::succeeded, "[MenuBar]\na = {}one|h\n", 1},
        {"says so but writes nothing", GenerationEnd::succeeded, "", 0},
        {"fails", GenerationEnd::failed, "", 0},
    };
    for (const auto& c : cases) {
        std::filesystem::remove(menuFile());
        substitute::windows().generate = [](const std::string&) { return GenerationEnd::running; };
        start();
        EXPECT_LT(handOver().menuFileProgress, 0.0) << c.what;
        creo().loadMenufile();  // the first tick starts it, the next ones look
        creo().loadMenufile();
        EXPECT_GE(handOver().menuFileProgress, 0.0) << c.what;
        EXPECT_LT(handOver().menuFileProgress, 1.0) << c.what;
        EXPECT_EQ(entries(), 0);
        substitute::windows().generate = [&](const std::string& path) {
            EXPECT_EQ(path, menuFile());
            if (!c.file.empty()) writeFile(path, c.file);
            return c.end;
        };
        creo().loadMenufile();
        EXPECT_EQ(handOver().menuFileProgress, 1.0) << c.what;
        EXPECT_EQ(entries(), c.entries) << c.what;
        stop();
    }
}

// A folder in the file's place stands for a file that another program holds. The device is served meanwhile.
TEST_F(Menu, FileThatCannotBeOpenedIsTriedAgainForHalfAMinute) {
    using std::chrono::seconds;
    substitute::windows().generate = [](const std::string&) {
        ADD_FAILURE() << "generated over what is there";
        return GenerationEnd::failed;
    };
    const auto tick = [&](seconds later) {
        substitute::advanceClock(later);
        creo().loadMenufile();
        EXPECT_EQ(handOver().menuFileProgress, 1.0);
        return creo().isMenuFileAwaited();
    };
    const std::string name = "Menu file '" + menuFile() + "' ";
    for (const bool isFreed : {true, false}) {
        start();
        EXPECT_TRUE(creo().isMenuFileAwaited());
        std::filesystem::create_directory(menuFile());
        newLog();
        EXPECT_TRUE(tick(seconds(0)));
        EXPECT_THAT(newLog(), testing::ElementsAre("WRN " + name +
                                                   "cannot be read, trying again for 30 s; close the "
                                                   "program that holds it."));
        EXPECT_TRUE(tick(seconds(20)));
        std::filesystem::remove(menuFile());
        EXPECT_TRUE(tick(seconds(0))) << "perhaps it is being replaced";
        EXPECT_THAT(newLog(), testing::IsEmpty());
        if (isFreed) writeMenuFile("[MenuBar]\na = {}one|h\n");
        EXPECT_FALSE(tick(seconds(10)));
        EXPECT_THAT(newLog(), Contains(isFreed ? "TRC " + name + "with 1 entries loaded."
                                               : "ERR " + name +
                                                     "could not be read, buttons run no commands; close "
                                                     "the program that holds it and start Creo again."));
        EXPECT_EQ(entries(), isFreed ? 1 : 0);
        std::filesystem::remove(menuFile());
        EXPECT_FALSE(tick(seconds(0))) << "at its end";
        stop();
    }
}

TEST_F(Menu, EachCallMayFailWhileItIsLoaded) {
    start();
    writeMenuFile("[Modes]\nA = 1\n\n[MenuBar]\na = {}" + std::string(100, 'c') + "|h\nb = {}two|h\n");
    handOver().mode = 0;
    const auto firstTick = [&] {
        handOver().menuFileProgress = HandOver::kProgressNotStarted;
        creo().loadMenufile();
    };
    const auto check = [&](const std::string&) {
        if (creo().isMenuFileAwaited()) creo().loadMenufile();  // the next tick
        const bool isLoaded = !creo().isMenuFileAwaited() && handOver().modeName() == "A" && entries() == 2;
        handOver().publishModeNames({});
        return isLoaded ? "" : "no menu file";
    };
    EXPECT_THAT(substitute::failEachCall(firstTick, check), testing::IsEmpty());
}

TEST_F(Menu, GenerationThatThrowsEndsTheLoading) {
    substitute::windows().generate = [](const std::string&) -> GenerationEnd { throw std::bad_alloc(); };
    start();
    EXPECT_THROW(creo().loadMenufile(), std::bad_alloc);
    EXPECT_EQ(handOver().menuFileProgress, 1.0);
    EXPECT_NO_THROW(creo().loadMenufile()) << "it is over: nothing is generated any more";
    EXPECT_FALSE(creo().isMenuFileAwaited());
}

}  // namespace
