// The settings file, and the log and mapkey that it asks for.
#include <algorithm>
#include <iterator>
#include <optional>
#include <system_error>

#include "common_sources/command_text.h"
#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/settings_value.h"
#include "tools/doctor/seat.h"
#include "tools/seat/file.h"
#include "tools/seat/text.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::FileBytes;
using seat::textOf;

namespace {

constexpr char kProgram[] = "PROGRAM";
constexpr char kLogging[] = "LOGGING";
constexpr const char* kOutputs[] = {"logToFile", "logToCnsl"};
constexpr const char* kLevels[] = {"warning", "creation", "trace", "devcom", "intcom", "info", "debug", "tmp"};
constexpr char kTrailFile[] = "orbikon-trail.txt";
constexpr std::size_t kLongestTempFolder = 254;  // bytes in the process code page; the plug-in has no room for more

// In the order of SettingsProblem.
constexpr CheckId kProblems[kSettingsProblems] = {
    "settings.encoding",   "settings.empty",       "settings.missing-section", "settings.missing-key",
    "settings.behind-end", "settings.unknown-key", "settings.repeated-key",    "settings.switch",
    "settings.number",     "settings.cap-dead",    "settings.translation",     "settings.rotation",
};

std::string listOf(const Seat& seat, std::span<const char* const> keys) {
    std::string list;
    for (const char* key : keys) {
        if (seat.isOn(kLogging, key)) list += (list.empty() ? "" : " ") + std::string(key);
    }
    return list;
}

// Why a file could not be written in its place; nothing when it could. Folders that are missing are made.
std::optional<std::string> placeProblem(const fs::path& file) {
    std::error_code error;
    if (fs::is_directory(file, error)) return "it is a folder";
    if (fs::exists(file, error)) return seat::rewritingProblem(file);
    if (file.relative_path().string().find_first_of("<>:\"|?*") != std::string::npos) {
        return "no file can have this name";
    }
    fs::path folder = file.parent_path();
    for (; !fs::is_directory(folder, error) && folder.has_relative_path(); folder = folder.parent_path()) {
        if (fs::exists(folder, error)) return textOf(folder) + " is no folder";
    }
    const auto problem = seat::writingProblem(folder);
    return problem ? "nothing can be written in " + textOf(folder) + ": " + *problem : problem;
}

void tellPlace(CheckId id, const fs::path& file, Findings& findings) {
    const auto problem = placeProblem(file);
    findings.tell(id, !problem, textOf(file) + (problem ? ": " + *problem : " can be written"));
}

}  // namespace

void checkSettings(Seat& seat, Findings& findings) {
    const fs::path file = seat.settingsFile();
    const FileBytes content = seat::readFile(file);
    tellPlace("settings.writable", file, findings);
    if (content.state == FileBytes::State::missing) {
        findings.fail("settings.file", textOf(file) + " is not there; the defaults hold");
        return;
    }
    findings.ok("settings.file", textOf(file));
    findings.tell("settings.readable", content.isRead(), content.isRead() ? "can be read" : content.problem);
    if (!content.isRead()) return;
    for (const SettingsFinding& finding : seat.settings.findings) {
        findings.fail(kProblems[static_cast<std::size_t>(finding.problem)], finding.text);
    }
}

void checkLog(Seat& seat, Findings& findings) {
    const std::string outputs = listOf(seat, kOutputs), levels = listOf(seat, kLevels);
    if (outputs.empty()) {
        findings.ok("log.output", "the log is off");
        return;
    }
    findings.ok("log.output", outputs + " with errors" + (levels.empty() ? "" : " " + levels));
    const std::string filter = seat.setting(kLogging, "fileToLog");
    findings.tell("log.filter", filter.empty(),
                  filter.empty() ? "all source files" : "fileToLog = " + filter + " hides all other source files");
    const std::int32_t size = leadingInteger(seat.setting(kLogging, "maxSize"));
    findings.tell("log.size", size > 0, "begun anew at " + std::to_string(size) + " kB");
    if (!seat.isOn(kLogging, "logToFile")) return;
    const fs::path file = seat.logFile();
    tellPlace("log.openable", file, findings);
    std::error_code error;
    const auto bytes = fs::file_size(file, error);
    if (!error) findings.ok("log.size", textOf(file) + " has " + std::to_string(bytes / 1000) + " kB now");
}

void checkMapkey(Seat& seat, Findings& findings) {
    if (!seat.isOn(kProgram, "useMapkeyForCommands")) {
        findings.ok("mapkey.keys", "not used: commands run as macros");
        return;
    }
    const std::string definition = seat.setting(kProgram, "mapkeyDefinition");
    const std::string keys = mapkeySequence(definition);
    findings.tell("mapkey.keys", keys == definition,
                  keys == definition ? keys : "mapkeyDefinition = '" + definition + "' is taken for '" + keys + "'");
    std::error_code error;
    const fs::path folder = fs::temp_directory_path(error);
    const auto problem = seat::writingProblem(folder);
    findings.tell("mapkey.temp-folder", !problem, textOf(folder) + (problem ? ": " + *problem : " can be written"));
    const std::size_t length = codePageFromUtf8(textOf(folder / "")).size();
    findings.tell("mapkey.path-length", length <= kLongestTempFolder,
                  textOf(folder / kTrailFile) + ", its folder of " + std::to_string(length) + " characters, at most " +
                      std::to_string(kLongestTempFolder));
}

}  // namespace doctor
