#include "tools/seat/registration_targets.h"

#include <algorithm>
#include <system_error>

namespace seat {

namespace fs = std::filesystem;

namespace {

constexpr const char* kNames[] = {"protk.dat", "creotk.dat"};
constexpr const char* kMachineTypes[] = {"i486_nt", "x86e_win64"};

bool isFile(const fs::path& path) {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored);
}

// The existing files of a name in the folders of single languages.
void addLanguages(std::vector<fs::path>& files, const fs::path& loadPoint, const char* name) {
    const std::size_t first = files.size();
    for (const char* machineType : kMachineTypes) {
        std::error_code error;
        for (fs::directory_iterator at(loadPoint / machineType / "text", error), end; !error && at != end;
             at.increment(error)) {
            if (isFile(at->path() / name)) files.push_back(at->path() / name);
        }
    }
    std::sort(files.begin() + static_cast<std::ptrdiff_t>(first), files.end());
}

}  // namespace

std::vector<fs::path> registrationTargets(const fs::path& loadPoint) {
    const fs::path text = loadPoint / "text";
    const char* const name = !isFile(text / kNames[0]) && isFile(text / kNames[1]) ? kNames[1] : kNames[0];
    std::vector<fs::path> files{text / name};
    addLanguages(files, loadPoint, name);
    return files;
}

std::vector<fs::path> registrationFilesOf(const fs::path& loadPoint) {
    std::vector<fs::path> files;
    for (const char* name : kNames) {
        if (isFile(loadPoint / "text" / name)) files.push_back(loadPoint / "text" / name);
        addLanguages(files, loadPoint, name);
    }
    return files;
}

}  // namespace seat
