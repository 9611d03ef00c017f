// A monkey at the workbench: does what comes to its mind, and after each action asks the host whether all that must
// hold still does. The same seed gives the same actions.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace workbench {

struct MonkeyOptions {
    std::uint32_t seed = 1;
    int actions = 5000;                  // of a round
    int from = 1;                        // actions before are left out, to see what a fault needs
    std::vector<std::string> without{};  // and so are those that hold one of these texts
    double minutes = 0;                  // more than 0: rounds with the seeds that follow, until the time is over
    bool isHidden = false;               // the host's windows are made but not shown
};

// Plays in a workbench of its own, whose folder stays when something went wrong. What is found goes to `out`: in any
// case what the host held at start and end. True when all held and the host lived. Throws std::runtime_error when the
// workbench cannot be set up.
bool playMonkey(const MonkeyOptions& options, std::ostream& out);

}  // namespace workbench
