// The tour's command line.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace workbench {

struct TourOptions {
    std::filesystem::path out = "tour";
    std::vector<std::string> only;  // names of scenes; empty = all
    std::filesystem::path profile;  // of an interactive run; empty = one that goes with it
    bool isInteractive = false;
    bool isListWanted = false;
    bool isVersionWanted = false;
    bool isHelpWanted = false;
};

inline constexpr const char* kUsage =
    "usage: tour [--out FOLDER] [--only SCENE]... | --interactive [--profile FOLDER] | --list | --version | --help\n"
    "  --out FOLDER    where index.html and the pictures go (default: tour); FOLDER may be written as Windows or,\n"
    "                  under Wine, as Unix writes it\n"
    "  --only SCENE    plays that scene; may be given several times\n"
    "  --interactive   starts daemon, host and panel, and stays until the host's window is closed\n"
    "  --profile FOLDER  the user's folder of an interactive run, kept for the next one (default: a new one each "
    "time)\n"
    "  --list          names the scenes\n"
    "Ends with 0 when each step had its effect, 1 when one had not, 2 when the command line is not understood.\n";

// Throws std::runtime_error with the reason when the command line is not understood.
TourOptions parseOptions(const std::vector<std::string>& arguments);

}  // namespace workbench
