// Start and end of the plug-in in a running host, and what it is told and tells meanwhile.
#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

std::vector<std::string> menuOf(Bench& bench) { return bench.host("menu"); }

TEST(Start, RegistersMenuCommandsAndNotifications) {
    Bench bench;
    const std::vector<std::string> menus = bench.host("menus");
    const auto help = std::find(menus.begin(), menus.end(), "&Help");
    ASSERT_NE(help, menus.begin());
    EXPECT_EQ(*std::prev(help), "Orbikon") << "beside Help";
    bench.host("mode assembly");
    const std::vector<std::string> initial{"Toggle Move Mode checked=0 enabled=1",
                                           "Toggle Scroll Mode checked=0 enabled=1"};
    EXPECT_TRUE(waitFor([&] { return menuOf(bench) == initial; }));
    bench.host("menu click Toggle Move Mode");
    bench.host("menu click Toggle Scroll Mode");
    EXPECT_THAT(menuOf(bench),
                ElementsAre("Toggle Move Mode checked=1 enabled=1", "Toggle Scroll Mode checked=1 enabled=1"));
    for (const char* mode : {"part", "drawing", "none", "sketcher"}) {
        bench.host("mode " + std::string(mode));
        EXPECT_THAT(menuOf(bench),
                    ElementsAre("Toggle Move Mode checked=1 enabled=0", "Toggle Scroll Mode checked=1 enabled=1"))
            << mode;
    }
    EXPECT_THAT(bench.host("notifications"), testing::UnorderedElementsAre("18", "24", "41", "72", "73"));
    bench.host("plugin terminate");
    EXPECT_THAT(bench.host("notifications"), testing::UnorderedElementsAre("72", "73"));
    EXPECT_EQ(bench.status("wrong_thread_calls"), "0");
}

// Creo may call what stayed registered after the plug-in's end.
TEST(Start, CallbacksAfterTheEndAreHarmless) {
    Bench bench;
    bench.host("plugin terminate");
    bench.host("notify 72");
    bench.host("notify 73");
    bench.host("plugin initialize");
    EXPECT_EQ(bench.status("plugin"), "initialised");
}

// A toolkit call may dispatch messages, and with them the end of the plug-in, and a new start, in the middle of a tick.
TEST(Start, EndInsideATickWaitsForIt) {
    Bench bench;
    struct Case {
        const char* function;
        const char* request;
        const char* state;
    };
    const auto linesOfEnds = [&] {
        const std::string log = bench.log(), line = "~CObAddin";
        int count = 0;
        for (auto at = log.find(line); at != std::string::npos; at = log.find(line, at + 1)) ++count;
        return count;
    };
    for (const auto& [function, request, state] : {Case{"ProWindowRefresh", "unload", "registered"},
                                                   {"ProModeCurrentGet", "unload", "registered"},
                                                   {"ProVectorTrfEval", "unload", "registered"},
                                                   {"ProWindowRefresh", "reload 1", "initialised"}}) {
        SCOPED_TRACE(std::string(function) + " " + request);
        bench.openAssemblyForMoving();
        bench.selectForMoving("41");
        const int before = linesOfEnds();
        bench.host("during " + std::string(function) + " plugin " + request);
        bench.push(100, 0, 0, 0, 0, 0);
        EXPECT_TRUE(waitFor([&] { return linesOfEnds() == before + 2; }));
        bench.push(0, 0, 0, 0, 0, 0);
        EXPECT_EQ(bench.status("plugin"), state);
        if (state == std::string("registered")) {
            EXPECT_EQ(bench.daemonStatus("clients"), "0");
            EXPECT_EQ(bench.daemonStatus("legacy"), "1");
            bench.host("plugin load");
        }
        EXPECT_EQ(bench.status("outstanding_arrays"), "0");
        EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; }));
    }
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");  // it works
}

// The host forgets with an end what was registered before it, also when the start was not over then.
TEST(Start, EndAndStartInsideAStartLeaveAPlugInWithMenus) {
    Bench bench;
    bench.host("plugin terminate");
    bench.host("during ProMenubarmenuChkbuttonAdd plugin call terminate");
    bench.host("during ProNotificationSet plugin call initialize");
    bench.host("plugin initialize");
    EXPECT_EQ(bench.host("menu").size(), 2u);
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
}

// Nothing goes on moving, and the next daemon's channel is taken and given back as the first one's.
TEST(Daemon, ThatDiesWithTheCapDeflectedEndsTheMotion) {
    Bench bench;
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
    bench.push(100, 0, 0, 0, 0, 0);
    bench.expectLog("Cap moving.");
    bench.killDaemon();
    bench.expectLog("Cap released.");
    const auto atRest = bench.host("positions");
    bench.startDaemon();
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "0"; }));
    EXPECT_EQ(bench.host("positions"), atRest);
    bench.host("select none");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "1"; }));
}

