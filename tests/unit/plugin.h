// The plug-in with substitutes for driver, host and windows, in a user profile of its own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "common_sources/creo_proxy.h"
#include "common_sources/daemon_proxy.h"
#include "common_sources/ob_addin.h"
#include "tests/substitutes/driver.h"
#include "tests/substitutes/toolkit.h"
#include "tests/substitutes/windows.h"
#include "tests/unit/scratch.h"

using substitute::driver;
using substitute::Operation;
using substitute::toolkit;

// How many of the plug-in's threads start: the reading thread is the first, the watchdog the second.
enum class Threads { none = 0, reading = 1, all = -1 };

class PlugIn : public testing::Test {
  protected:
    PlugIn() {
        setVariable("USERPROFILE", profile.path().c_str());
        driver().reset();
        toolkit().reset();
        substitute::windows() = {};
        substitute::progress().starts = substitute::progress().stops = 0;
        substitute::progress().last = -1.0;
        CObAddin::watchdogPause = std::chrono::milliseconds(5);
    }
    ~PlugIn() override {
        stop();
        CObAddin::watchdogPause = mRealPause;
        DriverThread::patience = mRealPatience;
        driver().reset();  // whoever hangs in it comes back
        EXPECT_TRUE(waitUntil([] { return substitute::threads() == 0; }));
        gLogging.init(LoggingParameters());
        // A statement inside a lambda names the method around it.
        const std::string written = textOf(productFolder() + kPathSeparator + "plug.log");
        for (const char* className : {"CObAddin", "CreoProxy", "DaemonProxy", "LegacyCom1"}) {
            EXPECT_EQ(written.find(std::string(className) + "::operator()"), std::string::npos);
        }
        EXPECT_EQ(toolkit().selectionArrays, 0);
        EXPECT_FALSE(toolkit().isDynamic);
        EXPECT_THAT(toolkit().faults, testing::IsEmpty());
    }

    // Creates the add-in with everything logged; `program` are lines of section PROGRAM.
    void start(Threads threads = Threads::none, const std::string& program = kProgram) {
        writeSettings(program);
        substitute::allowThreads(static_cast<int>(threads));
        user_initialize();
        addin = gAddin;
        substitute::allowThreads(-1);
    }
    void stop() {
        user_terminate();
        addin = nullptr;
    }

    static constexpr char kProgram[] =
        "transSensBase = 500\nrotSensBase = 1\nminThreshold = 10\nmaxContMoveTime = 5000\nscrollTreeAndList = on\n"
        "readMode = off\nuseMapkeyForCommands = off\nmapkeyDefinition = ob\n";
    static constexpr char kOtherKeys[] =
        "name = x\nversion = 1\nmaxFrameTime = 100\nblockTransInRotMode = off\nmnuLanguage =\n";

    void writeSettings(const std::string& program) const {
        std::filesystem::create_directories(settingsFolder());
        writeFile(settingsFolder() + kPathSeparator + "Creo_plugin.ini",
                  "[PROGRAM]\n" + program + kOtherKeys +
                      "\n[LOGGING]\nlogFile = plug.log\nmaxSize = 500000\nlogToFile = on\nlogToCnsl = off\n"
                      "warning = on\ncreation = on\ntrace = on\ndevcom = on\nintcom = on\ninfo = on\ndebug = on\n"
                      "tmp = on\nfileToLog =\n");
    }
    void writeMenuFile(const std::string& bytes) const { writeFile(menuFile(), bytes); }

    std::string productFolder() const { return profile.file("OrbikonController"); }
    std::string settingsFolder() const { return productFolder() + kPathSeparator + "Applications"; }
    std::string menuFile() const { return settingsFolder() + kPathSeparator + "Creo.mnu"; }

    std::vector<std::string> log() const { return logged(productFolder() + kPathSeparator + "plug.log"); }
    // Lines of the log that were written since the last call.
    std::vector<std::string> newLog() {
        auto all = log();
        const auto from = std::min(mLinesSeen, all.size());
        mLinesSeen = all.size();
        return {all.begin() + static_cast<std::ptrdiff_t>(from), all.end()};
    }
    // The same without those of the levels given.
    std::vector<std::string> newLogWithout(const std::vector<std::string>& tags) {
        auto lines = newLog();
        std::erase_if(lines, [&](const std::string& line) {
            return std::find(tags.begin(), tags.end(), line.substr(0, 3)) != tags.end();
        });
        return lines;
    }

    CreoProxy& creo() const { return *addin->mCreoProxyP; }
    DaemonLink& daemon() const { return *addin->mDaemonProxyP->link(); }
    HandOver& handOver() const { return *addin->handOver; }

    void setAxes(std::int16_t tx, std::int16_t ty, std::int16_t tz, std::int16_t rx, std::int16_t ry,
                 std::int16_t rz) const {
        HandOver::Motion& motion = handOver().motion;
        motion.store({tx, ty, tz, rx, ry, rz}, motion.losses);
    }

    const std::chrono::milliseconds mRealPause = CObAddin::watchdogPause;
    const std::chrono::milliseconds mRealPatience = DriverThread::patience;
    ScratchFolder profile;
    CObAddin* addin = nullptr;  // as long as it was started by start() and not ended

  private:
    std::size_t mLinesSeen = 0;
};
