#include "workbench/host/windows/frame.h"

#include <commctrl.h>

#include <algorithm>
#include <stdexcept>

#include "workbench/host/commands/commands.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"
#include "workbench/host/windows/accessory_window.h"
#include "workbench/host/windows/dock.h"
#include "workbench/host/windows/graphics_window.h"
#include "workbench/host/windows/menu_bar.h"
#include "workbench/host/windows/tree_window.h"
#include "workbench/host/windows/ui_loop.h"

namespace workbench {
namespace {

constexpr wchar_t CLASS_NAME[] = L"CreoMainWindow";
constexpr wchar_t CONTAINER_CLASS[] = L"CreoGraphicsContainer";
constexpr int WIDTH = 1100;
constexpr int HEIGHT = 760;
constexpr int TREE_WIDTH = 210;
constexpr int DOCK_WIDTH = 280;
constexpr int STRIP_HEIGHT = 28;
constexpr int MESSAGE_HEIGHT = 22;
constexpr int STATE_WIDTH = 310;
constexpr int LEAST_WIDTH = 640;
constexpr int LEAST_HEIGHT = 420;
constexpr int GAP = 3;

LRESULT CALLBACK containerProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_SIZE) {
        const HWND graphics = GetWindow(window, GW_CHILD);
        if (graphics != nullptr) place(graphics, 0, 0, LOWORD(lParam), HIWORD(lParam));
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

Frame& frame() {
    static Frame theFrame;
    return theFrame;
}

void Frame::create() {
    const INITCOMMONCONTROLSEX controls{
        sizeof controls, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_TAB_CLASSES};
    InitCommonControlsEx(&controls);
    registerWindowClass(CLASS_NAME, procedure, GetSysColorBrush(COLOR_BTNFACE));
    registerWindowClass(CONTAINER_CLASS, containerProc, GetSysColorBrush(COLOR_BTNFACE));
    mAccessory = makeAccessory();  // first, so that the main window lies above it and is found first
    mWindow = CreateWindowExW(0, CLASS_NAME, L"Creo Parametric", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 20, 20, WIDTH,
                              HEIGHT, nullptr, menuBar().build(), program(), nullptr);
    if (mWindow == nullptr) throw std::runtime_error("the main window cannot be made");
    createChildren();
    layOut();
    listen();
    fillTree(mTree);
    updateTitle();
    if (!host().messages().empty()) showMessage(host().messages().back());
    host().view().refit(host().model().bounds());
}

void Frame::show() {
    bringInFront(mWindow);
    SetFocus(mGraphics);
}

void Frame::createChildren() {
    mTools = makeToolStrip(mWindow);
    mTree = makeTree(mWindow);
    mContainer = makeChild(mWindow, CONTAINER_CLASS, L"", WS_CLIPCHILDREN);
    mGraphics = makeGraphicsWindow(mContainer);
    mDock = makeDock(mWindow);
    constexpr DWORD LINE = SS_LEFT | SS_CENTERIMAGE | SS_NOPREFIX | SS_SUNKEN | SS_ENDELLIPSIS;
    mMessageLine = makeChild(mWindow, WC_STATICW, L"", LINE);
    mStateLine = makeChild(mWindow, WC_STATICW, L"", LINE);
    mHintLine = makeChild(mWindow, WC_STATICW, utf8ToWide(mHint).c_str(), LINE);
}

void Frame::rebuild() {
    DestroyWindow(mAccessory);
    DestroyWindow(mWindow);
    create();
    show();
}

void Frame::listen() {
    auto& listeners = host().listeners;
    listeners.pictureChanged = [this] { invalidateGraphics(mGraphics); };
    listeners.selectionChanged = [this] {
        showTreeSelection(mTree);
        invalidateGraphics(mGraphics);
    };
    listeners.modelChanged = [this] {
        fillTree(mTree);
        updateTitle();
        invalidateGraphics(mGraphics);
    };
    listeners.messageShown = [this](const std::string& text) { showMessage(text); };
}

void Frame::layOut() {
    RECT client;
    GetClientRect(mWindow, &client);
    const int top = STRIP_HEIGHT;
    const int hint = mHint.empty() ? 0 : MESSAGE_HEIGHT;
    const int height = std::max(0L, client.bottom - top - MESSAGE_HEIGHT - hint - GAP);
    const int left = mIsTreeShown ? TREE_WIDTH + GAP : 0;
    const int right = std::max(static_cast<long>(left), client.right - DOCK_WIDTH - GAP);
    place(mTools.strip, 0, 0, client.right, STRIP_HEIGHT);
    place(mTree, 0, top, TREE_WIDTH, height);
    ShowWindow(mTree, mIsTreeShown ? SW_SHOW : SW_HIDE);
    place(mContainer, left, top, right - left, height);
    place(mDock, right + GAP, top, DOCK_WIDTH, height);
    const int line = top + height + GAP, state = std::min(STATE_WIDTH, static_cast<int>(client.right) / 2);
    place(mMessageLine, 0, line, client.right - state, MESSAGE_HEIGHT);
    place(mStateLine, client.right - state, line, state, MESSAGE_HEIGHT);
    place(mHintLine, 0, line + MESSAGE_HEIGHT, client.right, hint);
}

void Frame::updateTitle() {
    const std::string name = host().model().name;
    SetWindowTextW(mWindow, utf8ToWide("Creo Parametric - " + name.substr(0, name.find('.'))).c_str());
}

void Frame::rebuildMenu() {
    if (mWindow == nullptr) return;
    const HMENU before = GetMenu(mWindow);
    SetMenu(mWindow, menuBar().build());
    DestroyMenu(before);
    DrawMenuBar(mWindow);
}

void Frame::redrawGraphics() {
    invalidateGraphics(mGraphics);
    UpdateWindow(mGraphics);
}

void Frame::showTree(bool shown) {
    mIsTreeShown = shown;
    layOut();
}

void Frame::showAccessory() { bringInFront(mAccessory); }

bool Frame::showPanel(const std::string& name) { return showDockPanel(name); }

void Frame::resize(int width, int height) {
    SetWindowPos(mWindow, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Frame::showMessage(const std::string& text) {
    SetWindowTextW(mMessageLine, utf8ToWide(" " + text).c_str());
    UpdateWindow(mMessageLine);
}

void Frame::showState(const std::string& text) {
    const std::wstring wanted = utf8ToWide(" " + text);
    wchar_t now[128] = L"";
    GetWindowTextW(mStateLine, now, 128);
    if (wanted != now) SetWindowTextW(mStateLine, wanted.c_str());
}

void Frame::showHint(const std::string& text) {
    mHint = text.empty() ? text : " " + text;
    SetWindowTextW(mHintLine, utf8ToWide(mHint).c_str());
    layOut();
}

void Frame::move(int x, int y) {
    SetWindowPos(mWindow, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

std::vector<NamedWindow> Frame::windows() const {
    std::vector<NamedWindow> all{{"main", mWindow},  {"strip", mTools.strip},   {"toolbar", mTools.toolbar},
                                 {"tree", mTree},    {"container", mContainer}, {"graphics", mGraphics},
                                 {"dock", mDock},    {"message", mMessageLine}, {"state", mStateLine},
                                 {"hint", mHintLine}};
    for (const auto& more : {dockWindows(), accessoryWindows()}) all.insert(all.end(), more.begin(), more.end());
    return all;
}

HWND Frame::find(const std::string& name) const {
    const auto all = windows();
    const auto found = std::find_if(all.begin(), all.end(), [&](const NamedWindow& w) { return w.name == name; });
    return found == all.end() ? nullptr : found->window;
}

void Frame::runItem(unsigned id) {
    if (const MenuItem* item = menuBar().itemById(id)) runCommand(item->command, item->option);
}

LRESULT Frame::answerNotify(const NMHDR& header) {
    if (header.hwndFrom == mTree) answerTreeNotify(mTree, header);
    return 0;
}

LRESULT CALLBACK Frame::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    Frame& self = frame();
    if (window != self.mWindow) return DefWindowProcW(window, message, wParam, lParam);
    switch (message) {
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED && self.mMessageLine != nullptr) self.layOut();
            return 0;
        case WM_GETMINMAXINFO:
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {LEAST_WIDTH, LEAST_HEIGHT};
            return 0;
        case WM_INITMENUPOPUP:
            menuBar().update(reinterpret_cast<HMENU>(wParam));
            return 0;
        case WM_COMMAND:
            if (lParam == 0) self.runItem(LOWORD(wParam));
            return 0;
        case WM_NOTIFY:
            return self.answerNotify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_CLOSE:
            quitUiLoop(0);
            return 0;  // the windows go when the plug-ins have ended
        default:
            return DefWindowProcW(window, message, wParam, lParam);
    }
}

}  // namespace workbench
