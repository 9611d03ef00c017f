#include "common_sources/mnu/mnu_matcher.h"

#include <algorithm>
#include <utility>

#include "common_sources/mnu/mnu_text.h"

namespace {

constexpr std::size_t kCancelStride = std::size_t{64} * 1024;  // characters between two looks at the cancel flag

constexpr std::size_t kAfterEnd = 256;   // index of the step from a place that ends like the shared beginning
constexpr std::size_t kMostShared = 16;  // characters, so that each place costs little at worst

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
            state = step(state, asciiUpper(text[i++]));
        }
        // A name that was reported in this pass has reported the shorter ones it ends with, too.
        for (NameId id = mStates[state].longest; id != kNoName && mNames[id].lastPass != mPass; id = mNames[id].next) {
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

NameFinder::StateId NameFinder::step(StateId state, char c) const {
    for (;;) {
        const State& at = mStates[state];
        const StateId end = at.firstChild + at.childCount;
        for (StateId child = at.firstChild; child != end; ++child) {
            if (mStates[child].last == c) return child;
        }
        if (state == kStart) return kStart;
        state = at.fallback;
    }
}

void NameFinder::prepare() {
    makeStates();
    linkFallbacks();
    findSharedBeginning();
    mIsPrepared = true;
}

void NameFinder::makeStates() {
    mStates.assign(1, {});
    std::vector<std::pair<Node, StateId>> open{{kRoot, kStart}};
    while (!open.empty()) {
        const auto [node, state] = open.back();
        open.pop_back();
        mStates[state].firstChild = static_cast<StateId>(mStates.size());
        for (Node child = mTree[node].firstChild; child != kRoot; child = mTree[child].nextSibling) {
            open.emplace_back(child, static_cast<StateId>(mStates.size()));
            mStates.push_back({.last = mTree[child].last, .longest = mTree[child].name});
            ++mStates[state].childCount;
        }
    }
}

// Breadth first: a state's fallback is shorter than the state, so it is linked already.
void NameFinder::linkFallbacks() {
    std::vector<StateId> level{kStart};
    while (!level.empty()) {
        std::vector<StateId> below;
        for (const StateId parent : level) {
            for (StateId i = 0; i < mStates[parent].childCount; ++i) {
                State& child = mStates[mStates[parent].firstChild + i];
                if (parent != kStart) child.fallback = step(mStates[parent].fallback, child.last);
                NameId& next = child.longest != kNoName ? mNames[child.longest].next : child.longest;
                next = mStates[child.fallback].longest;
                below.push_back(mStates[parent].firstChild + i);
            }
        }
        level = std::move(below);
    }
}

void NameFinder::findSharedBeginning() {
    mShared = kStart;
    mSharedText.clear();
    while (mStates[mShared].childCount == 1 && mStates[mShared].longest == kNoName &&
           mSharedText.size() < kMostShared) {
        mShared = mStates[mShared].firstChild;
        mSharedText += mStates[mShared].last;
    }
    const auto size = static_cast<std::uint32_t>(mSharedText.size());
    mSharedSteps.fill(size);
    const auto setStep = [this](char upper, std::uint32_t step) {
        for (std::size_t c = 0; c < 256; ++c) {
            if (asciiUpper(static_cast<char>(c)) == upper) mSharedSteps[c] = step;
        }
    };
    for (std::uint32_t i = 0; i + 1 < size; ++i) {
        setStep(mSharedText[i], size - 1 - i);
        if (mSharedText[i] == mSharedText.back()) mSharedSteps[kAfterEnd] = size - 1 - i;
    }
    if (size != 0) setStep(mSharedText.back(), 0);
}

// The next place where all names' beginning stands; npos when there is none.
std::size_t NameFinder::nextShared(std::string_view text, std::size_t at) const {
    const std::size_t size = mSharedText.size();
    while (at + size <= text.size()) {
        std::uint32_t step = mSharedSteps[static_cast<unsigned char>(text[at + size - 1])];
        if (step == 0) {
            std::size_t same = 0;
            while (same < size && asciiUpper(text[at + same]) == mSharedText[same]) ++same;
            if (same == size) return at;
            step = mSharedSteps[kAfterEnd];
        }
        at += step;
    }
    return text.npos;
}
