#include "tools/probe/device_reader.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>

#include "driver/obk_ctrlr.h"
#include "tools/probe/callers.h"
#include "tools/probe/crash_note.h"

namespace probe {

namespace {

constexpr std::chrono::milliseconds kPatience{2000};
constexpr std::chrono::milliseconds kPoll{10};

}  // namespace

struct DeviceReader::Shared {
    std::atomic<bool> isEnding{false};
    std::atomic<bool> hasEnded{false};
    std::atomic<long long> readsMs{-1};
    mutable std::mutex lock;  // of what follows
    Axes axes{}, peaks{};
    std::set<std::int32_t> events;
};

DeviceReader::DeviceReader()
    : mShared(std::make_shared<Shared>()), mThread([shared = mShared] {
          const CrashNote note("driver.blocks");
          atEdge(0, [&] {
              read(*shared);
              return 0;
          });
          shared->hasEnded = true;
      }) {}

DeviceReader::~DeviceReader() {
    mShared->isEnding = true;
    obDisconnect();
    for (auto waited = kPoll; !mShared->hasEnded && waited < kPatience; waited += kPoll) {
        std::this_thread::sleep_for(kPoll);
    }
    if (mShared->hasEnded) {
        mThread.join();
    } else {
        mThread.detach();
    }
}

void DeviceReader::read(Shared& shared) {
    const auto start = std::chrono::steady_clock::now();
    for (int reads = 1; !shared.isEnding; ++reads) {
        std::array<std::int16_t, 6> t{};
        std::int32_t unused1 = 0, unused2 = 0, event = -1, extra1 = 0, extra2 = 0;
        const int status =
            obReadDeviceData(0, &t[0], &t[1], &t[2], &t[3], &t[4], &t[5], &unused1, &unused2, &event, &extra1, &extra2);
        if (reads == kTimedReads) {
            shared.readsMs =
                std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
        }
        const std::lock_guard lock(shared.lock);
        if (event >= 0) shared.events.insert(event);
        if (status != 0) continue;
        for (std::size_t i = 0; i < t.size(); ++i) {
            shared.axes[i] = t[i];
            if (std::abs(t[i]) > std::abs(shared.peaks[i])) shared.peaks[i] = t[i];
        }
    }
}

DeviceReader::Axes DeviceReader::axes() const {
    const std::lock_guard lock(mShared->lock);
    return mShared->axes;
}

DeviceReader::Axes DeviceReader::peaks() const {
    const std::lock_guard lock(mShared->lock);
    return mShared->peaks;
}

void DeviceReader::resetPeaks() {
    const std::lock_guard lock(mShared->lock);
    mShared->peaks = {};
}

std::set<std::int32_t> DeviceReader::events() const {
    const std::lock_guard lock(mShared->lock);
    return mShared->events;
}

long long DeviceReader::readsMs() const { return mShared->readsMs; }

}  // namespace probe
