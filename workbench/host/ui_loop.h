// The user-interface thread's message loop, and the way into it from other threads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include <windows.h>

namespace workbench {

// To be called once, by the thread that is to be the user-interface thread, before anything else of this file.
void openUiLoop();
DWORD uiThreadId();

// Runs a task when the message loop gets to it. Any thread. Tasks that come, or are left, when the loop has ended are
// dropped.
void postToUi(std::function<void()> task);

// Runs a task once nothing else waits in the message loop, painting included, and in turn with everybody's timers:
// for what comes again and again and must leave the others their time. Any thread; dropped like the others.
void postToUiWhenIdle(std::function<void()> task);

// Serves messages until quitUiLoop was called; answers the exit code. Typed characters that are not for an edit field
// go to the mapkeys, and with misalignment on the plug-in's timer procedures are called on an offset stack.
int runUiLoop();
void quitUiLoop(int exitCode);

// Sees every key message before it is dispatched; true = used up.
using KeyFilter = std::function<bool(const MSG&)>;
void setKeyFilter(KeyFilter filter);

// Longest time in ms that the loop was not served since the last call. Any thread.
std::uint32_t takeLongestBlock();

}  // namespace workbench
