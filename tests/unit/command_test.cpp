// What a device button or a special event makes the host do.
#include <cmath>

#include "tests/substitutes/system.h"
#include "tests/unit/plugin.h"

namespace {

using substitute::kIdentity4;
using substitute::Matrix4;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kMenu[] =
    "[Modes]\nSketcher = 1\n \n[MenuBar]\n0Orbikon = {}\n1Scroll = {}OB_Toggle_Scroll_Mode|x\n"
    "1Move = {+ 6}OB_Toggle_Object_Move_Mode|x\n0View = {}\nShaded = {}ProCmdEnvMdlDisp*Shading|x\n"
    "New = {}ProCmdModelNew|x\nStar = {}ProCmdX*|x\n";

class Command : public PlugIn {
  protected:
    void startWithMenu(const std::string& program = kProgram) {
        start(Threads::none, program);
        writeMenuFile(kMenu);
        creo().loadMenufile();
        newLog();
    }
};

TEST_F(Command, BecomesAMacro) {
    startWithMenu();
    for (const std::uint32_t index : {2u, 3u, 4u}) creo().execApplFunction(index);
    EXPECT_THAT(toolkit().macros, ElementsAre(L"~ Command `ProCmdEnvMdlDisp` `Shading`;",
                                              L"~ Command `ProCmdModelNew`;", L"~ Command `ProCmdX`;"));
    EXPECT_THAT(newLog(), ElementsAre("TRC macro: ~ Command `ProCmdEnvMdlDisp` `Shading`;",
                                      "TRC macro: ~ Command `ProCmdModelNew`;", "TRC macro: ~ Command `ProCmdX`;"));
}

TEST_F(Command, OwnTogglesNeverReachTheHost) {
    startWithMenu();
    for (const bool isSecond : {false, true}) {
        creo().execApplFunction(0);
        EXPECT_EQ(addin->settings.mScrollTreeAndList, isSecond);
        creo().execApplFunction(1);
        EXPECT_EQ(creo().isComponentMoveOn(), !isSecond);
    }
    EXPECT_THAT(toolkit().macros, IsEmpty());
    EXPECT_THAT(toolkit().chkbuttonStates, IsEmpty());
}

TEST_F(Command, IndexBeyondTheTableIsRejected) {
    start();
    newLog();
    creo().execApplFunction(0);
    creo().execApplFunction(4294967295u);
    EXPECT_THAT(newLog(), ElementsAre("ERR menuFncIdx (0') too big (max. is -1)!",
                                      "ERR menuFncIdx (4294967295') too big (max. is -1)!"));
    writeMenuFile(kMenu);
    creo().loadMenufile();
    newLog();
    creo().execApplFunction(5);
    EXPECT_THAT(newLog(), ElementsAre("ERR menuFncIdx (5') too big (max. is 4)!"));
}

TEST_F(Command, RefusedMacroIsReportedOnTheErrorStreamOnly) {
    startWithMenu();
    toolkit().fail("ProMacroLoad", -2);
    testing::internal::CaptureStderr();
    creo().execApplFunction(3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error in ProMacroLoad()! err=-2\n");
    EXPECT_THAT(newLogWithout({"TRC"}), IsEmpty());
}

TEST_F(Command, GoesThroughTheMapkeyWhenItCouldBeDefined) {
    for (const bool isAccepted : {true, false}) {
        substitute::windows().isMapkeyAccepted = isAccepted;
        substitute::windows().mapkeyMacros.clear();
        toolkit().macros.clear();
        startWithMenu("scrollTreeAndList = on\nuseMapkeyForCommands = on\n");
        creo().execApplFunction(3);
        EXPECT_EQ(substitute::windows().mapkeyMacros.size(), isAccepted ? 1u : 0u);
        EXPECT_EQ(toolkit().macros.size(), isAccepted ? 0u : 1u);
        stop();
    }
    EXPECT_THAT(substitute::windows().mapkeyMacros, IsEmpty());
}

// The rows of the view are the screen axes' components, so turning about an axis by an angle puts the rotation's
// columns there. The angles are not exactly a quarter and a half turn.
TEST_F(Command, StandardViews) {
    start();
    const double q = 1.570795, h = 3.14159;
    const auto aboutX = [](double a) {
        return Matrix4{
            {{1, 0, 0, 0}, {0, std::cos(a), std::sin(a), 0}, {0, -std::sin(a), std::cos(a), 0}, {0, 0, 0, 1}}};
    };
    const auto aboutY = [](double a) {
        return Matrix4{
            {{std::cos(a), 0, -std::sin(a), 0}, {0, 1, 0, 0}, {std::sin(a), 0, std::cos(a), 0}, {0, 0, 0, 1}}};
    };
    const std::pair<std::int32_t, Matrix4> cases[] = {
        {0x20009, kIdentity4}, {0x2000A, aboutY(q)},  {0x2000B, aboutX(-q)},
        {0x20016, aboutY(h)},  {0x20017, aboutY(-q)}, {0x20018, aboutX(q)},
    };
    for (const auto& [code, expected] : cases) {
        for (const std::uint8_t contextFlag : std::initializer_list<std::uint8_t>{0, 1, 200}) {
            toolkit().view = {};
            const int refreshes = toolkit().calls("ProWindowRefresh"), refits = toolkit().calls("ProViewRefit");
            handOver().contextFlag = contextFlag;
            newLog();
            creo().execSpecialApplFunction(code);
            for (std::size_t i = 0; i < 4; ++i) {
                // Tight enough to tell the truncated angles from full ones.
                for (std::size_t k = 0; k < 4; ++k) {
                    EXPECT_NEAR(toolkit().view[i][k], expected[i][k], 1e-12) << std::hex << code;
                }
            }
            EXPECT_EQ(toolkit().calls("ProWindowRefresh"), refreshes + 1);
            EXPECT_EQ(toolkit().calls("ProViewRefit"), refits + (contextFlag != 0));
            EXPECT_THAT(newLog(), ElementsAre("TMP Execute special function " + std::to_string(code) + " ... "));
        }
    }
}

TEST_F(Command, FitAndUnknownSpecialEvents) {
    start();
    struct Case {
        std::int32_t code;
        std::uint8_t contextFlag;
        int refits;
        bool isUnknown;
    };
    const Case cases[] = {{0x2000C, 0, 1, false}, {0x2000C, 1, 1, false}, {0x2000D, 0, 0, true},
                          {0x20008, 1, 1, true},  {0x20015, 0, 0, true},  {0x20019, 1, 1, true}};
    for (const auto& c : cases) {
        const int before = toolkit().calls("ProViewRefit");
        handOver().contextFlag = c.contextFlag;
        newLog();
        creo().execSpecialApplFunction(c.code);
        EXPECT_EQ(toolkit().calls("ProViewRefit") - before, c.refits) << std::hex << c.code;
        const auto lines = newLog();
        EXPECT_EQ(lines.size(), c.isUnknown ? 2u : 1u);
        if (c.isUnknown) {
            EXPECT_EQ(lines.back(), "ERR Unknown special command '" + std::to_string(c.code) + "' found!");
        }
    }
    EXPECT_EQ(toolkit().calls("ProViewMatrixSet"), 0);
}

TEST_F(Command, RefusedViewsAreLogged) {
    start();
    newLog();
    toolkit().fail("ProViewMatrixSet");
    toolkit().fail("ProWindowCurrentGet");  // and no other window is refreshed instead
    toolkit().fail("ProViewRefit");
    handOver().contextFlag = 1;
    const substitute::ClockStands now;
    for (int i = 0; i < 2; ++i) creo().execSpecialApplFunction(0x2000A);  // one line a second
    EXPECT_EQ(toolkit().calls("ProWindowRefresh"), 0);
    EXPECT_THAT(newLogWithout({"TMP"}),
                ElementsAre("ERR Error in ProViewMatrixSet()! err=-1", "ERR Error in ProWindowCurrentGet()! err=-1",
                            "ERR Error in ProViewRefit()! err=-1"));
}

}  // namespace
