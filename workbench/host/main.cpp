// The workbench's host: stands in for the CAD application. See control/control.h for how it is steered from outside.
//
// Exit codes: 0 ended as asked, 2 command line not understood, 3 no plug-in could be started (--require-plugin),
// 4 the windows or the control pipe could not be made, 70 crashed.
#include <windows.h>
// after windows.h
#include <commdlg.h>

#include <generated/version.h>
#include <cstdio>
#include <exception>
#include <optional>
#include <thread>

#include "workbench/host/commands/builtin_commands.h"
#include "workbench/host/commands/commands.h"
#include "workbench/host/commands/macro_runner.h"
#include "workbench/host/control/control.h"
#include "workbench/host/control/crash_guard.h"
#include "workbench/host/control/device_support.h"
#include "workbench/host/control/interactive.h"
#include "workbench/host/control/options.h"
#include "workbench/host/model/creo_variant.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/plugins.h"
#include "workbench/host/toolkit/system_calls.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/menu_bar.h"
#include "workbench/host/windows/ui_loop.h"

using namespace workbench;

namespace {

constexpr int EXIT_USAGE = 2;
constexpr int EXIT_NO_PLUGIN = 3;
constexpr int EXIT_NO_WINDOWS = 4;

// A windows program has no console of its own; started from one, it writes there.
void attachConsole() {
    if (GetStdHandle(STD_ERROR_HANDLE) != nullptr || !AttachConsole(ATTACH_PARENT_PROCESS)) return;
    std::freopen("CONOUT$", "w", stdout);
    std::freopen("CONOUT$", "w", stderr);
}

// Ends the host together with the process that started it: in order, or at once when that takes too long.
void followParent(unsigned long id) {
    constexpr DWORD ORDERLY_END_MS = 10000;
    const HANDLE parent = OpenProcess(SYNCHRONIZE, FALSE, id);
    std::thread([parent] {
        if (parent != nullptr) WaitForSingleObject(parent, INFINITE);
        postToUi([] { quitUiLoop(0); });
        Sleep(ORDERLY_END_MS);
        TerminateProcess(GetCurrentProcess(), 0);
    }).detach();
}

// Ctrl+Z and Ctrl+Y, wherever the focus is. True when the key was one of them.
bool runShortcut(const MSG& message) {
    if (message.message != WM_KEYDOWN || (GetKeyState(VK_CONTROL) & 0x8000) == 0) return false;
    if (message.wParam != 'Z' && message.wParam != 'Y') return false;
    runCommand(message.wParam == 'Z' ? "ProCmdEditUndo" : "ProCmdEditRedo", "");
    return true;
}

// The file dialog for people; macros use ProCmdUtilTrailTrain.
void askForTrailFile() {
    wchar_t path[MAX_PATH] = L"";
    OPENFILENAMEW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = frame().window();
    ask.lpstrFilter = L"Trail files (*.txt)\0*.txt\0All files\0*.*\0";
    ask.lpstrFile = path;
    ask.nMaxFile = MAX_PATH;
    ask.Flags = OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;
    if (GetOpenFileNameW(&ask)) playTrailFile(wideToUtf8(path));
}

void addProgramCommands(bool isInteractive) {
    // Shown by a task of its own, so that whoever ran the command need not wait until it is closed.
    const auto showText = [](const std::string& text, const char* title) {
        postToUi([=] { MessageBoxA(frame().window(), text.c_str(), title, MB_OK | MB_ICONINFORMATION); });
        return true;
    };
    const auto add = [](const char* name, std::function<bool(const std::string&)> run) {
        Command command;
        command.name = name;
        command.label = name;
        command.run = std::move(run);
        commands().add(std::move(command));
    };
    add("ProCmdAppExit", [](const auto&) {
        quitUiLoop(0);
        return true;
    });
    add("ProCmdHelpKeys", [=](const auto&) {
        return showText(
            "Graphics: left button selects, Ctrl adds; middle button turns, with Shift shifts; wheel zooms.\n" +
                std::string(isInteractive ? "Cap keys: " : "Cap keys (only with --interactive): ") + CAP_KEYS,
            "Keys and mouse");
    });
    add("ProCmdHelpAbout", [=](const auto&) {
        return showText("Workbench host: stands in for Creo Parametric while the plug-in is developed and tested.",
                        "About");
    });
    add("ProCmdUtilTrailPlay", [](const auto&) {
        postToUi(askForTrailFile);
        return true;
    });
}

// Each room knows those below it alone; what it needs of one above is handed in.
void connectRooms() {
    setMacroWaker([] { creoVariant().runsMacrosAtOnce ? runQueuedMacros() : postToUi(runQueuedMacros); });
    setCharacterHandler(typeMapkeyCharacter);
    setTimerFilter(dispatchTimerOnOffsetStack);
    addBuiltinCommands({[] { frame().redrawGraphics(); },
                        [] {
                            frame().showTree(!frame().isTreeShown());
                            return frame().isTreeShown();
                        },
                        [] { frame().showAccessory(); }, notifyModelOpened});
}

// The check items of the plug-in's menu that are on: nothing else in the window tells a person that a mode is on.
std::string modesThatAreOn() {
    std::string text;
    for (const Menu& menu : menuBar().menus()) {
        for (const MenuItem& item : menu.items) {
            const Command* command = menu.isOfPlugin ? commands().find(item.command) : nullptr;
            if (command != nullptr && isChecked(*command)) text += (text.empty() ? "on: " : ", ") + item.label;
        }
    }
    return text;
}

void CALLBACK showModes(HWND, UINT, UINT_PTR, DWORD) { frame().showState(modesThatAreOn()); }

// For somebody who sits before the window; a test's host asks the plug-in nothing by itself.
void helpPeople() {
    constexpr UINT LOOK_MS = 300;
    frame().showHint(std::string("Cap keys: ") + CAP_KEYS);
    SetTimer(nullptr, 0, LOOK_MS, showModes);
}

int run(const Options& options) {
    guardAgainstCrashes();
    creoVariant() = options.creo;
    openUiLoop();
    setMisalignment(options.misaligns);
    connectRooms();
    addProgramCommands(options.isInteractive);
    frame().create();
    if (!options.isHidden) frame().show();
    if (options.parent != 0) followParent(options.parent);
    std::optional<LineServer> control(std::in_place, pipeName("creo_control"), answerControlFromAnyThread);
    std::optional<DeviceSupport> device(std::in_place);
    std::optional<CapKeys> capKeys;
    if (options.isInteractive) {
        capKeys.emplace();
    }
    setKeyFilter([&](const MSG& message) { return (capKeys && capKeys->filter(message)) || runShortcut(message); });
    bool isStarted = true;
    if (options.loadsPlugin) {
        plugins().findRegistered();
        isStarted = plugins().isAnyRegistered() && plugins().start();
        if (!plugins().isAnyRegistered()) host().message("No application is registered.");
        // A person's model is opened when the applications run; here it was there before them.
        if (isStarted && options.isInteractive) notifyModelOpened();
    }
    if (options.isInteractive) helpPeople();
    if (!isStarted && options.requiresPlugin) postToUi([] { quitUiLoop(EXIT_NO_PLUGIN); });
    const int exitCode = runUiLoop();
    plugins().unload();
    return exitCode;
}

}  // namespace

int main(int argc, char** argv) {
    attachConsole();
    const Options options = parseOptions({argv + 1, argv + argc});
    if (!options.error.empty()) {
        std::fprintf(stderr, "creo_host: %s\n%s\n", options.error.c_str(), USAGE);
        return EXIT_USAGE;
    }
    if (options.isVersionWanted) {
        std::printf("creo_host %s\n", kProductVersion);
        return 0;
    }
    try {
        return run(options);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "creo_host: %s\n", error.what());
        return EXIT_NO_WINDOWS;
    }
}
