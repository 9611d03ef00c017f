#include "driver/search.h"

#include <iterator>

#include "driver/obk_ctrlr.h"

namespace {

constexpr ObOrdinal kOrdinals[] = {
    ObOrdinal::connect,        ObOrdinal::disconnect, ObOrdinal::readDeviceData, ObOrdinal::getAdvancedSettings,
    ObOrdinal::getOption,      ObOrdinal::getDevInfo, ObOrdinal::getDevNum,      ObOrdinal::setOption,
    ObOrdinal::setDllLogFlags, ObOrdinal::setAppMode};

// With a closing backslash.
std::wstring folderOf(const std::wstring& file) { return file.substr(0, file.rfind(L'\\') + 1); }

std::wstring systemFolder() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size())));
    return path.empty() ? path : path + L'\\';
}

// A damaged file opens no message box.
HMODULE loadQuietly(const std::wstring& file, DWORD& code) {
    DWORD errorMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &errorMode);
    const HMODULE loaded =
        LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_SYSTEM32);
    code = loaded != nullptr ? ERROR_SUCCESS : GetLastError();
    SetThreadErrorMode(errorMode, nullptr);
    // A missing file and a missing library that it needs have one code.
    if (code == ERROR_MOD_NOT_FOUND && GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
        code = ERROR_FILE_NOT_FOUND;
    }
    return loaded;
}

}  // namespace

std::vector<std::wstring> driverPlaces(const std::wstring& pluginFile, const std::wstring& hostFile) {
    const std::wstring name(std::begin(kDriverLibrary), std::end(kDriverLibrary) - 1);
    std::vector<std::wstring> places;
    for (const auto& folder : {folderOf(pluginFile), folderOf(hostFile), systemFolder()}) {
        if (!folder.empty()) places.push_back(folder + name);
    }
    return places;
}

DriverSearch loadDriver(const std::vector<std::wstring>& places) {
    DriverSearch search;
    for (const auto& file : places) {
        DWORD code = ERROR_SUCCESS;
        search.library = loadQuietly(file, code);
        if (search.library != nullptr) {
            search.file = file;
            break;
        }
        search.failures.push_back({file, code});
    }
    return search;
}

std::string loadingProblem(DWORD code) {
    const std::string number = " (" + std::to_string(code) + ")";
    switch (code) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            return "not there" + number;
        case ERROR_BAD_EXE_FORMAT:
            return "no library for this machine type, or damaged" + number;
        case ERROR_MOD_NOT_FOUND:
        case ERROR_PROC_NOT_FOUND:
        case ERROR_INVALID_DLL:
            return "something that it needs is missing" + number;
        case ERROR_DLL_INIT_FAILED:
            return "it refused to start" + number;
        case ERROR_ACCESS_DENIED:
            return "access denied" + number;
        default:
            return "cannot be loaded" + number;
    }
}

std::vector<std::uint16_t> missingOrdinals(HMODULE library) {
    std::vector<std::uint16_t> missing;
    for (const ObOrdinal ordinal : kOrdinals) {
        const auto name = reinterpret_cast<LPCSTR>(static_cast<ULONG_PTR>(ordinal));
        if (GetProcAddress(library, name) == nullptr) missing.push_back(static_cast<std::uint16_t>(ordinal));
    }
    return missing;
}
