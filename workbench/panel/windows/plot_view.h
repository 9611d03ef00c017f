// The last seconds of the six axes, as the daemon has them. User-interface thread.
#pragma once

#include <deque>

#include "workbench/panel/core/cap_state.h"
#include "workbench/panel/windows/pane.h"

namespace workbench {

class PlotView : public Pane {
  public:
    explicit PlotView(HWND parent);
    void take(const CapAxes& axes);

  private:
    void layOut(int, int) override { InvalidateRect(window(), nullptr, FALSE); }
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;
    void paint() const;

    std::deque<CapAxes> mSamples;  // oldest first
};

inline constexpr COLORREF kAxisColours[kCapAxes] = {RGB(200, 48, 40), RGB(40, 150, 60),  RGB(40, 90, 200),
                                                    RGB(230, 150, 0), RGB(20, 160, 170), RGB(150, 60, 190)};
inline constexpr const wchar_t* kAxisNames[kCapAxes] = {L"tx", L"ty", L"tz", L"rx", L"ry", L"rz"};

}  // namespace workbench
