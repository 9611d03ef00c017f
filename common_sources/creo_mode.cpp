#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

}  // namespace

std::int32_t CreoProxy::checkMode(bool fromAccessCheck) {
    const std::int32_t oldMode = mHandOver.mode;
    ProMode mode = PRO_MODE_UNUSED;
    const ProError err = ProModeCurrentGet(&mode);
    OB_LOG(LogLevel::TMP) << "err: " << err;
    if (err != PRO_TK_NO_ERROR) {
        OB_LOG(LogLevel::WRN) << "Error in ProModeCurrentGet()! err=" << err;
        mode = HandOver::kUnknownMode;
    }

    ProBoolean active = PRO_B_FALSE;
    if (ProSectionIsActive(&active) == PRO_TK_NO_ERROR && active == PRO_B_TRUE) mode = kSketcherMode;
    OB_LOG(LogLevel::TMP) << "isSketcher: " << active;

    int window = -1;
    const ProError windowErr = ProWindowCurrentGet(&window);
    if (!fromAccessCheck) {
        mLastSeenWindow = window;
    } else if (windowErr == PRO_TK_NO_ERROR && window != mLastSeenWindow) {
        mode = oldMode;
        OB_LOG(LogLevel::TMP) << "Restore mode to oldMode " << mode;
    }

    // The reading thread looks at the mode at any time, so only the outcome is stored.
    mHandOver.mode = mode;
    OB_LOG(LogLevel::TMP) << "New ProMode: " << mode;
    return mode;
}

std::int32_t CreoProxy::mode() const { return mHandOver.mode; }

std::string_view CreoProxy::modeName() const { return mHandOver.modeName(); }
