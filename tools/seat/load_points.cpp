#include "tools/seat/load_points.h"

#include <algorithm>
#include <cstdlib>
#include <system_error>

#include "tools/seat/file.h"
#include "tools/seat/pe_file.h"
#include "tools/seat/text.h"

namespace seat {

namespace fs = std::filesystem;

namespace {

constexpr char kVendor[] = "PTC";
constexpr char kRelease[] = "creo";
constexpr char kLoadPoint[] = "Common Files";
constexpr const char* kProgramVariables[] = {"ProgramFiles", "ProgramFiles(x86)", "ProgramW6432"};

// Where a host program lies below its load point; the last is the workbench's.
constexpr const char* kHosts[] = {"i486_nt/obj/xtop.exe", "x86e_win64/obj/xtop.exe", "bin/creo_host.exe"};

std::vector<fs::path> foldersIn(const fs::path& parent) {
    std::vector<fs::path> folders;
    std::error_code error;
    for (fs::directory_iterator at(parent, error), end; !error && at != end; at.increment(error)) {
        std::error_code ignored;
        if (at->is_directory(ignored)) folders.push_back(at->path());
    }
    return folders;
}

void addLoadPoint(std::vector<fs::path>& loadPoints, const fs::path& folder) {
    std::error_code error;
    const fs::path loadPoint = folder / kLoadPoint;
    if (fs::is_directory(loadPoint / "text", error)) loadPoints.push_back(loadPoint);
}

}  // namespace

std::vector<fs::path> findLoadPoints(const std::vector<fs::path>& programFolders) {
    std::vector<fs::path> found;
    for (const auto& programs : programFolders) {
        for (const auto& release : foldersIn(programs / kVendor)) {
            if (!lowerCase(textOf(release.filename())).starts_with(kRelease)) continue;
            addLoadPoint(found, release);
            for (const auto& dateCode : foldersIn(release)) addLoadPoint(found, dateCode);
        }
    }
    std::ranges::sort(found, {}, [](const fs::path& path) { return lowerCase(textOf(path)); });
    const auto isSame = [](const fs::path& a, const fs::path& b) { return isSameName(textOf(a), textOf(b)); };
    found.erase(std::unique(found.begin(), found.end(), isSame), found.end());
    return found;
}

std::vector<fs::path> programFolders() {
    std::vector<fs::path> folders;
    for (const char* name : kProgramVariables) {
#ifdef _WIN32
        const wchar_t* value = _wgetenv(fs::path(name).c_str());
#else
        const char* value = std::getenv(name);
#endif
        if (value != nullptr) folders.emplace_back(value);
    }
    folders.emplace_back("C:/");
    return folders;
}

HostProgram findHost(const fs::path& loadPoint) {
    for (const char* place : kHosts) {
        const fs::path file = (loadPoint / place).make_preferred();
        const FileBytes content = readFile(file);
        if (!content.isRead()) continue;
        const auto program = readPeFile(content.bytes);
        const bool isWide = program && program->machine == PeFile::kMachineX64;
        return {file, isWide ? "x86e_win64" : "i486_nt"};
    }
    return {};
}

}  // namespace seat
