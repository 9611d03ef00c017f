// Finds very many names in very many texts at once.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>
#include <vector>

// A set of names that looks for all of them in one pass over a text, without regard to ASCII letter case. A name is
// found wherever its characters stand, also inside a longer word.
//
// The names form a tree of their beginnings, and each beginning knows the longest other one that it ends with
// (Aho and Corasick), so a pass costs what the text's length and the number of names in it cost, however many names
// there are. One thread at a time.
class NameFinder {
  public:
    using NameId = std::uint32_t;

    struct Hit {
        NameId name;
        std::size_t position;  // of the name's first occurrence in the text
    };

    NameFinder();

    // Adds a name that is not empty; the same name (in any letter case) has the same id. Ids count from 0.
    NameId add(std::string_view name);

    // All names in the text, each once, in no particular order. Gives up with what it has once `cancel` is set
    // (may be null).
    std::vector<Hit> find(std::string_view text, const std::atomic<bool>* cancel = nullptr);

  private:
    using Node = std::uint32_t;
    static constexpr Node kRoot = 0;  // the empty beginning; as a child or sibling: none
    static constexpr NameId kNoName = ~NameId{0};

    struct Beginning {
        char last = 0;             // character that the parent's beginning goes on with, upper case
        std::uint32_t length = 0;  // characters
        Node firstChild = kRoot;
        Node nextSibling = kRoot;
        Node fallback = kRoot;       // longest shorter beginning that this one ends with
        Node nextName = kRoot;       // longest one along the fallbacks that is a name
        NameId name = kNoName;       // kNoName while no name ends here
        std::uint32_t lastPass = 0;  // pass over a text that has reported this name
    };

    Node childOf(Node node, char c) const;
    Node step(Node node, char c) const;
    void linkFallbacks();

    std::vector<Beginning> mNodes;
    NameId mNameCount = 0;
    std::uint32_t mPass = 0;
    bool mIsLinked = true;  // fallbacks are up to date
};
