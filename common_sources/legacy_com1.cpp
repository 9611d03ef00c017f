#include "common_sources/legacy_com1.h"

#include "OB_Daemon/src/logging.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "LegacyCom1";

constexpr std::int32_t kOn = 1;

}  // namespace

bool LegacyCom1::stopLegacyCom1() {
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
    if (mSavedLegacyCom1 < 0) return false;
    if (mSavedLegacyCom1 != kOn) {
        mSavedLegacyCom1 = kNothingSaved;
        return true;
    }
    OB_LOG(LogLevel::DBG) << "Switch LegacyCOM1 on again";
    std::int32_t on = kOn;
    if (obSetOption(kOptionLegacyCom1, &on) != 0) {
        OB_LOG(LogLevel::ERR) << "Cannot switch LegacyCOM1 on again!";
        return false;
    }
    mSavedLegacyCom1 = kNothingSaved;
    return true;
}
