// A settings file with a mistake, what it does, and the way out of it.
#include <sstream>
#include <stdexcept>

#include "workbench/control/plugin_settings.h"
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr int kPump = 58;
constexpr double kWay = 50.0;
constexpr const char* kLostKey = "\tmaxContMoveTime";
constexpr const char* kFinding = "settings.behind-end";
constexpr const char* kDeadCap = "settings.cap-dead";

// The line above the key is empty, as editors and people like it.
std::string settingsWithEmptyLine() {
    std::string text = settingsText({});
    return text.insert(text.find(kLostKey), "\n");
}

std::string withoutEmptyLine(std::string text) {
    const auto key = text.find(kLostKey);
    const auto end = key == std::string::npos ? key : text.find_last_not_of("\r\n", key - 1);
    if (end == std::string::npos) throw std::runtime_error("the settings file has lost its key");
    const std::string lineEnd = contains(text, "\r\n") ? "\r\n" : "\n";
    return text.replace(end + 1, key - end - 1, lineEnd);
}

// Lines that hold a text, and the one below each.
std::string linesAbout(const std::string& text, std::string_view part) {
    std::string found;
    int wanted = 0;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (contains(line, part)) wanted = 2;
        if (wanted-- > 0) found += line + "\n";
    }
    return found;
}

struct Answer {
    std::string text;
    std::string exitCode;
};

Answer askDoctor(const Workbench& bench) {
    const std::filesystem::path output = bench.folder() / "doctor.txt";
    const Process doctor =
        bench.start(buildFolder() / "orbikon_doctor.exe",
                    {"--load-point", (buildFolder() / "workbench" / "creo").string()}, output, kHostEnvironment);
    const auto code = doctor.waitForExit(kPatienceMs);
    return {readTextFile(output), code ? std::to_string(*code) : "none"};
}

double wayOfPump(Stage& stage, const Vector& start, const Vector& right) {
    return dot(stage.position(kPump).origin - start, right);
}

void pushInVain(Stage& stage, Step& step) {
    stage.selectForMoving(std::to_string(kPump));
    step.excerpt = readTextFile(stage.bench().settingsFile()).substr(0, settingsText({}).find("[LOGGING]"));
    const Poses before = stage.positions();
    stage.push({.tx = 100});
    stage.awaitTicks();
    stage.shoot(step, "The cap is pushed; the pump is selected, and stays where it is.");
    stage.release();
    const double moved = greatestWay(before, stage.positions());
    step.check("Components moved by", "0", text(moved), "0", moved == 0.0);
    step.check("Plug-in", "", stage.status("plugin"), "initialised", stage.status("plugin") == "initialised");
}

void showAnswer(Stage& stage, Step& step) {
    const Answer answer = askDoctor(stage.bench());
    step.excerpt = answer.text;
    const std::string about = linesAbout(answer.text, kFinding);
    step.check("Key that is named", "", contains(about, "'maxContMoveTime'") ? "maxContMoveTime" : "none",
               "maxContMoveTime", contains(about, "'maxContMoveTime'"));
    step.check("Remedy that is named", "", contains(about, "remove the empty line") ? "remove the empty line" : "none",
               "remove the empty line", contains(about, "remove the empty line"));
    step.check("Dead cap", "", contains(answer.text, kDeadCap) ? "named" : "not named", "named",
               contains(answer.text, kDeadCap));
    step.check("Exit code", "", answer.exitCode, "2 (errors)", answer.exitCode == "2");
}

void repair(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    writeTextFile(bench.settingsFile(), withoutEmptyLine(readTextFile(bench.settingsFile())));
    const Answer answer = askDoctor(bench);
    step.excerpt = answer.text;
    const bool isNamed = contains(answer.text, kFinding) || contains(answer.text, kDeadCap);
    step.check("Keys that are not read, dead cap", "named", isNamed ? "named" : "not named", "not named", !isNamed);
    step.check("Exit code", "2", answer.exitCode, "0 or 1 (no errors)",
               answer.exitCode == "0" || answer.exitCode == "1");
    stage.startHost();
    stage.selectForMoving(std::to_string(kPump));
    const Vector start = stage.position(kPump).origin, right = stage.screenAxes()[0];
    stage.pushUntil(step, "The pump moves to the right.", {.tx = 100},
                    [&] { return wayOfPump(stage, start, right) > kWay; });
    const double way = wayOfPump(stage, start, right);
    step.check("Pump moved to the right by", "0", text(way), "more than 50", way > kWay);
}

}  // namespace

void playTrouble(Stage& stage) {
    stage.openWith(settingsWithEmptyLine());
    stage.step("The cap is dead",
               "The settings file has an empty line in [PROGRAM]. OIL_PUMP.ASM was selected in move mode, and the cap "
               "pushed to the right.",
               [&](Step& step) { pushInVain(stage, step); });
    stage.step("The doctor's answer", "orbikon_doctor.exe was run on this seat; below is what it said.",
               [&](Step& step) { showAnswer(stage, step); });
    stage.step("The repaired file",
               "The empty line was removed, the doctor asked again, the host started again, the pump selected and the "
               "cap pushed to the right.",
               [&](Step& step) { repair(stage, step); });
}

}  // namespace workbench
