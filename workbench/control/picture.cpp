#include "workbench/control/picture.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "workbench/control/gdi_plus.h"

namespace workbench {
namespace {

constexpr CLSID kPngEncoder = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
constexpr int kBytesPerPixel = 4;

// A bitmap whose pixels can be had, upper row first, with a device context to draw into it.
class Bitmap {
  public:
    Bitmap(int width, int height) : mDc(CreateCompatibleDC(nullptr)) {
        BITMAPINFO format{};
        format.bmiHeader.biSize = sizeof format.bmiHeader;
        format.bmiHeader.biWidth = width;
        format.bmiHeader.biHeight = -height;
        format.bmiHeader.biPlanes = 1;
        format.bmiHeader.biBitCount = 8 * kBytesPerPixel;
        void* bits = nullptr;
        mBitmap = CreateDIBSection(nullptr, &format, DIB_RGB_COLORS, &bits, nullptr, 0);
        if (mDc == nullptr || mBitmap == nullptr) {
            release();
            throw std::runtime_error("no bitmap can be made");
        }
        mPixels = static_cast<std::uint32_t*>(bits);
        mBefore = SelectObject(mDc, mBitmap);
    }
    ~Bitmap() {
        SelectObject(mDc, mBefore);
        release();
    }
    Bitmap(const Bitmap&) = delete;
    Bitmap& operator=(const Bitmap&) = delete;

    HDC dc() const { return mDc; }
    std::uint32_t* pixels() const { return mPixels; }

  private:
    void release() {
        if (mBitmap != nullptr) DeleteObject(mBitmap);
        if (mDc != nullptr) DeleteDC(mDc);
    }

    HDC mDc;
    HBITMAP mBitmap = nullptr;
    HGDIOBJ mBefore = nullptr;
    std::uint32_t* mPixels = nullptr;
};

Colour colourOf(std::uint32_t pixel) {
    return {static_cast<std::uint8_t>(pixel >> 16), static_cast<std::uint8_t>(pixel >> 8),
            static_cast<std::uint8_t>(pixel)};
}

bool isNear(Colour a, Colour b, int tolerance) {
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
           std::abs(a.blue - b.blue) <= tolerance;
}

}  // namespace

Picture Picture::ofWindow(HWND window) {
    RECT rectangle{};
    if (!GetWindowRect(window, &rectangle)) throw std::runtime_error("there is no such window");
    return ofScreen(rectangle);
}

Picture Picture::ofDesktop() {
    const LONG left = GetSystemMetrics(SM_XVIRTUALSCREEN);
    const LONG top = GetSystemMetrics(SM_YVIRTUALSCREEN);
    return ofScreen(
        {left, top, left + GetSystemMetrics(SM_CXVIRTUALSCREEN), top + GetSystemMetrics(SM_CYVIRTUALSCREEN)});
}

Picture Picture::ofScreen(const RECT& rectangle) {
    Picture picture(rectangle.right - rectangle.left, rectangle.bottom - rectangle.top);
    const HDC screen = GetDC(nullptr);
    bool isCopied = false;
    picture.draw([&](HDC memory) {
        isCopied =
            BitBlt(memory, 0, 0, picture.mWidth, picture.mHeight, screen, rectangle.left, rectangle.top, SRCCOPY) != 0;
    });
    ReleaseDC(nullptr, screen);
    if (!isCopied) throw std::runtime_error("the screen cannot be copied");
    return picture;
}

Picture::Picture(int width, int height) : mWidth(width), mHeight(height) {
    if (width <= 0 || height <= 0) throw std::runtime_error("there is no area to picture");
    mPixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
}

void Picture::draw(const std::function<void(HDC)>& paint) {
    const Bitmap bitmap(mWidth, mHeight);
    std::ranges::copy(mPixels, bitmap.pixels());
    paint(bitmap.dc());
    GdiFlush();
    std::ranges::transform(bitmap.pixels(), bitmap.pixels() + mPixels.size(), mPixels.begin(),
                           [](std::uint32_t pixel) { return pixel & 0xffffff; });
}

Colour Picture::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= mWidth || y >= mHeight) throw std::out_of_range("outside the picture");
    return colourOf(mPixels[static_cast<std::size_t>(y * mWidth + x)]);
}

int Picture::countNear(const RECT& rectangle, Colour colour, int tolerance) const {
    int count = 0;
    for (int y = std::max<int>(rectangle.top, 0); y < std::min<int>(rectangle.bottom, mHeight); ++y) {
        for (int x = std::max<int>(rectangle.left, 0); x < std::min<int>(rectangle.right, mWidth); ++x) {
            if (isNear(pixel(x, y), colour, tolerance)) ++count;
        }
    }
    return count;
}

int Picture::countNear(Colour colour, int tolerance) const {
    return countNear({0, 0, mWidth, mHeight}, colour, tolerance);
}

void Picture::save(const std::filesystem::path& file) const {
    if (!file.parent_path().empty()) std::filesystem::create_directories(file.parent_path());
    const GdiPlus gdiPlus;
    std::vector<std::uint32_t> pixels = mPixels;  // GDI+ takes no constant ones
    Gdiplus::Bitmap bitmap(mWidth, mHeight, mWidth * kBytesPerPixel, PixelFormat32bppRGB,
                           reinterpret_cast<BYTE*>(pixels.data()));
    const Gdiplus::Status status = bitmap.Save(file.wstring().c_str(), &kPngEncoder, nullptr);
    if (status != Gdiplus::Ok) {
        throw std::runtime_error("cannot write " + file.string() + ", GDI+ status " + std::to_string(status));
    }
}

}  // namespace workbench
