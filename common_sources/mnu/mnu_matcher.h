// Finds very many names in very many texts at once.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A set of names that looks for all of them in one pass over a text, without regard to ASCII letter case. A name is
// found wherever its characters stand, also inside a longer word.
//
// The names form a tree of their beginnings, and each beginning knows the longest other one that it ends with
// (Aho and Corasick), so a pass costs what the text's length and the number of names in it cost, however many names
// there are. Where nothing has begun, the pass jumps to the next place with the beginning that all names share. One
// thread at a time.
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
    static constexpr NameId kNoName = ~NameId{0};

    // The tree as it grows.
    using Node = std::uint32_t;
    static constexpr Node kRoot = 0;  // the empty beginning; as a child or sibling: none
    struct Beginning {
        char last = 0;  // character that the parent's beginning goes on with, upper case
        Node firstChild = kRoot;
        Node nextSibling = kRoot;
        NameId name = kNoName;  // that ends here
    };

    // The same for passes, as a double array: a step is an addition and a comparison, whatever the number of children,
    // and there are few gaps, so that a pass stays in the cache.
    using StateId = std::uint32_t;
    using Kind = std::uint8_t;            // of characters: 0 for those in no name, the same for both letter cases
    static constexpr StateId kStart = 0;  // the empty beginning
    static constexpr StateId kNone = ~StateId{0};
    struct State {               // what each step reads
        StateId base = 0;        // a child's id is this and the kind of the character that leads to it ...
        StateId parent = kNone;  // ... if that is the child's parent; kNone in a gap, and of kStart
    };
    struct Ending {                 // what the beginning of the state with the same id ends with
        StateId fallback = kStart;  // the longest shorter beginning
        NameId longest = kNoName;   // the longest name, which may be all of it
    };
    struct Name {
        std::uint32_t length;
        NameId next = kNoName;       // longest other name that this one ends with
        std::uint32_t lastPass = 0;  // pass over a text that has reported this name
    };

    Node childOf(Node node, char c) const;
    Kind kindOf(char c) const { return mKinds[static_cast<unsigned char>(c)]; }
    StateId step(StateId state, char c) const;
    void prepare();
    void findKinds();
    void makeStates();
    StateId findBase(Node node, StateId firstGap);
    void linkFallbacks();
    void findSharedBeginning();
    bool isSharedAt(const char* text) const;
    std::size_t nextShared(std::string_view text, std::size_t at) const;

    std::vector<Beginning> mTree;
    std::vector<Name> mNames;        // by id
    std::array<Kind, 256> mKinds{};  // this and what follows: of the tree when it was prepared
    std::size_t mKindCount = 0;
    std::vector<State> mStates;
    std::vector<Ending> mEndings;
    StateId mShared = kStart;  // the longest beginning of all names, if it is not too long
    std::string mSharedText;   // of it, upper case
    std::uint32_t mPass = 0;
    bool mIsPrepared = false;
};
