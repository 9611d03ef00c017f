#include "tests/substitutes/system.h"

#include <semaphore.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <new>
#include <optional>
#include <string>

namespace {

struct Kind {
    substitute::Call call;
    const char* name;
};
constexpr Kind kKinds[] = {
    {substitute::Call::allocation, "allocation"},  {substitute::Call::semInit, "sem_init"},
    {substitute::Call::semDestroy, "sem_destroy"}, {substitute::Call::semWait, "sem_wait"},
    {substitute::Call::semPost, "sem_post"},       {substitute::Call::link, "link"},
    {substitute::Call::remove, "remove"},          {substitute::Call::rename, "rename"},
};

std::atomic<substitute::Call> failingCall{};
std::atomic<long> callsLeft{0};  // the failing one included; 0 = none fails (any more)
std::atomic<long> allocationCount{0};
std::atomic<int> heldCount{0};
std::atomic<std::chrono::steady_clock::rep> clockOffset{0};
thread_local std::optional<std::chrono::steady_clock::time_point> standingTime;

bool isToFail(substitute::Call call) {
    if (callsLeft == 0 || failingCall != call || --callsLeft != 0) return false;
    errno = substitute::kCallError;
    return true;
}

// Counted where the system tells it.
std::ptrdiff_t openFiles() {
#ifdef __linux__
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
#else
    return 0;
#endif
}

}  // namespace

namespace substitute {

NthFails::NthFails(Call call, long n) {
    failingCall = call;
    callsLeft = n;
}

NthFails::~NthFails() { callsLeft = 0; }

bool NthFails::hasFailed() const { return callsLeft == 0; }

std::vector<std::string> failEachCall(const std::function<void()>& operation,
                                      const std::function<std::string(const std::string& which)>& check) {
    std::vector<std::string> faults;
    const int held = heldCount;
    const auto open = openFiles();
    int failed = 0;
    for (const auto& [call, name] : kKinds) {
        bool hasFailed = true;
        for (long n = 1; hasFailed; ++n) {
            try {
                const NthFails fails(call, n);
                operation();
                hasFailed = fails.hasFailed();
            } catch (const std::bad_alloc&) {
                hasFailed = true;
            }
            failed += hasFailed;
            const std::string which = name + (" " + std::to_string(n));
            if (heldCount != held) {
                std::cerr << "The lock is wrong after " << which << std::endl;  // and may hold up whatever comes
                return {"lock after " + which};
            }
            if (const std::string fault = check(which); !fault.empty()) faults.push_back(fault + " after " + which);
            if (openFiles() != open) faults.push_back("open file after " + which);
        }
    }
    if (failed < 2) faults.emplace_back("nothing to fail");
    return faults;
}

long allocations() { return allocationCount; }

void advanceClock(std::chrono::steady_clock::duration time) { clockOffset += time.count(); }

ClockStands::ClockStands() { standingTime = std::chrono::steady_clock::now(); }
ClockStands::~ClockStands() { standingTime.reset(); }

}  // namespace substitute

using substitute::Call;

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++allocationCount;
    return isToFail(Call::allocation) ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* operator new(std::size_t size) {
    if (void* memory = operator new(size, std::nothrow)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

// The linker sends the plug-in's calls here, and gives the functions their names.
// NOLINTBEGIN(bugprone-reserved-identifier)
#define REAL_AND_WRAP(result, name, ...) \
    result __real_##name(__VA_ARGS__);   \
    result __wrap_##name(__VA_ARGS__)

extern "C" {
REAL_AND_WRAP(int, sem_init, sem_t* semaphore, int isShared, unsigned value) {
    const int status = __real_sem_init(semaphore, isShared, value);
    return isToFail(Call::semInit) ? -1 : status;
}

REAL_AND_WRAP(int, sem_destroy, sem_t* semaphore) {
    const int status = __real_sem_destroy(semaphore);
    return isToFail(Call::semDestroy) ? -1 : status;
}

REAL_AND_WRAP(int, sem_wait, sem_t* semaphore) {
    if (isToFail(Call::semWait)) return -1;
    const int status = __real_sem_wait(semaphore);
    if (status == 0) ++heldCount;
    return status;
}

REAL_AND_WRAP(int, sem_post, sem_t* semaphore) {
    --heldCount;
    const int status = __real_sem_post(semaphore);
    return isToFail(Call::semPost) ? -1 : status;
}

REAL_AND_WRAP(int, remove, const char* path) { return isToFail(Call::remove) ? -1 : __real_remove(path); }

REAL_AND_WRAP(int, rename, const char* from, const char* to) {
    return isToFail(Call::rename) ? -1 : __real_rename(from, to);
}

#ifndef _WIN32
REAL_AND_WRAP(int, link, const char* from, const char* to) { return isToFail(Call::link) ? -1 : __real_link(from, to); }
#endif

using Time = std::chrono::steady_clock::time_point;
Time __real__ZNSt6chrono3_V212steady_clock3nowEv();
Time __wrap__ZNSt6chrono3_V212steady_clock3nowEv() {
    if (standingTime) return *standingTime;
    return __real__ZNSt6chrono3_V212steady_clock3nowEv() + std::chrono::steady_clock::duration(clockOffset.load());
}
}
// NOLINTEND(bugprone-reserved-identifier)
