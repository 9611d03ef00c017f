// What every exported toolkit function has in common: it is counted, it can be made to fail, and a call from a thread
// other than the user-interface thread is refused.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "toolkit/pro_toolkit.h"

namespace workbench {

class ToolkitCalls {
  public:
    // Notes a call. Answers the result that the function must give without doing anything, if there is one.
    std::optional<ProError> enter(const char* function);

    // The next `count` calls of the function answer the code; a negative count means all of them, 0 none.
    void fail(const std::string& function, ProError code, int count);

    // Runs the action inside the next call of the function, as when the toolkit dispatches messages there.
    void during(const std::string& function, std::function<void()> action);

    // Whether the host exports a function of that name.
    static bool isKnown(const std::string& function);

    int callsOf(const std::string& function) const;
    int wrongThreadCalls() const;

  private:
    struct Failure {
        ProError code;
        int count;
    };
    std::map<std::string, int> mCalls;
    std::map<std::string, Failure> mFailures;
    std::map<std::string, std::function<void()>> mActions;
};

ToolkitCalls& toolkitCalls();

template <typename Body>
ProError toolkitCall(const char* function, Body&& body) {
    if (const auto forced = toolkitCalls().enter(function)) return *forced;
    return body();
}

}  // namespace workbench
