#include "common_sources/settings.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <variant>
#include <vector>

#include "common_sources/profile_folder.h"
#include "common_sources/settings_value.h"
#include "config/cnfg.h"
#include "config/file_text.h"
#include "config/new_file.h"

namespace {

constexpr char kLogClass[] = "Settings";

constexpr char kProductDir[] = "OrbikonController";
constexpr char kApplicationsDir[] = "Applications";
constexpr char kSettingsFile[] = "Creo_plugin.ini";
constexpr char kProgramSection[] = "PROGRAM";
constexpr char kLoggingSection[] = "LOGGING";
constexpr std::size_t kKeyColumn = 24;
constexpr std::size_t kValueColumn = 50;

// A key of the file: the member that holds its value and the comment behind it.
template <typename Record>
struct Key {
    const char* name;
    std::variant<std::string Record::*, std::int32_t Record::*, bool Record::*> member;
    const char* comment;
    const char* dumpLabel;
};

constexpr Key<Settings> kProgramKeys[] = {
    {"name", &Settings::mName, "# program's name", "      (Creo-Plug-in) mName: "},
    {"version", &Settings::mVersion, "# program's version number", "                  mVersion: "},
    {"transSensBase", &Settings::mTraSensBase, "# base sensitivity divisor for translation",
     "              mTraSensBase: "},
    {"rotSensBase", &Settings::mRotSensBase, "# base sensitivity divisor for rotation", "              mRotSensBase: "},
    {"minThreshold", &Settings::mMinThreshold, "# minimal threshold (overrides setting in control panel)",
     "             mMinThreshold: "},
    {"maxContMoveTime", &Settings::mMaxContMoveTime, "# maximal time for continuous cap movement in milliseconds",
     "          mMaxContMoveTime: "},
    {"maxFrameTime", &Settings::mMaxFrameTime, "# this parameter is obsolete and not longer used",
     "             mMaxFrameTime: "},
    {"blockTransInRotMode", &Settings::mIsTransToBlock,
     "# if true translation is blocked while Creo is in rotation mode (on/off)", "           mIsTransToBlock: "},
    {"scrollTreeAndList", &Settings::mScrollTreeAndList,
     "# scroll trees and lists within Catia if the mouse is above (on/off)", "        mScrollTreeAndList: "},
    {"readMode", &Settings::mIsModeToRead,
     "# ask Creo for the mode it is in: off/on (on disables the undo stack due to a bug in Creo)",
     "             mIsModeToRead: "},
    {"mnuLanguage", &Settings::mMNULanguage,
     "# if set, this string is used for finding the compiled resources DLL (e.g. pro_default_xxxxxx_resources.dll)",
     "              mMNULanguage: "},
    {"useMapkeyForCommands", &Settings::mUseMapkeyForCommands,
     "# if set, Orbikon executes Creo commands with the help of a Mapkey and dynamic Trail-files, in this way the UNDO "
     "Buffer is not cleared",
     "     mUseMapkeyForCommands: "},
    {"mapkeyDefinition", &Settings::mMapkeyDefinition,
     "# key string for the Mapkey, must be a-z or 0-9 with a length of max. 2", "         mMapkeyDefinition: "},
};

constexpr Key<LoggingParameters> kLoggingKeys[] = {
    {"logFile", &LoggingParameters::mLogFile, "# name of log file", "        mLogFile: "},
    {"maxSize", &LoggingParameters::mMaxSize, "# max. size of log file (kB)", "        mMaxSize: "},
    {"logToFile", &LoggingParameters::mIsLogToFile, "# log into log file:               off/on", "    mIsLogToFile: "},
    {"logToCnsl", &LoggingParameters::mIsLogToCnsl, "# log to console:                  off/on", "    mIsLogToCnsl: "},
    {"warning", &LoggingParameters::mIsWarning, "# log warnings:                    off/on", "      mIsWarning: "},
    {"creation", &LoggingParameters::mIsCreation, "# log creation etc.:               off/on", "     mIsCreation: "},
    {"trace", &LoggingParameters::mIsTrace, "# log trace data:                  off/on", "        mIsTrace: "},
    {"devcom", &LoggingParameters::mIsDevCom, "# not used in this plug-in", "       mIsDevCom: "},
    {"intcom", &LoggingParameters::mIsIntCom, "# log internal communication data: off/on", "       mIsIntCom: "},
    {"info", &LoggingParameters::mIsInfo, "# log info data:                   off/on", "         mIsInfo: "},
    {"debug", &LoggingParameters::mIsDebug, "# log debug data:                  off/on", "        mIsDebug: "},
    {"tmp", &LoggingParameters::mIsTmp, "# log data of temporal interest:   off/on", "          mIsTmp: "},
    {"fileToLog", &LoggingParameters::mExclFileToLog, "# name of the exclusively logged file", "  mExclFileToLog: "},
};

void assign(std::string& member, std::string_view text) { member = text; }
void assign(std::int32_t& member, std::string_view text) { member = leadingInteger(text); }
void assign(bool& member, std::string_view text) { member = isSwitchedOn(text); }

std::string toText(const std::string& member) { return member; }
std::string toText(std::int32_t member) { return std::to_string(member); }
std::string toText(bool member) { return member ? "on" : "off"; }

template <typename Record>
std::string toText(const Record& record, const Key<Record>& key) {
    return std::visit([&](auto member) { return toText(record.*member); }, key.member);
}

std::string blanks(std::size_t width, std::string_view text) {
    return std::string(width - std::min(width, text.size()), ' ');
}

template <typename Record>
std::string keyLine(const Record& record, const Key<Record>& key) {
    const std::string value = toText(record, key);
    return std::string("\t") + key.name + blanks(kKeyColumn, key.name) + "= " + blanks(kValueColumn, value) + value +
           key.comment + "\n";
}

}  // namespace

