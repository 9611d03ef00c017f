// Start and end of the plug-in as the host sees them. Every end takes the watchdog's two seconds, so there are few.
#include <algorithm>
#include <new>

#include "tests/unit/plugin.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class AddIn : public PlugIn {};
using AddInDeathTest = AddIn;  // by this name it runs first, before there are threads

TEST_F(AddIn, EndWithoutAStartDoesNothing) {
    user_terminate();
    EXPECT_EQ(gAddin, nullptr);
    EXPECT_EQ(driver().calls(Operation::disconnect), 0);
}

TEST_F(AddIn, LifeFromStartToEnd) {
    writeSettings(kProgram);
    EXPECT_EQ(user_initialize(), 0);
    CObAddin* const first = gAddin;
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(user_initialize(), 0);  // a second start changes nothing
    EXPECT_EQ(gAddin, first);
    EXPECT_EQ(first->handOver->applFunction, -1);
    EXPECT_EQ(first->handOver->specialEvent, 0);
    // The watchdog's first check comes at once.
    ASSERT_TRUE(driver().waitForCalls(Operation::getDevNum, 2));
    EXPECT_THAT(newLog(), ElementsAre("CRT Constructing ...",  // the add-in's second one; the first comes too early
                                      "CRT Constructing ...", "CRT CreoProxy constructed.", "CRT Constructing ...",
                                      "TRC Checking connection ...", "INF devIdx: 0:OrbikonController",
                                      "CRT Constructed.", "CRT Constructed.", "WRN user_initialize() called twice!"));
    user_terminate();
    EXPECT_EQ(gAddin, nullptr);
    EXPECT_FALSE(driver().isConnected());
    EXPECT_THAT(newLog(), ElementsAre("CRT Destructing ...", "CRT Destructing ...", "CRT Destructed.",
                                      "CRT Destructing ...", "CRT Destructed.", "CRT Destructed.", "CRT Destructed."));
    user_terminate();
    EXPECT_THAT(newLog(), IsEmpty());
    EXPECT_EQ(driver().calls(Operation::setDllLogFlags), 1);
}

// A toolkit call may dispatch messages, and with them the end: the callback that made the call comes to its own first.
TEST_F(AddIn, EndInsideACallbackWaitsForIt) {
    writeSettings(kProgram);
    user_initialize();
    CObAddin* const running = gAddin;
    toolkit().onCall("ProModeCurrentGet", [&] {
        user_terminate();
        EXPECT_EQ(gAddin, running);
    });
    toolkit().notifications.at(72)();
    EXPECT_EQ(gAddin, nullptr);
    EXPECT_FALSE(driver().isConnected());
    toolkit().onCall("ProModeCurrentGet", {});
    EXPECT_EQ(user_initialize(), 0);
    EXPECT_TRUE(driver().isConnected());
    user_terminate();
    EXPECT_EQ(gAddin, nullptr);
}

TEST_F(AddIn, WatchdogConnectsAsSoonAsTheDaemonIsThere) {
    driver().setDaemonPresent(false);
    driver().fail(Operation::setDllLogFlags);
    writeSettings(kProgram);
    EXPECT_EQ(user_initialize(), 0);
    EXPECT_THAT(newLog(), Contains("ERR Error in obConnect()!"));
    ASSERT_TRUE(driver().waitForCalls(Operation::connect, 2));
    driver().setDaemonPresent(true);
    ASSERT_TRUE(waitUntil([] { return driver().isConnected(); }));
    user_terminate();
    EXPECT_FALSE(driver().isConnected());
    // A later start finds everything as the first did.
    driver().reset();
    EXPECT_EQ(user_initialize(), 0);
    EXPECT_TRUE(driver().isConnected());
    user_terminate();
}

TEST_F(AddIn, WatchdogThatCannotBeStartedIsGoneWithout) {
    start(Threads::reading);
    EXPECT_THAT(newLog(), Contains("ERR Error creating reading thread!"));
    stop();
}

#ifndef _WIN32
// Deliberately hard: without one of its two sides the plug-in ends the host, daemon or not.
TEST_F(AddInDeathTest, SideThatCannotBeCreatedEndsTheProcess) {
    writeSettings(kProgram);
    EXPECT_EXIT(
        {
            substitute::windows().onDiscovery = [] { throw std::bad_alloc(); };
            user_initialize();
        },
        testing::ExitedWithCode(255), "");
    EXPECT_THAT(log(), Contains("ERR mCreoProxyP or mDaemonProxyP could not be created!"));
}
#endif

}  // namespace
