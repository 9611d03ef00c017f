// The monkey as a program; ./soak runs it. Exit codes: 0 all held, 1 not, 2 command line not understood.
#include <generated/version.h>

#include <algorithm>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

#include "workbench/monkey/monkey.h"
#include "workbench/pipes/numbers.h"

namespace {

constexpr int kExitBroken = 1;
constexpr int kExitUsage = 2;
constexpr std::string_view kUsage =
    "usage: monkey [--seed N] [--actions N] [--minutes N] [--hidden] [--from N] [--without TEXT]...\n"
    "  --seed N     the first round's seed (1); the same seed gives the same actions\n"
    "  --actions N  actions of a round (5000)\n"
    "  --minutes N  plays rounds with the seeds that follow until the time is over; otherwise one round\n"
    "  --hidden     the host's windows are not shown\n"
    "  --from N     leaves out the actions before the Nth\n"
    "  --without TEXT  leaves out the actions that hold the text\n"
    "  --version    shows the version\n";

workbench::MonkeyOptions parseOptions(int count, char** words) {
    workbench::MonkeyOptions options;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = words[i];
        if (word == "--hidden") {
            options.isHidden = true;
            continue;
        }
        constexpr std::string_view kWithValue[] = {"--seed", "--actions", "--minutes", "--from", "--without"};
        if (std::ranges::find(kWithValue, word) == std::end(kWithValue)) {
            throw std::runtime_error("unknown option " + std::string(word));
        }
        if (++i == count) throw std::runtime_error(std::string(word) + " needs a value");
        if (word == "--without") {
            options.without.emplace_back(words[i]);
            continue;
        }
        const long long number = workbench::parseNumber(words[i], 0, 1000000000);
        if (word == "--seed") options.seed = static_cast<std::uint32_t>(number);
        if (word == "--from") options.from = static_cast<int>(number);
        if (word == "--actions") options.actions = static_cast<int>(number);
        if (word == "--minutes") options.minutes = static_cast<double>(number);
    }
    return options;
}

}  // namespace

int main(int count, char** words) {
    workbench::MonkeyOptions options;
    if (count == 2 && std::string_view(words[1]) == "--help") {
        std::cout << kUsage;
        return 0;
    }
    if (count == 2 && std::string_view(words[1]) == "--version") {
        std::cout << "monkey " << kProductVersion << '\n';
        return 0;
    }
    try {
        options = parseOptions(count, words);
    } catch (const std::exception& failure) {
        std::cerr << "monkey: " << failure.what() << '\n' << kUsage;
        return kExitUsage;
    }
    try {
        return workbench::playMonkey(options, std::cout) ? 0 : kExitBroken;
    } catch (const std::exception& failure) {
        std::cerr << "monkey: " << failure.what() << '\n';
        return kExitBroken;
    }
}
