#include "common_sources/program_facts.h"

#include <generated/build_commit.h>
#include <generated/version.h>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

enum class Module { plugin, host };

// In the process code page, as the log is.
std::string fileOf([[maybe_unused]] Module module) {
#ifdef _WIN32
    constexpr DWORD kLongestPath = 32768;
    HMODULE handle = nullptr;
    if (module == Module::plugin) {
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           reinterpret_cast<LPCSTR>(&fileOf), &handle);
    }
    std::string path(kLongestPath, '\0');
    path.resize(GetModuleFileNameA(handle, path.data(), kLongestPath));
    return path;
#else
    std::error_code error;  // what needs no windows is linked into its host
    return std::filesystem::read_symlink("/proc/self/exe", error).string();
#endif
}

std::tm brokenDown(std::time_t time, bool isLocal) {
    std::tm result{};
#ifdef _WIN32
    isLocal ? localtime_s(&result, &time) : gmtime_s(&result, &time);
#else
    isLocal ? localtime_r(&time, &result) : gmtime_r(&time, &result);
#endif
    return result;
}

// The zone as its offset: its name is in the system's language, and often ambiguous.
std::string dateAndZone(std::time_t time) {
    const std::tm local = brokenDown(time, true), utc = brokenDown(time, false);
    const int years = local.tm_year - utc.tm_year;
    const int days = years != 0 ? years : local.tm_yday - utc.tm_yday;
    const int minutes = (days * 24 + local.tm_hour - utc.tm_hour) * 60 + local.tm_min - utc.tm_min;
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d, time zone UTC%c%02d:%02d", local.tm_year + 1900,
                  local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec, minutes < 0 ? '-' : '+',
                  std::abs(minutes) / 60, std::abs(minutes) % 60);
    return text;
}

}  // namespace

std::vector<std::string> programFacts() {
    return {std::string("Version: ") + kProductVersion,
            std::string("Build: commit ") + kBuildCommit + ", GCC " + __VERSION__ + ", " +
                std::to_string(sizeof(void*) * 8) + " bit",
            "Plug-in: " + fileOf(Module::plugin), "Host: " + fileOf(Module::host),
            "Started: " + dateAndZone(std::time(nullptr))};
}
