#include "workbench/host/commands/commands.h"

#include <algorithm>

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
    std::erase_if(mCommands, [](const auto& command) { return command->isOfPlugin; });
}

int accessOf(const Command& command) { return command.access ? command.access() : ACCESS_AVAILABLE; }

bool isChecked(const Command& command) { return command.isOn && command.isOn(); }

bool runCommand(const std::string& name, const std::string& option) {
    const Command* command = commands().find(name);
    if (command == nullptr) {
        host().error("Unknown command \"" + name + "\".");
        return false;
    }
    if (accessOf(*command) != ACCESS_AVAILABLE) {
        host().message("The command \"" + name + "\" is not available now.");
        return false;
    }
    const auto run = command->run;  // the command itself may go while it runs, with its plug-in
    return run(option);
}

}  // namespace workbench
