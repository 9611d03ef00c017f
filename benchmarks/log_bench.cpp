// What a log statement costs the threads that make it, against spdlog with the same columns and a flush behind each
// line: with its level off, with another source file logged exclusively, and written to a file.
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "OB_Daemon/src/logging.h"
#include "benchmarks/compare.h"

namespace {

constexpr char kLogClass[] = "LogBench";

using Peer = std::shared_ptr<spdlog::logger>;

Peer makePeer(const spdlog::sink_ptr& sink, spdlog::level::level_enum level) {
    auto logger = std::make_shared<spdlog::logger>("bench", sink);
    auto pattern = std::make_unique<spdlog::pattern_formatter>("%H:%M:%S.%e|%L|%6t|%16s|%5#| %-32!| %v",
                                                               spdlog::pattern_time_type::utc);
    logger->set_formatter(std::move(pattern));
    logger->set_level(level);
    logger->flush_on(spdlog::level::trace);
    return logger;
}

// Statements as the timer makes them on every tick: two texts, two numbers.
void logOurs(int count) {
    for (int i = 0; i < count; ++i) OB_LOG(LogLevel::DBG) << "interval: " << i << ", factor: " << 0.5;
}

void logTheirs(spdlog::logger& logger, int count) {
    for (int i = 0; i < count; ++i) {
        SPDLOG_LOGGER_CALL(&logger, spdlog::level::debug, "interval: {}, factor: {}", i, 0.5);
    }
}

void onThreads(int threads, const std::function<void()>& work) {
    if (threads == 1) return work();
    std::vector<std::thread> running;
    running.reserve(static_cast<std::size_t>(threads));
    for (int t = 0; t < threads; ++t) running.emplace_back(work);
    for (std::thread& thread : running) thread.join();
}

// What stands behind the columns, in an order that does not depend on the threads.
std::vector<std::string> messages(const bench::ScratchFile& file) {
    std::vector<std::string> result;
    for (const std::string& line : file.lines()) {
        if (line.find("| interval") != line.npos) result.push_back(line.substr(line.rfind("| ")));
    }
    std::ranges::sort(result);
    return result;
}

enum class Kind { off, filtered, written };

void run(Kind kind, const std::string& what, const std::string& peer, int threads, int count) {
    const bench::ScratchFile ourFile("ours.txt"), theirFile("theirs.txt");
    LoggingParameters parameters;
    parameters.mLogFile = ourFile.path();
    parameters.mMaxSize = 1'000'000;
    parameters.mIsLogToFile = true;
    parameters.mIsDebug = kind != Kind::off;
    if (kind == Kind::filtered) parameters.mExclFileToLog = "another.cpp";
    gLogging.init(parameters);
    spdlog::sink_ptr sink = std::make_shared<spdlog::sinks::null_sink_mt>();
    if (kind == Kind::written) sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(theirFile.path());
    const Peer logger = makePeer(sink, kind == Kind::off ? spdlog::level::info : spdlog::level::debug);

    const std::string of = threads == 1 ? "" : ", " + std::to_string(threads) + " threads";
    bench::compare(
        // How threads get into each other's way stays the same for tenths of a second: so many more slices.
        {.what = "log statement " + what + of,
         .peer = "spdlog" + peer,
         .calls = threads * count,
         .slices = threads == 1 ? 21 : 301},
        [&] { onThreads(threads, [&] { logOurs(count); }); },
        [&] { onThreads(threads, [&] { logTheirs(*logger, count); }); });
    logger->flush();
    gLogging.init(LoggingParameters());
    bench::expectSame(messages(ourFile) == messages(theirFile), "lines of the log");
    bench::expectSame(messages(ourFile).empty() == (kind != Kind::written), "whether there are lines in the log");
}

}  // namespace

int main() {
    run(Kind::off, "off", "", 1, 2'000'000);
    for (const int threads : {1, 3}) {
        run(Kind::filtered, "filtered out by `fileToLog`", ", a sink that drops", threads, 100'000);
    }
    for (const int threads : {1, 3}) run(Kind::written, "written, with flush", ", with flush", threads, 3'000);
}
