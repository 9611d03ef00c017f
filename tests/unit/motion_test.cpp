// Who gets the cap's motion, and what it does to the selected components.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

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

// One step of a group, worked out with quaternions. The divisors are 1 and 1000.
struct Cap {
    std::array<std::int16_t, 6> axes;
    double turn(std::size_t i) const { return axes[3 + i] / 1000.0; }
};

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
        EXPECT_FALSE(toolkit().isDynamic);
        EXPECT_EQ(toolkit().positionsSetOutsideDynamic, 0);
    }

    static constexpr char kStep[] =
        "transSensBase = 999\nrotSensBase = 1000\nminThreshold = 0\nmaxContMoveTime = 60000\n"
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
    toolkit().components[1] = kIdentity4;
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
        for (int tick = 0; tick < 3; ++tick) creo().doTransform();
        EXPECT_EQ(driver().legacyCom1(), c.legacyCom1) << c.what;
    }
    // One query and one call for each switch, however many ticks there were.
    EXPECT_EQ(driver().calls(Operation::getOption), 3);
    EXPECT_EQ(driver().calls(Operation::setOption), 6);
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
    tick({{5, 0, 0, 0, 0, 0}});
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
    setAxes({1, 0, 0, 0, 0, 0});
    creo().doTransform();
    const double steps = toolkit().components[1][3][0];
    EXPECT_GT(steps, 1.0);
    EXPECT_THAT(newLogWithout({"TRC", "DBG", "TMP"}).back(),
                testing::StartsWith("INF Finished Transformation, cnt: " + std::to_string(static_cast<int>(steps))));
}

TEST_F(Motion, CommandSlotsAreConsumedOnEveryPass) {
    start();
    for (const auto& [function, event] : {std::pair{0, 0}, {7, 0x20009}, {2147483647, 0x12345}}) {
        handOver().applFunction = function;
        handOver().specialEvent = event;
        creo().doTransform();
        EXPECT_EQ(handOver().applFunction, -1);
        EXPECT_EQ(handOver().specialEvent, 0);
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
                cap.axes[i] = -40;
                tick(cap);
                // A model vector times the view is a screen vector, so screen axis i is the model vector that the
                // inverse view turns unit vector i into: column i of the rotation.
                const Matrix4& view = toolkit().view;
                const Vector step{-40 * view[0][i] / scale, -40 * view[1][i] / scale, -40 * view[2][i] / scale};
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

// Origins turn about the centre of their bounding box, x last; axes turn with z last. The columns of the new axes get
// unit length.
TEST_F(Motion, GroupTurnsAboutTheCentreOfItsOrigins) {
    startMoving();
    const Cap cap{{3, -2, 5, 700, -400, 900}};
    toolkit().components = {{1, viewOf({1, 0, 0}, 0.3, 1, {0, 0, 0})},
                            {2, viewOf({0, 0.6, 0.8}, 1.3, 1, {10, 2, -6})},
                            {3, placedAt(4, 8, 100)},
                            {4, placedAt(4, 9, 3)}};
    toolkit().selection = {
        {1}, {2}, {}, {4, 77, 3}};  // a selection without a path, and one of a part below component 4
    const auto before = toolkit().components;
    tick(cap);
    const Vector centre{5, 4.5, -1.5};
    for (const int id : {1, 2, 4}) {
        const Matrix4& old = before.at(id);
        const Matrix4& now = toolkit().components[id];
        Vector o = row(old, 3);
        for (std::size_t k = 0; k < 3; ++k) o[k] -= centre[k];
        o = turned(turned(turned(o, {0, 0, 1}, cap.turn(2)), {0, 1, 0}, cap.turn(1)), {1, 0, 0}, cap.turn(0));
        const Vector expected{o[0] + centre[0] + 3, o[1] + centre[1] - 2, o[2] + centre[2] + 5};
        expectNear(row(now, 3), expected, 1e-12, "origin of " + std::to_string(id));
        for (std::size_t k = 0; k < 3; ++k) {
            Vector e = row(old, k);
            e = turned(turned(turned(e, {1, 0, 0}, cap.turn(0)), {0, 1, 0}, cap.turn(1)), {0, 0, 1}, cap.turn(2));
            expectNear(row(now, k), e, 1e-12, "axis of " + std::to_string(id));
        }
        for (std::size_t k = 0; k < 4; ++k) EXPECT_EQ(now[k][3], k == 3 ? 1.0 : 0.0);
    }
    EXPECT_EQ(toolkit().components[3], before.at(3));
    EXPECT_EQ(toolkit().calls("ProAsmcompRegenerate"), 3);
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
        Matrix4{{{2 / c0, 1 / c1, 0 / c2, 0}, {0 / c0, 3 / c1, 4 / c2, 0}, {1 / c0, 0 / c1, 5 / c2, 0}, {2, 2, 3, 1}}});
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
    startMoving();
    toolkit().components[1] = placedAt(1, 2, 3);
    toolkit().selection = {{1}};
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
        addin->settings.mTraSensBase = c.trans;
        addin->settings.mRotSensBase = c.rot;
        newLog();
        tick({c.axes});
        EXPECT_EQ(toolkit().components[1] != placedAt(1, 2, 3), c.isMoved) << c.trans << " " << c.rot;
        const auto lines = newLog();
        EXPECT_EQ(std::count(lines.begin(), lines.end(),
                             "ERR transSensBase or rotSensBase too small, components are not moved!"),
                  c.isMoved ? 0 : 1);
    }
    // The quotient is an integer one: 1499 / 500 is 2.
    addin->settings.mTraSensBase = 1499;
    toolkit().components[1] = kIdentity4;
    tick({{8, 0, 0, 0, 0, 0}});
    expectNear(toolkit().components[1], placedAt(4, 0, 0));
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
        EXPECT_THAT(newLog(), testing::Contains("ERR No screen axes, components are not moved!"));
    }
}

