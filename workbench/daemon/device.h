// The device and what the daemon keeps of it: the cap's deflection, the settings, and for each connected application
// the events that it has not read yet. The driver library's operations work on it from one side, the control commands
// from the other; any thread may call any function. A failure throws std::runtime_error with the reason.
#pragma once

#include <array>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "driver/obk_ctrlr.h"
#include "workbench/driver/protocol.h"
#include "workbench/faults/faults.h"
#include "workbench/pipes/overlapped.h"

namespace workbench {

using Axes = std::array<std::int16_t, kAxisCount>;  // tx ty tz rx ry rz
using Extras = std::array<std::int32_t, 2>;

inline constexpr std::int32_t kNoEvent = -1;

struct Event {
    std::int32_t code = kNoEvent;
    bool isFailing = false;  // delivered by a read with a non-zero status
};

struct Reading {
    bool isHeld = false;  // nothing else is valid
    Axes axes{};
    Extras extras{};
    Event event;
};

struct AdvancedSettings {
    std::int32_t rotationMode = 0;
    std::uint8_t contextFlag = 0;
};

// What an application reported as its mode.
struct ModeReport {
    std::string application;
    std::string mode;
};

// A connected application.
struct Application {
    std::uint32_t processId = 0;
    std::string name;
    std::string mode;  // empty = it has told none
};

class Device {
  public:
    Device();

    // ---- for the driver library; `session` is what connect answered ----

    int connect(std::uint32_t processId, const std::string& application);
    void disconnect(int session);
    // Waits for data, kReadWaitMs at most: an event at once, the deflected cap every 10 ms, its release once.
    Reading read(int session);
    void requireSession(int session);
    std::string deviceName(int index);
    void setLegacy(std::int32_t value);     // LegacyCOM1: whether the host's own device support gets the motion
    void setOwnLegacy(std::int32_t value);  // the same, by whoever owns the device
    void setDllLog(const std::string& flags);
    void reportMode(int session, const ModeReport& report);
    // Counts a call of the operation, and answers what it is to suffer. Reads that are held do not count.
    CallFault countCall(Operation operation);

    // ---- for the control commands ----

    // Is told, as control commands and in their order, what changes for applications. Called with the device locked;
    // it must not call back. To be set before anything else happens.
    void setListener(std::function<void(const std::string& command)> listener) { mTold = std::move(listener); }

    void setAxes(const Axes& axes);
    void setExtras(const Extras& extras);
    void pushEvent(const Event& event);  // to all connected applications; throws when there is none
    void setAdvancedSettings(const AdvancedSettings& settings);
    void setDeviceCount(int count);
    void setFaults(const std::string& verb, const Faults::Words& words);  // see Faults::request
    void setHold(bool isHeld);                                            // reads hang until released or disconnected

    // ---- for both ----

    AdvancedSettings advancedSettings();
    int deviceCount();
    std::int32_t legacy();
    Axes legacyAxes();  // what the legacy channel carries: zeros while it is off
    std::int32_t ownLegacy();
    Axes axes();
    std::string currentMode();
    std::vector<Application> applications();
    std::vector<ModeReport> modeReports();
    int clientCount();
    std::vector<std::string> status();  // lines "key=value"

  private:
    using Clock = std::chrono::steady_clock;

    struct Session {
        Handle process;  // signalled when the application ended without a farewell
        Application application;
        std::deque<Event> events;
        Axes delivered{};              // axes of the last read
        Clock::time_point nextMotion;  // no motion is delivered before
    };

    using Sessions = std::map<int, Session>;

    // All of these expect mMutex to be held.
    Sessions::iterator findSession(int session);
    bool hasData(const Session& session) const;
    int callsOf(Operation operation) const;
    std::string refusedCalls() const;
    void forgetEnded();
    void queueEvent(const Event& event);
    void tell(const std::string& command) const;

    std::mutex mMutex;  // guards everything below
    std::condition_variable mChanged;
    Sessions mSessions;
    int mNextSession;  // begins differently in each daemon, so that an earlier one's number is not mistaken
    std::string mApplication;
    Axes mAxes{};
    Extras mExtras{};
    AdvancedSettings mSettings;
    std::int32_t mLegacy = 1;
    std::int32_t mLegacyOwn = 1;  // what it is without applications
    int mDeviceCount = 1;
    bool mIsHeld = false;
    int mConnects = 0;
    std::string mDllLog;
    std::vector<ModeReport> mModes;
    Faults mFaults;
    std::function<void(const std::string&)> mTold;
};

}  // namespace workbench
