#include "workbench/host/interactive.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "workbench/host/device_support.h"
#include "workbench/host/frame.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {
namespace {

constexpr int PUSH = 200;  // deflection of a pressed key
constexpr int ANSWER_TIME_MS = 1000;

struct CapKey {
    WPARAM key;
    std::size_t axis;
    std::size_t axisWithControl;
    int direction;
    int directionWithControl;
};
constexpr CapKey KEYS[] = {
    {VK_RIGHT, 0, 4, 1, 1}, {VK_LEFT, 0, 4, -1, -1}, {VK_UP, 1, 3, 1, -1},
    {VK_DOWN, 1, 3, -1, 1}, {VK_PRIOR, 2, 5, 1, 1},  {VK_NEXT, 2, 5, -1, -1},
};

bool isInEditField() {
    wchar_t name[16] = L"";
    GetClassNameW(GetFocus(), name, 16);
    return lstrcmpiW(name, L"Edit") == 0;
}

}  // namespace

struct CapKeys::Impl {
    std::mutex lock;
    std::condition_variable changed;
    Axes axes{};
    bool isChanged = false;
    bool isEnding = false;
    std::thread thread;

    void set(const Axes& wanted) {
        const std::lock_guard guard(lock);
        if (axes == wanted) return;
        axes = wanted;
        isChanged = true;
        changed.notify_all();
    }

    void run() {
        LineClient client;
        for (;;) {
            std::string request = "axes";
            bool isLast = false;
            {
                std::unique_lock guard(lock);
                changed.wait(guard, [this] { return isChanged || isEnding; });
                for (const int value : isEnding ? Axes{} : axes) request += " " + std::to_string(value);
                isChanged = false;
                isLast = isEnding;
            }
            if (client.isOpen() || client.open(pipeName("obk_control"), 0)) client.ask(request, ANSWER_TIME_MS);
            if (isLast) return;
        }
    }
};

CapKeys::CapKeys() : mImpl(std::make_unique<Impl>()) {
    mImpl->thread = std::thread([this] { mImpl->run(); });
}

CapKeys::~CapKeys() {
    {
        const std::lock_guard guard(mImpl->lock);
        mImpl->isEnding = true;
        mImpl->changed.notify_all();
    }
    mImpl->thread.join();
}

bool CapKeys::filter(const MSG& message) {
    if (message.message != WM_KEYDOWN && message.message != WM_KEYUP) return false;
    const bool isInFront = GetForegroundWindow() == frame().window() && !isInEditField();
    const bool hasControl = (GetKeyState(VK_CONTROL) & 0x8000) != 0;
    Axes pushed{};
    bool isCapKey = false;
    for (const CapKey& key : KEYS) {
        isCapKey = isCapKey || key.key == message.wParam;
        if (!isInFront || (GetKeyState(static_cast<int>(key.key)) & 0x8000) == 0) continue;
        pushed[hasControl ? key.axisWithControl : key.axis] +=
            PUSH * (hasControl ? key.directionWithControl : key.direction);
    }
    if (!isCapKey && message.wParam != VK_CONTROL) return false;
    mImpl->set(pushed);
    return isCapKey && isInFront;
}

}  // namespace workbench
