// The probe in the host, played through as a user does it, in the Creo that the plug-in knows and in others.
#include <nlohmann/json.hpp>
#include <set>

#include "tests/e2e/e2e.h"
#include "workbench/control/probe_window.h"

namespace e2e {
namespace {

using namespace probe;
using Ids = std::set<std::string>;

class ProbeBench : public Workbench {
  public:
    explicit ProbeBench(const std::string& variant = "") : Workbench(workbench::ProbeWindow::options()) {
        startDaemon();
        start(variant, "english");
    }

    void start(const std::string& variant, const std::string& language) {
        std::vector<std::string> arguments{"--require-plugin"};
        if (!variant.empty()) arguments.insert(arguments.end(), {"--creo", variant});
        startHost(arguments, {{"PRO_LANG", language}, {"USERNAME", "gearbox"}});
        mProbe.emplace(*this);
    }
    const workbench::ProbeWindow& probe() const { return *mProbe; }

    Ids ids(Outcome outcome) const {
        Ids found;
        for (const ReportRow& row : probe().report().rows) {
            if (row.outcome == outcome) found.insert(row.id);
        }
        return found;
    }
    void await(Task task) const { EXPECT_TRUE(probe().await(task)) << textOf(task).title.english; }
    void rest(Task task, const char* where) const { EXPECT_TRUE(probe().rest(task, where)) << where; }
    void doAndAwait(Task task, bool yes = true) const {
        probe().press(task, yes);
        await(task);
    }
    std::string status(const std::string& key) {
        for (const std::string& line : host("status")) {
            if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
        }
        return {};
    }
    void push(std::size_t axis, int value) {
        std::string command = "axes";
        for (std::size_t i = 0; i < 6; ++i) command += i == axis ? " " + std::to_string(value) : " 0";
        daemon(command);
        const int reads = std::stoi(daemonStatus("reads"));
        EXPECT_TRUE(waitFor([&] { return std::stoi(daemonStatus("reads")) > reads + 1; }));
    }

  private:
    std::optional<workbench::ProbeWindow> mProbe;
};

void playSelection(ProbeBench& bench) {
    bench.await(Task::start);
    bench.host("menu");
    bench.host("select none");
    bench.doAndAwait(Task::assembly);
    bench.doAndAwait(Task::selectNothing);
    bench.host("select 41");
    bench.await(Task::selectComponent);
    const Pose view = workbench::poseOf(bench.host("view").at(0));
    const auto positions = bench.host("positions");
    bench.doAndAwait(Task::view);
    bench.doAndAwait(Task::move);
    EXPECT_EQ(bench.host("positions"), positions);
    EXPECT_LT(length(workbench::poseOf(bench.host("view").at(0)).origin - view.origin), 1e-6);
    bench.doAndAwait(Task::undoAfterMove, bench.status("undo") == "1");
}

void playModes(ProbeBench& bench) {
    bench.host("model DRIVE_SHAFT");
    bench.doAndAwait(Task::part);
    bench.await(Task::changeWindow);
    bench.host("model BRACKET");
    bench.doAndAwait(Task::sketch);
    bench.host("mode drawing");
    bench.doAndAwait(Task::drawing);
    bench.host("model GEARBOX");
}

void playMacros(ProbeBench& bench) {
    bench.doAndAwait(Task::macros);
    bench.doAndAwait(Task::undoAfterMacros, bench.status("undo") == "0");
}

void playPointer(ProbeBench& bench) {
    bench.host("front main");
    bench.rest(Task::restTree, "tree");
    bench.rest(Task::restToolbar, "toolbar");
    bench.rest(Task::restGraphics, "graphics");
    bench.host("panel library");
    bench.rest(Task::restList, "listbox");
    bench.rest(Task::scrollBars, "listbox");
    bench.host("panel browser");
    bench.rest(Task::restBrowser, "browser");
    const auto wheel = bench.host("scroll browser");
    bench.rest(Task::scrollWheel, "browser");
    EXPECT_TRUE(waitFor([&] { return bench.host("scroll browser") != wheel; }));
    bench.doAndAwait(Task::wheelMoved);
}

void playMapkey(ProbeBench& bench) {
    bench.host("select 41");
    bench.host("front main");
    bench.probe().press(Task::move);
    EXPECT_TRUE(waitFor([&] { return bench.status("undo") == "1"; }));
    bench.doAndAwait(Task::mapkey);
    bench.doAndAwait(Task::undoAfterMapkey, bench.status("undo") == "1");
    EXPECT_TRUE(std::filesystem::is_empty(bench.temp())) << "the trail file goes";
}

void playDevice(ProbeBench& bench) {
    bench.doAndAwait(Task::device);
    bench.probe().begin(Task::buttons);
    bench.daemon("event " + std::to_string(0x20021));
    bench.await(Task::buttons);
    std::size_t axis = 0;
    for (const Task task : {Task::pushRight, Task::pushUp, Task::pushTowards, Task::turnX, Task::turnY, Task::turnZ}) {
        bench.probe().begin(task);
        bench.push(axis, 200);
        bench.push(axis++, 0);
        bench.await(task);
    }
    for (const Task task : {Task::legacyOn, Task::legacyOff}) {
        bench.probe().begin(task);
        EXPECT_EQ(bench.daemonStatus("legacy"), task == Task::legacyOff ? "0" : "1");
        bench.push(0, 100);
        bench.await(task);
        bench.push(0, 0);
    }
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "1"; }));
}

