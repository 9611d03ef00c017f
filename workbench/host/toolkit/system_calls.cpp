#include "workbench/host/toolkit/system_calls.h"

#include <process.h>

#include <cerrno>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "workbench/host/model/creo_variant.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/toolkit_call.h"

namespace workbench {
namespace {

using TimerKey = std::pair<HWND, UINT_PTR>;
std::map<TimerKey, TIMERPROC> timers;  // of the user-interface thread
int ticks = 0;

std::mutex threadLock;
std::vector<HANDLE> threads;  // own handles; guarded by threadLock

UINT_PTR WINAPI noteTimer(HWND window, UINT_PTR id, UINT interval, TIMERPROC proc) {
    if (toolkitCalls().refusesSystemCall("SetTimer")) {
        SetLastError(ERROR_NO_SYSTEM_RESOURCES);
        return 0;
    }
    const UINT_PTR made = SetTimer(window, id, interval, proc);
    if (made != 0) timers[{window, window == nullptr ? made : id}] = proc;
    return made;
}

BOOL WINAPI noteTimerEnd(HWND window, UINT_PTR id) {
    timers.erase({window, id});
    return KillTimer(window, id);
}

// The toolkit functions of the main module are not found by name in a Creo that has them in another.
FARPROC WINAPI findFunction(HMODULE module, LPCSTR name) {
    const bool isToolkit = !IS_INTRESOURCE(name) && std::strncmp(name, "Pro", 3) == 0;
    if (creoVariant().hasOtherModule && isToolkit && module == GetModuleHandleW(nullptr)) {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return GetProcAddress(module, name);
}

void forgetEndedThreads() {  // threadLock is held
    std::erase_if(threads, [](HANDLE thread) {
        const bool hasEnded = WaitForSingleObject(thread, 0) == WAIT_OBJECT_0;
        if (hasEnded) CloseHandle(thread);
        return hasEnded;
    });
}

std::uintptr_t __cdecl noteThread(void* security, unsigned stackSize, unsigned(__stdcall* start)(void*), void* argument,
                                  unsigned flags, unsigned* id) {
    if (toolkitCalls().refusesSystemCall("_beginthreadex")) {
        errno = EAGAIN;
        return 0;
    }
    const std::uintptr_t made = _beginthreadex(security, stackSize, start, argument, flags, id);
    HANDLE own = nullptr;
    const std::lock_guard guard(threadLock);
    forgetEndedThreads();
    if (made != 0 && DuplicateHandle(GetCurrentProcess(), reinterpret_cast<HANDLE>(made), GetCurrentProcess(), &own, 0,
                                     FALSE, DUPLICATE_SAME_ACCESS)) {
        threads.push_back(own);
    }
    return made;
}

template <typename T>
T* at(HMODULE module, DWORD offset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(module) + offset);
}

void replace(IMAGE_THUNK_DATA* slot, void* function) {
    DWORD protection = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection);
    slot->u1.Function = reinterpret_cast<ULONG_PTR>(function);
    VirtualProtect(slot, sizeof *slot, protection, &protection);
}

void* watcherOf(const char* function) {
    static const std::pair<const char*, void*> WATCHERS[] = {
        {"SetTimer", reinterpret_cast<void*>(noteTimer)},
        {"GetProcAddress", reinterpret_cast<void*>(findFunction)},
        {"KillTimer", reinterpret_cast<void*>(noteTimerEnd)},
        {"_beginthreadex", reinterpret_cast<void*>(noteThread)},
    };
    for (const auto& [name, watcher] : WATCHERS) {
        if (std::strcmp(function, name) == 0) return watcher;
    }
    return nullptr;
}

}  // namespace

void watchSystemCallsOf(HMODULE module) {
    const auto* dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto* headers = at<IMAGE_NT_HEADERS>(module, static_cast<DWORD>(dos->e_lfanew));
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    if (imports.VirtualAddress == 0) return;
    for (auto* library = at<IMAGE_IMPORT_DESCRIPTOR>(module, imports.VirtualAddress); library->Name != 0; ++library) {
        if (library->OriginalFirstThunk == 0) continue;
        auto* name = at<IMAGE_THUNK_DATA>(module, library->OriginalFirstThunk);
        auto* slot = at<IMAGE_THUNK_DATA>(module, library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            void* watcher =
                watcherOf(at<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name->u1.AddressOfData))->Name);
            if (watcher != nullptr) replace(slot, watcher);
        }
    }
}

int liveTimers() {
    std::erase_if(timers, [](const auto& timer) {
        const HWND window = timer.first.first;
        return window != nullptr && !IsWindow(window);
    });
    return static_cast<int>(timers.size());
}

int liveThreads() {
    const std::lock_guard guard(threadLock);
    forgetEndedThreads();
    return static_cast<int>(threads.size());
}

int timerTicks() { return ticks; }

bool dispatchTimerOnOffsetStack(const MSG& timerMessage) {
    const auto found = timers.find({timerMessage.hwnd, timerMessage.wParam});
    if (found == timers.end()) return false;
    ++ticks;
#ifdef _WIN64
    return false;  // stacks are always aligned there
#else
    if (!isMisalignmentOn() || found->second == nullptr) return false;
    const std::uint32_t arguments[] = {asWord(timerMessage.hwnd), WM_TIMER, timerMessage.wParam, GetTickCount()};
    callOnOffsetStack(reinterpret_cast<const void*>(found->second), arguments, 4);
    return true;
#endif
}

}  // namespace workbench