Settings::Settings() {
    mProductDirPath = profileFolder() + kPathSeparator + kProductDir;
    mSettingsDirPath = mProductDirPath + kPathSeparator + kApplicationsDir;
    mSettingsFilePath = mSettingsDirPath + kPathSeparator + kSettingsFile;
    OB_LOG(LogLevel::INF) << "Settings file: " << mSettingsFilePath;
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    mLogPars.mSettingsDirPath = mProductDirPath;
    gLogging.setSettingsDirPath(mProductDirPath);
    makeDirectories(mSettingsDirPath);
    if (readSettingsFile(mSettingsFilePath) < 0) {
        OB_LOG(LogLevel::INF) << "Settings file not found - using default values ...";
        writeSettingsFile(mSettingsFilePath);
    }
    OB_LOG(LogLevel::INF) << "\n" << dump();
}

// What the user has got wrong, each with what holds instead and what to do. The lines for missing keys are the
// reader's.
void Settings::tellMistakes(const std::string& path) const {
    const FileText file(path, FileText::Mode::binary);
    if (!file.isOpen()) return;
    for (const SettingsFinding& finding : checkSettings(file.text(), keys()).findings) {
        using enum SettingsProblem;
        if (finding.problem == missingKey) continue;
        const std::string text =
            "Settings file '" + path + "': " + finding.text + "; " + std::string(settingsRemedy(finding.problem)) + ".";
        OB_LOG(finding.isError() ? LogLevel::ERR : LogLevel::WRN) << text;
        if (finding.problem == notText || finding.problem == empty) tellWithoutLog(text);  // the log is off then
    }
}

Settings::~Settings() { OB_LOG(LogLevel::CRT) << "Destructed."; }

int Settings::readSettingsFile(const std::string& path) {
    Cnfg file(path);
    if (!file.isOpen()) return -1;
    try {
        for (const auto& key : kProgramKeys) {
            const std::string_view text = readParameter(file, kProgramSection, key.name);
            std::visit([&](auto member) { assign(this->*member, text); }, key.member);
        }
        for (const auto& key : kLoggingKeys) {
            const std::string_view text = readParameter(file, mLogPars.mSectionName, key.name);
            std::visit([&](auto member) { assign(mLogPars.*member, text); }, key.member);
        }
        tellMistakes(path);
    } catch (const std::exception&) {  // what was not read keeps its default
        OB_LOG(LogLevel::ERR) << "Error reading settings file!";
    }
    return 0;
}

std::string_view Settings::readParameter(Cnfg& file, std::string_view section, std::string_view key) const {
    std::string_view value;
    const std::int32_t status = file.readParameter(section, key, value);
    if (status == Cnfg::kReadFailed) throw std::runtime_error(file.errorText());
    if (status != Cnfg::kOk) OB_LOG(LogLevel::ERR) << file.errorText();
    return value;
}

void Settings::writeSettingsFile(const std::string& path) const {
    OB_LOG(LogLevel::TRC) << "Writing new default settings file ...";
    NewFile file(path);
    file.write(fileText());
    if (file.publish()) {
        OB_LOG(LogLevel::ERR) << "Writing default settings file '" << path << "' failed!";
        return;
    }
    OB_LOG(LogLevel::TRC) << "Default settings file written.";
}

std::string Settings::fileText() const {
    std::string text = std::string("# Configuration file for Orbikon's Creo Plug-in\n\n[") + kProgramSection + "]\n";
    for (const auto& key : kProgramKeys) text += keyLine(*this, key);
    text += "\n[" + mLogPars.mSectionName + "]\n";
    for (const auto& key : kLoggingKeys) text += keyLine(mLogPars, key);
    return text;
}

std::string Settings::dump() const {
    std::string text;
    for (const auto& key : kProgramKeys) text += key.dumpLabel + toText(*this, key) + "\n";
    text += "                  mLogPars:\n    mSectionName: " + mLogPars.mSectionName +
            "\nmSettingsDirPath: " + mLogPars.mSettingsDirPath + "\n";
    for (const auto& key : kLoggingKeys) text += key.dumpLabel + toText(mLogPars, key) + "\n";
    return text;
}

Settings::Settings(DefaultsOnly) {}

std::span<const SettingsKey> Settings::keys() {
    using Kind = SettingsKey::Kind;
    static const auto all = [] {
        std::vector<SettingsKey> keys;
        const auto add = [&](const char* section, const auto& table) {
            for (const auto& key : table) {
                const Kind kinds[] = {Kind::text, Kind::number, Kind::toggle};  // in the order of the variant
                keys.push_back({section, key.name, kinds[key.member.index()]});
            }
        };
        add(kProgramSection, kProgramKeys);
        add(kLoggingSection, kLoggingKeys);
        return keys;
    }();
    return all;
}
