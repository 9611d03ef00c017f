// Who gets the cap's motion, and what it does to the selected components.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <thread>

#include "tests/substitutes/system.h"
#include "tests/unit/plugin.h"
#include "tests/unit/quaternion.h"

namespace {

using substitute::kIdentity4;
using substitute::Matrix4;
using substitute::placedAt;
using testing::ElementsAre;
using testing::IsEmpty;
using Vector = std::array<double, 3>;

// Rows of a view that turns the model: what is `axis` by `angle` away from the screen, scaled and shifted.
Matrix4 viewOf(const Vector& axis, double angle, double scale, const Vector& shift) {
    Matrix4 view = kIdentity4;
    for (std::size_t i = 0; i < 3; ++i) {
        Vector unit{};
        unit[i] = 1;
        const Vector row = turned(unit, axis, angle);
        for (std::size_t k = 0; k < 3; ++k) view[i][k] = scale * row[k];
    }
    for (std::size_t k = 0; k < 3; ++k) view[3][k] = shift[k];
    return view;
}

Vector row(const Matrix4& matrix, std::size_t i) { return {matrix[i][0], matrix[i][1], matrix[i][2]}; }

void expectNear(const Vector& actual, const Vector& expected, double tolerance, const std::string& what) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << what << " " << i;
}

void expectNear(const Matrix4& actual, const Matrix4& expected, double tolerance = 1e-12) {
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(actual[i][k], expected[i][k], tolerance) << i << "," << k;
    }
}

// One step of a group; the divisors are 4 (2499 / 500, an integer one) and 1000.
struct Cap {
    std::array<std::int16_t, 6> axes;
    double way(std::size_t i) const { return axes[i] / 4.0; }
    double turn(std::size_t i) const { return axes[3 + i] / 1000.0; }
};

// What one step makes of a component, worked out with quaternions, under the identity view: its origin turns about the
// centre, x last; its axes turn with z last.
Matrix4 moved(const Matrix4& old, const Cap& cap, const Vector& centre) {
    Matrix4 now = old;
    Vector o = row(old, 3);
    for (std::size_t k = 0; k < 3; ++k) o[k] -= centre[k];
    o = turned(turned(turned(o, {0, 0, 1}, cap.turn(2)), {0, 1, 0}, cap.turn(1)), {1, 0, 0}, cap.turn(0));
    for (std::size_t k = 0; k < 3; ++k) {
        now[3][k] = o[k] + centre[k] + cap.way(k);
        Vector e = row(old, k);
        e = turned(turned(turned(e, {1, 0, 0}, cap.turn(0)), {0, 1, 0}, cap.turn(1)), {0, 0, 1}, cap.turn(2));
        now[k] = {e[0], e[1], e[2], 0};
    }
    return now;
}

class Motion : public PlugIn {
  protected:
    // Assembly mode, component move mode on.
    void startMoving(const std::string& program = kStep) {
        start(Threads::none, program);
        toolkit().mode = PRO_MODE_ASSEMBLY;
        creo().checkMode(false);
        creo().toggleComponentMove();
        newLog();
    }
    // One tick that moves exactly that many steps: the cap is released behind the last one.
    void tick(const Cap& cap, int steps = 1) {
        setAxes(cap.axes);
        int left = steps;
        toolkit().onCall("ProWindowRefresh", [this, left]() mutable {
            if (--left == 0) release();
        });
        creo().doTransform();
        toolkit().onCall("ProWindowRefresh", {});
    }
    void setAxes(const std::array<std::int16_t, 6>& a) { PlugIn::setAxes(a[0], a[1], a[2], a[3], a[4], a[5]); }
    void release() { PlugIn::setAxes(0, 0, 0, 0, 0, 0); }
    void endMove() {
        release();
        creo().doTransform();
    }
    ~Motion() override {
        if (addin) endMove();
        EXPECT_FALSE(CreoProxy::isCapMoving());
    }
    // Three components, all selected, that a step about their centre moves each in its own way.
    static void selectThree() {
        toolkit().components = {{1, viewOf({1, 0, 0}, 0.3, 1, {0, 0, 0})},
                                {2, viewOf({0, 0.6, 0.8}, 1.3, 1, {10, 2, -6})},
                                {3, placedAt(4, 9, 3)}};
        toolkit().selection = {{1}, {2}, {3}};
    }

