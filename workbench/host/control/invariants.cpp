#include "workbench/host/control/invariants.h"

#include <windows.h>

#include <map>
#include <optional>
#include <sstream>

#include "workbench/host/commands/commands.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/matrix_check.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/plugins.h"
#include "workbench/host/toolkit/selection_arrays.h"
#include "workbench/host/toolkit/system_calls.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/windows/menu_bar.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {
namespace {

using Breaches = std::vector<std::string>;

constexpr int ENOUGH_TRIES = 2;
constexpr int ANSWER_TIME_MS = 1000;
constexpr int WINDOW_CHANGED = 24;
constexpr int LEFT_REGISTERED[] = {72, 73};

// The daemon's account of its side; nothing while there is no daemon.
class Daemon {
  public:
    Daemon() {
        LineClient client;
        if (!client.open(pipeName("obk_control"), 0)) return;
        const Reply reply = client.ask("status", ANSWER_TIME_MS);
        for (const std::string& line : reply.lines) {
            const std::size_t equals = line.find('=');
            if (equals != std::string::npos) mStatus[line.substr(0, equals)] = line.substr(equals + 1);
        }
    }

    bool isThere() const { return !mStatus.empty(); }
    const std::string& value(const char* key) const { return mStatus.at(key); }

    // How many of an operation's latest calls it refused in a row.
    int refused(const std::string& operation) const {
        std::istringstream words(value("refused"));
        for (std::string word; words >> word;) {
            if (word.starts_with(operation + ':')) return std::stoi(word.substr(operation.size() + 1));
        }
        return 0;
    }

    // Whether it has kept the plug-in from switching LegacyCOM1.
    bool isExcusing() const {
        return refused("obSetOption") >= ENOUGH_TRIES || refused("obConnect") > 0 || refused("obGetDevNum") > 0;
    }

  private:
    std::map<std::string, std::string> mStatus;
};

std::string counted(int count, const char* what) { return std::to_string(count) + ' ' + what; }

void checkAtRest(Breaches& breaches) {
    const auto arrays = static_cast<int>(selectionArrays().outstanding());
    if (arrays > 0) breaches.push_back(counted(arrays, "selection arrays were not given back"));
    const bool wasTriedToEnd = toolkitCalls().faults().refusedInRow("ProAssemblyDynPosSet") >= ENOUGH_TRIES;
    if (host().history.isDragOpen() && !wasTriedToEnd) breaches.push_back("dynamic positioning is on");
}

// Looks at the plug-in's menus as a user does who opens them: whether the check button is on, if there is one.
std::optional<bool> isMenuItemOn(const char* command) {
    const Command* known = commands().find(command);
    if (known == nullptr) return std::nullopt;
    return accessOf(*known) > 0 && isChecked(*known);
}

void checkRunning(Breaches& breaches, const Daemon& daemon) {
    const auto move = isMenuItemOn("Orbikon_ToggleMoveMode");
    const auto scroll = isMenuItemOn("Orbikon_ToggleScrollMode");
    if (!move && !scroll && toolkitCalls().faults().refusedInRow("ProCmdOptionAdd") == 0) {
        breaches.push_back("the plug-in runs without its menu items");
    }
    // One that was refused them is called when another window becomes the current one.
    const bool isCalled = move || scroll || notifications().fire(WINDOW_CHANGED);
    const int timers = liveTimers();
    if (timers > 1 || (timers == 0 && isCalled)) {
        breaches.push_back(counted(timers, "timers are armed while the plug-in runs"));
    }
    const bool isMotionTaken = scroll.value_or(true) || (move.value_or(true) && !host().selection().empty());
    if (isMotionTaken || !daemon.isThere() || daemon.value("clients") == "0" || daemon.isExcusing()) return;
    if (daemon.value("legacy") != daemon.value("legacy_own")) {
        breaches.push_back("LegacyCOM1 is off though the plug-in does not use the motion");
    }
}

void checkEnded(Breaches& breaches, const Daemon& daemon) {
    if (const int timers = liveTimers(); timers > 0) breaches.push_back(counted(timers, "timers outlive the plug-in"));
    if (const int threads = liveThreads(); threads > 0) {
        breaches.push_back(counted(threads, "threads outlive the plug-in"));
    }
    for (const auto& [type, handler] : notifications().all()) {
        if (type != LEFT_REGISTERED[0] && type != LEFT_REGISTERED[1]) {
            breaches.push_back("notification " + std::to_string(type) + " outlives the plug-in");
        }
    }
    if (!daemon.isThere()) return;
    if (daemon.value("clients") != "0") breaches.push_back("a driver session outlives the plug-in");
    if (daemon.value("legacy") != daemon.value("legacy_own") && !daemon.isExcusing()) {
        breaches.push_back("LegacyCOM1 is not as it was before the plug-in");
    }
}

}  // namespace

std::vector<std::string> brokenInvariants() {
    const Faults::Quiet quiet(toolkitCalls().faults());  // what is asked here must not use up what is to go wrong
    Breaches breaches = badMatrices();
    const int wrong = toolkitCalls().wrongThreadCalls();
    if (wrong > 0) breaches.push_back(counted(wrong, "toolkit calls came from other threads"));
    if (toolkitCalls().isInCall()) return breaches;
    checkAtRest(breaches);
    const Daemon daemon;
    if (plugins().state() == "initialised") {
        checkRunning(breaches, daemon);
    } else {
        checkEnded(breaches, daemon);
    }
    return breaches;
}

}  // namespace workbench
