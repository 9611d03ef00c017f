// Steers and asks the host over the pipe "creo_control". A request is one line, its words parted by blanks; names are
// those of the windows, models and commands. Everything runs on the user-interface thread, when its message loop gets
// to it. "error <reason>" when a request cannot be done.
//
// Asking
//   status                      key=value lines: mode, sketch, model, window, selection, undo, redo, style, view scale,
//                               plug-in state, counters, errors, last message
//   positions                   a line for each top-level component: id name, 16 numbers of its position row by row
//   view                        the 16 numbers of the model-to-screen matrix
//   screen PATH                 where a component's origin is shown: x y in screen coordinates of Windows
//   menu                        a line for each item of the plug-in's menus: label, checked=0/1, enabled=0/1
//   menus                       the menu bar's labels in order
//   windows                     name class handle left top right bottom visible=0/1 of every named window
//   top                         the thread's top-level windows in the order in which Windows enumerates them
//   scroll WINDOW               vertical and horizontal: min max page pos; then the first line shown, and the wheel
//                               notches received and the words of the last wheel message (own window classes), or
//                               the pixels the tool bar was moved
//   calls FUNCTION              number of calls of a toolkit function so far
//   access COMMAND              what its access callback answers: 3 available, 1 not
//   messages                    latest texts of the message line, the oldest first
//   config OPTION               value of a configuration option
//   trail                       mapkeys that are defined: keys, label, macro
//   commands                    all commands
//   notifications               types that have a handler
//   blocked                     longest time in ms that the message loop was not served since the last ask
//
// Doing
//   select PATH... | all | none | root      a path is 41 or, below it, 58/3; root is the assembly itself
//   mode NUMBER | NAME | auto   what the mode query answers (no notification is fired); auto = the model's own.
//                               Names: assembly, part, sketcher (part with an open sketch), drawing, none (-1)
//   sketch on | off | auto      what the sketch query answers
//   model NAME                  opens a model as the File menu does, notifications included
//   window NUMBER | auto        what the current-window query answers (no notification)
//   view set N1 ... N9          orientation, row by row
//   menu click LABEL            item of the plug-in's menu, by its label or its name, as by a click
//   command NAME [OPTION]       as from the menu: the undo stack is kept
//   macro TEXT                  queued as by the toolkit: the undo stack is lost
//   undo, redo
//   keys TEXT                   types characters into the main window
//   cursor X Y | cursor WINDOW  moves the mouse pointer (to the middle of a window)
//   front WINDOW                shows a top-level window in front of the others, with the focus
//   panel NAME                  shows a panel of the dock: properties library tables results browser palette
//   resize WIDTH HEIGHT         of the main window
//   rebuild                     destroys all windows and makes them anew
//   components N                replaces the assembly by N small components
//   fail FUNCTION CODE [COUNT]  the next COUNT calls (default: all) answer the code without doing anything; 0 ends it
//   during FUNCTION REQUEST     does the request inside the function's next call, as a toolkit that dispatches does
//   notify TYPE                 fires a notification's handler
//   misalign on | off           calls the plug-in on stacks 4, 8, 12 past a 16-byte boundary in turn
//   plugin terminate | initialize | unload | load | reload N
//   exit                        ends the host
//
// Windows: main strip toolbar tree container graphics dock message tabs accessory accessory_list, and in the dock's
// panels
//   properties: listview edit    library: listbox treeview    tables: gxwnd graphdraw    results: list wheeltree
//   browser: browser             palette: overlap_small (upon) overlap_large
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "workbench/host/model/geometry.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

using Words = std::vector<std::string>;

// A request that cannot be done: the reason becomes the reply's error.
class ControlError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Words behind the request's name, and all of them as they were written.
struct Request {
    Words words;
    std::string text;

    const std::string& word(std::size_t i) const;  // throws ControlError when it is missing
    int number(std::size_t i) const;               // throws ControlError when it is none
};

struct ControlCommand {
    const char* name;
    void (*run)(const Request& request, std::vector<std::string>& lines);  // throws ControlError
};

std::vector<ControlCommand> queryCommands();
std::vector<ControlCommand> actionCommands();

// The 16 numbers of a transform, row by row, in full precision.
std::string numberText(const Transform& transform);

// Carries out one request. User-interface thread.
Reply answerControl(const std::string& request);

// Handler for a LineServer: hands the request to the user-interface thread and waits for its answer.
Reply answerControlFromAnyThread(const std::string& request);

}  // namespace workbench
