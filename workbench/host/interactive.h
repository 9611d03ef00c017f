// The cap on the keyboard: keys that push the device's cap while the main window has the focus.
#pragma once

#include <memory>

#include <windows.h>

namespace workbench {

inline constexpr const char* CAP_KEYS =
    "Left/Right: tx   Up/Down: ty   PgUp/PgDn: tz   with Ctrl: rx (Up/Down), ry (Left/Right), rz (PgUp/PgDn)";

// Sends what the keys push to the daemon's control pipe, on a thread of its own. Without a daemon nothing happens.
class CapKeys {
  public:
    CapKeys();
    ~CapKeys();  // releases the cap
    CapKeys(const CapKeys&) = delete;
    CapKeys& operator=(const CapKeys&) = delete;

    // True when the key belongs to the cap. User-interface thread.
    bool filter(const MSG& message);

  private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

}  // namespace workbench
