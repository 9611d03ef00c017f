#include "workbench/host/commands/key_sequence.h"

#include <algorithm>

namespace workbench {

KeySequence& keySequence() {
    static KeySequence sequence;
    return sequence;
}

void KeySequence::define(Mapkey mapkey) {
    const auto same =
        std::find_if(mMapkeys.begin(), mMapkeys.end(), [&](const auto& m) { return m.keys == mapkey.keys; });
    if (same != mMapkeys.end()) {
        *same = std::move(mapkey);
    } else {
        mMapkeys.push_back(std::move(mapkey));
    }
    mTyped.clear();
}

const Mapkey* KeySequence::type(char key, std::uint32_t nowMs) {
    if (nowMs - mLastMs > PAUSE_MS) mTyped.clear();
    mLastMs = nowMs;
    mTyped += key;
    if (!isBeginning()) mTyped = key;  // a wrong key may be the first of the right ones
    const Mapkey* mapkey = complete();
    if (mapkey != nullptr || !isBeginning()) mTyped.clear();
    return mapkey;
}

const Mapkey* KeySequence::complete() const {
    const auto found = std::find_if(mMapkeys.begin(), mMapkeys.end(), [&](const auto& m) { return m.keys == mTyped; });
    return found == mMapkeys.end() ? nullptr : &*found;
}

bool KeySequence::isBeginning() const {
    return std::any_of(mMapkeys.begin(), mMapkeys.end(), [&](const auto& m) { return m.keys.starts_with(mTyped); });
}

}  // namespace workbench
