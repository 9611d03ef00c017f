// What a log statement costs the thread that makes it: with its level off, with another source file logged
// exclusively, and written to a file.
//
//     build/linux/log_bench
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "OB_Daemon/src/logging.h"

namespace {

constexpr char kLogClass[] = "LogBench";

std::string logFile() { return (std::filesystem::temp_directory_path() / "orbikon_log_bench.txt").string(); }

enum class Kind { off, filtered, on };

LoggingParameters parametersOf(Kind kind) {
    LoggingParameters parameters;
    parameters.mLogFile = logFile();
    parameters.mMaxSize = 100'000;
    parameters.mIsLogToFile = true;
    parameters.mIsDebug = kind != Kind::off;
    if (kind == Kind::filtered) parameters.mExclFileToLog = "another.cpp";
    return parameters;
}

// A statement as the timer makes it on every tick: two texts, two numbers.
void statement(benchmark::State& state, Kind kind) {
    if (state.thread_index() == 0) gLogging.init(parametersOf(kind));
    int interval = 0;
    for ([[maybe_unused]] auto _ : state) {
        OB_LOG(LogLevel::DBG) << "interval: " << ++interval << ", factor: " << 0.5;
        benchmark::DoNotOptimize(interval);
    }
    if (state.thread_index() != 0) return;
    gLogging.init(LoggingParameters());
    for (const char* extension : {".txt", ".bak"}) {
        std::remove(std::filesystem::path(logFile()).replace_extension(extension).string().c_str());
    }
}

// Three threads, as the plug-in has.
BENCHMARK_CAPTURE(statement, off, Kind::off)->Threads(1)->Threads(3);
BENCHMARK_CAPTURE(statement, filtered, Kind::filtered)->Threads(1)->Threads(3);
BENCHMARK_CAPTURE(statement, on, Kind::on)->Threads(1)->Threads(3);

}  // namespace
