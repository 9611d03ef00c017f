// The driver library against a daemon in a process of its own.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

#include "tests/workbench/driver_library.h"

namespace workbench {
namespace {

constexpr std::array<std::int16_t, 6> kNoMotion{};

TEST(DriverLibrary, ExportsTenOrdinalsAndNoName) {
    const DriverLibrary library;
    const auto* base = reinterpret_cast<const std::uint8_t*>(library.handle());
    const auto at = [base](DWORD offset) { return static_cast<const void*>(base + offset); };
    const auto* headers = static_cast<const IMAGE_NT_HEADERS*>(
        at(static_cast<DWORD>(static_cast<const IMAGE_DOS_HEADER*>(at(0))->e_lfanew)));
    const auto* exports = static_cast<const IMAGE_EXPORT_DIRECTORY*>(
        at(headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress));
    EXPECT_EQ(exports->NumberOfNames, 0u);
    std::vector<DWORD> ordinals;
    const auto* functions = static_cast<const DWORD*>(at(exports->AddressOfFunctions));
    for (DWORD i = 0; i < exports->NumberOfFunctions; ++i) {
        if (functions[i] != 0) ordinals.push_back(exports->Base + i);
    }
    EXPECT_EQ(ordinals, (std::vector<DWORD>{206, 208, 210, 212, 216, 218, 219, 266, 269, 282}));
}

TEST(Driver, WithoutDaemonEverythingFailsButTheLogFlags) {
    const DriverBench bench;
    std::int32_t value = 77;
    ObAdvancedSettings settings{};
    ObDevInfo info{};
    EXPECT_NE(bench.library.connect(), 0);
    EXPECT_NE(bench.library.disconnect(), 0);
    EXPECT_NE(bench.library.getDevNum(value), 0);
    EXPECT_NE(bench.library.getOption(kOptionLegacyCom1, value), 0);
    EXPECT_EQ(value, 77);
    EXPECT_NE(bench.library.setOption(kOptionLegacyCom1, 0), 0);
    EXPECT_NE(bench.library.getSettings(settings), 0);
    EXPECT_NE(bench.library.getDevInfo(0, info), 0);
    EXPECT_NE(bench.library.setMode("Creo", "Part"), 0);
    const DriverReading reading = bench.library.read();
    EXPECT_NE(reading.status, 0);
    EXPECT_EQ(reading.event, -1);
    EXPECT_EQ(bench.library.setLog("dll.txt", ""), 0);
}

TEST(Driver, DeviceCountNeedsAConnection) {
    DriverBench bench;
    bench.bench.startDaemon();
    std::int32_t count = 0;
    EXPECT_NE(bench.library.getDevNum(count), 0);
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.library.getDevNum(count), 0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(bench.library.disconnect(), 0);
    EXPECT_NE(bench.library.getDevNum(count), 0);
    EXPECT_NE(bench.library.read().status, 0);
}

TEST(Driver, QueriesAndReportsReachTheDaemon) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.setLog("dll log.txt", "only.cpp"), 0);
    EXPECT_EQ(bench.bench.daemonStatus("dll_log"), "dll log.txt 500 1 0 0 1 0 0 0 0 0 1 only.cpp");
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.bench.daemonStatus("application"), "xtopCreo");

    bench.bench.daemon("devices 2");
    std::int32_t count = 0;
    EXPECT_EQ(bench.library.getDevNum(count), 0);
    EXPECT_EQ(count, 2);
    ObDevInfo info{};
    EXPECT_EQ(bench.library.getDevInfo(1, info), 0);
    EXPECT_EQ(std::string(info.name), "OrbikonController Pro 2");
    EXPECT_NE(bench.library.getDevInfo(2, info), 0);

    bench.bench.daemon("settings 104 255");
    EXPECT_EQ(bench.library.read().event, kEventSettingsChanged1);
    ObAdvancedSettings settings{};
    EXPECT_EQ(bench.library.getSettings(settings), 0);
    EXPECT_EQ(settings.rotationMode, 104);
    EXPECT_EQ(settings.contextFlag, 255);

    std::int32_t legacy = -7;
    EXPECT_EQ(bench.library.getOption(kOptionLegacyCom1, legacy), 0);
    EXPECT_EQ(legacy, 1);
    bench.bench.daemon("axes 1 -2 3 -4 5 -6");
    EXPECT_EQ(bench.bench.daemon("legacy-read").front(), "1 -2 3 -4 5 -6");
    EXPECT_EQ(bench.library.setOption(kOptionLegacyCom1, 0), 0);
    EXPECT_EQ(bench.bench.daemon("legacy-read").front(), "0 0 0 0 0 0");
    EXPECT_NE(bench.library.setOption(kOptionLegacyCom1 + 1, 1), 0);
    EXPECT_EQ(bench.bench.daemonStatus("legacy"), "0");
    EXPECT_EQ(bench.bench.daemonStatus("legacy_sets"), "2");

    EXPECT_EQ(bench.library.setMode("Creo", "Sheet_Metal"), 0);
    EXPECT_EQ(bench.library.setMode("Creo", "Assembly"), 0);
    EXPECT_NE(bench.library.setMode("Creo", "two\nlines"), 0);
    EXPECT_EQ(bench.bench.daemon("modes"), (std::vector<std::string>{"Creo|Sheet_Metal", "Creo|Assembly"}));
}

