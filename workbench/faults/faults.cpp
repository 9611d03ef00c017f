#include "workbench/faults/faults.h"

#include <algorithm>
#include <stdexcept>

#include "workbench/pipes/numbers.h"

namespace workbench {
namespace {

constexpr int kForever = std::numeric_limits<int>::max();
constexpr long long kLastCall = 1000000;
constexpr int kAllCalls = 1000;  // per mille
constexpr int kUsualChaos = 10;
constexpr unsigned kChaosHangMs = 50;
constexpr int kFailed = -1;

int number(const std::string& text, long long least, long long greatest) {
    return static_cast<int>(parseNumber(text, least, greatest));
}

const std::string& wordOr(const Faults::Words& words, std::size_t i, const std::string& otherwise) {
    return i < words.size() ? words[i] : otherwise;
}

void requireCount(const Faults::Words& words, std::size_t least, std::size_t greatest, const std::string& usage) {
    if (words.size() < least || words.size() > greatest) throw std::runtime_error("usage: " + usage);
}

}  // namespace

void Faults::request(const std::string& verb, const Words& words) {
    static const std::string kNext = "1";
    const auto function = [&]() -> Function& { return mFunctions[words[0]]; };
    const auto which = [&](std::size_t i) { return parseWhich(wordOr(words, i, kNext), callsOf(words[0])); };
    if (verb == "fail") {
        requireCount(words, 2, 3, "fail NAME WHICH [CODE]");
        const Which failing = which(1);
        function().code = number(wordOr(words, 2, std::to_string(kFailed)), -kForever, kForever);
        function().failing = failing;
    } else if (verb == "hang") {
        requireCount(words, 2, 3, "hang NAME MS [WHICH]");
        const Which hanging = which(2);
        function().hangMs = number(words[1], 0, kLongestHangMs);
        function().hanging = hanging;
    } else if (verb == "pump") {
        requireCount(words, 1, 2, "pump NAME [WHICH]");
        function().pumping = which(1);
    } else if (verb == "chaos") {
        requireCount(words, 1, 2, "chaos SEED [PER_MILLE] | chaos off");
        setChaos(words);
    } else if (verb == "calm") {
        requireCount(words, 0, 0, "calm");
        mPerMille = 0;
        for (auto& [name, ended] : mFunctions) ended.failing = ended.hanging = ended.pumping = {};
    } else {
        throw std::runtime_error("nothing goes wrong by \"" + verb + '"');
    }
}

Faults::Which Faults::parseWhich(const std::string& text, int callsSoFar) {
    if (text == "never") return {};
    if (text == "always") return {1, kForever};
    const std::size_t dash = text.find('-', 1);
    const int first = number(text.substr(0, dash), 1, kLastCall);
    const int last = dash == std::string::npos ? first : number(text.substr(dash + 1), first, kLastCall);
    return {callsSoFar + first, callsSoFar + last};
}

void Faults::setChaos(const Words& words) {
    if (words[0] == "off") {
        mPerMille = 0;
        return;
    }
    const auto seed = static_cast<std::uint32_t>(parseNumber(words[0], 0, std::numeric_limits<std::uint32_t>::max()));
    mPerMille = number(wordOr(words, 1, std::to_string(kUsualChaos)), 0, kAllCalls);
    mRandom.seed(seed);
}

// Most of what goes wrong is a failure.
CallFault Faults::chaos() {
    if (mPerMille == 0 || mRandom() % kAllCalls >= static_cast<unsigned>(mPerMille)) return {};
    switch (mRandom() % 8) {
        case 0:
            return {.hangMs = static_cast<int>(mRandom() % kChaosHangMs) + 1, .isPumping = false, .code = {}};
        case 1:
            return {.hangMs = 0, .isPumping = true, .code = {}};
        default:
            return {.hangMs = 0, .isPumping = false, .code = kFailed};
    }
}

CallFault Faults::enter(const std::string& name) {
    Function& function = mFunctions[name];
    const int call = ++function.calls;
    if (mQuiet > 0) return {};
    CallFault fault = chaos();
    if (function.hanging.holds(call)) fault.hangMs = function.hangMs;
    if (function.pumping.holds(call)) fault.isPumping = true;
    if (function.failing.holds(call)) fault.code = function.code;
    if (fault.code) ++mRefused;
    function.refusedInRow = fault.code ? function.refusedInRow + 1 : 0;
    return fault;
}

int Faults::callsOf(const std::string& name) const {
    const auto found = mFunctions.find(name);
    return found == mFunctions.end() ? 0 : found->second.calls;
}

int Faults::refusedInRow(const std::string& name) const {
    const auto found = mFunctions.find(name);
    return found == mFunctions.end() ? 0 : found->second.refusedInRow;
}

std::vector<std::string> Faults::names() const {
    std::vector<std::string> names;
    for (const auto& [name, function] : mFunctions) names.push_back(name);
    return names;
}

}  // namespace workbench
