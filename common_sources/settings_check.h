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

// What a user does about it.
constexpr std::string_view settingsRemedy(SettingsProblem problem) {
    switch (problem) {
        case SettingsProblem::notText:
            return "save the file as ANSI text, or delete it: the plug-in then writes a new one";
        case SettingsProblem::empty:
            return "delete the file: the plug-in then writes a new one";
        case SettingsProblem::missingSection:
            return "write the section's header exactly so, or delete the file: the plug-in then writes a new one";
        case SettingsProblem::missingKey:
            return "add the key, or let orbikon_doctor --fix add it with its default";
        case SettingsProblem::behindEnd:
            return "a section ends at its first line without a key: remove the empty line, header or indented comment "
                   "above the key";
        case SettingsProblem::unknownKey:
            return "correct the key's name, letter case counts, or remove the line";
        case SettingsProblem::repeatedKey:
            return "keep one of the lines";
        case SettingsProblem::switchValue:
            return "write exactly \"on\" or \"off\", in small letters";
        case SettingsProblem::numberValue:
            return "write a whole number, without unit, point or comma";
        case SettingsProblem::capDead:
            return "set maxContMoveTime to a number above 0; its default is 5000";
        case SettingsProblem::noTranslation:
            return "set transSensBase to 500 or more; its default is 40000";
        case SettingsProblem::noRotation:
            return "set rotSensBase to another number than 0; its default is 10000";
    }
    return {};
}

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
