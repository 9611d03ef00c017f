#include "common_sources/daemon_proxy.h"

#include <chrono>
#include <thread>

#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/ob_addin.h"
#include "common_sources/progress_window.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "DaemonProxy";

constexpr int kDevice = 0;
constexpr char kConnectName[] = "xtopCreo";
constexpr char kModeOwner[] = "Creo";
constexpr std::int32_t kOn = 1;
constexpr std::chrono::milliseconds kReadingThreadPoll{200};
constexpr std::chrono::milliseconds kProgressPoll{50};

bool isSpecialEvent(std::int32_t event) {
    return (event >= kEventSpecialFirst1 && event <= kEventSpecialLast1) ||
           (event >= kEventSpecialFirst2 && event <= kEventSpecialLast2);
}

}  // namespace

DaemonProxy::DaemonProxy(CObAddin* owner) : mOwner(owner) {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    mOwner->applFunction = CObAddin::kNoFunction;
    connect();
    mIsReadingThreadRunning = true;  // before the thread runs: destruction must not overtake its start
    if (pthread_create(&mReadingThread, nullptr, &readingEntry, this) != 0) mIsReadingThreadRunning = false;
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

DaemonProxy::~DaemonProxy() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    mIsRunning = false;
    if (obDisconnect() != 0) OB_LOG(LogLevel::ERR) << "Error in obDisConnect()!";
    while (mIsReadingThreadRunning) std::this_thread::sleep_for(kReadingThreadPoll);
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

bool DaemonProxy::checkConnection() {
    std::int32_t count = 0, unused1 = 0, unused2 = 0;
    if (obGetDevNum(&count, &unused1, &unused2) == 0) return mIsConnected = true;
    OB_LOG(LogLevel::ERR) << "Error in obGetDevNum()!";
    mIsConnected = false;
    if (obDisconnect() != 0) OB_LOG(LogLevel::ERR) << "Error in obDisconnect()!";
    return false;
}

bool DaemonProxy::connect() {
    OB_LOG(LogLevel::TRC) << "Checking connection ...";
    mIsConnected = false;
    if (obConnect(kDevice, kConnectName) != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obConnect()!";
        return false;
    }
    std::int32_t count = 0, unused1 = 0, unused2 = 0;
    if (obGetDevNum(&count, &unused1, &unused2) != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obGetDevNum()!";
        return false;
    }
    for (std::int32_t device = 0; device < count; ++device) {
        ObDevInfo info{};
        if (obGetDevInfo(device, &info) != 0) {
            OB_LOG(LogLevel::ERR) << "Error in obGetDevInfo()!";
            return false;
        }
        info.name[sizeof info.name - 1] = '\0';
        OB_LOG(LogLevel::INF) << "devIdx: " << device << ":" << info.name;
    }
    retrieveRotMode();
    mIsConnected = true;
    mIsModeToResend = true;
    return true;
}

void DaemonProxy::retrieveRotMode() {
    ObAdvancedSettings settings{};
    if (obGetAdvancedSettings(kDevice, &settings) != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obGetAdvancedSettings()!";
        settings = {};
    }
    mOwner->setRotationMode(settings.rotationMode);
    mOwner->mCreoProxyP->setContextFlag(settings.contextFlag);
}

bool DaemonProxy::stopLegacyCom1() {
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

bool DaemonProxy::resetLegacyCom1() {
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

void* DaemonProxy::readingEntry(void* proxy) {
    auto* self = static_cast<DaemonProxy*>(proxy);
    atEdge("readMouseEvents", [self] { self->readMouseEvents(); });
    self->mIsReadingThreadRunning = false;
    return nullptr;
}

void DaemonProxy::readMouseEvents() {
    mLastModeSent.clear();
    showProgress();
    MotionSlots& slots = mOwner->motion;
    while (mIsRunning) {
        std::int16_t tx = 0, ty = 0, tz = 0, rx = 0, ry = 0, rz = 0;
        std::int32_t unused1 = 0, unused2 = 0, event = -1, extra1 = 0, extra2 = 0;
        const int status =
            obReadDeviceData(kDevice, &tx, &ty, &tz, &rx, &ry, &rz, &unused1, &unused2, &event, &extra1, &extra2);
        if (event > -1) handleEvent(event);
        if (status == 0) {
            slots.tx.store(tx, std::memory_order_relaxed);
            slots.ty.store(ty, std::memory_order_relaxed);
            slots.tz.store(tz, std::memory_order_relaxed);
            slots.rx.store(rx, std::memory_order_relaxed);
            slots.ry.store(ry, std::memory_order_relaxed);
            slots.rz.store(rz, std::memory_order_relaxed);
            slots.extra1.store(extra1, std::memory_order_relaxed);
            slots.extra2.store(extra2, std::memory_order_relaxed);
        }
        sendMode();
    }
}

// First start: while the menu file is being generated, shows how far it is. Ends with the generation.
void DaemonProxy::showProgress() {
    ProgressWindow window;
    while (mIsRunning) {
        const double progress = mOwner->mCreoProxyP->menuFileProgress();
        if (progress >= CreoProxy::kProgressDone) break;
        if (progress >= 0.0) {
            if (!window.isRunning()) window.start();
            if (window.isRunning()) window.update(progress);
        }
        std::this_thread::sleep_for(kProgressPoll);
    }
    window.stop();
}

void DaemonProxy::handleEvent(std::int32_t event) {
    OB_LOG(LogLevel::TRC) << "event: " << event << ", APPL_FUNC_START: " << APPL_FUNC_START;
    if (event == kEventSettingsChanged1 || event == kEventSettingsChanged2) retrieveRotMode();
    if (isSpecialEvent(event)) mOwner->specialEvent = event;
    if (event >= APPL_FUNC_START) mOwner->applFunction = event - APPL_FUNC_START;
    if (event == kEventResendMode) mLastModeSent.clear();
}

void DaemonProxy::sendMode() {
    const std::string_view mode = mOwner->modeName();
    if (mode == mLastModeSent && !mIsModeToResend) return;
    // Cleared before the call, so that a reconnection during it is not forgotten.
    mIsModeToResend = false;
    const std::string text(mode);
    if (obSetAppMode(kModeOwner, text.c_str()) == 0) mLastModeSent = text;
}