    static constexpr char kStep[] =
        "transSensBase = 2499\nrotSensBase = 1000\nminThreshold = 0\nmaxContMoveTime = 60000\n"
        "scrollTreeAndList = on\nuseMapkeyForCommands = off\n";
};

TEST_F(Motion, DeadBandIncludesItsLimit) {
    start();
    const std::pair<std::array<std::int16_t, 6>, bool> cases[] = {
        {{10, -10, 10, -10, 10, -10}, false}, {{11, 0, 0, 0, 0, 0}, true},     {{0, -11, 0, 0, 0, 0}, true},
        {{0, 0, 11, 0, 0, 0}, true},          {{0, 0, 0, -11, 0, 0}, true},    {{0, 0, 0, 0, 11, 0}, true},
        {{0, 0, 0, 0, 0, -11}, true},         {{-32768, 0, 0, 0, 0, 0}, true}, {{0, 0, 0, 0, 0, 0}, false},
    };
    for (const auto& [axes, isMoving] : cases) {
        setAxes(axes);
        EXPECT_EQ(creo().doTransform(), isMoving) << axes[0] << " " << axes[5];
        EXPECT_EQ(CreoProxy::isCapMoving(), isMoving);
    }
    for (const auto& [threshold, isMoving] : {std::pair{32767, true}, {32768, false}, {2147483647, false}}) {
        addin->settings.mMinThreshold = threshold;
        setAxes({-32768, 0, 0, 0, 0, 0});
        EXPECT_EQ(creo().doTransform(), isMoving) << threshold;
    }
}

TEST_F(Motion, EachChangeOfTheCapIsLoggedOnce) {
    start();
    newLog();
    for (const std::int16_t tx : std::initializer_list<std::int16_t>{0, 50, 60, 70, 0, 0, -50}) {
        setAxes({tx, 0, 0, 0, 0, 0});
        creo().doTransform();
    }
    EXPECT_THAT(newLogWithout({"INF", "DBG"}), ElementsAre("TRC Cap moving.", "TRC Cap released.", "TRC Cap moving."));
    creo().doTransform();
    EXPECT_THAT(newLog(), ElementsAre("INF Do Transformation",
                                      testing::StartsWith("INF Finished Transformation, cnt: 0, timeDiff: ")));
}

TEST_F(Motion, LegacyChannelStaysOnUnlessThePlugInUsesTheMotion) {
    startMoving();
    addin->settings.mMaxContMoveTime = 1;
    struct Case {
        const char* what;
        ProMode mode;
        bool isMoveOn;
        bool isSelected;
        int scrollKind;
        bool isScrollingOn;
        std::int32_t legacyCom1;
    };
    const Case cases[] = {
        {"nothing", 1, false, true, 0, true, 1},          {"selection", 5, true, true, 0, true, 0},
        {"no selection", 5, true, false, 0, true, 1},     {"wrong mode", 1, true, true, 0, true, 1},
        {"not in move mode", 5, false, true, 0, true, 1}, {"tree", 1, false, false, 1, true, 0},
        {"browser", 1, false, false, 2, true, 0},         {"scrolling off", 1, false, false, 1, false, 1},
        {"selection again", 5, true, true, 0, true, 0},   {"end", 1, false, false, 0, true, 1},
    };
    for (const auto& c : cases) {
        toolkit().mode = c.mode;
        creo().checkMode(false);
        if (creo().isComponentMoveOn() != c.isMoveOn) creo().toggleComponentMove();
        toolkit().selection.clear();
        if (c.isSelected) toolkit().selection.push_back({1});
        substitute::windows().scrollKind = c.scrollKind;
        addin->settings.mScrollTreeAndList = c.isScrollingOn;
        toolkit().components[1] = kIdentity4;
        setAxes({4, 0, 0, 0, 0, 0});
        for (int tick = 0; tick < 3; ++tick) creo().doTransform();
        EXPECT_EQ(driver().legacyCom1(), c.legacyCom1) << c.what;
        EXPECT_EQ(toolkit().components[1] != kIdentity4, c.legacyCom1 == 0 && c.scrollKind == 0) << c.what;
    }
    // One query and one call for each switch, however many ticks there were.
    EXPECT_EQ(driver().calls(Operation::getOption), 3);
    EXPECT_EQ(driver().calls(Operation::setOption), 6);
    // Whoever ends the plug-in meanwhile gives the channel back for good.
    substitute::windows().scrollKind = 1;
    toolkit().mode = 5;
    creo().checkMode(false);
    creo().toggleComponentMove();
    toolkit().onCall("ProMdlCurrentGet", [this] { handOver().isEnding = true; });
    creo().doTransform();
    EXPECT_EQ(driver().calls(Operation::getOption), 3);
    toolkit().onCall("ProMdlCurrentGet", {});
    handOver().isEnding = false;
}

