#include "workbench/host/windows/graphics_window.h"

#include <windowsx.h>

#include <cmath>

#include "workbench/host/model/host_state.h"
#include "workbench/host/windows/window_tools.h"

namespace workbench {
namespace {

constexpr wchar_t CLASS_NAME[] = L"PGLWindow";
constexpr double TURN_PER_PIXEL = 0.008;  // radians
constexpr double ZOOM_PER_NOTCH = 1.15;

Raster raster;
std::vector<ComponentPath> paintedPaths;
bool isOutOfDate = true;
POINT dragFrom{};

void paintPicture() {
    if (!isOutOfDate) return;
    const auto& selection = host().selection();
    const Scene scene{
        host().model(), host().view().matrix(), host().style, {selection.begin(), selection.end()}, host().hasTriad};
    paintedPaths = paint(scene, raster);
    isOutOfDate = false;
}

void showPicture(HWND window) {
    paintPicture();
    PAINTSTRUCT paint;
    const HDC dc = BeginPaint(window, &paint);
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = raster.width();
    info.bmiHeader.biHeight = -raster.height();  // rows from the top
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    SetDIBitsToDevice(dc, 0, 0, static_cast<DWORD>(raster.width()), static_cast<DWORD>(raster.height()), 0, 0, 0,
                      static_cast<UINT>(raster.height()), raster.pixels(), &info, DIB_RGB_COLORS);
    EndPaint(window, &paint);
}

void resizePicture(int width, int height) {
    raster.resize(width, height);
    host().resizeViews(raster.width(), raster.height());
    isOutOfDate = true;
}

void pick(int x, int y, bool adds) {
    paintPicture();
    const int item = raster.itemAt(x, y);
    if (item == Raster::NO_ITEM) {
        if (!adds) host().select({});
        return;
    }
    const ComponentPath path = paintedPaths[static_cast<std::size_t>(item)];
    adds ? host().toggleSelected(path) : host().select({path});
}

void drag(int x, int y, bool pans) {
    const double dx = x - dragFrom.x;
    const double dy = dragFrom.y - y;  // up is positive
    if (pans) {
        host().view().pan(dx, dy);
    } else {
        host().view().turn({-dy * TURN_PER_PIXEL, dx * TURN_PER_PIXEL, 0.0});
    }
    dragFrom = {x, y};
    host().listeners.pictureChanged();
}

LRESULT CALLBACK graphicsProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const int x = GET_X_LPARAM(lParam);
    const int y = GET_Y_LPARAM(lParam);
    switch (message) {
        case WM_SIZE:
            resizePicture(LOWORD(lParam), HIWORD(lParam));
            return 0;
        case WM_PAINT:
            showPicture(window);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
            SetFocus(window);
            pick(x, y, (wParam & MK_CONTROL) != 0);
            return 0;
        case WM_MBUTTONDOWN:
            dragFrom = {x, y};
            SetCapture(window);
            return 0;
        case WM_MBUTTONUP:
            ReleaseCapture();
            return 0;
        case WM_MOUSEMOVE:
            if (GetCapture() == window) drag(x, y, (wParam & MK_SHIFT) != 0);
            return 0;
        case WM_MOUSEWHEEL:
            host().view().zoom(std::pow(ZOOM_PER_NOTCH, GET_WHEEL_DELTA_WPARAM(wParam) / double{WHEEL_DELTA}));
            host().listeners.pictureChanged();
            return 0;
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

}  // namespace

HWND makeGraphicsWindow(HWND parent) {
    registerWindowClass(CLASS_NAME, graphicsProc, nullptr, CS_OWNDC);
    return makeChild(parent, CLASS_NAME, L"", 0);
}

void invalidateGraphics(HWND graphics) {
    isOutOfDate = true;
    InvalidateRect(graphics, nullptr, FALSE);
}

}  // namespace workbench
