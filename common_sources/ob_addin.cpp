#include "common_sources/ob_addin.h"

#include <chrono>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>
#include <utility>

#ifdef _WIN32
#include <windows.h>
#endif

#include "common_sources/creo_proxy.h"
#include "common_sources/daemon_proxy.h"
#include "common_sources/edge.h"
#include "driver/obk_ctrlr.h"

namespace {

constexpr char kLogClass[] = "CObAddin";

constexpr std::chrono::milliseconds kWatchdogPause{2000};

constexpr char kDriverLogFile[] = "Creo_plugin_dll_log.txt";
constexpr int kDriverLogSizeKb = 500;

// Null when the object cannot be created, for whatever reason.
template <typename Proxy, typename... Parts>
Proxy* create(Parts&&... parts) {
    try {
        return new Proxy(std::forward<Parts>(parts)...);
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

}  // namespace

CObAddin* gAddin = nullptr;

int user_initialize() {
    static constexpr char kMethod[] = "user_initialize";
    atEdge({kLogClass, kMethod}, [] {
        if (gAddin != nullptr) {
            OB_LOG_IN(LogLevel::WRN, kMethod) << "user_initialize() called twice!";
            return;
        }
        pinLibrary();
        gAddin = new (std::nothrow) CObAddin();
    });
    return 0;
}

void user_terminate() {
    atEdge({kLogClass, "user_terminate"}, [] {
        if (CreoProxy::putOffEnd()) return;     // comes again at the end of the running callback
        delete std::exchange(gAddin, nullptr);  // nobody deletes it twice, whatever comes in meanwhile
    });
}

CObAddin::CObAddin() {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    configureLogging();
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    mCreoProxyP = create<CreoProxy>(settings, handOver, legacyCom1, &user_terminate);
    if (mCreoProxyP != nullptr) mDaemonProxyP = create<DaemonProxy>(handOver);
    if (mCreoProxyP == nullptr || mDaemonProxyP == nullptr) {
        OB_LOG(LogLevel::ERR) << "mCreoProxyP or mDaemonProxyP could not be created!";
        std::exit(-1);
    }
    startWatchdog();
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

CObAddin::~CObAddin() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    handOver.isEnding = true;
    while (mIsWatchdogRunning) std::this_thread::sleep_for(kWatchdogPause);
    legacyCom1.resetLegacyCom1();
    delete mDaemonProxyP;
    delete mCreoProxyP;
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

void CObAddin::configureLogging() {
    const int status = obSetDllLogFlags(kDriverLogFile, kDriverLogSizeKb, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "");
    if (status != 0) OB_LOG(LogLevel::ERR) << "Error in obSetDllLogFlags()!";
    gLogging.init(settings.mLogPars);
}

void CObAddin::startWatchdog() {
    mIsWatchdogRunning = true;  // before the thread runs: destruction must not overtake its start
    if (pthread_create(&mWatchdog, nullptr, &watchdogEntry, this) != 0) {
        mIsWatchdogRunning = false;
        OB_LOG(LogLevel::ERR) << "Error creating reading thread!";
    }
}

void* CObAddin::watchdogEntry(void* addin) {
    auto* self = static_cast<CObAddin*>(addin);
    atEdge({kLogClass, "watchdogEntry"}, [self] { self->watchConnection(); });
    self->mIsWatchdogRunning = false;
    return nullptr;
}

void CObAddin::watchConnection() {
    while (!handOver.isEnding) {
        if (!mDaemonProxyP->checkConnection()) mDaemonProxyP->connect();
        std::this_thread::sleep_for(kWatchdogPause);
    }
}
