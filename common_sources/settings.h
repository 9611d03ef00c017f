#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "OB_Daemon/src/logging.h"
#include "common_sources/settings_check.h"

class Cnfg;

// The plug-in's settings: the members of section PROGRAM and, in mLogPars, those of section LOGGING. They live in
//
//     %USERPROFILE%\OrbikonController\Applications\Creo_plugin.ini
//
// A file that exists is only read, and never written, even when it cannot be read just now; a missing one is written
// with the defaults and a comment for each key, whole or not at all. A key that is missing in the file gives an empty
// text, 0 or off. Values are not checked against any range. One thread at a
// time; the members are read and changed on Creo's user-interface thread only.
class Settings {
  public:
    // Builds the paths, creates missing folders, reads the file or writes the default one. What cannot be read or
    // written is logged and the defaults hold; nothing is thrown but lack of memory.
    Settings();
    // The defaults; no file or folder is looked at.
    struct DefaultsOnly {};
    explicit Settings(DefaultsOnly);
    ~Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    // Reads both sections. Negative when the file cannot be opened, otherwise 0 or more.
    int readSettingsFile(const std::string& path);

    // Writes the current values as a commented new file; one that is there already stays as it is. A failure is logged.
    void writeSettingsFile(const std::string& path) const;

    // What writeSettingsFile() writes, lines ended by LF.
    std::string fileText() const;

    // All keys of the file, in its order.
    static std::span<const SettingsKey> keys();

    // Folder of the settings file and of Creo.mnu, without a separator at its end.
    const std::string& settingsDirPath() const { return mSettingsDirPath; }

    std::string mName = "Geiplaigok";
    std::string mVersion = "2.8.6";
    std::int32_t mTraSensBase = 40000;
    std::int32_t mRotSensBase = 10000;
    std::int32_t mMinThreshold = 0;
    std::int32_t mMaxContMoveTime = 5000;  // ms
    std::int32_t mMaxFrameTime = 100;      // kept in the file; nothing uses it
    bool mIsTransToBlock = false;
    bool mScrollTreeAndList = true;
    bool mIsModeToRead = false;
    std::string mMNULanguage;
    bool mUseMapkeyForCommands = true;
    std::string mMapkeyDefinition = "ob";

    LoggingParameters mLogPars;

  private:
    std::string_view readParameter(Cnfg& file, std::string_view section, std::string_view key) const;
    void tellMistakes(const std::string& path) const;
    std::string dump() const;

    std::string mProductDirPath;
    std::string mSettingsDirPath;
    std::string mSettingsFilePath;
};
