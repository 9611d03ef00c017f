#include "OB_Daemon/src/mutex.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "OB_Daemon/src/thread_id.h"

namespace {

// Says what of the semaphore failed, and why.
void tell(std::FILE* stream, const std::string& text) {
    const int code = errno;  // of the failed call
    std::fprintf(stream, "%serrno = %d, error: %s\n", text.c_str(), code, std::strerror(code));
    std::fflush(stream);
}

std::string byThread() { return "by thread " + std::to_string(currentThreadId()); }

}  // namespace

Mutex::Mutex() {
    std::snprintf(mName, sizeof mName, "Logging_%ld", static_cast<long>(getpid()));
    if (sem_init(&mSemaphore, 0, 1) != 0) {
        tell(stderr, "Mutex::Mutex(): **** Error initializing semaphore " + byThread() + "! **** ");
    }
}

Mutex::~Mutex() {
    if (sem_destroy(&mSemaphore) != 0) {
        tell(stderr, std::string("Mutex::~Mutex(): Semaphore '") + mName + "' (OS X ID not available) of thread " +
                         std::to_string(currentThreadId()) + " could not be destroyed!");
    }
}

int Mutex::lock() {
    mLockRequested.store(true, std::memory_order_relaxed);
    const int status = sem_wait(&mSemaphore);
    if (status != 0) {
        tell(stderr,
             std::string("Mutex::lock(): **** Error locking semaphore '") + mName + "' " + byThread() + "! **** ");
    }
    return status;
}

bool Mutex::tryLock() { return sem_trywait(&mSemaphore) == 0; }

int Mutex::unlock() {
    const int status = sem_post(&mSemaphore);
    if (status != 0) {
        tell(stdout,
             std::string("Mutex::unlock(): **** Error unlocking semaphore '") + mName + "' " + byThread() + "'! **** ");
    }
    return status;
}