// In the Creo that the plug-in knows, all holds, and nothing is left behind.
TEST(Probe, EverythingHoldsInTheHost) {
    ProbeBench bench;
    playSelection(bench);
    playModes(bench);
    playMacros(bench);
    playPointer(bench);
    playMapkey(bench);
    bench.probe().press(Task::work);
    playDevice(bench);
    bench.await(Task::work);
    EXPECT_EQ(bench.ids(Outcome::doesNotHold), Ids{});
    EXPECT_EQ(bench.ids(Outcome::notMet), Ids{});
    const std::string text = bench.probe().reportText();
    const std::string width = "bit width: " + std::to_string(8 * sizeof(void*)) + "\n";
    for (const std::string& fact :
         {std::string("release: 30 M060\n"), width, std::string("does not hold 0, not met yet 0")}) {
        EXPECT_THAT(text, testing::HasSubstr(fact));
    }
    for (const std::string& name : {bench.profile().string(), std::string("gearbox"), std::string("GEARBOX")}) {
        EXPECT_EQ(text.find(name), std::string::npos) << name;
    }
    const auto output = bench.folder() / "doctor.txt";
    const auto doctor = bench.Workbench::start(
        workbench::buildFolder() / "orbikon_doctor.exe",
        {"probe-report", (bench.profile() / "OrbikonController" / "probe_report.txt").string(), "--json"}, output);
    EXPECT_EQ(doctor.waitForExit(workbench::kPatienceMs), 0u);
    EXPECT_EQ(nlohmann::json::parse(bytesOf(output))["summary"]["holds"], assumptions().size());
    bench.host("plugin terminate");
    // The matrix that the host is to refuse is all that it has to say.
    EXPECT_EQ(bench.host("invariants"), std::vector<std::string>{"ProViewMatrixSet: an axis is of length 2"});
    EXPECT_FALSE(IsWindow(bench.probe().window()));
}

// Another Creo: each deviation is named, with what it means for the plug-in.
TEST(Probe, NamesWhatIsDifferentInAnotherCreo) {
    Ids functions;
    for (const std::string& name : toolkitFunctions()) functions.insert(functionRow(name));
    struct Case {
        const char* variant;
        std::vector<void (*)(ProbeBench&)> play;
        Ids broken;
        const char* id;  // of a row whose evidence and consequence are looked at
        const char* evidence;
        const char* consequence;
    };
    for (const auto& [variant, play, broken, id, evidence, consequence] : std::vector<Case>{
             {"modes",
              {playSelection, playModes},
              {"mode.assembly", "mode.part", "mode.drawing"},
              "mode.assembly",
              "mode 6",
              "no component moves"},
             {"matrix,macros",
              {playSelection, playMacros},
              {"view.convention", "view.vector", "view.axes", "selection.position", "macro.queued", "macro.order"},
              "view.convention",
              "column convention",
              "wrong axes"},
             {"no-menu-bar,windows",
              {playPointer},
              {"registration.menu", "windows.graphics", "pointer.tree", "pointer.list", "pointer.browser",
               "pointer.toolbar"},
              "registration.menu",
              "ProMenubarMenuAdd answers -4",
              "on the device's buttons only"},
             {"module", {}, functions, "function.ProMdlCurrentGet", "in creo_toolkit.dll", "no component moves"},
         }) {
        ProbeBench bench(variant);
        for (const auto scenario : play) scenario(bench);
        EXPECT_TRUE(waitFor([&] { return bench.ids(Outcome::doesNotHold) == broken; }))
            << variant << ": " << testing::PrintToString(bench.ids(Outcome::doesNotHold));
        EXPECT_THAT(bench.probe().row(id).evidence, testing::HasSubstr(evidence));
        const std::string text = bench.probe().reportText();
        const std::size_t rows = text.find("All rows");
        for (const std::string& name : broken) {
            EXPECT_LT(text.find("  " + name + ": "), rows) << variant;
            EXPECT_LT(text.find("so: " + bench.probe().row(name).consequence), rows) << variant;
        }
        EXPECT_THAT(bench.probe().row(id).consequence, testing::HasSubstr(consequence));
    }
}

// A call that ends Creo is written down, and left alone from then on.
TEST(Probe, WhatEndsCreoIsNotTriedAgain) {
    ProbeBench bench;
    bench.await(Task::start);
    bench.host("during ProViewMatrixSet crash");
    bench.probe().press(Task::view);
    EXPECT_TRUE(bench.waitForHostExit().has_value());
    for (int start = 0; start < 2; ++start) {
        bench.start("", "german");
        EXPECT_EQ(bench.probe().row("view.set").outcome, Outcome::doesNotHold);
        EXPECT_THAT(bench.probe().row("view.set").evidence, testing::HasSubstr("in creo_host.exe at offset"));
        bench.probe().press(Task::view);
        EXPECT_TRUE(waitFor([&] { return bench.probe().row("view.rejects").outcome == Outcome::holds; }));
        EXPECT_EQ(bench.host("calls ProViewMatrixSet"), std::vector<std::string>{"1"});
    }
    EXPECT_EQ(bench.probe().lineOf(Task::drawing), L"   Eine Zeichnung \u00F6ffnen");
}

}  // namespace
}  // namespace e2e
