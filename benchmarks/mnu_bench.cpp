// What it costs to find thousands of commands in hundreds of panes, against Hyperscan; and a whole generation of the
// menu file, but for reading the libraries, against adding up the panes' bytes, which is the least that reading them
// costs.
#include <hs.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <string>
#include <tuple>
#include <vector>

#include "benchmarks/compare.h"
#include "common_sources/mnu/mnu_matcher.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_text.h"
#include "tests/mnu/large_set.h"

namespace {

using Hit = std::tuple<std::uint32_t, std::size_t>;  // name, position
using PaneHits = std::vector<std::vector<Hit>>;

NameFinder makeFinder(const std::vector<std::string>& names) {
    NameFinder finder;
    for (const std::string& name : names) finder.add(name);
    return finder;
}

PaneHits findOurs(NameFinder& finder, const LargeSet& set) {
    PaneHits result;
    for (const Resource& pane : set.panes) {
        auto& hits = result.emplace_back();
        for (const auto& hit : finder.find(pane.text)) hits.emplace_back(hit.name, hit.position);
    }
    return result;
}

class Peer {
  public:
    explicit Peer(const std::vector<std::string>& names) : mNames(names) {
        std::vector<const char*> texts;
        std::vector<std::size_t> sizes;
        std::vector<unsigned> ids(names.size());
        std::iota(ids.begin(), ids.end(), 0u);
        for (const std::string& name : names) {
            texts.push_back(name.c_str());
            sizes.push_back(name.size());
        }
        const std::vector<unsigned> flags(names.size(), HS_FLAG_CASELESS | HS_FLAG_SINGLEMATCH);
        hs_compile_error_t* error = nullptr;
        hs_compile_lit_multi(texts.data(), flags.data(), ids.data(), sizes.data(), static_cast<unsigned>(names.size()),
                             HS_MODE_BLOCK, nullptr, &mDatabase, &error);
        bench::expectSame(error == nullptr, "Hyperscan does not take the names");
        hs_alloc_scratch(mDatabase, &mScratch);
    }
    ~Peer() {
        hs_free_scratch(mScratch);
        hs_free_database(mDatabase);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    PaneHits find(const LargeSet& set) {
        PaneHits result;
        for (const Resource& pane : set.panes) {
            mHits = &result.emplace_back();
            hs_scan(mDatabase, pane.text.data(), static_cast<unsigned>(pane.text.size()), 0, mScratch, &take, this);
        }
        return result;
    }

  private:
    static int take(unsigned id, unsigned long long, unsigned long long to, unsigned, void* peer) {
        auto& self = *static_cast<Peer*>(peer);
        self.mHits->emplace_back(id, static_cast<std::size_t>(to) - self.mNames[id].size());
        return 0;
    }

    const std::vector<std::string>& mNames;
    hs_database_t* mDatabase = nullptr;
    hs_scratch_t* mScratch = nullptr;
    std::vector<Hit>* mHits = nullptr;
};

void expectSameHits(PaneHits ours, PaneHits theirs) {
    for (auto* hits : {&ours, &theirs}) std::ranges::for_each(*hits, [](auto& pane) { std::ranges::sort(pane); });
    bench::expectSame(ours == theirs && !ours.front().empty(), "commands found in the panes");
}

void matching(const LargeSet& set) {
    std::vector<std::string> names;
    for (const Resource& text : set.commands) names.push_back(resourceCommandName(text.name));
    NameFinder finder = makeFinder(names);
    Peer peer(names);
    PaneHits ours, theirs;
    bench::compare(
        {.what = "matching 4,000 commands x 200 panes x 50 kB", .peer = "Hyperscan, compiled already", .calls = 1},
        [&] { ours = findOurs(finder, set); }, [&] { theirs = peer.find(set); });
    expectSameHits(ours, theirs);
    bench::compare(
        {.what = "the same with its set-up", .peer = "Hyperscan", .calls = 1, .slices = 9},
        [&] {
            NameFinder fresh = makeFinder(names);
            ours = findOurs(fresh, set);
        },
        [&] { theirs = Peer(names).find(set); });
    expectSameHits(ours, theirs);
}

void generation(const LargeSet& set) {
    const bench::ScratchFile file("generated.mnu");
    std::uint64_t sum = 0;
    bench::compare(
        {.what = "whole generation, texts to file", .peer = "sum over the panes' bytes", .calls = 1},
        [&] {
            std::remove(file.path().c_str());
            MNUParser parser;
            for (const Resource& pane : set.panes) parser.AddResource(pane.name, pane.text);
            for (const Resource& text : set.commands) parser.AddResource(text.name, text.text);
            bench::expectSame(parser.WriteMNUFile(file.path()), parser.failure());
        },
        [&] {
            for (const Resource& pane : set.panes) {
                for (const char c : pane.text) sum += static_cast<unsigned char>(c);
            }
            bench::keep(sum);
        });
}

}  // namespace

int main() {
    const LargeSet set = makeLargeSet(4000, 200, 50'000);
    matching(set);
    generation(set);
}
