// Menu files made from real resource libraries.
#include <gmock/gmock.h>
#include <windows.h>

#include <cstring>
#include <utility>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_parser.h"
#include "tests/mnu/large_set.h"
#include "tests/mnu/windows/data_folder.h"
#include "tests/mnu/windows/resource_dll.h"
#include "tests/substitutes/system.h"
#include "tests/unit/scratch.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

using testing::Not;

class Libraries : public testing::Test {
  protected:
    Libraries() {
        LoggingParameters parameters;
        parameters.mIsLogToFile = parameters.mIsWarning = parameters.mIsDebug = true;
        parameters.mLogFile = log;
        gLogging.init(parameters);
    }
    ~Libraries() override { gLogging.init({}); }

    // Makes both libraries of a language "test" in the test's own folder.
    bool makeLibraries(const std::vector<DllResource>& main, const std::vector<DllResource>& language) {
        const std::string empty = dataFolder() + "pro_default_resources.dll";
        return makeResourceDll(folder + "pro_default_resources.dll", empty, main) &&
               makeResourceDll(folder + "pro_default_test_resources.dll", empty, language);
    }

    bool create(const std::string& resourceFolder, const std::string& language) {
        return parser.CreateMNU(&progress, menuFile, resourceFolder, language, &cancel);
    }

    const ScratchFolder scratch;
    const std::string folder = scratch.file("");
    const std::string menuFile = folder + "Creo.mnu";
    const std::string log = folder + "log.txt";
    std::atomic<double> progress{0.0};
    std::atomic<bool> cancel{false};
    MNUParser parser;
};

TEST_F(Libraries, BecomeAMenuFileToTheByteInEachLanguage) {
    ASSERT_EQ(GetACP(), 1252u) << "the expected files are in this code page";
    for (const std::string language : {"english", "german", "french"}) {
        ASSERT_TRUE(create(dataFolder(), language)) << parser.failure();
        EXPECT_EQ(bytesOf(menuFile), inTextMode(bytesOf(dataFolder() + language + ".mnu"))) << language;
        EXPECT_EQ(progress, 0.999999);
        std::filesystem::remove(menuFile);
    }
    EXPECT_THAT(bytesOf(log), AllOf(HasSubstr("| Create MNU File: " + menuFile),
                                    HasSubstr("| MNU File created successfully: " + menuFile)));
}

// Creo's own bit width need not be that of the program that makes the menu file.
TEST_F(Libraries, OfTheOtherBitWidthAreReadAlike) {
    for (const char* name : {"pro_default_resources.dll", "pro_default_german_resources.dll"}) {
        writeFile(folder + name, withOtherWidth(bytesOf(dataFolder() + name)));
        EXPECT_EQ(LoadLibraryA((folder + name).c_str()), nullptr);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT)) << "it is of this width";
    }
    ASSERT_TRUE(create(folder, "german")) << parser.failure();
    EXPECT_EQ(bytesOf(menuFile), inTextMode(bytesOf(dataFolder() + "german.mnu")));
}

TEST_F(Libraries, ThatAreMissingOrNoneAreReported) {
    struct Case {
        std::string folder;
        const char* language;
        std::string failure;
    };
    std::ofstream(folder + "pro_default_text_resources.dll") << "This is no library.";
    std::ofstream(folder + "pro_default_resources.dll") << "MZ neither is this.";
    std::ofstream(folder + "pro_default_empty_resources.dll");
    const std::string data = dataFolder();
    const std::string noLanguage = "Compiled Language Resource File does not exist: ";
    const Case cases[] = {
        {data, "klingon", noLanguage + data + "pro_default_klingon_resources.dll"},
        {data, "x\\..\\pro_default_german", noLanguage + data + "pro_default_x\\..\\pro_default_german_resources.dll"},
        {folder + "none", "german", noLanguage + folder + "none\\pro_default_german_resources.dll"},
        {folder, "english", noLanguage + folder + "pro_default_german_resources.dll"},
        {folder, "text", "Cannot load DLL " + folder + "pro_default_resources.dll"},
        {folder, "empty", "Cannot load DLL " + folder + "pro_default_resources.dll"},
        {"", "german", "No folder of compiled resources given"},
    };
    for (const Case& c : cases) {
        EXPECT_FALSE(create(c.folder, c.language));
        EXPECT_EQ(parser.failure(), c.failure);
        EXPECT_THAT(bytesOf(log), HasSubstr("|ERR|"));
        EXPECT_THAT(bytesOf(log), HasSubstr(c.failure));
        EXPECT_FALSE(std::filesystem::exists(menuFile));
    }
    CopyFileA((data + "pro_default_german_resources.dll").c_str(),
              (folder + "pro_default_german_resources.dll").c_str(), FALSE);
    std::filesystem::remove(folder + "pro_default_resources.dll");
    EXPECT_FALSE(create(folder, "german"));
    EXPECT_EQ(parser.failure(), "Compiled Main Resource File does not exist: " + folder + "pro_default_resources.dll");
}

