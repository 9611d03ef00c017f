// Components moved and turned by the cap.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr int kPump = 58;  // a sub-assembly
constexpr int kBlock = 61;
constexpr int kPlug = 64;
constexpr double kExact = 1e-9;
constexpr double kTolerance = 1e-6;
constexpr double kDegree = std::numbers::pi / 180.0;
constexpr double kTranslationDivisor = 40000 / 500;  // from the setting transSensBase
constexpr double kRotationDivisor = 10000;           // the setting rotSensBase

constexpr double kWay = 70.0;  // model units, at least

struct Direction {
    const char* title;
    const char* name;
    Push push;
    std::size_t axis;
    double sign;
};
constexpr Direction kDirections[] = {
    {"Moved to the right", "screen right", {.tx = 200}, 0, 1},
    {"Moved up", "screen up", {.ty = 200}, 1, 1},
    {"Moved towards the viewer", "towards the viewer", {.tz = 200}, 2, 1},
    {"Moved to the left, down and away at once", "left, down and away", {.tx = -200, .ty = -200, .tz = -200}, 0, -1},
};
constexpr double kPixelTolerance = 1.5;  // two rounded pixels

double greatestWayOfOthers(const Poses& before, const Poses& after, const std::vector<int>& moved) {
    double way = 0.0;
    for (const auto& [id, pose] : before) {
        if (std::ranges::find(moved, id) == moved.end()) way = std::max(way, greatestWay(pose, after.at(id)));
    }
    return way;
}

Vector wantedDirection(const std::array<Vector, 3>& screen, const Push& push) {
    return normalised(screen[0] * push.tx + screen[1] * push.ty + screen[2] * push.tz);
}

// Looks at the assembly from the right for a picture, and back.
void shootFromTheSide(Stage& stage, Step& step, const std::string& caption) {
    const auto rows = stage.viewRows();
    const auto setView = [&](const auto& wanted) {
        std::string command = "view set";
        for (const Vector& row : wanted) {
            for (const double value : row) command += " " + text(value, 15);
        }
        stage.bench().host(command);
    };
    std::array<Vector, 3> side;
    std::ranges::transform(rows, side.begin(), [](const Vector& row) { return turned(row, {0, 1, 0}, -60 * kDegree); });
    setView(side);
    stage.shoot(step, caption);
    setView(rows);
}

void checkMove(Stage& stage, Step& step, const Direction& direction) {
    const auto screen = stage.screenAxes();
    const Poses before = stage.positions();
    const ScreenPoint pixelBefore = stage.onScreen(kPump);
    const double scale = length(stage.view().axes[0]);
    const bool isAlongSight = direction.push.tx == 0 && direction.push.ty == 0;
    stage.shoot(step, "Before.");
    if (isAlongSight) shootFromTheSide(stage, step, "Before, looked at from the right for this picture.");
    stage.pushUntil(step, "While the cap is pushed; it was let go a moment later.", direction.push,
                    [&] { return length(stage.position(kPump).origin - before.at(kPump).origin) > kWay; });
    const Poses after = stage.positions();
    const Vector way = after.at(kPump).origin - before.at(kPump).origin;
    step.tell("Origin of OIL_PUMP.ASM", text(before.at(kPump).origin), text(after.at(kPump).origin));
    step.tell("Way, in the model's axes", "", text(way));
    const Vector wanted = wantedDirection(screen, direction.push);
    const double offAxis = length(way - wanted * dot(way, wanted));
    step.check(std::string("Way along ") + direction.name, "0", text(dot(way, wanted)), "at least 70",
               dot(way, wanted) > kWay);
    step.check("Way aside of it", "", text(offAxis), "0 (1e-9)", offAxis < kExact);
    const double stepLength =
        length({double(direction.push.tx), double(direction.push.ty), double(direction.push.tz)}) / kTranslationDivisor;
    const double steps = length(way) / stepLength;
    step.check("Steps of deflection / (transSensBase / 500)", "", text(steps, 6), "a whole number",
               std::abs(steps - std::round(steps)) < kTolerance);
    const ScreenPoint pixel = stage.onScreen(kPump);
    const Vector inPixels{double(pixel.x - pixelBefore.x), double(pixelBefore.y - pixel.y), 0};
    Vector expected{dot(way, screen[0]), dot(way, screen[1]), 0};
    expected = expected * scale;
    step.check("Shown origin moved by pixels (right, up)", "", text(inPixels[0], 0) + ", " + text(inPixels[1], 0),
               text(std::round(expected[0]), 0) + ", " + text(std::round(expected[1]), 0),
               length(inPixels - expected) < kPixelTolerance);
    const double together = length((after.at(kBlock).origin - before.at(kBlock).origin) - way);
    step.check("COVER_BLOCK.PRT went another way by", "", text(together), "0 (1e-9)", together < kExact);
    const double others = greatestWayOfOthers(before, after, {kPump, kBlock});
    step.check("Components not selected moved by", "", text(others), "0", others == 0.0);
    if (isAlongSight) shootFromTheSide(stage, step, "After, looked at from the right for this picture.");
}

Vector centreOf(const Poses& poses, const std::vector<int>& group) {
    Vector low = poses.at(group.front()).origin;
    Vector high = low;
    for (const int id : group) {
        for (std::size_t k = 0; k < 3; ++k) {
            low[k] = std::min(low[k], poses.at(id).origin[k]);
            high[k] = std::max(high[k], poses.at(id).origin[k]);
        }
    }
    return (low + high) * 0.5;
}

