#include "workbench/host/model/scene.h"

#include <gtest/gtest.h>

#include <map>

#include "workbench/host/model/view.h"
#include "workbench/host/toolkit/selection_arrays.h"

namespace workbench {
namespace {

struct Picture {
    Raster raster;
    std::vector<ComponentPath> paths;
};

Picture paintPicture(const Model& model, DisplayStyle style, std::set<ComponentPath> selection = {}) {
    View view;
    Picture picture;
    view.resize(400, 300);
    picture.raster.resize(400, 300);
    view.setOrientation(findStandardView("top")->orientation);
    view.refit(model.bounds());
    picture.paths = paint({model, view.matrix(), style, std::move(selection), false}, picture.raster);
    return picture;
}

// Two boxes, the second above the first as seen from the top.
Model twoBoxes() {
    Model model;
    for (const int id : {41, 43}) {
        Component box;
        box.id = id;
        box.colour = id == 41 ? 0xFF0000 : 0x0000FF;
        box.solid = id == 41 ? makeBox(100.0, 100.0, 10.0) : makeBox(40.0, 40.0, 10.0);
        box.position = Transform::shift({0.0, 0.0, id == 41 ? 0.0 : 50.0});
        model.components.push_back(box);
    }
    return model;
}

std::map<Colour, int> colourCounts(const Raster& raster) {
    std::map<Colour, int> counts;
    for (int i = 0; i < raster.width() * raster.height(); ++i) ++counts[raster.pixels()[i]];
    return counts;
}

TEST(Scene, TheNearerBodyIsSeenAndPicked) {
    Model model = twoBoxes();
    for (const bool isSwapped : {false, true}) {  // whatever order they are painted in
        if (isSwapped) std::swap(model.components[0], model.components[1]);
        const Picture picture = paintPicture(model, DisplayStyle::SHADING);
        const auto pick = [&](int x, int y) {
            const int item = picture.raster.itemAt(x, y);
            return item == Raster::NO_ITEM ? ComponentPath{} : picture.paths[static_cast<std::size_t>(item)];
        };
        EXPECT_EQ(pick(200, 150), ComponentPath{43});
        EXPECT_EQ(pick(200, 150 + 70), ComponentPath{41});
        EXPECT_EQ(pick(3, 3), ComponentPath{});
        EXPECT_EQ(pick(-1, 500), ComponentPath{});
        const Colour seen = picture.raster.pixels()[150 * 400 + 200];
        EXPECT_EQ(seen & 0xFF0000u, 0u) << "the blue one covers the red one";
        EXPECT_NE(seen & 0x0000FFu, 0u);
    }
}

TEST(Scene, StylesDifferInWhatTheyShowOfTheHiddenEdges) {
    Model model = twoBoxes();
    std::swap(model.components[0].position, model.components[1].position);  // the small box is now covered
    constexpr Colour DARK_EDGE = 0x202830;
    const auto darkPixels = [&](DisplayStyle style) {
        return colourCounts(paintPicture(model, style).raster)[DARK_EDGE];
    };
    const int hiddenRemoved = darkPixels(DisplayStyle::NO_HIDDEN);
    EXPECT_GT(hiddenRemoved, 0);
    EXPECT_GT(darkPixels(DisplayStyle::WIREFRAME), hiddenRemoved);
    EXPECT_EQ(darkPixels(DisplayStyle::HIDDEN_LINE), hiddenRemoved) << "hidden ones are there, but paler";
    EXPECT_GT(colourCounts(paintPicture(model, DisplayStyle::HIDDEN_LINE).raster).size(),
              colourCounts(paintPicture(model, DisplayStyle::NO_HIDDEN).raster).size());
}

TEST(Scene, ASelectedSubAssemblyShowsInAllItsParts) {
    const auto models = makeSampleModels();
    const Model& gearbox = *models.front();
    const auto plain = paintPicture(gearbox, DisplayStyle::NO_HIDDEN);
    const auto selected = paintPicture(gearbox, DisplayStyle::NO_HIDDEN, {{58}});
    const auto onlyRotor = paintPicture(gearbox, DisplayStyle::NO_HIDDEN, {{58, 7}});
    const auto differing = [&](const Picture& a, const Picture& b) {
        int count = 0;
        for (int i = 0; i < 400 * 300; ++i) count += a.raster.pixels()[i] != b.raster.pixels()[i] ? 1 : 0;
        return count;
    };
    EXPECT_GT(differing(plain, onlyRotor), 0);
    EXPECT_GT(differing(plain, selected), differing(plain, onlyRotor));
}

TEST(SelectionArrays, OnlyLiveArraysOfOursAreKnown) {
    SelectionArrays arrays;
    Model model;
    ProSelection* first = arrays.make({{&model, {41}}, {&model, {58, 7}}});
    ProSelection* second = arrays.make({{&model, {}}});
    EXPECT_EQ(arrays.outstanding(), 2u);
    EXPECT_EQ(arrays.sizeOf(first), 2);
    ASSERT_NE(arrays.find(first[1]), nullptr);
    EXPECT_EQ(arrays.find(first[1])->path, (ComponentPath{58, 7}));
    const ProSelection stale = first[1];
    EXPECT_TRUE(arrays.free(first));
    EXPECT_FALSE(arrays.free(first)) << "given back twice";
    EXPECT_EQ(arrays.find(stale), nullptr);
    int stranger = 0;
    EXPECT_FALSE(arrays.free(&stranger));
    EXPECT_FALSE(arrays.free(nullptr));
    EXPECT_EQ(arrays.sizeOf(&stranger), -1);
    EXPECT_TRUE(arrays.free(second));
    EXPECT_EQ(arrays.outstanding(), 0u);
}

}  // namespace
}  // namespace workbench
