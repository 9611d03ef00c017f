#include "workbench/daemon/device.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace workbench {
namespace {

constexpr std::chrono::milliseconds kMotionInterval{10};
constexpr char kDeviceName[] = "OrbikonController Pro";

std::string nameOf(Operation operation) { return std::string(kOperationNames[static_cast<std::size_t>(operation)]); }

bool isDeflected(const Axes& axes) { return axes != Axes{}; }

template <typename Numbers>
std::string joinNumbers(const Numbers& numbers) {
    Fields fields;
    for (const auto number : numbers) fields.push_back(std::to_string(number));
    return joinFields(fields, ' ');
}

}  // namespace

Device::Device() : mNextSession(static_cast<int>(GetTickCount() & 0x3fffffff) + 1) {}

int Device::connect(std::uint32_t processId, const std::string& application) {
    Handle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
    if (!process) throw std::runtime_error("no such process: " + std::to_string(processId));
    const std::lock_guard lock(mMutex);
    forgetEnded();
    mApplication = application;
    ++mConnects;
    Session& session = mSessions[mNextSession];
    session.process = std::move(process);
    session.application = {.processId = processId, .name = application, .mode = {}};
    return mNextSession++;
}

void Device::disconnect(int session) {
    const std::lock_guard lock(mMutex);
    mSessions.erase(findSession(session));
    mChanged.notify_all();
}

Reading Device::read(int session) {
    std::unique_lock lock(mMutex);
    const auto deadline = Clock::now() + std::chrono::milliseconds(kReadWaitMs);
    // The session is looked up anew after each wait: it may have ended meanwhile.
    auto found = findSession(session);
    while (Clock::now() < deadline && (mIsHeld || !hasData(found->second))) {
        const bool isMoving = !mIsHeld && isDeflected(mAxes);
        mChanged.wait_until(lock, isMoving ? std::min(deadline, found->second.nextMotion) : deadline);
        found = findSession(session);
    }
    if (mIsHeld) return {.isHeld = true, .axes = {}, .extras = {}, .event = {}};

    Session& reader = found->second;
    Reading reading{.isHeld = false, .axes = mAxes, .extras = mExtras, .event = {}};
    if (!reader.events.empty()) {
        reading.event = reader.events.front();
        reader.events.pop_front();
    }
    if (!reading.event.isFailing) {
        reader.delivered = mAxes;
        reader.nextMotion = Clock::now() + kMotionInterval;
    }
    return reading;
}

bool Device::hasData(const Session& session) const {
    if (!session.events.empty()) return true;
    return isDeflected(mAxes) ? Clock::now() >= session.nextMotion : isDeflected(session.delivered);
}

void Device::requireSession(int session) {
    const std::lock_guard lock(mMutex);
    findSession(session);
}

std::string Device::deviceName(int index) {
    const std::lock_guard lock(mMutex);
    if (index < 0 || index >= mDeviceCount) throw std::runtime_error("no such device: " + std::to_string(index));
    return index == 0 ? kDeviceName : kDeviceName + (' ' + std::to_string(index + 1));
}

void Device::setLegacy(std::int32_t value) {
    const std::lock_guard lock(mMutex);
    mLegacy = value;
}

void Device::setOwnLegacy(std::int32_t value) {
    const std::lock_guard lock(mMutex);
    mLegacy = mLegacyOwn = value;
}

void Device::setDllLog(const std::string& flags) {
    const std::lock_guard lock(mMutex);
    mDllLog = flags;
}

void Device::reportMode(int session, const ModeReport& report) {
    const std::lock_guard lock(mMutex);
    findSession(session)->second.application.mode = report.mode;
    mModes.push_back(report);
}

CallFault Device::countCall(Operation operation) {
    const std::lock_guard lock(mMutex);
    if (operation == Operation::readDeviceData && mIsHeld) return {};
    return mFaults.enter(nameOf(operation));
}

int Device::callsOf(Operation operation) const { return mFaults.callsOf(nameOf(operation)); }

// Operations whose latest calls were made to fail, as "name:count".
std::string Device::refusedCalls() const {
    Fields refused;
    for (const std::string& name : mFaults.names()) {
        const int count = mFaults.refusedInRow(name);
        if (count > 0) refused.push_back(name + ':' + std::to_string(count));
    }
    return joinFields(refused, ' ');
}

void Device::setAxes(const Axes& axes) {
    const std::lock_guard lock(mMutex);
    mAxes = axes;
    tell("axes " + joinNumbers(axes));
    mChanged.notify_all();
}

void Device::setExtras(const Extras& extras) {
    const std::lock_guard lock(mMutex);
    mExtras = extras;
    tell("extras " + joinNumbers(extras));
}

