// All threads at once: a driver that floods events and fails each operation in turn, a watchdog that reconnects, a host
// thread that consumes the slots and moves components, and statements of other threads. Races are what the thread
// sanitizer looks for here; without it the end state is looked at.
#include <atomic>
#include <thread>

#include "tests/unit/plugin.h"

namespace {

constexpr char kLogClass[] = "Stress";

class Stress : public PlugIn {};

TEST_F(Stress, EverythingAtOnce) {
    constexpr int kReadsPerRound = 200;
    std::filesystem::create_directories(settingsFolder());
    writeMenuFile("[Modes]\nA = 1\nB = 2\nC = 3\n\n[MenuBar]\nx = {}ProCmdX|h\ny = {}OB_Toggle_Object_Move_Mode|h\n");
    toolkit().components = {{1, substitute::placedAt(1, 2, 3)}};
    toolkit().selection = {{1}};
    start(Threads::all);
    addin->settings.mMaxContMoveTime = 1;

    std::vector<substitute::Read> reads;
    for (const std::int32_t event :
         {-1, 0x20001, 0x20002, 0x20009, 0x2000C, 0x20013, 0x20016, 0x20020, 0x20021, 0x20022, 0x7fffffff, 0}) {
        for (const int status : {0, -1}) reads.push_back({status, {20, -20, 30, 1, -32768, 32767}, event, event, 1});
    }
    driver().flood(reads);

    std::atomic<bool> isRunning{true};
    std::thread logger([&] {
        for (int i = 0; isRunning; ++i) OB_LOG(LogLevel::INF) << "line " << i;
    });
    std::thread daemonLife([&] {  // reconnects as the watchdog does, more often
        while (isRunning) {
            if (!daemon().checkConnection()) daemon().connect();
            std::this_thread::yield();
        }
    });
    creo().loadMenufile();
    for (int round = 0; round < 2 * substitute::kOperations; ++round) {
        const auto operation = static_cast<Operation>(round % substitute::kOperations);
        driver().fail(operation);
        const int reached = driver().calls(Operation::read) + kReadsPerRound;
        while (driver().calls(Operation::read) < reached) {
            toolkit().mode = round % 7;
            creo().checkMode(false);
            creo().loadMenufile();
            creo().doTransform();
        }
        driver().fail(operation, 0);
    }
    isRunning = false;
    logger.join();
    daemonLife.join();

    // Everything works as at the start.
    driver().flood({});
    ASSERT_TRUE(waitUntil([] { return driver().isConnected(); }));
    driver().queue({0, {}, 0x20020 + 1, 0, 0});
    ASSERT_TRUE(driver().waitUntilIdle());
    const bool wasOn = creo().isComponentMoveOn();
    creo().doTransform();
    EXPECT_NE(creo().isComponentMoveOn(), wasOn);
    EXPECT_FALSE(CreoProxy::isCapMoving());
    toolkit().mode = 1;
    creo().checkMode(false);
    ASSERT_TRUE(waitUntil([] {
        const auto modes = driver().modesSent();
        return !modes.empty() && modes.back() == "Creo/B";
    }));
    stop();
    EXPECT_EQ(driver().legacyCom1(), 1);
    EXPECT_FALSE(driver().isConnected());
}

}  // namespace
