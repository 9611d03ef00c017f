// Installations of Creo on a seat: their load points (folders "Common Files"), host programs and machine types.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace seat {

// Load points below folders of programs ("C:\Program Files"), in the usual places: <folder>\PTC\Creo...\Common Files
// and one folder deeper. Sorted, the newest release last.
std::vector<std::filesystem::path> findLoadPoints(const std::vector<std::filesystem::path>& programFolders);

// Folders of programs on this machine, as its environment names them, and C:\.
std::vector<std::filesystem::path> programFolders();

struct HostProgram {
    std::filesystem::path file;  // empty: there is none
    std::string machineType;     // "i486_nt" or "x86e_win64"
};

// The host's executable below a load point.
HostProgram findHost(const std::filesystem::path& loadPoint);

}  // namespace seat