TEST_F(Motion, ScrollingTakesTheMotionFirst) {
    startMoving();
    toolkit().components[1] = placedAt(1, 2, 3);
    toolkit().selection = {{1}};
    substitute::windows().scrollKind = 1;
    setAxes({5, -6, 7, 8, 9, 10});
    creo().doTransform();
    EXPECT_THAT(substitute::windows().scrolls, ElementsAre(std::array<int, 3>{5, -6, 7}));
    EXPECT_EQ(toolkit().components[1], placedAt(1, 2, 3));
    // A window that cannot scroll that way leaves the motion to the components.
    substitute::windows().isScrollConsumed = false;
    tick({{20, 0, 0, 0, 0, 0}});
    expectNear(toolkit().components[1], placedAt(6, 2, 3));
}

TEST_F(Motion, NoTimeToMoveMeansNoPassAtAll) {
    startMoving();
    addin->settings.mMaxContMoveTime = 0;
    toolkit().components[1] = kIdentity4;
    toolkit().selection = {{1}};
    substitute::windows().scrollKind = 1;
    handOver().applFunction = 3;
    handOver().specialEvent = 0x2000C;
    setAxes({50, 0, 0, 0, 0, 0});
    EXPECT_FALSE(creo().doTransform());
    EXPECT_EQ(handOver().applFunction, 3);
    EXPECT_EQ(handOver().specialEvent, 0x2000C);
    EXPECT_THAT(substitute::windows().scrolls, IsEmpty());
    EXPECT_EQ(toolkit().components[1], kIdentity4);
    addin->settings.mMaxContMoveTime = 5000;
}

TEST_F(Motion, OneCallGoesOnMovingUntilTheTimeIsOver) {
    startMoving();
    addin->settings.mMaxContMoveTime = 20;
    toolkit().components[1] = kIdentity4;
    toolkit().selection = {{1}};
    setAxes({4, 0, 0, 0, 0, 0});
    int steps = 0;
    toolkit().onCall("ProWindowRefresh", [&] {
        if (++steps == 3) std::this_thread::sleep_for(std::chrono::milliseconds(21));
    });
    creo().doTransform();
    EXPECT_LE(steps, 4);  // the time is looked at in front of each step
    EXPECT_EQ(toolkit().components[1], placedAt(steps, 0, 0));
    EXPECT_THAT(newLogWithout({"TRC", "DBG", "TMP"}).back(),
                testing::StartsWith("INF Finished Transformation, cnt: " + std::to_string(steps) + ","));
}

