#include "common_sources/mnu/mnu_matcher.h"

#include "common_sources/mnu/mnu_text.h"

namespace {

constexpr std::size_t kCancelStride = std::size_t{64} * 1024;  // characters between two looks at the cancel flag

}  // namespace

NameFinder::NameFinder() : mNodes(1) {}

NameFinder::NameId NameFinder::add(std::string_view name) {
    Node node = kRoot;
    for (const char c : name) {
        const char upper = asciiUpper(c);
        Node child = childOf(node, upper);
        if (child == kRoot) {
            child = static_cast<Node>(mNodes.size());
            mNodes.push_back(
                {.last = upper, .length = mNodes[node].length + 1, .nextSibling = mNodes[node].firstChild});
            mNodes[node].firstChild = child;
            mIsLinked = false;
        }
        node = child;
    }
    if (mNodes[node].name == kNoName) {
        mNodes[node].name = mNameCount++;
        mIsLinked = false;
    }
    return mNodes[node].name;
}

std::vector<NameFinder::Hit> NameFinder::find(std::string_view text, const std::atomic<bool>* cancel) {
    if (!mIsLinked) linkFallbacks();
    ++mPass;
    std::vector<Hit> hits;
    Node node = kRoot;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % kCancelStride == 0 && cancel && cancel->load(std::memory_order_relaxed)) break;
        node = step(node, asciiUpper(text[i]));
        // A name that was reported in this pass has reported the shorter ones it ends with, too.
        Node named = mNodes[node].name != kNoName ? node : mNodes[node].nextName;
        for (; named != kRoot && mNodes[named].lastPass != mPass; named = mNodes[named].nextName) {
            mNodes[named].lastPass = mPass;
            hits.push_back({mNodes[named].name, i + 1 - mNodes[named].length});
        }
    }
    return hits;
}

NameFinder::Node NameFinder::childOf(Node node, char c) const {
    Node child = mNodes[node].firstChild;
    while (child != kRoot && mNodes[child].last != c) child = mNodes[child].nextSibling;
    return child;
}

NameFinder::Node NameFinder::step(Node node, char c) const {
    for (;;) {
        if (const Node child = childOf(node, c); child != kRoot) return child;
        if (node == kRoot) return kRoot;
        node = mNodes[node].fallback;
    }
}

// Breadth first: a node's fallback is shorter than the node, so it is linked already.
void NameFinder::linkFallbacks() {
    std::vector<Node> level{kRoot};
    while (!level.empty()) {
        std::vector<Node> below;
        for (const Node parent : level) {
            for (Node child = mNodes[parent].firstChild; child != kRoot; child = mNodes[child].nextSibling) {
                const Node fallback = parent == kRoot ? Node{kRoot} : step(mNodes[parent].fallback, mNodes[child].last);
                mNodes[child].fallback = fallback;
                mNodes[child].nextName = mNodes[fallback].name != kNoName ? fallback : mNodes[fallback].nextName;
                below.push_back(child);
            }
        }
        level = std::move(below);
    }
}
