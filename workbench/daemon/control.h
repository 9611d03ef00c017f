// The commands that steer the daemon, one a line, over the pipe of role "obk_control" or from a script.
#pragma once

#include <functional>
#include <map>
#include <mutex>
#include <string>

#include "workbench/daemon/bindings.h"
#include "workbench/daemon/device.h"
#include "workbench/daemon/record.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

class Control {
  public:
    // `quit` is called by the command of that name; it must not wait for the caller.
    Control(Device& device, std::function<void()> quit);

    // Does one command. Any thread. A command that cannot be done answers why; nothing is changed then.
    Reply run(const std::string& line);

    // The command that undoes what this one would set, as things are now; empty when it sets nothing.
    std::string undoOf(const std::string& line);

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
    Reply bindings(const Words& words);
    Reply settings(const Words& words);
    Reply legacy(const Words& words);
    Reply legacyRead(const Words& words);
    Reply devices(const Words& words);
    Reply fault(const Words& words);
    Reply hold(const Words& words);
    Reply status(const Words& words);
    Reply modes(const Words& words);
    Reply applications(const Words& words);
    Reply takeBack(const Words& words);
    Reply record(const Words& words);
    Reply replay(const Words& words);
    Reply step(const Words& words);
    Reply showHelp(const Words& words);
    Reply quit(const Words& words);
    Reply die(const Words& words);

    std::string settingsWords();  // as "settings" takes them

    Device& mDevice;
    std::function<void()> mQuit;
    std::mutex mBindingsLock;
    Bindings mBindings;  // guarded by mBindingsLock
    Recorder mRecorder;
    Player mPlayer;  // last: it ends first, and plays by the others
};

// One connection to the control. A client that has said "take-back on" leaves nothing behind: when the connection ends,
// in whatever way, what it has set since is set back. For one thread.
class ControlConnection {
  public:
    explicit ControlConnection(Control& control) : mControl(control) {}
    ~ControlConnection();
    ControlConnection(const ControlConnection&) = delete;
    ControlConnection& operator=(const ControlConnection&) = delete;

    Reply run(const std::string& line);

  private:
    Control& mControl;
    bool mIsTakingBack = false;
    std::map<std::string, std::string> mUndos;  // by the command's name; that of the first time
};

}  // namespace workbench
