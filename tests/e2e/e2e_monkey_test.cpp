// Whatever comes together: random actions from outside, and everything that must hold after each.
#include <gtest/gtest.h>

#include <sstream>

#include "workbench/monkey/monkey.h"

namespace {

TEST(Monkey, FiveThousandActions) {
    std::ostringstream out;
    EXPECT_TRUE(workbench::playMonkey({.seed = 1, .actions = 5000}, out)) << out.str();
}

}  // namespace
