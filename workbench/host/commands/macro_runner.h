// Runs macros and trail files.
#pragma once

#include <functional>
#include <string>

namespace workbench {

// Queues a macro; it runs when control is back in the message loop, and what can be undone is lost with it.
void queueMacro(const std::string& macro);
void runQueuedMacros();

// Called for each macro that is queued: has to let runQueuedMacros run from the message loop. Until it is set, queued
// macros wait.
void setMacroWaker(std::function<void()> wake);

// Runs at once and keeps the undo stack. False when the text is malformed or a statement fails; the statements behind
// it are then not run, and the message line tells why.
bool runMacro(const std::string& macro);

// The file dialog of "play trail file" as macros see it: opened, given a name, confirmed.
void openTrailDialog();
bool confirmTrailDialog();

bool playTrailFile(const std::string& path);

// A typed character that may complete a mapkey.
void typeMapkeyCharacter(char key);

struct MacroCounts {
    int queuedRun = 0;
    int mapkeysRun = 0;
    int trailsPlayed = 0;
    int failed = 0;
};
const MacroCounts& macroCounts();

}  // namespace workbench
