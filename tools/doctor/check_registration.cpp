// Creo and how it finds the plug-in.
#include <algorithm>
#include <optional>
#include <system_error>

#include "common_sources/mnu/mnu_encoding.h"
#include "tools/doctor/seat.h"
#include "tools/seat/file.h"
#include "tools/seat/registration_file.h"
#include "tools/seat/registration_search.h"
#include "tools/seat/text.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::FileBytes;
using seat::kPluginId;
using seat::RegistrationEntry;
using seat::RegistrationFile;
using seat::RegistrationPlace;
using seat::textOf;

namespace {

constexpr const char* kConfigurationFiles[] = {"text/config.sup", "text/config.pro"};  // below the load point
constexpr char kOwnConfiguration[] = "config.pro";

// Creo's names of the folders of its texts.
std::string textFolder(const std::string& language) { return language == "english" ? "usascii" : language; }

std::vector<fs::path> namedFiles(const Seat& seat) {
    std::vector<fs::path> configurations;
    if (!seat.loadPoint.empty()) {
        for (const char* file : kConfigurationFiles) configurations.push_back((seat.loadPoint / file).make_preferred());
    }
    configurations.push_back(seat.currentFolder / kOwnConfiguration);
    std::vector<fs::path> named;
    for (const auto& configuration : configurations) {
        for (const auto& name : seat::namedRegistrationFiles(seat::readFile(configuration).bytes)) {
            named.push_back(seat::pathOf(seat::isUtf8(name) ? name : utf8FromCodePage(name)));
        }
    }
    return named;
}

std::vector<RegistrationPlace> placesOf(const Seat& seat) {
    if (!seat.registry.empty()) {
        std::error_code error;
        return {{.file = seat.registry,
                 .origin = "named by --registry",
                 .isFound = fs::is_regular_file(seat.registry, error),
                 .shadowedBy = {}}};
    }
    return seat::registrationPlaces({.currentFolder = seat.currentFolder,
                                     .namedFiles = namedFiles(seat),
                                     .loadPoint = seat.loadPoint,
                                     .machineType = seat.host.machineType,
                                     .language = textFolder(seat.language.name)});
}

std::string listOf(const std::vector<RegistrationPlace>& places) {
    std::string list;
    for (const auto& place : places) list += (list.empty() ? "" : "; ") + textOf(place.file);
    return list;
}

// A path that stands in a file: UTF-8 when it can be, otherwise the process code page.
fs::path pathIn(std::string_view text) {
    return seat::pathOf(seat::isUtf8(text) ? std::string(text) : utf8FromCodePage(text));
}

void checkEntry(const RegistrationEntry& entry, const std::string& place, Seat& seat, Findings& findings) {
    std::error_code error;
    const std::string startup = std::string(entry.value("startup"));
    findings.tell("registration.startup", seat::isSameName(startup, "dll"),
                  startup.empty() ? place + " has no startup" : "startup " + startup);

    const fs::path library = pathIn(entry.value("exec_file"));
    const bool isThere = fs::is_regular_file(library, error);
    findings.tell("registration.exec-file", isThere,
                  entry.value("exec_file").empty() ? place + " has no exec_file"
                                                   : textOf(library) + (isThere ? "" : " is not there"));
    if (seat.plugin.empty()) seat.plugin = library;

    const fs::path textDir = pathIn(entry.value("text_dir"));
    const bool hasTexts = !textDir.empty() && fs::is_directory(textDir / "text", error);
    findings.tell("registration.text-dir", hasTexts,
                  entry.value("text_dir").empty() ? place + " has no text_dir"
                                                  : textOf(textDir) + (hasTexts ? "" : " has no folder \"text\""));
    if (hasTexts) seat.textDir = textDir;

    const std::string tolerance(entry.value("fail_tol"));
    findings.tell("registration.fail-tol", seat::isSameName(tolerance, "TRUE"),
                  tolerance.empty() ? place + " has no fail_tol" : "fail_tol " + tolerance);
}

// Looks into one of the files that Creo reads. Answers whether the plug-in's entry is there.
bool checkFile(const fs::path& path, Seat& seat, Findings& findings) {
    const FileBytes content = seat::readFile(path);
    if (!content.isRead()) {
        findings.fail("registration.file", textOf(path) + " cannot be read: " + content.problem);
        return false;
    }
    const RegistrationFile file(content.bytes);
    if (!file.isText()) {
        findings.fail("registration.encoding", textOf(path) + " is no plain text (UTF-16?)");
        return false;
    }
    for (const auto& entry : file.entries()) {
        if (entry.isClosed) continue;
        findings.fail("registration.unfinished", textOf(path) + " line " + std::to_string(entry.line) + ": entry \"" +
                                                     std::string(entry.value("name")) + "\" is not closed by \"end\"");
    }
    const auto own = file.entriesOf(kPluginId);
    if (own.empty()) return false;
    const std::string place = textOf(path) + " line " + std::to_string(own.front()->line);
    findings.ok("registration.entry", place);
    if (own.size() > 1)
        findings.fail("registration.duplicate",
                      textOf(path) + " has " + std::to_string(own.size()) + " entries of the plug-in");
    checkEntry(*own.front(), place, seat, findings);
    return true;
}

bool hasOurEntry(const fs::path& path) {
    return !RegistrationFile(seat::readFile(path).bytes).entriesOf(kPluginId).empty();
}

}  // namespace

void checkCreo(Seat& seat, Findings& findings) {
    std::error_code error;
    if (seat.loadPoint.empty()) {
        findings.fail("creo.load-point", "no installation of Creo was found in the usual places");
        return;
    }
    std::string others;
    for (const auto& other : seat.otherLoadPoints) others += "; there is also " + textOf(other);
    const bool isThere = fs::is_directory(seat.loadPoint / "text", error);
    findings.tell("creo.load-point", isThere,
                  textOf(seat.loadPoint) + (isThere ? others : " is no load point: it has no folder \"text\""));
    if (isThere) {
        findings.tell("creo.host", !seat.host.file.empty(),
                      seat.host.file.empty() ? "no executable of Creo below the load point"
                                             : textOf(seat.host.file) + ", " + seat.host.machineType);
    }
}

void checkRegistration(Seat& seat, Findings& findings) {
    const auto places = placesOf(seat);
    bool isAnyRead = false, hasEntry = false;
    for (const auto& place : places) {
        if (place.isShadowed) {
            findings.fail("registration.shadowed",
                          textOf(place.file) + " is not read, " + textOf(place.shadowedBy) + " comes first" +
                              (hasOurEntry(place.file) ? "; it has an entry of the plug-in" : ""));
        } else if (place.isFound) {
            findings.ok("registration.file", textOf(place.file) + " (" + place.origin + ")");
            isAnyRead = true;
            hasEntry = checkFile(place.file, seat, findings) || hasEntry;
        }
    }
    if (!isAnyRead) findings.fail("registration.file", "none of these is there: " + listOf(places));
    if (isAnyRead && !hasEntry)
        findings.fail("registration.entry", "no file that Creo reads has an entry of the plug-in");
}

}  // namespace doctor
