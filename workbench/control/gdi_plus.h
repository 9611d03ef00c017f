// GDI+, whose headers want some preparation.
#pragma once

#include <windows.h>
// after windows.h
#include <objidl.h>

#include <algorithm>
#include <stdexcept>

// The classes of gdiplus.h take these from the global name space.
using std::max;
using std::min;
#include <gdiplus.h>

namespace workbench {

// GDI+ for as long as it is needed.
class GdiPlus {
  public:
    GdiPlus() {
        const Gdiplus::GdiplusStartupInput input;
        if (Gdiplus::GdiplusStartup(&mToken, &input, nullptr) != Gdiplus::Ok) {
            throw std::runtime_error("GDI+ does not start");
        }
    }
    ~GdiPlus() { Gdiplus::GdiplusShutdown(mToken); }
    GdiPlus(const GdiPlus&) = delete;
    GdiPlus& operator=(const GdiPlus&) = delete;

  private:
    ULONG_PTR mToken = 0;
};

}  // namespace workbench
