// Where Creo looks for registration files, and which of those found it reads.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace seat {

// A seat, as far as the search goes. What is empty is not looked at.
struct RegistrationSeat {
    std::filesystem::path currentFolder;            // Creo's, when it starts
    std::vector<std::filesystem::path> namedFiles;  // by configuration options, in full
    std::filesystem::path loadPoint;                // the folder "Common Files" of an installation
    std::string machineType;                        // "i486_nt" or "x86e_win64"
    std::string language;                           // name of its folder below "text"
};

struct RegistrationPlace {
    std::filesystem::path file;
    std::string origin;  // "the current folder" and the like
    bool isFound = false;
    bool isShadowed = false;  // found, but not read: `shadowedBy` of the same name comes first
    std::filesystem::path shadowedBy;
};

// All places in Creo's order; of several files of one name only the first found counts.
std::vector<RegistrationPlace> registrationPlaces(const RegistrationSeat& seat);

// Registration files that a configuration file (config.pro) names, as the texts stand in it. Later lines win.
std::vector<std::string> namedRegistrationFiles(std::string_view configuration);

}  // namespace seat