// No failure of the host leaves a selection array behind, dynamic positioning on, or a component in a wild place. (The
// fixture looks at the arrays.)
TEST_F(Motion, StandsTheFailureOfEachToolkitFunction) {
    startMoving();
    for (const char* function :
         {"ProMdlCurrentGet", "ProSelbufferSelectionsGet", "ProArraySizeGet", "ProSelectionAsmcomppathGet",
          "ProFeatureInit", "ProAssemblyDynPosSet", "ProAsmcompPositionGet", "ProAsmcompPositionSet",
          "ProAsmcompRegenerate", "ProViewMatrixGet", "ProVectorTrfEval", "ProWindowCurrentGet"}) {
        for (const ProError err : {PRO_TK_GENERAL_ERROR, PRO_TK_E_NOT_FOUND}) {
            toolkit().components = {{1, placedAt(1, 2, 3)}, {2, placedAt(3, 2, 1)}};
            toolkit().selection = {{1}, {2}};
            addin->settings.mMaxContMoveTime = 1;
            toolkit().fail(function, err);
            tick({{4, 0, 0, 0, 0, 0}});
            toolkit().fail(function, PRO_TK_NO_ERROR);
            EXPECT_EQ(toolkit().selectionArrays, 0) << function;
            for (auto& [id, position] : toolkit().components) {
                // Moved by whole steps to the right, or not at all.
                const double steps = (position[3][0] - (id == 1 ? 1 : 3)) / 4;
                EXPECT_NEAR(steps, std::round(steps), 1e-9) << function;
                EXPECT_EQ(position[3][1], 2.0) << function;
            }
            // The next tick works again. (Dynamic positioning that could not be switched off is now.)
            toolkit().components[1] = placedAt(0, 0, 0);
            addin->settings.mMaxContMoveTime = 60000;
            tick({{2, 0, 0, 0, 0, 0}});
            expectNear(toolkit().components[1], placedAt(2, 0, 0));
            toolkit().positionsSetOutsideDynamic = 0;  // of the failing switch
        }
    }
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
