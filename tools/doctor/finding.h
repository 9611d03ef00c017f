// What the doctor looks for, each thing under an id that stays: the table of all of them, and what was found.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "common_sources/settings_check.h"

namespace doctor {

enum class Status { ok, warning, error };

struct Check {
    std::string_view id;      // "group.what"
    Status failure;           // what it is when it is not as it should be
    std::string_view remedy;  // what to do then
};

// Grouped as they are shown.
inline constexpr Check kChecks[] = {
    {"creo.load-point", Status::warning,
     "name the folder \"Common Files\" of the installation with --load-point; without it registration, host and "
     "resource libraries are checked in part only"},
    {"creo.host", Status::warning, "repair the installation of Creo; its executable belongs below the load point"},

    {"registration.file", Status::error,
     "put the package's protk.dat, adapted, into <load point>\\text, or name one with Creo's option "
     "toolkit_registry_file; for the doctor with --registry"},
    {"registration.encoding", Status::error,
     "save the file as plain text (ANSI or UTF-8), or take it anew from the package"},
    {"registration.shadowed", Status::warning,
     "Creo reads only the first file of a name: move the entries that are needed into that one, or remove it"},
    {"registration.unfinished", Status::error, "close this entry with a line \"end\", or remove it"},
    {"registration.entry", Status::error,
     "add the plug-in's entry from the package's protk.dat to the file that counts"},
    {"registration.duplicate", Status::warning, "keep one entry of the plug-in and remove the others"},
    {"registration.startup", Status::error, "set \"startup dll\" in the plug-in's entry"},
    {"registration.exec-file", Status::error, "set exec_file to the full path of orbikon_creo.dll"},
    {"registration.text-dir", Status::error,
     "set text_dir to the folder that holds the folder \"text\" (not to \"text\" itself)"},
    {"registration.fail-tol", Status::warning,
     "add \"fail_tol TRUE\" to the plug-in's entry; without it Creo shuts itself down when the plug-in cannot start"},

    {"plugin.file", Status::error, "copy orbikon_creo.dll from the package again, or name it with --plugin"},
    {"plugin.machine", Status::error, "install the plug-in of the bit width that Creo has"},
    {"plugin.version", Status::warning, "take plug-in and doctor from the same package"},
    {"plugin.exports", Status::error,
     "this is not the plug-in, or damaged: copy orbikon_creo.dll from the package again"},
    {"plugin.imports", Status::error,
     "the named libraries belong to Windows: repair Windows, or copy orbikon_creo.dll from the package again"},

    {"messages.file", Status::error, "copy the folder \"text\" from the package into the plug-in's text_dir"},
    {"messages.language", Status::warning,
     "copy the folder \"text\" from the package; until then the texts are English"},
    {"messages.encoding", Status::error,
     "save the file as UTF-8 with byte order mark, or copy it from the package again"},
    {"messages.groups", Status::error,
     "each message is four lines (keyword, text, translation, one empty line): mend the file, or copy it from the "
     "package "
     "again"},
    {"messages.line-length", Status::error, "no line may be longer than 4096 characters: shorten it"},

    {"settings.file", Status::warning, "start Creo with the plug-in, which writes the file, or let --fix do it"},
    {"settings.readable", Status::error, "close the program that holds the file, and check the rights on it"},
    {"settings.encoding", Status::error, settingsRemedy(SettingsProblem::notText)},
    {"settings.empty", Status::error, settingsRemedy(SettingsProblem::empty)},
    {"settings.missing-section", Status::error, settingsRemedy(SettingsProblem::missingSection)},
    {"settings.missing-key", Status::error, settingsRemedy(SettingsProblem::missingKey)},
    {"settings.behind-end", Status::error, settingsRemedy(SettingsProblem::behindEnd)},
    {"settings.unknown-key", Status::error, settingsRemedy(SettingsProblem::unknownKey)},
    {"settings.repeated-key", Status::warning, settingsRemedy(SettingsProblem::repeatedKey)},
    {"settings.switch", Status::warning, settingsRemedy(SettingsProblem::switchValue)},
    {"settings.number", Status::warning, settingsRemedy(SettingsProblem::numberValue)},
    {"settings.cap-dead", Status::error, settingsRemedy(SettingsProblem::capDead)},
    {"settings.translation", Status::error, settingsRemedy(SettingsProblem::noTranslation)},
    {"settings.rotation", Status::error, settingsRemedy(SettingsProblem::noRotation)},
    {"settings.writable", Status::warning, "give the user the right to write there, and remove the read-only mark"},

    {"log.output", Status::warning,
     "set logToFile = on in section [LOGGING], also warning and info, and start Creo again, when a log is wanted"},
    {"log.openable", Status::error, "set logFile to a name, or to a full path in a folder that the user can write to"},
    {"log.filter", Status::warning, "leave fileToLog empty, otherwise one source file alone is logged"},
    {"log.size", Status::warning, "set maxSize to 5000 (kB); with 0 or less the log is begun anew with every line"},

    {"driver.library", Status::error,
     "install the device's software, or copy its driver library into the plug-in's folder; no other place than those "
     "named is looked at"},
    {"driver.machine", Status::error, "install the driver library of the bit width that the plug-in has"},
    {"driver.ordinals", Status::error, "install the current version of the device's software"},
    {"daemon.answer", Status::error, "start the device's daemon; the plug-in connects to it within two seconds"},
    {"daemon.devices", Status::warning, "plug the device in"},
    {"daemon.legacy-com1", Status::warning,
     "Creo's own device support gets no motion now; right while the plug-in scrolls or moves components, otherwise "
     "start Creo again"},

    {"resources.language", Status::error,
     "set mnuLanguage in the settings to the language in the name of one of the pro_default_..._resources.dll"},
    {"resources.libraries", Status::error,
     "repair the installation of Creo, or set mnuLanguage to a language whose library is there"},
    {"resources.content", Status::error, "repair the installation of Creo: the libraries hold no menus or commands"},

    {"menu.file", Status::warning,
     "start Creo with the plug-in, which makes the file, or make it with mnu_make; device buttons have no commands "
     "until then"},
    {"menu.readable", Status::error, "close the program that holds the file, and check the rights on it"},
    {"menu.entries", Status::error, "delete Creo.mnu, start Creo, and bind the device's buttons again"},
    {"menu.language", Status::warning, "delete Creo.mnu, start Creo, and bind the device's buttons again"},
    {"menu.age", Status::warning,
     "Creo was updated after the menu file was made: delete Creo.mnu, start Creo, and bind the device's buttons again"},
    {"menu.duplicates", Status::warning, "no harm if meant; otherwise delete Creo.mnu and start Creo"},
    {"menu.unreadable", Status::warning,
     "remove the line, or delete Creo.mnu, start Creo and bind the device's buttons again"},

    {"mapkey.keys", Status::warning, "set mapkeyDefinition to one or two of a-z and 0-9"},
    {"mapkey.temp-folder", Status::error,
     "set TEMP to a folder that the user can write to, or useMapkeyForCommands to off"},
    {"mapkey.path-length", Status::error, "set TEMP to a folder with a shorter path, or useMapkeyForCommands to off"},
};

// Names a check; one that is not in the table does not compile.
class CheckId {
  public:
    consteval CheckId(const char* id) : mIndex(indexOf(id)) {}  // NOLINT(google-explicit-constructor)
    const Check& check() const { return kChecks[mIndex]; }

  private:
    static consteval std::size_t indexOf(std::string_view id) {
        std::size_t index = 0;
        for (const Check& check : kChecks) {
            if (check.id == id) return index;
            ++index;
        }
        throw std::logic_error("no such check");
    }
    std::size_t mIndex;
};

struct Finding {
    std::string_view id;
    Status status;
    std::string found;
    std::string_view remedy;  // empty when the status is ok
};

class Findings {
  public:
    void ok(CheckId id, std::string found);
    void fail(CheckId id, std::string found);
    // The one or the other.
    void tell(CheckId id, bool isOk, std::string found);

    const std::vector<Finding>& all() const { return mAll; }
    Status worst() const;
    bool hasFailed(CheckId id) const;

  private:
    std::vector<Finding> mAll;
};

const char* statusName(Status status);

}  // namespace doctor
