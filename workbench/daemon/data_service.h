// Answers the requests of driver libraries (see workbench/driver/protocol.h).
#pragma once

#include <string>

#include "workbench/daemon/device.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

// Any thread. Throws std::runtime_error with the reason when the operation fails.
Reply answerDriver(Device& device, const std::string& request);

}  // namespace workbench
