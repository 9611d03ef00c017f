// The add-in object and the two functions that Creo calls.
#pragma once

#include <pthread.h>

#include <atomic>

#include "common_sources/hand_over.h"
#include "common_sources/legacy_com1.h"
#include "common_sources/settings.h"

class CreoProxy;
class DaemonProxy;

// Owns all parts of the plug-in and carries the hand-over between its two sides. Created and destroyed on Creo's
// thread.
class CObAddin {
  public:
    // Reads the settings, configures the logs, creates the Creo side and the device side and starts the watchdog.
    // Ends the whole process with exit code -1 when one of the two sides cannot be created.
    CObAddin();

    // Stops the threads (up to one watchdog pause plus one connection attempt) and undoes all that construction did.
    ~CObAddin();

    CObAddin(const CObAddin&) = delete;
    CObAddin& operator=(const CObAddin&) = delete;

    Settings settings;  // first built, last destroyed
    HandOver handOver;
    LegacyCom1 legacyCom1;
    CreoProxy* mCreoProxyP = nullptr;
    DaemonProxy* mDaemonProxyP = nullptr;

  private:
    void configureLogging();
    void startWatchdog();
    static void* watchdogEntry(void* addin);
    void watchConnection();

    pthread_t mWatchdog{};  // never joined; waited for by mIsWatchdogRunning
    std::atomic<bool> mIsWatchdogRunning{false};
};

// The one add-in object; null before user_initialize and after user_terminate.
extern CObAddin* gAddin;

extern "C" {
// Called by Creo after loading and before unloading the plug-in. Starting always answers 0.
int user_initialize();
void user_terminate();
}
