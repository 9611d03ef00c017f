// The commands that steer the daemon, one a line, over the pipe of role "obk_control" or from a script.
#pragma once

#include <functional>
#include <mutex>
#include <string>

#include "workbench/daemon/bindings.h"
#include "workbench/daemon/device.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

class Control {
  public:
    // `quit` is called by the command of that name; it must not wait for the caller.
    Control(Device& device, std::function<void()> quit) : mDevice(device), mQuit(std::move(quit)) {}

    // Does one command. Any thread. A command that cannot be done answers why; nothing is changed then.
    Reply run(const std::string& line);

    // One line for each command.
    static std::vector<std::string> help();

  private:
    struct Command;
    using Words = std::vector<std::string>;  // the command's name first

    static const Command kCommands[];

    Reply axes(const Words& words);
    Reply extras(const Words& words);
    Reply event(const Words& words);
    Reply button(const Words& words);
    Reply bind(const Words& words);
    Reply settings(const Words& words);
    Reply legacy(const Words& words);
    Reply legacyRead(const Words& words);
    Reply devices(const Words& words);
    Reply fault(const Words& words);
    Reply hold(const Words& words);
    Reply status(const Words& words);
    Reply modes(const Words& words);
    Reply showHelp(const Words& words);
    Reply quit(const Words& words);
    Reply die(const Words& words);

    Device& mDevice;
    std::function<void()> mQuit;
    std::mutex mBindingsLock;
    Bindings mBindings;  // guarded by mBindingsLock
};

}  // namespace workbench
