#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <string>

struct HandOver;

// The plug-in's side of the link to the device daemon. It reads the device on a thread of its own, hands motion and
// events over, and tells the daemon Creo's mode. Driver failures are logged and absorbed.
class DaemonProxy {
  public:
    // Connects (a failure is only logged, the watchdog tries again) and starts the reading thread. Creo's thread.
    // `handOver` outlives this object.
    explicit DaemonProxy(HandOver& handOver);

    // Begins the plug-in's end unless that has begun, disconnects, so that a blocked read returns, and waits until the
    // reading thread has ended. Creo's thread.
    ~DaemonProxy();

    DaemonProxy(const DaemonProxy&) = delete;
    DaemonProxy& operator=(const DaemonProxy&) = delete;

    // Whether the daemon answers; disconnects when it does not. Watchdog.
    bool checkConnection();

    // Connects, logs the attached devices and reads the rotation mode. Creo's thread (constructor), then watchdog.
    bool connect();

    // Reads rotation mode and context flag of the device's settings and hands them over; a failed read resets them.
    // Whoever connects, and the reading thread.
    void retrieveRotMode();

  private:
    static void* readingEntry(void* proxy);
    void readMouseEvents();
    void showProgress();
    void handleEvent(std::int32_t event);
    void sendMode();

    HandOver& mHandOver;
    pthread_t mReadingThread{};  // never joined; waited for by mIsReadingThreadRunning
    std::atomic<bool> mIsReadingThreadRunning{false};
    std::atomic<bool> mIsConnected{false};
    std::atomic<bool> mIsModeToResend{false};
    std::string mLastModeSent;  // reading thread only
};