TEST_F(Libraries, AreDataWhoseCodeNeverRuns) {
    constexpr char kTrace[] = "ARMED_LIBRARY_RAN";
    const std::string armed = programFolder() + "armed_library.dll";
    ASSERT_TRUE(makeResourceDll(folder + "pro_default_resources.dll", armed, {{"PANE", "VIEW_PANE.RES", "ProCmdOne"}}));
    ASSERT_TRUE(makeResourceDll(folder + "pro_default_test_resources.dll", armed,
                                {{"TEXT", "PROCMDONE.TXT", "#1 [ProCmdOne] Command.Label\nOne\nEins\n"}}));
    ASSERT_TRUE(create(folder, "test")) << parser.failure();
    EXPECT_THAT(bytesOf(menuFile), HasSubstr("Eins"));
    EXPECT_EQ(GetEnvironmentVariableA(kTrace, nullptr, 0), 0u);

    const HMODULE loaded = LoadLibraryA((folder + "pro_default_resources.dll").c_str());
    EXPECT_NE(GetEnvironmentVariableA(kTrace, nullptr, 0), 0u) << "the library is not armed at all";
    FreeLibrary(loaded);
    SetEnvironmentVariableA(kTrace, nullptr);
}

TEST_F(Libraries, MayHoldAnything) {
    const std::string longLine(10'000'000, 'x');
    ASSERT_TRUE(makeLibraries({{"PANE", "VIEW_MENU_PANE.RES",
                                "ProCmdGood ProCmdSch\xc3\x96n ProCmdLong ProCmdNoUtf8 ProCmdNoLineEnd ProCmdShift"},
                               {"PANE", "HUGE_PANE.RES", longLine + "ProCmdGood" + longLine},
                               {RT_RCDATA, MAKEINTRESOURCEA(7), "] COMMAND.LABEL\nA\nB\n"}},
                              {{RT_RCDATA, "PROCMDGOOD.TXT", "] COMMAND.LABEL\nGood\nGut\n"},
                               {RT_RCDATA, "PROCMDSCH\xd6N.TXT", "] COMMAND.LABEL\nNice\nSch\xc3\xb6n\n"},
                               {RT_RCDATA, "PROCMDLONG.TXT", "] COMMAND.LABEL\nLong\n" + longLine},
                               {RT_RCDATA, "PROCMDNOUTF8.TXT",
                                "] COMMAND.LABEL\nX\n\xff"
                                "Bytes\n"},
                               {RT_RCDATA, "PROCMDNOLINEEND.TXT", "] COMMAND.LABEL"},
                               {RT_RCDATA, "PROCMDSHIFT.TXT", "] COMMAND.LABEL\nX\n[MenuBar]\n"},
                               {MAKEINTRESOURCEA(1234), MAKEINTRESOURCEA(1), "PROCMDGOOD.TXT"},
                               {RT_RCDATA, "PROCMDALONE.TXT", "] COMMAND.LABEL\nX\nAlone\n"}}));
    ASSERT_TRUE(create(folder, "test")) << parser.failure();
    const std::string text = bytesOf(menuFile);
    EXPECT_THAT(text, AllOf(HasSubstr("\r\n0HUGE"), HasSubstr("\r\n0VIEW_MENU"), HasSubstr("= {}ProCmdGood|"),
                            HasSubstr("Bytes"), HasSubstr("= {}ProCmdNoUtf8|"), HasSubstr("Sch\xf6n "),
                            HasSubstr("= {}ProCmdSch\xd6n|")));
    EXPECT_THAT(text, AllOf(Not(HasSubstr("ProCmdLong")), Not(HasSubstr("ProCmdShift")), Not(HasSubstr("Alone"))));
    EXPECT_THAT(bytesOf(log), AllOf(HasSubstr("its label would be read as a section: PROCMDSHIFT"),
                                    HasSubstr("its label is too long: PROCMDLONG")));
}