TEST(Driver, MotionComesUntilTheCapIsReleased) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.library.read().axes, kNoMotion);

    const std::array<std::int16_t, 6> deflection{32767, -32768, 0, 1, -1, 350};
    bench.bench.daemon("extras 2147483647 -5");
    bench.bench.daemon("axes 32767 -32768 0 1 -1 350");
    for (int i = 0; i < 3; ++i) {
        const DriverReading reading = bench.library.read();
        EXPECT_EQ(reading.status, 0);
        EXPECT_EQ(reading.axes, deflection);
        EXPECT_EQ(reading.event, -1);
        EXPECT_EQ(reading.extra1, 2147483647);
        EXPECT_EQ(reading.extra2, -5);
    }
    bench.bench.daemon("axes 0 0 0 0 0 0");
    EXPECT_EQ(bench.library.read().axes, kNoMotion);
}

TEST(Driver, EventsComeInOrderAndWithTheStatusOfTheirRead) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("axes 5 0 0 0 0 0");
    bench.bench.daemon("event 0x20009");
    bench.bench.daemon("event 131106 failing");
    bench.bench.daemon("event 0x20013");
    EXPECT_EQ(bench.bench.daemonStatus("events_pending"), "3");
    DriverReading reading = bench.library.read();
    EXPECT_EQ(reading.status, 0);
    EXPECT_EQ(reading.event, 0x20009);
    reading = bench.library.read();
    EXPECT_NE(reading.status, 0);
    EXPECT_EQ(reading.event, 0x20022);
    EXPECT_EQ(reading.axes, kNoMotion);
    reading = bench.library.read();
    EXPECT_EQ(reading.status, 0);
    EXPECT_EQ(reading.event, 0x20013);
    EXPECT_EQ(reading.axes[0], 5);
    EXPECT_EQ(bench.library.read().event, -1);
}

// How a read that hangs comes to its end. While it hangs, all other operations go on.
class HangingRead : public testing::TestWithParam<std::pair<const char*, std::function<void(DriverBench&)>>> {};

TEST_P(HangingRead, Ends) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("hold on");
    std::atomic<bool> isDone{false};
    std::thread reader([&] {
        bench.library.read();
        isDone = true;
    });
    for (int i = 0; i < 20; ++i) {
        std::int32_t value = 0;
        EXPECT_EQ(bench.library.getDevNum(value), 0);
        EXPECT_EQ(bench.library.getOption(kOptionLegacyCom1, value), 0);
        EXPECT_EQ(bench.library.setMode("Creo", "Part"), 0);
    }
    EXPECT_FALSE(isDone);
    GetParam().second(bench);
    EXPECT_TRUE(waitFor([&] { return isDone.load(); }));
    reader.join();
}

INSTANTIATE_TEST_SUITE_P(
    Driver, HangingRead,
    testing::Values(std::pair{"Released", [](DriverBench& bench) { bench.bench.daemon("hold off"); }},
                    std::pair{"Disconnected", [](DriverBench& bench) { bench.library.disconnect(); }},
                    std::pair{"DaemonKilled", [](DriverBench& bench) { bench.bench.killDaemon(); }},
                    std::pair{"DaemonDied", [](DriverBench& bench) { bench.bench.askDaemon("die"); }},
                    std::pair{"DaemonQuit", [](DriverBench& bench) { bench.bench.stopDaemon(); }}),
    [](const auto& test) { return test.param.first; });

TEST(Driver, ConnectsAgainWhenTheDaemonIsBack) {
    DriverBench bench;
    ASSERT_EQ(bench.library.setLog("kept.txt", ""), 0);
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.library.read().status, 0);
    std::int32_t count = 0;
    for (int round = 0; round < 3; ++round) {
        bench.bench.killDaemon();
        EXPECT_NE(bench.library.getDevNum(count), 0);
        EXPECT_NE(bench.library.read().status, 0);
        bench.bench.startDaemon();
        EXPECT_NE(bench.library.getDevNum(count), 0) << "a new daemon knows nothing of the old connection";
        ASSERT_EQ(bench.library.connect(), 0);
        EXPECT_EQ(bench.library.getDevNum(count), 0);
        bench.bench.daemon("event 0x20016");
        EXPECT_EQ(bench.library.read().event, 0x20016);
        EXPECT_TRUE(bench.bench.daemonStatus("dll_log").starts_with("kept.txt 500"));
    }
}

