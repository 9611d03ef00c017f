#include "benchmarks/compare.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>

namespace bench {
namespace {

double cpuTimeOf(const std::function<void()>& work) {
    const auto now = [] {
        timespec time{};
        clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    };
    const double start = now();
    work();
    return now() - start;
}

double median(std::vector<double> values) {
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::ranges::nth_element(values, middle);
    return *middle;
}

std::string timeText(double seconds) {
    struct Unit {
        double seconds;
        const char* name;
    };
    Unit unit{1, "s"};
    for (const Unit& smaller : {Unit{1e-3, "ms"}, {1e-6, "µs"}, {1e-9, "ns"}}) {
        if (seconds < unit.seconds) unit = smaller;
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.3g %s", seconds / unit.seconds, unit.name);
    return text;
}

}  // namespace

void compare(const Figure& figure, const std::function<void()>& ours, const std::function<void()>& theirs) {
    ours();  // both have their memory and files by then
    theirs();
    std::vector<double> ourTimes, theirTimes, ratios;
    for (int slice = 0; slice < figure.slices; ++slice) {
        ourTimes.push_back(cpuTimeOf(ours) / figure.calls);
        theirTimes.push_back(cpuTimeOf(theirs) / figure.calls);
        ratios.push_back(ourTimes.back() / theirTimes.back());
    }
    std::printf("| %s | %s | %s | %s | %.2f |\n", figure.what.c_str(), figure.peer.c_str(),
                timeText(median(ourTimes)).c_str(), timeText(median(theirTimes)).c_str(), median(ratios));
    std::fflush(stdout);
}

void expectSame(bool isSame, const std::string& what) {
    if (isSame) return;
    std::fprintf(stderr, "bench: error: ours and the peer's differ: %s\n", what.c_str());
    std::exit(1);
}

ScratchFile::ScratchFile(const std::string& name)
    : mPath((std::filesystem::temp_directory_path() / ("orbikon_bench_" + std::to_string(getpid()) + "_" + name))) {
    std::remove(mPath.c_str());
}

ScratchFile::~ScratchFile() { std::remove(mPath.c_str()); }

std::vector<std::string> ScratchFile::lines() const {
    std::vector<std::string> result;
    std::ifstream file(mPath);
    for (std::string line; std::getline(file, line);) result.push_back(line);
    return result;
}

}  // namespace bench
