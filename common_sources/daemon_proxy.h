#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "common_sources/driver_thread.h"

struct HandOver;

// The link to the device daemon: what reading thread and watchdog work on. Each of them holds it in shared ownership,
// so it is still there for one that returns from a driver call after it was left behind. Driver failures are logged and
// absorbed.
class DaemonLink {
  public:
    explicit DaemonLink(std::shared_ptr<HandOver> handOver);

    // Whether the daemon answers; disconnects when it does not. Watchdog.
    bool checkConnection();

    // Connects, logs the attached devices and reads the rotation mode. Creo's thread at first, then watchdog.
    bool connect();

    // Reads rotation mode and context flag of the device's settings and hands them over; a failed read resets them.
    // Whoever connects, and the reading thread.
    void retrieveRotMode();

    // Body of the reading thread: reads the device, hands motion and events over and tells the daemon Creo's mode,
    // until the plug-in ends.
    void readMouseEvents();

  private:
    bool logDevices(std::int32_t count);
    void showProgress();
    void readOnce();
    void handleEvent(std::int32_t event);
    void sendMode();

    const std::shared_ptr<HandOver> mHandOver;
    std::atomic<bool> mIsModeToResend{false};
    std::string mLastModeSent;  // reading thread only
};

// The plug-in's side of the link: begins and ends it.
class DaemonProxy {
  public:
    // Connects (a failure is only logged, the watchdog tries again) and starts the reading thread. Creo's thread.
    explicit DaemonProxy(std::shared_ptr<HandOver> handOver);

    // Begins the plug-in's end unless that has begun, disconnects, so that a blocked read returns, and waits until the
    // reading thread has ended, or hangs. Creo's thread.
    ~DaemonProxy();

    DaemonProxy(const DaemonProxy&) = delete;
    DaemonProxy& operator=(const DaemonProxy&) = delete;

    const std::shared_ptr<DaemonLink>& link() const { return mLink; }

  private:
    const std::shared_ptr<HandOver> mHandOver;
    const std::shared_ptr<DaemonLink> mLink;
    DriverThread mReadingThread;
};