TEST_F(Motion, CommandSlotsAreConsumedOnEveryPass) {
    start();
    for (const auto& [function, event] : {std::pair{0, 0}, {7, 0x20009}, {2147483647, 0x12345}}) {
        handOver().applFunction = function;
        handOver().specialEvent = event;
        newLog();
        creo().doTransform();
        EXPECT_EQ(handOver().applFunction, -1);
        EXPECT_EQ(handOver().specialEvent, 0);
        const auto lines = newLog();
        EXPECT_THAT(lines,
                    testing::Contains("ERR menuFncIdx (" + std::to_string(function) + "') too big (max. is -1)!"));
        EXPECT_EQ(testing::Value(lines, testing::Contains(testing::StartsWith("TMP Execute special function"))),
                  event > 0);
    }
    for (const auto& [function, event] : {std::pair{-1, 0}, {-2, -5}}) {  // empty and senseless ones are left alone
        handOver().applFunction = function;
        handOver().specialEvent = event;
        newLog();
        creo().doTransform();
        EXPECT_THAT(newLogWithout({"INF", "DBG"}), IsEmpty());
    }
    handOver().specialEvent = 0x2000C;
    creo().doTransform();
    EXPECT_THAT(newLog(), testing::Contains("INF keyEvent: 131084"));
    EXPECT_EQ(toolkit().calls("ProViewRefit"), 1);
}

// Every direction of the cap under views that turn, scale and shift.
TEST_F(Motion, MovesAlongTheScreensAxes) {
    startMoving();
    const double r = 1 / std::sqrt(3.0);
    const std::pair<Vector, double> turns[] = {
        {{0, 0, 1}, 0}, {{0, 0, 1}, std::numbers::pi / 2}, {{1, 0, 0}, -0.7}, {{r, r, -r}, 2.2}};
    for (const auto& [axis, angle] : turns) {
        for (const double scale : {1.0, 1e-3, 250.0}) {
            toolkit().view = viewOf(axis, angle, scale, {400, -300, 12});
            for (std::size_t i = 0; i < 3; ++i) {
                toolkit().components = {{1, placedAt(10, 20, 30)}, {2, placedAt(-1, -2, -3)}};
                toolkit().selection = {{1}, {2}};
                Cap cap{};
                cap.axes[i] = scale == 1.0 ? 1 : -40;
                tick(cap);
                // A model vector times the view is a screen vector, so screen axis i is the model vector that the
                // inverse view turns unit vector i into: column i of the rotation.
                const Matrix4& view = toolkit().view;
                const double way = cap.way(i) / scale;
                const Vector step{way * view[0][i], way * view[1][i], way * view[2][i]};
                expectNear(row(toolkit().components[1], 3), {10 + step[0], 20 + step[1], 30 + step[2]}, 1e-9, "first");
                expectNear(row(toolkit().components[2], 3), {-1 + step[0], -2 + step[1], -3 + step[2]}, 1e-9, "second");
                EXPECT_EQ(row(toolkit().components[1], 0), (Vector{1, 0, 0}));
            }
        }
    }
}

TEST_F(Motion, OneComponentTurnsAboutItsOwnOrigin) {
    startMoving();
    const Vector axis{0.6, 0, 0.8};
    toolkit().components[1] = viewOf({0, 1, 0}, 0.4, 1, {7, -8, 9});
    const Matrix4 before = toolkit().components[1];
    toolkit().selection = {{1}};
    toolkit().view = viewOf(axis, 1.1, 3, {1, 2, 3});
    for (std::size_t i = 0; i < 3; ++i) {
        toolkit().components[1] = before;
        Cap cap{};
        cap.axes[3 + i] = 500;
        tick(cap);
        const Matrix4& view = toolkit().view;
        const Vector screen{view[0][i] / 3, view[1][i] / 3, view[2][i] / 3};
        const Matrix4& after = toolkit().components[1];
        expectNear(row(after, 3), row(before, 3), 1e-12, "origin");
        for (std::size_t k = 0; k < 3; ++k) {
            expectNear(row(after, k), turned(row(before, k), screen, 0.5), 1e-12, "axis " + std::to_string(k));
        }
    }
}

