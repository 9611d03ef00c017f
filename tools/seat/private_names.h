// Names that tell whose seat it is, taken out of what a user sends in. Any thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace seat {

// Environment variables whose values are such names.
inline constexpr const char* kPrivateVariables[] = {"USERPROFILE", "USERNAME", "USERDOMAIN", "COMPUTERNAME",
                                                    "LOGONSERVER"};

using PrivateNames = std::vector<std::pair<std::string, std::string>>;  // a name, and what stands for it; UTF-8

// The text with each name replaced, in any letter case, longer ones first. Names of one letter stay.
std::string withoutNames(std::string text, PrivateNames names);

}  // namespace seat
