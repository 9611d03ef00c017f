// Control requests that do something.
#include <windows.h>

#include <cstdio>

#include "workbench/host/commands/commands.h"
#include "workbench/host/commands/macro_runner.h"
#include "workbench/host/control/control.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/plugin_call.h"
#include "workbench/host/toolkit/plugins.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/menu_bar.h"
#include "workbench/host/windows/ui_loop.h"
#include "workbench/host/windows/window_tools.h"

namespace workbench {
namespace {

using Lines = std::vector<std::string>;

constexpr ProMode MODE_DRAWING = 6;
struct ModeName {
    const char* name;
    ProMode mode;
    bool isSketch;
};
constexpr ModeName MODE_NAMES[] = {
    {"assembly", PRO_MODE_ASSEMBLY, false}, {"part", PRO_MODE_PART, false},   {"sketcher", PRO_MODE_PART, true},
    {"drawing", MODE_DRAWING, false},       {"none", PRO_MODE_UNUSED, false},
};

bool onOrOff(const std::string& word) {
    if (word != "on" && word != "off") throw ControlError("\"" + word + "\" is neither on nor off");
    return word == "on";
}

void require(bool isDone, const std::string& reason) {
    if (!isDone) throw ControlError(reason);
}

// For what leaves its own reason in the message line.
void requireDone(bool isDone) {
    if (!isDone) throw ControlError(host().messages().empty() ? "not done" : host().messages().back());
}

HWND windowNamed(const std::string& name) {
    const HWND window = frame().find(name);
    require(window != nullptr, "there is no window " + name);
    return window;
}

void select(const Request& request, Lines&) {
    if (request.word(0) == "all") return host().selectAll();
    if (request.word(0) == "none") return host().select({});
    std::vector<ComponentPath> paths;
    for (const std::string& word : request.words) {
        const auto path = word == "root" ? ComponentPath{} : parsePath(word).value_or(ComponentPath{-1});
        require(path.empty() || host().model().find(path) != nullptr, "there is no component " + word);
        paths.push_back(path);
    }
    host().select(std::move(paths));
}

void mode(const Request& request, Lines&) {
    HostState& state = host();
    state.forcedMode.reset();
    state.forcedSketch.reset();
    if (request.word(0) == "auto") return;
    for (const auto& [name, value, isSketch] : MODE_NAMES) {
        if (request.word(0) != name) continue;
        state.forcedMode = value;
        state.forcedSketch = isSketch;
        return;
    }
    state.forcedMode = request.number(0);
}

void sketch(const Request& request, Lines&) {
    if (request.word(0) == "auto") return host().forcedSketch.reset();
    host().forcedSketch = onOrOff(request.word(0));
}

void window(const Request& request, Lines&) {
    if (request.word(0) == "auto") return host().forcedWindow.reset();
    host().forcedWindow = request.number(0);
}

void view(const Request& request, Lines& lines) {
    if (!request.words.empty()) {
        require(request.word(0) == "set" && request.words.size() == 10, "view set needs nine numbers");
        Transform orientation;
        for (std::size_t i = 0; i < 9; ++i) {
            require(std::sscanf(request.words[i + 1].c_str(), "%lf", &orientation.m[i / 3][i % 3]) == 1, "no number");
        }
        require(host().view().setOrientation(orientation), "a row is not of length 1");
        host().listeners.pictureChanged();
    }
    lines.push_back(numberText(host().view().matrix()));
}

void clickMenu(const std::string& label) {
    for (const Menu& entry : menuBar().menus()) {
        for (const MenuItem& item : entry.items) {
            if (!entry.isOfPlugin || (item.label != label && item.name != label)) continue;
            requireDone(runCommand(item.command, item.option));
            return;
        }
    }
    throw ControlError("there is no menu item \"" + label + "\"");
}

void menu(const Request& request, Lines& lines) {
    if (!request.words.empty()) {
        require(request.word(0) == "click" && request.words.size() > 1, "menu click needs a label");
        return clickMenu(request.text.substr(request.text.find(request.words[1], 5)));
    }
    const auto menus = menuBar().menus();  // as they are now: asking for a state runs code of the plug-in
    for (const Menu& entry : menus) {
        for (const MenuItem& item : entry.items) {
            const Command* command = commands().find(item.command);
            if (!entry.isOfPlugin || command == nullptr) continue;
            const bool isEnabled = accessOf(*command) == ACCESS_AVAILABLE;
            lines.push_back(item.label + " checked=" + (isChecked(*command) ? "1" : "0") +
                            " enabled=" + (isEnabled ? "1" : "0"));
        }
    }
}

void command(const Request& request, Lines&) {
    const std::string name = request.word(0);
    const std::size_t option = request.text.find_first_not_of(' ', name.size());
    requireDone(runCommand(name, option == std::string::npos ? "" : request.text.substr(option)));
}

void cursor(const Request& request, Lines&) {
    POINT at{};
    if (request.words.size() > 1) {
        at = {request.number(0), request.number(1)};
    } else {
        RECT r;
        GetWindowRect(windowNamed(request.word(0)), &r);
        at = {(r.left + r.right) / 2, (r.top + r.bottom) / 2};
    }
    require(SetCursorPos(at.x, at.y) != 0, "the pointer cannot be moved");
}

void front(const Request& request, Lines&) {
    const HWND top = windowNamed(request.word(0));
    require(GetAncestor(top, GA_ROOT) == top, request.word(0) + " is no top-level window");
    bringInFront(top);
    require(GetForegroundWindow() == top, "the window cannot be brought in front");
}

const std::string& toolkitFunction(const Request& request) {
    require(ToolkitCalls::isKnown(request.word(0)), "there is no toolkit function " + request.word(0));
    return request.word(0);
}

template <const char* VERB>
void goWrong(const Request& request, Lines&) {
    toolkitFunction(request);
    toolkitCalls().faults().request(VERB, request.words);
}
constexpr char FAIL[] = "fail", HANG[] = "hang", PUMP[] = "pump";

void during(const Request& request, Lines&) {
    const std::string& function = toolkitFunction(request);
    const std::string line = request.text.substr(request.text.find(request.word(1), function.size()));
    toolkitCalls().during(function, [line] {
        const Reply reply = answerControl(line);
        if (!reply.isOk) host().error(reply.error);
    });
}

void keys(const Request& request, Lines&) {
    for (const char key : request.text) PostMessageW(frame().window(), WM_CHAR, static_cast<WPARAM>(key), 1);
}

void reload(int rounds) {
    for (int i = 0; i < rounds; ++i) {
        plugins().unload();
        requireDone(plugins().start());
    }
}

void plugin(const Request& request, Lines& lines) {
    const std::string& what = request.word(0);
    if (what == "terminate") {
        requireDone(plugins().terminate());
    } else if (what == "initialize") {
        requireDone(plugins().initialise());
    } else if (what == "load") {
        requireDone(plugins().start());
    } else if (what == "unload") {
        plugins().unload();
    } else if (what == "call") {
        const std::string& entry = request.word(1);
        require(entry == "initialize" || entry == "terminate", "plugin cannot call \"" + entry + "\"");
        requireDone(plugins().call(entry == "initialize"));
    } else if (what == "reload") {
        reload(request.number(1));
    } else {
        throw ControlError("plugin cannot \"" + what + "\"");
    }
    lines.push_back(plugins().state());
}

}  // namespace

std::vector<ControlCommand> actionCommands() {
    return {
        {"select", select},
        {"mode", mode},
        {"sketch", sketch},
        {"model", [](const Request& request, Lines&) { requireDone(runCommand("ProCmdModelOpen", request.word(0))); }},
        {"window", window},
        {"view", view},
        {"menu", menu},
        {"command", command},
        {"macro", [](const Request& request, Lines&) { queueMacro(request.text); }},
        {"undo", [](const Request&, Lines&) { require(host().undo(), "there is nothing to undo"); }},
        {"redo", [](const Request&, Lines&) { require(host().redo(), "there is nothing to redo"); }},
        {"keys", keys},
        {"cursor", cursor},
        {"front", front},
        {"panel",
         [](const Request& request, Lines&) { require(frame().showPanel(request.word(0)), "there is no such panel"); }},
        {"resize", [](const Request& request, Lines&) { frame().resize(request.number(0), request.number(1)); }},
        {"place",
         [](const Request& request, Lines&) {
             frame().resize(request.number(2), request.number(3));
             frame().move(request.number(0), request.number(1));
         }},
        {"rebuild", [](const Request&, Lines&) { frame().rebuild(); }},
        {"components",
         [](const Request& request, Lines&) {
             constexpr int MOST = 20000;
             const int count = request.number(0);
             require(count >= 1 && count <= MOST, "between 1 and 20000 components");
             host().rebuildAssembly(count);
         }},
        {"fail", goWrong<FAIL>},
        {"hang", goWrong<HANG>},
        {"pump", goWrong<PUMP>},
        {"chaos", [](const Request& request, Lines&) { toolkitCalls().faults().request("chaos", request.words); }},
        {"calm",
         [](const Request& request, Lines&) {
             toolkitCalls().faults().request("calm", request.words);
             toolkitCalls().forgetActions();
         }},
        {"during", during},
        {"crash", [](const Request&, Lines&) { __builtin_trap(); }},
        {"notify",
         [](const Request& request, Lines&) {
             require(notifications().fire(request.number(0)), "nothing is registered for that type");
         }},
        {"misalign", [](const Request& request, Lines&) { setMisalignment(onOrOff(request.word(0))); }},
        {"plugin", plugin},
        {"exit", [](const Request&, Lines&) { quitUiLoop(0); }},
    };
}

}  // namespace workbench
