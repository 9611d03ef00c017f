// The cap on the keyboard: keys that push the device's cap while the main window has the focus.
#pragma once

#include <memory>

#include <windows.h>

namespace workbench {

inline constexpr const char* CAP_KEYS =
    "Left/Right: tx   Up/Down: ty   PgUp/PgDn: tz   with Ctrl: rx (Up/Down), ry (Left/Right), rz (PgUp/PgDn)";

// Sends what the keys push to the daemon's control pipe, from a thread of its own: a released key must count at once,
// also while the user-interface thread is busy moving components. Without a daemon nothing happens.
class CapKeys {
  public:
    CapKeys();
    ~CapKeys();  // releases the cap
    CapKeys(const CapKeys&) = delete;
    CapKeys& operator=(const CapKeys&) = delete;

    // True when the message is that of a cap key and so nobody else's. User-interface thread.
    bool filter(const MSG& message) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace workbench
