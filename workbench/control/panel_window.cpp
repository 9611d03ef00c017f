#include "workbench/control/panel_window.h"

// after windows.h
#include <commctrl.h>

#include <iterator>
#include <stdexcept>
#include <utility>

#include "workbench/control/picture.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr int kGrip = 100;  // where a drag begins in the cap's window, in pixels from its left and top

struct ControlSearch {
    int id;
    HWND found;
};

BOOL CALLBACK takeControl(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<ControlSearch*>(parameter);
    if (GetDlgCtrlID(window) == search.id) search.found = window;
    return search.found == nullptr;
}

std::vector<std::string> argumentsOf(const std::filesystem::path& bindFile, const std::vector<std::string>& more) {
    std::vector<std::string> arguments{"--language", "english", "--bindings", textOf(bindFile)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

}  // namespace

PanelWindow::PanelWindow(Workbench& bench, const std::filesystem::path& bindFile,
                         const std::vector<std::string>& moreArguments)
    : mOutputFile(bench.folder() / "panel.txt"),
      mProcess(bench.start(buildFolder() / "workbench" / "obk_panel.exe", argumentsOf(bindFile, moreArguments),
                           mOutputFile)) {
    const auto isReady = [this] {
        findWindows();
        return mCap != nullptr && IsWindowVisible(mCap) && IsWindowEnabled(control(panel::kDie));
    };
    if (!waitFor(isReady)) {
        throw std::runtime_error("the panel is not there, or does not find the daemon; its output: " + output());
    }
}

void PanelWindow::findWindows() {
    mWindow = mProcess.windowWith(panel::kStatus);
    mCap = mWindow == nullptr ? nullptr : FindWindowExW(mWindow, nullptr, panel::kCapClass, nullptr);
}

HWND PanelWindow::control(panel::Control id, int index) const {
    ControlSearch search{id + index, nullptr};
    EnumChildWindows(mWindow, takeControl, reinterpret_cast<LPARAM>(&search));
    if (search.found == nullptr) throw std::runtime_error("the panel has no control " + std::to_string(id + index));
    return search.found;
}

std::string PanelWindow::caption(panel::Control id, int index) const {
    wchar_t text[512] = L"";
    SendMessageW(control(id, index), WM_GETTEXT, std::size(text), reinterpret_cast<LPARAM>(text));
    return utf8Text(text);
}

void PanelWindow::awaitPainted() const {
    constexpr DWORD kPauseMs = 80;
    Picture before = Picture::ofWindow(mWindow);
    waitFor([&] {
        Sleep(kPauseMs);
        Picture now = Picture::ofWindow(mWindow);
        std::swap(before, now);
        return now == before;
    });
}

void PanelWindow::drag(int right, int up, bool isTurning) const {
    const POINT goal{kGrip + right, kGrip - up};
    POINT onScreen = goal;  // the system tells a window that takes the mouse where the pointer really is
    ClientToScreen(mCap, &onScreen);
    SetCursorPos(onScreen.x, onScreen.y);
    PostMessageW(mCap, isTurning ? WM_RBUTTONDOWN : WM_LBUTTONDOWN, 0, MAKELPARAM(kGrip, kGrip));
    PostMessageW(mCap, WM_MOUSEMOVE, isTurning ? MK_RBUTTON : MK_LBUTTON, MAKELPARAM(goal.x, goal.y));
}

void PanelWindow::letGo() const { PostMessageW(mCap, WM_LBUTTONUP, 0, MAKELPARAM(kGrip, kGrip)); }

void PanelWindow::openPage(panel::Page page) const {
    SendMessageW(control(panel::kTabs), TCM_SETCURFOCUS, static_cast<WPARAM>(page), 0);  // selects it, too
}

void PanelWindow::press(panel::Control id, int index) const { SendMessageW(control(id, index), BM_CLICK, 0, 0); }

void PanelWindow::key(panel::Control id, WPARAM virtualKey) const {
    SendMessageW(control(id), WM_KEYDOWN, virtualKey, 1);
}

void PanelWindow::chooseMode(const std::string& mode) const {
    const HWND modes = control(panel::kModes);
    const LRESULT row =
        SendMessageW(modes, LB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(wideText(mode).c_str()));
    if (row < 0) throw std::runtime_error("the panel does not list the mode " + mode);
    SendMessageW(GetParent(modes), WM_COMMAND, MAKEWPARAM(panel::kModes, LBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(modes));
}

void PanelWindow::search(const std::string& words) const {
    const HWND field = control(panel::kSearch);
    SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(L""));
    for (const char letter : words) SendMessageW(field, WM_CHAR, static_cast<WPARAM>(letter), 1);
}

}  // namespace workbench
