#include "workbench/panel/desk.h"

#include <windows.h>

#include <cstdlib>
#include <stdexcept>

#include "common_sources/profile_folder.h"
#include "config/cnfg.h"
#include "workbench/panel/windows/texts.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

std::string quoted(const std::filesystem::path& path) { return '"' + textOf(path) + '"'; }

// The daemon beside this program, or one folder above it.
std::filesystem::path daemonProgram() {
    for (std::filesystem::path folder = programFile().parent_path(); folder != folder.parent_path();
         folder = folder.parent_path()) {
        if (std::filesystem::exists(folder / "obk_daemon.exe")) return folder / "obk_daemon.exe";
    }
    throw std::runtime_error("there is no obk_daemon.exe beside this program");
}

void start(const std::filesystem::path& program) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    std::wstring commandLine = L'"' + program.wstring() + L'"';
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, CREATE_NO_WINDOW, nullptr,
                        nullptr, &startup, &made)) {
        throw std::runtime_error("cannot start " + textOf(program) + ", error " + std::to_string(GetLastError()));
    }
    CloseHandle(made.hThread);
    CloseHandle(made.hProcess);
}

struct TopWindow {
    DWORD process;
    HWND found;
};

// The upmost window with a title: the one that was used last.
BOOL CALLBACK takeTopWindow(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<TopWindow*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search.process || !IsWindowVisible(window) || GetWindowTextLengthW(window) == 0) return TRUE;
    search.found = window;
    return FALSE;
}

}  // namespace

Desk::Desk(std::filesystem::path menuFile, std::filesystem::path bindFile, std::function<void()> daemonChanged)
    : mMenuFile(std::move(menuFile)), mBindFile(std::move(bindFile)), mClient(std::move(daemonChanged)) {
    loadBindings();
    refreshMenuFile();
}

void Desk::moveCap(const std::function<void(CapState&)>& change) {
    change(mCap);
    if (mCap.axes() != mSent) {
        mSent = mCap.axes();
        mClient.setAxes(mSent);
    }
    capMoved();
}

bool Desk::refreshMenuFile() {
    std::error_code failure;
    const auto time = std::filesystem::last_write_time(mMenuFile, failure);
    if (failure || (mHasMenuFile && time == mMenuFileTime)) return false;
    Cnfg file(narrowPath(mMenuFile.wstring()));
    if (!file.isOpen()) return false;  // somebody writes it
    mCommands = CommandList(file);
    mHasMenuFile = true;
    mMenuFileTime = time;
    tellBindings();
    return true;
}

void Desk::loadBindings() {
    std::error_code failure;
    if (!std::filesystem::exists(mBindFile, failure)) return;
    try {
        mBindings.load(readBindFile(mBindFile));
    } catch (const std::runtime_error& problem) {
        mProblem = problem.what();
        mIsBindFileDamaged = true;
    }
}

bool Desk::changeBindings(const std::function<bool(BindModel&)>& change) {
    if (!change(mBindings)) return false;
    save();
    tellBindings();
    bindingsChanged();
    return true;
}

void Desk::save() try {
    if (mIsBindFileDamaged) std::filesystem::rename(mBindFile, std::filesystem::path(mBindFile) += ".damaged");
    mIsBindFileDamaged = false;
    writeBindFile(mBindings.file(), mBindFile);
    mProblem.clear();
} catch (const std::exception& failure) {
    mProblem = failure.what();
}

void Desk::tellBindings() {
    std::error_code failure;
    if (!mHasMenuFile || mIsBindFileDamaged || !std::filesystem::exists(mBindFile, failure)) return;
    mClient.setBinding("bind " + quoted(mBindFile) + ' ' + quoted(mMenuFile) + " keep");
}

std::wstring Desk::labelOf(const std::string& mode, int button, bool isSourceTold) const {
    const BindModel::Bound bound = mBindings.bound(mode, button);
    if (bound.command == nullptr) return {};
    const CommandList::Item* item = mCommands.find(*bound.command);
    std::wstring label = item != nullptr ? wideText(item->label) : text(Text::missing) + wideText(*bound.command);
    if (bound.isInherited && isSourceTold) label += text(Text::inherited);
    return label;
}

std::string Desk::modeTold() {
    const std::string mode = daemon().value("mode");
    return mode.empty() ? std::string(kDefaultMode) : mode;
}

void Desk::pressButton(int button) {
    bringApplicationInFront();
    mClient.send("button " + std::to_string(button));
}

void Desk::pressSpecial(std::int32_t event) {
    bringApplicationInFront();
    mClient.send("event " + std::to_string(event));
}

void Desk::bringApplicationInFront() {
    const std::vector<std::string> applications = daemon().applications;
    if (applications.empty()) return;
    TopWindow search{static_cast<DWORD>(std::strtoul(applications.front().c_str(), nullptr, 10)), nullptr};
    EnumWindows(takeTopWindow, reinterpret_cast<LPARAM>(&search));
    if (search.found != nullptr) SetForegroundWindow(search.found);
}

void Desk::startDaemon() try {
    start(daemonProgram());
    mProblem.clear();
} catch (const std::runtime_error& failure) {
    mProblem = failure.what();
}

}  // namespace workbench
