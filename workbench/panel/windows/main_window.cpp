#include "workbench/panel/windows/main_window.h"

#include <commctrl.h>

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <initializer_list>
#include <sstream>

#include "workbench/panel/controls.h"
#include "workbench/panel/windows/texts.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr int kSteps = 100;  // of a slider, each way
constexpr UINT_PTR kTimer = 1;
constexpr UINT kSampleMs = 50;
constexpr int kSamplesPerLook = 20;  // at the menu file
constexpr int kLeastWidth = 520, kLeastHeight = 500;
constexpr UINT kDpiChanged = 0x02E0;  // WM_DPICHANGED, which the headers have for newer systems only

BOOL CALLBACK giveFont(HWND child, LPARAM) {
    SendMessageW(child, WM_SETFONT, reinterpret_cast<WPARAM>(uiFont()), FALSE);
    return TRUE;
}

HWND makeWindow(HWND window) { return window; }

}  // namespace

MainWindow::MainWindow(Desk& desk)
    : mDesk(desk),
      mOwner(
          (create(nullptr, L"ObkPanel", text(Text::title), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT),
           setDpi(dpiOf(window())), makeWindow(window()))),
      mCap(mOwner, desk),
      mButtons(mOwner, desk),
      mBindings(mOwner, desk),
      mDevice(mOwner, desk) {
    for (std::size_t i = 0; i < kCapAxes; ++i) {
        const int number = static_cast<int>(i);
        mNames[i] = add(L"STATIC", kAxisNames[i], SS_LEFT | SS_CENTERIMAGE);
        mSliders[i] = add(TRACKBAR_CLASSW, kAxisNames[i], WS_TABSTOP | TBS_NOTICKS, panel::kFirstSlider + number);
        mNumbers[i] = add(L"STATIC", L"0", SS_RIGHT | SS_CENTERIMAGE, panel::kFirstNumber + number);
        SendMessageW(mSliders[i], TBM_SETRANGEMIN, FALSE, -kSteps);
        SendMessageW(mSliders[i], TBM_SETRANGEMAX, FALSE, kSteps);
    }
    mHold = add(L"BUTTON", text(Text::hold), WS_TABSTOP | BS_AUTOCHECKBOX, panel::kHold);
    mRelease = add(L"BUTTON", text(Text::release), WS_TABSTOP | BS_PUSHBUTTON, panel::kRelease);
    mGainLabel = add(L"STATIC", text(Text::gain), SS_LEFT | SS_CENTERIMAGE);
    mGain = add(TRACKBAR_CLASSW, text(Text::gain), WS_TABSTOP | TBS_NOTICKS, panel::kGain);
    mCurveLabel = add(L"STATIC", text(Text::curve), SS_LEFT | SS_CENTERIMAGE);
    mCurve = add(TRACKBAR_CLASSW, text(Text::curve), WS_TABSTOP | TBS_NOTICKS, panel::kCurve);
    SendMessageW(mGain, TBM_SETRANGE, TRUE,
                 MAKELPARAM(static_cast<int>(CapState::kLeastGain * kSteps),
                            static_cast<int>(CapState::kGreatestGain * kSteps)));
    SendMessageW(mCurve, TBM_SETRANGE, TRUE,
                 MAKELPARAM(static_cast<int>(CapState::kLeastCurve * kSteps),
                            static_cast<int>(CapState::kGreatestCurve * kSteps)));
    SendMessageW(mGain, TBM_SETPOS, TRUE, kSteps);
    SendMessageW(mCurve, TBM_SETPOS, TRUE, kSteps);
    mTabs = add(WC_TABCONTROLW, L"", WS_TABSTOP | WS_CLIPSIBLINGS, panel::kTabs);
    int index = 0;
    for (const Text title : {Text::buttonsPage, Text::bindingsPage, Text::devicePage}) {
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = const_cast<wchar_t*>(text(title));  // only read
        SendMessageW(mTabs, TCM_INSERTITEMW, static_cast<WPARAM>(index++), reinterpret_cast<LPARAM>(&item));
    }
    mStatus = add(L"STATIC", L"", SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_SUNKEN | SS_ENDELLIPSIS, panel::kStatus);
    mDesk.capMoved = [this] { showCap(); };
    mDesk.bindingsChanged = [this] {
        mButtons.refresh();
        mBindings.refreshBindings();
        showDaemon();
    };
    showPage(0);
    showDaemon();
    SetTimer(window(), kTimer, kSampleMs, nullptr);
}

