// What it costs to find out which command stands in which menu, against the plain way of searching every pane for
// every command, and what a whole generation costs but for reading the libraries.
//
//     build/linux/mnu_bench
//     build/linux/mnu_bench --benchmark_filter=Ours
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "common_sources/mnu/mnu_menus.h"
#include "common_sources/mnu/mnu_parser.h"
#include "common_sources/mnu/mnu_text.h"
#include "tests/mnu/large_set.h"
#include "tests/mnu/plain_menus.h"

namespace {

struct Input {
    std::vector<Resource> panes;  // by menu key
    std::vector<CommandRecord> commands;
};

LargeSet largeSet(const benchmark::State& state) {
    return makeLargeSet(static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1)),
                        static_cast<std::size_t>(state.range(2)));
}

Input input(const benchmark::State& state) {
    LargeSet set = largeSet(state);
    Input result;
    for (Resource& pane : set.panes) result.panes.push_back({menuKeyOfPane(pane.name), std::move(pane.text)});
    for (const Resource& text : set.commands) {
        result.commands.push_back(
            {.resourceCommandName = resourceCommandName(text.name), .command = {}, .label = text.name, .helpText = {}});
    }
    return result;
}

template <typename Tables>
void fill(Tables& tables, const Input& input) {
    for (const Resource& pane : input.panes) tables.setPane(pane.name, pane.text);
    for (const CommandRecord& record : input.commands) tables.addCommand(record);
}

void menusOurs(benchmark::State& state) {
    const Input data = input(state);
    for ([[maybe_unused]] auto _ : state) {
        MenuTables tables;
        fill(tables, data);
        benchmark::DoNotOptimize(tables.menus());
    }
}

void menusPlain(benchmark::State& state) {
    const Input data = input(state);
    for ([[maybe_unused]] auto _ : state) {
        PlainMenus tables;
        fill(tables, data);
        benchmark::DoNotOptimize(tables.menus);
    }
}

void wholeGeneration(benchmark::State& state) {
    const LargeSet set = largeSet(state);
    const std::string path = (std::filesystem::temp_directory_path() / "orbikon_mnu_bench.mnu").string();
    for ([[maybe_unused]] auto _ : state) {
        MNUParser parser;
        for (const Resource& pane : set.panes) parser.AddResource(pane.name, pane.text);
        for (const Resource& text : set.commands) parser.AddResource(text.name, text.text);
        if (!parser.WriteMNUFile(path)) state.SkipWithError(parser.failure().c_str());
        state.counters["file_MB"] = static_cast<double>(std::filesystem::file_size(path)) / 1e6;
        std::remove(path.c_str());
    }
}

// Each axis grows alone: commands, panes, bytes of a pane.
void growth(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"commands", "panes", "bytes"})->Unit(benchmark::kMillisecond);
    for (const int commands : {500, 1000, 2000, 4000}) bench->Args({commands, 50, 10'000});
    for (const int panes : {100, 200}) bench->Args({1000, panes, 10'000});
    for (const int bytes : {20'000, 40'000}) bench->Args({1000, 50, bytes});
}

void fullSize(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"commands", "panes", "bytes"})->Unit(benchmark::kMillisecond)->Args({4000, 200, 50'000});
}

BENCHMARK(menusOurs)->Apply(growth)->Apply(fullSize);
BENCHMARK(menusPlain)->Apply(growth)->Iterations(1);
BENCHMARK(wholeGeneration)->Apply(fullSize);

}  // namespace
