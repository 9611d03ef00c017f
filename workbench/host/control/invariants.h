// What holds in this host whatever its plug-in, its device and its user do.
#pragma once

#include <string>
#include <vector>

namespace workbench {

// What does not hold at present, as sentences; empty when all does. Asked in the middle of the plug-in's work, it tells
// only of what was handed to the host up to then. User-interface thread.
//
// Always
//   - every matrix that a position or view was set by was finite, its axes of length 1 and upright on each other
//   - toolkit functions were called by the user-interface thread alone
// Outside the plug-in's work
//   - every selection array was given back
//   - dynamic positioning is off; it may stay on when switching it off failed at least twice in a row
// While the plug-in runs, a moment after the menus were shown
//   - one timer is armed
//   - it has a menu item, unless the latest that it asked for was refused
//   - LegacyCOM1 is on unless scrolling is, or components are selected with component move on in an assembly
// When it was ended
//   - no timer and no thread of it is left, no driver session, no notification but 72 and 73
//   - LegacyCOM1 is as the device's owner set it
// LegacyCOM1 may be off when the daemon refused to switch it at least twice in a row, or does not let the plug-in
// connect.
std::vector<std::string> brokenInvariants();

}  // namespace workbench
