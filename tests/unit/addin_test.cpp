// Start and end of the plug-in as the host sees them, in whatever order they come and whatever fails.
#include <generated/version.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <new>

#ifndef _WIN32
#include <sys/mman.h>
#include <sys/wait.h>
#endif

#include "tests/substitutes/system.h"
#include "tests/unit/plugin.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::MatchesRegex;
using testing::Not;

class AddIn : public PlugIn {
  protected:
    AddIn() { writeSettings(kProgram); }

    // Motion, buttons and mode go their ways.
    void expectWorks() {
        ASSERT_NE(gAddin, nullptr);
        EXPECT_TRUE(driver().isConnected());
        EXPECT_EQ(toolkit().commands.size(), 2u);
        toolkit().mode = toolkit().mode == 2 ? 3 : 2;
        toolkit().notifications.at(72)();
        EXPECT_EQ(gAddin->mCreoProxyP->mode(), toolkit().mode);
        gAddin->mCreoProxyP->loadMenufile();
        driver().queue(substitute::eventRead(0x20020 + 7));
        EXPECT_TRUE(waitUntil([] { return gAddin->handOver->applFunction == 7; }));
    }
    void expectNothingLeft() {
        EXPECT_EQ(gAddin, nullptr);
        EXPECT_FALSE(driver().isConnected());
        EXPECT_EQ(driver().legacyCom1(), 1);
        EXPECT_TRUE(waitUntil([] { return substitute::threads() == 0; }));
        EXPECT_EQ(substitute::windows().killedTimers, substitute::windows().discoveries);
        for (const int type : {18, 24, 41}) EXPECT_THAT(toolkit().notifications, Not(Contains(Key(type))));
        EXPECT_FALSE(toolkit().isDynamic);
    }
};
using AddInDeathTest = AddIn;  // by this name it runs first, before there are threads

TEST_F(AddIn, EndWithoutAStartDoesNothing) {
    user_terminate();
    EXPECT_EQ(gAddin, nullptr);
    EXPECT_EQ(driver().calls(Operation::disconnect), 0);
}

TEST_F(AddIn, LifeFromStartToEnd) {
    EXPECT_EQ(user_initialize(), 0);
    CObAddin* const first = gAddin;
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(user_initialize(), 0);  // a second start changes nothing
    EXPECT_EQ(gAddin, first);
    EXPECT_EQ(first->handOver->applFunction, -1);
    EXPECT_EQ(first->handOver->specialEvent, 0);
    // The watchdog's first check comes at once.
    ASSERT_TRUE(driver().waitForCalls(Operation::getDevNum, 2));
    auto lines = newLog();
    ASSERT_GT(lines.size(), 5u);
    const std::vector<std::string> facts(lines.begin(), lines.begin() + 5);
    lines.erase(lines.begin(), lines.begin() + 5);
    const std::string bits = std::to_string(sizeof(void*) * 8);
    EXPECT_THAT(facts,
                ElementsAre("INF Version: " + std::string(kProductVersion),
                            MatchesRegex("INF Build: commit .+, GCC .+, " + bits + " bit"),
                            MatchesRegex("INF Plug-in: .*daemon_test.*"), MatchesRegex("INF Host: .*daemon_test.*"),
                            MatchesRegex("INF Started: 20..-..-.. ..:..:.., time zone UTC...:..")));
    // The first three are those of the settings, the add-in and its parts before the log was open.
    EXPECT_THAT(lines, ElementsAre("INF Settings file: " + settingsFolder() + kPathSeparator + "Creo_plugin.ini",
                                   "CRT Constructing ...", "INF ", "CRT Constructing ...", "CRT Constructing ...",
                                   "CRT Constructing ...", "CRT CreoProxy constructed.", "CRT Constructing ...",
                                   "TRC Checking connection ...", "INF devIdx: 0:OrbikonController", "CRT Constructed.",
                                   "CRT Constructed.", "WRN user_initialize() called twice!"));
    user_terminate();
    expectNothingLeft();
    EXPECT_THAT(newLog(), ElementsAre("CRT Destructing ...", "CRT Destructing ...", "CRT Destructed.",
                                      "CRT Destructing ...", "CRT Destructed.", "CRT Destructed.", "CRT Destructed."));
    user_terminate();
    EXPECT_THAT(newLog(), IsEmpty());
    EXPECT_EQ(driver().calls(Operation::setDllLogFlags), 1);
}

