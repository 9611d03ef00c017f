#include "workbench/host/control/device_support.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <optional>
#include <thread>

#include "workbench/host/model/host_state.h"
#include "workbench/host/windows/ui_loop.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {
namespace {

using namespace std::chrono_literals;

constexpr auto READ_PAUSE = 20ms;
constexpr auto RETRY_PAUSE = 500ms;
constexpr int ANSWER_TIME_MS = 1000;

// Effect of one reading at full deflection is about 350 times these.
constexpr double TURN_PER_UNIT = 1.2e-4;  // radians
constexpr double PAN_PER_UNIT = 0.03;     // pixels
constexpr double ZOOM_PER_UNIT = 1.0e-4;  // logarithmic

int motions = 0;

std::optional<Axes> parseAxes(const Reply& reply) {
    Axes a{};
    if (!reply.isOk || reply.lines.empty()) return std::nullopt;
    const int read =
        std::sscanf(reply.lines.front().c_str(), "%d %d %d %d %d %d", &a[0], &a[1], &a[2], &a[3], &a[4], &a[5]);
    return read == 6 ? std::optional(a) : std::nullopt;
}

}  // namespace

void moveView(const Axes& axes) {
    const auto [tx, ty, tz, rx, ry, rz] = axes;
    View& view = host().view();
    view.turn(Vec3{double(rx), double(ry), double(rz)} * TURN_PER_UNIT);
    view.pan(tx * PAN_PER_UNIT, ty * PAN_PER_UNIT);
    view.zoom(std::exp(tz * ZOOM_PER_UNIT));
    ++motions;
    host().listeners.pictureChanged();
}

int legacyMotionCount() { return motions; }

struct DeviceSupport::Impl {
    std::mutex lock;
    std::condition_variable ending;
    bool isEnding = false;
    std::atomic<bool> isMotionPending{false};  // one motion at a time waits for the user-interface thread
    std::thread thread;

    bool pause(std::chrono::milliseconds time) {  // false when the end has come
        std::unique_lock guard(lock);
        return !ending.wait_for(guard, time, [this] { return isEnding; });
    }

    void readOnce(LineClient& client) {
        const auto axes = parseAxes(client.ask("legacy-read", ANSWER_TIME_MS));
        if (!axes) return client.close();
        const bool isAtRest = std::all_of(axes->begin(), axes->end(), [](int value) { return value == 0; });
        if (isAtRest || isMotionPending.exchange(true)) return;
        // Behind painting: a view that takes long to draw must not keep timers from their turn.
        postToUiWhenIdle([this, motion = *axes] {
            isMotionPending = false;
            moveView(motion);
        });
    }

    void run() {
        LineClient client;
        const std::string pipe = pipeName("obk_control");
        while (pause(client.isOpen() ? READ_PAUSE : RETRY_PAUSE)) {
            if (client.isOpen() || client.open(pipe, 0)) readOnce(client);
        }
    }
};

DeviceSupport::DeviceSupport() : mImpl(std::make_unique<Impl>()) {
    mImpl->thread = std::thread([this] { mImpl->run(); });
}

DeviceSupport::~DeviceSupport() {
    {
        const std::lock_guard guard(mImpl->lock);
        mImpl->isEnding = true;
    }
    mImpl->ending.notify_all();
    mImpl->thread.join();
}

}  // namespace workbench