void Device::pushEvent(const Event& event) {
    const std::lock_guard lock(mMutex);
    forgetEnded();
    if (mSessions.empty()) throw std::runtime_error("no application is connected");
    tell("event " + std::to_string(event.code) + (event.isFailing ? " failing" : ""));
    queueEvent(event);
}

void Device::setAdvancedSettings(const AdvancedSettings& settings) {
    const std::lock_guard lock(mMutex);
    mSettings = settings;
    tell("settings " + std::to_string(settings.rotationMode) + ' ' + std::to_string(settings.contextFlag));
    queueEvent({.code = kEventSettingsChanged1, .isFailing = false});
}

void Device::setDeviceCount(int count) {
    const std::lock_guard lock(mMutex);
    mDeviceCount = count;
    tell("devices " + std::to_string(count));
}

void Device::setFaults(const std::string& verb, const Faults::Words& words) {
    const std::lock_guard lock(mMutex);
    mFaults.request(verb, words);
}

void Device::setHold(bool isHeld) {
    const std::lock_guard lock(mMutex);
    mIsHeld = isHeld;
    mChanged.notify_all();
}

AdvancedSettings Device::advancedSettings() {
    const std::lock_guard lock(mMutex);
    return mSettings;
}

int Device::deviceCount() {
    const std::lock_guard lock(mMutex);
    return mDeviceCount;
}

std::int32_t Device::legacy() {
    const std::lock_guard lock(mMutex);
    return mLegacy;
}

Axes Device::legacyAxes() {
    const std::lock_guard lock(mMutex);
    return mLegacy == 1 ? mAxes : Axes{};
}

std::int32_t Device::ownLegacy() {
    const std::lock_guard lock(mMutex);
    return mLegacyOwn;
}

Axes Device::axes() {
    const std::lock_guard lock(mMutex);
    return mAxes;
}

std::vector<Application> Device::applications() {
    const std::lock_guard lock(mMutex);
    forgetEnded();
    std::vector<Application> all;
    for (const auto& [number, session] : mSessions) all.push_back(session.application);
    return all;
}

std::string Device::currentMode() {
    const std::lock_guard lock(mMutex);
    return mModes.empty() ? std::string() : mModes.back().mode;
}

std::vector<ModeReport> Device::modeReports() {
    const std::lock_guard lock(mMutex);
    return mModes;
}

int Device::clientCount() {
    const std::lock_guard lock(mMutex);
    forgetEnded();
    return static_cast<int>(mSessions.size());
}

std::vector<std::string> Device::status() {
    const std::lock_guard lock(mMutex);
    forgetEnded();
    std::size_t pending = 0;
    for (const auto& [number, session] : mSessions) pending += session.events.size();
    const std::pair<std::string_view, std::string> entries[] = {
        {"application", mApplication},
        {"mode", mModes.empty() ? std::string() : mModes.back().mode},
        {"modes_told", std::to_string(mModes.size())},
        {"legacy", std::to_string(mLegacy)},
        {"legacy_own", std::to_string(mLegacyOwn)},
        {"legacy_sets", std::to_string(callsOf(Operation::setOption))},
        {"connects", std::to_string(mConnects)},
        {"clients", std::to_string(mSessions.size())},
        {"reads", std::to_string(callsOf(Operation::readDeviceData))},
        {"events_pending", std::to_string(pending)},
        {"dll_log", mDllLog},
        {"axes", joinNumbers(mAxes)},
        {"extras", joinNumbers(mExtras)},
        {"devices", std::to_string(mDeviceCount)},
        {"rotation_mode", std::to_string(mSettings.rotationMode)},
        {"context_flag", std::to_string(mSettings.contextFlag)},
        {"hold", mIsHeld ? "on" : "off"},
        {"refused", refusedCalls()},
    };
    std::vector<std::string> lines;
    for (const auto& [key, value] : entries) lines.push_back(std::string(key) + '=' + value);
    return lines;
}

Device::Sessions::iterator Device::findSession(int session) {
    const auto found = mSessions.find(session);
    if (found == mSessions.end()) throw std::runtime_error("not connected");
    return found;
}

void Device::forgetEnded() {
    std::erase_if(mSessions, [](const auto& entry) {
        return WaitForSingleObject(entry.second.process.get(), 0) == WAIT_OBJECT_0;
    });
}

void Device::tell(const std::string& command) const {
    if (mTold) mTold(command);
}

void Device::queueEvent(const Event& event) {
    for (auto& [number, session] : mSessions) session.events.push_back(event);
    mChanged.notify_all();
}

}  // namespace workbench
