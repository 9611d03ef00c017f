// Creo's mode, and the commands and notifications that look at it.
#include <functional>
#include <stdexcept>

#include "tests/substitutes/system.h"
#include "tests/unit/plugin.h"

namespace {

using testing::Contains;
using testing::ElementsAre;

constexpr char kThreeModes[] = "[Modes]\nSketcher = 1\nPart = 2\nSheet_Metal = 3\n\n[MenuBar]\n";

class Mode : public PlugIn {
  protected:
    std::int32_t check(bool isFromAccessCheck) { return creo().checkMode(isFromAccessCheck); }
};

TEST_F(Mode, FollowsTheHost) {
    start();
    writeMenuFile(kThreeModes);
    creo().loadMenufile();
    EXPECT_EQ(creo().mode(), -1);
    EXPECT_EQ(creo().modeName(), "Default");
    struct Case {
        ProMode mode;
        bool isSketchActive;
        std::int32_t result;
        const char* name;
    };
    const Case cases[] = {
        {1, false, 1, "Part"},      {1, true, 0, "Sketcher"},   {2, false, 2, "Sheet_Metal"},
        {3, false, 3, "Default"},   {5, true, 0, "Sketcher"},   {5, false, 5, "Default"},
        {-1, false, -1, "Default"}, {-7, false, -7, "Default"}, {2147483647, false, 2147483647, "Default"},
    };
    for (const auto& c : cases) {
        toolkit().mode = c.mode;
        toolkit().isSketchActive = c.isSketchActive;
        EXPECT_EQ(check(false), c.result);
        EXPECT_EQ(creo().mode(), c.result);
        EXPECT_EQ(creo().modeName(), c.name);
    }
}

TEST_F(Mode, FailedQueries) {
    start();
    check(false);
    newLog();
    toolkit().fail("ProModeCurrentGet", -4);
    EXPECT_EQ(check(false), -1);
    EXPECT_THAT(newLog(), ElementsAre("TMP err: -4", "WRN Error in ProModeCurrentGet()! err=-4", "TMP isSketcher: 0",
                                      "TMP New ProMode: -1"));
    toolkit().isSketchActive = true;  // still counts
    EXPECT_EQ(check(false), 0);
    toolkit().fail("ProModeCurrentGet", 0);
    toolkit().fail("ProSectionIsActive");
    EXPECT_EQ(check(false), 1);
}

TEST_F(Mode, AccessCheckFromAnotherWindowChangesNothing) {
    start();
    toolkit().mode = 5;
    toolkit().window = 3;
    EXPECT_EQ(check(false), 5);
    toolkit().mode = 1;
    toolkit().window = 4;
    newLog();
    EXPECT_EQ(check(true), 5);
    EXPECT_THAT(newLog(), Contains("TMP Restore mode to oldMode 5"));
    toolkit().window = 3;
    EXPECT_EQ(check(true), 1);
    toolkit().window = 4;
    toolkit().mode = 2;
    toolkit().fail("ProWindowCurrentGet");
    EXPECT_EQ(check(true), 2);  // which window it is cannot be told
    toolkit().fail("ProWindowCurrentGet", 0);
    EXPECT_EQ(check(false), 2);  // the timer's check remembers window 4
    toolkit().mode = 5;
    EXPECT_EQ(check(true), 5);
}

// The reading thread may hold a name while another menu file is loaded.
TEST_F(Mode, NameStaysValidWhenTheListIsReplaced) {
    start();
    toolkit().mode = 1;
    check(false);
    writeMenuFile(kThreeModes);
    creo().loadMenufile();
    const std::string_view name = creo().modeName();
    writeMenuFile("[Modes]\nOther = 1\nNames = 2\n");
    creo().loadMenufile();
    EXPECT_EQ(name, "Part");
    EXPECT_EQ(creo().modeName(), "Names");
}

TEST_F(Mode, RegistrationsReachTheHostInOrder) {
    start();
    const auto chkbutton = [](const std::string& label, const std::string& command) {
        return "ChkbuttonAdd Orbikon|" + label + "|" + label + "|" + label + "|null|1|" + command + "|Orbikon.txt";
    };
    const auto designate = [](const std::string& label, const std::string& command) {
        return "Designate " + command + "|" + label + "|" + label + "|" + label + "|Orbikon.txt";
    };
    EXPECT_THAT(toolkit().trace,
                ElementsAre("OptionAdd Orbikon_ToggleMoveMode 111", "OptionAdd Orbikon_ToggleScrollMode 111",
                            "MenuAdd Orbikon|Orbikon|Help|0|Orbikon.txt",
                            chkbutton("Toggle Move Mode", "Orbikon_ToggleMoveMode"),
                            chkbutton("Toggle Scroll Mode", "Orbikon_ToggleScrollMode"),
                            designate("Toggle Move Mode", "Orbikon_ToggleMoveMode"),
                            designate("Toggle Scroll Mode", "Orbikon_ToggleScrollMode"), "NotificationSet 24",
                            "NotificationSet 41", "NotificationSet 18", "NotificationSet 72", "NotificationSet 73"));
    EXPECT_EQ(substitute::windows().discoveries, 1);
    const auto handlers = toolkit().notifications;
    toolkit().mode = 4;
    for (const auto& [type, handler] : handlers) {
        const int checks = substitute::windows().checks;
        ++toolkit().mode;
        EXPECT_EQ(handler(), 0);
        EXPECT_EQ(creo().mode(), toolkit().mode) << type;
        EXPECT_EQ(substitute::windows().checks - checks, type == 72 || type == 73 ? 0 : 1) << type;
    }
    // Two handlers stay registered; they may come when the object is gone.
    stop();
    EXPECT_EQ(toolkit().notifications.size(), 2u);
    EXPECT_EQ(substitute::windows().killedTimers, 1);
    EXPECT_EQ(substitute::windows().generationsEnded, 1);
    const int queries = toolkit().calls("ProModeCurrentGet");
    for (const auto& [type, handler] : handlers) EXPECT_EQ(handler(), 0);
    for (const auto& [name, command] : toolkit().commands) {
        command.action(nullptr, nullptr, nullptr);
        command.value(nullptr, nullptr);
        command.access(0);
    }
    EXPECT_EQ(toolkit().calls("ProModeCurrentGet"), queries);
    EXPECT_TRUE(toolkit().chkbuttonStates.empty());
}

// A command that the host refused gets no menu item. (The fixture looks for null handles.)
TEST_F(Mode, RefusedRegistrationsAreLoggedAndGoneWithout) {
    for (const char* function : {"ProCmdOptionAdd", "ProCmdDesignate", "ProMenubarMenuAdd",
                                 "ProMenubarmenuChkbuttonAdd", "ProNotificationSet", "ProNotificationUnset"}) {
        for (const auto& [from, count] : {std::pair{1, 1}, {2, 1}, {1, -1}}) {
            toolkit().trace.clear();
            toolkit().fail(function, -2, from, count);
            const substitute::ClockStands now;  // one line a second
            start();
            const std::string trace = testing::PrintToString(toolkit().trace);
            EXPECT_EQ(trace.find("none"), std::string::npos) << trace;
            if (function == std::string("ProCmdOptionAdd") && count == 1) {
                EXPECT_THAT(trace, testing::HasSubstr(from == 1 ? "Designate Orbikon_ToggleScrollMode"
                                                                : "Designate Orbikon_ToggleMoveMode"));
            }
            stop();
            const bool isCalledOnce = function == std::string("ProMenubarMenuAdd");
            EXPECT_THAT(newLog(), Contains("ERR Error in " + std::string(function) + "()! err=-2")
                                      .Times(isCalledOnce && from == 2 ? 0 : 1));
            toolkit().fail(function, 0);
        }
    }
}

TEST_F(Mode, Toggles) {
    start();
    const auto& move = toolkit().commands.at("Orbikon_ToggleMoveMode");
    const auto& scroll = toolkit().commands.at("Orbikon_ToggleScrollMode");
    struct Case {
        const substitute::Toolkit::Command& command;
        int result;
        bool isOn;
    };
    // The answers of the scroll toggle are the inverse of the move toggle's.
    const Case cases[] = {{move, 1, true}, {move, 0, false}, {move, 1, true}, {scroll, 1, false}, {scroll, 0, true}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.command.action(nullptr, nullptr, nullptr), c.result);
        EXPECT_EQ(toolkit().chkbuttonStates.back(), c.isOn);
        EXPECT_EQ(c.command.value(nullptr, nullptr), -1);
        EXPECT_EQ(toolkit().chkbuttonStates.back(), c.isOn);
        EXPECT_EQ(&c.command == &move ? creo().isComponentMoveOn() : addin->settings.mScrollTreeAndList, c.isOn);
    }
    EXPECT_EQ(toolkit().chkbuttonStates.size(), 2 * std::size(cases));
    for (const ProMode mode : {-1, 0, 1, 4, 5, 6}) {
        toolkit().mode = mode;
        check(false);
        EXPECT_EQ(move.access(0), mode == 5 ? 3 : 1) << mode;
        EXPECT_EQ(scroll.access(0), 3) << mode;
    }
    EXPECT_EQ(substitute::windows().checks, 12);
    // Every callback sees to the timer first.
    EXPECT_EQ(substitute::windows().timersEnsured, static_cast<int>(2 * std::size(cases)) + 12);
}

