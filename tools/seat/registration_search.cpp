#include "tools/seat/registration_search.h"

#include <algorithm>
#include <iterator>

#include "tools/seat/file.h"
#include "tools/seat/text.h"

namespace seat {

namespace fs = std::filesystem;

namespace {

constexpr const char* kFileNames[] = {"protk.dat", "creotk.dat"};
constexpr std::string_view kOptions[] = {"protkdat", "creotkdat", "toolkit_registry_file"};
constexpr char kComment = '!';

void addBoth(std::vector<RegistrationPlace>& places, const fs::path& folder, const std::string& origin) {
    for (const char* name : kFileNames) places.push_back({.file = folder / name, .origin = origin, .shadowedBy = {}});
}

bool isFile(const fs::path& path) {
    std::error_code error;
    return fs::is_regular_file(path, error);
}

std::string nameOf(const RegistrationPlace& place) { return lowerCase(textOf(place.file.filename())); }

}  // namespace

std::vector<RegistrationPlace> registrationPlaces(const RegistrationSeat& seat) {
    std::vector<RegistrationPlace> places;
    if (!seat.currentFolder.empty()) addBoth(places, seat.currentFolder, "the current folder");
    for (const auto& file : seat.namedFiles) {
        places.push_back({.file = file, .origin = "a configuration option", .shadowedBy = {}});
    }
    if (!seat.loadPoint.empty()) {
        if (!seat.machineType.empty() && !seat.language.empty()) {
            addBoth(places, seat.loadPoint / seat.machineType / "text" / pathOf(seat.language),
                    "the load point's " + seat.machineType + " texts in " + seat.language);
        }
        addBoth(places, seat.loadPoint / "text", "the load point's texts");
    }
    for (auto place = places.begin(); place != places.end(); ++place) {
        place->isFound = isFile(place->file);
        const auto first = std::find_if(places.begin(), place, [&](const RegistrationPlace& earlier) {
            return earlier.isFound && nameOf(earlier) == nameOf(*place);
        });
        if (!place->isFound || first == place) continue;
        place->isShadowed = true;
        place->shadowedBy = first->file;
    }
    return places;
}

std::vector<std::string> namedRegistrationFiles(std::string_view configuration) {
    std::string values[std::size(kOptions)];
    if (configuration.starts_with(kUtf8Mark)) configuration.remove_prefix(kUtf8Mark.size());
    for (const std::string_view rawLine : linesOf(configuration)) {
        const std::string_view line = trimmed(rawLine);
        if (line.starts_with(kComment)) continue;
        const std::string_view option = line.substr(0, line.find_first_of(" \t"));
        const auto known = std::ranges::find_if(kOptions, [&](auto name) { return isSameName(name, option); });
        if (known != std::end(kOptions)) values[known - kOptions] = trimmed(line.substr(option.size()));
    }
    std::vector<std::string> files;
    std::ranges::copy_if(values, std::back_inserter(files), [](const std::string& value) { return !value.empty(); });
    return files;
}

}  // namespace seat
