// What the plug-in takes for granted of Creo and the device, each thing under an id that stays: what depends on it, how
// the probe checks it, and what the user has to do for that. Tables only; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace probe {

struct Bilingual {
    const char* english;
    const char* german;
    const char* in(bool isGerman) const { return isGerman ? german : english; }
};

// What the user does, in the order of the window's list.
enum class Task {
    start,  // nothing: seen when Creo starts the probe, or by itself
    openMenu,
    umlauts,
    assembly,
    selectNothing,
    selectComponent,
    view,
    move,
    undoAfterMove,
    macros,
    undoAfterMacros,
    mapkey,
    undoAfterMapkey,
    part,
    sketch,
    drawing,
    changeWindow,
    restTree,
    restList,
    restBrowser,
    restToolbar,
    restGraphics,
    scrollBars,
    scrollWheel,
    wheelMoved,
    work,
    device,
    buttons,
    pushRight,
    pushUp,
    pushTowards,
    turnX,
    turnY,
    turnZ,
    legacyOn,
    legacyOff,
};

enum class TaskKind {
    automatic,  // the probe sees that it was done
    confirm,    // the user says that it is so now
    active,     // the probe does something, after saying what
    rest,       // active, once the pointer has rested on a window for a second
    question,   // the user answers yes or no
};

struct TaskText {
    Task task;
    TaskKind kind;
    Bilingual title;  // a line of the list
    Bilingual text;   // what to do, or what the probe will do
};

const std::vector<TaskText>& tasks();  // in the order of the enumeration
const TaskText& textOf(Task task);

struct Assumption {
    std::string id;  // "group.what"
    std::string statement;
    std::string german;       // the statement
    std::string file;         // what depends on it in the plug-in
    std::string consequence;  // what becomes of that when it does not hold
    std::string check;
    Task task;
};

const std::vector<Assumption>& assumptions();           // grouped as they are reported
const Assumption* findAssumption(std::string_view id);  // null: there is none

// The toolkit functions that the plug-in calls; each has a row "function.NAME".
std::vector<std::string> toolkitFunctions();
std::string functionRow(std::string_view function);

}  // namespace probe
