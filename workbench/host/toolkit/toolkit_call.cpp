#include "workbench/host/toolkit/toolkit_call.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <iterator>
#include <utility>

#include "workbench/host/windows/ui_loop.h"

namespace workbench {
namespace {

std::atomic<int> wrongThread{0};

constexpr const char* SYSTEM_CALLS[] = {"SetTimer", "_beginthreadex"};

bool isUiThread() { return GetCurrentThreadId() == uiThreadId(); }

}  // namespace

ToolkitCalls& toolkitCalls() {
    static ToolkitCalls calls;
    return calls;
}

ToolkitCalls::Scope::Scope(ToolkitCalls& calls) : mCalls(calls), mIsOnUiThread(isUiThread()) {
    if (mIsOnUiThread) ++mCalls.mDepth;
}

ToolkitCalls::Scope::~Scope() {
    if (mIsOnUiThread) --mCalls.mDepth;
}

std::optional<ProError> ToolkitCalls::enter(const char* function) {
    if (!isUiThread()) {
        ++wrongThread;
        std::fprintf(stderr, "creo_host: %s was called by a thread other than the user-interface thread.\n", function);
        return PRO_TK_GENERAL_ERROR;
    }
    const CallFault fault = mFaults.enter(function);
    if (const auto action = mActions.extract(function)) action.mapped()();
    if (fault.hangMs > 0) Sleep(static_cast<DWORD>(fault.hangMs));
    if (fault.isPumping) pumpUiMessages();
    return fault.code;
}

bool ToolkitCalls::refusesSystemCall(const char* function) {
    return isUiThread() && mFaults.enter(function).code.has_value();
}

void ToolkitCalls::during(const std::string& function, std::function<void()> action) {
    mActions[function] = std::move(action);
}

bool ToolkitCalls::isKnown(const std::string& function) {
    return std::find(std::begin(SYSTEM_CALLS), std::end(SYSTEM_CALLS), function) != std::end(SYSTEM_CALLS) ||
           GetProcAddress(GetModuleHandleW(nullptr), function.c_str()) != nullptr;
}

int ToolkitCalls::wrongThreadCalls() const { return wrongThread; }

}  // namespace workbench
