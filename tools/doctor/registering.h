// The sub-commands that enter the plug-in in registration files and take it out again, and the one that tells where.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace doctor {

// Runs the sub-command that the arguments begin with, if they do: its exit code (0 done, 2 failed, 3 wrong arguments).
// `program` is the doctor's own file; the plug-in is looked for around it.
std::optional<int> runRegistering(const std::vector<std::string>& arguments, const std::filesystem::path& program);

}  // namespace doctor
