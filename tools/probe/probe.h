// The probe: owns the findings, the checkers and the window, and drives them by a timer of Creo's thread.
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "tools/probe/checker.h"
#include "tools/probe/window.h"

namespace probe {

// Created in user_initialize, destroyed in user_terminate, both on Creo's thread.
class Probe {
  public:
    Probe(const EntryArguments& arguments, const void* argumentsOnStack);
    ~Probe();
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    void tick();

  private:
    using Request = std::pair<Task, bool>;

    void setFacts();
    void runCheckers();
    void startTimer();
    std::vector<Request> takeRequests();

    Findings mFindings;
    Context mContext;
    std::vector<std::unique_ptr<Checker>> mCheckers;
    std::mutex mLock;                // of the requests, which come from the window's thread
    std::vector<Request> mRequests;  // not yet done
    std::optional<Window> mWindow;
    HWND mTimerWindow = nullptr;  // sees messages only, so that nobody takes it for one of Creo's
    bool mIsInTick = false;       // a call of Creo may dispatch messages
    int mTicks = 0;
};

}  // namespace probe
