#include "common_sources/daemon_proxy.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/progress_window.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "DaemonProxy";

constexpr int kDevice = 0;
constexpr char kConnectName[] = "xtopCreo";
constexpr char kModeOwner[] = "Creo";
constexpr std::int32_t kMostDevices = 16;  // one is usual
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

DaemonProxy::DaemonProxy(std::shared_ptr<HandOver> handOver)
    : mHandOver(std::move(handOver)), mLink(std::make_shared<DaemonLink>(mHandOver)) {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    mHandOver->applFunction = HandOver::kNoFunction;
    mLink->connect();
    mReadingThread.start([link = mLink] { link->readMouseEvents(); });
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

DaemonProxy::~DaemonProxy() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    mHandOver->isEnding = true;
    if (callPatiently("obDisconnect", &obDisconnect) != 0) OB_LOG(LogLevel::ERR) << "Error in obDisConnect()!";
    mReadingThread.waitForEnd("the reading thread");
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

DaemonLink::DaemonLink(std::shared_ptr<HandOver> handOver) : mHandOver(std::move(handOver)) {}

bool DaemonLink::checkConnection() {
    std::int32_t count = 0, unused1 = 0, unused2 = 0;
    const int status = obGetDevNum(&count, &unused1, &unused2);
    if (mHandOver->isEnding) return false;
    mHandOver->isConnected = status == 0;
    if (status == 0) return true;
    mHandOver->motion.lose();
    OB_LOG(LogLevel::ERR) << "Error in obGetDevNum()!";
    if (obDisconnect() != 0 && !mHandOver->isEnding) OB_LOG(LogLevel::ERR) << "Error in obDisconnect()!";
    mHandOver->motion.lose();  // what was read between the two
    return false;
}

bool DaemonLink::connect() {
    OB_LOG(LogLevel::TRC) << "Checking connection ...";
    mHandOver->isConnected = false;
    const int connected = obConnect(kDevice, kConnectName);
    if (mHandOver->isEnding) return false;
    if (connected != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obConnect()!";
        return false;
    }
    std::int32_t count = 0, unused1 = 0, unused2 = 0;
    const int counted = obGetDevNum(&count, &unused1, &unused2);
    if (mHandOver->isEnding) return false;
    if (counted != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obGetDevNum()!";
        return false;
    }
    if (!logDevices(count)) return false;
    retrieveRotMode();
    mHandOver->isConnected = true;
    mIsModeToResend = true;
    return true;
}

bool DaemonLink::logDevices(std::int32_t count) {
    const std::int32_t asked = std::clamp(count, 0, kMostDevices);
    if (asked != count) {
        OB_LOG_IN(LogLevel::WRN, "connect")
            << "The driver counts " << count << " devices, only " << asked << " are asked for.";
    }
    for (std::int32_t device = 0; device < asked; ++device) {
        ObDevInfo info{};
        const int status = obGetDevInfo(device, &info);
        if (mHandOver->isEnding) return false;
        if (status != 0) {
            OB_LOG_IN(LogLevel::ERR, "connect") << "Error in obGetDevInfo()!";
            return false;
        }
        info.name[sizeof info.name - 1] = '\0';
        OB_LOG_IN(LogLevel::INF, "connect") << "devIdx: " << device << ":" << info.name;
    }
    return true;
}

void DaemonLink::retrieveRotMode() {
    ObAdvancedSettings settings{};
    const int status = obGetAdvancedSettings(kDevice, &settings);
    if (mHandOver->isEnding) return;
    if (status != 0) {
        OB_LOG(LogLevel::ERR) << "Error in obGetAdvancedSettings()!";
        settings = {};
    }
    storeRotationMode(settings.rotationMode, *mHandOver);
    mHandOver->contextFlag = settings.contextFlag;
}

void DaemonLink::readMouseEvents() {
    mLastModeSent.clear();
    atEdge({kLogClass, "showProgress"}, [this] { showProgress(); });
    while (!mHandOver->isEnding) atEdge({kLogClass, "readMouseEvents"}, [this] { readOnce(); });
}

// First start: while the menu file is being generated, shows how far it is. Ends with the generation.
void DaemonLink::showProgress() {
    ProgressWindow window;
    while (!mHandOver->isEnding) {
        const double progress = mHandOver->menuFileProgress;
        if (progress >= HandOver::kProgressDone) break;
        if (progress >= 0.0) {
            if (!window.isRunning()) window.start();
            if (window.isRunning()) window.update(progress);
        }
        std::this_thread::sleep_for(kProgressPoll);
    }
    window.stop();
}

void DaemonLink::readOnce() {
    HandOver::Motion& slots = mHandOver->motion;
    const std::uint16_t losses = slots.losses;
    std::int16_t tx = 0, ty = 0, tz = 0, rx = 0, ry = 0, rz = 0;
    std::int32_t unused1 = 0, unused2 = 0, event = -1, extra1 = 0, extra2 = 0;
    const int status =
        obReadDeviceData(kDevice, &tx, &ty, &tz, &rx, &ry, &rz, &unused1, &unused2, &event, &extra1, &extra2);
    if (mHandOver->isEnding) return;
    if (event > -1) handleEvent(event);
    if (status == 0) {
        slots.store({tx, ty, tz, rx, ry, rz}, losses);
        slots.extra1.store(extra1, std::memory_order_relaxed);
        slots.extra2.store(extra2, std::memory_order_relaxed);
    }
    sendMode();
}

void DaemonLink::handleEvent(std::int32_t event) {
    OB_LOG(LogLevel::TRC) << "event: " << event << ", APPL_FUNC_START: " << APPL_FUNC_START;
    if (event == kEventSettingsChanged1 || event == kEventSettingsChanged2) retrieveRotMode();
    if (isSpecialEvent(event)) mHandOver->specialEvent = event;
    if (event >= APPL_FUNC_START) mHandOver->applFunction = event - APPL_FUNC_START;
    if (event == kEventResendMode) mLastModeSent.clear();
}

void DaemonLink::sendMode() {
    const std::string_view mode = mHandOver->modeName();
    if (mode == mLastModeSent && !mIsModeToResend) return;
    // Cleared before the call, so that a reconnection during it is not forgotten.
    mIsModeToResend = false;
    const std::string text(mode);
    if (obSetAppMode(kModeOwner, text.c_str()) == 0) mLastModeSent = text;
}
