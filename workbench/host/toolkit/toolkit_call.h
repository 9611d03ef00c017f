// What every exported toolkit function has in common: it is counted, it can be made to fail, hang or pump messages,
// and a call from a thread other than the user-interface thread is refused.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "toolkit/pro_toolkit.h"
#include "workbench/faults/faults.h"

namespace workbench {

class ToolkitCalls {
  public:
    // Notes a call and lets it suffer what it is to suffer. Answers the result that the function must give without
    // doing anything, if there is one.
    std::optional<ProError> enter(const char* function);

    // The same for a function of Windows that the plug-in calls through the host, which can do nothing but fail. True
    // when it must. User-interface thread; from others it never fails and is not counted.
    bool refusesSystemCall(const char* function);

    // Runs the action inside the next call of the function, as when the toolkit dispatches messages there.
    void during(const std::string& function, std::function<void()> action);
    void forgetActions() { mActions.clear(); }

    // Whether the plug-in can call a function of that name in the host.
    static bool isKnown(const std::string& function);

    Faults& faults() { return mFaults; }
    int callsOf(const std::string& function) const { return mFaults.callsOf(function); }
    int wrongThreadCalls() const;

    // Whether a toolkit function is running: what the host is asked meanwhile comes from inside the plug-in's work.
    bool isInCall() const { return mDepth > 0; }

    // One call, from its beginning to its end.
    class Scope {
      public:
        explicit Scope(ToolkitCalls& calls);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        bool isOnUiThread() const { return mIsOnUiThread; }

      private:
        ToolkitCalls& mCalls;
        const bool mIsOnUiThread;
    };

  private:
    Faults mFaults;
    std::map<std::string, std::function<void()>> mActions;
    int mDepth = 0;
};

ToolkitCalls& toolkitCalls();

template <typename Body>
ProError toolkitCall(const char* function, Body&& body) {
    const ToolkitCalls::Scope scope(toolkitCalls());
    if (const auto forced = toolkitCalls().enter(function)) return *forced;
    return body();
}

// For a function that gives something back: it does so also when it is told to fail, since a caller that is told so
// can do no more about it.
template <typename Body>
ProError releasingCall(const char* function, Body&& body) {
    const ToolkitCalls::Scope scope(toolkitCalls());
    const auto forced = toolkitCalls().enter(function);
    if (!scope.isOnUiThread()) return *forced;
    const ProError result = body();
    return forced.value_or(result);
}

}  // namespace workbench
