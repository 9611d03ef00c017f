#include "common_sources/settings_check.h"

#include <algorithm>
#include <map>

#include "common_sources/nearest_name.h"
#include "common_sources/settings_value.h"
#include "config/cnfg.h"

namespace {

constexpr std::size_t kMaxLineFindings = 100;  // of what any line may bring; the rest is bounded by the known keys
constexpr std::size_t kMaxShown = 60;          // bytes of a name or value from the file

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};

// Values with which the plug-in does less than the user expects.
struct Limit {
    std::string_view key;
    std::int32_t least;  // that works
    bool isOnlyZeroBad;  // otherwise everything below `least`
    SettingsProblem problem;
    std::string_view consequence;
};
constexpr Limit kLimits[] = {
    {"maxContMoveTime", 1, false, SettingsProblem::capDead, "cap and buttons are dead; it must be greater than 0"},
    {"transSensBase", 500, false, SettingsProblem::noTranslation, "the cap moves no component; it must be 500 or more"},
    {"rotSensBase", 1, true, SettingsProblem::noRotation, "the cap turns no component; it must not be 0"},
};

std::string quoted(std::string_view text) {
    std::string shown(text.substr(0, kMaxShown));
    std::ranges::replace_if(
        shown, [](char c) { return c >= 0 && c < ' '; }, '?');
    return "'" + shown + (text.size() > kMaxShown ? "...'" : "'");
}

std::string atLine(std::size_t line) { return "line " + std::to_string(line); }
std::string inSection(std::string_view section) { return "section [" + std::string(section) + "]"; }

std::string_view emptyValueOf(SettingsKey::Kind kind) {
    switch (kind) {
        case SettingsKey::Kind::number:
            return "0";
        case SettingsKey::Kind::toggle:
            return "off";
        default:
            return "an empty text";
    }
}

bool isWholeNumber(std::string_view text) {
    if (text.starts_with('-') || text.starts_with('+')) text.remove_prefix(1);
    return !text.empty() && std::ranges::all_of(text, [](char c) { return c >= '0' && c <= '9'; });
}

class Checker {
  public:
    Checker(std::string_view bytes, std::span<const SettingsKey> keys) : mBytes(bytes), mKeys(keys) {}

    SettingsReading check() {
        const bool isUtf16 = std::ranges::any_of(kUtf16Marks, [this](auto mark) { return mBytes.starts_with(mark); });
        if (isUtf16) add(SettingsProblem::notText, "the file is UTF-16: nothing of it can be read");
        if (!isUtf16) readLines();
        if (!isUtf16 && !mHasKeys) add(SettingsProblem::empty, "the file has no key: everything is empty, 0 or off");
        if (mHasKeys) {
            checkSections();
            checkKeys();
            checkValues();
        }
        checkLimits();
        return {std::move(mFindings), texts()};
    }

  private:
    struct Section {
        std::size_t line = 0;     // of its header, 0 = there is none
        std::size_t endLine = 0;  // that ended it, 0 = the end of the file
        bool isOpen = false;
    };
    struct Value {
        std::size_t line;
        std::string_view text;
    };
    using Place = std::pair<std::string_view, std::string_view>;  // section and key
    struct Stray {
        std::size_t line;
        Place place;
    };

    void add(SettingsProblem problem, std::string text, std::string_view section = {}, std::string_view key = {}) {
        mFindings.push_back({problem, std::move(text), std::string(section), std::string(key)});
    }

    bool isKnown(std::string_view section) const {
        return std::ranges::find(mKeys, section, &SettingsKey::section) != mKeys.end();
    }
    const SettingsKey* keyOf(const Place& place) const {
        const auto found = std::ranges::find_if(
            mKeys, [&](const auto& key) { return key.section == place.first && key.name == place.second; });
        return found == mKeys.end() ? nullptr : &*found;
    }

    bool isStray(const Place& place) const { return std::ranges::find(mStrays, place, &Stray::place) != mStrays.end(); }

    // As the reader does it: a section's keys are those from its first header to the first line without one.
    void readLines() {
        std::string_view rest = mBytes, header;
        for (std::size_t number = 1; !rest.empty(); ++number) {
            const auto end = rest.find('\n');
            std::string_view line = rest.substr(0, end);
            rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
            if (line.ends_with('\r')) line.remove_suffix(1);
            if (line.starts_with('#') || line.starts_with('\r')) continue;
            const Cnfg::Line parts = Cnfg::split(line);
            if (parts.key.empty()) endSection(header, number);
            if (parts.isSection) beginSection(header = parts.section, number);
            if (!parts.key.empty()) takeKey({header, parts.key}, {number, parts.value});
        }
    }

    void endSection(std::string_view name, std::size_t line) {
        Section& section = mSections[name];
        if (section.isOpen) section.endLine = line;
        section.isOpen = false;
    }

    void beginSection(std::string_view name, std::size_t line) {
        Section& section = mSections[name];
        if (section.line != 0) return;
        section = {line, 0, true};
    }

    void takeKey(const Place& place, const Value& value) {
        mHasKeys = true;
        if (!isKnown(place.first)) return;  // the section's name is what is wrong
        if (!mSections[place.first].isOpen) {
            if (keyOf(place) != nullptr && !isStray(place)) mStrays.push_back({value.line, place});
            return;
        }
        const bool isFirst = mValues.emplace(place, value).second;
        if (mFindings.size() >= kMaxLineFindings) return;
        if (!isFirst) {
            add(SettingsProblem::repeatedKey, "key " + quoted(place.second) + " stands again in " + atLine(value.line) +
                                                  ": the first one counts, in " + atLine(mValues[place].line));
        } else if (keyOf(place) == nullptr) {
            addUnknown(place, value.line);
        }
    }

