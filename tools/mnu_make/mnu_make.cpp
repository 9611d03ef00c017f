// Makes the menu file without Creo, for administrators who hand it out to many users.
#include <generated/version.h>
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <system_error>
#include <thread>

#include "OB_Daemon/src/logging.h"
#include "common_sources/mnu/mnu_encoding.h"
#include "common_sources/mnu/mnu_libraries.h"
#include "common_sources/mnu/mnu_parser.h"
#include "tools/cli/command_line.h"
#include "tools/mnu_make/reachable_name.h"
#include "tools/seat/file.h"

namespace {

namespace fs = std::filesystem;

enum ExitCode { kDone = 0, kFailed = 1, kUsage = 2, kFileExists = 3, kCancelled = 4 };

constexpr char kSynopsis[] =
    "Usage: mnu_make [--verbose | --quiet] RESOURCE_FOLDER LANGUAGE OUTPUT_FILE\n"
    "       mnu_make --list RESOURCE_FOLDER\n"
    "       mnu_make --version | --help\n";

constexpr char kExplanation[] =
    "\n"
    "Makes the Orbikon plug-in's menu file from Creo's compiled resource libraries.\n"
    "\n"
    "  RESOURCE_FOLDER  folder of pro_default_resources.dll, normally\n"
    "                   <Creo load point>\\text\\compiled_resource\n"
    "  LANGUAGE         english, or the language in the name of a library\n"
    "                   pro_default_<language>_resources.dll\n"
    "  OUTPUT_FILE      menu file to make; the plug-in reads Creo.mnu beside its\n"
    "                   settings. An existing file is never replaced.\n"
    "  --list           show the languages whose libraries are in the folder\n"
    "  --verbose        show the log, for example commands that were left out\n"
    "  --quiet          show errors only\n"
    "  --version        show the version\n"
    "  --help           show this text\n"
    "\n"
    "Exit codes: 0 done, 1 failed, 2 wrong arguments, 3 the output file exists, 4 cancelled (Ctrl+C)\n";

constexpr cli::Option kOptions[] = {
    {"--list", false}, {"--verbose", false}, {"--quiet", false}, {"--version", false}, {"--help", false}};

constexpr std::chrono::milliseconds kProgressInterval{50};

// Longest names beside the folders': of a library, and of what stands for the menu file while it is written.
constexpr std::size_t kRoomForLibrary = 1 + 60;
constexpr std::size_t kRoomBehindOutput = sizeof ".4294967295.tmp" - 1;

std::atomic<bool> gIsCancelled{false};

void cancel(int) { gIsCancelled = true; }

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
    cli::print(stderr, "mnu_make: " + text + "\n");
    return code;
}

std::string quoted(const fs::path& path) { return "'" + seat::textOf(path) + "'"; }

// Two places as the user named them, and as the parser can take them, in the code page.
struct Job {
    fs::path resources, output;
    std::string language;  // UTF-8, lower case
    std::string reachableResources, reachableOutput;
    bool isOutputRenamed = false;  // the file is made under another name, and gets its own at the end
};

std::string whyUnreachable(const fs::path& folder) {
    std::error_code ignored;
    if (!fs::is_directory(folder, ignored)) return "there is no folder " + quoted(folder);
    return "the path " + quoted(folder) +
           " is too long, or has letters that this Windows' code page lacks, and its drive has no short names; take "
           "another folder";
}

// Fills in the reachable names; otherwise a sentence why that cannot be.
std::string findNames(Job& job) {
    const auto resources = reachableName(job.resources, kRoomForLibrary);
    if (!resources) return whyUnreachable(job.resources);
    job.reachableResources = *resources;

    const fs::path folder = job.output.parent_path();
    std::string name = seat::textOf(job.output.filename());
    job.isOutputRenamed = !isInCodePage(name);
    if (job.isOutputRenamed) name = "mnu_make." + std::to_string(GetCurrentProcessId());
    // Its own name counts, too: the file gets it in the end.
    const std::size_t longer = std::max(name.size(), job.output.filename().native().size());
    const auto reachable = reachableName(folder, 1 + longer + kRoomBehindOutput);
    if (!reachable) return whyUnreachable(folder);
    job.reachableOutput = *reachable + '\\' + codePageFromUtf8(name);
    return {};
}

// Texts of failures name the places as the user did.
std::string withGivenNames(const Job& job, const std::string& failure) {
    std::string text = utf8FromCodePage(failure);
    const auto replace = [&](const std::string& reachable, const fs::path& given) {
        const std::string name = utf8FromCodePage(reachable);
        const auto at = text.find(name);
        if (at != std::string::npos) text.replace(at, name.size(), seat::textOf(given));
    };
    replace(job.reachableOutput, job.output);
    replace(job.reachableResources, job.resources);
    return text;
}

