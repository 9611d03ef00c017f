// The control panel: a cap to push with the mouse, and bindings made by hand.
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "workbench/control/panel_window.h"
#include "workbench/pipes/text.h"
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr const char* kSelection = "58 61";
constexpr int kPump = 58;
constexpr double kWay = 40.0;
constexpr int kDragRight = 50, kDragUp = 25;  // pixels
constexpr const char* kHostPlace = "place 0 0 740 900";
constexpr const char* kPanelPlace = "740,0,540,900";  // beside it
constexpr const char* kRest = "0 0 0 0 0 0";
constexpr const char* kWords = "wirefr";
constexpr int kButton = 7;

// The panel and the host, which are shown together.
struct Desk {
    Stage& stage;
    std::filesystem::path bindFile;
    std::optional<PanelWindow> panel{};

    std::string axes() { return stage.bench().daemonStatus("axes"); }
    void shoot(Step& step, const std::string& caption) {
        panel->awaitPainted();
        stage.shootTogether(step, caption, {stage.window("main"), panel->window()});
    }
    void shootPanel(Step& step, const std::string& caption) {
        panel->awaitPainted();
        stage.shootTogether(step, caption, {panel->window()});
    }
    bool awaitStatus(std::string_view part) {
        return waitFor([&] { return contains(panel->caption(panel::kStatus), part); });
    }
};

void openPanel(Desk& desk, Step& step) {
    Stage& stage = desk.stage;
    stage.bench().host(kHostPlace);
    stage.bench().host("command ProCmdViewRefit");
    desk.panel.emplace(stage.bench(), desk.bindFile, std::vector<std::string>{"--place", kPanelPlace});
    const bool isTold = desk.awaitStatus("moves the view");
    step.check("The panel's lowest line", "", desk.panel->caption(panel::kStatus),
               "says that the cap moves the view, and the mode that the host told",
               isTold && contains(desk.panel->caption(panel::kStatus), kAssemblyMode));
    wchar_t line[256] = L"";
    SendMessageW(desk.panel->control(panel::kApplications), LB_GETTEXT, 0, reinterpret_cast<LPARAM>(line));
    const std::string application = utf8Text(line);
    step.check("Application that it lists", "", application, "xtopCreo, and its mode",
               contains(application, "xtopCreo") && contains(application, kAssemblyMode));
    desk.shoot(step, "The host at the left, the panel at the right.");
    desk.panel->openPage(panel::kDevicePage);
    desk.shootPanel(step, "The panel's page \"Device\".");
    desk.panel->openPage(panel::kButtonsPage);
}

void dragCap(Desk& desk, Step& step) {
    Stage& stage = desk.stage;
    stage.selectForMoving(kSelection);
    desk.awaitStatus("moves components");
    const auto screen = stage.screenAxes();
    const Vector before = stage.position(kPump).origin;
    const auto way = [&] { return stage.position(kPump).origin - before; };
    desk.panel->drag(kDragRight, kDragUp);
    const bool isFar = waitFor([&] { return length(way()) > kWay; });
    const std::string pushed = desk.axes();
    desk.shoot(step, "While the mouse holds the cap.");
    desk.panel->letGo();
    const bool isAtRest = waitFor([&] { return desk.axes() == kRest; });
    stage.release();
    int tx = 0, ty = 0, others[4] = {};
    std::sscanf(pushed.c_str(), "%d %d %d %d %d %d", &tx, &ty, &others[0], &others[1], &others[2], &others[3]);
    step.check("The daemon's axes while it was held", kRest, pushed, "tx about twice ty, the others 0",
               tx > 0 && std::abs(tx - 2 * ty) <= 2 && pushed.ends_with(" 0 0 0 0"));
    step.check("Way of OIL_PUMP.ASM", "0", text(length(way())), "more than 40", isFar);
    const Vector wanted = normalised(screen[0] * tx + screen[1] * ty);
    const double offAxis = length(way() - wanted * dot(way(), wanted));
    step.check("Way aside of the drag's direction", "", text(offAxis), "0 (1e-9)", offAxis < 1e-9);
    step.check("The daemon's axes once the mouse let go", pushed, desk.axes(), kRest, isAtRest);
}

