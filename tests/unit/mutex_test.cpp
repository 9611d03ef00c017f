#include "OB_Daemon/src/mutex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <climits>
#include <cstring>
#include <memory>
#include <thread>

#include "OB_Daemon/src/thread_id.h"
#include "tests/unit/scratch.h"

namespace {

TEST(Mutex, SecondLockBlocksUntilAnotherThreadReleases) {
    Mutex mutex;
    ASSERT_EQ(mutex.lock(), 0);
    std::atomic<int> locked{1};
    std::atomic<bool> isReleased{false};
    std::atomic<bool> wasReleasedBefore{false};
    std::thread second([&] {
        locked = 2;  // about to block
        mutex.lock();
        wasReleasedBefore = isReleased.load();
        locked = 3;
    });
    ASSERT_TRUE(waitUntil([&] { return locked == 2; }));
    isReleased = true;
    std::thread([&] { EXPECT_EQ(mutex.unlock(), 0); }).join();
    second.join();
    EXPECT_EQ(locked, 3);
    EXPECT_TRUE(wasReleasedBefore);
    EXPECT_EQ(mutex.unlock(), 0);
}

TEST(Mutex, ExcludesOtherThreads) {
    Mutex mutex;
    long counter = 0;  // guarded by the mutex alone
    std::thread threads[3];
    for (auto& thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < 10000; ++i) {
                mutex.lock();
                ++counter;
                mutex.unlock();
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(counter, 30000);
}

TEST(Mutex, IsNamedAfterTheProcess) {
    const Mutex mutex;
    EXPECT_EQ(mutex.name(), "Logging_" + std::to_string(processId()));
}

#ifndef _WIN32
// The semaphore is the first member; its count lies at its beginning. One more than its largest count cannot be.
TEST(Mutex, ReportsAFailedUnlockOnTheOutputStream) {
    Mutex mutex;
    sem_t full;
    ASSERT_EQ(sem_init(&full, 0, SEM_VALUE_MAX), 0);
    std::memcpy(static_cast<void*>(&mutex), &full, sizeof full);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_NE(mutex.unlock(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              std::string("Mutex::unlock(): **** Error unlocking semaphore '") + mutex.name() + "' by thread " +
                  std::to_string(currentThreadId()) + "'! **** errno = " + std::to_string(EOVERFLOW) +
                  ", error: " + std::strerror(EOVERFLOW) + "\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
#endif

}  // namespace