// Nothing leaves a callback: it is logged, and answered as if there were no plug-in.
TEST_F(Mode, WhatIsThrownEndsACallbackAtItsEdge) {
    start();
    const auto& move = toolkit().commands.at("Orbikon_ToggleMoveMode");
    const auto& scroll = toolkit().commands.at("Orbikon_ToggleScrollMode");
    struct Case {
        const char* name;
        int answer;
        std::function<int()> call;
    };
    const Case cases[] = {
        {"moveToggleAction", 0, [&] { return move.action(nullptr, nullptr, nullptr); }},
        {"scrollToggleAction", 0, [&] { return scroll.action(nullptr, nullptr, nullptr); }},
        {"moveToggleValue", -1, [&] { return move.value(nullptr, nullptr); }},
        {"scrollToggleValue", -1, [&] { return scroll.value(nullptr, nullptr); }},
        {"moveToggleAccess", 1, [&] { return move.access(0); }},
        {"scrollToggleAccess", 3, [&] { return scroll.access(0); }},
        {"onWindowChange", 0, [] { return toolkit().notifications.at(18)(); }},
        {"onModelChange", 0, [] { return toolkit().notifications.at(72)(); }},
    };
    for (const char* function : {"ProCmdChkbuttonValueSet", "ProModeCurrentGet"}) {
        toolkit().onCall(function, [] { throw std::runtime_error("host"); });
    }
    toolkit().mode = 5;
    newLog();
    for (const auto& c : cases) {
        EXPECT_EQ(c.call(), c.answer) << c.name;
        EXPECT_THAT(newLog(), ElementsAre("ERR Error " + std::string(c.name) + "()"));
    }
}

}  // namespace
