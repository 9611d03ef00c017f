#include "workbench/panel/windows/plot_view.h"

namespace workbench {
namespace {

constexpr std::size_t kMostSamples = 120;
constexpr COLORREF kGround = RGB(255, 255, 255), kGrid = RGB(208, 214, 222);

}  // namespace

PlotView::PlotView(HWND parent) { create(parent, L"ObkPanelPlot", L"", WS_CHILD | WS_VISIBLE | WS_BORDER); }

void PlotView::take(const CapAxes& axes) {
    const bool isStill = !mSamples.empty() && mSamples.front() == axes && mSamples.back() == axes;
    if (mSamples.size() == kMostSamples) mSamples.pop_front();
    mSamples.push_back(axes);
    if (!isStill) InvalidateRect(window(), nullptr, FALSE);
}

LRESULT PlotView::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_ERASEBKGND) return 1;
    if (message != WM_PAINT) return Pane::handle(message, wParam, lParam);
    paint();
    return 0;
}

void PlotView::paint() const {
    const Canvas canvas(window());
    canvas.fill({0, 0, canvas.width(), canvas.height()}, kGround);
    const double middle = canvas.height() / 2.0;
    canvas.line(0, middle, canvas.width(), middle, kGrid, 1);
    const double step = static_cast<double>(canvas.width()) / (kMostSamples - 1);
    const double scale = (middle - px(4)) / CapState::kReach;
    for (std::size_t axis = 0; axis < kCapAxes; ++axis) {
        SetTextColor(canvas.dc(), kAxisColours[axis]);
        TextOutW(canvas.dc(), px(4) + static_cast<int>(axis) * px(24), px(2), kAxisNames[axis], 2);
        for (std::size_t i = 1; i < mSamples.size(); ++i) {
            const int before = mSamples[i - 1][axis], now = mSamples[i][axis];
            if (before == 0 && now == 0) continue;
            const double x = canvas.width() - static_cast<double>(mSamples.size() - i) * step;
            canvas.line(x - step, middle - before * scale, x, middle - now * scale, kAxisColours[axis], px(2));
        }
    }
}

}  // namespace workbench