TEST(Start, FirstStartWritesSettingsAndToleratesBadOnes) {
    Workbench fresh(optionsWith({}, menuText()));
    fresh.startHost({"--require-plugin"});
    EXPECT_TRUE(waitFor([&] {
        return workbench::readTextFile(fresh.settingsFile()).find("\tfileToLog               = ") != std::string::npos;
    }));
    fresh.killHost();

    for (const std::string& content : {std::string(), std::string("\0\xff\x1a[PROGRAM", 11), std::string(1 << 20, 'x'),
                                       std::string("[LOGGING]\n\tlogToFile = on\n\tmaxSize = abc\n")}) {
        Workbench bad(optionsWith(content, menuText()));
        const std::string bytes = bytesOf(bad.settingsFile());
        bad.startDaemon();
        bad.startHost({"--require-plugin"});
        bad.daemon("axes 100 100 100 100 100 100");
        EXPECT_TRUE(waitFor([&] { return std::stoi(bad.host("calls ProMenubarMenuAdd").at(0)) == 1; }));
        EXPECT_EQ(bytesOf(bad.settingsFile()), bytes) << "a file that exists is left alone";
    }
}

// All calls into the plug-in on stacks that are aligned to 4 bytes only.
TEST(Start, WorksOnMisalignedStacks) {
    Bench bench(Keys{{"scrollTreeAndList", "on"}, {"useMapkeyForCommands", "on"}}, {"ProCmdViewTop"});
    bench.host("misalign on");
    bench.host("plugin reload 3");
    bench.host("front main");
    bench.host("cursor graphics");
    bench.openAssemblyForMoving();
    bench.selectForMoving("all");
    const Poses before = bench.positions();
    for (const char* type : {"18", "24", "41", "72", "73"}) bench.host("notify " + std::string(type));
    bench.push(100, -50, 20, 10, 20, 30);
    EXPECT_TRUE(waitFor([&] { return length(bench.positions().at(41).origin - before.at(41).origin) > 1.0; }));
    bench.release();
    bench.daemon("event 0x2000A");
    bench.daemon("event 0x20022");
    EXPECT_TRUE(waitFor([&] { return std::stoi(bench.host("calls ProViewMatrixSet").at(0)) > 0; }));
    bench.host("cursor tree");
    bench.push(0, 0, 100, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return bench.host("scroll tree").at(2) != "top 0"; }));
    bench.release();
    bench.host("plugin terminate");
    EXPECT_TRUE(bench.isHostRunning());
}

TEST(Daemon, IsToldTheModeAndGetsItAgainAfterItsReturn) {
    Bench bench;
    const auto toldMode = [&](const std::string& mode) {
        return waitFor([&] { return bench.daemonStatus("mode") == mode; });
    };
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; }));
    struct Case {
        const char* host;
        const char* name;
    };
    for (const auto& [host, name] : {Case{"mode assembly", "Assembly"},
                                     {"mode part", "Part"},
                                     {"sketch on", "Sketcher"},
                                     {"sketch off", "Part"},
                                     {"mode 6", "Drawing"},
                                     {"mode 22", "Default"},
                                     {"mode none", "Default"},
                                     {"mode assembly", "Assembly"}}) {
        bench.host(host);
        EXPECT_TRUE(toldMode(name)) << host;
    }
    // Event 0x20013 and a daemon that comes back both make it send the mode again, though it is the same.
    const int told = std::stoi(bench.daemonStatus("modes_told"));
    bench.daemon("event 0x20013");
    EXPECT_TRUE(waitFor([&] { return std::stoi(bench.daemonStatus("modes_told")) == told + 1; }));
    bench.killDaemon();
    bench.startDaemon();
    EXPECT_TRUE(toldMode("Assembly"));
    EXPECT_THAT(bench.daemonStatus("dll_log"), HasSubstr("Creo_plugin_dll_log.txt 500 0 0 0 0 0 0 0 0 0 0"));
}

// The mode query fails, an accessory window asks, and readMode is off.
TEST(Mode, OnlyTheMainWindowsModeCounts) {
    Bench bench(Keys{{"readMode", "off"}});
    bench.host("mode assembly");
    bench.host("notify 72");
    EXPECT_EQ(bench.host("access Orbikon_ToggleMoveMode").at(0), "3");
    // Without readMode the timer does not ask: not in two ticks, and two reads later nothing was sent.
    bench.host("mode part");
    const auto awaitTwoMore = [](const std::function<int()>& count) {
        const int before = count();
        EXPECT_TRUE(waitFor([&] { return count() >= before + 2; }));
    };
    awaitTwoMore([&] { return std::stoi(bench.status("ticks")); });
    awaitTwoMore([&] { return std::stoi(bench.daemonStatus("reads")); });
    EXPECT_NE(bench.daemonStatus("mode"), "Part");
    bench.host("window 7");
    EXPECT_EQ(bench.host("access Orbikon_ToggleMoveMode").at(0), "3") << "asked from another window: the old mode";
    bench.host("window auto");
    EXPECT_EQ(bench.host("access Orbikon_ToggleMoveMode").at(0), "1");
    bench.host("mode assembly");
    bench.host("notify 24");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; }));
    bench.host("fail ProModeCurrentGet always");
    bench.host("notify 73");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Default"; }));
    bench.host("fail ProModeCurrentGet never");
}

// The window that carries the timer goes; the next callback finds the new one.
TEST(Timer, FindsANewWindow) {
    Bench bench;
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
    bench.host("rebuild");
    menuOf(bench);
    const Poses before = bench.positions();
    bench.push(100, 0, 0, 0, 0, 0);
    EXPECT_TRUE(waitFor([&] { return length(bench.positions().at(41).origin - before.at(41).origin) > 1.0; }));
    bench.release();
}

}  // namespace
}  // namespace e2e
