#include "tests/e2e/e2e.h"
#include "tests/windows/process_state.h"

namespace e2e {
namespace {

// Connected, with a read that hangs, and without a daemon: fifty starts and ends leave nothing behind. The library is
// unloaded at the first two only: each time the thread library leaves what it keeps of the host's own thread.
TEST(Start, FiftyRoundsLeakNothing) {
    // Hidden: other tests have the display meanwhile.
    Bench bench(optionsWith(settingsText(), menuText()), {}, {"--require-plugin", "--hidden"});
    const DWORD process = static_cast<DWORD>(std::stoul(bench.status("process")));
    const auto rounds = [&](int count) {
        for (int i = 0; i < count; ++i) {
            bench.host("plugin terminate");
            bench.host("plugin initialize");
        }
    };
    bench.host("plugin reload 2");
    rounds(2);  // what the run-times keep
    const int handles = countHandles(process);
    const int threads = countThreads(process);
    rounds(18);
    bench.daemon("hold on");
    rounds(16);
    bench.killDaemon();
    rounds(16);
    // The last plug-in's own threads are running, as they were at the first count.
    EXPECT_TRUE(waitFor([&] { return countThreads(process) <= threads; }));
    EXPECT_LE(countHandles(process) - handles, 8);
    EXPECT_EQ(bench.status("plugin"), "initialised");
    bench.startDaemon();
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; })) << "and it still works";
}

}  // namespace
}  // namespace e2e
