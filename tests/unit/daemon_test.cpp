// The link to the daemon: connecting, reading, sending the mode, the legacy channel.
#include <algorithm>
#include <thread>

#include "driver/obk_ctrlr.h"
#include "tests/unit/plugin.h"

namespace {

using substitute::eventRead;
using substitute::Read;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class Daemon : public PlugIn {
  protected:
    // The reading thread runs and has passed the progress phase.
    void startReading() {
        writeMenuFileEarly("[Modes]\nSketcher = 1\nPart = 2\nSheet_Metal = 3\n");
        start(Threads::reading);
        creo().loadMenufile();
        ASSERT_TRUE(driver().waitForCalls(Operation::read, 1));
        ASSERT_TRUE(driver().waitForModes(1));
        newLog();
    }
    void writeMenuFileEarly(const std::string& bytes) {
        std::filesystem::create_directories(settingsFolder());
        writeMenuFile(bytes);
    }
    // Two reads later everything before has been dealt with.
    void waitForPasses() { ASSERT_TRUE(driver().waitForCalls(Operation::read, driver().calls(Operation::read) + 2)); }
    void send(const Read& read) {
        driver().queue(read);
        ASSERT_TRUE(driver().waitUntilIdle());
    }
    void setMode(ProMode mode) {
        toolkit().mode = mode;
        creo().checkMode(false);
    }
    static std::array<int, 6> axesOf(const HandOver::Motion& m) { return {m.tx, m.ty, m.tz, m.rx, m.ry, m.rz}; }
    std::array<int, 6> axes() const { return axesOf(handOver().motion); }
};

TEST_F(Daemon, ConnectsStepByStep) {
    start();
    EXPECT_EQ(driver().connectName(), "xtopCreo");
    EXPECT_EQ(driver().dllLogArguments(), "Creo_plugin_dll_log.txt 500 0 0 0 0 0 0 0 0 0 0 ''");
    newLog();
    struct Case {
        Operation failing;
        bool isConnected;
        std::vector<std::string> log;
    };
    const std::string tried = "TRC Checking connection ...";
    const std::string first = "INF devIdx: 0:Orbikon One", second = "INF devIdx: 1:";
    const Case cases[] = {
        {Operation::connect, false, {tried, "ERR Error in obConnect()!"}},
        {Operation::getDevNum, false, {tried, "ERR Error in obGetDevNum()!"}},
        {Operation::getDevInfo, false, {tried, "ERR Error in obGetDevInfo()!"}},
        {Operation::getAdvancedSettings, true, {tried, first, second, "ERR Error in obGetAdvancedSettings()!"}},
        {Operation::read, true, {tried, first, second}},  // concerns the reading thread only
    };
    driver().setDevices({"Orbikon One", ""});
    for (const auto& c : cases) {
        const int disconnects = driver().calls(Operation::disconnect);
        driver().fail(c.failing);
        EXPECT_EQ(daemon().connect(), c.isConnected);
        driver().fail(c.failing, 0);
        EXPECT_EQ(newLog(), c.log);
        EXPECT_EQ(driver().calls(Operation::disconnect), disconnects);
    }
    driver().setDevices({std::string(5000, 'n')});  // a name without its end
    EXPECT_TRUE(daemon().connect());
    EXPECT_EQ(newLog().back(), "INF devIdx: 0:" + std::string(2027, 'n'));
}

TEST_F(Daemon, AsksForASensibleNumberOfDevices) {
    start();
    struct Case {
        std::int32_t count;
        int asked;
    };
    for (const auto& [count, asked] : {Case{0, 0}, Case{16, 16}, Case{17, 16}, Case{2147483647, 16}, Case{-1, 0}}) {
        driver().setDeviceCount(count);
        const int before = driver().calls(Operation::getDevInfo);
        newLog();
        EXPECT_TRUE(daemon().connect());
        EXPECT_EQ(driver().calls(Operation::getDevInfo) - before, asked);
        const std::string said = "WRN The driver counts " + std::to_string(count) + " devices, only " +
                                 std::to_string(asked) + " are asked for.";
        EXPECT_EQ(std::ranges::count(newLog(), said), count != asked);
    }
}

TEST_F(Daemon, CheckDisconnectsWhenTheDaemonDoesNotAnswer) {
    start();
    newLog();
    EXPECT_TRUE(daemon().checkConnection());
    EXPECT_THAT(newLog(), IsEmpty());
    driver().fail(Operation::getDevNum);
    EXPECT_FALSE(daemon().checkConnection());
    EXPECT_FALSE(driver().isConnected());
    driver().fail(Operation::disconnect);
    EXPECT_FALSE(daemon().checkConnection());
    EXPECT_THAT(newLog(), ElementsAre("ERR Error in obGetDevNum()!", "ERR Error in obGetDevNum()!",
                                      "ERR Error in obDisconnect()!"));
    stop();
    EXPECT_THAT(newLog(), Contains("ERR Error in obDisConnect()!"));
}

TEST_F(Daemon, WithoutADaemonNothingElseIsAsked) {
    driver().setDaemonPresent(false);
    driver().fail(Operation::setDllLogFlags);
    start();
    for (const auto operation : {Operation::getDevNum, Operation::getDevInfo, Operation::getAdvancedSettings,
                                 Operation::getOption, Operation::setAppMode}) {
        EXPECT_EQ(driver().calls(operation), 0);
    }
    EXPECT_THAT(newLog(), Contains("ERR Error in obConnect()!"));
    driver().setDaemonPresent(true);
    EXPECT_FALSE(daemon().checkConnection());
    EXPECT_TRUE(daemon().connect());
    EXPECT_TRUE(daemon().checkConnection());
}

// The Creo side keeps the decoded values to itself; what can be seen of the settings is the context flag, by which a
// standard view is refitted.
TEST_F(Daemon, ContextFlagComesWithTheAdvancedSettings) {
    start();
    const std::pair<bool, bool> cases[] = {{false, false}, {true, false}, {true, true}};
    for (const auto& [flag, isFailing] : cases) {
        driver().setAdvancedSettings(104, flag ? 0x80 : 0);
        driver().fail(Operation::getAdvancedSettings, isFailing ? -3 : 0);
        daemon().retrieveRotMode();
        const int before = toolkit().calls("ProViewRefit");
        creo().execSpecialApplFunction(0x20009);
        EXPECT_EQ(toolkit().calls("ProViewRefit") - before, flag && !isFailing ? 1 : 0);
    }
}

TEST_F(Daemon, RotationModeIsDecodedByItsDigits) {
    start();
    struct Case {
        std::int32_t code, mode;
        bool first, second;
    };
    const Case cases[] = {
        {0, 0, false, false},        {3, 3, false, false}, {13, 3, true, false},   {104, 2, false, true},
        {4, 2, false, true},         {14, 2, true, true},  {114, 2, true, true},   {100, 0, false, true},
        {99, 9, true, false},        {213, 3, true, true}, {-1, -1, false, false}, {-104, -4, false, false},
        {2147483647, 7, true, true},
    };
    for (const auto& c : cases) {
        driver().setAdvancedSettings(c.code, 0);
        daemon().retrieveRotMode();
        EXPECT_EQ(handOver().rotationMode, c.mode) << c.code;
        EXPECT_EQ(handOver().rotationFlag1, c.first) << c.code;
        EXPECT_EQ(handOver().rotationFlag2, c.second) << c.code;
    }
    driver().fail(Operation::getAdvancedSettings);
    daemon().retrieveRotMode();
    EXPECT_EQ(handOver().rotationMode, 0);
    EXPECT_FALSE(handOver().rotationFlag1 || handOver().rotationFlag2);
}

TEST_F(Daemon, LegacyChannelIsSavedOnceAndRestoredOnce) {
    start();
    newLog();
    enum class Call { stop, reset };
    struct Step {
        Call call;
        bool result;
        std::int32_t channel;  // afterwards
        int gets, sets;        // calls so far
        Operation failing = Operation::read;
    };
    const Step steps[] = {
        {Call::reset, false, 1, 0, 0},
        {Call::stop, false, 1, 1, 0, Operation::getOption},
        {Call::stop, true, 0, 2, 1},
        {Call::stop, false, 0, 2, 1},
        {Call::reset, false, 0, 2, 2, Operation::setOption},
        {Call::reset, true, 1, 2, 3},
        {Call::reset, false, 1, 2, 3},
        {Call::stop, false, 1, 3, 4, Operation::setOption},
        {Call::stop, false, 1, 3, 4},  // not tried again until it was reset
        {Call::reset, true, 1, 3, 5},
        {Call::stop, true, 0, 4, 6},
        {Call::reset, true, 1, 4, 7},
    };
    for (const auto& s : steps) {
        driver().fail(s.failing);
        EXPECT_EQ(s.call == Call::stop ? addin->legacyCom1.stopLegacyCom1() : addin->legacyCom1.resetLegacyCom1(),
                  s.result)
            << &s - steps;
        driver().fail(s.failing, 0);
        EXPECT_EQ(driver().legacyCom1(), s.channel) << &s - steps;
        EXPECT_EQ(driver().calls(Operation::getOption), s.gets) << &s - steps;
        EXPECT_EQ(driver().calls(Operation::setOption), s.sets) << &s - steps;
    }
    EXPECT_THAT(newLog(), ElementsAre("DBG Switch LegacyCOM1 off", "DBG Switch LegacyCOM1 on again",
                                      "ERR Cannot switch LegacyCOM1 on again!", "DBG Switch LegacyCOM1 on again",
                                      "DBG Switch LegacyCOM1 off", "ERR Cannot switch LegacyCOM1 off!",
                                      "DBG Switch LegacyCOM1 on again", "DBG Switch LegacyCOM1 off",
                                      "DBG Switch LegacyCOM1 on again"));
    // A channel that was off stays off.
    driver().setLegacyCom1(0);
    const int sets = driver().calls(Operation::setOption);
    EXPECT_TRUE(addin->legacyCom1.stopLegacyCom1());
    EXPECT_FALSE(addin->legacyCom1.stopLegacyCom1());
    EXPECT_TRUE(addin->legacyCom1.resetLegacyCom1());
    EXPECT_FALSE(addin->legacyCom1.resetLegacyCom1());
    EXPECT_EQ(driver().calls(Operation::setOption), sets);
}

TEST_F(Daemon, ChannelIsGivenBackAtTheEnd) {
    struct Case {
        int failures;  // of switching it on
        bool isBackOn;
    };
    for (const auto& [failures, isBackOn] : {Case{0, true}, Case{1, true}, Case{-1, false}}) {
        driver().reset();
        start();
        addin->legacyCom1.stopLegacyCom1();
        EXPECT_EQ(driver().legacyCom1(), 0);
        newLog();
        driver().fail(Operation::setOption, -1, failures);
        stop();
        EXPECT_EQ(driver().legacyCom1(), isBackOn) << failures;
        const auto lines = newLog();
        const auto failed = std::ranges::count(lines, "ERR Cannot switch LegacyCOM1 on again!");
        EXPECT_TRUE(isBackOn ? failed == failures : failed > 1 && failed < 10) << failed;
        const std::string said =
            "ERR LegacyCOM1 stays off: Creo's own device support gets no motion until the "
            "device's daemon is started anew!";
        EXPECT_EQ(std::ranges::count(lines, said), !isBackOn);
    }
}

// What was saved belongs to the daemon that was lost. While it is away nothing is decided anew.
TEST_F(Daemon, ChannelOfALostDaemonIsForgottenWhenThereIsOneAgain) {
    start();
    LegacyCom1& channel = addin->legacyCom1;
    const auto lose = [&] {
        driver().setDaemonPresent(false);
        EXPECT_FALSE(daemon().checkConnection());
    };
    const auto comeBack = [&](std::int32_t value) {
        driver().setDaemonPresent(true);
        driver().setLegacyCom1(value);
        EXPECT_TRUE(daemon().connect());
    };
    EXPECT_TRUE(channel.stopLegacyCom1());
    lose();
    const int gets = driver().calls(Operation::getOption);
    EXPECT_FALSE(channel.stopLegacyCom1());
    EXPECT_EQ(driver().calls(Operation::getOption), gets);
    comeBack(1);
    EXPECT_TRUE(channel.stopLegacyCom1());
    EXPECT_EQ(driver().legacyCom1(), 0);
    EXPECT_FALSE(channel.stopLegacyCom1());

    lose();
    comeBack(0);
    EXPECT_TRUE(channel.resetLegacyCom1());
    EXPECT_EQ(driver().legacyCom1(), 1) << "the same daemon: its channel was off because of us";

    // Asked for already when the first tick finds a daemon, before the link is all set up.
    lose();
    EXPECT_FALSE(channel.stopLegacyCom1());
    driver().setDaemonPresent(true);
    driver().setLegacyCom1(1);
    driver().hang(Operation::getDevNum);
    std::thread watchdog([this] { daemon().connect(); });
    EXPECT_TRUE(driver().waitUntilHanging());
    EXPECT_TRUE(channel.stopLegacyCom1());
    driver().hang(Operation::getDevNum, false);
    watchdog.join();
    EXPECT_FALSE(channel.stopLegacyCom1());
    EXPECT_TRUE(channel.resetLegacyCom1());
    EXPECT_EQ(driver().legacyCom1(), 1);
}

TEST_F(Daemon, AxesAreTakenFromGoodReadsOnly) {
    startReading();
    send({0, {1, -2, 32767, -32768, 5, 6}, -1, 70000, -80000});
    const std::array<int, 6> expected{1, -2, 32767, -32768, 5, 6};
    EXPECT_EQ(axes(), expected);
    EXPECT_EQ(handOver().motion.extra1, 70000);
    EXPECT_EQ(handOver().motion.extra2, -80000);
    send({-1, {9, 9, 9, 9, 9, 9}, 0x20020 + 5, 9, 9});  // the event counts all the same
    EXPECT_EQ(axes(), expected);
    EXPECT_EQ(handOver().motion.extra1, 70000);
    EXPECT_EQ(handOver().applFunction, 5);
}

// The motion ends when the watchdog finds the connection lost, and no read that began before comes after it.
TEST_F(Daemon, AxesOfALostConnectionAreZero) {
    constexpr std::array<int, 6> kRest{};
    const Read deflected{0, {1, 2, 3, 4, 5, 6}, -1, 0, 0};
    startReading();
    send(deflected);
    driver().fail(Operation::read);
    waitForPasses();
    EXPECT_EQ(axes(), (std::array<int, 6>{1, 2, 3, 4, 5, 6})) << "failing reads leave them";
    driver().fail(Operation::read, 0);

    driver().hang(Operation::read);
    ASSERT_TRUE(driver().waitUntilHanging());  // a read begins,
    driver().fail(Operation::getDevNum);
    driver().hang(Operation::disconnect);
    std::thread watchdog([this] { EXPECT_FALSE(daemon().checkConnection()); });
    ASSERT_TRUE(driver().waitForCalls(Operation::disconnect, 1));  // the connection is lost,
    EXPECT_EQ(axes(), kRest);
    driver().queue(deflected);
    driver().hang(Operation::read, false);  // and the read brings something
    ASSERT_TRUE(driver().waitUntilIdle());
    EXPECT_EQ(axes(), kRest);
    send(deflected);  // read before the disconnection
    driver().hang(Operation::disconnect, false);
    watchdog.join();
    EXPECT_EQ(axes(), kRest);

    driver().fail(Operation::getDevNum, 0);
    EXPECT_TRUE(daemon().connect());
    waitForPasses();
    EXPECT_EQ(axes(), kRest);
    send({0, {6, 5, 4, 3, 2, 1}, -1, 0, 0});
    EXPECT_EQ(axes(), (std::array<int, 6>{6, 5, 4, 3, 2, 1}));
}

// However often the connection is lost.
TEST_F(Daemon, AxesStayZeroWhenTheCountOfLossesComesRound) {
    HandOver::Motion motion;
    motion.store({1, 2, 3, 4, 5, 6}, motion.losses);
    for (int i = 0; i < 1 << 16; ++i) motion.lose();
    EXPECT_EQ(motion.losses, 0);
    EXPECT_EQ(axesOf(motion), (std::array<int, 6>{}));
}

TEST_F(Daemon, EventsReachTheirSlots) {
    startReading();
    struct Case {
        std::int32_t event, function, special;
    };
    const Case cases[] = {
        {0, -1, 0},
        {0x20008, -1, 0},
        {0x20009, -1, 0x20009},
        {0x2000A, -1, 0x2000A},
        {0x2000C, -1, 0x2000C},
        {0x2000D, -1, 0},
        {0x20015, -1, 0},
        {0x20016, -1, 0x20016},
        {0x20018, -1, 0x20018},
        {0x20019, -1, 0},
        {0x2001F, -1, 0},
        {0x20020, 0, 0},
        {0x20021, 1, 0},
        {0x7fffffff, 0x7fffffff - 0x20020, 0},
        {0x20003, -1, 0},
    };
    for (const auto& c : cases) {
        handOver().applFunction = -1;
        handOver().specialEvent = 0;
        newLog();
        send(eventRead(c.event));
        EXPECT_EQ(handOver().applFunction, c.function) << std::hex << c.event;
        EXPECT_EQ(handOver().specialEvent, c.special) << std::hex << c.event;
        EXPECT_THAT(newLog(), ElementsAre("TRC event: " + std::to_string(c.event) + ", APPL_FUNC_START: 131104"));
    }
    for (const std::int32_t none : {-1, -2, -2147483647}) send(eventRead(none));
    EXPECT_THAT(newLog(), IsEmpty());
    driver().queue(eventRead(0x20020 + 3));
    send(eventRead(0x20020 + 4));
    EXPECT_EQ(handOver().applFunction, 4);  // the latest wins

    const int reads = driver().calls(Operation::getAdvancedSettings);
    driver().setAdvancedSettings(13, 0);
    send(eventRead(0x20001));
    send(eventRead(0x20002, -1));
    EXPECT_EQ(driver().calls(Operation::getAdvancedSettings), reads + 2);
    EXPECT_EQ(handOver().rotationMode, 3);
}

TEST_F(Daemon, ModeIsSentWhenItChangesAndWhenAskedFor) {
    startReading();
    std::vector<std::string> expected{"Creo/Default"};
    const auto expectSent = [&](const std::string& mode) {
        expected.push_back("Creo/" + mode);
        ASSERT_TRUE(driver().waitForModes(expected.size()));
        waitForPasses();
        EXPECT_EQ(driver().modesSent(), expected);
    };
    setMode(1);
    expectSent("Part");
    setMode(1);
    waitForPasses();
    EXPECT_EQ(driver().modesSent(), expected);
    setMode(22);
    expectSent("Default");
    send(eventRead(0x20013));
    expectSent("Default");
    daemon().connect();  // after a reconnection
    expectSent("Default");

    // A refused mode is offered again until it is taken.
    driver().fail(Operation::setAppMode);
    const int calls = driver().calls(Operation::setAppMode);
    setMode(2);
    ASSERT_TRUE(driver().waitForCalls(Operation::setAppMode, calls + 3));
    EXPECT_EQ(driver().modesSent(), expected);
    driver().fail(Operation::setAppMode, 0);
    expectSent("Sheet_Metal");

    // One refused after a reconnection was the old one: nothing is to be offered again.
    driver().fail(Operation::setAppMode);
    const int before = driver().calls(Operation::setAppMode);
    daemon().connect();
    ASSERT_TRUE(driver().waitForCalls(Operation::setAppMode, before + 1));
    driver().fail(Operation::setAppMode, 0);
    waitForPasses();
    EXPECT_EQ(driver().calls(Operation::setAppMode), before + 1);
}

TEST_F(Daemon, EndReleasesAReadThatBlocks) {
    startReading();
    driver().setPace(substitute::Driver::Pace::untilReleased);
    ASSERT_TRUE(driver().waitForCalls(Operation::read, driver().calls(Operation::read) + 1));
    ASSERT_TRUE(driver().waitUntilIdle());  // inside the read
    stop();
    EXPECT_FALSE(driver().isConnected());
}

TEST_F(Daemon, WithoutAReadingThreadTheEndDoesNotWait) {
    start(Threads::none);
    stop();
    EXPECT_EQ(driver().calls(Operation::read), 0);
}

TEST_F(Daemon, ProgressIsShownUntilTheMenuFileIsLoaded) {
    using substitute::progress;
    substitute::windows().generate = [](const std::string&) { return substitute::GenerationEnd::running; };
    start(Threads::reading);
    creo().loadMenufile();
    ASSERT_TRUE(waitUntil([] { return progress().last == 0.5; }));
    EXPECT_EQ(progress().starts, 1);
    progress().isToEndByItself = true;  // a window that is gone is started again
    ASSERT_TRUE(waitUntil([] { return progress().starts == 2; }));
    EXPECT_EQ(driver().calls(Operation::read), 0);
    substitute::windows().generate = {};
    creo().loadMenufile();
    ASSERT_TRUE(driver().waitForCalls(Operation::read, 1));
    EXPECT_GE(progress().stops, 1);
    EXPECT_EQ(progress().starts, 2);
}

TEST_F(Daemon, EndsDuringTheProgressPhase) {
    start(Threads::reading);
    EXPECT_EQ(substitute::progress().starts, 0);  // nothing is being generated yet
    stop();
    EXPECT_EQ(driver().calls(Operation::read), 0);
}

}  // namespace
