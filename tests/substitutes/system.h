// What the plug-in asks of the system, as a test wants it: memory and calls that fail, and a clock that jumps or
// stands. For test programs that link the library system_substitute; one test thread.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace substitute {

enum class Call { allocation, semInit, semDestroy, semWait, semPost, link, remove, rename };
inline constexpr int kCallError = 28;  // errno of a call that fails: ENOSPC

// Lets one call of a kind fail for the time of a scope: the nth, counted from 1. A post that fails releases all the
// same, and a semaphore whose initialisation fails works, so that the test can go on.
class NthFails {
  public:
    NthFails(Call call, long n);
    ~NthFails();
    NthFails(const NthFails&) = delete;
    NthFails& operator=(const NthFails&) = delete;

    bool hasFailed() const;  // so far
};

// Runs the operation again and again: each time the next one of its calls fails, of one kind after the other, until
// none is left to fail. What the operation throws then, for lack of memory, ends it and nothing else. `check` follows
// each run, with everything working: it gets a text that tells which call it was, puts things back and answers what is
// wrong, or nothing. Result: all that was wrong, a lock or a file left open and an operation that calls nothing
// included.
std::vector<std::string> failEachCall(const std::function<void()>& operation,
                                      const std::function<std::string(const std::string& which)>& check);

long allocations();  // that operator new has handed out

// Lets std::chrono::steady_clock jump ahead.
void advanceClock(std::chrono::steady_clock::duration time);

// For the thread that makes it, std::chrono::steady_clock stands still for the time of a scope.
class ClockStands {
  public:
    ClockStands();
    ~ClockStands();
    ClockStands(const ClockStands&) = delete;
    ClockStands& operator=(const ClockStands&) = delete;
};

}  // namespace substitute
