#include "workbench/host/commands.h"

#include <algorithm>

#include "workbench/host/host_state.h"
#include "workbench/host/plugin_call.h"
#include "workbench/host/toolkit_value.h"

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
    std::erase_if(mCommands, [](const auto& command) { return command->action != nullptr; });
}

int accessOf(const Command& command) {
    constexpr int ORDINARY_ACCESS_MODE = 0;
    return command.access == nullptr ? ACCESS_AVAILABLE : callPlugin(command.access, ORDINARY_ACCESS_MODE);
}

bool isChecked(const Command& command) {
    uiCmdValue value;
    if (command.value != nullptr) callPlugin(command.value, const_cast<Command*>(&command), &value);
    return value.state != PRO_B_FALSE;
}

bool runCommand(const std::string& name, const std::string& option) {
    const Command* command = commands().find(name);
    if (command == nullptr) {
        host().error("Unknown command \"" + name + "\".");
        return false;
    }
    if (command->action == nullptr) return command->run(option);
    if (accessOf(*command) != ACCESS_AVAILABLE) {
        host().message("The command \"" + name + "\" is not available now.");
        return false;
    }
    uiCmdValue value;
    callPlugin(command->action, const_cast<Command*>(command), &value, static_cast<void*>(nullptr));
    host().message("Command " + name + (command->isCheck ? (value.state != PRO_B_FALSE ? ": on" : ": off") : ""));
    return true;
}

}  // namespace workbench
