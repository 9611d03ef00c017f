// Binds the operations of obk_ctrlr.h to the driver library at run time, by ordinal. The library is looked for in the
// plug-in's own folder, then in the host's, then in the system directory; never in the current directory or along
// PATH. While it, or one of its ordinals, is missing, the operation concerned answers -1; every attempt to connect
// looks for it again. Once loaded it stays loaded: another thread may be inside it at any time.
#include <windows.h>

#include <atomic>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "OB_Daemon/src/logging.h"
#include "driver/obk_ctrlr.h"
#include "driver/search.h"

namespace {

constexpr char kLogClass[] = "Driver";

constexpr DWORD kLongestPath = 32768;  // characters, with the end
constexpr int kNotBound = -1;
constexpr DWORD kFailedReadPauseMs = 10;  // keeps a reading loop without a pause of its own from burning a core

std::atomic<HMODULE> library{nullptr};
std::atomic<bool> hasLastReadFailed{false};

HMODULE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&ownModule), &module);
    return module;
}

// Empty when it cannot be told.
std::wstring fileOf(HMODULE module) {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), kLongestPath));
    return path;
}

std::string inCodePage(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    std::string narrow(text.size() * 4, '\0');
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), length, narrow.data(),
                                                               static_cast<int>(narrow.size()), nullptr, nullptr)));
    return narrow;
}

// Says why no place has the library, and again when a reason is another one: a watchdog asks every few seconds.
void tellFailures(const std::vector<DriverSearch::Failure>& failures) {
    static std::mutex guard;
    static std::string lastTold;
    std::vector<std::string> lines;
    std::string all;
    for (const auto& [file, code] : failures) {
        lines.push_back(inCodePage(file) + ": " + loadingProblem(code));
        all += lines.back() + "\n";
    }
    const std::lock_guard lock(guard);
    if (all == lastTold) return;
    for (const auto& line : lines) OB_LOG(LogLevel::WRN) << line;
    lastTold = std::move(all);
}

void tellMissingOrdinals(HMODULE module) {
    for (const auto ordinal : missingOrdinals(module)) {
        OB_LOG(LogLevel::WRN) << kDriverLibrary << " has no ordinal " << ordinal
                              << ", what it is needed for fails; install the current version of the device's software.";
    }
}

void loadLibraryIfMissing() {
    if (library.load() != nullptr) return;
    const DriverSearch search = loadDriver(driverPlaces(fileOf(ownModule()), fileOf(nullptr)));
    if (search.library == nullptr) {
        OB_LOG(LogLevel::WRN) << kDriverLibrary << " not found.";
        tellFailures(search.failures);
        return;
    }
    HMODULE none = nullptr;
    if (!library.compare_exchange_strong(none, search.library)) {  // another thread was faster
        FreeLibrary(search.library);
        return;
    }
    OB_LOG(LogLevel::INF) << kDriverLibrary << " loaded.";
    tellMissingOrdinals(search.library);
}

template <typename Operation, typename... Arguments>
int call(Operation*, ObOrdinal ordinal, Arguments... arguments) {
    HMODULE module = library.load();
    if (module == nullptr) return kNotBound;
    const auto name = reinterpret_cast<LPCSTR>(static_cast<ULONG_PTR>(ordinal));
    const auto operation = reinterpret_cast<Operation*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    return operation != nullptr ? operation(arguments...) : kNotBound;
}

}  // namespace

void useDriver(HMODULE module) { library = module; }

int obConnect(int device, const char* application) {
    loadLibraryIfMissing();
    return call(&obConnect, ObOrdinal::connect, device, application);
}

int obDisconnect() { return call(&obDisconnect, ObOrdinal::disconnect); }

int obReadDeviceData(int device, std::int16_t* tx, std::int16_t* ty, std::int16_t* tz, std::int16_t* rx,
                     std::int16_t* ry, std::int16_t* rz, std::int32_t* unused1, std::int32_t* unused2,
                     std::int32_t* event, std::int32_t* extra1, std::int32_t* extra2) {
    // Before the next read, so that an event that came with the failure is not held up.
    if (hasLastReadFailed) Sleep(kFailedReadPauseMs);
    *event = -1;
    const int status = call(&obReadDeviceData, ObOrdinal::readDeviceData, device, tx, ty, tz, rx, ry, rz, unused1,
                            unused2, event, extra1, extra2);
    hasLastReadFailed = status != 0;
    return status;
}

int obGetAdvancedSettings(int device, ObAdvancedSettings* settings) {
    return call(&obGetAdvancedSettings, ObOrdinal::getAdvancedSettings, device, settings);
}

int obGetOption(int option, std::int32_t* value) { return call(&obGetOption, ObOrdinal::getOption, option, value); }

int obSetOption(int option, std::int32_t* value) { return call(&obSetOption, ObOrdinal::setOption, option, value); }

int obGetDevNum(std::int32_t* count, std::int32_t* unused1, std::int32_t* unused2) {
    return call(&obGetDevNum, ObOrdinal::getDevNum, count, unused1, unused2);
}

int obGetDevInfo(int device, ObDevInfo* info) { return call(&obGetDevInfo, ObOrdinal::getDevInfo, device, info); }

int obSetDllLogFlags(const char* logFile, int maxSizeKb, int toFile, int toConsole, int warning, int creation,
                     int trace, int devcom, int intcom, int info, int debug, int tmp, const char* exclusiveFile) {
    loadLibraryIfMissing();
    return call(&obSetDllLogFlags, ObOrdinal::setDllLogFlags, logFile, maxSizeKb, toFile, toConsole, warning, creation,
                trace, devcom, intcom, info, debug, tmp, exclusiveFile);
}

int obSetAppMode(const char* application, const char* mode) {
    return call(&obSetAppMode, ObOrdinal::setAppMode, application, mode);
}
