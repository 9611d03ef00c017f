#include "OB_Daemon/src/mutex.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "OB_Daemon/src/thread_id.h"

namespace {

struct Errno {
    int code = errno;  // of the failed call
};

std::ostream& operator<<(std::ostream& out, const Errno& error) {
    return out << "errno = " << error.code << ", error: " << std::strerror(error.code) << std::endl;
}

}  // namespace

Mutex::Mutex() {
    std::snprintf(mName, sizeof mName, "Logging_%ld", static_cast<long>(getpid()));
    if (sem_init(&mSemaphore, 0, 1) != 0) {
        const Errno error;
        std::cerr << "Mutex::Mutex(): **** Error initializing semaphore by thread " << currentThreadId() << "! **** "
                  << error;
    }
}

Mutex::~Mutex() {
    if (sem_destroy(&mSemaphore) != 0) {
        const Errno error;
        std::cerr << "Mutex::~Mutex(): Semaphore '" << mName << "' (OS X ID not available) of thread "
                  << currentThreadId() << " could not be destroyed!" << error;
    }
}

int Mutex::lock() {
    mLockRequested = true;
    const int status = sem_wait(&mSemaphore);
    if (status != 0) {
        const Errno error;
        std::cerr << "Mutex::lock(): **** Error locking semaphore '" << mName << "' by thread " << currentThreadId()
                  << "! **** " << error;
    }
    return status;
}

bool Mutex::tryLock() { return sem_trywait(&mSemaphore) == 0; }

int Mutex::unlock() {
    const int status = sem_post(&mSemaphore);
    if (status != 0) {
        const Errno error;
        std::cout << "Mutex::unlock(): **** Error unlocking semaphore '" << mName << "' by thread " << currentThreadId()
                  << "'! **** " << error;
    }
    return status;
}
