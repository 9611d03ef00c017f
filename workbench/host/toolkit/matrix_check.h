// Notes what no caller should hand to the host: matrices that are no set of numbers or no placing in space.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "toolkit/pro_toolkit.h"

namespace workbench {

// What is wrong with a matrix whose axes should be of length 1 and upright on each other; nothing for a good one.
std::optional<std::string> matrixFault(const ProMatrix matrix);

// Checks a matrix that a function was handed, and keeps what is wrong with it. User-interface thread.
void noteMatrix(const char* function, const ProMatrix matrix);
const std::vector<std::string>& badMatrices();  // the first of them, with the functions' names

}  // namespace workbench
