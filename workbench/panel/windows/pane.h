// A window of the panel's own, and helpers for the controls in it: everything measured in pixels of a 96 dpi screen and
// scaled to the window's own. User-interface thread.
#pragma once

#include <windows.h>

#include <string>

namespace workbench {

// The scale of the screen that the panel is on. The program's manifest says that it scales itself, on each screen.
void setDpi(int dpi);
int dpiOf(HWND window);
int px(int pixels);  // of a 96 dpi screen
HFONT uiFont();      // valid until the next setDpi

class Pane {
  public:
    Pane() = default;
    virtual ~Pane() = default;
    Pane(const Pane&) = delete;
    Pane& operator=(const Pane&) = delete;

    HWND window() const { return mWindow; }
    void layOutAgain();  // also when the size is as before: in another scale

  protected:
    // Throws std::runtime_error when the window cannot be made.
    void create(HWND parent, const wchar_t* className, const wchar_t* title, DWORD style, DWORD extended = 0);

    // A control in this window, laid out later. Throws like create.
    HWND add(const wchar_t* className, const wchar_t* caption, DWORD style, int id = 0, DWORD extended = 0) const;

    virtual void layOut(int width, int height) = 0;  // in real pixels
    virtual LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam);

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND mWindow = nullptr;
};

void place(HWND window, int x, int y, int width, int height);
void setText(HWND window, const std::wstring& caption);  // only when it is another one: no flicker
std::wstring textOfWindow(HWND window);

// Draws into a bitmap and shows it at once; for WM_PAINT.
class Canvas {
  public:
    explicit Canvas(HWND window);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC dc() const { return mMemory; }
    int width() const { return mArea.right; }
    int height() const { return mArea.bottom; }

    void fill(const RECT& area, COLORREF colour) const;
    void ellipse(double x, double y, double rx, double ry, COLORREF inside, COLORREF edge, int thickness) const;
    void line(double x1, double y1, double x2, double y2, COLORREF colour, int thickness) const;
    void arrow(double x1, double y1, double x2, double y2, COLORREF colour, int thickness) const;

  private:
    HWND mWindow;
    PAINTSTRUCT mPaint{};
    RECT mArea{};
    HDC mMemory = nullptr;
    HBITMAP mBitmap = nullptr;
    HGDIOBJ mBefore = nullptr;
};

}  // namespace workbench
