#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <string>

class CObAddin;
class ProgressWindow;

// The plug-in's side of the link to the device daemon. It reads the device on a thread of its own and hands motion
// and events over through the add-in's slots, tells the daemon Creo's mode, and switches the daemon's LegacyCOM1
// channel, through which Creo's own device support is fed. Driver failures are logged and absorbed.
class DaemonProxy {
  public:
    // Connects (a failure is only logged, the watchdog tries again) and starts the reading thread. Creo's thread.
    explicit DaemonProxy(CObAddin* owner);

    // Disconnects, so that a blocked read returns, and waits until the reading thread has ended. Creo's thread.
    ~DaemonProxy();

    DaemonProxy(const DaemonProxy&) = delete;
    DaemonProxy& operator=(const DaemonProxy&) = delete;

    // Whether the daemon answers; disconnects when it does not. Watchdog.
    bool checkConnection();

    // Connects, logs the attached devices and reads the rotation mode. Creo's thread (constructor), then watchdog.
    bool connect();

    // Reads rotation mode and context flag of the device's settings into the Creo side; a failed read resets them.
    // Whoever connects, and the reading thread.
    void retrieveRotMode();

    // Takes the motion from Creo's own device support, and gives it back as it was. Each asks the driver once a
    // switch, however often it is called. True when the call changed something. Creo's thread.
    bool stopLegacyCom1();
    bool resetLegacyCom1();

    // Makes the reading thread leave its loop after the current read. Creo's thread.
    void stopReading() { mIsRunning = false; }

  private:
    static constexpr std::int32_t kNothingSaved = -1;

    static void* readingEntry(void* proxy);
    void readMouseEvents();
    void showProgress();
    void handleEvent(std::int32_t event);
    void sendMode();

    CObAddin* mOwner;
    pthread_t mReadingThread{};  // never joined; waited for by mIsReadingThreadRunning
    std::atomic<bool> mIsRunning{true};
    std::atomic<bool> mIsReadingThreadRunning{false};
    std::atomic<bool> mIsConnected{false};
    std::atomic<bool> mIsModeToResend{false};
    std::int32_t mSavedLegacyCom1 = kNothingSaved;  // value before the switch-off; Creo's thread only
    std::string mLastModeSent;                      // reading thread only
};
