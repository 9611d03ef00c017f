#include "common_sources/log_limit.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;

TEST(LogLimit, OneLineACauseAndSecond) {
    LogLimit limit;
    const LogLimit::Clock::time_point start = LogLimit::Clock::now();
    struct Case {
        const char* cause;
        int ms;
        bool isDue;
    };
    // A line that is not written does not put off the next.
    const Case cases[] = {{"a", 0, true},    {"a", 0, false},    {"a", 999, false},  {"b", 999, true},
                          {"a", 1000, true}, {"a", 1999, false}, {"b", 1998, false}, {"b", 5000, true}};
    for (const auto& [cause, ms, isDue] : cases) {
        EXPECT_EQ(limit.isDue(cause, start + milliseconds(ms)), isDue) << cause << " " << ms;
    }
}

// More causes than there is room for: none is silenced for good, and the latest are still known.
TEST(LogLimit, ManyCauses) {
    LogLimit limit;
    const LogLimit::Clock::time_point start = LogLimit::Clock::now();
    const std::string names = "abcdefghijklmnopqrstuvwxyz";
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_TRUE(limit.isDue({&names[i], 1}, start + milliseconds(i)));
    }
    EXPECT_FALSE(limit.isDue("z", start + milliseconds(100)));
    EXPECT_FALSE(limit.isDue("n", start + milliseconds(100)));
    EXPECT_TRUE(limit.isDue("a", start + milliseconds(100)));
}

}  // namespace
