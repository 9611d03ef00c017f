#include "common_sources/ob_addin.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <thread>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

#include "common_sources/creo_proxy.h"
#include "common_sources/daemon_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/life_cycle.h"
#include "common_sources/program_facts.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "CObAddin";

constexpr std::chrono::milliseconds kWatchdogNap{50};  // so soon it sees the end

constexpr char kDriverLogFile[] = "Creo_plugin_dll_log.txt";
constexpr int kDriverLogSizeKb = 500;

// Null when the object cannot be created, for whatever reason.
template <typename Proxy, typename... Parts>
std::unique_ptr<Proxy> create(Parts&&... parts) {
    try {
        return std::make_unique<Proxy>(std::forward<Parts>(parts)...);
    } catch (const std::exception&) {
        return nullptr;
    }
}

// A thread that has reported its end is still on its last instructions, and Creo or Windows may still hold one of our
// callbacks, so the library's code stays in the process for good.
void pinLibrary() {
#ifdef _WIN32
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCSTR>(&pinLibrary), &self);
#endif
}

// From the plug-in's first statement until its settings have been handed to the log.
struct CollectedLog {
    CollectedLog() { gLogging.startCollecting(); }
    ~CollectedLog() { gLogging.stopCollecting(); }
    CollectedLog(const CollectedLog&) = delete;
    CollectedLog& operator=(const CollectedLog&) = delete;
};

bool startPlugIn() {
    return atEdge({kLogClass, "user_initialize"}, false, [] {
        pinLibrary();
        const CollectedLog collected;
        for (const auto& fact : programFacts()) OB_LOG_IN(LogLevel::INF, "user_initialize") << fact;
        gAddin = new CObAddin();
        return true;
    });
}

void refuseStart() { OB_LOG_IN(LogLevel::WRN, "user_initialize") << "user_initialize() called twice!"; }

void hurry() { gAddin->handOver->isEnding = true; }

void endPlugIn() { delete std::exchange(gAddin, nullptr); }

constinit LifeCycle lifeCycle({&startPlugIn, &refuseStart, &hurry, &endPlugIn});

// Body of the watchdog; ends with the plug-in.
void watchConnection(DaemonLink& link, const std::atomic<bool>& isEnding) {
    using Clock = std::chrono::steady_clock;
    while (!isEnding) {
        atEdge({kLogClass, "watchdogEntry"}, [&] {
            if (!link.checkConnection() && !isEnding) link.connect();
        });
        const auto next = Clock::now() + CObAddin::watchdogPause;
        while (!isEnding && Clock::now() < next) {
            std::this_thread::sleep_until(std::min(next, Clock::now() + kWatchdogNap));
        }
    }
}

}  // namespace

CObAddin* gAddin = nullptr;

int user_initialize() {
    lifeCycle.initialise();
    return 0;
}

void user_terminate() { lifeCycle.terminate(); }

CObAddin::CObAddin() {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    try {
        configureLogging();
        OB_LOG(LogLevel::CRT) << "Constructing ...";
        createSides();
        startWatchdog();
    } catch (...) {
        stop();
        throw;
    }
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

CObAddin::~CObAddin() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    stop();
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

void CObAddin::configureLogging() {
    const int status = obSetDllLogFlags(kDriverLogFile, kDriverLogSizeKb, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "");
    if (status != 0) OB_LOG(LogLevel::ERR) << "Error in obSetDllLogFlags()!";
    gLogging.init(settings.mLogPars);
}

void CObAddin::createSides() {
    mCreoProxyP = create<CreoProxy>(settings, *handOver, legacyCom1, lifeCycle);
    if (mCreoProxyP != nullptr) mDaemonProxyP = create<DaemonProxy>(handOver);
    if (mCreoProxyP != nullptr && mDaemonProxyP != nullptr) return;
    OB_LOG_IN(LogLevel::ERR, "CObAddin") << "mCreoProxyP or mDaemonProxyP could not be created!";
    std::exit(-1);
}

void CObAddin::startWatchdog() {
    const bool isStarted = mWatchdog.start(
        [handOver = handOver, link = mDaemonProxyP->link()] { watchConnection(*link, handOver->isEnding); });
    if (!isStarted) OB_LOG(LogLevel::ERR) << "Error creating reading thread!";
}

void CObAddin::stop() {
    handOver->isEnding = true;
    mWatchdog.waitForEnd("the watchdog");
    if (mDaemonProxyP != nullptr) legacyCom1.giveBack();
    mDaemonProxyP.reset();
    mCreoProxyP.reset();
}
