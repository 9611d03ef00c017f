#include "tests/substitutes/driver.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <sstream>

#include "driver/obk_ctrlr.h"

namespace substitute {

namespace {

constexpr int kFailed = -1;
constexpr std::chrono::milliseconds kReadPause{5};
constexpr std::chrono::seconds kLongTime{60};

std::size_t indexOf(Operation operation) { return static_cast<std::size_t>(operation); }

}  // namespace

Driver& driver() {
    static Driver theDriver;
    return theDriver;
}

Read eventRead(std::int32_t event, int status) {
    Read read;
    read.status = status;
    read.event = event;
    return read;
}

void Driver::reset() {
    const Lock lock(mMutex);
    mIsDaemonPresent = true;
    mIsConnected = false;
    mPace = Pace::shortPause;
    mDevices = {"OrbikonController"};
    mDeviceCount.reset();
    mRotationMode = 0;
    mContextFlag = 0;
    mLegacyCom1 = 1;
    mFailures = {};
    mHanging = {};
    mCalls = {};
    mQueue.clear();
    mFlood.clear();
    mNextOfFlood = 0;
    mIsReadWaiting = false;
    mModes.clear();
    mConnectName.clear();
    mDllLogArguments.clear();
    mChanged.notify_all();
}

void Driver::setDaemonPresent(bool isPresent) {
    const Lock lock(mMutex);
    mIsDaemonPresent = isPresent;
    if (!isPresent) mIsConnected = false;
    mChanged.notify_all();
}

void Driver::setPace(Pace pace) {
    const Lock lock(mMutex);
    mPace = pace;
    mChanged.notify_all();
}

void Driver::setDevices(const std::vector<std::string>& names) {
    const Lock lock(mMutex);
    mDevices = names;
}

void Driver::setAdvancedSettings(std::int32_t rotationMode, std::uint8_t contextFlag) {
    const Lock lock(mMutex);
    mRotationMode = rotationMode;
    mContextFlag = contextFlag;
}

void Driver::setLegacyCom1(std::int32_t value) {
    const Lock lock(mMutex);
    mLegacyCom1 = value;
}

void Driver::setDeviceCount(std::int32_t count) {
    const Lock lock(mMutex);
    mDeviceCount = count;
}

void Driver::fail(Operation operation, int status, int count) {
    const Lock lock(mMutex);
    mFailures[indexOf(operation)] = {status, status != 0 ? count : 0};
    mChanged.notify_all();
}

void Driver::hang(Operation operation, bool isHanging) {
    const Lock lock(mMutex);
    mHanging[indexOf(operation)] = isHanging;
    mChanged.notify_all();
}

void Driver::queue(const Read& read) {
    const Lock lock(mMutex);
    mQueue.push_back(read);
    mChanged.notify_all();
}

void Driver::flood(const std::vector<Read>& reads) {
    const Lock lock(mMutex);
    mFlood = reads;
    mNextOfFlood = 0;
    mChanged.notify_all();
}

bool Driver::isConnected() {
    const Lock lock(mMutex);
    return mIsConnected;
}

std::int32_t Driver::legacyCom1() {
    const Lock lock(mMutex);
    return mLegacyCom1;
}

int Driver::calls(Operation operation) {
    const Lock lock(mMutex);
    return mCalls[indexOf(operation)];
}

std::vector<std::string> Driver::modesSent() {
    const Lock lock(mMutex);
    return mModes;
}

std::string Driver::connectName() {
    const Lock lock(mMutex);
    return mConnectName;
}

std::string Driver::dllLogArguments() {
    const Lock lock(mMutex);
    return mDllLogArguments;
}

bool Driver::waitForCalls(Operation operation, int count) {
    Lock lock(mMutex);
    return mChanged.wait_for(lock, kLongTime, [&] { return mCalls[indexOf(operation)] >= count; });
}

bool Driver::waitUntilIdle() {
    Lock lock(mMutex);
    return mChanged.wait_for(lock, kLongTime, [&] { return mQueue.empty() && mIsReadWaiting; });
}

bool Driver::waitUntilHanging() {
    Lock lock(mMutex);
    return mChanged.wait_for(lock, kLongTime, [&] { return mHangingCalls > 0; });
}

bool Driver::waitForModes(std::size_t count) {
    Lock lock(mMutex);
    return mChanged.wait_for(lock, kLongTime, [&] { return mModes.size() >= count; });
}

int Driver::enter(Operation operation, Lock& lock) {
    const std::size_t index = indexOf(operation);
    ++mCalls[index];
    ++mHangingCalls;
    mChanged.notify_all();
    mChanged.wait(lock, [&] { return !mHanging[index]; });
    --mHangingCalls;
    Failure& failure = mFailures[index];
    if (failure.count == 0) return 0;
    if (failure.count > 0) --failure.count;
    return failure.status;
}

int Driver::connect(const char* application) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::connect, lock)) return status;
    if (!mIsDaemonPresent) return kFailed;
    mConnectName = application;
    mIsConnected = true;
    return 0;
}

int Driver::disconnect() {
    Lock lock(mMutex);
    const int status = enter(Operation::disconnect, lock);
    mIsConnected = false;  // also when it says that it failed: a read must never block for ever
    return status;
}

