#include "common_sources/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/substitutes/system.h"
#include "tests/unit/scratch.h"

namespace {

const std::string kSeparator(1, kPathSeparator);

// Every line to the character: tab, key in 24 columns, "= ", value right-aligned in 50 columns, comment.
constexpr char kDefaultFile[] =
    "# Configuration file for Orbikon's Creo Plug-in\n"
    "\n"
    "[PROGRAM]\n"
    "\tname                    =                                         Geiplaigok# program's name\n"
    "\tversion                 =                                              2.8.6# program's version number\n"
    "\ttransSensBase           =                                              40000# base sensitivity divisor for "
    "translation\n"
    "\trotSensBase             =                                              10000# base sensitivity divisor for "
    "rotation\n"
    "\tminThreshold            =                                                  0# minimal threshold (overrides "
    "setting in control panel)\n"
    "\tmaxContMoveTime         =                                               5000# maximal time for continuous cap "
    "movement in milliseconds\n"
    "\tmaxFrameTime            =                                                100# this parameter is obsolete and "
    "not longer used\n"
    "\tblockTransInRotMode     =                                                off# if true translation is blocked "
    "while Creo is in rotation mode (on/off)\n"
    "\tscrollTreeAndList       =                                                 on# scroll trees and lists within "
    "Catia if the mouse is above (on/off)\n"
    "\treadMode                =                                                off# ask Creo for the mode it is in: "
    "off/on (on disables the undo stack due to a bug in Creo)\n"
    "\tmnuLanguage             =                                                   # if set, this string is used for "
    "finding the compiled resources DLL (e.g. pro_default_xxxxxx_resources.dll)\n"
    "\tuseMapkeyForCommands    =                                                 on# if set, Orbikon executes Creo "
    "commands with the help of a Mapkey and dynamic Trail-files, in this way the UNDO Buffer is not cleared\n"
    "\tmapkeyDefinition        =                                                 ob# key string for the Mapkey, must "
    "be a-z or 0-9 with a length of max. 2\n"
    "\n"
    "[LOGGING]\n"
    "\tlogFile                 =                                Creo_plugin_log.txt# name of log file\n"
    "\tmaxSize                 =                                               5000# max. size of log file (kB)\n"
    "\tlogToFile               =                                                off# log into log file:               "
    "off/on\n"
    "\tlogToCnsl               =                                                off# log to console:                  "
    "off/on\n"
    "\twarning                 =                                                off# log warnings:                    "
    "off/on\n"
    "\tcreation                =                                                off# log creation etc.:               "
    "off/on\n"
    "\ttrace                   =                                                off# log trace data:                  "
    "off/on\n"
    "\tdevcom                  =                                                off# not used in this plug-in\n"
    "\tintcom                  =                                                off# log internal communication data: "
    "off/on\n"
    "\tinfo                    =                                                off# log info data:                   "
    "off/on\n"
    "\tdebug                   =                                                off# log debug data:                  "
    "off/on\n"
    "\ttmp                     =                                                off# log data of temporal interest:   "
    "off/on\n"
    "\tfileToLog               =                                                   # name of the exclusively logged "
    "file\n";

constexpr char kDefaultDump[] =
    "      (Creo-Plug-in) mName: Geiplaigok\n"
    "                  mVersion: 2.8.6\n"
    "              mTraSensBase: 40000\n"
    "              mRotSensBase: 10000\n"
    "             mMinThreshold: 0\n"
    "          mMaxContMoveTime: 5000\n"
    "             mMaxFrameTime: 100\n"
    "           mIsTransToBlock: off\n"
    "        mScrollTreeAndList: on\n"
    "             mIsModeToRead: off\n"
    "              mMNULanguage: \n"
    "     mUseMapkeyForCommands: on\n"
    "         mMapkeyDefinition: ob\n"
    "                  mLogPars:\n"
    "    mSectionName: LOGGING\n";

constexpr char kDefaultLogDump[] =
    "        mLogFile: Creo_plugin_log.txt\n"
    "        mMaxSize: 5000\n"
    "    mIsLogToFile: off\n"
    "    mIsLogToCnsl: off\n"
    "      mIsWarning: off\n"
    "     mIsCreation: off\n"
    "        mIsTrace: off\n"
    "       mIsDevCom: off\n"
    "       mIsIntCom: off\n"
    "         mIsInfo: off\n"
    "        mIsDebug: off\n"
    "          mIsTmp: off\n"
    "  mExclFileToLog: \n";

class SettingsFile : public testing::Test {
  protected:
    SettingsFile() { setVariable("USERPROFILE", profile.path().c_str()); }
    ~SettingsFile() override { gLogging.init(LoggingParameters()); }

