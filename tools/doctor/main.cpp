// Looks at a seat with Creo and says what keeps the plug-in from working there, and what to do.
#include <array>
#include <optional>

#include "tools/cli/command_line.h"
#include "tools/doctor/fix.h"
#include "tools/doctor/probe_report.h"
#include "tools/doctor/registering.h"
#include "tools/doctor/report.h"
#include "tools/seat/file.h"

#include <generated/version.h>
#include <windows.h>

namespace {

enum ExitCode { kAllRight = 0, kWarnings = 1, kErrors = 2, kWrongArguments = 3 };

constexpr char kUsage[] =
    "Usage: orbikon_doctor [--profile DIR] [--load-point DIR] [--registry FILE] [--plugin DLL] [--offline]\n"
    "                      [--json] [--verbose] [--report FILE] [--fix] [--version] [--help]\n"
    "       orbikon_doctor register FILE | --load-point DIR [--plugin DLL] [--text-dir DIR] [--probe]\n"
    "       orbikon_doctor unregister FILE | --load-point DIR [--probe]\n"
    "       orbikon_doctor load-points [DIR...]\n"
    "       orbikon_doctor probe-report FILE [--json]\n"
    "\n"
    "Looks at the Orbikon plug-in on a seat with Creo and says what is wrong and what to do. Without arguments it\n"
    "looks at the seat that it runs on. It changes nothing, unless --fix is given.\n"
    "\n"
    "  --profile DIR     folder of the user's profile (%USERPROFILE%)\n"
    "  --load-point DIR  folder \"Common Files\" of an installation of Creo\n"
    "  --registry FILE   the registration file (protk.dat) that Creo reads\n"
    "  --plugin DLL      the plug-in; otherwise the one that is registered\n"
    "  --offline         do not ask the device's daemon\n"
    "  --json            the findings as JSON\n"
    "  --verbose         show all that is in order, too\n"
    "  --report FILE     write all findings, the settings and the end of the log, without names of users or machines\n"
    "  --fix             write the default settings file if there is none, add missing keys with their defaults\n"
    "\n"
    "register enters the plug-in in a registration file, or in the one that counts for a load point, and leaves\n"
    "everything else in it as it is; unregister takes it out again; load-points tells the machine type of each load\n"
    "point, of those in the usual places when none is named. They end with 0, or 2 when they failed.\n"
    "\n"
    "  --plugin DLL      otherwise the one that was installed with this program\n"
    "  --text-dir DIR    folder that holds \"text\"; otherwise the plug-in's, or the one above\n"
    "  --probe           the probe of a Creo, orbikon_probe.dll, instead of the plug-in\n"
    "\n"
    "probe-report reads what orbikon_probe.dll has found in a Creo.\n"
    "\n"
    "Exit codes: 0 nothing wrong, 1 warnings, 2 errors, 3 wrong arguments\n";

constexpr cli::Option kOptions[] = {
    {"--profile", true},  {"--load-point", true}, {"--registry", true}, {"--plugin", true},
    {"--offline", false}, {"--json", false},      {"--verbose", false}, {"--report", true},
    {"--fix", false},     {"--version", false},   {"--help", false},    {"--list-ids", false},
};

int wrongArguments(const std::string& problem) {
    cli::print(stderr, "orbikon_doctor: " + problem + "; --help shows the arguments\n");
    return kWrongArguments;
}

std::filesystem::path programFile() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

// Not in the usage: for those who write programs around this one.
std::string ids() {
    std::string text;
    for (const auto& check : doctor::kChecks) text += std::string(check.id) + "\n";
    return text;
}

std::optional<int> answerAtOnce(const cli::ParsedArguments& arguments) {
    if (arguments.has("--help")) {
        cli::print(stdout, kUsage);
    } else if (arguments.has("--version")) {
        cli::print(stdout, "orbikon_doctor " + std::string(kProductVersion) + "\n");
    } else if (arguments.has("--list-ids")) {
        cli::print(stdout, ids());
    } else {
        return std::nullopt;
    }
    return kAllRight;
}

doctor::Findings checkAll(doctor::Seat& seat) {
    using namespace doctor;
    Findings findings;
    for (const auto check : {checkCreo, checkRegistration, checkPlugin, checkMessages, checkSettings, checkLog,
                             checkDriver, checkResources, checkMenuFile, checkMapkey}) {
        check(seat, findings);
    }
    return findings;
}

int examine(const cli::ParsedArguments& arguments) {
    const auto path = [&](const char* option) { return std::filesystem::path(seat::pathOf(arguments.value(option))); };
    const doctor::Request request{.profile = path("--profile"),
                                  .loadPoint = path("--load-point"),
                                  .registry = path("--registry"),
                                  .plugin = path("--plugin"),
                                  .isOffline = arguments.has("--offline")};
    if (arguments.has("--fix")) {
        // What it says stands beside the findings, which may be for a program.
        for (const auto& step : doctor::fixSeat(doctor::lookAtSeat(request, programFile()))) {
            cli::print(stderr, (step.isDone ? "fixed: " : "not fixed: ") + step.text + "\n");
        }
    }
    doctor::Seat seat = doctor::lookAtSeat(request, programFile());
    const doctor::Findings findings = checkAll(seat);
    cli::print(stdout, arguments.has("--json") ? doctor::jsonOf(findings)
                                               : doctor::textOf(findings, arguments.has("--verbose")));
    if (arguments.has("--report")) {
        if (const auto problem = seat::replaceFile(path("--report"), doctor::reportOf(seat, findings))) {
            return wrongArguments(*problem);
        }
    }
    switch (findings.worst()) {
        case doctor::Status::ok:
            return kAllRight;
        case doctor::Status::warning:
            return kWarnings;
        default:
            return kErrors;
    }
}

// What the probe has found, for people or programs.
int showProbeReport(const cli::ParsedArguments& arguments) {
    if (arguments.operands.size() != 2) return wrongArguments("probe-report needs one file");
    std::string problem;
    const auto text = doctor::probeReport(seat::pathOf(arguments.operands[1]), arguments.has("--json"), problem);
    if (!text) return wrongArguments(problem);
    cli::print(stdout, *text);
    return kAllRight;
}

}  // namespace

int main(int argc, char** argv) {
    const auto words = cli::arguments(argc, argv);
    if (const auto code = doctor::runRegistering(words, programFile())) return *code;
    const cli::ParsedArguments arguments = cli::parse(words, kOptions);
    if (!arguments.problem.empty()) return wrongArguments(arguments.problem);
    const bool isProbe = !arguments.operands.empty() && arguments.operands.front() == "probe-report";
    if (isProbe && !arguments.has("--help")) return showProbeReport(arguments);
    if (!arguments.operands.empty()) return wrongArguments("'" + arguments.operands.front() + "' is no option");
    if (const auto code = answerAtOnce(arguments)) return *code;
    return examine(arguments);
}
