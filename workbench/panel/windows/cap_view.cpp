#include "workbench/panel/windows/cap_view.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>

#include "workbench/panel/controls.h"
#include "workbench/panel/windows/texts.h"

namespace workbench {
namespace {

constexpr COLORREF kGround = RGB(238, 241, 245), kBase = RGB(176, 184, 196), kShade = RGB(64, 72, 86),
                   kBody = RGB(84, 94, 112), kTop = RGB(112, 124, 146), kMark = RGB(236, 240, 246),
                   kPushed = RGB(226, 104, 20), kTurned = RGB(20, 122, 196), kInk = RGB(60, 68, 80);
constexpr double kKeyAmount = 0.6;
constexpr double kNotch = 0.2;  // of the wheel, part of the whole way
constexpr UINT kWheelMs = 400;  // that a notch holds without a pressed button
constexpr UINT_PTR kWheelTimer = 1;
constexpr double kPi = 3.14159265358979;

struct CapKey {
    WPARAM key;
    std::size_t axis, turnAxis;
    int direction, turnDirection;
};
constexpr CapKey kKeys[] = {
    {VK_RIGHT, 0, 4, 1, 1}, {VK_LEFT, 0, 4, -1, -1}, {VK_UP, 1, 3, 1, -1},
    {VK_DOWN, 1, 3, -1, 1}, {VK_PRIOR, 2, 5, 1, 1},  {VK_NEXT, 2, 5, -1, -1},
};

// Where things are, in pixels.
struct Places {
    double x, y, radius;        // of the cap at rest
    double way;                 // of the pointer for the whole deflection
    double handleX, handleWay;  // of the side handle: its middle, and half its height
};

Places placesIn(HWND window) {
    RECT area;
    GetClientRect(window, &area);
    const double side = std::min<double>(area.right - px(56), area.bottom - px(50));
    const double radius = std::max(side * 0.27, 8.0);
    const double x = (area.right - px(44)) / 2.0, y = (area.bottom - px(46)) / 2.0;
    return {x, y, radius, radius * 1.3, static_cast<double>(area.right - px(26)), radius * 1.5};
}

}  // namespace

CapView::CapView(HWND parent, Desk& desk) : mDesk(desk) {
    create(parent, panel::kCapClass, text(Text::capHint), WS_CHILD | WS_VISIBLE | WS_TABSTOP);
}

void CapView::grab(CapMotion motion, LPARAM place) {
    if (mGrip != Grip::none) return;
    SetFocus(window());
    SetCapture(window());
    const Places at = placesIn(window());
    mStart = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    mGrip = mStart.x > at.handleX - px(18) ? Grip::handle : Grip::cap;
    mMotion = motion;
    InvalidateRect(window(), nullptr, FALSE);
}

void CapView::drag(LPARAM place) {
    if (mGrip == Grip::none) return;
    const double way = placesIn(window()).way;
    const double right = (GET_X_LPARAM(place) - mStart.x) / way, up = (mStart.y - GET_Y_LPARAM(place)) / way;
    mDesk.moveCap([&](CapState& cap) {
        if (mGrip == Grip::handle) {
            cap.deflect(CapState::Hand::drag, CapState::thirdAxis(mMotion), up);
        } else {
            cap.drag(mMotion, right, up);
        }
    });
}

void CapView::turnWheel(WPARAM wParam) {
    const bool isTurning = mGrip != Grip::none ? mMotion == CapMotion::turn : (LOWORD(wParam) & MK_CONTROL) != 0;
    mWheel = std::clamp(mWheel + kNotch * GET_WHEEL_DELTA_WPARAM(wParam) / WHEEL_DELTA, -1.0, 1.0);
    mDesk.moveCap([&](CapState& cap) {
        cap.deflect(CapState::Hand::wheel, CapState::thirdAxis(isTurning ? CapMotion::turn : CapMotion::push), mWheel);
    });
    if (mGrip == Grip::none) SetTimer(window(), kWheelTimer, kWheelMs, nullptr);
}

void CapView::letGo(CapState::Hand hand) {
    if (hand == CapState::Hand::wheel) {
        KillTimer(window(), kWheelTimer);
        mWheel = 0.0;
    }
    mDesk.moveCap([hand](CapState& cap) { cap.letGo(hand); });
}

void CapView::letGo() {
    mGrip = Grip::none;
    if (GetCapture() == window()) ReleaseCapture();
    for (const CapState::Hand hand :
         {CapState::Hand::drag, CapState::Hand::wheel, CapState::Hand::keys, CapState::Hand::sliders}) {
        letGo(hand);
    }
}

bool CapView::press(WPARAM key) {
    const auto found = std::ranges::find(kKeys, key, &CapKey::key);
    if (found == std::end(kKeys)) return false;
    const bool isTurning = GetKeyState(VK_CONTROL) < 0;
    mDesk.moveCap([&](CapState& cap) {
        cap.deflect(CapState::Hand::keys, isTurning ? found->turnAxis : found->axis,
                    kKeyAmount * (isTurning ? found->turnDirection : found->direction));
    });
    return true;
}

bool CapView::lift(WPARAM key) {
    const auto found = std::ranges::find(kKeys, key, &CapKey::key);
    if (found == std::end(kKeys) && key != VK_CONTROL) return false;
    mDesk.moveCap([&](CapState& cap) {
        if (key == VK_CONTROL) return cap.letGo(CapState::Hand::keys);
        cap.letGo(CapState::Hand::keys, found->axis);
        cap.letGo(CapState::Hand::keys, found->turnAxis);
    });
    return true;
}

LRESULT CapView::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_LBUTTONDOWN:
            grab((wParam & MK_CONTROL) != 0 ? CapMotion::turn : CapMotion::push, lParam);
            return 0;
        case WM_RBUTTONDOWN:
            grab(CapMotion::turn, lParam);
            return 0;
        case WM_MOUSEMOVE:
            drag(lParam);
            return 0;
        case WM_LBUTTONUP:
        case WM_RBUTTONUP:
            if (mGrip != Grip::none) ReleaseCapture();
            return 0;
        case WM_CAPTURECHANGED:  // also when another window has taken it
            mGrip = Grip::none;
            letGo(CapState::Hand::drag);
            letGo(CapState::Hand::wheel);
            return 0;
        case WM_LBUTTONDBLCLK:
            letGo();
            mDesk.moveCap([](CapState& cap) { cap.releaseAll(); });
            return 0;
        case WM_MOUSEWHEEL:
            turnWheel(wParam);
            return 0;
        case WM_TIMER:
            letGo(CapState::Hand::wheel);
            return 0;
        case WM_GETDLGCODE:
            return DLGC_WANTARROWS;
        case WM_KEYDOWN:
            if (press(wParam)) return 0;
            break;
        case WM_KEYUP:
            if (lift(wParam)) return 0;
            break;
        case WM_SETFOCUS:
        case WM_KILLFOCUS:
            letGo(CapState::Hand::keys);
            InvalidateRect(window(), nullptr, FALSE);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_PAINT:
            paint();
            return 0;
        default:
            break;
    }
    return Pane::handle(message, wParam, lParam);
}

