#include "workbench/panel/windows/bindings_page.h"

#include <windowsx.h>

#include <algorithm>
#include <chrono>

#include "workbench/panel/controls.h"
#include "workbench/panel/windows/texts.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr int kNameColumn = 64;  // of 96 dpi
constexpr UINT kSetCueBanner = EM_SETCUEBANNER;

// What a tree item stands for: a menu, or an item behind it in one number.
constexpr LPARAM kMenuMark = LPARAM{1} << 24;

void addColumn(HWND list, int index, const wchar_t* title) {
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.cx = px(kNameColumn);
    column.pszText = const_cast<wchar_t*>(title);  // only read
    SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&column));
}

void setCell(HWND list, int row, int column, const std::wstring& caption) {
    wchar_t before[512] = L"";
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = before;
    item.cchTextMax = 512;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    if (caption == before) return;
    item.pszText = const_cast<wchar_t*>(caption.c_str());  // only read
    SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

int selectedRow(HWND list) {
    return static_cast<int>(SendMessageW(list, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED));
}

void selectRow(HWND list, int row) {
    LVITEMW item{};
    item.stateMask = item.state = LVIS_SELECTED | LVIS_FOCUSED;
    SendMessageW(list, LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

HTREEITEM addToTree(HWND tree, HTREEITEM parent, const std::wstring& caption, LPARAM value, bool hasItems) {
    TVINSERTSTRUCTW entry{};
    entry.hParent = parent;
    entry.hInsertAfter = TVI_LAST;
    entry.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_CHILDREN;
    entry.item.pszText = const_cast<wchar_t*>(caption.c_str());  // only read
    entry.item.lParam = value;
    entry.item.cChildren = hasItems ? 1 : 0;
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&entry)));
}

}  // namespace

BindingsPage::BindingsPage(HWND parent, Desk& desk) : mDesk(desk) {
    create(parent, L"ObkPanelPage", text(Text::bindingsPage), WS_CHILD | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT);
    constexpr DWORD kButton = WS_TABSTOP | BS_PUSHBUTTON;
    constexpr DWORD kList = WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS;
    mModes = add(L"LISTBOX", L"", WS_TABSTOP | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT, panel::kModes,
                 WS_EX_CLIENTEDGE);
    mButtons = add(WC_LISTVIEWW, L"", kList | LVS_NOSORTHEADER, panel::kButtons, WS_EX_CLIENTEDGE);
    mUnbind = add(L"BUTTON", text(Text::unbind), kButton, panel::kUnbind);
    mUndo = add(L"BUTTON", text(Text::undo), kButton, panel::kUndo);
    mSearch = add(L"EDIT", L"", WS_TABSTOP | ES_AUTOHSCROLL, panel::kSearch, WS_EX_CLIENTEDGE);
    SendMessageW(mSearch, kSetCueBanner, TRUE, reinterpret_cast<LPARAM>(text(Text::search)));
    mCount = add(L"STATIC", L"", SS_RIGHT | SS_CENTERIMAGE, panel::kCount);
    mTree = add(WC_TREEVIEWW, L"", WS_TABSTOP | TVS_HASBUTTONS | TVS_HASLINES | TVS_LINESATROOT | TVS_SHOWSELALWAYS,
                panel::kTree, WS_EX_CLIENTEDGE);
    mResults = add(WC_LISTVIEWW, L"", kList | LVS_OWNERDATA, panel::kResults, WS_EX_CLIENTEDGE);
    mBind = add(L"BUTTON", text(Text::bind), kButton, panel::kBind);
    mHelp = add(L"STATIC", L"", SS_LEFT | SS_NOPREFIX, panel::kHelp);
    for (const HWND list : {mButtons, mResults}) {
        SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_FULLROWSELECT, LVS_EX_FULLROWSELECT);
    }
    addColumn(mButtons, 0, text(Text::button));
    addColumn(mButtons, 1, text(Text::command));
    addColumn(mResults, 0, text(Text::command));
    addColumn(mResults, 1, text(Text::commandName));
    for (int row = 0; row < kButtonCount; ++row) {
        const std::wstring caption = std::to_wstring(row + 1);
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.pszText = const_cast<wchar_t*>(caption.c_str());  // only read
        SendMessageW(mButtons, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    selectRow(mButtons, 0);
    refreshCommands();
}

void BindingsPage::refreshCommands() {
    fillModes();
    fillTree();
    searchAgain();
    refreshBindings();
}

void BindingsPage::fillModes() {
    const std::string before = mode();
    SendMessageW(mModes, LB_RESETCONTENT, 0, 0);
    SendMessageW(mModes, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text(Text::allModes)));
    int selected = 0, row = 0;
    for (const std::string& name : mDesk.commands().modes()) {
        if (name == kDefaultMode) continue;
        SendMessageW(mModes, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wideText(name).c_str()));
        ++row;
        if (name == before) selected = row;
    }
    SendMessageW(mModes, LB_SETCURSEL, static_cast<WPARAM>(selected), 0);
}