void MainWindow::show(const std::optional<RECT>& wanted) {
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    RECT area =
        wanted.value_or(RECT{work.left + px(20), work.top + px(20), work.left + px(20 + 640), work.top + px(20 + 880)});
    area.right = std::min(area.right, work.right);
    area.bottom = std::min(area.bottom, work.bottom);
    SetWindowPos(window(), HWND_TOP, area.left, area.top, area.right - area.left, area.bottom - area.top, 0);
    ShowWindow(window(), SW_SHOW);
    SetFocus(mCap.window());
    RedrawWindow(window(), nullptr, nullptr, RDW_UPDATENOW | RDW_ALLCHILDREN);
}

// The cap at the left and the pages beside it, or on a tall window the cap above them.
void MainWindow::layOut(int width, int height) {
    if (mStatus == nullptr) return;
    const int gap = px(8), status = px(24);
    const int inner = height - status;
    const bool isWide = width > inner * 5 / 4;
    RECT cap{gap, gap, isWide ? std::min(width * 2 / 5, px(460)) : width - gap, isWide ? inner - gap : inner * 2 / 5};
    layOutCap(cap);
    RECT pages{isWide ? cap.right + gap : gap, isWide ? gap : cap.bottom + gap, width - gap, inner - gap};
    place(mTabs, pages.left, pages.top, pages.right - pages.left, pages.bottom - pages.top);
    SendMessageW(mTabs, TCM_ADJUSTRECT, FALSE, reinterpret_cast<LPARAM>(&pages));
    for (const HWND page : {mButtons.window(), mBindings.window(), mDevice.window()}) {
        SetWindowPos(page, HWND_TOP, pages.left, pages.top, pages.right - pages.left, pages.bottom - pages.top,
                     SWP_NOACTIVATE);
    }
    place(mStatus, 0, inner, width, status);
}

void MainWindow::layOutCap(const RECT& area) {
    const int gap = px(8), row = px(24), width = area.right - area.left, height = area.bottom - area.top;
    const bool isBeside = width > height * 5 / 4;  // the sliders beside the cap, or below it
    const int rows = static_cast<int>(kCapAxes) + 3;
    const int capWidth = isBeside ? width / 2 : width;
    const int capHeight = isBeside ? height : height - rows * (row + px(2)) - gap;
    place(mCap.window(), area.left, area.top, capWidth, capHeight);
    const int left = isBeside ? area.left + capWidth + gap : area.left, right = area.right;
    int top = isBeside ? area.top : area.top + capHeight + gap;
    const int name = px(66), number = px(44);
    const auto placeRow = [&](HWND label, HWND slider, HWND value) {
        place(label, left, top, name, row);
        place(slider, left + name, top, right - left - name - number, row);
        if (value != nullptr) place(value, right - number, top, number, row);
        top += row + px(2);
    };
    for (std::size_t i = 0; i < kCapAxes; ++i) placeRow(mNames[i], mSliders[i], mNumbers[i]);
    placeRow(mGainLabel, mGain, nullptr);
    placeRow(mCurveLabel, mCurve, nullptr);
    place(mHold, left, top, right - left - px(100) - gap, row);
    place(mRelease, right - px(100), top, px(100), row + px(2));
}

void MainWindow::slide(HWND slider, int code) {
    const auto position = static_cast<int>(SendMessageW(slider, TBM_GETPOS, 0, 0));
    const double part = static_cast<double>(position) / kSteps;
    const bool isLetGo = code == TB_ENDTRACK;
    const auto found = std::ranges::find(mSliders, slider);
    mDesk.moveCap([&](CapState& cap) {
        if (slider == mGain) {
            cap.setGain(part);
        } else if (slider == mCurve) {
            cap.setCurve(part);
        } else if (found != mSliders.end()) {
            const auto axis = static_cast<std::size_t>(found - mSliders.begin());
            if (isLetGo) {
                cap.letGo(CapState::Hand::sliders, axis);
            } else {
                cap.deflect(CapState::Hand::sliders, axis, part);
            }
        }
    });
}

void MainWindow::showCap() {
    const CapAxes axes = mDesk.cap().axes();
    for (std::size_t i = 0; i < kCapAxes; ++i) {
        setText(mNumbers[i], std::to_wstring(axes[i]));
        const LPARAM position = std::lround(mDesk.cap().deflection(i) * kSteps);
        if (SendMessageW(mSliders[i], TBM_GETPOS, 0, 0) != position) {
            SendMessageW(mSliders[i], TBM_SETPOS, TRUE, position);
        }
    }
    InvalidateRect(mCap.window(), nullptr, FALSE);
    UpdateWindow(mCap.window());
}

