#include "workbench/host/commands/commands.h"

#include <algorithm>
#include <iterator>

#include "workbench/host/model/host_state.h"

namespace workbench {

CommandTable& commands() {
    static CommandTable table;
    return table;
}

Command& CommandTable::add(Command command) {
    if (Command* known = find(command.name)) return *known = std::move(command);
    mCommands.push_back(std::make_unique<Command>(std::move(command)));
    return *mCommands.back();
}

Command* CommandTable::find(const std::string& name) const {
    const auto found = std::find_if(mCommands.begin(), mCommands.end(), [&](const auto& c) { return c->name == name; });
    return found == mCommands.end() ? nullptr : found->get();
}

Command* CommandTable::findHandle(const void* handle) const {
    const auto found =
        std::find_if(mCommands.begin(), mCommands.end(), [&](const auto& c) { return c.get() == handle; });
    return found == mCommands.end() ? nullptr : found->get();
}

void CommandTable::dropPluginCommands() {
    const auto dropped = std::stable_partition(mCommands.begin(), mCommands.end(),
                                               [](const auto& command) { return !command->isOfPlugin; });
    if (dropped == mCommands.end()) return;
    mDropped.assign(std::make_move_iterator(dropped), std::make_move_iterator(mCommands.end()));
    mCommands.erase(dropped, mCommands.end());
}

int accessOf(const Command& command) { return command.access ? command.access() : ACCESS_AVAILABLE; }

bool isChecked(const Command& command) { return command.isOn && command.isOn(); }

bool runCommand(const std::string& name, const std::string& option) {
    const Command* command = commands().find(name);
    if (command == nullptr) {
        host().error("Unknown command \"" + name + "\".");
        return false;
    }
    const bool isAvailable = accessOf(*command) == ACCESS_AVAILABLE;
    command = commands().find(name);  // it may be gone: asking runs code of its plug-in
    if (!isAvailable || command == nullptr) {
        host().message("The command \"" + name + "\" is not available now.");
        return false;
    }
    const auto run = command->run;  // the command itself may go while it runs
    return run(option);
}

}  // namespace workbench