void CapView::paint() const {
    const Canvas canvas(window());
    canvas.fill({0, 0, canvas.width(), canvas.height()}, kGround);
    paintCap(canvas);
    paintHandle(canvas);
    RECT hint{px(6), canvas.height() - px(50), canvas.width() - px(6), canvas.height() - px(2)};
    SetTextColor(canvas.dc(), kInk);
    DrawTextW(canvas.dc(), text(Text::capHint), -1, &hint, DT_CENTER | DT_WORDBREAK | DT_NOPREFIX);
    if (GetFocus() == window()) {
        RECT frame{px(2), px(2), canvas.width() - px(2), canvas.height() - px(2)};
        DrawFocusRect(canvas.dc(), &frame);
    }
}

// Seen from above and a little from the front: pushing shifts the cap over its base, pulling makes it larger, tipping
// shifts its top, twisting turns the mark on it.
void CapView::paintCap(const Canvas& canvas) const {
    const CapState& cap = mDesk.cap();
    const Places at = placesIn(window());
    const auto amount = [&](std::size_t axis) { return cap.deflection(axis); };
    const double r = at.radius * (1.0 + 0.15 * amount(2));
    const double x = at.x + amount(0) * at.radius * 0.5, y = at.y - amount(1) * at.radius * 0.5;
    const double topX = x + amount(4) * r * 0.3, topY = y + amount(3) * r * 0.3 - r * 0.10;
    canvas.ellipse(at.x, at.y + at.radius * 0.12, at.radius * 1.45, at.radius * 1.40, kBase, kBase, 1);
    canvas.ellipse(x + r * 0.05, y + r * 0.12, r * 1.04, r * 1.02, kShade, kShade, 1);
    canvas.ellipse(x, y, r, r * 0.98, kBody, kShade, px(1));
    canvas.ellipse(topX, topY, r * 0.80, r * 0.76, kTop, kBody, px(1));
    const double angle = amount(5) * kPi / 3.0;  // twisted as seen from above, against the clock
    canvas.line(topX - std::sin(angle) * r * 0.35, topY - std::cos(angle) * r * 0.35, topX - std::sin(angle) * r * 0.68,
                topY - std::cos(angle) * r * 0.66, kMark, px(4));
    canvas.arrow(at.x, at.y, at.x + amount(0) * at.way, at.y - amount(1) * at.way, kPushed, px(3));
    canvas.arrow(topX, topY, topX + amount(4) * at.way, topY + amount(3) * at.way, kTurned, px(3));
}

void CapView::paintHandle(const Canvas& canvas) const {
    const Places at = placesIn(window());
    canvas.line(at.handleX, at.y - at.handleWay, at.handleX, at.y + at.handleWay, kBase, px(6));
    const double push = mDesk.cap().deflection(2), turn = mDesk.cap().deflection(5);
    const double amount = std::clamp(push + turn, -1.0, 1.0);
    const COLORREF colour = turn != 0.0 ? kTurned : push != 0.0 ? kPushed : kBody;
    canvas.ellipse(at.handleX, at.y - amount * at.handleWay * 0.85, px(11), px(11), colour, kShade, px(1));
}

}  // namespace workbench