// Greatest change of a distance between two origins, and between the axes of two components.
double greatestDeformation(const Poses& before, const Poses& after, const std::vector<int>& group) {
    double change = 0.0;
    for (const int a : group) {
        for (const int b : group) {
            change = std::max(change, std::abs(length(after.at(a).origin - after.at(b).origin) -
                                               length(before.at(a).origin - before.at(b).origin)));
            for (std::size_t k = 0; k < 3; ++k) {
                change = std::max(change, std::abs(dot(after.at(a).axes[k], after.at(b).axes[k]) -
                                                   dot(before.at(a).axes[k], before.at(b).axes[k])));
            }
        }
    }
    return change;
}

double greatestSkew(const Pose& pose) {
    double skew = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            skew = std::max(skew, std::abs(dot(pose.axes[i], pose.axes[k]) - (i == k ? 1.0 : 0.0)));
        }
    }
    return skew;
}

void turnPair(Stage& stage, Step& step) {
    const std::vector<int> group{kPump, kBlock};
    const auto screen = stage.screenAxes();
    const Poses before = stage.positions();
    const Vector centre = centreOf(before, group);
    stage.shoot(step, "Before.");
    constexpr Push kPush{.rz = 200};
    const auto angle = [&](int id, const Poses& now) {
        return angleAbout(screen[2], before.at(id).origin - centre, now.at(id).origin - centre);
    };
    stage.pushUntil(step, "While the cap is turned: pump and block turn about the point midway between their origins.",
                    kPush, [&] { return angle(kPump, stage.positions()) > 60 * kDegree; });
    const Poses after = stage.positions();
    const double turn = angle(kPump, after);
    step.check("Turn about the screen's normal, degrees", "0", text(turn / kDegree), "more than 60, right-handed",
               turn > 60 * kDegree);
    const double steps = turn / (kPush.rz / kRotationDivisor);
    step.check("Steps of deflection / rotSensBase", "", text(steps, 6), "a whole number",
               std::abs(steps - std::round(steps)) < kTolerance);
    const double centreWay = length(centreOf(after, group) - centre);
    step.check("Centre of the group", text(centre), text(centreOf(after, group)), "unchanged (1e-9)",
               centreWay < kExact);
    double error = 0.0;
    for (const int id : group) {
        const Vector expected = centre + turned(before.at(id).origin - centre, screen[2], turn);
        error = std::max(error, length(expected - after.at(id).origin));
        for (std::size_t k = 0; k < 3; ++k) {
            error = std::max(error, length(turned(before.at(id).axes[k], screen[2], turn) - after.at(id).axes[k]));
        }
    }
    step.check("Origins and axes: difference from that turn", "", text(error), "0 (1e-9)", error < kExact);
    const double others = greatestWayOfOthers(before, after, group);
    step.check("Components not selected moved by", "", text(others), "0", others == 0.0);
}

void turnThree(Stage& stage, Step& step) {
    const std::vector<int> group{kPump, kBlock, kPlug};
    const Poses before = stage.positions();
    stage.shoot(step, "Before.");
    stage.pushUntil(step, "While the cap is turned: the three keep their places to each other.",
                    {.rx = 150, .ry = -120, .rz = 90},
                    [&] { return length(stage.position(kPump).axes[0] - before.at(kPump).axes[0]) > 1.0; });
    const Poses after = stage.positions();
    const double turn = length(after.at(kPump).axes[0] - before.at(kPump).axes[0]);
    step.check("End of the pump's x axis went", "0", text(turn), "more than 1 (60 degrees)", turn > 1.0);
    const double change = greatestDeformation(before, after, group);
    step.check("Distances and angles between the three changed by", "", text(change, 6), "0 (1e-6)",
               change < kTolerance);
    double skew = 0.0;
    for (const int id : group) skew = std::max(skew, greatestSkew(after.at(id)));
    step.check("Axes differ from a right-angled frame by", "", text(skew), "0 (1e-9)", skew < kExact);
}

void turnOne(Stage& stage, Step& step) {
    const Pose before = stage.position(kPump);
    const auto screen = stage.screenAxes();
    stage.shoot(step, "Before.");
    stage.pushUntil(step, "While the cap is turned: the pump turns on the spot.", {.rx = 150}, [&] {
        return angleAbout(screen[0], before.axes[2], stage.position(kPump).axes[2]) > 45 * kDegree;
    });
    const Pose after = stage.position(kPump);
    const double angle = angleAbout(screen[0], before.axes[2], after.axes[2]);
    step.check("Turn about screen right, degrees", "0", text(angle / kDegree), "more than 45, right-handed",
               angle > 45 * kDegree);
    const double way = length(after.origin - before.origin);
    step.check("Origin of OIL_PUMP.ASM", text(before.origin), text(after.origin), "unchanged (1e-9)", way < kExact);
}

}  // namespace

void playTranslation(Stage& stage) {
    stage.open();
    stage.selectForMoving("58/3 61");
    for (const Direction& direction : kDirections) {
        stage.step(direction.title,
                   "A part of OIL_PUMP.ASM, which stands for the whole pump, and COVER_BLOCK.PRT are selected. The cap "
                   "was pushed " +
                       std::string(direction.name) + ".",
                   [&](Step& step) { checkMove(stage, step, direction); });
    }
}

void playGroupTurn(Stage& stage) {
    stage.open();
    stage.selectForMoving("58 61");
    stage.step("Two components turn about their middle", "The cap was turned about the screen's normal (rz = 200).",
               [&](Step& step) { turnPair(stage, step); });
    stage.bench().host("select 58 61 64");
    stage.step("Three components turn about all axes at once",
               "HEX_PLUG.PRT was selected, too; the cap was turned about all three axes.",
               [&](Step& step) { turnThree(stage, step); });
    stage.bench().host("select 58");
    stage.step("One component turns about its own origin", "Only the pump is selected (rx = 150).",
               [&](Step& step) { turnOne(stage, step); });
}

}  // namespace workbench
