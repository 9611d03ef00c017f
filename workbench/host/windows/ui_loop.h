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

// Serves messages until quitUiLoop was called; answers the exit code.
int runUiLoop();
void quitUiLoop(int exitCode);

// Serves what waits in the message loop, as a dialog does that is open inside a call, and comes back. The end of the
// loop is left for the loop itself. User-interface thread.
void pumpUiMessages();

// Lets the system take note of keys that went down or up while the message loop stands still, so that other threads see
// them; serves nothing. User-interface thread.
void noteInput();

// Sees every key message, or every timer message, before it is dispatched; true = used up. User-interface thread.
using MessageFilter = std::function<bool(const MSG&)>;
void setKeyFilter(MessageFilter filter);
void setTimerFilter(MessageFilter filter);

// Gets every typed character that is not for an edit field. User-interface thread.
void setCharacterHandler(std::function<void(char)> handler);

// Longest time in ms that the loop was not served since the last call. Any thread.
std::uint32_t takeLongestBlock();

}  // namespace workbench
