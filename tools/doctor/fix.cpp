#include "tools/doctor/fix.h"

#include <optional>
#include <system_error>

#include "common_sources/settings.h"
#include "config/cnfg.h"
#include "tools/seat/file.h"
#include "tools/seat/text.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::textOf;

namespace {

std::string defaultText() { return Settings(Settings::DefaultsOnly{}).fileText(); }

std::string withLineEnds(std::string_view text, std::string_view lineEnd) {
    std::string result;
    for (const auto line : seat::linesOf(text)) result.append(line).append(lineEnd);
    return result;
}

// Lines of the default file: those of one section, of one key of it when it is not empty.
std::string defaultLines(const std::string& section, const std::string& key) {
    const std::string text = defaultText();
    std::string lines;
    bool isInside = false;
    for (const auto line : seat::linesOf(text)) {
        const Cnfg::Line parts = Cnfg::split(line);
        if (parts.isSection) isInside = parts.section == section;
        const bool isWanted = key.empty() ? parts.isSection || !parts.key.empty() : parts.key == key;
        if (isInside && isWanted) lines.append(line).append("\n");
    }
    return lines;
}

// Place behind the first header of a section.
std::optional<std::size_t> placeBelowHeader(const std::string& bytes, const std::string& section) {
    for (std::size_t at = 0; at < bytes.size();) {
        const auto lineEnd = bytes.find('\n', at);
        const std::size_t next = lineEnd == std::string::npos ? bytes.size() : lineEnd + 1;
        const Cnfg::Line line = Cnfg::split(std::string_view(bytes).substr(at, lineEnd - at));
        if (line.isSection && line.section == section) return next;
        at = next;
    }
    return std::nullopt;
}

FixStep writeDefaultFile(const Seat& seat) {
    std::error_code error;
    fs::create_directories(seat.settingsFolder(), error);
    const auto problem = seat::replaceFile(seat.settingsFile(), withLineEnds(defaultText(), "\r\n"));
    if (problem) return {false, *problem};
    return {true, textOf(seat.settingsFile()) + " written with all defaults"};
}

void addLines(std::string& bytes, const SettingsFinding& missing) {
    const std::string_view lineEnd = bytes.find("\r\n") != std::string::npos ? "\r\n" : "\n";
    const std::string lines = withLineEnds(defaultLines(missing.section, missing.key), lineEnd);
    if (!bytes.empty() && !bytes.ends_with('\n')) bytes += lineEnd;
    if (missing.key.empty()) {
        bytes.append(lineEnd).append(lines);
    } else if (const auto place = placeBelowHeader(bytes, missing.section)) {
        bytes.insert(*place, lines);
    }
}

std::vector<FixStep> addMissingKeys(const Seat& seat, const std::string& old) {
    std::string bytes = old;
    std::vector<FixStep> steps;
    for (const SettingsFinding& finding : seat.settings.findings) {
        if (finding.section.empty()) continue;
        addLines(bytes, finding);
        steps.push_back({true, finding.key.empty()
                                   ? "section [" + finding.section + "] added with its defaults"
                                   : "key '" + finding.key + "' added to [" + finding.section + "] with its default"});
    }
    if (steps.empty()) return steps;
    fs::path backup = seat.settingsFile();
    backup += ".bak";
    if (const auto problem = seat::replaceFile(seat.settingsFile(), bytes, backup)) return {{false, *problem}};
    steps.push_back({true, "the file as it was: " + textOf(backup)});
    return steps;
}

}  // namespace

std::vector<FixStep> fixSeat(const Seat& seat) {
    const seat::FileBytes content = seat::readFile(seat.settingsFile());
    if (content.state == seat::FileBytes::State::missing) return {writeDefaultFile(seat)};
    if (!content.isRead()) return {{false, textOf(seat.settingsFile()) + " cannot be read: " + content.problem}};
    return addMissingKeys(seat, content.bytes);
}

}  // namespace doctor
