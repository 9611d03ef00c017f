// Whatever comes together: random actions from outside, and everything that must hold after each.
#include "workbench/monkey/monkey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "workbench/control/workbench.h"
#include "workbench/monkey/actions.h"

namespace {

TEST(Monkey, FiveThousandActions) {
    std::ostringstream out;
    EXPECT_TRUE(workbench::playMonkey({.seed = 1, .actions = 5000}, out)) << out.str();
}

// So what was found can be played again.
TEST(Monkey, SameSeedSameActions) {
    workbench::Dice first(7), again(7), other(8);
    int differences = 0;
    for (int i = 0; i < 1000; ++i) {
        const std::string action = nextAction(first);
        EXPECT_EQ(action, nextAction(again));
        differences += action != nextAction(other);
    }
    EXPECT_GT(differences, 500);
}

TEST(Invariants, NoticeAPlugInThatBreaksThem) {
    workbench::WorkbenchOptions options;
    options.plugin = workbench::buildFolder() / "tests" / "bad_plugin.dll";
    workbench::Workbench bench(options);
    bench.startDaemon();
    bench.startHost({"--hidden"});
    EXPECT_THAT(bench.host("invariants"), testing::Contains("the plug-in runs without its menu items"));
    bench.host("select 41");
    bench.host("plugin call initialize");  // which makes them
    EXPECT_THAT(bench.host("invariants"),
                testing::UnorderedElementsAre("ProViewMatrixSet: an axis is of length 0",
                                              "ProViewMatrixSet: an axis is of length 0",
                                              "1 selection arrays were not given back", "dynamic positioning is on",
                                              "2 timers are armed while the plug-in runs",
                                              "LegacyCOM1 is off though the plug-in does not use the motion"));
    bench.host("plugin terminate");
    EXPECT_THAT(bench.host("invariants"),
                testing::IsSupersetOf({"2 timers outlive the plug-in", "2 threads outlive the plug-in",
                                       "notification 24 outlives the plug-in", "a driver session outlives the plug-in",
                                       "LegacyCOM1 is not as it was before the plug-in"}));
}

}  // namespace
