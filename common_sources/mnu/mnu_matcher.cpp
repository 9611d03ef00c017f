#include "common_sources/mnu/mnu_matcher.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "common_sources/mnu/mnu_text.h"

namespace {

constexpr std::size_t kCancelStride = std::size_t{64} * 1024;  // characters between two looks at the cancel flag

constexpr std::size_t kMostShared = 16;   // characters, so that each place costs little at worst
constexpr std::size_t kPlaces = 16;       // that are looked at together
constexpr std::uint32_t kMostTries = 64;  // for a place among other states

}  // namespace

NameFinder::NameFinder() : mTree(1) {}

NameFinder::NameId NameFinder::add(std::string_view name) {
    mIsPrepared = false;
    Node node = kRoot;
    for (const char c : name) {
        const char upper = asciiUpper(c);
        Node child = childOf(node, upper);
        if (child == kRoot) {
            child = static_cast<Node>(mTree.size());
            mTree.push_back({.last = upper, .nextSibling = mTree[node].firstChild});
            mTree[node].firstChild = child;
        }
        node = child;
    }
    if (mTree[node].name == kNoName) {
        mTree[node].name = static_cast<NameId>(mNames.size());
        mNames.push_back({.length = static_cast<std::uint32_t>(name.size())});
    }
    return mTree[node].name;
}

inline NameFinder::StateId NameFinder::step(StateId state, char c) const {
    for (;;) {
        const StateId child = mStates[state].base + kindOf(c);
        if (mStates[child].parent == state) return child;
        if (state == kStart) return kStart;
        state = mEndings[state].fallback;
    }
}

std::vector<NameFinder::Hit> NameFinder::find(std::string_view text, const std::atomic<bool>* cancel) {
    if (!mIsPrepared) prepare();
    ++mPass;
    std::vector<Hit> hits;
    StateId state = kStart;
    std::size_t nextLook = 0;  // at the flag
    for (std::size_t i = 0; i < text.size();) {
        if (i >= nextLook) {
            if (cancel && cancel->load(std::memory_order_relaxed)) break;
            nextLook = i + kCancelStride;
        }
        if (state == kStart && mShared != kStart) {
            i = nextShared(text, i);
            if (i == text.npos) break;
            i += mSharedText.size();
            state = mShared;
        } else {
            state = step(state, text[i++]);
        }
        // A name that was reported in this pass has reported the shorter ones it ends with, too.
        for (NameId id = mEndings[state].longest; id != kNoName && mNames[id].lastPass != mPass; id = mNames[id].next) {
            mNames[id].lastPass = mPass;
            hits.push_back({id, i - mNames[id].length});
        }
    }
    return hits;
}

NameFinder::Node NameFinder::childOf(Node node, char c) const {
    Node child = mTree[node].firstChild;
    while (child != kRoot && mTree[child].last != c) child = mTree[child].nextSibling;
    return child;
}

void NameFinder::prepare() {
    findKinds();
    makeStates();
    linkFallbacks();
    findSharedBeginning();
    mIsPrepared = true;
}

// In the order of the characters: digits, say, are close together in the states, too.
void NameFinder::findKinds() {
    std::array<bool, 256> isUsed{};
    for (Node node = kRoot + 1; node < mTree.size(); ++node)
        isUsed[static_cast<unsigned char>(mTree[node].last)] = true;
    mKindCount = 1;
    for (std::size_t c = 0; c < 256; ++c) mKinds[c] = isUsed[c] ? static_cast<Kind>(mKindCount++) : Kind{0};
    for (unsigned char c = 'a'; c <= 'z'; ++c) mKinds[c] = kindOf(asciiUpper(static_cast<char>(c)));
}

void NameFinder::makeStates() {
    mStates.assign(1, {});
    mEndings.assign(1, {});
    StateId firstGap = 1;
    std::vector<std::pair<Node, StateId>> open{{kRoot, kStart}};
    while (!open.empty()) {
        const auto [node, state] = open.back();
        open.pop_back();
        mEndings[state].longest = mTree[node].name;
        while (firstGap < mStates.size() && mStates[firstGap].parent != kNone) ++firstGap;
        const StateId base = findBase(node, firstGap);
        mStates[state].base = base;
        for (Node child = mTree[node].firstChild; child != kRoot; child = mTree[child].nextSibling) {
            const StateId id = base + kindOf(mTree[child].last);
            mStates[id].parent = state;
            open.emplace_back(child, id);
        }
    }
}