// The items of a menu are put in when it is opened: tens of thousands of them would take seconds.
void BindingsPage::fillTree() {
    SendMessageW(mTree, WM_SETREDRAW, FALSE, 0);
    SendMessageW(mTree, TVM_DELETEITEM, 0, reinterpret_cast<LPARAM>(TVI_ROOT));
    LPARAM index = 0;
    for (const CommandList::Menu& menu : mDesk.commands().menus()) {
        addToTree(mTree, TVI_ROOT, wideText(menu.title), kMenuMark | index++, menu.last > menu.first);
    }
    SendMessageW(mTree, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(mTree, nullptr, TRUE);
}

void BindingsPage::openMenu(HTREEITEM menu, std::size_t index) {
    if (SendMessageW(mTree, TVM_GETNEXTITEM, TVGN_CHILD, reinterpret_cast<LPARAM>(menu)) != 0) return;
    const CommandList::Menu& source = mDesk.commands().menus().at(index);
    for (std::size_t i = source.first; i < source.last; ++i) {
        addToTree(mTree, menu, wideText(mDesk.commands().items()[i].label), static_cast<LPARAM>(i), false);
    }
}

void BindingsPage::searchAgain() {
    const auto start = std::chrono::steady_clock::now();
    const std::string words = utf8Text(textOfWindow(mSearch));
    const bool isSearching = words.find_first_not_of(' ') != std::string::npos;
    mHits = isSearching ? mDesk.commands().search(words) : std::vector<std::size_t>{};
    SendMessageW(mResults, LVM_SETITEMCOUNT, mHits.size(), 0);
    if (!mHits.empty()) selectRow(mResults, 0);
    ShowWindow(mResults, isSearching ? SW_SHOW : SW_HIDE);
    ShowWindow(mTree, isSearching ? SW_HIDE : SW_SHOW);
    wchar_t found[64] = L"";
    if (isSearching) wsprintfW(found, text(Text::found), static_cast<unsigned>(mHits.size()));
    setText(mCount, found);
    showHelp();
    UpdateWindow(mResults);
    mSearchMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

const CommandList::Item* BindingsPage::chosen() const {
    const auto& items = mDesk.commands().items();
    if (IsWindowVisible(mResults) || GetWindowTextLengthW(mSearch) > 0) {
        const int row = selectedRow(mResults);
        return row >= 0 && static_cast<std::size_t>(row) < mHits.size() ? &items[mHits[row]] : nullptr;
    }
    TVITEMW item{};
    item.mask = TVIF_PARAM;
    item.hItem = reinterpret_cast<HTREEITEM>(SendMessageW(mTree, TVM_GETNEXTITEM, TVGN_CARET, 0));
    if (item.hItem == nullptr || SendMessageW(mTree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item)) == 0)
        return nullptr;
    return (item.lParam & kMenuMark) != 0 ? nullptr : &items[static_cast<std::size_t>(item.lParam)];
}

std::string BindingsPage::mode() const {
    const auto row = SendMessageW(mModes, LB_GETCURSEL, 0, 0);
    if (row <= 0) return std::string(kDefaultMode);
    std::wstring name(static_cast<std::size_t>(SendMessageW(mModes, LB_GETTEXTLEN, static_cast<WPARAM>(row), 0)),
                      L'\0');
    SendMessageW(mModes, LB_GETTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(name.data()));
    return utf8Text(name);
}

int BindingsPage::button() const { return selectedRow(mButtons) + 1; }

void BindingsPage::refreshBindings() {
    const std::string now = mode();
    for (int row = 0; row < kButtonCount; ++row) setCell(mButtons, row, 1, mDesk.labelOf(now, row + 1, true));
    EnableWindow(mUndo, mDesk.bindings().canUndo());
}

void BindingsPage::showHelp() {
    const CommandList::Item* item = chosen();
    std::wstring help;
    if (item != nullptr) help = wideText(item->label + "\n" + item->command + "\n" + item->help);
    if (!mDesk.hasMenuFile()) help = text(Text::noMenuFile) + mDesk.menuFile().wstring();
    if (!mDesk.commands().isWhole()) help = text(Text::partialMenuFile) + mDesk.menuFile().wstring();
    setText(mHelp, help);
    EnableWindow(mBind, item != nullptr);
}

void BindingsPage::bindTo(int number) {
    const CommandList::Item* item = chosen();
    if (item == nullptr || number <= 0) return;
    mDesk.changeBindings([&](BindModel& model) { return model.bind(mode(), number, item->command); });
}

int BindingsPage::buttonAt(POINT place) const {
    ClientToScreen(window(), &place);
    ScreenToClient(mButtons, &place);
    LVHITTESTINFO hit{};
    hit.pt = place;
    RECT area;
    GetClientRect(mButtons, &area);
    if (!PtInRect(&area, place)) return 0;
    return static_cast<int>(SendMessageW(mButtons, LVM_HITTEST, 0, reinterpret_cast<LPARAM>(&hit))) + 1;
}

// The button under the pointer is chosen: one sees where the command will go.
void BindingsPage::dragTo(POINT place) const {
    if (const int number = buttonAt(place)) selectRow(mButtons, number - 1);
}

void BindingsPage::dropAt(POINT place) {
    dragTo(place);
    bindTo(buttonAt(place));
}

void BindingsPage::focusSearch() { SetFocus(mSearch); }

bool BindingsPage::useKey(const MSG& message) {
    if (message.message != WM_KEYDOWN || !IsWindowVisible(window())) return false;
    const bool isAtCommands = message.hwnd == mSearch || message.hwnd == mTree || message.hwnd == mResults;
    if (message.wParam == VK_RETURN && isAtCommands) {
        bindTo(button());
        return true;
    }
    if (message.wParam == VK_DELETE && message.hwnd == mButtons) {
        answerCommand(panel::kUnbind, BN_CLICKED);
        return true;
    }
    if (message.wParam == 'Z' && GetKeyState(VK_CONTROL) < 0 && message.hwnd != mSearch) {
        answerCommand(panel::kUndo, BN_CLICKED);
        return true;
    }
    // From the search field straight into what it found.
    if (message.hwnd == mSearch && (message.wParam == VK_DOWN || message.wParam == VK_UP) && !mHits.empty()) {
        const int row = std::clamp(selectedRow(mResults) + (message.wParam == VK_DOWN ? 1 : -1), 0,
                                   static_cast<int>(mHits.size()) - 1);
        selectRow(mResults, row);
        SendMessageW(mResults, LVM_ENSUREVISIBLE, static_cast<WPARAM>(row), FALSE);
        return true;
    }
    return false;
}

void BindingsPage::answerCommand(int id, int code) {
    if (id == panel::kModes && code == LBN_SELCHANGE) refreshBindings();
    if (id == panel::kSearch && code == EN_CHANGE) searchAgain();
    if (code != BN_CLICKED) return;
    if (id == panel::kBind) bindTo(button());
    if (id == panel::kUnbind) mDesk.changeBindings([&](BindModel& model) { return model.unbind(mode(), button()); });
    if (id == panel::kUndo) mDesk.changeBindings([](BindModel& model) { return model.undo(); });
}

LRESULT BindingsPage::answerNotify(NMHDR& header) {
    const bool isCommands = header.hwndFrom == mTree || header.hwndFrom == mResults;
    if (header.hwndFrom == mResults && header.code == LVN_GETDISPINFOW) {
        LVITEMW& item = reinterpret_cast<NMLVDISPINFOW&>(header).item;
        if ((item.mask & LVIF_TEXT) == 0 || static_cast<std::size_t>(item.iItem) >= mHits.size()) return 0;
        const CommandList::Item& hit = mDesk.commands().items()[mHits[item.iItem]];
        const std::wstring cell = wideText(item.iSubItem == 0 ? hit.label : hit.command);
        lstrcpynW(item.pszText, cell.c_str(), item.cchTextMax);
    } else if (header.hwndFrom == mTree && header.code == TVN_ITEMEXPANDINGW) {
        const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
        if (change.action == TVE_EXPAND) openMenu(change.itemNew.hItem, change.itemNew.lParam & ~kMenuMark);
    } else if (isCommands && (header.code == TVN_SELCHANGEDW || header.code == LVN_ITEMCHANGED)) {
        showHelp();
    } else if (isCommands && header.code == NM_DBLCLK) {
        bindTo(button());
    } else if (isCommands && (header.code == TVN_BEGINDRAGW || header.code == LVN_BEGINDRAG)) {
        if (header.code == TVN_BEGINDRAGW) {
            const auto& start = reinterpret_cast<const NMTREEVIEWW&>(header);
            SendMessageW(mTree, TVM_SELECTITEM, TVGN_CARET, reinterpret_cast<LPARAM>(start.itemNew.hItem));
        }
        mIsDragging = true;
        SetCapture(window());
        SetCursor(LoadCursorW(nullptr, IDC_HAND));
    }
    return 0;
}

LRESULT BindingsPage::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_COMMAND:
            answerCommand(LOWORD(wParam), HIWORD(wParam));
            return 0;
        case WM_NOTIFY:
            return answerNotify(*reinterpret_cast<NMHDR*>(lParam));
        case WM_MOUSEMOVE:
            if (mIsDragging) dragTo({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            return 0;
        case WM_LBUTTONUP:
            if (mIsDragging) {
                ReleaseCapture();
                dropAt({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
            }
            return 0;
        case WM_CAPTURECHANGED:
            mIsDragging = false;
            return 0;
        default:
            return Pane::handle(message, wParam, lParam);
    }
}

void BindingsPage::layOut(int width, int height) {
    const int gap = px(8), row = px(24), button = px(28);
    const int left = std::max(px(150), (width - 3 * gap) * 2 / 5), right = width - left - 3 * gap;
    const int modes = (height - 4 * gap - button) * 2 / 5, rightX = left + 2 * gap;
    place(mModes, gap, gap, left, modes);
    place(mButtons, gap, modes + 2 * gap, left, height - modes - button - 4 * gap);
    place(mUnbind, gap, height - button - gap, (left - gap) / 2, button);
    place(mUndo, gap + (left + gap) / 2, height - button - gap, (left - gap) / 2, button);
    const int count = px(100), help = px(62);
    place(mSearch, rightX, gap, right - count - gap, row);
    place(mCount, rightX + right - count, gap, count, row);
    const int listHeight = height - row - help - button - 5 * gap;
    for (const HWND list : {mTree, mResults}) place(list, rightX, row + 2 * gap, right, listHeight);
    place(mHelp, rightX, height - help - button - 2 * gap, right, help);
    place(mBind, rightX, height - button - gap, px(110), button);
    const int scrollBar = GetSystemMetrics(SM_CXVSCROLL) + px(4);
    const auto setWidth = [](HWND list, int column, int pixels) {
        SendMessageW(list, LVM_SETCOLUMNWIDTH, static_cast<WPARAM>(column), std::max(pixels, px(30)));
    };
    setWidth(mButtons, 0, px(kNameColumn));
    setWidth(mButtons, 1, left - px(kNameColumn) - scrollBar);
    setWidth(mResults, 0, (right - scrollBar) * 3 / 5);
    setWidth(mResults, 1, (right - scrollBar) * 2 / 5);
}

}  // namespace workbench
