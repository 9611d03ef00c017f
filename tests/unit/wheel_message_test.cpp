#include "common_sources/wheel_message.h"

#include <gtest/gtest.h>

namespace {

TEST(WheelMessage, Words) {
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
