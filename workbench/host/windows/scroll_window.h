// Lists of text lines in the host's own window classes. Some scroll by their scroll bars, some by the wheel alone; the
// class name tells the outside which.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

namespace workbench {

enum class ScrollKind { BARS, WHEEL };

class ScrollWindow {
  public:
    // The window owns itself and ends with WM_DESTROY.
    static HWND make(HWND parent, const wchar_t* className, ScrollKind kind, std::vector<std::wstring> lines);
    static const ScrollWindow* of(HWND window);  // null when the window is none of these

    int topLine() const { return mTop; }
    int leftOffset() const { return mLeft; }             // pixels
    int wheelNotches() const { return mWheelNotches; }   // received so far, up positive
    WPARAM wheelWParam() const { return mWheelWParam; }  // words of the last wheel message
    LPARAM wheelLParam() const { return mWheelLParam; }

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    ScrollWindow(HWND window, ScrollKind kind, std::vector<std::wstring> lines);
    void paint() const;
    void scrollTo(int top, int left);
    void scrollByBar(int bar, int request);
    void turnWheel(int delta);
    void updateBars() const;
    int pageLines() const;
    int pageWidth() const;
    int contentWidth() const;

    HWND mWindow;
    ScrollKind mKind;
    std::vector<std::wstring> mLines;
    int mTop = 0;
    int mLeft = 0;
    int mWheelNotches = 0;
    WPARAM mWheelWParam = 0;
    LPARAM mWheelLParam = 0;
};

}  // namespace workbench
