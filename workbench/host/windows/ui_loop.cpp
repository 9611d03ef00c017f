#include "workbench/host/windows/ui_loop.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

namespace workbench {
namespace {

constexpr UINT WM_RUN_TASKS = WM_APP + 1;
constexpr UINT WM_HEARTBEAT = WM_APP + 2;
constexpr DWORD HEARTBEAT_MS = 10;
constexpr UINT_PTR IDLE_TIMER = 1;
constexpr wchar_t CLASS_NAME[] = L"CreoHostMessages";

DWORD threadId = 0;
HWND messageWindow = nullptr;
MessageFilter keyFilter = [](const MSG&) { return false; };
MessageFilter timerFilter = keyFilter;
std::function<void(char)> characterHandler = [](char) {};

std::mutex taskLock;
std::deque<std::function<void()>> tasks;
std::deque<std::function<void()>> idleTasks;  // of the user-interface thread
bool isLoopOver = false;                      // guarded by taskLock; nobody would run a task any more

std::atomic<bool> isHeartbeatPending{false};
std::atomic<DWORD> heartbeatSent{0};
std::atomic<std::uint32_t> longestBlock{0};
std::atomic<bool> isClosing{false};

void runTasks() {
    for (;;) {
        std::function<void()> task;
        {
            const std::lock_guard guard(taskLock);
            if (tasks.empty()) return;
            task = std::move(tasks.front());
            tasks.pop_front();
        }
        task();
    }
}

// Timers come last in a message loop, and one after the other.
void runIdleTasks() {
    KillTimer(messageWindow, IDLE_TIMER);
    for (const auto& task : std::exchange(idleTasks, {})) task();
}

void noteBlock(std::uint32_t blocked) {
    std::uint32_t known = longestBlock;
    while (blocked > known && !longestBlock.compare_exchange_weak(known, blocked)) {
    }
}

LRESULT CALLBACK messageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_RUN_TASKS) runTasks();
    if (message == WM_TIMER && wParam == IDLE_TIMER) runIdleTasks();
    if (message == WM_HEARTBEAT) {
        noteBlock(GetTickCount() - heartbeatSent);
        isHeartbeatPending = false;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

// Posts a heartbeat whenever the last one was answered.
void beat() {
    while (!isClosing) {
        if (!isHeartbeatPending) {
            heartbeatSent = GetTickCount();
            isHeartbeatPending = true;
            PostMessageW(messageWindow, WM_HEARTBEAT, 0, 0);
        }
        Sleep(HEARTBEAT_MS);
    }
}

bool isEditField(HWND window) {
    wchar_t name[16] = L"";
    GetClassNameW(window, name, 16);
    return lstrcmpiW(name, L"Edit") == 0;
}

// A key press that was posted together with its character must not bring that character a second time.
bool hasItsCharacter(const MSG& keyDown) {
    MSG next;
    return PeekMessageW(&next, keyDown.hwnd, WM_CHAR, WM_CHAR, PM_NOREMOVE) != 0;
}

void serve(const MSG& message) {
    const bool isKey = message.message >= WM_KEYFIRST && message.message <= WM_KEYLAST;
    if (isKey && keyFilter(message)) return;
    if (message.message == WM_CHAR && !isEditField(message.hwnd)) {
        characterHandler(static_cast<char>(message.wParam));
    }
    if (isKey && !(message.message == WM_KEYDOWN && hasItsCharacter(message))) TranslateMessage(&message);
    if (message.message == WM_TIMER && timerFilter(message)) return;
    DispatchMessageW(&message);
}

}  // namespace

void openUiLoop() {
    threadId = GetCurrentThreadId();
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = messageProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = CLASS_NAME;
    RegisterClassW(&windowClass);
    messageWindow =
        CreateWindowExW(0, CLASS_NAME, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance, nullptr);
    if (messageWindow == nullptr) throw std::runtime_error("the message window cannot be made");
}

DWORD uiThreadId() { return threadId; }

void postToUi(std::function<void()> task) {
    {
        const std::lock_guard guard(taskLock);
        if (isLoopOver) return;
        tasks.push_back(std::move(task));
    }
    PostMessageW(messageWindow, WM_RUN_TASKS, 0, 0);
}

void postToUiWhenIdle(std::function<void()> task) {
    postToUi([task = std::move(task)]() mutable {
        idleTasks.push_back(std::move(task));
        SetTimer(messageWindow, IDLE_TIMER, USER_TIMER_MINIMUM, nullptr);
    });
}

int runUiLoop() {
    std::thread heart(beat);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) serve(message);
    isClosing = true;
    heart.join();
    const std::lock_guard guard(taskLock);
    isLoopOver = true;
    tasks.clear();
    idleTasks.clear();
    return static_cast<int>(message.wParam);
}

void pumpUiMessages() {
    constexpr int MOST = 1000;  // what comes in faster than it is served must not keep the call for ever
    MSG message{};
    for (int i = 0; i < MOST && PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE); ++i) {
        if (message.message == WM_QUIT) return quitUiLoop(static_cast<int>(message.wParam));
        serve(message);
    }
}

void noteInput() { GetQueueStatus(QS_INPUT); }

void quitUiLoop(int exitCode) { PostQuitMessage(exitCode); }

void setKeyFilter(MessageFilter filter) { keyFilter = std::move(filter); }
void setCharacterHandler(std::function<void(char)> handler) { characterHandler = std::move(handler); }
void setTimerFilter(MessageFilter filter) { timerFilter = std::move(filter); }

std::uint32_t takeLongestBlock() {
    const std::uint32_t pending = isHeartbeatPending ? GetTickCount() - heartbeatSent : 0;
    return std::max(longestBlock.exchange(0), pending);
}

}  // namespace workbench
