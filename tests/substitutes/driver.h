// Stands in for the driver library and its daemon within a test program: defines the ten operations of
// driver/obk_ctrlr.h. A test says how the daemon behaves and looks at what reached it. Any thread may call anything.
#pragma once

#include <array>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace substitute {

enum class Operation {
    connect,
    disconnect,
    read,
    getAdvancedSettings,
    getOption,
    setOption,
    getDevNum,
    getDevInfo,
    setDllLogFlags,
    setAppMode,
};
inline constexpr int kOperations = 10;

inline constexpr std::int32_t kNoEventRead = -1;

// What one call of obReadDeviceData answers.
struct Read {
    int status = 0;
    std::array<std::int16_t, 6> axes{};
    std::int32_t event = kNoEventRead;
    std::int32_t extra1 = 0;
    std::int32_t extra2 = 0;
};
// A read that answers an event and no motion.
Read eventRead(std::int32_t event, int status = 0);

class Driver {
  public:
    // How a read waits while nothing is queued: for a few milliseconds, or until something is queued or the
    // connection ends.
    enum class Pace { shortPause, untilReleased };

    // A daemon that is there, has one device and answers everything with success.
    void reset();

    void setDaemonPresent(bool isPresent);
    void setPace(Pace pace);
    void setDevices(const std::vector<std::string>& names);
    void setAdvancedSettings(std::int32_t rotationMode, std::uint8_t contextFlag);
    void setLegacyCom1(std::int32_t value);
    void setDeviceCount(std::int32_t count);  // what getDevNum answers instead of the number of devices
    // The next `count` calls fail, those without end when it is negative; status 0: succeed again.
    void fail(Operation operation, int status = -1, int count = -1);
    // From now on calls of the operation do not return; false: they do again.
    void hang(Operation operation, bool isHanging = true);

    // Reads answered in order; each is answered once.
    void queue(const Read& read);
    // From now on every read answers at once with the next of these, over and over. Empty: ends the flood.
    void flood(const std::vector<Read>& reads);

    bool isConnected();
    std::int32_t legacyCom1();
    int calls(Operation operation);
    std::vector<std::string> modesSent();  // those that were accepted
    std::string connectName();
    std::string dllLogArguments();

    // Waits until the operation was called that often in all. False after a long time.
    bool waitForCalls(Operation operation, int count);
    // Waits until all that was queued has been handed out and the reading thread has come back for more, so that it
    // has dealt with everything before. False after a long time.
    bool waitUntilIdle();
    bool waitUntilHanging();  // until a call hangs; false after a long time
    // Waits until that many modes were accepted. False after a long time.
    bool waitForModes(std::size_t count);

    // The operations themselves.
    int connect(const char* application);
    int disconnect();
    int read(Read& result);
    int getAdvancedSettings(std::int32_t& rotationMode, std::uint8_t& contextFlag);
    int getOption(int option, std::int32_t& value);
    int setOption(int option, std::int32_t value);
    int getDevNum(std::int32_t& count);
    int getDevInfo(int device, std::string& name);
    int setDllLogFlags(const std::string& arguments);
    int setAppMode(const std::string& application, const std::string& mode);

  private:
    using Lock = std::unique_lock<std::mutex>;

    // Counts the call, and hangs if it is to; the status that the operation is to answer.
    int enter(Operation operation, Lock& lock);

    std::mutex mMutex;  // guards everything below
    std::condition_variable mChanged;
    bool mIsDaemonPresent = true;
    bool mIsConnected = false;
    Pace mPace = Pace::shortPause;
    std::vector<std::string> mDevices;
    std::optional<std::int32_t> mDeviceCount;
    std::int32_t mRotationMode = 0;
    std::uint8_t mContextFlag = 0;
    std::int32_t mLegacyCom1 = 1;
    struct Failure {
        int status = 0;
        int count = 0;
    };
    std::array<Failure, kOperations> mFailures{};
    std::array<bool, kOperations> mHanging{};
    int mHangingCalls = 0;
    std::array<int, kOperations> mCalls{};
    std::deque<Read> mQueue;
    std::vector<Read> mFlood;
    std::size_t mNextOfFlood = 0;
    bool mIsReadWaiting = false;
    std::vector<std::string> mModes;
    std::string mConnectName;
    std::string mDllLogArguments;
};

Driver& driver();

}  // namespace substitute
