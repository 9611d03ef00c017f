#include "workbench/host/windows/dock.h"

#include <commctrl.h>

#include <algorithm>
#include <cstring>

#include "workbench/host/model/text.h"
#include "workbench/host/windows/dock_content.h"
#include "workbench/host/windows/scroll_window.h"

namespace workbench {
namespace {

constexpr wchar_t DOCK_CLASS[] = L"CreoDock";
constexpr wchar_t PAGE_CLASS[] = L"CreoDockPage";
constexpr int TAB_HEIGHT = 24;
constexpr int GAP = 4;
constexpr int LONG_LIST = 400;

struct Share {  // of the page, in per cent
    int left, top, right, bottom;
};

using Make = HWND (*)(HWND page);
struct Pane {
    const char* panel;
    const char* name;
    Make make;
    Share share;
};

HWND makeListView(HWND page) {
    const HWND list =
        makeChild(page, WC_LISTVIEWW, L"", LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS, WS_EX_CLIENTEDGE);
    fillListView(list, LONG_LIST);
    return list;
}

HWND makeListBox(HWND page) {
    const HWND list =
        makeChild(page, WC_LISTBOXW, L"", WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT, WS_EX_CLIENTEDGE);
    fillListBox(list, LONG_LIST);
    return list;
}

HWND makeEdit(HWND page) {
    const HWND edit =
        makeChild(page, WC_EDITW, L"", ES_MULTILINE | ES_AUTOVSCROLL | ES_AUTOHSCROLL | WS_VSCROLL | WS_HSCROLL,
                  WS_EX_CLIENTEDGE);
    fillEdit(edit, LONG_LIST / 2);
    return edit;
}

HWND makeText(HWND page, const wchar_t* className, ScrollKind kind, const wchar_t* title) {
    return ScrollWindow::make(page, className, kind, tableLines(title, LONG_LIST));
}

constexpr Pane PANES[] = {
    {"properties", "listview", makeListView, {0, 0, 100, 60}},
    {"properties", "edit", makeEdit, {0, 60, 100, 100}},
    {"library", "listbox", makeListBox, {0, 0, 100, 50}},
    {"library",
     "treeview",
     [](HWND p) { return makeText(p, L"TreeView", ScrollKind::BARS, L"+ Family"); },
     {0, 50, 100, 100}},
    {"tables", "gxwnd", [](HWND p) { return makeText(p, L"GXWND", ScrollKind::BARS, L"Row"); }, {0, 0, 100, 50}},
    {"tables",
     "graphdraw",
     [](HWND p) { return makeText(p, L"uintGraphDrawArea", ScrollKind::WHEEL, L"Diagram"); },
     {0, 50, 100, 100}},
    {"results", "list", [](HWND p) { return makeText(p, L"List", ScrollKind::WHEEL, L"Result"); }, {0, 0, 100, 50}},
    {"results",
     "wheeltree",
     [](HWND p) { return makeText(p, L"Tree", ScrollKind::WHEEL, L"+ Study"); },
     {0, 50, 100, 100}},
    {"browser",
     "browser",
     [](HWND p) { return makeText(p, L"Internet Explorer_Server", ScrollKind::WHEEL, L"Catalogue"); },
     {0, 0, 100, 100}},
    // The small list lies upon the large one (it comes first in the z order) and is its sibling.
    {"palette", "overlap_small", makeListBox, {20, 30, 80, 60}},
    {"palette", "overlap_large", makeListView, {0, 0, 100, 100}},
};

constexpr const char* PANELS[] = {"properties", "library", "tables", "results", "browser", "palette"};
constexpr std::size_t PANEL_COUNT = std::size(PANELS);

HWND tabs = nullptr;
HWND pages[PANEL_COUNT] = {};
HWND panes[std::size(PANES)] = {};
std::size_t current = 0;

std::size_t panelNumber(const char* name) {
    const auto found =
        std::find_if(std::begin(PANELS), std::end(PANELS), [&](const char* p) { return std::strcmp(p, name) == 0; });
    return static_cast<std::size_t>(found - std::begin(PANELS));
}

void showCurrent() {
    SendMessageW(tabs, TCM_SETCURSEL, current, 0);
    for (std::size_t i = 0; i < PANEL_COUNT; ++i) ShowWindow(pages[i], i == current ? SW_SHOW : SW_HIDE);
}

LRESULT CALLBACK dockProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE) layOutDock(window);
    if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(TCN_SELCHANGE)) {
        current = static_cast<std::size_t>(SendMessageW(tabs, TCM_GETCURSEL, 0, 0));
        showCurrent();
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

void layOutPage(std::size_t panel, int width, int height) {
    for (std::size_t i = 0; i < std::size(PANES); ++i) {
        if (panelNumber(PANES[i].panel) != panel) continue;
        const Share& s = PANES[i].share;
        place(panes[i], width * s.left / 100, height * s.top / 100, width * (s.right - s.left) / 100,
              height * (s.bottom - s.top) / 100 - (s.bottom < 100 ? GAP : 0));
    }
}

}  // namespace

HWND makeDock(HWND parent) {
    registerWindowClass(DOCK_CLASS, dockProc, GetSysColorBrush(COLOR_BTNFACE));
    registerWindowClass(PAGE_CLASS, DefWindowProcW, GetSysColorBrush(COLOR_BTNFACE));
    const HWND dock = makeChild(parent, DOCK_CLASS, L"", WS_CLIPCHILDREN);
    tabs = makeChild(dock, WC_TABCONTROLW, L"", 0);
    for (std::size_t i = 0; i < PANEL_COUNT; ++i) {
        std::wstring title = utf8ToWide(PANELS[i]);
        TCITEMW item{};
        item.mask = TCIF_TEXT;
        item.pszText = title.data();
        SendMessageW(tabs, TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
        pages[i] = makeChild(dock, PAGE_CLASS, L"", WS_CLIPCHILDREN);
    }
    for (std::size_t i = 0; i < std::size(PANES); ++i) panes[i] = PANES[i].make(pages[panelNumber(PANES[i].panel)]);
    showCurrent();
    return dock;
}

void layOutDock(HWND dock) {
    RECT client;
    GetClientRect(dock, &client);
    place(tabs, 0, 0, client.right, TAB_HEIGHT);
    const int height = std::max(0L, client.bottom - TAB_HEIGHT - GAP);
    for (std::size_t i = 0; i < PANEL_COUNT; ++i) {
        place(pages[i], 0, TAB_HEIGHT + GAP, client.right, height);
        layOutPage(i, client.right, height);
    }
}

bool showDockPanel(const std::string& name) {
    const std::size_t number = panelNumber(name.c_str());
    if (number >= PANEL_COUNT) return false;
    current = number;
    showCurrent();
    return true;
}

std::vector<NamedWindow> dockWindows() {
    std::vector<NamedWindow> windows{{"tabs", tabs}};
    for (std::size_t i = 0; i < std::size(PANES); ++i) windows.push_back({PANES[i].name, panes[i]});
    return windows;
}

}  // namespace workbench
