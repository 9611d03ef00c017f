// Mends what can be mended without losing anything.
#pragma once

#include <string>
#include <vector>

#include "tools/doctor/seat.h"

namespace doctor {

struct FixStep {
    bool isDone;
    std::string text;  // what was done, or why it could not be
};

// Writes the default settings file where there is none; adds missing keys with their defaults, keeping the old file
// beside it (extension .bak). Nothing else is changed. An empty list: there was nothing to do.
std::vector<FixStep> fixSeat(const Seat& seat);

}  // namespace doctor
