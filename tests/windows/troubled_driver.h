// What the test knows of the driver library in trouble.
#pragma once

inline constexpr int kReadsAChange =
    4;  // the last of so many reads brings a change of the settings, the others their number