std::string lines(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

std::string languagesThere(const Job& job) {
    const auto languages = mnu_libraries::languagesIn(job.resources);
    if (std::ranges::find(languages, job.language) != languages.end()) return {};
    return languages.empty() ? "\nThere is no library of any language in that folder."
                             : "\nLanguages in that folder: " + lines(languages, ", ");
}

// Waits for the end of the generation; the progress is for people only.
void showProgress(const std::atomic<bool>& isRunning, const std::atomic<double>& progress) {
    while (isRunning) {
        cli::print(stderr, "\r" + std::to_string(static_cast<int>(progress * 100)) + "%");
        std::this_thread::sleep_for(kProgressInterval);
    }
}

bool generate(MNUParser& parser, const Job& job, bool isProgressShown) {
    std::atomic<double> progress{0.0};
    std::atomic<bool> isRunning{true};
    bool hasSucceeded = false;
    std::thread generation([&] {
        hasSucceeded = parser.CreateMNU(&progress, job.reachableOutput, job.reachableResources,
                                        codePageFromUtf8(job.language), &gIsCancelled);
        isRunning = false;
    });
    if (isProgressShown) showProgress(isRunning, progress);
    generation.join();
    if (isProgressShown) cli::print(stderr, hasSucceeded ? "\r100%\n" : "\n");
    return hasSucceeded;
}

// Never replaces a file, as the generation does not.
bool giveOwnName(const Job& job) {
    const fs::path made(std::wstring(fs::path(seat::pathOf(utf8FromCodePage(job.reachableOutput)))));
    if (MoveFileW(made.c_str(), job.output.c_str())) return true;
    std::error_code ignored;
    fs::remove(made, ignored);
    return false;
}

int makeMenuFile(Job job, bool isQuiet) {
    std::error_code error;
    if (fs::exists(job.output, error)) {
        return fail(kFileExists, quoted(job.output) + " exists already; remove it or name another file");
    }
    if (const std::string problem = findNames(job); !problem.empty()) return fail(kFailed, problem);
    MNUParser parser;
    const bool hasSucceeded = generate(parser, job, !isQuiet && cli::isTerminal(stderr));
    if (gIsCancelled && !hasSucceeded) return fail(kCancelled, "cancelled");
    if (!hasSucceeded) return fail(kFailed, withGivenNames(job, parser.failure()) + languagesThere(job));
    if (job.isOutputRenamed && !giveOwnName(job)) return fail(kFailed, quoted(job.output) + " cannot be created");
    if (!isQuiet) cli::print(stdout, seat::textOf(job.output) + "\n");
    return kDone;
}

int list(const fs::path& folder) {
    const auto languages = mnu_libraries::languagesIn(folder);
    if (languages.empty()) return fail(kFailed, "no resource library of any language in " + quoted(folder));
    cli::print(stdout, lines(languages, "\n") + "\n");
    return kDone;
}

// What is wrong with the arguments, as a sentence; empty when nothing is.
std::string problemOf(const cli::ParsedArguments& arguments) {
    static constexpr const char* kNames[] = {"RESOURCE_FOLDER", "LANGUAGE", "OUTPUT_FILE"};
    if (!arguments.problem.empty()) return arguments.problem;
    if (arguments.has("--quiet") && arguments.has("--verbose")) return "--quiet and --verbose exclude each other";
    const std::size_t expected = arguments.has("--list") ? 1 : std::size(kNames);
    const auto& operands = arguments.operands;
    if (operands.size() > expected) return "'" + operands[expected] + "' is one argument too many";
    if (operands.size() < expected) return std::string(kNames[operands.size()]) + " is missing";
    const auto empty = std::ranges::find_if(operands, &std::string::empty);
    if (empty != operands.end()) return std::string(kNames[empty - operands.begin()]) + " is empty";
    return {};
}

}  // namespace

int main(int argc, char** argv) {
    const cli::ParsedArguments arguments = cli::parse(cli::arguments(argc, argv), kOptions);
    if (arguments.has("--help")) {
        cli::print(stdout, std::string(kSynopsis) + kExplanation);
        return kDone;
    }
    if (arguments.has("--version")) {
        cli::print(stdout, "mnu_make " + std::string(kProductVersion) + "\n");
        return kDone;
    }
    if (const std::string problem = problemOf(arguments); !problem.empty()) {
        return fail(kUsage, problem + "; --help shows the arguments\n" + kSynopsis);
    }
    const auto place = [&](std::size_t index) {
        std::error_code ignored;
        return fs::absolute(seat::pathOf(arguments.operands[index]), ignored).make_preferred();
    };
    if (arguments.has("--list")) return list(place(0));
    if (arguments.has("--verbose")) showLog();
    std::signal(SIGINT, cancel);
    return makeMenuFile({place(0), place(2), lowerCase(arguments.operands[1]), {}, {}}, arguments.has("--quiet"));
}
