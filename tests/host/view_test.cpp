#include "workbench/host/model/view.h"

#include <gtest/gtest.h>

#include <limits>

namespace workbench {
namespace {

Bounds boxAbout(Vec3 centre, double half) {
    Bounds box;
    box.add(centre - Vec3{half, half, half});
    box.add(centre + Vec3{half, half, half});
    return box;
}

void expectNear(Vec3 a, Vec3 b, const char* what) { EXPECT_LT(length(a - b), 1e-9) << what; }

TEST(View, RefitPutsTheBoxInTheMiddleWhateverWasBefore) {
    View view;
    view.resize(800, 600);
    view.pan(1234.0, -50.0);
    view.zoom(17.0);
    const Bounds box = boxAbout({100.0, -20.0, 5.0}, 40.0);
    view.refit(box);
    expectNear(view.matrix().point(box.centre()), {400.0, 300.0, 0.0}, "centre");
    view.turn({0.3, 0.2, 0.1});
    expectNear(view.matrix().point(box.centre()), {400.0, 300.0, 0.0}, "turned about its centre");
}

// The rows of the matrix are the images of the axes, all at the same scale.
TEST(View, StandardViewsLookWhereTheirNamesSay) {
    struct Case {
        const char* name;
        Vec3 right;  // model directions
        Vec3 up;
        Vec3 towards;
    };
    constexpr Vec3 X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1};
    constexpr Vec3 NX{-1, 0, 0}, NY{0, -1, 0}, NZ{0, 0, -1};
    for (const auto& [name, right, up, towards] :
         {Case{"front", X, Z, NY}, Case{"back", NX, Z, Y}, Case{"top", X, Y, Z}, Case{"bottom", X, NY, NZ},
          Case{"right", Y, Z, X}, Case{"left", NY, Z, NX}}) {
        const Transform& orientation = findStandardView(name)->orientation;
        expectNear(orientation.direction(right), X, name);
        expectNear(orientation.direction(up), Y, name);
        expectNear(orientation.direction(towards), Z, name);
    }
}

TEST(View, RowsThatAreNotOfLengthOneAreRefused) {
    View view;
    const Transform before = view.matrix();
    for (const double length : {1.0 + 3e-6, 1.0 - 3e-6, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
        Transform orientation;
        orientation.m[1][1] = length;
        EXPECT_FALSE(view.setOrientation(orientation)) << length;
        EXPECT_EQ(view.matrix().m, before.m);
    }
    Transform nearly;
    nearly.m[1][1] = 1.0 + 5e-7;
    nearly.m[3] = {7.0, 8.0, 9.0, 1.0};  // a shift has no meaning for an orientation
    EXPECT_TRUE(view.setOrientation(nearly));
    EXPECT_EQ(view.orientation().m[3][0], 0.0);
}

}  // namespace
}  // namespace workbench
