// Steers and asks the host over the pipe "creo_control". A request is one line, its words parted by blanks; names are
// those of the windows, models and commands. Everything runs on the user-interface thread, when its message loop gets
// to it. "error <reason>" when a request cannot be done.
// The request "help" lists all requests (control_help.cpp).
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "workbench/host/model/geometry.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

using Words = std::vector<std::string>;

// A request that cannot be done: the reason becomes the reply's error.
class ControlError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Words behind the request's name, and all of them as they were written.
struct Request {
    Words words;
    std::string text;

    const std::string& word(std::size_t i) const;  // throws ControlError when it is missing
    int number(std::size_t i) const;               // throws ControlError when it is none
};

struct ControlCommand {
    const char* name;
    void (*run)(const Request& request, std::vector<std::string>& lines);  // throws ControlError
};

std::vector<std::string> controlHelp();
std::vector<ControlCommand> queryCommands();
std::vector<ControlCommand> actionCommands();

// The 16 numbers of a transform, row by row, in full precision.
std::string numberText(const Transform& transform);

// Carries out one request. User-interface thread.
Reply answerControl(const std::string& request);

// Handler for a LineServer: hands the request to the user-interface thread and waits for its answer.
Reply answerControlFromAnyThread(const std::string& request);

}  // namespace workbench
