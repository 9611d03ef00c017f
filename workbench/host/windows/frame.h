// The main window with everything in it: menu, tool strip, model tree, graphics, dock, message line; and the accessory
// window beside it. The windows show the host's state; user-interface thread only.
#pragma once

#include <string>
#include <vector>

#include <windows.h>

#include "workbench/host/windows/tool_strip.h"
#include "workbench/host/windows/window_tools.h"

namespace workbench {

class Frame {
  public:
    // Makes the windows, hidden. Throws std::runtime_error when a window cannot be made.
    void create();
    void show();  // in front of all others
    // Destroys all windows, makes them anew and shows them, as when a user closes and reopens the document.
    void rebuild();

    void rebuildMenu();
    void redrawGraphics();  // before it returns
    void showTree(bool shown);
    bool isTreeShown() const { return mIsTreeShown; }
    void showAccessory();
    bool showPanel(const std::string& name);  // false when there is no such panel
    void resize(int width, int height);
    void move(int x, int y);
    void showMessage(const std::string& text);
    // At the message line's right, all the time: which of the plug-in's modes are on.
    void showState(const std::string& text);
    void showHint(const std::string& text);  // a line of its own below; empty = no such line

    HWND window() const { return mWindow; }
    HWND graphics() const { return mGraphics; }
    // Every window that has a name; those in hidden panels included.
    std::vector<NamedWindow> windows() const;
    HWND find(const std::string& name) const;  // null when there is none

  private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void createChildren();
    void listen();
    void layOut();
    void updateTitle();
    void runItem(unsigned id);
    LRESULT answerNotify(const NMHDR& header);

    HWND mWindow = nullptr;
    ToolStrip mTools{};
    HWND mTree = nullptr;
    HWND mContainer = nullptr;  // holds the graphics window
    HWND mGraphics = nullptr;
    HWND mDock = nullptr;
    HWND mMessageLine = nullptr;
    HWND mStateLine = nullptr;
    HWND mHintLine = nullptr;
    HWND mAccessory = nullptr;
    bool mIsTreeShown = true;
    std::string mHint;
};

Frame& frame();

}  // namespace workbench