// A base for which the places of all children are gaps; behind all states when it is not found soon.
NameFinder::StateId NameFinder::findBase(Node node, StateId firstGap) {
    const Node first = mTree[node].firstChild;
    if (first == kRoot) return 0;
    const Kind kind = kindOf(mTree[first].last);
    const auto isGap = [this](std::size_t place) { return place >= mStates.size() || mStates[place].parent == kNone; };
    const auto fits = [&](StateId base) {
        Node child = first;
        while (child != kRoot && isGap(base + kindOf(mTree[child].last))) child = mTree[child].nextSibling;
        return child == kRoot;
    };
    StateId base = firstGap > kind ? firstGap - kind : 0;
    const StateId end = base + kMostTries;
    while (base != end && !fits(base)) ++base;
    if (base == end) base = static_cast<StateId>(mStates.size());
    if (mStates.size() < base + mKindCount) {
        mStates.resize(base + mKindCount);
        mEndings.resize(base + mKindCount);
    }
    return base;
}

// Breadth first: a state's fallback is shorter than the state, so it is linked already.
void NameFinder::linkFallbacks() {
    std::vector<std::pair<Node, StateId>> level{{kRoot, kStart}};
    while (!level.empty()) {
        std::vector<std::pair<Node, StateId>> below;
        for (const auto& [parent, parentState] : level) {
            for (Node node = mTree[parent].firstChild; node != kRoot; node = mTree[node].nextSibling) {
                const char last = mTree[node].last;
                const StateId id = step(parentState, last);
                Ending& ending = mEndings[id];
                if (parent != kRoot) ending.fallback = step(mEndings[parentState].fallback, last);
                NameId& next = ending.longest != kNoName ? mNames[ending.longest].next : ending.longest;
                next = mEndings[ending.fallback].longest;
                below.emplace_back(node, id);
            }
        }
        level = std::move(below);
    }
}

void NameFinder::findSharedBeginning() {
    mShared = kStart;
    mSharedText.clear();
    for (Node node = kRoot; mTree[node].name == kNoName && mSharedText.size() < kMostShared;) {
        node = mTree[node].firstChild;
        if (node == kRoot || mTree[node].nextSibling != kRoot) break;
        mSharedText += mTree[node].last;
        mShared = step(mShared, mTree[node].last);
    }
}

bool NameFinder::isSharedAt(const char* text) const {
    return std::ranges::all_of(mSharedText, [&text](char upper) { return asciiUpper(*text++) == upper; });
}

// The next place where all names' beginning stands; npos when there is none.
std::size_t NameFinder::nextShared(std::string_view text, std::size_t at) const {
    constexpr int kLower = 'a' - 'A';
    const std::size_t size = mSharedText.size();
    const int first = mSharedText.front() | kLower, last = mSharedText.back() | kLower;
    for (; at + size - 1 + kPlaces <= text.size(); at += kPlaces) {
        const char* const begin = text.data() + at;
        const char* const end = begin + size - 1;
        // By first and last character, letter case roughly left out, and without a branch: the compiler takes all
        // places at once.
        std::array<std::uint8_t, kPlaces> isCandidate;
        for (std::size_t i = 0; i < kPlaces; ++i) {
            isCandidate[i] = ((begin[i] | kLower) == first) & ((end[i] | kLower) == last);
        }
        const auto [low, high] = std::bit_cast<std::array<std::uint64_t, 2>>(isCandidate);
        if ((low | high) == 0) continue;
        for (std::size_t i = 0; i < kPlaces; ++i) {
            if (isCandidate[i] && isSharedAt(begin + i)) return at + i;
        }
    }
    for (; at + size <= text.size(); ++at) {
        if (isSharedAt(text.data() + at)) return at;
    }
    return text.npos;
}
