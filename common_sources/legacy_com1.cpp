#include "common_sources/legacy_com1.h"

#include <chrono>
#include <thread>

#include "OB_Daemon/src/logging.h"
#include "common_sources/driver_thread.h"
#include "common_sources/hand_over.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "LegacyCom1";

constexpr std::int32_t kOn = 1;
constexpr std::chrono::seconds kLastTries{1};
constexpr std::chrono::milliseconds kPauseBetweenTries{200};

int switchOn() {
    std::int32_t on = kOn;
    return obSetOption(kOptionLegacyCom1, &on);
}

}  // namespace

bool LegacyCom1::stopLegacyCom1() {
    forgetLostDaemon();
    if (mSavedLegacyCom1 != kNothingSaved) return false;
    std::int32_t value = 0;
    if (obGetOption(kOptionLegacyCom1, &value) != 0) return false;
    mSavedLegacyCom1 = value;
    if (mSavedLegacyCom1 != kOn) return true;
    OB_LOG(LogLevel::DBG) << "Switch LegacyCOM1 off";
    std::int32_t off = 0;
    if (obSetOption(kOptionLegacyCom1, &off) == 0) return true;
    OB_LOG(LogLevel::ERR) << "Cannot switch LegacyCOM1 off!";
    return false;
}

bool LegacyCom1::resetLegacyCom1() {
    forgetLostDaemon();
    return reset(&switchOn);
}

bool LegacyCom1::reset(int (*call)()) {
    if (mSavedLegacyCom1 < 0) return false;
    if (mSavedLegacyCom1 != kOn) {
        mSavedLegacyCom1 = kNothingSaved;
        return true;
    }
    OB_LOG_IN(LogLevel::DBG, "resetLegacyCom1") << "Switch LegacyCOM1 on again";
    if (call() != 0) {
        OB_LOG_IN(LogLevel::ERR, "resetLegacyCom1") << "Cannot switch LegacyCOM1 on again!";
        return false;
    }
    mSavedLegacyCom1 = kNothingSaved;
    return true;
}

void LegacyCom1::giveBack() {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + kLastTries;
    for (;;) {
        reset([] { return callPatiently("obSetOption", &switchOn); });
        if (mSavedLegacyCom1 < 0) return;
        if (Clock::now() + kPauseBetweenTries > end) break;
        std::this_thread::sleep_for(kPauseBetweenTries);
    }
    OB_LOG(LogLevel::ERR) << "LegacyCOM1 stays off: Creo's own device support gets no motion until the device's "
                             "daemon is started anew!";
}

void LegacyCom1::forgetLostDaemon() {
    const std::uint16_t losses = mHandOver.motion.losses;
    if (!mHandOver.isConnected || losses == mLosses) return;
    if (mSavedLegacyCom1 == kOn) {
        // The daemon may be the same: its channel is off then, because of us. Who cannot be asked is so by the next
        // tick.
        std::int32_t value = 0;
        if (obGetOption(kOptionLegacyCom1, &value) != 0) return;
        if (value == kOn) mSavedLegacyCom1 = kNothingSaved;
    } else {
        mSavedLegacyCom1 = kNothingSaved;
    }
    mLosses = losses;
}
