#include "common_sources/scroll_plan.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

// The larger of two vertical drives wins, ty inverted; in a tie tz does.
TEST(ScrollPlan, DriveAndPause) {
    struct Case {
        int tx, ty, tz;
        bool isEqual, isVertical;
        int larger, pauseMs;
    };
    const Case cases[] = {
        {0, 0, 7, false, true, 7, 147},       {0, 0, -8, false, true, -8, 146},  {0, 9, 8, false, true, -9, 146},
        {0, -9, 8, false, true, 9, 146},      {0, 9, 9, false, true, 9, 146},    {5, 4, 3, false, false, 5, 148},
        {-5, 4, -3, false, false, -5, 148},   {5, -6, 3, false, true, 6, 147},   {100, 0, -100, true, false, 100, 100},
        {-40, 40, 0, true, false, -40, 130},  {0, 0, 0, true, false, 0, 150},    {0, 0, 296, false, true, 296, 2},
        {0, 0, 298, false, true, 298, 1},     {299, 0, 0, false, false, 299, 1}, {-300, 0, 0, false, false, -300, 1},
        {0, -32768, 0, false, true, 32768, 1}};
    for (const auto& c : cases) {
        const ScrollDrive drive(c.tx, c.ty, c.tz);
        SCOPED_TRACE(testing::Message() << c.tx << " " << c.ty << " " << c.tz);
        EXPECT_EQ(drive.isEqual(), c.isEqual);
        EXPECT_EQ(drive.isVertical(), c.isVertical);
        EXPECT_EQ(drive.larger(), c.larger);
        EXPECT_EQ(drive.pauseMs(), c.pauseMs);
    }
}

TEST(ScrollPlan, RangesThatMakeSense) {
    struct Case {
        ScrollRange range;
        bool isSensible;
        int extraPauseMs;
    };
    const Case cases[] = {{{0, 1, 1, 0}, true, 49},    {{0, 49, 1, 0}, true, 1},  {{0, 50, 1, 0}, true, 0},
                          {{0, 5000, 1, 0}, true, 0},  {{4, 5, 1, 0}, true, 45},  {{5, 5, 1, 0}, false, 45},
                          {{6, 5, 1, 0}, false, 45},   {{0, 0, 1, 0}, false, 50}, {{-1, 5, 1, 0}, false, 45},
                          {{-5, -1, 1, 0}, false, 51}, {{0, 100, 0, 0}, false, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.range.min << " to " << c.range.max);
        EXPECT_EQ(c.range.isSensible(), c.isSensible);
        EXPECT_EQ(c.range.extraPauseMs(), c.extraPauseMs);
    }
}

TEST(ScrollPlan, LineSteps) {
    struct Case {
        int max;
        std::uint32_t page;
        int position;
        int back, forth;
    };
    const Case cases[] = {
        {250, 10, 100, -2, 2},  {1, 1, 0, 0, 1},           {99, 10, 1, -1, 1},        {100, 10, 1, -1, 1},
        {199, 10, 1, -1, 1},    {200, 10, 1, -2, 2},       {999, 10, 1, -9, 9},       {1000, 10, 1, -10, 10},
        {5000, 10, 1, -10, 10}, {INT_MAX, 10, 0, 0, 10},   {100, 10, 90, -1, 1},      {100, 10, 91, -1, 0},
        {100, 101, 0, 0, 0},    {100, UINT_MAX, 5, -1, 0}, {100, 10, INT_MAX, -1, 0}, {100, 10, -5, 0, 1}};
    for (const auto& c : cases) {
        const ScrollRange range{0, c.max, c.page, c.position};
        SCOPED_TRACE(testing::Message() << c.position << " of " << c.max);
        EXPECT_EQ(range.steps(-1), c.back);
        EXPECT_EQ(range.steps(1), c.forth);
        EXPECT_EQ(range.steps(0), 0);
    }
}

TEST(ScrollPlan, WheelMessage) {
    EXPECT_EQ(wheelWParam(-1), 0x00780000u);
    EXPECT_EQ(wheelWParam(300), 0xFF880000u);
    struct Case {
        int x, y;
        std::uint32_t word;
    };
    for (const auto& [x, y, word] : {Case{640, 480, 0x01E00280u},
                                     {0, 0, 0u},
                                     {-1, 5, 0x0005FFFFu},
                                     {5, -1, 0xFFFF0005u},
                                     {-1920, -200, 0xFF38F880u}}) {
        EXPECT_EQ(wheelLParam(x, y), word) << x << ", " << y;
    }
}

}  // namespace
