// The cap, to take hold of with the mouse or the keyboard. User-interface thread.
#pragma once

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/pane.h"

namespace workbench {

class CapView : public Pane {
  public:
    CapView(HWND parent, Desk& desk);

    // Everything in a hand springs back: for when the panel is left.
    void letGo();

  private:
    enum class Grip { none, cap, handle };

    void layOut(int, int) override { InvalidateRect(window(), nullptr, FALSE); }
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;
    void grab(CapMotion motion, LPARAM place);
    void drag(LPARAM place);
    void turnWheel(WPARAM wParam);
    void letGo(CapState::Hand hand);
    bool press(WPARAM key);
    bool lift(WPARAM key);
    void paint() const;
    void paintCap(const Canvas& canvas) const;
    void paintHandle(const Canvas& canvas) const;

    Desk& mDesk;
    Grip mGrip = Grip::none;
    CapMotion mMotion = CapMotion::push;
    POINT mStart{};
    double mWheel = 0.0;
};

}  // namespace workbench
