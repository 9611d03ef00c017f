#pragma once

#include <cstdint>

// The daemon's LegacyCOM1 channel, through which Creo's own device support is fed. It is taken away while the plug-in
// uses the motion itself, and given back as it was: saved once, restored once. Knows nothing but the driver. Creo's
// thread.
class LegacyCom1 {
  public:
    // Takes the motion from Creo's own device support, and gives it back. Each asks the driver once a switch, however
    // often it is called. True when the call changed something; a failure is logged, and switching on again is tried
    // again by the next call.
    bool stopLegacyCom1();
    bool resetLegacyCom1();

  private:
    static constexpr std::int32_t kNothingSaved = -1;

    std::int32_t mSavedLegacyCom1 = kNothingSaved;  // value before the switch-off
};
