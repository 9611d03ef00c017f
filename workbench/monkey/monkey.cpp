#include "workbench/monkey/monkey.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <map>
#include <ostream>
#include <sstream>
#include <stdexcept>

#include "workbench/control/plugin_settings.h"
#include "workbench/control/workbench.h"
#include "workbench/monkey/actions.h"

namespace workbench {
namespace {

constexpr std::size_t kActionsShown = 30;
constexpr std::size_t kLinesShown = 15;
constexpr int kProofEvery = 500;  // actions
constexpr int kWarmUp = 1000;     // actions; what is kept for good was made by then
constexpr int kMinuteMs = 60000;

// What does not hold: the text says it.
class Broken : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += "   " + line + '\n';
    return text;
}

std::string lastLines(const std::string& text) {
    std::deque<std::string> last;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        last.push_back(line);
        if (last.size() > kLinesShown) last.pop_front();
    }
    return joined({last.begin(), last.end()});
}

// Half of the seeds let the plug-in run commands by the mapkey.
std::string settingsFor(std::uint32_t seed) {
    return settingsText({{"readMode", "on"}, {"useMapkeyForCommands", seed % 2 == 0 ? "on" : "off"}});
}

class Monkey {
  public:
    Monkey(const MonkeyOptions& options, std::ostream& out)
        : mOptions(options),
          mOut(out),
          mBench({.settings = settingsFor(options.seed), .menuFile = menuText(boundCommands())}) {
        std::vector<std::string> arguments{"--require-plugin"};
        if (options.isHidden) arguments.emplace_back("--hidden");
        mBench.startDaemon();
        mBench.startHost(arguments);
    }

    bool play() {
        const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(mOptions.minutes * kMinuteMs);
        mSeed = mOptions.seed;
        try {
            for (;; ++mSeed) {
                beginRound();
                playRound(end);
                if (GetTickCount64() >= end) break;
                mOut << "seed " << mSeed << ": all held" << std::endl;
            }
            report();
            return true;
        } catch (const Broken& breach) {
            tell(breach.what());
        } catch (const std::runtime_error& failure) {
            tell(failure.what());
        }
        return false;
    }

  private:
    using Counts = std::map<std::string, double>;

    // What a round finds does not depend on the rounds before.
    void beginRound() {
        askHost("calm");
        askHost("plugin terminate");
        writeTextFile(mBench.settingsFile(), settingsFor(mSeed));
        proveItWorks();
        if (mDone == 0) mStart = counts();
    }

    void playRound(ULONGLONG end) {
        Dice dice(mSeed);
        mLast.clear();
        for (mNumber = 1; mNumber <= mOptions.actions; ++mNumber) {
            if (mOptions.minutes > 0 && GetTickCount64() >= end) break;
            const std::string action = nextAction(dice);
            if (isLeftOut(action)) continue;
            mLast.push_back(std::to_string(mNumber) + ' ' + action);
            if (mLast.size() > kActionsShown) mLast.pop_front();
            act(action);
            ++mDone;
            expectInvariants();
            if (mNumber % kProofEvery == 0) proveItWorks();
            if (mDone == kWarmUp) mStart = counts();
        }
        proveItWorks();
    }

    bool isLeftOut(const std::string& action) const {
        return mNumber < mOptions.from || std::ranges::any_of(mOptions.without, [&](const std::string& text) {
                   return action.find(text) != std::string::npos;
               });
    }

    // Requests that cannot be done are no fault: the monkey does not look before it acts.
    void act(const std::string& action) {
        const std::size_t blank = action.find(' ');
        const std::string who = action.substr(0, blank);
        const std::string what = action.substr(blank + 1);
        if (who == "host") {
            askHost(what);
        } else if (who == "daemon") {
            mBench.askDaemon(what);
            if (what == "die" || what == "quit") awaitDaemonsEnd();
        } else if (who == "kill") {
            mBench.killDaemon();
        } else if (who == "start") {
            if (!mBench.isDaemonRunning()) mBench.startDaemon();
        } else {
            Sleep(static_cast<DWORD>(std::stoi(what)));
        }
    }

    void awaitDaemonsEnd() {
        waitFor([&] { return !mBench.isDaemonRunning(); });
        mBench.killDaemon();
    }

    Reply askHost(const std::string& request) {
        Reply reply = mBench.askHost(request);
        if (!mBench.isHostRunning()) throw Broken("the host ended by itself");
        if (reply.error == "no answer in time") throw Broken("the host does not answer \"" + request + '"');
        return reply;
    }

