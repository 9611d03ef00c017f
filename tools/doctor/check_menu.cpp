// The resource libraries that the menu file is made from, and the menu file itself.
#include <algorithm>
#include <optional>
#include <system_error>

#include "common_sources/load_point.h"
#include "common_sources/mnu/mnu_check.h"
#include "common_sources/mnu/mnu_format.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/mnu/mnu_text.h"
#include "tools/doctor/seat.h"
#include "tools/seat/file.h"
#include "tools/seat/text.h"

namespace doctor {

namespace fs = std::filesystem;

using seat::FileBytes;
using seat::textOf;

namespace {

constexpr std::size_t kMaxTold = 3;  // of a kind of line

struct Libraries {
    fs::path main;
    fs::path ofLanguage;
};

Libraries librariesOf(const Seat& seat) {
    const fs::path folder = compiledResources(seat.loadPoint);
    return {folder / mnu_libraries::mainLibrary(),
            folder / seat::pathOf(mnu_libraries::languageLibrary(seat.language.name))};
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const auto& word : words) text += (text.empty() ? "" : ", ") + word;
    return text;
}

std::size_t countOf(const seat::PeFile& library, ResourceKind kind) {
    return static_cast<std::size_t>(std::ranges::count(library.resourceNames, kind, resourceKind));
}

// Reads a library; what is wrong with it is told.
std::optional<seat::PeFile> readLibrary(const fs::path& file, Findings& findings) {
    const FileBytes content = seat::readFile(file);
    auto library = content.isRead() ? seat::readPeFile(content.bytes) : std::nullopt;
    findings.tell("resources.libraries", library.has_value(),
                  textOf(file) + (!content.isRead() ? ": " + content.problem
                                  : !library        ? " is no Windows library, or damaged"
                                                    : ""));
    return library;
}

void tellLines(CheckId id, const std::vector<std::string>& lines, Findings& findings) {
    for (std::size_t i = 0; i < lines.size() && i < kMaxTold; ++i) findings.fail(id, lines[i]);
    if (lines.size() > kMaxTold) {
        findings.fail(id, "and " + seat::counted(lines.size() - kMaxTold, "more line"));
    }
}

// Whether a library was installed after the menu file was made.
void checkAge(const Seat& seat, Findings& findings) {
    std::error_code error;
    const auto made = fs::last_write_time(seat.menuFile(), error);
    const Libraries libraries = librariesOf(seat);
    std::string newer;
    for (const auto& file : {libraries.main, libraries.ofLanguage}) {
        std::error_code missing;
        const auto time = fs::last_write_time(file, missing);
        if (!missing && !error && time > made) newer += (newer.empty() ? "" : ", ") + textOf(file);
    }
    findings.tell("menu.age", newer.empty(),
                  newer.empty() ? "newer than the resource libraries" : "older than " + newer);
}

}  // namespace

void checkResources(Seat& seat, Findings& findings) {
    if (seat.loadPoint.empty()) return;
    const fs::path folder = compiledResources(seat.loadPoint);
    const auto languages = mnu_libraries::languagesIn(folder);
    const bool isKnown = std::ranges::find(languages, seat.language.name) != languages.end();
    findings.tell("resources.language", isKnown,
                  (seat.language.name.empty() ? "none" : seat.language.name) + ", by " + seat.language.decider +
                      (isKnown             ? std::string()
                       : languages.empty() ? "; " + textOf(folder) + " has no libraries"
                                           : "; there are libraries for " + joined(languages)));
    const Libraries libraries = librariesOf(seat);
    const auto main = readLibrary(libraries.main, findings);
    const auto ofLanguage = isKnown ? readLibrary(libraries.ofLanguage, findings) : std::nullopt;
    if (!main || !ofLanguage) return;
    const std::size_t panes = countOf(*main, ResourceKind::kPane) + countOf(*ofLanguage, ResourceKind::kPane);
    const std::size_t commands =
        countOf(*main, ResourceKind::kCommandText) + countOf(*ofLanguage, ResourceKind::kCommandText);
    findings.tell("resources.content", panes > 0 && commands > 0,
                  seat::counted(commands, "command") + " and " + seat::counted(panes, "pane"));
}

void checkMenuFile(Seat& seat, Findings& findings) {
    const fs::path file = seat.menuFile();
    const FileBytes content = seat::readFile(file);
    if (content.state == FileBytes::State::missing) {
        findings.fail("menu.file", textOf(file) + " is not there");
        return;
    }
    findings.ok("menu.file", textOf(file));
    findings.tell("menu.readable", content.isRead(), content.isRead() ? "can be read" : content.problem);
    if (!content.isRead()) return;
    const MenuFileFacts facts = menuFileFacts(content.bytes);
    findings.tell("menu.entries", facts.commands > 0 && facts.modes > 0,
                  seat::counted(facts.commands, "command") + " in " + seat::counted(facts.menus, "menu") + ", " +
                      seat::counted(facts.modes, "mode"));
    tellLines("menu.unreadable", facts.unreadable, findings);
    tellLines("menu.duplicates", facts.duplicates, findings);
    if (facts.commands == 0) return;
    const bool isForeign = facts.ownLanguage.isForeignTo(seat.language.name);
    findings.tell("menu.language", !isForeign,
                  std::string("the plug-in's own entries are ") +
                      (facts.ownLanguage.isGerman    ? "German"
                       : facts.ownLanguage.isEnglish ? "English"
                                                     : "in no known language") +
                      ", Creo's language is " + seat.language.name);
    if (!seat.loadPoint.empty()) checkAge(seat, findings);
}

}  // namespace doctor
