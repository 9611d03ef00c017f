#include "workbench/host/toolkit/toolkit_call.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <utility>

#include "workbench/host/windows/ui_loop.h"

namespace workbench {
namespace {

std::atomic<int> wrongThread{0};

}  // namespace

ToolkitCalls& toolkitCalls() {
    static ToolkitCalls calls;
    return calls;
}

std::optional<ProError> ToolkitCalls::enter(const char* function) {
    if (GetCurrentThreadId() != uiThreadId()) {
        ++wrongThread;
        std::fprintf(stderr, "creo_host: %s was called by a thread other than the user-interface thread.\n", function);
        return PRO_TK_GENERAL_ERROR;
    }
    ++mCalls[function];
    if (const auto action = mActions.extract(function)) action.mapped()();
    const auto found = mFailures.find(function);
    if (found == mFailures.end() || found->second.count == 0) return std::nullopt;
    if (found->second.count > 0) --found->second.count;
    return found->second.code;
}

void ToolkitCalls::fail(const std::string& function, ProError code, int count) { mFailures[function] = {code, count}; }

void ToolkitCalls::during(const std::string& function, std::function<void()> action) {
    mActions[function] = std::move(action);
}

bool ToolkitCalls::isKnown(const std::string& function) {
    return GetProcAddress(GetModuleHandleW(nullptr), function.c_str()) != nullptr;
}

int ToolkitCalls::callsOf(const std::string& function) const {
    const auto found = mCalls.find(function);
    return found == mCalls.end() ? 0 : found->second;
}

int ToolkitCalls::wrongThreadCalls() const { return wrongThread; }

}  // namespace workbench
