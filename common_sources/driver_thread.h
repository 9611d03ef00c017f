// Threads and calls that may hang inside the driver library. Creo must not hang with them: whoever waits for one at the
// plug-in's end does so for ten seconds, says that it is left behind, and goes on.
#pragma once

#include <pthread.h>

#include <chrono>
#include <functional>
#include <memory>

// Creo's thread.
class DriverThread {
  public:
    // Runs the body on a thread of its own. The body owns, alone or with others, all that it uses: it may outlive
    // everybody. False when the system refuses.
    bool start(std::function<void()> body);

    // Waits by polling until the body, if any was started, has come to its end, and gives the thread's handle back.
    // False when it has not in time; `name` says in the log what is left behind.
    bool waitForEnd(const char* name);

    static inline std::chrono::milliseconds patience{10'000};  // shortened by tests

  private:
    struct Run;
    static void* entry(void* run);

    std::shared_ptr<const Run> mRun;
    pthread_t mThread{};
};

// Makes a driver call for Creo's thread on a thread of its own. The call's status, or -1 when it does not return in
// time; `name` says in the log which call it is.
int callPatiently(const char* name, int (*call)());