int Driver::read(Read& result) {
    Lock lock(mMutex);
    const int failure = enter(Operation::read, lock);
    if (!mFlood.empty()) {
        result = mFlood[mNextOfFlood++ % mFlood.size()];
        return failure != 0 ? failure : result.status;
    }
    if (mQueue.empty()) {
        mIsReadWaiting = true;
        mChanged.notify_all();
        const auto isAwake = [&] { return !mQueue.empty() || !mFlood.empty(); };
        if (mPace == Pace::untilReleased && mIsConnected && failure == 0) {
            mChanged.wait(lock, [&] { return isAwake() || !mIsConnected || mPace != Pace::untilReleased; });
        } else {
            mChanged.wait_for(lock, kReadPause, isAwake);
        }
        mIsReadWaiting = false;
    }
    if (mQueue.empty()) return kFailed;
    result = mQueue.front();
    mQueue.pop_front();
    return failure != 0 ? failure : result.status;
}

int Driver::getAdvancedSettings(std::int32_t& rotationMode, std::uint8_t& contextFlag) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::getAdvancedSettings, lock)) return status;
    rotationMode = mRotationMode;
    contextFlag = mContextFlag;
    return 0;
}

int Driver::getOption(int option, std::int32_t& value) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::getOption, lock)) return status;
    if (!mIsConnected || option != kOptionLegacyCom1) return kFailed;
    value = mLegacyCom1;
    return 0;
}

int Driver::setOption(int option, std::int32_t value) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::setOption, lock)) return status;
    if (!mIsConnected || option != kOptionLegacyCom1) return kFailed;
    mLegacyCom1 = value;
    return 0;
}

int Driver::getDevNum(std::int32_t& count) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::getDevNum, lock)) return status;
    if (!mIsConnected) return kFailed;
    count = mDeviceCount.value_or(static_cast<std::int32_t>(mDevices.size()));
    return 0;
}

int Driver::getDevInfo(int device, std::string& name) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::getDevInfo, lock)) return status;
    if (mDeviceCount) return 0;
    if (device < 0 || static_cast<std::size_t>(device) >= mDevices.size()) return kFailed;
    name = mDevices[static_cast<std::size_t>(device)];
    return 0;
}

int Driver::setDllLogFlags(const std::string& arguments) {
    Lock lock(mMutex);
    mDllLogArguments = arguments;
    return enter(Operation::setDllLogFlags, lock);
}

int Driver::setAppMode(const std::string& application, const std::string& mode) {
    Lock lock(mMutex);
    if (const int status = enter(Operation::setAppMode, lock)) return status;
    mModes.push_back(application + "/" + mode);
    mChanged.notify_all();
    return 0;
}

}  // namespace substitute

using substitute::driver;

int obConnect(int, const char* application) { return driver().connect(application); }

int obDisconnect() { return driver().disconnect(); }

int obReadDeviceData(int, std::int16_t* tx, std::int16_t* ty, std::int16_t* tz, std::int16_t* rx, std::int16_t* ry,
                     std::int16_t* rz, std::int32_t*, std::int32_t*, std::int32_t* event, std::int32_t* extra1,
                     std::int32_t* extra2) {
    substitute::Read read;
    const int status = driver().read(read);
    *event = read.event;
    // Written on failure, too: the caller must not take them over then.
    std::int16_t* const axes[] = {tx, ty, tz, rx, ry, rz};
    for (std::size_t i = 0; i < read.axes.size(); ++i) *axes[i] = read.axes[i];
    *extra1 = read.extra1;
    *extra2 = read.extra2;
    return status;
}

int obGetAdvancedSettings(int, ObAdvancedSettings* settings) {
    const int status = driver().getAdvancedSettings(settings->rotationMode, settings->contextFlag);
    // A library that fails half way through may have written something.
    if (status != 0) std::memset(settings, 0x55, sizeof *settings);
    return status;
}

int obGetOption(int option, std::int32_t* value) { return driver().getOption(option, *value); }

int obSetOption(int option, std::int32_t* value) { return driver().setOption(option, *value); }

int obGetDevNum(std::int32_t* count, std::int32_t*, std::int32_t*) { return driver().getDevNum(*count); }

int obGetDevInfo(int device, ObDevInfo* info) {
    std::string name;
    const int status = driver().getDevInfo(device, name);
    if (status == 0) std::memcpy(info->name, name.data(), std::min(name.size(), sizeof info->name));
    return status;
}

int obSetDllLogFlags(const char* logFile, int maxSizeKb, int toFile, int toConsole, int warning, int creation,
                     int trace, int devcom, int intcom, int info, int debug, int tmp, const char* exclusiveFile) {
    std::ostringstream arguments;
    arguments << logFile << " " << maxSizeKb;
    for (const int value : {toFile, toConsole, warning, creation, trace, devcom, intcom, info, debug, tmp}) {
        arguments << " " << value;
    }
    arguments << " '" << exclusiveFile << "'";
    return driver().setDllLogFlags(arguments.str());
}

int obSetAppMode(const char* application, const char* mode) { return driver().setAppMode(application, mode); }
