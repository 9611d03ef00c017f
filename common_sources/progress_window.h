// The small top-most window that shows the progress of the first start. Windows only; the header needs no Windows
// headers.
#pragma once

#include <atomic>
#include <memory>

// start(), update() and stop() are for one thread, which is not the window's. The window lives on a thread of its own.
class ProgressWindow {
  public:
    ProgressWindow();
    ~ProgressWindow();  // stops
    ProgressWindow(const ProgressWindow&) = delete;
    ProgressWindow& operator=(const ProgressWindow&) = delete;

    // The run flag: true from start() until stop(), or until the window's thread has ended by itself because it could
    // not show the window. start() then tries again.
    bool isRunning() const { return mIsRunning.load(); }

    // Starts the window's thread unless isRunning(). The window appears a moment later.
    void start();

    // Shows the progress, a value in [0, 1]; ignored outside it and while there is no window. Waits until the window's
    // thread has shown it (0.1 s at most).
    void update(double progress);

    // Clears the run flag and waits until the window and its thread are gone, also from an error message that nobody
    // answers.
    void stop();

  private:
    struct Window;

    void run();

    std::atomic<bool> mIsRunning{false};
    std::unique_ptr<Window> mWindow;  // handles of the window and its thread
};
