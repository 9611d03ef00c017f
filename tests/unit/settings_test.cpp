#include "common_sources/settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/substitutes/system.h"
#include "tests/unit/scratch.h"

namespace {

const std::string kSeparator(1, kPathSeparator);

// Keys in the order of the file: value by default, comment, and label in the dump of all members.
struct Key {
    const char *name, *value, *comment, *label;
};
const std::vector<Key> kProgram = {
    {"name", "Geiplaigok", "# program's name", "(Creo-Plug-in) mName"},
    {"version", "2.8.6", "# program's version number", "mVersion"},
    {"transSensBase", "40000", "# base sensitivity divisor for translation", "mTraSensBase"},
    {"rotSensBase", "10000", "# base sensitivity divisor for rotation", "mRotSensBase"},
    {"minThreshold", "0", "# minimal threshold (overrides setting in control panel)", "mMinThreshold"},
    {"maxContMoveTime", "5000", "# maximal time for continuous cap movement in milliseconds", "mMaxContMoveTime"},
    {"maxFrameTime", "100", "# this parameter is obsolete and not longer used", "mMaxFrameTime"},
    {"blockTransInRotMode", "off", "# if true translation is blocked while Creo is in rotation mode (on/off)",
     "mIsTransToBlock"},
    {"scrollTreeAndList", "on", "# scroll trees and lists within Catia if the mouse is above (on/off)",
     "mScrollTreeAndList"},
    {"readMode", "off", "# ask Creo for the mode it is in: off/on (on disables the undo stack due to a bug in Creo)",
     "mIsModeToRead"},
    {"mnuLanguage", "",
     "# if set, this string is used for finding the compiled resources DLL (e.g. pro_default_xxxxxx_resources.dll)",
     "mMNULanguage"},
    {"useMapkeyForCommands", "on",
     "# if set, Orbikon executes Creo commands with the help of a Mapkey and dynamic Trail-files, in this way the UNDO "
     "Buffer is not cleared",
     "mUseMapkeyForCommands"},
    {"mapkeyDefinition", "ob", "# key string for the Mapkey, must be a-z or 0-9 with a length of max. 2",
     "mMapkeyDefinition"},
};
const std::vector<Key> kLogging = {
    {"logFile", "Creo_plugin_log.txt", "# name of log file", "mLogFile"},
    {"maxSize", "5000", "# max. size of log file (kB)", "mMaxSize"},
    {"logToFile", "off", "# log into log file:               off/on", "mIsLogToFile"},
    {"logToCnsl", "off", "# log to console:                  off/on", "mIsLogToCnsl"},
    {"warning", "off", "# log warnings:                    off/on", "mIsWarning"},
    {"creation", "off", "# log creation etc.:               off/on", "mIsCreation"},
    {"trace", "off", "# log trace data:                  off/on", "mIsTrace"},
    {"devcom", "off", "# not used in this plug-in", "mIsDevCom"},
    {"intcom", "off", "# log internal communication data: off/on", "mIsIntCom"},
    {"info", "off", "# log info data:                   off/on", "mIsInfo"},
    {"debug", "off", "# log debug data:                  off/on", "mIsDebug"},
    {"tmp", "off", "# log data of temporal interest:   off/on", "mIsTmp"},
    {"fileToLog", "", "# name of the exclusively logged file", "mExclFileToLog"},
};

// Every line to the character: tab, key in 24 columns, "= ", value right-aligned in 50 columns, comment.
std::string linesOf(const std::vector<Key>& keys) {
    std::string text;
    for (const Key& key : keys) {
        char line[300];
        std::snprintf(line, sizeof line, "\t%-24s= %50s%s\n", key.name, key.value, key.comment);
        text += line;
    }
    return text;
}
const std::string kDefaultFile = "# Configuration file for Orbikon's Creo Plug-in\n\n[PROGRAM]\n" + linesOf(kProgram) +
                                 "\n[LOGGING]\n" + linesOf(kLogging);

// The labels end in one column in each part.
std::string dumpOf(const std::vector<Key>& keys, int width) {
    std::string text;
    for (const Key& key : keys) {
        char line[100];
        std::snprintf(line, sizeof line, "%*s: %s\n", width, key.label, key.value);
        text += line;
    }
    return text;
}
const std::string kDefaultDump = dumpOf(kProgram, 26) + "                  mLogPars:\n    mSectionName: LOGGING\n";
const std::string kDefaultLogDump = dumpOf(kLogging, 16);

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

TEST_F(SettingsFile, DefaultFileToTheByteReadsBackAsTheDefaults) {
    logEverything();
    const Settings settings;
    EXPECT_EQ(bytesOf(path()), inTextMode(kDefaultFile));
    EXPECT_THAT(kDefaultFile,
                testing::HasSubstr("\n\tname                    =                                         "
                                   "Geiplaigok# program's name\n"));
    EXPECT_THAT(namesIn(settingsFolder()), testing::ElementsAre("Creo_plugin.ini"));
    EXPECT_EQ(settings.settingsDirPath(), settingsFolder());
    EXPECT_EQ(settings.mLogPars.mSettingsDirPath, productFolder());
    const std::string dump = "| \n" + kDefaultDump + "mSettingsDirPath: " + productFolder() + "\n" + kDefaultLogDump;
    const std::string first = log();
    for (const std::string& line : {std::string("| Constructing ...\n"), dump,
                                    std::string("| Settings file not found - using default values ...\n"),
                                    std::string("| Writing new default settings file ...\n"),
                                    std::string("| Default settings file written.\n")}) {
        EXPECT_THAT(first, testing::HasSubstr(line));
    }
    { const Settings second; }
    EXPECT_THAT(log().substr(first.size()), testing::HasSubstr(dump));
    EXPECT_THAT(log().substr(first.size()), testing::HasSubstr("| Destructed.\n"));
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
    for (const rlim_t size : {rlim_t{0}, rlim_t{1000}, kDefaultFile.size() - 1}) {
        {
            const FullDisk full(size);
            const Settings settings;
            EXPECT_EQ(settings.mTraSensBase, 40000);
        }
        EXPECT_THAT(namesIn(settingsFolder()), testing::IsEmpty()) << size;
    }
    {
        const FullDisk full(kDefaultFile.size());
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
