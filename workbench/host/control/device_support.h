// The host's own support of the device, as it was before any plug-in: it reads the daemon's legacy channel and turns,
// shifts and zooms the view. While a plug-in has switched that channel off, nothing comes through it.
#pragma once

#include <array>
#include <memory>

namespace workbench {

// tx ty tz rx ry rz
using Axes = std::array<int, 6>;

// Moves the view as one reading of the axes asks. User-interface thread.
void moveView(const Axes& axes);

// Readings with motion that have moved the view so far.
int legacyMotionCount();

// Reads the channel on a thread of its own from construction to destruction. Without a daemon it quietly keeps trying.
class DeviceSupport {
  public:
    DeviceSupport();
    ~DeviceSupport();
    DeviceSupport(const DeviceSupport&) = delete;
    DeviceSupport& operator=(const DeviceSupport&) = delete;

  private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace workbench
