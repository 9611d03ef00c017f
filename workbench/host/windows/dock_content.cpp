#include "workbench/host/windows/dock_content.h"

#include <commctrl.h>

namespace workbench {
namespace {

constexpr const wchar_t* PARTS[] = {L"Hexagon bolt M8 x 30",   L"Dowel pin 6 x 24",      L"Washer 8.4",
                                    L"Feather key 6 x 6 x 28", L"Circlip 35 x 1.5",      L"O-ring 40 x 2.5",
                                    L"Grease nipple M6",       L"Shaft seal 25 x 40 x 7"};
constexpr const wchar_t* MATERIALS[] = {L"Steel C45", L"42CrMo4", L"NBR 70", L"Brass CuZn39Pb3"};
constexpr int EXTENT = 900;  // pixels that a list box's rows are wide

template <std::size_t N>
const wchar_t* nth(const wchar_t* const (&texts)[N], int i) {
    return texts[static_cast<std::size_t>(i) % N];
}

void setCell(HWND list, int row, int column, const std::wstring& text) {
    std::wstring copy = text;
    LVITEMW item{};
    item.mask = LVIF_TEXT;
    item.iItem = row;
    item.iSubItem = column;
    item.pszText = copy.data();
    SendMessageW(list, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
}

std::wstring rowText(int i) {
    return std::to_wstring(i + 1) + L"   " + nth(PARTS, i) + L"   " + nth(MATERIALS, i / 2) + L"   stock " +
           std::to_wstring(17 * (i + 3) % 400) + L"   store " + std::to_wstring(i % 9 + 1) +
           L"   last checked by the incoming goods inspection, drawing revision B";
}

}  // namespace

void fillListView(HWND list, int rows) {
    struct Column {
        const wchar_t* title;
        int width;
    };
    constexpr Column COLUMNS[] = {
        {L"Pos", 46}, {L"Description", 160}, {L"Material", 110}, {L"Stock", 70}, {L"Store", 70}};
    int number = 0;
    for (const auto& [title, width] : COLUMNS) {
        std::wstring text = title;
        LVCOLUMNW column{};
        column.mask = LVCF_TEXT | LVCF_WIDTH;
        column.pszText = text.data();
        column.cx = width;
        SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(number++), reinterpret_cast<LPARAM>(&column));
    }
    for (int i = 0; i < rows; ++i) {
        setCell(list, i, 0, std::to_wstring(i + 1));
        setCell(list, i, 1, nth(PARTS, i));
        setCell(list, i, 2, nth(MATERIALS, i / 2));
        setCell(list, i, 3, std::to_wstring(17 * (i + 3) % 400));
        setCell(list, i, 4, L"Rack " + std::to_wstring(i % 9 + 1));
    }
}

void fillListBox(HWND list, int rows) {
    for (int i = 0; i < rows; ++i) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(rowText(i).c_str()));
    }
    SendMessageW(list, LB_SETHORIZONTALEXTENT, EXTENT, 0);
}

void fillEdit(HWND edit, int rows) {
    std::wstring text;
    for (int i = 0; i < rows; ++i) text += L"Note " + rowText(i) + L"\r\n";
    SetWindowTextW(edit, text.c_str());
}

std::vector<std::wstring> tableLines(const std::wstring& title, int rows) {
    std::vector<std::wstring> lines;
    for (int i = 0; i < rows; ++i) lines.push_back(title + L" " + rowText(i));
    return lines;
}

}  // namespace workbench
