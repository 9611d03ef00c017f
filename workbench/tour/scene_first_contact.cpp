// The probe, which tells in a real Creo which of the assumptions hold, in the host and in another Creo.
#include "tools/probe/report.h"
#include "workbench/control/probe_window.h"
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

using probe::Outcome;
using probe::Task;

// The summary and what does not hold.
std::string headOf(const ProbeWindow& probe) {
    const std::string text = probe.reportText();
    return text.substr(0, text.find("All rows"));
}

std::string countText(const ProbeWindow& probe, Outcome outcome) {
    return std::to_string(probe.report().count(outcome));
}

void checkRow(const ProbeWindow& probe, Step& step, const std::string& id, Outcome wanted) {
    const probe::ReportRow row = probe.row(id);
    step.check(row.statement, "", std::string(probe::outcomeName(row.outcome)) + ": " + row.evidence,
               probe::outcomeName(wanted), row.outcome == wanted);
}

// The whole of the probe's window, upon the host's right side.
void shoot(Stage& stage, Step& step, const ProbeWindow& probe, const std::string& caption) {
    constexpr int kX = 840, kY = 60;  // screen pixels
    SetWindowPos(probe.window(), HWND_TOPMOST, kX, kY, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE);
    stage.bench().host("status");  // the windows below have painted once this is answered
    stage.shootTogether(step, caption, {stage.window("main"), probe.window()});
}

ProbeWindow startWith(Stage& stage, const std::vector<std::string>& arguments) {
    Workbench& bench = stage.openEmpty(ProbeWindow::options());
    bench.startDaemon();
    bench.startHost(arguments, kHostEnvironment);
    ProbeWindow probe(bench);
    bench.host("front main");
    if (!probe.await(Task::start)) throw std::runtime_error("the start's rows are not met");
    return probe;
}

void lookAtStart(Stage& stage, Step& step) {
    const ProbeWindow probe = startWith(stage, {"--require-plugin"});
    step.check("Rows that hold", "0", countText(probe, Outcome::holds), "more than 40",
               probe.report().count(Outcome::holds) > 40);
    step.check("Rows that do not hold", "", countText(probe, Outcome::doesNotHold), "0",
               probe.report().count(Outcome::doesNotHold) == 0);
    shoot(stage, step, probe, "The window lists what is still to do.");
}

void moveAndPutBack(Stage& stage, Step& step) {
    const ProbeWindow probe(stage.bench());
    stage.bench().host("select 41");
    probe.await(Task::selectComponent);
    const auto before = stage.bench().host("positions");
    probe.press(Task::move);
    probe.await(Task::move);
    for (const char* id : {"selection.component", "records.path", "move.set", "move.back"}) {
        checkRow(probe, step, id, Outcome::holds);
    }
    const bool isTicked = waitFor([&] { return probe.lineOf(Task::move).starts_with(L'\u2713'); });
    step.check("The line in the window", "", isTicked ? "ticked off" : "open", "ticked off", isTicked);
    const bool isSame = stage.bench().host("positions") == before;
    step.check("All components", "", isSame ? "where they were" : "elsewhere", "where they were", isSame);
    shoot(stage, step, probe, "What was seen is ticked off.");
}

void lookAtAnother(Stage& stage, Step& step) {
    const ProbeWindow probe = startWith(stage, {"--require-plugin", "--creo", "modes,matrix"});
    stage.bench().host("select 41");
    probe.await(Task::selectComponent);
    for (const char* id : {"mode.assembly", "view.convention", "selection.position"}) {
        checkRow(probe, step, id, Outcome::doesNotHold);
    }
    step.excerpt = headOf(probe);
    shoot(stage, step, probe, "A host that is another Creo.");
}

}  // namespace

void playFirstContact(Stage& stage) {
    stage.step("The probe starts", "Host and daemon were started with orbikon_probe.dll registered.",
               [&](Step& step) { lookAtStart(stage, step); });
    stage.step("A component is moved and put back",
               "A component was selected, and \"Do it\" pressed in the probe's window.",
               [&](Step& step) { moveAndPutBack(stage, step); });
    stage.step(
        "Another Creo is told apart",
        "The host was started as a Creo with other mode numbers and column matrices; below is the report's head.",
        [&](Step& step) { lookAtAnother(stage, step); });
}

}  // namespace workbench
