// Binds the operations of obk_ctrlr.h to the driver library at run time, by ordinal. The library is looked for in the
// plug-in's own folder, then in the host's, then in the system directory; never in the current directory or along
// PATH. While it, or one of its ordinals, is missing, the operation concerned answers -1; every attempt to connect
// looks for it again. Once loaded it stays loaded: another thread may be inside it at any time.
#include <windows.h>

#include <atomic>
#include <iterator>
#include <string>

#include "OB_Daemon/src/logging.h"
#include "driver/obk_ctrlr.h"
#include "driver/search.h"

namespace {

constexpr char kLogClass[] = "Driver";

constexpr int kNotBound = -1;
constexpr DWORD kFailedReadPauseMs = 10;  // keeps a reading loop without a pause of its own from burning a core

std::atomic<HMODULE> library{nullptr};

HMODULE ownModule() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCSTR>(&ownModule), &module);
    return module;
}

// Folder of a module's file with a closing backslash; empty when it cannot be told.
std::wstring folderOf(HMODULE module) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.rfind(L'\\') + 1);
}

std::wstring systemFolder() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size())));
    return path.empty() ? path : path + L'\\';
}

HMODULE loadFrom(const std::wstring& folder) {
    if (folder.empty()) return nullptr;
    const std::wstring name(std::begin(kDriverLibrary), std::end(kDriverLibrary) - 1);
    const std::wstring path = folder + name;
    // What the library itself needs comes from its own folder or the system's; a damaged file opens no message box.
    DWORD errorMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &errorMode);
    HMODULE loaded =
        LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetThreadErrorMode(errorMode, nullptr);
    return loaded;
}

void loadLibraryIfMissing() {
    if (library.load() != nullptr) return;
    for (const auto& folder : {folderOf(ownModule()), folderOf(nullptr), systemFolder()}) {
        HMODULE loaded = loadFrom(folder);
        if (loaded == nullptr) continue;
        HMODULE none = nullptr;
        if (!library.compare_exchange_strong(none, loaded)) FreeLibrary(loaded);  // another thread was faster
        OB_LOG(LogLevel::INF) << kDriverLibrary << " loaded.";
        return;
    }
    OB_LOG(LogLevel::WRN) << kDriverLibrary << " not found.";
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
    *event = -1;
    const int status = call(&obReadDeviceData, ObOrdinal::readDeviceData, device, tx, ty, tz, rx, ry, rz, unused1,
                            unused2, event, extra1, extra2);
    if (status != 0 && *event < 0) Sleep(kFailedReadPauseMs);
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
