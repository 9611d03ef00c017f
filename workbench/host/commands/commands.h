// The host's commands: its own, and those that the plug-in registers. Run by menu, by macro and by control.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "toolkit/pro_toolkit.h"

namespace workbench {

struct Command {
    std::string name;
    std::string label;  // of the host's menus; of a plug-in's command what it was designated with
    std::string help;
    std::string description;
    std::function<bool(const std::string& option)> run;  // false = could not be done; the reason is in the message line

    // Set for commands of the plug-in only.
    std::function<int()> access;  // ACCESS_AVAILABLE or another of the toolkit's numbers; none = always available
    std::function<bool()> isOn;   // none = never
    bool isCheck = false;
    bool isOfPlugin = false;
};

class CommandTable {
  public:
    // The command with that name is replaced. The reference stays valid.
    Command& add(Command command);
    Command* find(const std::string& name) const;
    Command* findHandle(const void* handle) const;  // null when the handle is no command's
    const std::vector<std::unique_ptr<Command>>& all() const { return mCommands; }
    void dropPluginCommands();  // their callbacks are gone with the plug-in

  private:
    std::vector<std::unique_ptr<Command>> mCommands;
    // The last ones that were dropped: that may have happened inside a call of one of them.
    std::vector<std::unique_ptr<Command>> mDropped;
};

CommandTable& commands();

// Runs a command by name; unknown or unavailable ones leave a message. False when it was not done.
bool runCommand(const std::string& name, const std::string& option);

int accessOf(const Command& command);
bool isChecked(const Command& command);

}  // namespace workbench