// What the settings' reading finds comes as soon as the log is open, with its own levels.
TEST_F(AddIn, WhatTheSettingsLackIsInTheLog) {
    const std::string file = settingsFolder() + kPathSeparator + "Creo_plugin.ini";
    writeFile(
        file,
        "[PROGRAM]\nname = x\n\nmaxContMoveTime = 9\n[LOGGING]\nlogFile = plug.log\nlogToFile = on\nmaxSize = 100\n"
        "warning = on\n");
    user_initialize();
    const std::string place = " Settings file '" + file + "': ";
    EXPECT_THAT(log(), testing::IsSupersetOf(
                           {"ERR Parameter 'maxContMoveTime' in section 'PROGRAM' not found! (" + file + ")",
                            "WRN" + place +
                                "key 'maxContMoveTime' in line 4 stands behind line 3, which ended section [PROGRAM]: "
                                "it is not read, 0 holds; a section ends at its first line without a key: remove the "
                                "empty line, header or indented comment above the key.",
                            "ERR" + place +
                                "maxContMoveTime is 0 (it was not found): cap and buttons are dead; it must be "
                                "greater than 0; set maxContMoveTime to a number above 0; its default is 5000."}));
    EXPECT_THAT(log(), Not(Contains(testing::StartsWith("INF"))));
}

// A toolkit call may dispatch messages, and with them both of the host's calls. Whatever it calls then, and however
// often: what it called last holds, and nothing goes away under the feet of whoever is running.
TEST_F(AddIn, LastCallHoldsWhereverItComes) {
    struct Place {
        const char* name;
        const char* function;  // of the toolkit, inside which the calls come; null = outside
        int nth;               // call of it
        bool isOnBefore, isOnDuring;
        void (*reach)();
    };
    const auto notify = [] { toolkit().notifications.at(73)(); };
    const Place places[] = {
        {"outside, off", nullptr, 0, false, false, [] {}},
        {"outside, on", nullptr, 0, true, true, [] {}},
        {"start", "ProCmdDesignate", 1, false, true, [] { user_initialize(); }},
        {"callback", "ProModeCurrentGet", 1, true, true, notify},
        {"callback inside another", "ProModeCurrentGet", 2, true, true, notify},
        {"end", "ProNotificationUnset", 1, true, false, user_terminate},
    };
    for (const auto& [name, function, nth, isOnBefore, isOnDuring, reach] : places) {
        for (const std::string calls : {"I", "T", "II", "IT", "TI", "TT", "ITI", "TIT"}) {
            SCOPED_TRACE(std::string(name) + ": " + calls);
            if (isOnBefore) user_initialize();
            newLog();
            const CObAddin* const whileRunning = isOnDuring ? gAddin : nullptr;
            bool isOn = isOnDuring;
            long twice = 0;
            const auto callAll = [&] {
                for (const char call : calls) {
                    twice += call == 'I' && isOn;
                    isOn = call == 'I';
                    isOn ? static_cast<void>(user_initialize()) : user_terminate();
                    if (!isOn) toolkit().commands.clear();  // as Creo does
                    EXPECT_TRUE(function == nullptr || gAddin == whileRunning);
                }
            };
            int visits = 0;
            const auto inside = [&] {
                if (++visits == nth) {
                    callAll();
                } else if (visits < nth) {
                    toolkit().notifications.at(73)();
                    EXPECT_EQ(gAddin, whileRunning);
                }
            };
            if (function != nullptr) toolkit().onCall(function, inside);
            if (function == nullptr) callAll();
            reach();
            EXPECT_EQ(std::ranges::count(newLog(), "WRN user_initialize() called twice!"), twice);
            isOn ? expectWorks() : expectNothingLeft();
            if (function != nullptr) toolkit().onCall(function, {});
            user_terminate();
            expectNothingLeft();
        }
    }
}

TEST_F(AddIn, WatchdogConnectsAsSoonAsTheDaemonIsThere) {
    driver().setDaemonPresent(false);
    driver().fail(Operation::setDllLogFlags);
    start(Threads::all);
    EXPECT_THAT(newLog(), Contains("ERR Error in obConnect()!"));
    ASSERT_TRUE(driver().waitForCalls(Operation::connect, 3));
    driver().setDaemonPresent(true);
    ASSERT_TRUE(waitUntil([] { return driver().isConnected(); }));
    stop();
    expectNothingLeft();
    // A later start finds everything as the first did.
    driver().reset();
    start(Threads::all);
    expectWorks();
}

