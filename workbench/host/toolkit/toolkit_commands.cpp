// Toolkit functions: commands and menus.
#include "workbench/host/commands/commands.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/message_texts.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/toolkit/toolkit_value.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/menu_bar.h"

using namespace workbench;

namespace {

bool isSet(const uiCmdValue& value) { return value.state != PRO_B_FALSE; }

// Makes a command call the plug-in. Its handle, which every callback gets, is its address in the table.
void bindToPlugin(Command& command, uiCmdCmdActFn action, uiCmdCmdValFn value, uiCmdAccessFn access) {
    constexpr int ORDINARY_ACCESS_MODE = 0;
    const uiCmdCmdId handle = &command;
    command.run = [=, name = command.name, isCheck = command.isCheck](const std::string&) {
        uiCmdValue state;
        callPlugin(action, handle, &state, static_cast<void*>(nullptr));
        host().message("Command " + name + (isCheck ? (isSet(state) ? ": on" : ": off") : ""));
        return true;
    };
    if (access != nullptr) command.access = [=] { return callPlugin(access, ORDINARY_ACCESS_MODE); };
    if (value == nullptr) return;
    command.isOn = [=] {
        uiCmdValue state;
        callPlugin(value, handle, &state);
        return isSet(state);
    };
}

}  // namespace

ProError ProCmdOptionAdd(char* name, uiCmdCmdActFn action, ProBoolean check_type, uiCmdCmdValFn value,
                         uiCmdAccessFn access, ProBoolean, ProBoolean, uiCmdCmdId* command) {
    return toolkitCall(__func__, [&] {
        if (name == nullptr || *name == '\0' || action == nullptr || command == nullptr) return PRO_TK_BAD_INPUTS;
        if (Command* known = commands().find(name)) {
            *command = known;
            return PRO_TK_E_FOUND;
        }
        Command added;
        added.name = name;
        added.label = name;
        added.isCheck = check_type != PRO_B_FALSE;
        added.isOfPlugin = true;
        Command& kept = commands().add(std::move(added));
        bindToPlugin(kept, action, value, access);
        *command = &kept;
        return PRO_TK_NO_ERROR;
    });
}

ProError ProCmdChkbuttonValueSet(uiCmdValue* value, ProBoolean state) {
    return toolkitCall(__func__, [&] {
        if (value == nullptr) return PRO_TK_BAD_INPUTS;
        value->state = state != PRO_B_FALSE ? PRO_B_TRUE : PRO_B_FALSE;
        return PRO_TK_NO_ERROR;
    });
}

ProError ProCmdDesignate(uiCmdCmdId command, char* label, char* help, char* description, wchar_t* message_file) {
    return toolkitCall(__func__, [&] {
        Command* known = commands().findHandle(command);
        if (known == nullptr || label == nullptr || message_file == nullptr) return PRO_TK_BAD_INPUTS;
        known->label = messageText(message_file, label);
        if (help != nullptr) known->help = messageText(message_file, help);
        if (description != nullptr) known->description = messageText(message_file, description);
        return PRO_TK_NO_ERROR;
    });
}

ProError ProMenubarMenuAdd(char* name, char* label, char* neighbour, ProBoolean after_neighbour,
                           wchar_t* message_file) {
    return toolkitCall(__func__, [&] {
        if (name == nullptr || *name == '\0' || label == nullptr || message_file == nullptr) return PRO_TK_BAD_INPUTS;
        Menu menu{name, messageText(message_file, label), {}, true};
        const ProError result =
            menuBar().add(std::move(menu), neighbour ? neighbour : "", after_neighbour != PRO_B_FALSE);
        if (result == PRO_TK_NO_ERROR) frame().rebuildMenu();
        return result;
    });
}

ProError ProMenubarmenuChkbuttonAdd(char* parent_menu, char* name, char* label, char* help, char* neighbour,
                                    ProBoolean after_neighbour, uiCmdCmdId command, wchar_t* message_file) {
    return toolkitCall(__func__, [&] {
        const Command* known = commands().findHandle(command);
        if (parent_menu == nullptr || name == nullptr || label == nullptr || known == nullptr) return PRO_TK_BAD_INPUTS;
        if (message_file == nullptr || !known->isCheck) return PRO_TK_BAD_INPUTS;
        MenuItem item{name, messageText(message_file, label), known->name, "",
                      help != nullptr ? messageText(message_file, help) : ""};
        const ProError result =
            menuBar().addItem(parent_menu, std::move(item), neighbour ? neighbour : "", after_neighbour != PRO_B_FALSE);
        if (result == PRO_TK_NO_ERROR) frame().rebuildMenu();
        return result;
    });
}
