// Stands in for what the plug-in does with windows (CreoProxy's window-bound members and ProgressWindow), so that the
// rest runs in a test program without any. One thread plays the host's; the progress window belongs to the reading
// thread.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace substitute {

enum class GenerationEnd { running, succeeded, failed };

struct Windows {
    // Only scrollKind > 0 makes the pointer's window one that scrolls, and only while scrolling is switched on.
    int scrollKind = 0;
    bool isScrollConsumed = true;
    std::vector<std::array<int, 3>> scrolls;  // translations that reached a scrolling window

    int discoveries = 0;
    int checks = 0;
    int timersEnsured = 0;
    int killedTimers = 0;
    std::function<void()> onDiscovery;

    bool isMapkeyAccepted = true;
    std::vector<std::string> mapkeyMacros;

    // What the generation of the menu file does and answers.
    std::function<GenerationEnd(const std::string& path)> generate;
    int generationsEnded = 0;
};

// What the progress window showed; written by the reading thread.
struct Progress {
    std::atomic<int> starts{0};
    std::atomic<int> stops{0};
    std::atomic<double> last{-1.0};
    std::atomic<bool> isToEndByItself{false};  // the window's thread clears the run flag after the next update
};

Windows& windows();
Progress& progress();

// Makes the plug-in's next calls of pthread_create succeed that often and fail from then on; negative = no limit.
// Threads of the test itself count, too.
void allowThreads(int count);
int threads();  // running now

}  // namespace substitute