// The columns of the new axes get unit length. Neither a selection without a path nor a component that is not selected
// counts; a part below component 3 stands for the whole of it.
TEST_F(Motion, GroupTurnsAboutTheCentreOfItsOrigins) {
    startMoving();
    selectThree();
    toolkit().components[0] = placedAt(4, 8, 100);
    toolkit().selection = {{1}, {2}, {}, {3, 77, 3}};
    const Cap cap{{3, -2, 5, 700, -400, 900}};
    const auto before = toolkit().components;
    tick(cap);
    for (const int id : {1, 2, 3}) expectNear(toolkit().components[id], moved(before.at(id), cap, {5, 4.5, -1.5}));
    EXPECT_EQ(toolkit().components[0], before.at(0));
    EXPECT_EQ(toolkit().calls("ProAsmcompRegenerate"), 3);
}

// What cannot be read when the centre is taken, or when it is to be moved, stays where it is in this step: it would be
// turned about a centre that is not its own.
TEST_F(Motion, ComponentsThatAreNotPartOfTheCentreStay) {
    startMoving();
    const Cap cap{{4, 8, -4, 300, 200, -100}};
    const Vector centres[] = {{7, 5.5, -1.5}, {2, 4.5, 1.5}, {5, 1, -3}};  // without 1, 2, 3
    for (const char* function : {"ProSelectionAsmcomppathGet", "ProFeatureInit", "ProAsmcompPositionGet"}) {
        for (int call = 1; call <= 6; ++call) {
            SCOPED_TRACE(std::string(function) + " " + std::to_string(call));
            selectThree();
            const auto before = toolkit().components;
            toolkit().fail(function, PRO_TK_GENERAL_ERROR, call, 1);
            tick(cap);
            const int failing = (call - 1) % 3 + 1;
            const Vector centre = call <= 3 ? centres[failing - 1] : Vector{5, 4.5, -1.5};
            for (const auto& [id, position] : before) {
                expectNear(toolkit().components[id], id == failing ? position : moved(position, cap, centre));
            }
        }
    }
}

// Positions that no turn makes sense of: such a component is left alone, for the others it is not there, and one line
// says so for all steps of a movement.
TEST_F(Motion, SenselessPositionsAreLeftAlone) {
    const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    struct Case {
        std::size_t row;
        std::array<double, 4> values;
    };
    const Case cases[] = {{0, {0, 0, 0, 0}},   {1, {1, 0, 0, 0}},    {2, {0, -2, 1e-12, 0}},
                          {0, {nan, 0, 0, 0}}, {2, {0, 0, inf, 0}},  {1, {0, 1e200, 0, 0}},
                          {3, {nan, 0, 0, 1}}, {3, {0, 0, -inf, 1}}, {2, {0, 0, 1e-200, 0}}};
    const Cap cap{{4, 0, 0, 0, 0, 300}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.values));
        startMoving();
        selectThree();
        toolkit().components[2] = kIdentity4;
        toolkit().components[2][c.row] = c.values;
        const auto before = toolkit().components;
        tick(cap, 3);
        EXPECT_EQ(std::memcmp(&toolkit().components[2], &before.at(2), sizeof(Matrix4)), 0);
        Vector centre{2, 4.5, 1.5};
        for (const int id : {1, 3}) {
            Matrix4 expected = before.at(id);
            for (int step = 0; step < 3; ++step) {
                expected = moved(expected, cap, {centre[0] + step * cap.way(0), centre[1], centre[2]});
            }
            expectNear(toolkit().components[id], expected);
        }
        endMove();
        tick(cap);
        EXPECT_THAT(newLogWithout({"TRC", "INF", "DBG", "DCM", "TMP"}),
                    ElementsAre("WRN Component 2 is not moved, its position is degenerate or not finite!",
                                "WRN Component 2 is not moved, its position is degenerate or not finite!"));
        endMove();
        stop();
    }
}

