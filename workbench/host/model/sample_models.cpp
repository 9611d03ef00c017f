// The models that the host opens with: a gear box of turned and milled parts, one of its parts, and a bracket that is
// being sketched. Identifiers look like feature numbers: not consecutive, and unrelated to the order of the list.
#include <cmath>
#include <numbers>

#include "workbench/host/model/model.h"

namespace workbench {
namespace {

constexpr unsigned STEEL = 0xB4BCC6;
constexpr unsigned CAST = 0x8FA7B8;
constexpr unsigned BRASS = 0xC9AE62;
constexpr unsigned DARK = 0x7D8288;
constexpr unsigned PAINT = 0x6F9A86;
constexpr unsigned COPPER = 0xB9835F;
constexpr double RIGHT_ANGLE = std::numbers::pi / 2.0;

Component part(int id, const char* name, Solid solid, const Transform& position, unsigned colour) {
    Component component;
    component.id = id;
    component.name = name;
    component.solid = std::move(solid);
    component.position = position;
    component.colour = colour;
    return component;
}

// Turned so that the body's z axis points along x.
Transform lying(Vec3 at) { return Transform::turn({0.0, 1.0, 0.0}, RIGHT_ANGLE) * Transform::shift(at); }

Solid housing() {
    Solid solid = makeBox(260.0, 160.0, 14.0);
    const Solid cheek = makeBox(14.0, 160.0, 70.0);
    solid.add(cheek, Transform::shift({-110.0, 0.0, 14.0}));
    solid.add(cheek, Transform::shift({110.0, 0.0, 14.0}));
    return solid;
}

Solid flangedBearing() {
    Solid solid = makeRing(32, 17.0, 30.0, 16.0);
    solid.add(makeRing(32, 30.0, 38.0, 5.0));
    return solid;
}

Component oilPump() {
    Component pump = part(58, "OIL_PUMP.ASM", {}, Transform::shift({30.0, -128.0, 14.0}), PAINT);
    pump.children.push_back(part(3, "PUMP_BODY.PRT", makePrism(8, 32.0, 40.0), {}, PAINT));
    Solid rotor = makeGear(7, 12.0, 18.0, 14.0);
    rotor.add(makePrism(24, 6.0, 30.0), Transform::shift({0.0, 0.0, 14.0}));
    pump.children.push_back(part(7, "PUMP_ROTOR.PRT", std::move(rotor), Transform::shift({0.0, 0.0, 40.0}), COPPER));
    return pump;
}

std::unique_ptr<Model> gearbox() {
    auto model = std::make_unique<Model>();
    model->name = "GEARBOX.ASM";
    auto& list = model->components;
    list.push_back(part(39, "HOUSING.PRT", housing(), {}, CAST));
    list.push_back(part(41, "DRIVE_SHAFT.PRT", makeShaft({{11, 60}, {17, 40}, {22, 90}, {17, 60}, {9, 70}}),
                        lying({-165.0, -35.0, 62.0}), STEEL));
    list.push_back(part(43, "PINION.PRT", makeGear(14, 24.0, 31.0, 36.0), lying({-40.0, -35.0, 62.0}), BRASS));
    list.push_back(part(46, "OUTPUT_SHAFT.PRT", makeShaft({{15, 50}, {20, 190}, {24, 20}, {13, 60}}),
                        lying({-130.0, 44.0, 62.0}), STEEL));
    list.push_back(part(47, "WHEEL.PRT", makeGear(26, 43.0, 50.0, 30.0), lying({-37.0, 44.0, 62.0}), BRASS));
    list.push_back(part(52, "BEARING_LEFT.PRT", flangedBearing(), lying({-127.0, -35.0, 62.0}), DARK));
    list.push_back(part(53, "BEARING_RIGHT.PRT", flangedBearing(), lying({112.0, 44.0, 62.0}), DARK));
    list.push_back(oilPump());
    list.push_back(
        part(61, "COVER_BLOCK.PRT", makeBox(70.0, 46.0, 34.0), Transform::shift({62.0, -42.0, 14.0}), PAINT));
    list.push_back(part(64, "HEX_PLUG.PRT", makePrism(6, 15.0, 22.0), Transform::shift({-90.0, -104.0, 0.0}), COPPER));
    return model;
}

std::unique_ptr<Model> shaftPart() {
    auto model = std::make_unique<Model>();
    model->name = "DRIVE_SHAFT.PRT";
    model->mode = PRO_MODE_PART;
    model->window = 2;
    model->components.push_back(
        part(5, "REVOLVE_1", makeShaft({{11, 60}, {17, 40}, {22, 90}, {17, 60}, {9, 70}}), lying({}), STEEL));
    return model;
}

std::unique_ptr<Model> sketchedPart() {
    auto model = std::make_unique<Model>();
    model->name = "BRACKET.PRT";
    model->mode = PRO_MODE_PART;
    model->isSketchActive = true;
    model->window = 3;
    model->components.push_back(part(5, "EXTRUDE_1", makeBox(120.0, 80.0, 12.0), {}, CAST));
    Solid section;  // the open sketch: lines only
    section.points = {{-40, -25, 12}, {40, -25, 12}, {40, 5, 12}, {10, 25, 12}, {-40, 25, 12}};
    section.edges = {{0, 1}, {1, 2}, {2, 3}, {3, 4}, {4, 0}};
    model->components.push_back(part(9, "SKETCH_1", std::move(section), {}, 0xC03030));
    return model;
}

}  // namespace

std::vector<std::unique_ptr<Model>> makeSampleModels() {
    std::vector<std::unique_ptr<Model>> models;
    models.push_back(gearbox());
    models.push_back(shaftPart());
    models.push_back(sketchedPart());
    return models;
}

void fillWithComponents(Model& assembly, int count) {
    constexpr double PITCH = 30.0;
    constexpr int FIRST_ID = 40;
    constexpr unsigned COLOURS[] = {STEEL, BRASS, PAINT, COPPER, CAST};
    const int side = std::max(1, static_cast<int>(std::ceil(std::cbrt(count))));
    assembly.components.clear();
    for (int i = 0; i < count; ++i) {
        const Vec3 at{PITCH * (i % side), PITCH * (i / side % side), PITCH * (i / side / side)};
        const int shape = i % 5;
        Solid solid = shape == 0 ? makeBox(16.0, 16.0, 16.0) : makePrism(shape + 2, 9.0, 16.0);
        const std::string name = "BLOCK_" + std::to_string(i + 1) + ".PRT";
        assembly.components.push_back(
            part(FIRST_ID + i, name.c_str(), std::move(solid), Transform::shift(at), COLOURS[shape]));
    }
}

}  // namespace workbench
