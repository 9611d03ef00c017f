// Finds Creo's windows and drives everything from one Windows timer on Creo's user-interface thread. The timer is
// one-shot: each tick ends it first and arms it again last.
#include <windows.h>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/settings.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr UINT_PTR kTimerId = 99;
constexpr UINT kRestIntervalMs = 100;
constexpr UINT kMovingIntervalMs = 10;
constexpr std::string_view kGraphicsWindowClass = "PGLWindow";
constexpr int kClassNameSize = 255;

bool isValid(HWND window) { return reinterpret_cast<INT_PTR>(window) > 0; }

void CALLBACK TimerProc(HWND, UINT, UINT_PTR, DWORD) {
    atEdge({kLogClass, "TimerProc"}, [] {
        if (const CreoProxy::Visit proxy; proxy) proxy->onTimer();
    });
}

BOOL CALLBACK MyEnumThreadWndProc(HWND window, LPARAM) {
    return atEdge({kLogClass, "MyEnumThreadWndProc"}, FALSE, [window]() -> BOOL {
        const CreoProxy::Visit proxy;
        return proxy && proxy->onThreadWindow(window);
    });
}

// Comes to children of children, too, each right behind its parent.
BOOL CALLBACK findGraphicsWindow(HWND child, LPARAM) {
    return atEdge({kLogClass, "findGraphicsWindow"}, FALSE, [child]() -> BOOL {
        const CreoProxy::Visit proxy;
        return proxy && proxy->onChildWindow(child);
    });
}

// Marks a tick as running for the time of a scope.
class InTick {
  public:
    explicit InTick(bool& flag) : mFlag(flag) { mFlag = true; }
    ~InTick() { mFlag = false; }
    InTick(const InTick&) = delete;
    InTick& operator=(const InTick&) = delete;

  private:
    bool& mFlag;
};

}  // namespace

void CreoProxy::discoverWindows() {
    EnumThreadWindows(GetCurrentThreadId(), MyEnumThreadWndProc, 0);
    if (mTimerWindow == nullptr) OB_LOG(LogLevel::ERR) << "No valid Creo Window Handle found for Timer";
}

bool CreoProxy::onThreadWindow(WindowHandle window) {
    if (mTimerWindow == nullptr) {
        mTimerWindow = window;
        if (!isValid(mTimerWindow)) {
            OB_LOG(LogLevel::ERR) << "No valid Creo Window Handle found for Timer";
        } else {
            OB_LOG(LogLevel::DBG) << "Window Handle found for Timer: " << static_cast<const void*>(mTimerWindow);
            armTimer(kRestIntervalMs);
        }
    }
    EnumChildWindows(window, findGraphicsWindow, 0);
    return !(isValid(mTimerWindow) && isValid(mGraphicsWindow));
}

bool CreoProxy::onChildWindow(WindowHandle child) {
    char name[kClassNameSize] = "";
    GetClassNameA(child, name, kClassNameSize);
    if (name != kGraphicsWindowClass) return true;
    mGraphicsWindow = child;
    return false;
}

void CreoProxy::checkWindows() {
    if (isValid(mTimerWindow) && isValid(mGraphicsWindow) && IsWindow(mTimerWindow) && IsWindow(mGraphicsWindow)) {
        return;
    }
    killTimer();  // the search may come to another window, and two timers would run then
    mTimerWindow = nullptr;
    mGraphicsWindow = nullptr;
    discoverWindows();
}

void CreoProxy::armTimer(std::uint32_t interval) {
    // Without a window Windows would make up a timer of its own, which nobody could end again.
    if (!isValid(mTimerWindow)) return;
    mIsTimerArmed = SetTimer(mTimerWindow, kTimerId, interval, TimerProc) != 0;
    if (mIsTimerArmed) return;
    const DWORD err = GetLastError();  // before the log calls Windows
    if (mLogLimit.isDue("SetTimer")) OB_LOG(LogLevel::ERR) << "Error in SetTimer()! err=" << err;
}

void CreoProxy::ensureTimer() {
    // A tick arms the timer itself when it is over.
    if (mIsTimerArmed || mIsInTick || mHandOver.isEnding || !IsWindow(mTimerWindow)) return;
    armTimer(kRestIntervalMs);
}

void CreoProxy::killTimer() {
    if (isValid(mTimerWindow)) KillTimer(mTimerWindow, kTimerId);
    mIsTimerArmed = false;
}

void CreoProxy::onTimer() {
    if (mIsInTick) return;  // a toolkit call dispatches messages
    const InTick inTick(mIsInTick);
    OB_LOG(LogLevel::INF) << "Timer Callback start";
    killTimer();
    if (mSettings.mIsModeToRead) checkMode(false);
    if (isMenuFileAwaited()) loadMenufile();
    doTransform();
    if (!mHandOver.isEnding) {
        const UINT interval = isCapMoving() ? kMovingIntervalMs : kRestIntervalMs;
        OB_LOG(LogLevel::DBG) << "timerIntvl: " << interval;
        armTimer(interval);
    }
    OB_LOG(LogLevel::INF) << "Timer Callback end";
}