TEST_F(Motion, StepsThatLeadNowhereAreNotMade) {
    const auto expectTold = [&](const std::string& text) {
        const auto before = toolkit().components;
        tick({{32767, 32767, 32767, 0, 0, 300}}, 2);
        const auto lines = newLog();
        EXPECT_EQ(toolkit().components, before) << text;
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "WRN " + text), 1) << text;
        // Without anything to move, the tick is over at once.
        EXPECT_EQ(lines.back().starts_with("INF Finished Transformation, cnt: 0,"), text.starts_with("The selection"));
        endMove();
    };
    startMoving();
    toolkit().components = {{1, placedAt(1.7e308, 0, 0)}, {2, placedAt(-1.7e308, 0, 0)}};
    toolkit().selection = {{1}, {2}};
    expectTold("Component 1 is not moved, it would come to lie nowhere!");
    toolkit().components = {{1, placedAt(1, 2, 3)}};
    addin->settings.mMaxContMoveTime = 1;
    for (const int size : {-1, 100001, 2147483647}) {
        toolkit().arraySize = size;
        expectTold("The selection is not moved, its size makes no sense!");
    }
    toolkit().arraySize.reset();
    toolkit().fail("ProMdlCurrentGet");
    expectTold("The selection is not moved, there is no current model!");
    toolkit().fail("ProMdlCurrentGet", 0);
    toolkit().selection = {std::vector<int>(PRO_MAX_ASSEM_LEVEL + 1, 1)};
    expectTold("Component 1 is not moved, its path is longer than a path can be!");
    toolkit().selection = {std::vector<int>(PRO_MAX_ASSEM_LEVEL, 1)};
    tick({{4, 0, 0, 0, 0, 0}});
    EXPECT_NE(toolkit().components[1], placedAt(1, 2, 3));
}

TEST_F(Motion, ColumnsAndNotRowsGetUnitLength) {
    startMoving();
    Matrix4 skewed = placedAt(1, 2, 3);
    skewed[0] = {2, 1, 0, 9};
    skewed[1] = {0, 3, 4, 9};
    skewed[2] = {1, 0, 5, 9};
    skewed[3][3] = 2;
    toolkit().components[1] = skewed;
    toolkit().selection = {{1}};
    tick({{1, 0, 0, 0, 0, 0}});
    const double c0 = std::sqrt(5.0), c1 = std::sqrt(10.0), c2 = std::sqrt(41.0);
    expectNear(
        toolkit().components[1],
        Matrix4{
            {{2 / c0, 1 / c1, 0 / c2, 0}, {0 / c0, 3 / c1, 4 / c2, 0}, {1 / c0, 0 / c1, 5 / c2, 0}, {1.25, 2, 3, 1}}});
}

TEST_F(Motion, ThousandsOfStepsKeepAnOrthonormalFrame) {
    startMoving();
    toolkit().components = {{1, viewOf({0.36, 0.48, 0.8}, 0.9, 1, {1, 2, 3})}, {2, placedAt(5, 5, 5)}};
    toolkit().selection = {{1}, {2}};
    toolkit().view = viewOf({0.8, 0, 0.6}, 0.5, 20, {0, 0, 0});
    tick({{1, 2, -3, 13, -7, 5}}, 5000);
    for (auto& [id, position] : toolkit().components) {
        for (std::size_t i = 0; i < 3; ++i) {
            for (std::size_t k = 0; k < 3; ++k) {
                double dot = 0;
                for (std::size_t m = 0; m < 3; ++m) dot += position[i][m] * position[k][m];
                EXPECT_NEAR(dot, i == k ? 1.0 : 0.0, 1e-9) << id;
            }
        }
    }
}

TEST_F(Motion, ThousandComponents) {
    startMoving();
    for (int id = 0; id < 1000; ++id) {
        toolkit().components[id] = placedAt(id, 0, 0);
        toolkit().selection.push_back({id});
    }
    tick({{0, 0, 0, 0, 0, 100}}, 3);
    for (const int id : {0, 250, 999}) {
        const Vector end = turned({id - 499.5, 0, 0}, {0, 0, 1}, 0.3);
        expectNear(row(toolkit().components[id], 3), {499.5 + end[0], end[1], 0}, 1e-9, std::to_string(id));
    }
}

