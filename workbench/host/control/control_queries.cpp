// Control requests that ask.
#include <windows.h>

#include <commctrl.h>

#include <algorithm>
#include <cstdio>

#include "workbench/host/commands/commands.h"
#include "workbench/host/commands/key_sequence.h"
#include "workbench/host/commands/macro_runner.h"
#include "workbench/host/control/control.h"
#include "workbench/host/control/device_support.h"
#include "workbench/host/control/invariants.h"
#include "workbench/host/control/process_counts.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/plugins.h"
#include "workbench/host/toolkit/selection_arrays.h"
#include "workbench/host/toolkit/system_calls.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/menu_bar.h"
#include "workbench/host/windows/scroll_window.h"
#include "workbench/host/windows/tool_strip.h"
#include "workbench/host/windows/ui_loop.h"

namespace workbench {
namespace {

using Lines = std::vector<std::string>;

std::string selectionText() {
    std::string text;
    for (const ComponentPath& path : host().selection()) {
        text += (text.empty() ? "" : " ") + (path.empty() ? "root" : pathText(path));
    }
    return text;
}

void status(const Request&, Lines& lines) {
    const HostState& state = host();
    const MacroCounts& macros = macroCounts();
    const auto add = [&](const char* key, const std::string& value) {
        lines.push_back(std::string(key) + "=" + value);
    };
    const auto addNumber = [&](const char* key, auto value) { add(key, std::to_string(value)); };
    addNumber("mode", state.mode());
    addNumber("sketch", int{state.isSketchActive()});
    add("model", state.model().name);
    addNumber("window", state.window());
    const auto& components = state.model().components;
    addNumber("components",
              std::count_if(components.begin(), components.end(), [](const auto& c) { return !c.isDeleted; }));
    addNumber("selected", state.selection().size());
    add("selection", selectionText());
    addNumber("undo", state.history.undoDepth());
    addNumber("redo", state.history.redoDepth());
    add("undo_name", state.history.lastName());
    add("style", styleName(state.style));
    addNumber("triad", int{state.hasTriad});
    addNumber("tree_shown", int{frame().isTreeShown()});
    addNumber("outstanding_arrays", selectionArrays().outstanding());
    addNumber("handles", handleCount());
    addNumber("threads", threadCount());
    addNumber("gdi_objects", gdiObjectCount());
    addNumber("user_objects", userObjectCount());
    addNumber("private_bytes", privateBytes());
    addNumber("ticks", timerTicks());
    add("plugin", plugins().state());
    addNumber("plugin_load_us", plugins().loadTime().count());
    addNumber("plugin_start_us", plugins().startTime().count());
    addNumber("start_disturbed", int{plugins().isStartDisturbed()});
    addNumber("misalign", int{isMisalignmentOn()});
    addNumber("mapkeys", keySequence().mapkeys().size());
    addNumber("macros_run", macros.queuedRun);
    addNumber("mapkeys_run", macros.mapkeysRun);
    addNumber("trails_played", macros.trailsPlayed);
    addNumber("macros_failed", macros.failed);
    addNumber("errors", state.errorCount());
    addNumber("wrong_thread_calls", toolkitCalls().wrongThreadCalls());
    addNumber("legacy_motions", legacyMotionCount());
    addNumber("process", GetCurrentProcessId());
    add("message", state.messages().empty() ? "" : state.messages().back());
}

void positions(const Request&, Lines& lines) {
    for (const Component& component : host().model().components) {
        if (component.isDeleted) continue;
        lines.push_back(std::to_string(component.id) + " " + component.name + " " + numberText(component.position));
    }
}

void screen(const Request& request, Lines& lines) {
    const auto wanted = parsePath(request.word(0));
    bool isFound = false;
    visitShown(host().model().components, {}, {},
               [&](const ComponentPath& path, const Component&, const Transform& placed) {
                   if (!wanted || path != *wanted) return;
                   const Vec3 p = host().view().matrix().point(placed.origin());
                   POINT pixel{std::lround(p.x), std::lround(host().view().height() - p.y)};
                   ClientToScreen(frame().graphics(), &pixel);
                   lines.push_back(std::to_string(pixel.x) + " " + std::to_string(pixel.y));
                   isFound = true;
               });
    if (!isFound) throw ControlError("there is no component " + request.word(0));
}

void menus(const Request&, Lines& lines) {
    for (const Menu& menu : menuBar().menus()) lines.push_back(menu.label);
}

void listWindows(const Request&, Lines& lines) {
    for (const auto& [name, window] : frame().windows()) {
        char className[64] = "";
        GetClassNameA(window, className, sizeof className);
        RECT r{};
        GetWindowRect(window, &r);
        char line[256];
        std::snprintf(line, sizeof line, "%s %s %p %ld %ld %ld %ld visible=%d", name.c_str(), className,
                      static_cast<void*>(window), r.left, r.top, r.right, r.bottom, IsWindowVisible(window) ? 1 : 0);
        lines.push_back(line);
    }
}

BOOL CALLBACK noteTopWindow(HWND window, LPARAM lines) {
    char className[64] = "";
    GetClassNameA(window, className, sizeof className);
    char line[128];
    std::snprintf(line, sizeof line, "%p %s visible=%d", static_cast<void*>(window), className,
                  IsWindowVisible(window) ? 1 : 0);
    reinterpret_cast<Lines*>(lines)->push_back(line);
    return TRUE;
}

void topWindows(const Request&, Lines& lines) {
    EnumThreadWindows(GetCurrentThreadId(), noteTopWindow, reinterpret_cast<LPARAM>(&lines));
}

std::string barText(HWND window, int bar, const char* name) {
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
    if (!GetScrollInfo(window, bar, &info)) return std::string(name) + " none";
    return std::string(name) + " " + std::to_string(info.nMin) + " " + std::to_string(info.nMax) + " " +
           std::to_string(info.nPage) + " " + std::to_string(info.nPos);
}

int rowNumberOf(HWND tree, HTREEITEM row) {
    int number = 0;
    for (HTREEITEM at = TreeView_GetRoot(tree); at != nullptr && at != row; at = TreeView_GetNextVisible(tree, at))
        ++number;
    return number;
}

int firstLineShown(HWND window) {
    char name[64] = "";
    GetClassNameA(window, name, sizeof name);
    const std::string className = name;
    if (className == "SysTreeView32") return rowNumberOf(window, TreeView_GetFirstVisible(window));
    if (className == "SysListView32") return static_cast<int>(SendMessageW(window, LVM_GETTOPINDEX, 0, 0));
    if (className == "ListBox") return static_cast<int>(SendMessageW(window, LB_GETTOPINDEX, 0, 0));
    if (className == "Edit") return static_cast<int>(SendMessageW(window, EM_GETFIRSTVISIBLELINE, 0, 0));
    const ScrollWindow* content = ScrollWindow::of(window);
    return content == nullptr ? 0 : content->topLine();
}

void scroll(const Request& request, Lines& lines) {
    const HWND window = frame().find(request.word(0));
    if (window == nullptr) throw ControlError("there is no window " + request.word(0));
    lines.push_back(barText(window, SB_VERT, "vertical"));
    lines.push_back(barText(window, SB_HORZ, "horizontal"));
    lines.push_back("top " + std::to_string(firstLineShown(window)));
    if (const ScrollWindow* content = ScrollWindow::of(window)) {
        lines.push_back("wheel " + std::to_string(content->wheelNotches()));
        lines.push_back("wheel_wparam " + std::to_string(static_cast<int>(content->wheelWParam())));
        lines.push_back("wheel_lparam " + std::to_string(static_cast<int>(content->wheelLParam())));
    }
    if (request.word(0) == "toolbar") lines.push_back("offset " + std::to_string(toolbarOffset()));
}

void calls(const Request& request, Lines& lines) {
    const std::string& function = request.word(0);
    if (!ToolkitCalls::isKnown(function)) throw ControlError("there is no toolkit function " + function);
    lines.push_back(std::to_string(toolkitCalls().callsOf(function)));
}

void access(const Request& request, Lines& lines) {
    const Command* command = commands().find(request.word(0));
    if (command == nullptr) throw ControlError("there is no command " + request.word(0));
    lines.push_back(std::to_string(accessOf(*command)));
}

void config(const Request& request, Lines& lines) {
    const auto found = host().config.find(request.word(0));
    if (found == host().config.end()) throw ControlError("the option " + request.word(0) + " is not set");
    lines.push_back(found->second);
}

void trail(const Request&, Lines& lines) {
    for (const Mapkey& mapkey : keySequence().mapkeys()) {
        lines.push_back(mapkey.keys + " " + mapkey.label + " " + mapkey.macro);
    }
}

void listCommands(const Request&, Lines& lines) {
    for (const auto& command : commands().all()) lines.push_back(command->name + " " + command->label);
}

void listNotifications(const Request&, Lines& lines) {
    for (const auto& [type, handler] : notifications().all()) lines.push_back(std::to_string(type));
}

}  // namespace

std::vector<ControlCommand> queryCommands() {
    return {
        {"status", status},
        {"positions", positions},
        {"screen", screen},
        {"menus", menus},
        {"windows", listWindows},
        {"top", topWindows},
        {"scroll", scroll},
        {"calls", calls},
        {"access", access},
        {"messages",
         [](const Request&, Lines& lines) { lines.assign(host().messages().begin(), host().messages().end()); }},
        {"config", config},
        {"trail", trail},
        {"commands", listCommands},
        {"notifications", listNotifications},
        {"invariants",
         [](const Request&, Lines& lines) {
             lines = brokenInvariants();
             if (lines.empty()) lines.push_back("ok");
         }},
        {"help", [](const Request&, Lines& lines) { lines = controlHelp(); }},
        {"blocked", [](const Request&, Lines& lines) { lines.push_back(std::to_string(takeLongestBlock())); }},
    };
}

}  // namespace workbench
