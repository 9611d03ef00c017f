#include "workbench/panel/windows/device_page.h"

#include <commdlg.h>

#include <algorithm>
#include <sstream>

#include "workbench/panel/controls.h"
#include "workbench/panel/windows/texts.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr Text kLabels[] = {Text::devices, Text::rotationMode, Text::contextFlag};
constexpr const char* kKeys[] = {"devices", "rotation_mode", "context_flag"};

HWND page(const HWND window) { return window; }

}  // namespace

DevicePage::DevicePage(HWND parent, Desk& desk)
    : mDesk(desk),
      mPlot((create(parent, L"ObkPanelPage", text(Text::devicePage), WS_CHILD | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT),
             page(window()))) {
    constexpr DWORD kButton = WS_TABSTOP | BS_PUSHBUTTON;
    for (std::size_t i = 0; i < mFields.size(); ++i) {
        mLabels[i] = add(L"STATIC", text(kLabels[i]), SS_LEFT | SS_CENTERIMAGE);
        mFields[i] =
            add(L"EDIT", L"", WS_TABSTOP | ES_AUTOHSCROLL, panel::kFirstField + static_cast<int>(i), WS_EX_CLIENTEDGE);
    }
    mApply = add(L"BUTTON", text(Text::apply), kButton, panel::kApply);
    mDie = add(L"BUTTON", text(Text::daemonDies), kButton, panel::kDie);
    mReturn = add(L"BUTTON", text(Text::daemonReturns), kButton, panel::kReturn);
    mRecord = add(L"BUTTON", text(Text::record), kButton, panel::kRecord);
    mApplicationsLabel = add(L"STATIC", text(Text::applications), SS_LEFT);
    mApplications =
        add(L"LISTBOX", L"", WS_TABSTOP | WS_VSCROLL | LBS_NOINTEGRALHEIGHT, panel::kApplications, WS_EX_CLIENTEDGE);
    refresh();
}

void DevicePage::refresh() {
    const DaemonState state = mDesk.daemon();
    for (std::size_t i = 0; i < mFields.size(); ++i) {
        const std::wstring now = wideText(state.value(kKeys[i]));
        if (now == mShown[i]) continue;
        mShown[i] = now;
        setText(mFields[i], now);
    }
    EnableWindow(mDie, state.isConnected);
    EnableWindow(mReturn, !state.isConnected);
    EnableWindow(mRecord, state.isConnected);
    EnableWindow(mApply, state.isConnected);
    setText(mRecord, text(state.value("recording").empty() ? Text::record : Text::recording));
    SendMessageW(mApplications, WM_SETREDRAW, FALSE, 0);
    SendMessageW(mApplications, LB_RESETCONTENT, 0, 0);
    for (const std::string& line : state.applications) {
        std::istringstream fields(line);
        std::string process, name, mode;
        std::getline(std::getline(std::getline(fields, process, '|'), name, '|'), mode);
        const std::wstring entry =
            wideText(name) + L" (" + wideText(process) + L"): " + (mode.empty() ? text(Text::noMode) : wideText(mode));
        SendMessageW(mApplications, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    }
    if (state.applications.empty()) {
        SendMessageW(mApplications, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text(Text::noApplication)));
    }
    SendMessageW(mApplications, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(mApplications, nullptr, TRUE);
}

void DevicePage::takeSample() {
    CapAxes axes{};
    std::istringstream numbers(mDesk.daemon().value("axes"));
    for (std::int16_t& axis : axes) numbers >> axis;
    mPlot.take(axes);
}

void DevicePage::apply() {
    const auto field = [this](std::size_t i) { return utf8Text(textOfWindow(mFields[i])); };
    mDesk.send("devices " + field(0));
    mDesk.send("settings " + field(1) + ' ' + field(2));
}

void DevicePage::toggleRecord() {
    if (!mDesk.daemon().value("recording").empty()) return mDesk.send("record off");
    wchar_t path[MAX_PATH] = L"record.txt";
    OPENFILENAMEW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = window();
    ask.lpstrFilter = L"*.txt\0*.txt\0*.*\0*.*\0";
    ask.lpstrFile = path;
    ask.nMaxFile = MAX_PATH;
    ask.lpstrDefExt = L"txt";
    ask.Flags = OFN_OVERWRITEPROMPT | OFN_NOCHANGEDIR;
    if (GetSaveFileNameW(&ask)) mDesk.send("record \"" + utf8Text(path) + '"');
}

void DevicePage::layOut(int width, int height) {
    const int gap = px(8), row = px(24);
    const int column = std::min((width - 3 * gap) / 2, px(300));
    for (std::size_t i = 0; i < mFields.size(); ++i) {
        const int top = gap + static_cast<int>(i) * (row + gap);
        place(mLabels[i], gap, top, column * 3 / 5, row);
        place(mFields[i], gap + column * 3 / 5, top, column * 2 / 5, row);
    }
    place(mApply, gap + column * 3 / 5, gap + 3 * (row + gap), column * 2 / 5, row + px(2));
    const HWND buttons[] = {mDie, mReturn, mRecord};
    for (int i = 0; i < 3; ++i)
        place(buttons[i], column + 3 * gap, gap + i * (row + gap), std::min(column, px(180)), row + px(2));
    const int top = gap + 4 * (row + gap) + gap;
    const int list = std::max(px(48), (height - top) / 3);
    place(mApplicationsLabel, gap, top, width - 2 * gap, px(18));
    place(mApplications, gap, top + px(18), width - 2 * gap, list);
    const int plot = top + px(18) + list + gap;
    place(mPlot.window(), gap, plot, width - 2 * gap, height - plot - gap);
}

LRESULT DevicePage::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED) return Pane::handle(message, wParam, lParam);
    switch (LOWORD(wParam)) {
        case panel::kApply:
            apply();
            break;
        case panel::kDie:
            mDesk.send("die");
            break;
        case panel::kReturn:
            mDesk.startDaemon();
            break;
        case panel::kRecord:
            toggleRecord();
            break;
        default:
            break;
    }
    return 0;
}

}  // namespace workbench
