#include "workbench/host/toolkit/timer_procs.h"

#include <cstring>
#include <map>
#include <utility>

#include "workbench/host/toolkit/plugin_call.h"

namespace workbench {
namespace {

using TimerKey = std::pair<HWND, UINT_PTR>;
std::map<TimerKey, TIMERPROC> timerProcs;  // of the user-interface thread's timers

UINT_PTR WINAPI noteTimer(HWND window, UINT_PTR id, UINT interval, TIMERPROC proc) {
    const UINT_PTR made = SetTimer(window, id, interval, proc);
    if (made != 0) timerProcs[{window, window == nullptr ? made : id}] = proc;
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

}  // namespace

void watchTimersOf(HMODULE module) {
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
            const char* function = at<IMAGE_IMPORT_BY_NAME>(module, static_cast<DWORD>(name->u1.AddressOfData))->Name;
            if (std::strcmp(function, "SetTimer") == 0) replace(slot, reinterpret_cast<void*>(noteTimer));
        }
    }
}

#ifdef _WIN64
bool dispatchTimerOnOffsetStack(const MSG&) { return false; }
#else
bool dispatchTimerOnOffsetStack(const MSG& timerMessage) {
    if (!isMisalignmentOn()) return false;
    const auto found = timerProcs.find({timerMessage.hwnd, timerMessage.wParam});
    if (found == timerProcs.end() || found->second == nullptr) return false;
    const std::uint32_t arguments[] = {asWord(timerMessage.hwnd), WM_TIMER, timerMessage.wParam, GetTickCount()};
    callOnOffsetStack(reinterpret_cast<const void*>(found->second), arguments, 4);
    return true;
}
#endif

}  // namespace workbench
