// The add-in object and the two functions that Creo calls.
#pragma once

#include <chrono>
#include <memory>

#include "common_sources/driver_thread.h"
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

    // Stops the threads and undoes all that construction did. A thread that hangs in the driver library is left
    // behind after ten seconds.
    ~CObAddin();

    CObAddin(const CObAddin&) = delete;
    CObAddin& operator=(const CObAddin&) = delete;

    static inline std::chrono::milliseconds watchdogPause{2000};  // between two checks; shortened by tests

    Settings settings;  // first built, last destroyed
    const std::shared_ptr<HandOver> handOver = std::make_shared<HandOver>();
    LegacyCom1 legacyCom1{*handOver};
    std::unique_ptr<CreoProxy> mCreoProxyP;
    std::unique_ptr<DaemonProxy> mDaemonProxyP;

  private:
    void configureLogging();
    void createSides();
    void startWatchdog();
    void stop();

    DriverThread mWatchdog;
};

// The one add-in object; null before user_initialize and after user_terminate.
extern CObAddin* gAddin;

extern "C" {
// Called by Creo after loading and before unloading the plug-in, and perhaps while one of them or a callback of ours
// is running: the last call wins, and is done as soon as can be. Starting always answers 0.
int user_initialize();
void user_terminate();
}
