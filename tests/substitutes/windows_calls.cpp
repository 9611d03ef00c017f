#include "tests/substitutes/windows_calls.h"

#include <thread>

namespace substitute {

namespace {

std::thread::id testThread;

template <typename Function>
Function* inWindows(const char* library, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(library), name)));
}

UINT_PTR WINAPI setTimer(HWND window, UINT_PTR id, UINT interval, TIMERPROC proc) {
    SetLastError(ERROR_NO_SYSTEM_RESOURCES);
    if (system().areTimersRefused) return 0;
    system().timersSet.push_back({window, id, interval});
    system().timerProc = proc;
    return id;
}

BOOL WINAPI killTimer(HWND window, UINT_PTR id) {
    system().timersKilled.push_back({window, id, 0});
    return TRUE;
}

BOOL WINAPI getCursorPos(POINT* point) {
    if (!system().pointer) return FALSE;
    *point = *system().pointer;
    return TRUE;
}

HWND WINAPI windowFromPoint(POINT) { return system().underPointer; }

HWND WINAPI getForegroundWindow() { return system().inFront; }

DWORD WINAPI getWindowThreadProcessId(HWND window, DWORD* process) {
    static const auto real = inWindows<decltype(GetWindowThreadProcessId)>("user32", "GetWindowThreadProcessId");
    const DWORD thread = real(window, process);
    if (process != nullptr && window != nullptr && window == system().ofOtherProcess) ++*process;
    return thread;
}

BOOL WINAPI updateWindow(HWND window) {
    system().updated.push_back(window);
    return TRUE;
}

BOOL WINAPI redrawWindow(HWND window, const RECT* rect, HRGN region, UINT flags) {
    if (rect == nullptr && region == nullptr && flags == RDW_INVALIDATE) system().invalidated.push_back(window);
    return TRUE;
}

LRESULT WINAPI sendMessageTimeout(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT flags, UINT timeout,
                                  PDWORD_PTR result) {
    static const auto real = inWindows<decltype(SendMessageTimeoutA)>("user32", "SendMessageTimeoutA");
    constexpr UINT kPatience = 60000;
    system().timeouts.push_back(timeout);
    system().clock += system().answerTime;
    const bool isLimited = (flags & SMTO_ABORTIFHUNG) != 0 && !system().isAnswering;
    return real(window, message, wParam, lParam, flags, isLimited ? timeout : kPatience, result);
}

void WINAPI sleep(DWORD ms) {
    static const auto real = inWindows<decltype(Sleep)>("kernel32", "Sleep");
    if (std::this_thread::get_id() == testThread) {
        system().pauses.push_back(ms);
    } else {
        real(ms);
    }
}

ULONGLONG WINAPI getTickCount64() {
    static const auto real = inWindows<decltype(GetTickCount64)>("kernel32", "GetTickCount64");
    return std::this_thread::get_id() == testThread ? system().clock : real();
}

}  // namespace

void System::reset() {
    *this = {};
    testThread = std::this_thread::get_id();
}

System& system() {
    static System theSystem;
    return theSystem;
}

}  // namespace substitute

// A program calls Windows through pointers of these names, which otherwise come from the import libraries.
#ifdef __i386__
#define POINTER_TO(name, argumentBytes) asm("__imp__" #name "@" #argumentBytes)
#else
#define POINTER_TO(name, argumentBytes) asm("__imp_" #name)
#endif
#define REPLACE(name, argumentBytes, function)                                         \
    extern "C" const decltype(&(name)) replaced##name POINTER_TO(name, argumentBytes); \
    const decltype(&(name)) replaced##name = substitute::function

REPLACE(SetTimer, 16, setTimer);
REPLACE(KillTimer, 8, killTimer);
REPLACE(GetCursorPos, 4, getCursorPos);
REPLACE(WindowFromPoint, 8, windowFromPoint);
REPLACE(GetForegroundWindow, 0, getForegroundWindow);
REPLACE(GetWindowThreadProcessId, 8, getWindowThreadProcessId);
REPLACE(UpdateWindow, 4, updateWindow);
REPLACE(RedrawWindow, 16, redrawWindow);
REPLACE(SendMessageTimeoutA, 28, sendMessageTimeout);
REPLACE(Sleep, 4, sleep);
REPLACE(GetTickCount64, 0, getTickCount64);
