// Enters the plug-in in a registration file and takes it out again, in one step each and with a backup.
#pragma once

#include <filesystem>
#include <string>

#include "tools/seat/registration_file.h"

namespace seat {

struct RegistrationUpdate {
    enum class Outcome { unchanged, written, removed, failed };  // removed: the file is gone
    Outcome outcome;
    std::string text;  // what was done, or why it failed; then nothing has changed
};

// The earlier file, beside the new one.
std::filesystem::path registrationBackup(const std::filesystem::path& file);

// Makes `fields` the application's entry (see RegistrationFile::set). A missing file is made, its folder is not.
RegistrationUpdate registerApplication(const std::filesystem::path& file, const ApplicationId& id,
                                       const RegistrationFields& fields);

// Takes the application's entry out. A file that registerApplication made and in which nothing is left goes, and its
// backup with it.
RegistrationUpdate unregisterApplication(const std::filesystem::path& file, const ApplicationId& id);

}  // namespace seat
