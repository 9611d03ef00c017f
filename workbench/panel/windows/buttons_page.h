// The device's buttons: what each does now, and pressing them. User-interface thread.
#pragma once

#include <array>

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/pane.h"

namespace workbench {

class ButtonsPage : public Pane {
  public:
    static constexpr std::size_t kSpecialCount = 7;

    ButtonsPage(HWND parent, Desk& desk);
    void refresh();  // the mode, or the bindings, are others

  private:
    void layOut(int width, int height) override;
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;

    Desk& mDesk;
    std::array<HWND, kButtonCount> mButtons{};
    std::array<HWND, kSpecialCount> mSpecials{};
    HWND mSpecialTitle = nullptr;
};

}  // namespace workbench
