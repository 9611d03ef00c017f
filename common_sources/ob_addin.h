// The add-in object and the two functions that Creo calls.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <string_view>

#include "common_sources/settings.h"

class CreoProxy;
class DaemonProxy;

// Latest motion of the cap: six axes in the driver's order and two extras that nobody interprets. Each value is
// written by the reading thread and read on Creo's thread; a tick may see axes of two reads.
struct MotionSlots {
    std::atomic<std::int16_t> tx{0}, ty{0}, tz{0}, rx{0}, ry{0}, rz{0};
    std::atomic<std::int32_t> extra1{0}, extra2{0};
};

// Owns all parts of the plug-in and carries the hand-over slots between its threads: the reading thread writes, Creo's
// thread reads; the latest value wins. Created and destroyed on Creo's thread.
class CObAddin {
  public:
    static constexpr std::int32_t kNoFunction = -1;
    static constexpr std::int32_t kNoEvent = 0;

    // Reads the settings, configures the logs, creates the Creo side and the device side and starts the watchdog.
    // Ends the whole process with exit code -1 when one of the two sides cannot be created.
    CObAddin();

    // Stops the threads (up to one watchdog pause plus one connection attempt) and undoes all that construction did.
    ~CObAddin();

    CObAddin(const CObAddin&) = delete;
    CObAddin& operator=(const CObAddin&) = delete;

    // For the reading thread: name of Creo's current mode, and the decimal-coded rotation mode of the device's
    // settings (units = mode, where 4 stands for mode 2 with the second flag; tens = first, hundreds = second flag).
    std::string_view modeName() const;
    void setRotationMode(std::int32_t code);

    Settings settings;  // first built, last destroyed
    CreoProxy* mCreoProxyP = nullptr;
    DaemonProxy* mDaemonProxyP = nullptr;

    MotionSlots motion;
    std::atomic<std::int32_t> applFunction{kNoFunction};  // index of the device-button function to run
    std::atomic<std::int32_t> specialEvent{kNoEvent};     // code of a pending special event

  private:
    void configureLogging();
    void startWatchdog();
    static void* watchdogEntry(void* addin);
    void watchConnection();

    pthread_t mWatchdog{};  // never joined; waited for by mIsWatchdogRunning
    std::atomic<bool> mIsRunning{false};
    std::atomic<bool> mIsWatchdogRunning{false};
};

// The one add-in object; null before user_initialize and after user_terminate.
extern CObAddin* gAddin;

extern "C" {
// Called by Creo after loading and before unloading the plug-in. Starting always answers 0.
int user_initialize();
void user_terminate();
}
