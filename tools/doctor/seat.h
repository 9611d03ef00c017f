// The seat that is looked at: what the caller names of it, what is found without looking far, and what one group of
// checks finds for the next. Paths of any script, texts in UTF-8.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "common_sources/load_point.h"
#include "common_sources/settings_check.h"
#include "tools/doctor/finding.h"
#include "tools/seat/load_points.h"
#include "tools/seat/pe_file.h"

namespace doctor {

// What the caller names; empty = as on the seat that the doctor runs on.
struct Request {
    std::filesystem::path profile;
    std::filesystem::path loadPoint;
    std::filesystem::path registry;
    std::filesystem::path plugin;
    bool isOffline = false;  // no daemon is asked
};

struct Seat {
    std::filesystem::path program;  // the doctor's own file
    std::filesystem::path currentFolder;
    std::filesystem::path profile;
    std::filesystem::path registry;  // named by the caller, otherwise empty
    bool isOffline = false;

    std::filesystem::path loadPoint;                     // empty: none is known
    std::vector<std::filesystem::path> otherLoadPoints;  // found, too
    seat::HostProgram host;

    // From the registration, unless the caller named the plug-in.
    std::filesystem::path plugin;   // the DLL; empty: none is known
    std::filesystem::path textDir;  // folder that holds "text"
    std::optional<seat::PeFile> pluginFile;

    SettingsReading settings;
    bool hasSettings = false;  // false: the defaults hold
    CreoLanguage language;

    std::filesystem::path productFolder() const { return profile / "OrbikonController"; }
    std::filesystem::path settingsFolder() const { return productFolder() / "Applications"; }
    std::filesystem::path settingsFile() const { return settingsFolder() / "Creo_plugin.ini"; }
    std::filesystem::path menuFile() const { return settingsFolder() / "Creo.mnu"; }
    std::filesystem::path logFile() const;  // where the settings put it

    // Value of a setting as the plug-in has it: the default where there is no settings file.
    std::string setting(const std::string& section, const std::string& key) const;
    bool isOn(const std::string& section, const std::string& key) const;
};

// Reads the settings and finds the load point and its host; checks nothing.
Seat lookAtSeat(const Request& request, const std::filesystem::path& program);

// The checks by their groups, in this order; each writes what later ones need into the seat.
void checkCreo(Seat& seat, Findings& findings);
void checkRegistration(Seat& seat, Findings& findings);
void checkPlugin(Seat& seat, Findings& findings);
void checkMessages(Seat& seat, Findings& findings);
void checkSettings(Seat& seat, Findings& findings);
void checkLog(Seat& seat, Findings& findings);
void checkDriver(Seat& seat, Findings& findings);  // and the daemon; Windows only
void checkResources(Seat& seat, Findings& findings);
void checkMenuFile(Seat& seat, Findings& findings);
void checkMapkey(Seat& seat, Findings& findings);

}  // namespace doctor