TEST_F(Motion, SenselessDivisorsMoveNothing) {
    struct Case {
        std::int32_t trans, rot;
        std::array<std::int16_t, 6> axes;
        bool isMoved;
    };
    const Case cases[] = {
        {499, 1000, {1, 0, 0, 0, 0, 0}, false}, {500, 0, {0, 0, 0, 1, 0, 0}, false},
        {0, 0, {1, 1, 1, 1, 1, 1}, false},      {499, 1000, {0, 0, 0, 1, 0, 0}, false},
        {500, 1000, {1, 0, 0, 0, 0, 0}, true},
    };
    for (const auto& c : cases) {
        startMoving();
        toolkit().components[1] = placedAt(1, 2, 3);
        toolkit().selection = {{1}};
        addin->settings.mTraSensBase = c.trans;
        addin->settings.mRotSensBase = c.rot;
        for (int i = 0; i < 3; ++i) tick({c.axes});
        EXPECT_EQ(toolkit().components[1] != placedAt(1, 2, 3), c.isMoved) << c.trans << " " << c.rot;
        EXPECT_EQ(std::ranges::count(newLog(), "ERR transSensBase or rotSensBase too small, components are not moved!"),
                  c.isMoved ? 0 : 1)
            << "one a movement";
        endMove();
        stop();
    }
}

TEST_F(Motion, DegenerateViewMovesNothing) {
    startMoving();
    toolkit().components[1] = placedAt(1, 2, 3);
    toolkit().selection = {{1}};
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double element : {0.0, nan}) {
        toolkit().view[0] = {element, element, element, 0};
        tick({{1, 0, 0, 0, 0, 0}});
        EXPECT_EQ(toolkit().components[1], placedAt(1, 2, 3));
    }
    EXPECT_EQ(std::ranges::count(newLog(), "ERR No screen axes, components are not moved!"), 1);
}

// No failure of the host, once or for good, at once or behind a call that worked, leaves a selection array behind,
// dynamic positioning on, a component in a wild place or the legacy channel off. (The fixture looks at the arrays and
// at what the host was called with.)
TEST_F(Motion, StandsTheFailureOfEachToolkitFunction) {
    startMoving();
    for (const char* function :
         {"ProMdlCurrentGet", "ProSelbufferSelectionsGet", "ProSelectionarrayFree", "ProArraySizeGet",
          "ProSelectionAsmcomppathGet", "ProFeatureInit", "ProAssemblyDynPosSet", "ProAsmcompPositionGet",
          "ProAsmcompPositionSet", "ProAsmcompRegenerate", "ProViewMatrixGet", "ProVectorTrfEval",
          "ProWindowCurrentGet", "ProWindowRefresh"}) {
        for (const auto& [from, count] : {std::pair{1, 1}, {1, -1}, {2, 1}, {2, -1}, {4, 1}, {5, 1}}) {
            SCOPED_TRACE(std::string(function) + ", " + std::to_string(count) + " from " + std::to_string(from));
            toolkit().components = {{1, placedAt(1, 2, 3)}, {2, placedAt(3, 2, 1)}};
            toolkit().selection = {{1}, {2}};
            addin->settings.mMaxContMoveTime = 1;
            toolkit().fail(function, PRO_TK_E_NOT_FOUND, from, count);
            tick({{16, 0, 0, 0, 0, 0}});
            EXPECT_TRUE(count != 1 || !toolkit().isDynamic) << "one failure is not taken for an answer";
            for (auto& [id, position] : toolkit().components) {
                // Moved by whole steps to the right, or not at all.
                const double steps = (position[3][0] - (id == 1 ? 1 : 3)) / 4;
                EXPECT_EQ(steps, std::round(steps));
                EXPECT_EQ(position[3][1], 2.0);
            }
            // The next tick works again. (Dynamic positioning that could not be switched off is now.)
            toolkit().fail(function, PRO_TK_NO_ERROR);
            toolkit().components[1] = placedAt(0, 0, 0);
            addin->settings.mMaxContMoveTime = 60000;
            tick({{8, 0, 0, 0, 0, 0}});
            expectNear(toolkit().components[1], placedAt(2, 0, 0));
            EXPECT_FALSE(toolkit().isDynamic);
            toolkit().selection.clear();
            creo().doTransform();
            EXPECT_EQ(driver().legacyCom1(), 1);
        }
    }
    toolkit().selectionArrays = 0;  // those that the failing function did not take back
}

