#include "common_sources/daemon_proxy.h"

#include <chrono>
#include <thread>

#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/progress_window.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "DaemonProxy";

constexpr int kDevice = 0;
constexpr char kConnectName[] = "xtopCreo";
constexpr char kModeOwner[] = "Creo";
constexpr std::chrono::milliseconds kReadingThreadPoll{200};
constexpr std::chrono::milliseconds kProgressPoll{50};

bool isSpecialEvent(std::int32_t event) {
    return (event >= kEventSpecialFirst1 && event <= kEventSpecialLast1) ||
           (event >= kEventSpecialFirst2 && event <= kEventSpecialLast2);
}

// Decimal-coded: units = mode, where 4 stands for mode 2 with the second flag; tens = first, hundreds = second flag.
void storeRotationMode(std::int32_t code, HandOver& handOver) {
    const std::int32_t hundreds = code / 100;
    const std::int32_t rest = code - 100 * hundreds;
    const std::int32_t tens = rest / 10;
    const std::int32_t units = rest - 10 * tens;
    const bool isAlias = units == 4;
    handOver.rotationMode = isAlias ? 2 : units;
    handOver.rotationFlag1 = tens >= 1;
    handOver.rotationFlag2 = hundreds >= 1 || isAlias;
}

}  // namespace

DaemonProxy::DaemonProxy(HandOver& handOver) : mHandOver(handOver) {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    mHandOver.applFunction = HandOver::kNoFunction;
    connect();
    mIsReadingThreadRunning = true;  // before the thread runs: destruction must not overtake its start
    if (pthread_create(&mReadingThread, nullptr, &readingEntry, this) != 0) mIsReadingThreadRunning = false;
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

DaemonProxy::~DaemonProxy() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    mHandOver.isEnding = true;
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
    storeRotationMode(settings.rotationMode, mHandOver);
    mHandOver.contextFlag = settings.contextFlag;
}

void* DaemonProxy::readingEntry(void* proxy) {
    auto* self = static_cast<DaemonProxy*>(proxy);
    atEdge({kLogClass, "readMouseEvents"}, [self] { self->readMouseEvents(); });
    self->mIsReadingThreadRunning = false;
    return nullptr;
}

void DaemonProxy::readMouseEvents() {
    mLastModeSent.clear();
    showProgress();
    HandOver::Motion& slots = mHandOver.motion;
    while (!mHandOver.isEnding) {
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
    while (!mHandOver.isEnding) {
        const double progress = mHandOver.menuFileProgress;
        if (progress >= HandOver::kProgressDone) break;
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
    if (isSpecialEvent(event)) mHandOver.specialEvent = event;
    if (event >= APPL_FUNC_START) mHandOver.applFunction = event - APPL_FUNC_START;
    if (event == kEventResendMode) mLastModeSent.clear();
}

void DaemonProxy::sendMode() {
    const std::string_view mode = mHandOver.modeName();
    if (mode == mLastModeSent && !mIsModeToResend) return;
    // Cleared before the call, so that a reconnection during it is not forgotten.
    mIsModeToResend = false;
    const std::string text(mode);
    if (obSetAppMode(kModeOwner, text.c_str()) == 0) mLastModeSent = text;
}
