// The findings as text for people, as JSON for programs, and as a report that a user can send in. UTF-8.
#pragma once

#include <string>

#include "tools/doctor/seat.h"

namespace doctor {

// A line for each finding, with the remedy below those that are not ok, and a summary.
std::string textOf(const Findings& findings, bool isVerbose);

// {"version": ..., "checks": [{"id", "status", "found", "remedy"}]}.
std::string jsonOf(const Findings& findings);

// All findings, the settings and the last lines of the log, without names of users or machines.
std::string reportOf(const Seat& seat, const Findings& findings);

}  // namespace doctor
