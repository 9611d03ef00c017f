// The control panel in a workbench, steered as a person does: by messages to its real windows. What goes wrong throws
// std::runtime_error.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <vector>

#include "workbench/control/process.h"
#include "workbench/control/workbench.h"
#include "workbench/panel/controls.h"

namespace workbench {

class PanelWindow {
  public:
    // Starts the panel, in English, and waits until it has found the daemon, which must run. The workbench must outlive
    // this object, and the panel ends with it.
    PanelWindow(Workbench& bench, const std::filesystem::path& bindFile,
                const std::vector<std::string>& moreArguments = {});

    Process& process() { return mProcess; }
    HWND window() const { return mWindow; }
    HWND cap() const { return mCap; }
    HWND control(panel::Control id, int index = 0) const;  // the index-th of several
    std::string caption(panel::Control id, int index = 0) const;
    void awaitPainted() const;  // until it looks the same twice
    std::string output() const { return readTextFile(mOutputFile); }

    // ---- the cap ----

    // Drags the cap by so many pixels with the left button, or the right one, which turns it; and goes on holding it.
    void drag(int right, int up, bool isTurning = false) const;
    void letGo() const;

    // ---- pages ----

    void openPage(panel::Page page) const;
    void press(panel::Control id, int index = 0) const;
    void key(panel::Control id, WPARAM virtualKey) const;
    void chooseMode(const std::string& mode) const;  // on the page of bindings
    void search(const std::string& words) const;     // types them, letter by letter; ASCII

  private:
    void findWindows();

    std::filesystem::path mOutputFile;
    Process mProcess;
    HWND mWindow = nullptr;
    HWND mCap = nullptr;
};

}  // namespace workbench
