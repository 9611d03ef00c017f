#include "workbench/control/probe_window.h"

#include <algorithm>
#include <stdexcept>

#include "tools/probe/window_controls.h"

namespace workbench {
namespace {

using probe::Task;

constexpr int kBesideX = 1130;  // screen pixels; the host's main window ends there
constexpr wchar_t kRunning = L'\u25B6';

}  // namespace

WorkbenchOptions ProbeWindow::options() {
    WorkbenchOptions options;
    options.plugin = buildFolder() / "orbikon_probe.dll";
    return options;
}

ProbeWindow::ProbeWindow(Workbench& bench) : mBench(bench) {
    if (!waitFor([&] { return find(); })) {
        throw std::runtime_error(std::string("the probe shows no window; the host ") +
                                 (mBench.isHostRunning() ? "runs" : "has ended") + ", its output:\n" +
                                 mBench.hostOutput());
    }
    SetWindowPos(mWindow, nullptr, kBesideX, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// Another host's may still be there.
bool ProbeWindow::find() {
    mWindow = nullptr;
    while ((mWindow = FindWindowExW(nullptr, mWindow, probe::kWindowClass, nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(mWindow, &process);
        if (process == mBench.hostProcess().id()) return IsWindowVisible(mWindow);
    }
    return false;
}

std::wstring ProbeWindow::lineOf(Task task) const {
    wchar_t line[256] = L"";
    SendMessageW(GetDlgItem(mWindow, probe::kList), LB_GETTEXT, static_cast<WPARAM>(task),
                 reinterpret_cast<LPARAM>(line));
    return line;
}

void ProbeWindow::press(Task task, bool yes) const {
    SendMessageW(GetDlgItem(mWindow, probe::kList), LB_SETCURSEL, static_cast<WPARAM>(task), 0);
    SendMessageW(mWindow, WM_COMMAND, yes ? probe::kYes : probe::kNo, 0);
}

void ProbeWindow::begin(Task task) const {
    press(task);
    if (!waitFor([&] { return lineOf(task).starts_with(kRunning); })) {
        throw std::runtime_error(std::string("the probe does not begin: ") + probe::textOf(task).title.english);
    }
}

bool ProbeWindow::await(Task task) const {
    const auto isOpen = [&](const probe::ReportRow& row) {
        const auto* assumption = probe::findAssumption(row.id);
        return assumption != nullptr && assumption->task == task && row.outcome == probe::Outcome::notMet;
    };
    return waitFor([&] {
        const probe::Report now = report();
        return !now.rows.empty() && std::ranges::none_of(now.rows, isOpen);
    });
}

bool ProbeWindow::rest(Task task, const std::string& where) const {
    mBench.host("cursor main");
    press(task);
    mBench.host("cursor " + where);
    return await(task);
}

std::string ProbeWindow::reportText() const {
    return readTextFile(mBench.profile() / "OrbikonController" / "probe_report.txt");
}

probe::ReportRow ProbeWindow::row(const std::string& id) const {
    for (probe::ReportRow& row : report().rows) {
        if (row.id == id) return row;
    }
    return {};
}

}  // namespace workbench
