#include "workbench/host/control/crash_guard.h"

#include <windows.h>

#include <cstdio>

#include "workbench/host/toolkit/plugins.h"

namespace workbench {
namespace {

bool isFatal(DWORD code) {
    constexpr DWORD FATAL[] = {EXCEPTION_ACCESS_VIOLATION,   EXCEPTION_ILLEGAL_INSTRUCTION,
                               EXCEPTION_PRIV_INSTRUCTION,   EXCEPTION_STACK_OVERFLOW,
                               EXCEPTION_INT_DIVIDE_BY_ZERO, EXCEPTION_DATATYPE_MISALIGNMENT};
    for (const DWORD fatal : FATAL) {
        if (code == fatal) return true;
    }
    return false;
}

// Faults inside Windows' own libraries are theirs to handle: some probe memory that way.
LONG CALLBACK onException(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (!isFatal(record.ExceptionCode)) return EXCEPTION_CONTINUE_SEARCH;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCWSTR>(record.ExceptionAddress), &module);
    const bool isPlugin = plugins().moduleAt(record.ExceptionAddress) != nullptr;
    if (module != nullptr && module != GetModuleHandleW(nullptr) && !isPlugin) return EXCEPTION_CONTINUE_SEARCH;
    std::fprintf(
        stderr, "creo_host: exception %08lx at %p (offset %lx in %s)\n", record.ExceptionCode, record.ExceptionAddress,
        static_cast<unsigned long>(static_cast<char*>(record.ExceptionAddress) - reinterpret_cast<char*>(module)),
        isPlugin            ? "the plug-in"
        : module == nullptr ? "no module"
                            : "the host");
    std::fflush(stderr);
    TerminateProcess(GetCurrentProcess(), EXIT_CRASHED);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void guardAgainstCrashes() { AddVectoredExceptionHandler(1, onException); }

}  // namespace workbench
