#pragma once

#include <cstdint>

struct HandOver;

// The daemon's LegacyCOM1 channel, through which Creo's own device support is fed. It is taken away while the plug-in
// uses the motion itself, and given back as it was: saved once, restored once. What was saved from a daemon that was
// lost is forgotten when there is a connection again. Creo's thread.
class LegacyCom1 {
  public:
    // `handOver` outlives this object.
    explicit LegacyCom1(const HandOver& handOver) : mHandOver(handOver) {}

    // Takes the motion from Creo's own device support, and gives it back. Each asks the driver once a switch, however
    // often it is called. True when the call changed something; a failure is logged, and switching on again is tried
    // again by the next call.
    bool stopLegacyCom1();
    bool resetLegacyCom1();

    // For the plug-in's end: gives it back for good, and tries that for a second.
    void giveBack();

  private:
    static constexpr std::int32_t kNothingSaved = -1;

    bool reset(int (*call)());
    void forgetLostDaemon();

    const HandOver& mHandOver;
    std::int32_t mSavedLegacyCom1 = kNothingSaved;  // value before the switch-off
    std::uint16_t mLosses = 0;                      // connections lost when that was last looked at
};