// Memory that runs out at any point of a tick ends that tick and nothing else.
TEST_F(Motion, StandsTheFailureOfEachAllocation) {
    startMoving();
    selectThree();
    tick({{4, 0, 0, 0, 0, 300}});  // what stands in for the host allocates in each function's first call
    bool isOver = false;
    for (long allocation = 1; !isOver; ++allocation) {
        ASSERT_LT(allocation, 10000) << "a tick takes ever more";
        handOver().specialEvent = 0x20009;
        handOver().applFunction = 7;
        selectThree();
        toolkit().onCall("ProWindowRefresh", [this] { release(); });
        setAxes({4, 0, 0, 0, 0, 300});
        {
            const substitute::NthFails fails(substitute::Call::allocation, allocation);
            creo().doTransform();
            isOver = !fails.hasFailed();
        }
        ASSERT_EQ(toolkit().selectionArrays, 0) << allocation;
        ASSERT_FALSE(toolkit().isDynamic) << allocation;
        endMove();
        EXPECT_EQ(handOver().specialEvent, 0) << allocation;
        EXPECT_EQ(handOver().applFunction, -1) << allocation;
    }
    // The log's lock is free. (Lines that ran out of memory may be cut off.)
    EXPECT_THAT(linesOf(textOf(productFolder() + kPathSeparator + "plug.log")).back(),
                testing::HasSubstr("| Finished Transformation, cnt: 0"));
}

TEST_F(Motion, WhatIsThrownEndsTheTickAtItsEdge) {
    startMoving();
    toolkit().components[1] = kIdentity4;
    toolkit().selection = {{1}};
    for (const char* function : {"ProArraySizeGet", "ProAsmcompPositionSet", "ProMdlCurrentGet"}) {
        handOver().applFunction = 5;
        setAxes({1, 0, 0, 0, 0, 0});
        toolkit().onCall(function, [] { throw std::runtime_error("host"); });
        newLog();
        creo().doTransform();
        toolkit().onCall(function, {});
        EXPECT_THAT(newLog(), testing::Contains("ERR Error doTransform()"));
        EXPECT_EQ(toolkit().selectionArrays, 0) << function;
        EXPECT_FALSE(toolkit().isDynamic) << function;
    }
}

// The error line names the function's own file and class, so that the file filter shows it.
TEST_F(Motion, ErrorAtTheEdgeIsShownByTheFilterOfItsFile) {
    startMoving();
    LoggingParameters parameters = addin->settings.mLogPars;
    for (const auto& [filter, isShown] : {std::pair{"creo_motion.cpp", true}, {"edge.h", false}}) {
        parameters.mExclFileToLog = filter;
        gLogging.init(parameters);
        newLog();
        toolkit().onCall("ProMdlCurrentGet", [] { throw std::runtime_error("host"); });
        creo().doTransform();
        toolkit().onCall("ProMdlCurrentGet", {});
        EXPECT_EQ(testing::Value(newLog(), testing::Contains("ERR Error doTransform()")), isShown) << filter;
    }
    const std::string written = textOf(productFolder() + kPathSeparator + "plug.log");
    EXPECT_NE(written.find("| *eoProxy::CreoProxy::doTransform| Error doTransform()"), std::string::npos);
}

TEST_F(Motion, WithoutASelectionTheCallEndsAfterOnePass) {
    startMoving();
    setAxes({1, 1, 1, 1, 1, 1});
    EXPECT_TRUE(creo().doTransform());
    EXPECT_EQ(toolkit().calls("ProAssemblyDynPosSet"), 0);
    EXPECT_EQ(toolkit().calls("ProWindowRefresh"), 0);
    EXPECT_EQ(driver().legacyCom1(), 1);
}

}  // namespace