// Sizes that promise nothing, or more than the library has.
TEST_F(Libraries, MayLieAboutSizes) {
    struct Case {
        std::uint32_t lie;
        const char* message;
    };
    constexpr std::uint32_t kSize = 12'345;
    constexpr Case kCases[] = {
        {0, "Leere Datei in DLL-Resource: PROCMDBAD.TXT"},
        {0x0100'0000, "Kann Datei in DLL-Resource nicht locken: PROCMDBAD.TXT"},
        {0x7fff'ffff, "Kann Datei in DLL-Resource nicht locken: PROCMDBAD.TXT"},
        {0xffff'ffff, "Kann Datei in DLL-Resource nicht locken: PROCMDBAD.TXT"},
    };
    std::string logged;
    for (const Case& c : kCases) {
        ASSERT_TRUE(makeLibraries({{"PANE", "VIEW_MENU_PANE.RES", "ProCmdGood ProCmdBad"}},
                                  {{RT_RCDATA, "PROCMDBAD.TXT", std::string(kSize, 'x')},
                                   {RT_RCDATA, "PROCMDGOOD.TXT", "] COMMAND.LABEL\nGood\nGut\n"}}));
        const std::string path = folder + "pro_default_test_resources.dll";
        std::string bytes = bytesOf(path);
        const auto at = bytes.find(std::string(reinterpret_cast<const char*>(&kSize), sizeof kSize));
        ASSERT_NE(at, bytes.npos);
        std::memcpy(&bytes[at], &c.lie, sizeof c.lie);
        std::ofstream(path, std::ios::binary) << bytes;
        ASSERT_TRUE(create(folder, "test")) << parser.failure();
        EXPECT_THAT(bytesOf(menuFile), HasSubstr("= {}ProCmdGood|"));
        const std::string loggedBefore = std::exchange(logged, bytesOf(log));
        EXPECT_THAT(logged.substr(loggedBefore.size()), HasSubstr(c.message)) << c.lie;
        std::filesystem::remove(menuFile);
    }
}

TEST_F(Libraries, OfFullSizeAreReadAndCanBeCancelledAtAnyTime) {
    const LargeSet set = makeLargeSet(4'000, 200, 50'000);
    std::vector<DllResource> panes, commands;
    for (const Resource& pane : set.panes) panes.push_back({"PANE", pane.name.c_str(), pane.text});
    for (const Resource& text : set.commands) commands.push_back({RT_RCDATA, text.name.c_str(), text.text});
    ASSERT_TRUE(makeLibraries(panes, commands));
    ASSERT_TRUE(create(folder, "test")) << parser.failure();
    EXPECT_GT(std::filesystem::file_size(menuFile), 1'000'000u);
    std::filesystem::remove(menuFile);

    for (const double from : {0.0, 0.01, 0.31, 0.5, 0.899, 0.9, 0.95}) {
        progress = 0.0;
        cancel = from == 0.0;
        bool hasSucceeded = false;
        std::thread generation([&] { hasSucceeded = create(folder, "test"); });
        while (progress < from) std::this_thread::yield();
        cancel = true;
        generation.join();
        const bool isThere = std::filesystem::exists(menuFile);
        EXPECT_EQ(hasSucceeded, isThere) << "cancelled from " << from;
        std::filesystem::remove(menuFile);
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            EXPECT_NE(entry.path().extension(), ".tmp") << "cancelled from " << from;
        }
    }
}

// Each part has its share of the progress, which it has reached when it is done, however little there was to do.
TEST_F(Libraries, TellTheirProgressPartByPart) {
    ASSERT_TRUE(makeLibraries({{"PANE", "VIEW_PANE.RES", "ProCmdOne"}},
                              {{"TEXT", "PROCMDONE.TXT", "#1 [ProCmdOne] Command.Label\nOne\nEins\n"}}));
    EXPECT_FALSE(parser.CreateMNU(&progress, folder + "none\\Creo.mnu", folder, "test", &cancel));
    EXPECT_EQ(progress, 0.999999) << "both libraries are read and the text is made";
    progress = 0.0;
    writeFile(folder + "pro_default_test_resources.dll", "no library");
    EXPECT_FALSE(create(folder, "test"));
    EXPECT_EQ(progress, 0.3) << "the main library is read";
}

// Memory that is short at any point: a whole file, or none and a reason.
TEST_F(Libraries, EachAllocationMayFail) {
    ASSERT_TRUE(makeLibraries({{"PANE", "VIEW_PANE.RES", "ProCmdOne ProCmdTwo"}},
                              {{"TEXT", "PROCMDONE.TXT", "#1 [ProCmdOne] Command.Label\nOne\nEins\n"},
                               {"TEXT", "PROCMDTWO.TXT", "#1 [ProCmdTwo] Command.Label\nTwo\nZwei\n"}}));
    ASSERT_TRUE(create(folder, "test")) << parser.failure();
    const std::string whole = bytesOf(menuFile);
    bool hasSucceeded = false;
    const auto generate = [&] {
        hasSucceeded = false;
        hasSucceeded = create(folder, "test");
    };
    const auto check = [&](const std::string&) -> std::string {
        const std::string made = bytesOf(menuFile);
        if (std::filesystem::remove(menuFile) != hasSucceeded) return "the file and the answer do not agree";
        if (hasSucceeded && made != whole) return "the file is not whole";
        if (!hasSucceeded && parser.failure().empty()) return "no reason";
        const bool isMadeNow = create(folder, "test");
        std::filesystem::remove(menuFile);
        return isMadeNow ? "" : "it cannot be made any more";
    };
    std::filesystem::remove(menuFile);
    EXPECT_THAT(substitute::failEachCall(generate, check), testing::IsEmpty());
    EXPECT_THAT(bytesOf(log), AllOf(HasSubstr("Error CreateMNU()"), HasSubstr("Error EnumNamesFunc()")));
}

// What Windows calls answers sanely whatever happens inside.
TEST_F(Libraries, EnumerationGoesOnBehindWhatIsNotThere) {
    const HMODULE module = GetModuleHandleA(nullptr);
    char missing[] = "PROCMDMISSING.TXT";
    EXPECT_TRUE(parser.EnumNamesFunc(module, RT_RCDATA, missing));
    EXPECT_THAT(bytesOf(log), HasSubstr("Invalid Resource name: PROCMDMISSING.TXT"));
    EXPECT_TRUE(parser.EnumNamesFunc(module, RT_RCDATA, MAKEINTRESOURCEA(1)));
}

}  // namespace
