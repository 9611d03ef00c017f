// The DLL and its message files.
#include <generated/version.h>
#include <algorithm>
#include <system_error>

#include "tools/doctor/seat.h"
#include "tools/seat/file.h"
#include "tools/seat/message_file.h"
#include "tools/seat/text.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::FileBytes;
using seat::MessageProblem;
using seat::textOf;

namespace {

constexpr char kPluginName[] = "orbikon_creo.dll";
constexpr const char* kExports[] = {"user_initialize", "user_terminate"};

constexpr char kMessageFile[] = "Orbikon.txt";
constexpr char kFallbackFolder[] = "usascii";  // Creo's English, and what it takes where a language is missing
constexpr const char* kLanguages[] = {"usascii", "french", "german"};

std::string versionText(const std::array<std::uint16_t, 4>& version) {
    return std::to_string(version[0]) + "." + std::to_string(version[1]) + "." + std::to_string(version[2]);
}

void checkMachine(const Seat& seat, Findings& findings) {
    const std::string own = "the plug-in is " + seat::machineName(seat.pluginFile->machine);
    const auto host = seat.host.file.empty() ? std::nullopt : seat::readPeFile(seat::readFile(seat.host.file).bytes);
    if (!host) {
        findings.ok("plugin.machine", own);
        return;
    }
    findings.tell("plugin.machine", host->machine == seat.pluginFile->machine,
                  own + ", Creo is " + seat::machineName(host->machine));
}

void checkExports(const Seat& seat, Findings& findings) {
    std::string missing;
    for (const char* name : kExports) {
        if (!seat.pluginFile->hasExport(std::string_view(name)))
            missing += (missing.empty() ? "" : ", ") + std::string(name);
    }
    findings.tell("plugin.exports", missing.empty(),
                  missing.empty() ? "both entry points are there" : "entry points missing: " + missing);
}

// Libraries of Windows that are no files, but names that Windows resolves itself.
bool isVirtual(const std::string& library) {
    const std::string name = seat::lowerCase(library);
    return name.starts_with("api-ms-") || name.starts_with("ext-ms-");
}

fs::path systemFolder() {
#ifdef _WIN32
    const wchar_t* windows = _wgetenv(L"SystemRoot");
    return windows != nullptr ? fs::path(windows) / "System32" : fs::path();
#else
    return {};
#endif
}

void checkImports(const Seat& seat, Findings& findings) {
    std::error_code error;
    std::string missing;
    for (const std::string& library : seat.pluginFile->imports) {
        const auto isIn = [&](const fs::path& folder) {
            return !folder.empty() && fs::exists(folder / seat::pathOf(library), error);
        };
        const bool isFound = isVirtual(library) || isIn(systemFolder()) || isIn(seat.plugin.parent_path()) ||
                             isIn(seat.host.file.parent_path());
        if (!isFound) missing += (missing.empty() ? "" : ", ") + library;
    }
    findings.tell("plugin.imports", missing.empty(),
                  missing.empty() ? seat::counted(seat.pluginFile->imports.size(), "file") + " needed, all found"
                                  : "needed and not found: " + missing);
}

void checkVersion(const Seat& seat, Findings& findings) {
    const auto& version = seat.pluginFile->fileVersion;
    findings.tell("plugin.version", !version || versionText(*version) == kProductVersion,
                  !version ? "the DLL states no version; this doctor is of " + std::string(kProductVersion)
                           : versionText(*version) + "; this doctor is of " + kProductVersion);
}

CheckId checkOf(MessageProblem::Kind kind) {
    switch (kind) {
        case MessageProblem::Kind::encoding:
            return "messages.encoding";
        case MessageProblem::Kind::groups:
            return "messages.groups";
        default:
            return "messages.line-length";
    }
}

void checkMessageFileOf(const fs::path& file, Findings& findings) {
    const FileBytes content = seat::readFile(file);
    if (!content.isRead()) {
        findings.fail("messages.file", textOf(file) + " cannot be read: " + content.problem);
        return;
    }
    const auto checked = seat::checkMessageFile(content.bytes);
    for (const auto& problem : checked.problems)
        findings.fail(checkOf(problem.kind), textOf(file) + ": " + problem.text);
    if (!checked.problems.empty()) return;
    findings.ok("messages.groups", textOf(file) + ": " + seat::counted(checked.messages, "message"));
    findings.ok("messages.encoding", textOf(file) + (checked.hasMark ? ": UTF-8 with byte order mark" : ": ASCII"));
}

}  // namespace

void checkPlugin(Seat& seat, Findings& findings) {
    if (seat.plugin.empty()) seat.plugin = seat.program.parent_path() / kPluginName;
    const FileBytes content = seat::readFile(seat.plugin);
    if (content.isRead()) seat.pluginFile = seat::readPeFile(content.bytes);
    if (!content.isRead() || !seat.pluginFile) {
        findings.fail("plugin.file",
                      textOf(seat.plugin) + ": " +
                          (content.isRead() ? "this is no Windows library, or damaged" : content.problem));
        return;
    }
    findings.tell("plugin.file", seat.pluginFile->isLibrary,
                  textOf(seat.plugin) + (seat.pluginFile->isLibrary ? "" : " is a program, no library"));
    checkMachine(seat, findings);
    checkVersion(seat, findings);
    checkExports(seat, findings);
    checkImports(seat, findings);
}

void checkMessages(Seat& seat, Findings& findings) {
    std::error_code error;
    if (seat.textDir.empty()) seat.textDir = seat.plugin.parent_path();
    const fs::path texts = seat.textDir / "text";
    if (!fs::is_directory(texts, error)) {
        findings.fail("messages.file", textOf(texts) + " is not there");
        return;
    }
    for (const char* language : kLanguages) {
        const fs::path file = texts / language / kMessageFile;
        const bool isThere = fs::is_regular_file(file, error);
        if (!isThere && language == std::string_view(kFallbackFolder)) {
            findings.fail("messages.file", textOf(file) + " is not there");
        } else if (!isThere) {
            findings.fail("messages.language", textOf(file) + " is not there");
        } else {
            checkMessageFileOf(file, findings);
        }
    }
}

}  // namespace doctor
