#include "tools/doctor/seat.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/settings.h"
#include "tools/seat/file.h"

namespace doctor {

namespace fs = std::filesystem;

namespace {

// A variable's value that may hold any letters.
fs::path pathVariable(const char* name) {
#ifdef _WIN32
    const wchar_t* value = _wgetenv(fs::path(name).c_str());
#else
    const char* value = std::getenv(name);
#endif
    return value != nullptr ? fs::path(value) : fs::path();
}

void chooseLoadPoint(Seat& seat, const fs::path& named) {
    seat.loadPoint = named;
    if (named.empty()) {
        auto found = seat::findLoadPoints(seat::programFolders());
        if (found.empty()) return;
        // The release that the plug-in is made for, if there is one; otherwise the newest.
        const auto made = std::ranges::find_if(
            found, [](const fs::path& path) { return seat::textOf(path).find("Creo 3") != std::string::npos; });
        const auto chosen = made != found.end() ? made : std::prev(found.end());
        seat.loadPoint = *chosen;
        found.erase(chosen);
        seat.otherLoadPoints = std::move(found);
    }
    seat.host = seat::findHost(seat.loadPoint);
}

}  // namespace

fs::path Seat::logFile() const {
    const std::string name = setting("LOGGING", "logFile");
    // As the log itself does it.
    const bool isBare = name.find(static_cast<char>(fs::path::preferred_separator)) == std::string::npos;
    const fs::path file = seat::pathOf(name.empty() ? "forgot_to_name_this_file_log.txt" : utf8FromCodePage(name));
    return isBare ? productFolder() / file : file;
}

std::string Seat::setting(const std::string& section, const std::string& key) const {
    return settings.value(section, key);
}

bool Seat::isOn(const std::string& section, const std::string& key) const { return settings.isOn(section, key); }

Seat lookAtSeat(const Request& request, const fs::path& program) {
    Seat seat;
    std::error_code error;
    seat.program = program;
    seat.currentFolder = fs::current_path(error);
    seat.profile = request.profile.empty() ? pathVariable("USERPROFILE") : request.profile;
    seat.registry = request.registry;
    seat.plugin = request.plugin;
    if (!request.plugin.empty()) seat.textDir = request.plugin.parent_path();
    seat.isOffline = request.isOffline;
    const seat::FileBytes content = seat::readFile(seat.settingsFile());
    seat.hasSettings = content.isRead();
    const std::string defaults = Settings(Settings::DefaultsOnly{}).fileText();
    seat.settings = ::checkSettings(content.isRead() ? content.bytes : defaults, Settings::keys());
    seat.language = creoLanguage(seat.setting("PROGRAM", "mnuLanguage"));
    chooseLoadPoint(seat, request.loadPoint);
    return seat;
}

}  // namespace doctor
