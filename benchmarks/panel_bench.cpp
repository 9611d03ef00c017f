// How long the control panel takes with a large menu file: from its process's start to the painted window, and for each
// key stroke in its search field. Under Wine, in wall-clock time, with nothing to compare: it says what somebody waits.
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common_sources/mnu/mnu_parser.h"
#include "tests/mnu/large_set.h"
#include "workbench/control/panel_window.h"
#include "workbench/control/workbench.h"

namespace {

using namespace workbench;

constexpr int kStarts = 7;
// From thousands of hits to none, and back.
constexpr const char* kTyped[] = {"view", "procmdmoldround", "label 39", "sketch mirror 1", "qqqq"};

void writeMenuFile(const std::filesystem::path& file) {
    const LargeSet set = makeLargeSet(4000, 104, 50'000);
    MNUParser parser;
    for (const Resource& pane : set.panes) parser.AddResource(pane.name, pane.text);
    for (const Resource& text : set.commands) parser.AddResource(text.name, text.text);
    std::filesystem::create_directories(file.parent_path());
    if (!parser.WriteMNUFile(file.string())) throw std::runtime_error(parser.failure());
}

struct Start {
    double ms = 0.0;
    unsigned commands = 0;
};

Start startOf(const PanelWindow& panel) {
    Start start;
    const auto isTold = [&] {
        return std::sscanf(panel.output().c_str(), "painted after %lf ms, %u", &start.ms, &start.commands) == 2;
    };
    if (!waitFor(isTold)) throw std::runtime_error("the panel does not tell its start: " + panel.output());
    return start;
}

double msOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

// Each letter, and each is taken away again: until what was found is painted.
std::vector<double> strokesOf(const PanelWindow& panel) {
    const HWND field = panel.control(panel::kSearch);
    std::vector<double> times;
    const auto type = [&](char letter) {
        times.push_back(msOf([&] { SendMessageW(field, WM_CHAR, static_cast<WPARAM>(letter), 1); }));
    };
    for (const std::string words : kTyped) {
        for (const char letter : words) type(letter);
        for (std::size_t i = 0; i < words.size(); ++i) type('\b');
    }
    return times;
}

void printRow(const std::string& what, std::vector<double> times) {
    std::ranges::sort(times);
    std::printf("| %s | %.0f ms | %.0f ms | %zu |\n", what.c_str(), times[times.size() / 2], times.back(),
                times.size());
}

void run() {
    Workbench bench;
    writeMenuFile(bench.menuFile());
    bench.startDaemon();
    std::vector<double> starts, strokes;
    unsigned commands = 0;
    for (int i = 0; i < kStarts; ++i) {
        const PanelWindow panel(bench, bench.folder() / "buttons.txt", {"--times"});
        const Start start = startOf(panel);
        starts.push_back(start.ms);
        commands = start.commands;
        panel.openPage(panel::kBindingsPage);
        const std::vector<double> more = strokesOf(panel);
        strokes.insert(strokes.end(), more.begin(), more.end());
    }
    const std::string entries = ", " + std::to_string(commands) + " entries";
    printRow("start of the process to painted window" + entries, starts);
    printRow("key stroke in the search field to painted results" + entries, strokes);
}

}  // namespace

int main() {
    try {
        run();
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "panel_bench: " << failure.what() << '\n';
        return 1;
    }
}
