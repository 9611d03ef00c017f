#include <sstream>

#include "workbench/host/control/control.h"

namespace workbench {
namespace {

constexpr char HELP[] = R"(Asking
  status                      key=value lines: mode, sketch, model, window, selection, undo, redo, style, view scale,
                              plug-in state, counters, errors, last message
  positions                   a line for each top-level component: id name, 16 numbers of its position row by row
  view                        the 16 numbers of the model-to-screen matrix
  screen PATH                 where a component's origin is shown: x y in screen coordinates of Windows
  menu                        a line for each item of the plug-in's menus: label, checked=0/1, enabled=0/1
  menus                       the menu bar's labels in order
  windows                     name class handle left top right bottom visible=0/1 of every named window
  top                         the thread's top-level windows in the order in which Windows enumerates them
  scroll WINDOW               vertical and horizontal: min max page pos; then the first line shown, and the wheel
                              notches received and the words of the last wheel message (own window classes), or
                              the pixels the tool bar was moved
  calls FUNCTION              number of calls of a toolkit function so far
  access COMMAND              what its access callback answers: 3 available, 1 not
  messages                    latest texts of the message line, the oldest first
  config OPTION               value of a configuration option
  trail                       mapkeys that are defined: keys, label, macro
  commands                    all commands
  notifications               types that have a handler
  invariants                  "ok", or a line for each thing that does not hold and should: arrays given back, dynamic
                              positioning off, matrices finite and orthonormal, timers, threads, LegacyCOM1
  help                        this list
  blocked                     longest time in ms that the message loop was not served since the last ask

Doing
  select PATH... | all | none | root      a path is 41 or, below it, 58/3; root is the assembly itself
  mode NUMBER | NAME | auto   what the mode query answers (no notification is fired); auto = the model's own.
                              Names: assembly, part, sketcher (part with an open sketch), drawing, none (-1)
  sketch on | off | auto      what the sketch query answers
  model NAME                  opens a model as the File menu does, notifications included
  window NUMBER | auto        what the current-window query answers (no notification)
  view set N1 ... N9          orientation, row by row
  menu click LABEL            item of the plug-in's menu, by its label or its name, as by a click
  command NAME [OPTION]       as from the menu: the undo stack is kept
  macro TEXT                  queued as by the toolkit: the undo stack is lost
  undo, redo
  keys TEXT                   types characters into the main window
  cursor X Y | cursor WINDOW  moves the mouse pointer (to the middle of a window)
  front WINDOW                shows a top-level window in front of the others, with the focus
  panel NAME                  shows a panel of the dock: properties library tables results browser palette
  resize WIDTH HEIGHT         of the main window
  place X Y WIDTH HEIGHT      where the main window is on the screen
  rebuild                     destroys all windows and makes them anew
  components N                replaces the assembly by N small components
  during FUNCTION REQUEST     does the request inside the function's next call, as a toolkit that dispatches does
  notify TYPE                 fires a notification's handler
  misalign on | off           calls the plug-in on stacks 4, 8, 12 past a 16-byte boundary in turn
  plugin terminate | initialize | unload | load | reload N
  plugin call terminate | call initialize     calls the entry point, whatever was called before
  exit                        ends the host
  crash                       ends it as a fault in its own code does

Going wrong on purpose. FUNCTION is one of the toolkit's, or SetTimer or _beginthreadex of Windows, which can only
fail. WHICH is 3 (the third call from now on, that one alone), 2-5, always or never; the next call unless given. A call
that fails does nothing and writes nothing; ProSelectionarrayFree and ProNotificationUnset do their work and fail.
  fail FUNCTION WHICH [CODE]  these calls answer the code, -1 unless given
  hang FUNCTION MS [WHICH]    these calls stand still first
  pump FUNCTION [WHICH]       these calls serve the message loop first
  chaos SEED [PER_MILLE] | off    of a thousand calls so many (10 unless given) fail, hang shortly or pump
  calm                        ends all of these, and what "during" still waits for

Windows: main strip toolbar tree container graphics dock message tabs accessory accessory_list, and in the dock's
panels
  properties: listview edit    library: listbox treeview    tables: gxwnd graphdraw    results: list wheeltree
  browser: browser             palette: overlap_small (upon) overlap_large
)";

}  // namespace

std::vector<std::string> controlHelp() {
    std::vector<std::string> lines;
    std::istringstream text(HELP);
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

}  // namespace workbench
