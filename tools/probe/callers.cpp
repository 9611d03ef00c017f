#include "tools/probe/callers.h"

#include <windows.h>

#include <array>
#include <atomic>

namespace probe {

namespace {

constexpr std::uintptr_t kAlignment = sizeof(void*) == 8 ? 16 : 4;

std::atomic<Findings*> watcher{nullptr};
std::atomic<DWORD> creoThread{0};
std::array<std::atomic<int>, static_cast<std::size_t>(Caller::count)> counts{};

}  // namespace

void watchCallers(Findings& findings) {
    creoThread = GetCurrentThreadId();
    watcher = &findings;
}

void stopWatchingCallers() { watcher = nullptr; }

void noteCaller(Caller caller, const void* arguments) {
    ++counts[static_cast<std::size_t>(caller)];
    Findings* const findings = watcher;
    if (findings == nullptr) return;
    const auto address = reinterpret_cast<std::uintptr_t>(arguments);
    findings->tell("entry.stack", address % kAlignment == 0,
                   "the arguments lie at an address that leaves " + std::to_string(address % 16) + " of 16");
    if (caller == Caller::entry) return;
    const bool isCreos = GetCurrentThreadId() == creoThread;
    findings->tell("callbacks.thread", isCreos, isCreos ? "the thread of user_initialize" : "another thread");
}

int callsOf(Caller caller) { return counts[static_cast<std::size_t>(caller)]; }

}  // namespace probe
