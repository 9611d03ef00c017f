// The device daemon: a process of its own that plays the device for the driver library and is steered by commands.
#include <windows.h>

#include <generated/version.h>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/daemon/control.h"
#include "workbench/daemon/data_service.h"
#include "workbench/daemon/script.h"
#include "workbench/pipes/numbers.h"
#include "workbench/pipes/text.h"

namespace {

using namespace workbench;

constexpr int kExitFailure = 1;
constexpr int kExitUsage = 2;
constexpr std::string_view kUsage =
    "usage: obk_daemon [--script FILE] [--parent PID] [--version] [--help]\n"
    "  --script FILE  plays a file of commands, one a line, and \"wait MS\" and \"wait-connected MS\"\n"
    "  --parent PID   ends when that process ends\n"
    "The environment variable ORBIKON_WORKBENCH tells several workbenches apart.\n"
    "Commands:\n";

struct Options {
    std::string script;
    DWORD parent = 0;  // 0 = none
    bool isHelpWanted = false;
    bool isVersionWanted = false;
};

Options parseOptions(const std::vector<std::string>& words) {
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--help") {
            options.isHelpWanted = true;
        } else if (word == "--version") {
            options.isVersionWanted = true;
        } else if (i + 1 == words.size()) {
            throw std::runtime_error("unknown option, or one without its value: " + word);
        } else if (word == "--script") {
            options.script = words[++i];
        } else if (word == "--parent") {
            options.parent = static_cast<DWORD>(parseNumber(words[++i], 1, MAXDWORD));
        } else {
            throw std::runtime_error("unknown option " + word);
        }
    }
    return options;
}

void printHelp() {
    std::cout << kUsage;
    for (const std::string& line : Control::help()) std::cout << "  " << line << '\n';
}

// Signalled when the daemon is to end; Ctrl-C comes on a thread of its own.
HANDLE stopEvent() {
    static const Handle event = makeEvent();
    return event.get();
}

BOOL WINAPI onConsoleSignal(DWORD) {
    SetEvent(stopEvent());
    return TRUE;
}

Handle openParent(DWORD id) {
    Handle parent(id != 0 ? OpenProcess(SYNCHRONIZE, FALSE, id) : nullptr);
    if (id != 0 && !parent) throw std::runtime_error("no such process: " + std::to_string(id));
    return parent;
}

// Ends the daemon's work as soon as its parent has ended.
void CALLBACK onParentEnded(void*, BOOLEAN) { SetEvent(stopEvent()); }

int serve(const Options& options) {
    const Handle parent = openParent(options.parent);
    HANDLE parentWait = nullptr;
    if (parent) {
        RegisterWaitForSingleObject(&parentWait, parent.get(), onParentEnded, nullptr, INFINITE, WT_EXECUTEONLYONCE);
    }
    SetConsoleCtrlHandler(onConsoleSignal, TRUE);

    bool isScriptDone = true;
    Device device;
    Control control(device, [] { SetEvent(stopEvent()); });
    const std::string dataPipe = pipeName(kDataRole);
    const std::string controlPipe = pipeName(kControlRole);
    {
        const LineServer data(dataPipe, [&device](const std::string& line) { return answerDriver(device, line); });
        const LineServer steering(controlPipe, LineServer::HandlerMaker([&control] {
                                      auto connection = std::make_shared<ControlConnection>(control);
                                      return [connection](const std::string& line) { return connection->run(line); };
                                  }));
        std::cout << "obk_daemon is ready: " << dataPipe << ' ' << controlPipe << std::endl;

        if (!options.script.empty()) isScriptDone = playScript(options.script, control, device, stopEvent());
        WaitForSingleObject(stopEvent(), INFINITE);
    }
    if (parentWait != nullptr) UnregisterWaitEx(parentWait, INVALID_HANDLE_VALUE);
    return isScriptDone ? 0 : kExitFailure;
}

}  // namespace

int main() {
    Options options;
    try {
        options = parseOptions(commandLineArguments());
    } catch (const std::exception& failure) {
        std::cerr << "obk_daemon: " << failure.what() << '\n' << kUsage;
        return kExitUsage;
    }
    if (options.isHelpWanted) {
        printHelp();
        return 0;
    }
    if (options.isVersionWanted) {
        std::cout << "obk_daemon " << kProductVersion << '\n';
        return 0;
    }
    try {
        return serve(options);
    } catch (const std::exception& failure) {
        std::cerr << "obk_daemon: " << failure.what() << '\n';
        return kExitFailure;
    }
}
