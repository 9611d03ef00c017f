#include "workbench/host/windows/tree_window.h"

#include <commctrl.h>

#include <algorithm>
#include <map>

#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"
#include "workbench/host/windows/window_tools.h"

namespace workbench {
namespace {

constexpr std::size_t UNFOLDED_MAX = 100;  // top-level components; larger assemblies stay folded
constexpr const char* FEATURES_OF_A_COMPONENT[] = {"Placement", "Material", "Datum planes", "Cross section A"};

std::map<ComponentPath, HTREEITEM> rows;   // of components
std::vector<ComponentPath> pathsByNumber;  // a row's parameter is an index into it
bool unfolds = true;
bool isFilling = false;  // changes by the host itself are no choice of the user

HTREEITEM addRow(HWND tree, HTREEITEM above, const std::string& text, const ComponentPath& path) {
    std::wstring wide = utf8ToWide(text);
    TVINSERTSTRUCTW insert{};
    insert.hParent = above;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT | TVIF_PARAM;
    insert.item.pszText = wide.data();
    insert.item.lParam = static_cast<LPARAM>(pathsByNumber.size());
    pathsByNumber.push_back(path);
    return reinterpret_cast<HTREEITEM>(SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insert)));
}

void addRows(HWND tree, HTREEITEM above, const std::vector<Component>& components, const ComponentPath& pathAbove) {
    for (const Component& component : components) {
        if (component.isDeleted) continue;
        ComponentPath path = pathAbove;
        path.push_back(component.id);
        const std::string name = component.name + (component.isSuppressed ? " (suppressed)" : "");
        const HTREEITEM row = addRow(tree, above, name, path);
        rows[path] = row;
        addRows(tree, row, component.children, path);
        for (const char* feature : FEATURES_OF_A_COMPONENT) addRow(tree, row, feature, path);
        if (unfolds) TreeView_Expand(tree, row, TVE_EXPAND);
    }
}

void setBold(HWND tree, HTREEITEM row, bool bold) {
    TVITEMW item{};
    item.mask = TVIF_HANDLE | TVIF_STATE;
    item.hItem = row;
    item.state = bold ? TVIS_BOLD : 0;
    item.stateMask = TVIS_BOLD;
    SendMessageW(tree, TVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

}  // namespace

HWND makeTree(HWND parent) {
    return makeChild(parent, WC_TREEVIEWW, L"",
                     TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS | TVS_NOTOOLTIPS | WS_VSCROLL |
                         WS_HSCROLL | WS_TABSTOP,
                     WS_EX_CLIENTEDGE);
}

void fillTree(HWND tree) {
    isFilling = true;
    SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
    TreeView_DeleteAllItems(tree);
    rows.clear();
    pathsByNumber.clear();
    unfolds = host().model().components.size() <= UNFOLDED_MAX;
    const HTREEITEM root = addRow(tree, TVI_ROOT, host().model().name, {});
    addRows(tree, root, host().model().components, {});
    TreeView_Expand(tree, root, TVE_EXPAND);
    TreeView_SelectSetFirstVisible(tree, root);
    SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(tree, nullptr, TRUE);
    isFilling = false;
    showTreeSelection(tree);
}

void showTreeSelection(HWND tree) {
    if (isFilling) return;
    isFilling = true;
    const auto& selection = host().selection();
    for (const auto& [path, row] : rows) {
        setBold(tree, row, std::find(selection.begin(), selection.end(), path) != selection.end());
    }
    const auto last = selection.empty() ? rows.end() : rows.find(selection.back());
    TreeView_SelectItem(tree, last == rows.end() ? nullptr : last->second);
    isFilling = false;
}

void answerTreeNotify(HWND tree, const NMHDR& header) {
    if (isFilling || (header.code != TVN_SELCHANGEDW && header.code != TVN_SELCHANGEDA)) return;
    const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
    const auto number = static_cast<std::size_t>(change.itemNew.lParam);
    if (change.itemNew.hItem == nullptr || number >= pathsByNumber.size()) return;
    const ComponentPath path = pathsByNumber[number];
    if ((GetKeyState(VK_CONTROL) & 0x8000) != 0) {
        host().toggleSelected(path);
    } else {
        host().select({path});
    }
    showTreeSelection(tree);
}

}  // namespace workbench