TEST(Driver, ThreeThreadsAtOnce) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("axes 0 0 9 0 0 0");
    constexpr int kRounds = 100;
    std::atomic<int> failures{0};
    const auto repeat = [&](auto step) {
        return std::thread([&failures, step] {
            for (int i = 0; i < kRounds; ++i) {
                if (!step(i)) ++failures;
            }
        });
    };
    std::thread reader = repeat([&](int) {
        const DriverReading reading = bench.library.read();
        return reading.status == 0 && reading.axes[2] == 9;
    });
    std::thread watcher = repeat([&](int) {
        std::int32_t count = 0;
        return bench.library.getDevNum(count) == 0 && count == 1;
    });
    std::thread host = repeat([&](int i) { return bench.library.setOption(kOptionLegacyCom1, i % 2) == 0; });
    reader.join();
    watcher.join();
    host.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(bench.bench.daemonStatus("legacy_sets"), std::to_string(kRounds));
}

TEST(Driver, ConnectingAgainReplacesTheConnection) {
    DriverBench bench;
    bench.bench.startDaemon();
    for (int i = 0; i < 3; ++i) ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.bench.daemonStatus("connects"), "3");
    EXPECT_EQ(bench.bench.daemonStatus("clients"), "1");
    EXPECT_EQ(bench.library.read().status, 0);
}

TEST(Driver, FailsAsTheDaemonIsTold) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    std::int32_t value = 0;
    ObAdvancedSettings settings{};
    ObDevInfo info{};
    const std::pair<const char*, std::function<int()>> calls[] = {
        {"obConnect", [&] { return bench.library.connect(); }},
        {"obReadDeviceData", [&] { return bench.library.read().status; }},
        {"obGetAdvancedSettings", [&] { return bench.library.getSettings(settings); }},
        {"obGetOption", [&] { return bench.library.getOption(kOptionLegacyCom1, value); }},
        {"obSetOption", [&] { return bench.library.setOption(kOptionLegacyCom1, 1); }},
        {"obGetDevNum", [&] { return bench.library.getDevNum(value); }},
        {"obGetDevInfo", [&] { return bench.library.getDevInfo(0, info); }},
        {"obSetDllLogFlags", [&] { return bench.library.setLog("x", ""); }},
        {"obSetAppMode", [&] { return bench.library.setMode("Creo", "Part"); }},
    };
    for (const auto& [name, call] : calls) {
        SCOPED_TRACE(name);
        bench.bench.daemon("fail " + std::string(name) + " 1-2");
        const int statuses[] = {call(), call(), call()};
        EXPECT_EQ(statuses[0], -1);
        EXPECT_EQ(statuses[1], -1);
        EXPECT_EQ(statuses[2], 0);
    }
    bench.bench.daemon("fail obDisconnect 1");
    EXPECT_NE(bench.library.disconnect(), 0);
    EXPECT_NE(bench.library.getDevNum(value), 0) << "disconnected all the same";
    bench.bench.daemon("fail obConnect always");
    for (int i = 0; i < 3; ++i) EXPECT_NE(bench.library.connect(), 0);
    bench.bench.daemon("fail obConnect never");
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.library.disconnect(), 0);
}

// The library itself hangs, or dispatches its caller's messages, whatever becomes of the daemon.
TEST(Driver, HangsAndPumpsAsTheDaemonIsTold) {
    DriverBench bench;
    bench.bench.startDaemon();
    ASSERT_EQ(bench.library.connect(), 0);
    constexpr ULONGLONG kLeastMs = 250;  // clock and pause are not that exact
    bench.bench.daemon("hang obGetDevNum 300 2");
    bench.bench.daemon("pump obGetDevNum 3");
    std::int32_t count = 0;
    for (const int call : {1, 2, 3}) {
        PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
        const ULONGLONG start = GetTickCount64();
        EXPECT_EQ(bench.library.getDevNum(count), 0);
        EXPECT_EQ(count, 1);
        if (call == 2) {
            EXPECT_GE(GetTickCount64() - start, kLeastMs);
        }
        MSG message;
        EXPECT_EQ(PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE) == 0, call == 3) << "dispatched";
    }
}

TEST(Driver, UnloadsAndLoadsAgain) {
    Workbench bench;
    SetEnvironmentVariableA("ORBIKON_WORKBENCH", bench.instance().c_str());
    bench.startDaemon();
    for (int i = 0; i < 3; ++i) {
        const DriverLibrary library;
        ASSERT_EQ(library.connect(), 0);
        EXPECT_EQ(library.read().status, 0);
    }
    EXPECT_EQ(bench.daemonStatus("connects"), "3");
}

}  // namespace
}  // namespace workbench
