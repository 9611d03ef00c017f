// The device's control panel for those who have no device: a cap to push with the mouse, buttons, and their bindings.
#include <windows.h>
// after windows.h
#include <commctrl.h>

#include <generated/version.h>
#include <atomic>
#include <cstdio>
#include <optional>
#include <sstream>
#include <stdexcept>

#include "workbench/panel/desk.h"
#include "workbench/panel/windows/main_window.h"
#include "workbench/panel/windows/texts.h"
#include "workbench/pipes/text.h"

namespace {

using namespace workbench;

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
constexpr double kTicksInMs = 10000.0;  // of a FILETIME
constexpr char kUsage[] =
    "usage: obk_panel [--menu FILE] [--bindings FILE] [--language english|german] [--place X,Y,W,H] [--times]\n"
    "                 [--version] [--help]\n"
    "  --menu FILE      the plug-in's menu file (default: Creo.mnu where the plug-in makes it)\n"
    "  --bindings FILE  the daemon's bind file, read at the start and written with each change\n"
    "                   (default: Creo_buttons.txt beside the menu file)\n"
    "  --language       default: that of Windows\n"
    "  --place X,Y,W,H  where the window opens on the screen, in pixels\n"
    "  --times          prints how long it takes from the process's start to the painted window, and each search\n"
    "The environment variable ORBIKON_WORKBENCH tells which daemon it belongs to.\n";

struct Options {
    std::filesystem::path menuFile, bindFile;
    bool isGerman = PRIMARYLANGID(GetUserDefaultUILanguage()) == LANG_GERMAN;
    bool areTimesWanted = false;
    bool isVersionWanted = false;
    bool isHelpWanted = false;
    std::optional<RECT> place;
};

RECT parsePlace(const std::string& text) {
    std::istringstream stream(text);
    char comma = 0;
    int x = 0, y = 0, width = 0, height = 0;
    if (!(stream >> x >> comma >> y >> comma >> width >> comma >> height) || !stream.eof() || width <= 0 ||
        height <= 0) {
        throw std::runtime_error("--place wants X,Y,W,H, not " + text);
    }
    return {x, y, x + width, y + height};
}

Options parseOptions(const std::vector<std::string>& words) {
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        const auto value = [&]() -> const std::string& {
            if (i + 1 == words.size()) throw std::runtime_error(word + " needs a value");
            return words[++i];
        };
        if (word == "--help") {
            options.isHelpWanted = true;
        } else if (word == "--version") {
            options.isVersionWanted = true;
        } else if (word == "--times") {
            options.areTimesWanted = true;
        } else if (word == "--menu") {
            options.menuFile = hostPath(value());
        } else if (word == "--bindings") {
            options.bindFile = hostPath(value());
        } else if (word == "--place") {
            options.place = parsePlace(value());
        } else if (word == "--language") {
            options.isGerman = value() == "german";
            if (!options.isGerman && words[i] != "english") throw std::runtime_error("no language " + words[i]);
        } else {
            throw std::runtime_error("unknown option " + word);
        }
    }
    if (options.menuFile.empty()) {
        const wchar_t* profile = _wgetenv(L"USERPROFILE");
        options.menuFile = std::filesystem::path(profile != nullptr ? profile : L".") / "OrbikonController" /
                           "Applications" / "Creo.mnu";
    }
    if (options.bindFile.empty()) options.bindFile = options.menuFile.parent_path() / "Creo_buttons.txt";
    options.menuFile = std::filesystem::absolute(options.menuFile);  // the daemon has a current folder of its own
    options.bindFile = std::filesystem::absolute(options.bindFile);
    return options;
}

// A crash must not leave a window that asks: the pipe, and with it the pushed cap, would stay.
LONG WINAPI endAtOnce(EXCEPTION_POINTERS*) {
    TerminateProcess(GetCurrentProcess(), 70);
    return EXCEPTION_EXECUTE_HANDLER;
}

void attachConsole() {
    if (GetStdHandle(STD_ERROR_HANDLE) != nullptr || !AttachConsole(ATTACH_PARENT_PROCESS)) return;
    std::freopen("CONOUT$", "w", stdout);
    std::freopen("CONOUT$", "w", stderr);
}

ULONGLONG ticksOf(const FILETIME& time) { return (ULONGLONG{time.dwHighDateTime} << 32) | time.dwLowDateTime; }

double msSinceProcessStart() {
    FILETIME start{}, end{}, kernel{}, user{}, now{};
    GetProcessTimes(GetCurrentProcess(), &start, &end, &kernel, &user);
    GetSystemTimeAsFileTime(&now);
    return static_cast<double>(ticksOf(now) - ticksOf(start)) / kTicksInMs;
}

int run(const Options& options) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    SetUnhandledExceptionFilter(endAtOnce);
    setDpi(dpiOf(GetDesktopWindow()));
    const INITCOMMONCONTROLSEX controls{
        sizeof controls, ICC_TREEVIEW_CLASSES | ICC_LISTVIEW_CLASSES | ICC_BAR_CLASSES | ICC_TAB_CLASSES};
    InitCommonControlsEx(&controls);
    setGerman(options.isGerman);

    std::atomic<HWND> listener{nullptr};
    Desk desk(options.menuFile, options.bindFile, [&listener] {
        if (const HWND window = listener) PostMessageW(window, MainWindow::kDaemonChanged, 0, 0);
    });
    MainWindow window(desk);
    listener = window.window();
    PostMessageW(window.window(), MainWindow::kDaemonChanged, 0, 0);  // what was heard before
    window.show(options.place);
    if (options.areTimesWanted) {
        std::printf("painted after %.0f ms, %zu commands\n", msSinceProcessStart(), desk.commands().items().size());
        std::fflush(stdout);
    }
    double told = 0.0;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (!window.translate(message)) {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        if (options.areTimesWanted && window.lastSearchMs() != told) {
            told = window.lastSearchMs();
            std::printf("search took %.2f ms\n", told);
            std::fflush(stdout);
        }
    }
    listener = nullptr;
    return 0;
}

}  // namespace

int main() {
    attachConsole();
    Options options;
    try {
        options = parseOptions(commandLineArguments());
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "obk_panel: %s\n%s", failure.what(), kUsage);
        return kExitUsage;
    }
    if (options.isHelpWanted || options.isVersionWanted) {
        std::printf("%s", options.isHelpWanted ? kUsage : (std::string("obk_panel ") + kProductVersion + "\n").c_str());
        return 0;
    }
    try {
        return run(options);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "obk_panel: %s\n", failure.what());
        return kExitFailed;
    }
}
