#include "common_sources/driver_thread.h"

#include <atomic>
#include <new>
#include <thread>
#include <utility>

#include "common_sources/edge.h"

namespace {

constexpr char kLogClass[] = "DriverThread";

constexpr std::chrono::milliseconds kPoll{2};
constexpr int kNoAnswer = -1;

}  // namespace

struct DriverThread::Run {
    std::function<void()> body;
    std::atomic<bool> isRunning{true};  // from before the thread starts: nobody who waits may overtake its start
};

bool DriverThread::start(std::function<void()> body) {
    try {
        auto run = std::make_shared<Run>();
        run->body = std::move(body);
        auto ofThread = std::make_unique<std::shared_ptr<Run>>(run);
        if (pthread_create(&mThread, nullptr, &entry, ofThread.get()) != 0) return false;
        static_cast<void>(ofThread.release());
        mRun = std::move(run);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void* DriverThread::entry(void* run) {
    const std::unique_ptr<std::shared_ptr<Run>> own(static_cast<std::shared_ptr<Run>*>(run));
    atEdge({kLogClass, "entry"}, (*own)->body);
    (*own)->isRunning = false;
    return nullptr;
}

bool DriverThread::waitForEnd(const char* name) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + patience;
    while (mRun != nullptr && mRun->isRunning) {
        if (Clock::now() >= end) {
            OB_LOG(LogLevel::ERR) << "The driver library does not come back: " << name << " is left behind!";
            return false;
        }
        std::this_thread::sleep_for(kPoll);
    }
    // Joined at its last instructions, not detached: the thread library may use a detached thread's record anew while
    // it is still on them.
    if (std::exchange(mRun, nullptr) != nullptr) pthread_join(mThread, nullptr);
    return true;
}

int callPatiently(const char* name, int (*call)()) {
    try {
        const auto status = std::make_shared<std::atomic<int>>(kNoAnswer);
        DriverThread thread;
        if (thread.start([status, call] { *status = call(); })) {
            return thread.waitForEnd(name) ? status->load() : kNoAnswer;
        }
    } catch (const std::bad_alloc&) {  // as without a thread
    }
    return call();  // there is no thread to be had, so it cannot be left behind
}