    std::string productFolder() const { return profile.file("OrbikonController"); }
    std::string settingsFolder() const { return productFolder() + kSeparator + "Applications"; }
    std::string path() const { return settingsFolder() + kSeparator + "Creo_plugin.ini"; }
    void write(const std::string& bytes) const {
        std::filesystem::create_directories(settingsFolder());
        writeFile(path(), bytes);
    }
    // Settings are built before the log is configured, so the test configures it.
    void logEverything() const {
        LoggingParameters parameters;
        parameters.mLogFile = profile.file("all.log");
        parameters.mIsLogToFile = parameters.mIsInfo = parameters.mIsTrace = parameters.mIsCreation = true;
        gLogging.init(parameters);
    }
    std::string log() const { return textOf(profile.file("all.log")); }

    ScratchFolder profile;
};

TEST_F(SettingsFile, DefaultFileToTheByte) {
    logEverything();
    const Settings settings;
    EXPECT_EQ(bytesOf(path()), inTextMode(kDefaultFile));
    EXPECT_THAT(namesIn(settingsFolder()), testing::ElementsAre("Creo_plugin.ini"));
    EXPECT_EQ(settings.settingsDirPath(), settingsFolder());
    EXPECT_EQ(settings.mLogPars.mSettingsDirPath, productFolder());
    const std::string text = log();
    for (const char* line : {"| Constructing ...\n", "| Settings file not found - using default values ...\n",
                             "| Writing new default settings file ...\n", "| Default settings file written.\n"}) {
        EXPECT_THAT(text, testing::HasSubstr(line));
    }
    EXPECT_THAT(text, testing::HasSubstr("| \n" + std::string(kDefaultDump) + "mSettingsDirPath: " + productFolder() +
                                         "\n" + kDefaultLogDump));
}

TEST_F(SettingsFile, DefaultFileReadsBackAsTheDefaults) {
    { const Settings first; }
    logEverything();
    const Settings settings;
    EXPECT_THAT(log(), testing::HasSubstr("| \n" + std::string(kDefaultDump)));
    EXPECT_THAT(log(), testing::HasSubstr(kDefaultLogDump));
    EXPECT_THAT(log(), testing::Not(testing::HasSubstr("|ERR|")));
}

TEST_F(SettingsFile, ExistingFileIsNeverRewritten) {
    for (const std::string bytes : {"", "[PROGRAM]\r\nname = mine", "\xff\xfe no settings at all\n"}) {
        write(bytes);
        const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(24);
        std::filesystem::last_write_time(path(), old);
        const auto before = std::filesystem::last_write_time(path());
        { const Settings settings; }
        EXPECT_EQ(bytesOf(path()), bytes);
        EXPECT_EQ(std::filesystem::last_write_time(path()), before);
    }
}

TEST_F(SettingsFile, SwitchesAreOnExactlyWithTheLettersOn) {
    const std::pair<const char*, bool> cases[] = {
        {"on", true},  {"none", true}, {"on/off", true}, {"off on", true},  {"off", false},
        {"no", false}, {"1", false},   {"true", false},  {"", false},       {"On", false},
        {"ON", false}, {"yes", false}, {"o n", false},   {"off#on", false},
    };
    for (const auto& [text, isOn] : cases) {
        write("[PROGRAM]\nscrollTreeAndList = " + std::string(text) + "\n\n[LOGGING]\nlogToFile = " + text + "\n");
        const Settings settings;
        EXPECT_EQ(settings.mScrollTreeAndList, isOn) << text;
        EXPECT_EQ(settings.mLogPars.mIsLogToFile, isOn) << text;
    }
}

TEST_F(SettingsFile, NumbersAreReadAsFarAsTheyGo) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"12abc", 12},
        {"abc", 0},
        {"-5", -5},
        {"+7", 7},
        {"", 0},
        {"-", 0},
        {"+-3", 0},
        {"--3", 0},
        {"1.9", 1},
        {"1 000", 1},
        {"0x10", 0},
        {"007", 7},
        {"2147483647", 2147483647},
        {"2147483648", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"-99999999999999999999", -2147483647 - 1},
        {"99999999999999999999x", 2147483647},
        {"- 5", 0},
    };
    for (const auto& [text, number] : cases) {
        write("[PROGRAM]\nminThreshold = " + std::string(text) + "\n\n[LOGGING]\nmaxSize = " + text + "\n");
        const Settings settings;
        EXPECT_EQ(settings.mMinThreshold, number) << text;
        EXPECT_EQ(settings.mLogPars.mMaxSize, number) << text;
    }
}

TEST_F(SettingsFile, MissingKeysAndSectionsAreEmptyZeroAndOff) {
    logEverything();
    write("[PROGRAM]\nname = mine\nrotSensBase = 3\n\nversion = behind the empty line\n");
    const Settings settings;
    EXPECT_EQ(settings.mName, "mine");
    EXPECT_EQ(settings.mRotSensBase, 3);
    EXPECT_EQ(settings.mVersion, "");
    EXPECT_EQ(settings.mTraSensBase, 0);
    EXPECT_FALSE(settings.mScrollTreeAndList);
    EXPECT_FALSE(settings.mUseMapkeyForCommands);
    EXPECT_EQ(settings.mMapkeyDefinition, "");
    EXPECT_EQ(settings.mLogPars.mLogFile, "");
    EXPECT_EQ(settings.mLogPars.mMaxSize, 0);
    EXPECT_THAT(log(), testing::HasSubstr("| Parameter 'version' in section 'PROGRAM' not found! (" + path() + ")\n"));
    EXPECT_THAT(log(), testing::HasSubstr("| Section 'LOGGING' not found!\n"));
}

