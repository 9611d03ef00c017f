#include "OB_Daemon/src/mutex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "OB_Daemon/src/thread_id.h"
#include "tests/substitutes/system.h"
#include "tests/unit/scratch.h"

namespace {

using substitute::Call;

TEST(Mutex, SecondLockBlocksUntilAnotherThreadReleases) {
    Mutex mutex;
    ASSERT_EQ(mutex.lock(), 0);
    EXPECT_FALSE(mutex.tryLock());
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
    EXPECT_TRUE(mutex.tryLock());
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

TEST(Mutex, ReportsEachFailedCallOnAStandardStream) {
    const std::string id = std::to_string(currentThreadId());
    const std::string name = "'Logging_" + std::to_string(processId()) + "'";
    const std::string error = "errno = " + std::to_string(substitute::kCallError) +
                              ", error: " + std::strerror(substitute::kCallError) + "\n";
    struct Case {
        Call call;
        std::string errorStream, outputStream;
    };
    const Case cases[] = {
        {Call::semInit, "Mutex::Mutex(): **** Error initializing semaphore by thread " + id + "! **** " + error, ""},
        {Call::semWait, "Mutex::lock(): **** Error locking semaphore " + name + " by thread " + id + "! **** " + error,
         ""},
        {Call::semPost, "",
         "Mutex::unlock(): **** Error unlocking semaphore " + name + " by thread " + id + "'! **** " + error},
        {Call::semDestroy,
         "Mutex::~Mutex(): Semaphore " + name + " (OS X ID not available) of thread " + id +
             " could not be destroyed!" + error,
         ""},
    };
    for (const Case& c : cases) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        {
            const substitute::NthFails fails(c.call, 1);
            Mutex mutex;
            const bool isLocked = mutex.lock() == 0;
            EXPECT_EQ(isLocked, c.call != Call::semWait);
            EXPECT_EQ(isLocked && mutex.unlock() == 0, isLocked && c.call != Call::semPost);
        }
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.errorStream);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.outputStream);
    }
}

}  // namespace
