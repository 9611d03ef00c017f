// The panel's window: the cap with its sliders, and the pages beside or below it. User-interface thread.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/bindings_page.h"
#include "workbench/panel/windows/buttons_page.h"
#include "workbench/panel/windows/cap_view.h"
#include "workbench/panel/windows/device_page.h"
#include "workbench/panel/windows/pane.h"

namespace workbench {

class MainWindow : public Pane {
  public:
    static constexpr UINT kDaemonChanged = WM_APP + 1;  // posted by whoever hears of it

    explicit MainWindow(Desk& desk);
    // Shows it: in this rectangle of the screen, or where it fits.
    void show(const std::optional<RECT>& area);
    bool translate(MSG& message);  // true when the message is done with
    double lastSearchMs() const { return mBindings.lastSearchMs(); }

  private:
    void layOut(int width, int height) override;
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;
    void layOutCap(const RECT& area);
    void slide(HWND slider, int code);
    void showCap();
    void showDaemon();
    void showPage(int page);
    std::wstring statusText();
    void rescale(int dpi, const RECT& area);

    Desk& mDesk;
    bool mWasConnected = false;
    unsigned mSamples = 0;
    HWND mTabs = nullptr, mHold = nullptr, mRelease = nullptr, mGain = nullptr, mCurve = nullptr, mGainLabel = nullptr,
         mCurveLabel = nullptr, mStatus = nullptr;
    std::array<HWND, kCapAxes> mSliders{}, mNames{}, mNumbers{};
    HWND mOwner;  // this window, made before its parts
    CapView mCap;
    ButtonsPage mButtons;
    BindingsPage mBindings;
    DevicePage mDevice;
};

}  // namespace workbench