// What cannot be read or written leaves the defaults and a line in the log.
TEST_F(SettingsFile, PlaceThatCannotBeUsed) {
    writeFile(profile.file("a-file"), "in the way");
    const std::string blocked = profile.file("a-file");
    std::filesystem::create_directories(path());  // a folder where the file should be
    for (const std::string& place : {blocked, profile.path()}) {
        setVariable("USERPROFILE", place.c_str());
        logEverything();
        const Settings settings;
        EXPECT_EQ(settings.mTraSensBase, 40000) << place;
        EXPECT_TRUE(settings.mUseMapkeyForCommands);
        EXPECT_EQ(settings.mLogPars.mLogFile, "Creo_plugin_log.txt");
        const std::string file =
            place + kSeparator + "OrbikonController" + kSeparator + "Applications" + kSeparator + "Creo_plugin.ini";
        EXPECT_THAT(log(), testing::HasSubstr("| Writing default settings file '" + file + "' failed!\n"));
    }
    EXPECT_EQ(bytesOf(blocked), "in the way");
}

#ifndef _WIN32
TEST_F(SettingsFile, FullDiskLeavesNoFile) {
    for (const rlim_t size : {rlim_t{0}, rlim_t{1000}, rlim_t{std::strlen(kDefaultFile) - 1}}) {
        {
            const FullDisk full(size);
            const Settings settings;
            EXPECT_EQ(settings.mTraSensBase, 40000);
        }
        EXPECT_THAT(namesIn(settingsFolder()), testing::IsEmpty()) << size;
    }
    {
        const FullDisk full(std::strlen(kDefaultFile));
        const Settings settings;
    }
    EXPECT_EQ(bytesOf(path()), kDefaultFile);
}
#endif

TEST_F(SettingsFile, AppearsWholeOrNotAtAllAndStaysWhateverFails) {
    for (const bool isThere : {false, true}) {
        bool areDefaults = true;
        const auto construct = [&] {
            const Settings settings;
            areDefaults = settings.mTraSensBase == 40000 && settings.mMapkeyDefinition == "ob" &&
                          settings.mLogPars.mLogFile == "Creo_plugin_log.txt" && settings.mLogPars.mMaxSize == 5000;
        };
        construct();
        const auto check = [&](const std::string& which) -> std::string {
            const std::string whole = inTextMode(kDefaultFile);
            const bool mayBeMissing = !isThere && !std::filesystem::exists(path());
            if (!mayBeMissing && bytesOf(path()) != whole) return "file";
            if (!areDefaults) return "values";
            construct();
            if (bytesOf(path()) != whole) return "next file";
            if (namesIn(settingsFolder()).size() != 1 && which != "remove 1") return "rest";
            if (!isThere) std::filesystem::remove_all(settingsFolder());
            return "";
        };
        EXPECT_THAT(substitute::failEachCall(construct, check), testing::IsEmpty());
    }
}

TEST_F(SettingsFile, ProfileNamedInTheProcessCodePage) {
    const std::string place = profile.file("J\xf6rg");
    setVariable("USERPROFILE", place.c_str());
    const Settings settings;
    const std::string file = settings.settingsDirPath() + kSeparator + "Creo_plugin.ini";
    EXPECT_EQ(settings.settingsDirPath(), place + kSeparator + "OrbikonController" + kSeparator + "Applications");
    EXPECT_EQ(textOf(file), kDefaultFile);
    // Removed here: std::filesystem would take the name for UTF-8 on Windows.
    std::remove(file.c_str());
#ifdef _WIN32
    for (auto folder = settings.settingsDirPath(); folder.size() >= place.size();) {
        _rmdir(folder.c_str());
        folder.resize(folder.rfind(kPathSeparator));
    }
#endif
}

TEST_F(SettingsFile, ProfileThatIsNotSetIsAnEmptyPrefix) {
    setVariable("USERPROFILE", nullptr);
    const std::string product = kSeparator + "OrbikonController";
    if (std::filesystem::exists(product)) GTEST_SKIP() << product << " exists and is none of this test's";
    {
        const Settings settings;
        EXPECT_EQ(settings.settingsDirPath(), product + kSeparator + "Applications");
        EXPECT_EQ(settings.mLogPars.mSettingsDirPath, product);
        EXPECT_EQ(settings.mTraSensBase, 40000);
    }
    std::error_code ignored;
    std::filesystem::remove_all(product, ignored);
}

}  // namespace
