#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr std::string_view kDefaultModeName = "Default";

}  // namespace

std::int32_t CreoProxy::checkMode(bool fromAccessCheck) {
    const std::int32_t oldMode = mMode;
    ProMode mode = PRO_MODE_UNUSED;
    const ProError err = ProModeCurrentGet(&mode);
    OB_LOG(LogLevel::TMP) << "err: " << err;
    if (err != PRO_TK_NO_ERROR) {
        OB_LOG(LogLevel::WRN) << "Error in ProModeCurrentGet()! err=" << err;
        mode = kUnknownMode;
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
    mMode = mode;
    OB_LOG(LogLevel::TMP) << "New ProMode: " << mode;
    return mode;
}

std::string_view CreoProxy::modeName() const {
    const Names* names = mModeNames.load(std::memory_order_acquire);
    const std::int32_t mode = mMode.load(std::memory_order_relaxed);
    if (names == nullptr || mode < 0 || static_cast<std::size_t>(mode) >= names->size()) return kDefaultModeName;
    return (*names)[static_cast<std::size_t>(mode)];
}
