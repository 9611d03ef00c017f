// Which registration files of a load point must name an application, so that Creo starts it in every language.
#pragma once

#include <filesystem>
#include <vector>

namespace seat {

// <load point>\text\protk.dat, or creotk.dat where that one alone exists; and the files of this name that single
// languages have, because Creo reads them instead. All but the first exist.
std::vector<std::filesystem::path> registrationTargets(const std::filesystem::path& loadPoint);

// All registration files that a load point has.
std::vector<std::filesystem::path> registrationFilesOf(const std::filesystem::path& loadPoint);

}  // namespace seat
