// Which button runs which command in which mode: chosen among the menu file's items. User-interface thread.
#pragma once

#include <windows.h>
// after windows.h
#include <commctrl.h>

#include <string>
#include <vector>

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/pane.h"

namespace workbench {

class BindingsPage : public Pane {
  public:
    BindingsPage(HWND parent, Desk& desk);
    void refreshBindings();
    void refreshCommands();  // the menu file is another one
    void focusSearch();
    // Enter and Delete where they mean something here. True when the message was used.
    bool useKey(const MSG& message);
    double lastSearchMs() const { return mSearchMs; }

  private:
    void layOut(int width, int height) override;
    LRESULT handle(UINT message, WPARAM wParam, LPARAM lParam) override;
    LRESULT answerNotify(NMHDR& header);
    void answerCommand(int id, int code);
    void fillModes();
    void fillTree();
    void openMenu(HTREEITEM menu, std::size_t index);
    void searchAgain();
    void showHelp();
    void bindTo(int button);
    int buttonAt(POINT place) const;  // 0 = none
    void dragTo(POINT place) const;
    void dropAt(POINT place);
    const CommandList::Item* chosen() const;
    std::string mode() const;
    int button() const;  // 0 = none

    Desk& mDesk;
    std::vector<std::size_t> mHits;  // of the search
    double mSearchMs = 0.0;
    bool mIsDragging = false;
    HWND mModes, mButtons, mSearch, mTree, mResults, mBind, mUnbind, mUndo, mHelp, mCount;
};

}  // namespace workbench
