// What a user, a device, Creo and bad luck may do next.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace workbench {

// Random numbers that are the same for the same seed on every system.
class Dice {
  public:
    explicit Dice(std::uint32_t seed) : mRandom(seed) {}

    int below(int limit) { return static_cast<int>(mRandom() % static_cast<std::uint32_t>(limit)); }
    int between(int least, int greatest) { return least + below(greatest - least + 1); }
    bool oneIn(int count) { return below(count) == 0; }

    template <typename List>
    const auto& pick(const List& list) {
        return list[static_cast<std::size_t>(below(static_cast<int>(std::size(list))))];
    }

  private:
    std::mt19937 mRandom;
};

// One line: "host REQUEST" or "daemon REQUEST" for the controls of these programs, "start daemon" (when none runs),
// "kill daemon", "pause MS". It depends on the dice alone, so the same seed gives the same actions.
std::string nextAction(Dice& dice);

// Commands that buttons are bound to, in the order of the menu file.
const std::vector<std::string>& boundCommands();

}  // namespace workbench