TEST_F(AddIn, WatchdogPausesAndTheEndDoesNotWaitForIt) {
    using Clock = std::chrono::steady_clock;
    EXPECT_EQ(mRealPause, std::chrono::seconds(2));
    CObAddin::watchdogPause = std::chrono::milliseconds(100);
    const auto begin = Clock::now();
    start(Threads::all);
    ASSERT_TRUE(driver().waitForCalls(Operation::getDevNum, 1 + 3));  // the first is the connection's
    EXPECT_GE(Clock::now() - begin, 2 * CObAddin::watchdogPause);
    stop();
    CObAddin::watchdogPause = std::chrono::hours(1);
    start(Threads::all);
    stop();
}

TEST_F(AddIn, WatchdogThatCannotBeStartedIsGoneWithout) {
    start(Threads::reading);
    EXPECT_THAT(newLog(), Contains("ERR Error creating reading thread!"));
    expectWorks();
}

// A thread that hangs in the driver is waited for, said to be left behind, and touches nothing when it comes back.
TEST_F(AddIn, EndLeavesBehindWhatHangsInTheDriver) {
    struct Case {
        Operation operation;
        const char* what;
        void (*reach)();  // makes somebody call it, unless somebody does anyway
    };
    const auto wantMotion = [] { gAddin->legacyCom1.stopLegacyCom1(); };
    const Case cases[] = {
        {Operation::read, "the reading thread", [] {}},
        {Operation::getAdvancedSettings, "the reading thread", [] { driver().queue(substitute::eventRead(0x20001)); }},
        {Operation::setAppMode, "the reading thread", [] { driver().queue(substitute::eventRead(0x20013)); }},
        {Operation::getDevNum, "the watchdog", [] {}},
        {Operation::connect, "the watchdog", [] { driver().setDaemonPresent(false); }},
        {Operation::disconnect, "the watchdog", [] { driver().setDaemonPresent(false); }},
        {Operation::disconnect, "obDisconnect", nullptr},
        {Operation::setOption, "obSetOption", nullptr},
    };
    DriverThread::patience = std::chrono::milliseconds(50);
    for (const auto& [operation, what, reach] : cases) {
        SCOPED_TRACE(std::string(what) + " " + std::to_string(static_cast<int>(operation)));
        driver().reset();
        start(Threads::all);
        creo().loadMenufile();
        ASSERT_TRUE(driver().waitForModes(1));
        wantMotion();
        driver().hang(operation);
        if (reach != nullptr) {
            reach();
            ASSERT_TRUE(driver().waitUntilHanging());
        }
        newLog();
        stop();
        EXPECT_THAT(newLog(),
                    Contains("ERR The driver library does not come back: " + std::string(what) + " is left behind!"));
        EXPECT_EQ(gAddin, nullptr);
        driver().queue({0, {1, 2, 3, 4, 5, 6}, 0x20020 + 7, 0, 0});
        driver().fail(operation);
        driver().hang(operation, false);
        EXPECT_TRUE(waitUntil([] { return substitute::threads() == 0; }));
        EXPECT_THAT(newLog(), IsEmpty());
        driver().fail(operation, 0);
    }
}

// What no toolkit and no driver throws; Creo is told that all is well, and the plug-in stays off until a later start.
TEST_F(AddIn, StartThatFailsLeavesNothing) {
    substitute::windows().onDiscovery = [] { throw 1; };
    EXPECT_EQ(user_initialize(), 0);
    expectNothingLeft();
    EXPECT_THAT(newLog(), Contains("ERR Error user_initialize()"));
    substitute::windows().onDiscovery = [] {
        user_terminate();
        throw 1;
    };
    EXPECT_EQ(user_initialize(), 0);
    expectNothingLeft();
    int starts = 0;
    substitute::windows().onDiscovery = [&starts] {
        if (++starts > 1) return;
        user_terminate();
        user_initialize();
        throw 1;
    };
    EXPECT_EQ(user_initialize(), 0);
    expectWorks();
}

