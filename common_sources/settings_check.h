// Finds what a user has got wrong in the settings file: what its reader silently takes for something else than was
// meant. Works on the file's bytes. Pure, any thread.
#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// A key that the plug-in reads.
struct SettingsKey {
    enum class Kind { text, number, toggle };
    std::string_view section;
    std::string_view name;
    Kind kind;
};

enum class SettingsProblem {
    notText,         // UTF-16
    empty,           // no key at all
    missingSection,  // with the nearest name that stands there
    missingKey,      // of a section that is there; not one that stands behind the section's end
    behindEnd,       // a key below the line that ended its section
    unknownKey,      // with the nearest known name
    repeatedKey,     // the first one counts
    switchValue,     // neither "on" nor "off"
    numberValue,     // no whole number, or with something behind it
    capDead,         // maxContMoveTime is not positive
    noTranslation,   // transSensBase is below 500
    noRotation,      // rotSensBase is 0
};
inline constexpr std::size_t kSettingsProblems = 12;

struct SettingsFinding {
    SettingsProblem problem;
    std::string text;     // the place, the value found and what holds instead
    std::string section;  // of a missing key or section; empty for a section that stands there under a wrong name
    std::string key;      // that is missing

    bool isError() const;  // the cap or a whole file is concerned, not a single value
};

struct SettingsReading {
    // In the order of the file, then those about values. Of a file that is not text, or is empty, only this is said and
    // what follows from it. A bounded number whatever the file is.
    std::vector<SettingsFinding> findings;

    // The texts that the plug-in reads, by section and key.
    std::map<std::pair<std::string, std::string>, std::string> values;

    // Empty when it is not read.
    std::string value(const std::string& section, const std::string& key) const;
    bool isOn(const std::string& section, const std::string& key) const;
    bool has(SettingsProblem problem) const;
};

SettingsReading checkSettings(std::string_view bytes, std::span<const SettingsKey> keys);
