// Reads the device on a thread of its own, as the plug-in does, and keeps what came.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

namespace probe {

class DeviceReader {
  public:
    DeviceReader();
    ~DeviceReader();  // waits a little for the thread; one that hangs in the driver is left behind
    DeviceReader(const DeviceReader&) = delete;
    DeviceReader& operator=(const DeviceReader&) = delete;

    using Axes = std::array<int, 6>;  // tx ty tz rx ry rz
    Axes axes() const;                // the latest
    Axes peaks() const;               // since resetPeaks(), with their signs
    void resetPeaks();
    std::set<std::int32_t> events() const;  // all codes that came
    // What the first reads took together, in milliseconds; negative while they go on.
    static constexpr int kTimedReads = 30;
    long long readsMs() const;

  private:
    struct Shared;
    static void read(Shared& shared);

    std::shared_ptr<Shared> mShared;
    std::thread mThread;
};

}  // namespace probe
