// A program started by a test or the tour. It ends with its starter at the latest, also when that crashes.
#pragma once

#include <windows.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "workbench/pipes/overlapped.h"

namespace workbench {

using Environment = std::map<std::string, std::string>;

struct ProcessOptions {
    std::filesystem::path program;
    std::vector<std::string> arguments;
    std::string lastArgument{};        // as it is, also with blanks and quotes; empty = none
    std::filesystem::path folder;      // current directory of the process
    Environment environment;           // set in addition to the starter's own; an empty value removes a variable
    std::filesystem::path outputFile;  // takes standard output and error output, from its beginning
};

class Process {
  public:
    // Throws std::runtime_error when it cannot be started.
    explicit Process(const ProcessOptions& options);
    Process(Process&&) noexcept = default;
    Process& operator=(Process&&) noexcept = delete;
    ~Process();  // kills the process when it still runs

    DWORD id() const { return mId; }
    bool isRunning() const;

    // Waits for the process to end; its exit code, or nothing when it still runs after the time-out.
    std::optional<DWORD> waitForExit(int timeoutMs) const;

    // A visible window of the process that has a control with this id; null when there is none.
    HWND windowWith(int control) const;

    // Ends the process abruptly and waits until it is gone.
    void kill();

  private:
    Handle mJob;  // ends the process when its last handle is closed, so also when this program ends
    Handle mProcess;
    DWORD mId = 0;
};

}  // namespace workbench
