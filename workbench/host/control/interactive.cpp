#include "workbench/host/control/interactive.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <thread>

#include "workbench/host/control/device_support.h"
#include "workbench/host/windows/ui_loop.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {
namespace {

constexpr int PUSH = 200;  // deflection of a pressed key
constexpr DWORD POLL_MS = 15;
constexpr int ANSWER_TIME_MS = 1000;

struct CapKey {
    int key;
    std::size_t axis;
    std::size_t axisWithControl;
    int direction;
    int directionWithControl;
};
constexpr CapKey KEYS[] = {
    {VK_RIGHT, 0, 4, 1, 1}, {VK_LEFT, 0, 4, -1, -1}, {VK_UP, 1, 3, 1, -1},
    {VK_DOWN, 1, 3, -1, 1}, {VK_PRIOR, 2, 5, 1, 1},  {VK_NEXT, 2, 5, -1, -1},
};

bool isDown(int key) { return (GetAsyncKeyState(key) & 0x8000) != 0; }

// Whether keys go to one of the host's windows now, and not to an edit field or an open menu. Any thread.
bool hasFocus() {
    GUITHREADINFO info{};
    info.cbSize = sizeof info;
    if (!GetGUIThreadInfo(uiThreadId(), &info) || (info.flags & GUI_INMENUMODE) != 0) return false;
    wchar_t name[16] = L"";
    GetClassNameW(info.hwndFocus, name, 16);
    return GetWindowThreadProcessId(GetForegroundWindow(), nullptr) == uiThreadId() && lstrcmpiW(name, L"Edit") != 0;
}

Axes pushedAxes() {
    Axes pushed{};
    if (!hasFocus()) return pushed;
    const bool hasControl = isDown(VK_CONTROL);
    for (const CapKey& key : KEYS) {
        if (!isDown(key.key)) continue;
        pushed[hasControl ? key.axisWithControl : key.axis] +=
            PUSH * (hasControl ? key.directionWithControl : key.direction);
    }
    return pushed;
}

void send(LineClient& client, const Axes& axes) {
    std::string request = "axes";
    for (const int value : axes) request += " " + std::to_string(value);
    if (client.isOpen() || client.open(pipeName("obk_control"), 0)) client.ask(request, ANSWER_TIME_MS);
}

}  // namespace

struct CapKeys::Impl {
    std::atomic<bool> isEnding{false};
    std::thread thread;

    void run() {
        LineClient client;
        Axes sent{};
        while (!isEnding) {
            const Axes pushed = pushedAxes();
            if (pushed != sent) send(client, pushed);
            sent = pushed;
            Sleep(POLL_MS);
        }
        if (sent != Axes{}) send(client, {});
    }
};

CapKeys::CapKeys() : mImpl(std::make_unique<Impl>()) {
    mImpl->thread = std::thread([this] { mImpl->run(); });
}

CapKeys::~CapKeys() {
    mImpl->isEnding = true;
    mImpl->thread.join();
}

bool CapKeys::filter(const MSG& message) const {
    const bool isPress = message.message == WM_KEYDOWN || message.message == WM_KEYUP;
    return isPress && hasFocus() && std::any_of(std::begin(KEYS), std::end(KEYS), [&](const CapKey& key) {
               return static_cast<WPARAM>(key.key) == message.wParam;
           });
}

}  // namespace workbench