void bindBySearch(Desk& desk, Step& step) {
    PanelWindow& panel = *desk.panel;
    const auto bindings = [&] {
        std::string lines;
        for (const std::string& line : desk.stage.bench().daemon("bindings")) lines += line + "\n";
        return lines;
    };
    panel.openPage(panel::kBindingsPage);
    panel.chooseMode(kAssemblyMode);
    for (int i = 1; i < kButton; ++i) panel.key(panel::kButtons, VK_DOWN);
    panel.search(kWords);
    step.check("Commands found", "", panel.caption(panel::kCount), "a few of thousands",
               contains(panel.caption(panel::kCount), "found") && panel.caption(panel::kCount) != "0 found");
    panel.press(panel::kBind);
    const std::string wanted = std::string(kAssemblyMode) + "|" + std::to_string(kButton) + "|" + kWireframeCommand;
    const bool isBound = waitFor([&] { return contains(bindings(), wanted); });
    step.check("Bindings that the daemon has", "", isBound ? wanted : bindings(), wanted, isBound);
    step.excerpt = readTextFile(desk.bindFile);
    step.check("Bind file", "none", contains(step.excerpt, kWireframeCommand) ? "names the command" : "does not",
               "names the command", contains(step.excerpt, std::to_string(kButton) + " = " + kWireframeCommand));
    desk.shootPanel(step, "What was typed, what was found, and the button that is bound to it.");
}

void pressButton(Desk& desk, Step& step) {
    Stage& stage = desk.stage;
    desk.panel->openPage(panel::kButtonsPage);
    const std::string before = stage.status("style");
    const std::string label = desk.panel->caption(panel::kFirstButton, kButton - 1);
    step.check("What the button says", "", label.substr(label.find('\n') + 1), "Wireframe",
               contains(label, "Wireframe"));
    desk.panel->press(panel::kFirstButton, kButton - 1);
    const bool isDone = waitFor([&] { return stage.status("style") == "Wireframe"; });
    step.check("Display style", before, stage.status("style"), "Shading, then Wireframe",
               before == "Shading" && isDone);
    stage.awaitTicks();
    desk.shoot(step, "The command has run.");
}

// A cap that is held when the panel goes would go on moving components.
void closePanel(Desk& desk, Step& step) {
    PanelWindow& panel = *desk.panel;
    panel.press(panel::kHold);
    panel.drag(-kDragRight, 0);
    waitFor([&] { return desk.axes() != kRest; });
    panel.letGo();
    const std::string held = desk.axes();
    desk.shoot(step, "\"Hold\" keeps the cap pushed to the left, without the mouse.");
    PostMessageW(panel.window(), WM_CLOSE, 0, 0);
    const bool hasEnded = panel.process().waitForExit(kPatienceMs).has_value();
    step.check("Panel", "runs", hasEnded ? "has ended" : "runs", "has ended", hasEnded);
    const bool isAtRest = waitFor([&] { return desk.axes() == kRest; });
    step.check("The daemon's axes", held, desk.axes(), std::string("deflected, then ") + kRest,
               held != kRest && isAtRest);
    desk.stage.release();
}

}  // namespace

void playPanel(Stage& stage) {
    stage.open();
    Desk desk{stage, stage.bench().folder() / "panel_buttons.txt"};
    stage.step("The panel beside the host", "obk_panel.exe was started; it found the daemon and the menu file.",
               [&](Step& step) { openPanel(desk, step); });
    stage.step(
        "The cap is dragged",
        "OIL_PUMP.ASM and COVER_BLOCK.PRT are selected in move mode. The panel's cap was dragged with the mouse, "
        "twice as far to the right as up, and let go.",
        [&](Step& step) { dragCap(desk, step); });
    stage.step(
        "A binding is made by search",
        "On the page \"Bindings\" mode Assembly and button 7 were chosen, \"wirefr\" typed, and \"Bind\" pressed.",
        [&](Step& step) { bindBySearch(desk, step); });
    stage.step("The button is pressed", "Button 7 was pressed on the page \"Buttons\".",
               [&](Step& step) { pressButton(desk, step); });
    stage.step("The panel is closed while it holds the cap",
               "\"Hold\" was ticked, the cap dragged to the left, and the panel closed.",
               [&](Step& step) { closePanel(desk, step); });
}

}  // namespace workbench
