#pragma once

#include <semaphore.h>

#include <atomic>

// The lock of the log, which is the plug-in's only one (threads queue in front of it, see Logging::Lock): a
// process-private semaphore of count one with a name. Not recursive, and without an owner: any thread may release it.
// Failures are reported on the process's standard streams (construction, destruction and lock on the error stream,
// unlock on the output stream), never through the log whose lock it is.
class Mutex {
  public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    // Blocks until the semaphore is taken. Result 0 = locked, otherwise sem_wait's status.
    int lock();

    // Takes the semaphore if that needs no waiting, and answers whether it did.
    bool tryLock();

    // Releases the semaphore. Result 0 = released, otherwise sem_post's status.
    int unlock();

    // "Logging_" and the process id in decimal, cut to 32 characters.
    const char* name() const { return mName; }

  private:
    static constexpr int kNameSize = 32;

    sem_t mSemaphore;
    char mName[kNameSize + 1];
    std::atomic<bool> mLockRequested = false;  // set by every lock(), never cleared
};