std::wstring MainWindow::statusText() {
    const DaemonState state = mDesk.daemon();
    const auto last = [&](std::wstring line) {
        const std::string& problem = mDesk.problem().empty() ? state.error : mDesk.problem();
        return problem.empty() ? L" " + line : L" " + wideText(problem) + L" \u2013 " + line;
    };
    if (!state.isConnected) return last(text(Text::noDaemon));
    if (state.applications.empty()) return last(text(Text::motionIdle));
    const std::string mode = state.value("mode");
    const Text motion = state.value("legacy") == "1" ? Text::motionView
                        : mode == "Assembly"         ? Text::motionComponents
                                                     : Text::motionScrolling;
    wchar_t line[256];
    const std::wstring name = mode.empty() ? text(Text::noMode) : wideText(mode).substr(0, 64);
    std::swprintf(line, std::size(line), text(motion), name.c_str());
    return last(line);
}

void MainWindow::showDaemon() {
    const bool isConnected = mDesk.daemon().isConnected;
    if (mWasConnected && !isConnected) {  // the daemon that comes next finds a cap at rest
        mCap.letGo();
        mDesk.moveCap([](CapState& cap) { cap.releaseAll(); });
    }
    mWasConnected = isConnected;
    setText(mStatus, statusText());
    mButtons.refresh();
    mDevice.refresh();
}

void MainWindow::showPage(int page) {
    const HWND pages[] = {mButtons.window(), mBindings.window(), mDevice.window()};
    SendMessageW(mTabs, TCM_SETCURSEL, static_cast<WPARAM>(page), 0);
    for (int i = 0; i < 3; ++i) ShowWindow(pages[i], i == page ? SW_SHOW : SW_HIDE);
}

bool MainWindow::translate(MSG& message) {
    if (mBindings.useKey(message)) return true;
    const bool isControl = GetKeyState(VK_CONTROL) < 0;
    wchar_t name[16] = L"";
    GetClassNameW(message.hwnd, name, 16);
    if (message.message == WM_KEYDOWN && !isControl && message.wParam >= '1' && message.wParam <= '9' &&
        lstrcmpiW(name, L"Edit") != 0) {
        if ((HIWORD(message.lParam) & KF_REPEAT) == 0) mDesk.pressButton(static_cast<int>(message.wParam - '0'));
        return true;
    }
    if (message.message == WM_KEYDOWN && isControl && message.wParam == VK_TAB) {
        showPage((static_cast<int>(SendMessageW(mTabs, TCM_GETCURSEL, 0, 0)) + 1) % 3);
        return true;
    }
    if (message.message == WM_KEYDOWN && isControl && message.wParam == 'F') {
        showPage(1);
        mBindings.focusSearch();
        return true;
    }
    return IsDialogMessageW(window(), &message) != 0;
}

void MainWindow::rescale(int dpi, const RECT& area) {
    setDpi(dpi);
    EnumChildWindows(window(), giveFont, 0);
    place(window(), area.left, area.top, area.right - area.left, area.bottom - area.top);
    for (Pane* pane : std::initializer_list<Pane*>{this, &mCap, &mButtons, &mBindings, &mDevice}) pane->layOutAgain();
    RedrawWindow(window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

LRESULT MainWindow::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_HSCROLL:
            slide(reinterpret_cast<HWND>(lParam), LOWORD(wParam));
            return 0;
        case WM_COMMAND:
            if (LOWORD(wParam) == panel::kHold) {
                const bool isHeld = SendMessageW(mHold, BM_GETCHECK, 0, 0) == BST_CHECKED;
                mDesk.moveCap([isHeld](CapState& cap) { cap.setHold(isHeld); });
            } else if (LOWORD(wParam) == panel::kRelease || LOWORD(wParam) == IDCANCEL) {
                mDesk.moveCap([](CapState& cap) { cap.releaseAll(); });
            }
            return 0;
        case WM_NOTIFY:
            if (reinterpret_cast<const NMHDR*>(lParam)->code == TCN_SELCHANGE) {
                showPage(static_cast<int>(SendMessageW(mTabs, TCM_GETCURSEL, 0, 0)));
            }
            return 0;
        case WM_ACTIVATE:
            if (LOWORD(wParam) == WA_INACTIVE) mCap.letGo();
            return 0;
        case WM_TIMER:
            mDevice.takeSample();
            if (++mSamples % kSamplesPerLook == 0 && mDesk.refreshMenuFile()) {
                mBindings.refreshCommands();
                mButtons.refresh();
            }
            return 0;
        case kDaemonChanged:
            showDaemon();
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {px(kLeastWidth), px(kLeastHeight)};
            return 0;
        case kDpiChanged:
            rescale(HIWORD(wParam), *reinterpret_cast<const RECT*>(lParam));
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return Pane::handle(message, wParam, lParam);
    }
}

}  // namespace workbench
