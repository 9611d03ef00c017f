// Makes the menu file without Creo, for administrators who hand it out to many users.
#include <generated/version.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_parser.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kFileExists = 3, kCancelled = 4 };

constexpr char kUsageText[] =
    "Usage: mnu_make [--verbose] RESOURCE_FOLDER LANGUAGE OUTPUT_FILE\n"
    "\n"
    "Makes the Orbikon plug-in's menu file from Creo's compiled resource libraries.\n"
    "\n"
    "  RESOURCE_FOLDER  folder of pro_default_resources.dll, normally\n"
    "                   <Creo load point>\\text\\compiled_resource\n"
    "  LANGUAGE         english, or the language in the name of a library\n"
    "                   pro_default_<language>_resources.dll\n"
    "  OUTPUT_FILE      menu file to make; the plug-in reads Creo.mnu beside its\n"
    "                   settings. An existing file is never replaced.\n"
    "  --verbose        show the log, for example commands that were left out\n"
    "  --version        show the version\n"
    "  --help           show this text\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 wrong arguments, 3 the output file exists, 4 cancelled (Ctrl+C)\n";

constexpr std::chrono::milliseconds kProgressInterval{50};

std::atomic<bool> gIsCancelled{false};

void cancel(int) { gIsCancelled = true; }

struct Arguments {
    std::string resourceFolder;
    std::string language;
    std::string outputFile;
};

void showLog() {
    LoggingParameters parameters;
    parameters.mIsLogToCnsl = parameters.mIsWarning = parameters.mIsDebug = true;
    gLogging.init(parameters);
}

std::string lowerCase(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

int fail(ExitCode code, const std::string& text) {
    std::fprintf(stderr, "mnu_make: %s\n", text.c_str());
    return code;
}

int makeMenuFile(const Arguments& arguments) {
    if (std::ifstream(arguments.outputFile)) {
        return fail(kFileExists, "'" + arguments.outputFile + "' exists already; remove it or name another file");
    }
    MNUParser parser;
    std::atomic<double> progress{0.0};
    std::atomic<bool> isRunning{true};
    bool hasSucceeded = false;
    std::thread generation([&] {
        hasSucceeded = parser.CreateMNU(&progress, arguments.outputFile, arguments.resourceFolder,
                                        lowerCase(arguments.language), &gIsCancelled);
        isRunning = false;
    });
    while (isRunning) {
        std::fprintf(stderr, "\r%3d%%", static_cast<int>(progress * 100));
        std::this_thread::sleep_for(kProgressInterval);
    }
    generation.join();
    std::fprintf(stderr, hasSucceeded ? "\r100%%\n" : "\n");
    if (gIsCancelled && !hasSucceeded) return fail(kCancelled, "cancelled");
    if (!hasSucceeded) return fail(kFailed, parser.failure());
    std::printf("%s\n", arguments.outputFile.c_str());
    return kDone;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    if (std::ranges::find(arguments, "--help") != arguments.end()) {
        std::fputs(kUsageText, stdout);
        return kDone;
    }
    if (std::ranges::find(arguments, "--version") != arguments.end()) {
        std::printf("mnu_make %s\n", kProductVersion);
        return kDone;
    }
    if (std::erase(arguments, "--verbose") > 0) showLog();
    if (arguments.size() != 3 || std::ranges::any_of(arguments, &std::string::empty) ||
        arguments[0].starts_with("--")) {
        std::fputs(kUsageText, stderr);
        return kUsage;
    }
    std::signal(SIGINT, cancel);
    return makeMenuFile({arguments[0], arguments[1], arguments[2]});
}