    void addUnknown(const Place& place, std::size_t line) {
        std::string text = "key " + quoted(place.second) + " in " + atLine(line) + " of " + inSection(place.first) +
                           " is not known and not read";
        std::vector<std::string_view> names;
        for (const auto& key : mKeys) {
            if (key.section == place.first) names.push_back(key.name);
            if (key.section != place.first && key.name == place.second)
                text += "; it belongs to " + inSection(key.section);
        }
        const std::string_view nearest = nearestName(place.second, names);
        if (!nearest.empty()) text += "; the nearest known key is '" + std::string(nearest) + "'";
        add(SettingsProblem::unknownKey, std::move(text));
    }

    void checkSections() {
        std::vector<std::string_view> present;
        for (const auto& [name, section] : mSections) {
            if (section.line != 0 && !isKnown(name)) present.push_back(name);
        }
        std::string_view last;
        for (const auto& key : mKeys) {
            if (key.section == last) continue;
            last = key.section;
            const auto found = mSections.find(last);
            if (found != mSections.end() && found->second.line != 0) continue;
            std::string text = inSection(last) + " is not there: all its values are empty, 0 or off";
            const std::string_view nearest = nearestName(last, present);
            if (!nearest.empty()) {
                text += "; " + atLine(mSections[nearest].line) + " has [" + std::string(nearest) + "]";
            } else if (mBytes.starts_with(kUtf8Mark)) {
                text += "; what stands in line 1 is not seen, it begins with a byte order mark";
            }
            add(SettingsProblem::missingSection, std::move(text), nearest.empty() ? last : std::string_view{});
        }
    }

    void checkKeys() {
        for (const auto& [line, place] : mStrays) {
            if (mValues.contains(place)) continue;
            const SettingsKey* key = keyOf(place);
            const Section& section = mSections[place.first];
            add(SettingsProblem::behindEnd, "key " + quoted(key->name) + " in " + atLine(line) + " stands behind " +
                                                atLine(section.endLine) + ", which ended " + inSection(key->section) +
                                                ": it is not read, " + std::string(emptyValueOf(key->kind)) + " holds");
        }
        for (const auto& key : mKeys) {
            const Place place{key.section, key.name};
            if (mValues.contains(place) || isStray(place) || mSections[key.section].line == 0) continue;
            add(SettingsProblem::missingKey,
                "key " + quoted(key.name) + " is missing in " + inSection(key.section) + ": " +
                    std::string(emptyValueOf(key.kind)) + " holds",
                key.section, key.name);
        }
    }

    void checkValues() {
        for (const auto& key : mKeys) {
            const auto found = mValues.find({key.section, key.name});
            if (found == mValues.end()) continue;
            const std::string_view value = found->second.text;
            const std::string place = quoted(value) + " of " + quoted(key.name) + " in " + atLine(found->second.line);
            if (key.kind == SettingsKey::Kind::toggle && value != "on" && value != "off") {
                add(SettingsProblem::switchValue,
                    place + " is neither \"on\" nor \"off\": taken for " + (isSwitchedOn(value) ? "on" : "off"));
            } else if (key.kind == SettingsKey::Kind::number && !isWholeNumber(value)) {
                add(SettingsProblem::numberValue,
                    place + " is no whole number: taken for " + std::to_string(leadingInteger(value)));
            }
        }
    }

    void checkLimits() {
        for (const Limit& limit : kLimits) {
            const auto key = std::ranges::find(mKeys, limit.key, &SettingsKey::name);
            if (key == mKeys.end()) continue;
            const auto found = mValues.find({key->section, key->name});
            const bool isFound = found != mValues.end();
            const std::int32_t value = isFound ? leadingInteger(found->second.text) : 0;
            if (limit.isOnlyZeroBad ? value != 0 : value >= limit.least) continue;
            const std::string origin = isFound ? "in " + atLine(found->second.line) : "it was not found";
            add(limit.problem, std::string(limit.key) + " is " + std::to_string(value) + " (" + origin +
                                   "): " + std::string(limit.consequence));
        }
    }

    std::map<std::pair<std::string, std::string>, std::string> texts() const {
        std::map<std::pair<std::string, std::string>, std::string> result;
        for (const auto& [place, value] : mValues) result.emplace(place, value.text);
        return result;
    }

    std::string_view mBytes;
    std::span<const SettingsKey> mKeys;
    std::map<std::string_view, Section> mSections;
    std::map<Place, Value> mValues;  // of known sections, those that are read; unknown keys among them
    std::vector<Stray> mStrays;      // known keys that are not read, each where it first stands
    bool mHasKeys = false;
    std::vector<SettingsFinding> mFindings;
};

}  // namespace

bool SettingsFinding::isError() const {
    switch (problem) {
        case SettingsProblem::capDead:
        case SettingsProblem::noTranslation:
        case SettingsProblem::noRotation:
        case SettingsProblem::missingSection:
        case SettingsProblem::missingKey:
            return true;
        default:
            return false;
    }
}

std::string SettingsReading::value(const std::string& section, const std::string& key) const {
    const auto found = values.find({section, key});
    return found == values.end() ? std::string() : found->second;
}

bool SettingsReading::isOn(const std::string& section, const std::string& key) const {
    return isSwitchedOn(value(section, key));
}

bool SettingsReading::has(SettingsProblem problem) const {
    return std::ranges::find(findings, problem, &SettingsFinding::problem) != findings.end();
}

SettingsReading checkSettings(std::string_view bytes, std::span<const SettingsKey> keys) {
    return Checker(bytes, keys).check();
}
