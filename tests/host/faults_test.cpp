// What is told to go wrong goes wrong, and nothing else; bad matrices are told from good ones.
#include "workbench/faults/faults.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

#include "workbench/host/toolkit/matrix_check.h"

namespace workbench {
namespace {

// The calls of ten that fail, hang or pump, as "f", "h", "p".
std::string callsOf(Faults& faults, const std::string& name) {
    std::string text;
    for (int i = 0; i < 10; ++i) {
        const CallFault fault = faults.enter(name);
        text += fault.code ? 'f' : fault.hangMs > 0 ? 'h' : fault.isPumping ? 'p' : '.';
    }
    return text;
}

TEST(Faults, StrikeTheCallsThatAreNamed) {
    const struct {
        const char* verb;
        Faults::Words words;
        const char* struck;
    } cases[] = {
        {"fail", {"X", "3"}, "..f......."},       {"fail", {"X", "2-4", "-5"}, ".fff......"},
        {"fail", {"X", "always"}, "ffffffffff"},  {"fail", {"X", "never"}, ".........."},
        {"fail", {"Y", "1"}, ".........."},       {"hang", {"X", "20"}, "h........."},
        {"hang", {"X", "20", "2"}, ".h........"}, {"pump", {"X", "4"}, "...p......"},
        {"chaos", {"off"}, ".........."},
    };
    for (const auto& [verb, words, struck] : cases) {
        Faults faults;
        callsOf(faults, "X");  // counting begins with the request
        faults.request(verb, words);
        EXPECT_EQ(callsOf(faults, "X"), struck) << verb << ' ' << words.back();
    }
    Faults faults;
    faults.request("fail", {"X", "1-2", "-5"});
    EXPECT_EQ(faults.enter("X").code, -5);
    EXPECT_EQ(faults.enter("X").code, -5);
    EXPECT_EQ(faults.refusedInRow("X"), 2);
    EXPECT_FALSE(faults.enter("X").code);
    EXPECT_EQ(faults.refusedInRow("X"), 0);
    EXPECT_EQ(faults.callsOf("X"), 3);
}

TEST(Faults, ChaosFollowsItsSeedUntilCalm) {
    const auto withChaos = [](const char* seed) {
        Faults faults;
        faults.request("chaos", {seed, "500"});
        return callsOf(faults, "X") + callsOf(faults, "Y");
    };
    EXPECT_EQ(withChaos("7"), withChaos("7"));
    EXPECT_NE(withChaos("7"), withChaos("8"));
    Faults faults;
    faults.request("chaos", {"7", "1000"});
    faults.request("fail", {"X", "always"});
    {
        const Faults::Quiet quiet(faults);
        EXPECT_EQ(callsOf(faults, "X"), "..........");
    }
    EXPECT_EQ(callsOf(faults, "X").find('.'), std::string::npos);
    faults.request("calm", {});
    EXPECT_EQ(callsOf(faults, "X"), "..........");
}

TEST(Faults, BadRequestsAreRefused) {
    Faults faults;
    const std::pair<const char*, Faults::Words> cases[] = {
        {"fail", {}},           {"fail", {"X"}},        {"fail", {"X", "0"}}, {"fail", {"X", "4-2"}},
        {"fail", {"X", "one"}}, {"hang", {"X", "-1"}},  {"pump", {}},         {"chaos", {"x"}},
        {"chaos", {}},          {"chaos", {"1", "-1"}}, {"calm", {"X"}},      {"jump", {"X"}},
    };
    for (const auto& [verb, words] : cases) EXPECT_THROW(faults.request(verb, words), std::runtime_error) << verb;
    EXPECT_EQ(callsOf(faults, "X"), "..........");
}

TEST(Matrices, BadOnesAreToldFromGoodOnes) {
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    const struct {
        int row, column;
        double value;
        bool isGood;
    } cases[] = {
        {3, 0, 1e9, true},  {0, 0, 1 + 1e-8, true}, {0, 0, 1.001, false},    {1, 0, 0.01, false},
        {2, 2, 0.0, false}, {3, 1, kNaN, false},    {1, 1, INFINITY, false},
    };
    for (const auto& [row, column, value, isGood] : cases) {
        ProMatrix matrix = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};
        matrix[row][column] = value;
        EXPECT_EQ(!matrixFault(matrix), isGood) << row << ' ' << column << ' ' << value;
    }
}

}  // namespace
}  // namespace workbench