// Memory that is short, and a log that cannot be locked, at any point of what the host, the watchdog and the reading
// thread do.
TEST_F(AddIn, EachSystemCallMayFail) {
    std::filesystem::create_directories(settingsFolder());
    writeMenuFile("[Modes]\nMode of a long name = 1\nMode of another long name = 2\n");
    const auto restart = [this] {
        stop();
        expectNothingLeft();
        start(Threads::reading);
        creo().loadMenufile();
    };
    const auto check = [&](const std::string& which) {
        SCOPED_TRACE(which);
        restart();
        expectWorks();
        return std::string();
    };
    restart();
    EXPECT_THAT(substitute::failEachCall([] { user_terminate(); }, check), IsEmpty()) << "end";
    const auto lose = [this] {
        driver().fail(Operation::getDevNum, -1, 1);
        daemon().checkConnection();
    };
    const auto checkConnection = [&](const std::string&) { return daemon().connect() ? "" : "cannot connect again"; };
    EXPECT_THAT(substitute::failEachCall(lose, checkConnection), IsEmpty()) << "loss";
    EXPECT_THAT(substitute::failEachCall([this] { daemon().connect(); }, checkConnection), IsEmpty()) << "connection";
    const auto readAndSend = [this] {
        handOver().mode = 1 - handOver().mode;
        driver().queue(substitute::eventRead(0x20013));
        driver().waitUntilIdle();
    };
    const auto checkReading = [this](const std::string&) {
        const std::string told = "Creo/" + std::string(handOver().modeName());
        handOver().applFunction = -1;
        driver().queue(substitute::eventRead(0x20020 + 7));
        return waitUntil([&] { return driver().modesSent().back() == told && handOver().applFunction == 7; })
                   ? ""
                   : "no events";
    };
    handOver().mode = 0;
    EXPECT_THAT(substitute::failEachCall(readAndSend, checkReading), IsEmpty()) << "reading";
    EXPECT_THAT(newLog(), Contains("ERR Error readMouseEvents()"));
}

// Deliberately hard: without one of its two sides the plug-in ends the host, daemon or not.
TEST_F(AddInDeathTest, SideThatCannotBeCreatedEndsTheProcess) {
#ifdef _WIN32
    constexpr int kCode = -1;
#else
    constexpr int kCode = 255;  // all that is left of -1
#endif
    EXPECT_EXIT(
        {
            substitute::windows().onDiscovery = [] { throw std::bad_alloc(); };
            user_initialize();
        },
        testing::ExitedWithCode(kCode), "");
#ifndef _WIN32  // elsewhere the process has a log of its own
    EXPECT_THAT(log(), Contains("ERR mCreoProxyP or mDaemonProxyP could not be created!"));
#endif
}

#ifndef _WIN32
// Where memory is short at the start, one of three: the plug-in runs all the same, it stays off, or it ends the process
// because one of its sides could not be created, and says so.
TEST_F(AddInDeathTest, EachAllocationMayFailAtTheStart) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr long kStride = 7;  // a process takes a second to end
#else
    constexpr long kStride = 1;
#endif
    // Which allocation fails, also to be seen by the process that forked.
    auto& nth = *static_cast<std::atomic<long>*>(
        mmap(nullptr, sizeof(std::atomic<long>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const auto startEachTime = [&] {
        substitute::allowThreads(0);
        const long before = substitute::allocations();
        user_initialize();
        const long all = substitute::allocations() - before;
        user_terminate();
        for (nth += kStride; nth <= all; nth += kStride) {
            {
                const substitute::NthFails fails(substitute::Call::allocation, nth);
                user_initialize();
            }
            user_terminate();
            expectNothingLeft();
        }
        std::exit(HasFailure() ? 1 : 0);
    };
    int code = -1, sidesNotCreated = 0;
    const auto isProper = [&code](int status) {
        code = WEXITSTATUS(status);
        return WIFEXITED(status) && (code == 0 || code == 255);
    };
    do {
        newLog();
        ASSERT_EXIT(startEachTime(), isProper, "") << "allocation " << nth;
        if (code == 255) {
            ++sidesNotCreated;
            EXPECT_THAT(newLog(), Contains("ERR mCreoProxyP or mDaemonProxyP could not be created!")) << nth;
        }
    } while (code == 255);
    EXPECT_GE(sidesNotCreated, 1);
    EXPECT_GT(nth, 50);
}
#endif

}  // namespace
