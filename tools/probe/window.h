// The list of what is still to do, in a small window on a thread of its own: Creo's thread has none of our windows, so
// that the probe finds Creo's alone. What the user asks for comes back through the handler, on the window's thread.
#pragma once

#include <windows.h>

#include <functional>
#include <future>
#include <thread>

#include "tools/probe/checker.h"
#include "tools/probe/window_controls.h"

namespace probe {

class Window {
  public:
    using Handler = std::function<void(Task task, bool yes)>;

    Window(Context& context, Handler handler);
    ~Window();  // closes it and waits for its thread
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // Shows the window with this task selected; `start` leaves the selection. Any thread.
    void show(Task task) const;

  private:
    struct State;
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void run();

    Context& mContext;
    Handler mHandler;
    std::promise<void> mMade;  // the window is there, or cannot be had
    HWND mWindow = nullptr;    // written before the constructor ends
    std::thread mThread;
};

}  // namespace probe
