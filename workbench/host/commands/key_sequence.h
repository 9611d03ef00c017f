// Recognises mapkeys in what is typed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/host/commands/macro_text.h"

namespace workbench {

class KeySequence {
  public:
    static constexpr std::uint32_t PAUSE_MS = 3000;  // a longer pause between two keys begins anew

    // Replaces the definition with the same keys.
    void define(Mapkey mapkey);
    const std::vector<Mapkey>& mapkeys() const { return mMapkeys; }

    // One typed character. Answers the mapkey that it completes, null for none; valid until the next definition.
    const Mapkey* type(char key, std::uint32_t nowMs);

  private:
    const Mapkey* complete() const;
    bool isBeginning() const;

    std::vector<Mapkey> mMapkeys;
    std::string mTyped;
    std::uint32_t mLastMs = 0;
};

KeySequence& keySequence();  // of the host

}  // namespace workbench
