// Stands in for some of Windows' own functions in the test program that links it, so that neither pointer, display nor
// clock of the machine matters: what the plug-in asks is answered from here, what it does is noted. All others are
// Windows' own. For one thread, but for those that hang.
#pragma once

#include <windows.h>

#include <optional>
#include <vector>

namespace substitute {

struct System {
    // --- Timers: noted only. A test ticks by itself. ---
    struct Timer {
        HWND window;
        UINT_PTR id;
        UINT interval;
        bool operator==(const Timer&) const = default;
    };
    std::vector<Timer> timersSet;
    std::vector<Timer> timersKilled;  // interval 0
    bool areTimersRefused = false;
    TIMERPROC timerProc = nullptr;
    void tick() const { timerProc(nullptr, WM_TIMER, 0, 0); }

    // --- Pointer and windows ---
    std::optional<POINT> pointer = POINT{};  // none: it cannot be told
    HWND underPointer = nullptr;
    HWND inFront = nullptr;
    HWND ofOtherProcess = nullptr;
    std::vector<HWND> updated;
    std::vector<HWND> invalidated;

    // --- Time, in milliseconds: on the thread that called reset() nobody sleeps, and the clock goes by hand ---
    std::vector<DWORD> pauses;
    ULONGLONG clock = 1000;
    // Messages with a time limit: what they were given, and what their answer takes. Without a limit of its own a
    // window that answers has all the time that a busy machine makes it need.
    std::vector<UINT> timeouts;
    ULONGLONG answerTime = 0;
    bool isAnswering = true;

    void reset();
};

System& system();

}  // namespace substitute
