// The device's settings, the daemon's life, and who is connected. User-interface thread.
#pragma once

#include <array>

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/pane.h"
#include "workbench/panel/windows/plot_view.h"

namespace workbench {

class DevicePage : public Pane {
  public:
    DevicePage(HWND parent, Desk& desk);
    void refresh();     // the daemon's state is another one
    void takeSample();  // for the plot, in even times

  private:
    void layOut(int width, int height) override;
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;
    void apply();
    void toggleRecord();

    Desk& mDesk;
    std::array<HWND, 3> mLabels{};
    std::array<HWND, 3> mFields{};
    std::array<std::wstring, 3> mShown;  // as the daemon had them last: a field that somebody edits is left alone
    HWND mApply, mDie, mReturn, mRecord, mApplicationsLabel, mApplications;
    PlotView mPlot;
};

}  // namespace workbench