    // A moment may pass until everything has settled.
    void expectInvariants() {
        std::vector<std::string> found;
        const bool holds = waitFor([&] {
            found = askHost("invariants").lines;
            return found == std::vector<std::string>{"ok"};
        });
        if (!holds) throw Broken("these do not hold any more:\n" + joined(found));
    }

    // Whatever happened before, without faults and with a fresh model the cap moves components again, and the motion is
    // given back, every second time by the plug-in's end.
    void proveItWorks() {
        const auto require = [](const char* what, const std::function<bool()>& condition) {
            if (!waitFor(condition)) throw Broken(std::string("after all faults were ended, ") + what);
        };
        if (!mBench.isDaemonRunning()) mBench.startDaemon();
        for (const char* request : {"calm", "hold off", "devices 1", "axes 0 0 0 0 0 0"}) mBench.daemon(request);
        askHost("calm");
        if (counts().at("start_disturbed") != 0) askHost("plugin terminate");
        for (const char* request : {"plugin load", "plugin initialize", "components 12", "model GEARBOX.ASM",
                                    "cursor graphics", "select none", "view set 1 0 0 0 1 0 0 0 1"}) {
            askHost(request);
        }
        require("the plug-in does not connect", [&] { return mBench.daemonStatus("clients") == "1"; });
        require("component move and scrolling cannot be switched",
                [&] { return isSwitched("Toggle Move Mode", true) && isSwitched("Toggle Scroll Mode", false); });
        askHost("select all");
        require("the plug-in does not take the motion", [&] { return mBench.daemonStatus("legacy") == "0"; });
        const std::vector<std::string> before = askHost("positions").lines;
        mBench.daemon("axes 200 0 0 0 0 0");
        require("the cap moves nothing", [&] { return askHost("positions").lines != before; });
        if (++mProofs % 2 == 0) endAndStart();
        mBench.daemon("axes 0 0 0 0 0 0");
        askHost("select none");
        expectInvariants();
    }

    // In the middle of a motion.
    void endAndStart() {
        askHost("plugin terminate");
        expectInvariants();
        askHost("plugin initialize");
    }

    // Whether an item of the plug-in's menu is on or off; clicks it when it is not as wanted.
    bool isSwitched(const std::string& label, bool on) {
        const std::string wanted = label + " checked=" + (on ? "1" : "0");
        for (const std::string& line : askHost("menu").lines) {
            if (line.starts_with(wanted)) return true;
        }
        askHost("menu click " + label);
        return false;
    }

    Counts counts() {
        Counts found;
        for (const std::string& line : askHost("status").lines) {
            const std::size_t equals = line.find('=');
            found[line.substr(0, equals)] = std::atof(line.c_str() + equals + 1);
        }
        return found;
    }

    void report() {
        const Counts end = counts();
        const double ticks = end.at("ticks") - mStart.at("ticks");
        char line[160];
        std::snprintf(line, sizeof line, "%d actions; %.0f ticks since the host was warm, which held:\n", mDone, ticks);
        mOut << line;
        for (const char* what : {"threads", "handles", "gdi_objects", "user_objects", "private_bytes"}) {
            const double from = mStart.at(what), to = end.at(what);
            std::snprintf(line, sizeof line, "   %-14s %10.0f at the start, %10.0f at the end, %+.2f per 1000 ticks\n",
                          what, from, to, ticks > 0 ? (to - from) * 1000 / ticks : 0.0);
            mOut << line;
        }
        mOut << std::flush;
    }

    void tell(const std::string& what) {
        mOut << "seed " << mSeed << ", action " << mNumber << ": " << what << "\nThe last actions:\n"
             << joined({mLast.begin(), mLast.end()}) << "The host's output:\n"
             << lastLines(mBench.hostOutput()) << "The plug-in's log:\n"
             << lastLines(mBench.log()) << "Once more: monkey.exe --seed " << mSeed << " --actions " << mNumber
             << (mOptions.isHidden ? " --hidden" : "") << std::endl;
    }

    const MonkeyOptions mOptions;
    std::ostream& mOut;
    Workbench mBench;
    std::uint32_t mSeed = 0;
    int mNumber = 0;
    int mDone = 0;
    int mProofs = 0;
    Counts mStart;
    std::deque<std::string> mLast;
};

}  // namespace

bool playMonkey(const MonkeyOptions& options, std::ostream& out) { return Monkey(options, out).play(); }

}  // namespace workbench
