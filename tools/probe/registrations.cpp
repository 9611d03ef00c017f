#include "tools/probe/registrations.h"

#include <array>
#include <utility>
#include <vector>

#include "toolkit/pro_toolkit.h"
#include "tools/probe/callers.h"
#include "tools/probe/checker.h"

namespace probe {

namespace {

wchar_t messageFile[] = L"OrbikonProbe.txt";
std::function<void(Task)> chosen;
Findings* findingsToTell = nullptr;
std::string marks;

// Steps that the menu has; the keywords of their texts in the message file are the commands' names.
struct Step {
    Task task;
    const char* command;
};
constexpr Step kSteps[] = {
    {Task::start, "OrbikonProbe_Window"},      {Task::view, "OrbikonProbe_View"},
    {Task::move, "OrbikonProbe_Move"},         {Task::macros, "OrbikonProbe_Macros"},
    {Task::mapkey, "OrbikonProbe_Mapkey"},     {Task::scrollBars, "OrbikonProbe_ScrollBars"},
    {Task::scrollWheel, "OrbikonProbe_Wheel"}, {Task::device, "OrbikonProbe_Device"},
    {Task::legacyOff, "OrbikonProbe_Legacy"},  {Task::umlauts, "OrbikonProbe_Umlauts"},
};

// A callback without the command's number knows it by its own type.
template <std::size_t Index>
int onAction(uiCmdCmdId, uiCmdValue*, void*) {
    const void* const arguments = __builtin_dwarf_cfa();
    return atEdge(0, [&] {
        noteCaller(Caller::action, arguments);
        if (chosen) chosen(kSteps[Index].task);
        return 0;
    });
}

template <char Mark>
int onMark(uiCmdCmdId, uiCmdValue*, void*) {
    const void* const arguments = __builtin_dwarf_cfa();
    return atEdge(0, [&] {
        noteCaller(Caller::action, arguments);
        marks += Mark;
        return 0;
    });
}

int onValue(uiCmdCmdId, uiCmdValue* value) {
    const void* const arguments = __builtin_dwarf_cfa();
    return atEdge(-1, [&] {
        noteCaller(Caller::value, arguments);
        const ProError result = ProCmdChkbuttonValueSet(value, PRO_B_FALSE);
        if (findingsToTell != nullptr) {
            findingsToTell->tell("callbacks.value", result == PRO_TK_NO_ERROR,
                                 answerText("ProCmdChkbuttonValueSet", result));
        }
        return -1;
    });
}

int onAccess(int) {
    const void* const arguments = __builtin_dwarf_cfa();
    return atEdge(ACCESS_AVAILABLE, [&] {
        noteCaller(Caller::access, arguments);
        return ACCESS_AVAILABLE;
    });
}

constexpr std::size_t kStepCount = std::size(kSteps);
template <std::size_t... Index>
constexpr std::array<uiCmdCmdActFn, kStepCount> actionsOf(std::index_sequence<Index...>) {
    return {onAction<Index>...};
}
constexpr auto kActions = actionsOf(std::make_index_sequence<kStepCount>());

// The toolkit's texts are not const.
char* text(std::string& kept) { return kept.data(); }

uiCmdCmdId addCommand(const std::string& name, uiCmdCmdActFn action, ProBoolean isCheck) {
    std::string kept = name;
    uiCmdCmdId command = nullptr;
    ProCmdOptionAdd(text(kept), action, isCheck, isCheck != PRO_B_FALSE ? onValue : nullptr,
                    isCheck != PRO_B_FALSE ? onAccess : nullptr, PRO_B_TRUE, PRO_B_TRUE, &command);
    return command;
}

ProError addItem(std::string name, uiCmdCmdId command) {
    std::string menu = kMenuName;
    const ProError result = ProMenubarmenuChkbuttonAdd(text(menu), text(name), text(name), text(name), nullptr,
                                                       PRO_B_TRUE, command, messageFile);
    ProCmdDesignate(command, text(name), text(name), text(name), messageFile);
    return result;
}

}  // namespace

std::string markCommand(char mark) { return std::string("OrbikonProbe_Mark") + mark; }

std::string takeMarks() { return std::exchange(marks, {}); }

void registerAll(Findings& findings, std::function<void(Task)> onChoice) {
    chosen = std::move(onChoice);
    findingsToTell = &findings;
    if (!Context::has({"ProCmdOptionAdd", "ProMenubarMenuAdd", "ProMenubarmenuChkbuttonAdd", "ProCmdDesignate"}))
        return;
    addCommand(markCommand('A'), onMark<'A'>, PRO_B_FALSE);
    addCommand(markCommand('B'), onMark<'B'>, PRO_B_FALSE);
    addCommand(markCommand('C'), onMark<'C'>, PRO_B_FALSE);
    std::string menu = kMenuName, help = "Help";
    const ProError added = ProMenubarMenuAdd(text(menu), text(menu), text(help), PRO_B_FALSE, messageFile);
    std::string results = answerText("ProMenubarMenuAdd", added) + ", ProMenubarmenuChkbuttonAdd";
    bool isFine = added == PRO_TK_NO_ERROR;
    for (std::size_t i = 0; i < kStepCount; ++i) {
        const uiCmdCmdId command = addCommand(kSteps[i].command, kActions[i], PRO_B_TRUE);
        const ProError result = command != nullptr ? addItem(kSteps[i].command, command) : PRO_TK_GENERAL_ERROR;
        isFine = isFine && result == PRO_TK_NO_ERROR;
        results += " " + std::to_string(result);
    }
    findings.tell("registration.menu", isFine, results);
}

void forgetRegistrations() {
    chosen = nullptr;
    findingsToTell = nullptr;
}

}  // namespace probe
