// A device button runs a command of the menu file.
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr int kBlock = 61;
constexpr const char* kWireframe = "Wireframe";
constexpr double kWay = 60.0;

void moveBlock(Stage& stage) {
    stage.step("A component is moved", "COVER_BLOCK.PRT was moved up, so that there is something to undo.",
               [&](Step& step) {
                   stage.selectForMoving(std::to_string(kBlock));
                   const Vector before = stage.position(kBlock).origin;
                   const auto way = [&] { return length(stage.position(kBlock).origin - before); };
                   stage.pushUntil(step, "The block floats above its place, with the cap still lifted.", {.ty = 200},
                                   [&] { return way() > kWay; });
                   step.check("Way of COVER_BLOCK.PRT", "0", text(way()), "more than 60", way() > kWay);
                   step.check("Steps that can be undone", "0", stage.status("undo"), "1", stage.number("undo") == 1);
               });
}

// Presses the button and looks at the picture; answers the undo depth of before.
void pressWireframe(Stage& stage, Step& step) {
    const std::string style = stage.status("style");
    const double share = stage.backgroundShare();
    stage.shoot(step, "Before.");
    stage.pressButton(kWireframeCommand);
    const bool isDone = waitFor([&] { return stage.status("style") == kWireframe; });
    stage.awaitTicks();
    step.check("Display style", style, stage.status("style"), "Shading, then Wireframe", style == "Shading" && isDone);
    const double shareNow = stage.backgroundShare();
    step.check("Background visible, share of the graphics", text(share, 2), text(shareNow, 2),
               "at least 0.15 more: bodies are seen through", shareNow > share + 0.15);
    stage.shoot(step, "After.");
}

}  // namespace

void playCommandByMacro(Stage& stage) {
    stage.open(CommandWay::byMacro);
    moveBlock(stage);
    stage.step("Button pressed: wireframe", "Button 1 is bound to ProCmdEnvMdlDisp*Wireframe; it was pressed.",
               [&](Step& step) {
                   const std::string undo = stage.status("undo");
                   pressWireframe(stage, step);
                   step.check("Macros run", "0", stage.status("macros_run"), "1", stage.number("macros_run") == 1);
                   step.check("Steps that can be undone", undo, stage.status("undo"), "1, then 0",
                              undo == "1" && stage.number("undo") == 0);
               });
    stage.step("Undo", "Undo was asked of the host.", [&](Step& step) {
        const Vector before = stage.position(kBlock).origin;
        const Reply reply = stage.bench().askHost("undo");
        step.check("The host's answer", "", reply.isOk ? "done" : reply.error, "refused: there is nothing to undo",
                   !reply.isOk);
        const Vector after = stage.position(kBlock).origin;
        step.check("COVER_BLOCK.PRT", text(before), text(after), "where it was", before == after);
        stage.shoot(step, "The block stays where it was moved to.");
    });
}

void playCommandByMapkey(Stage& stage) {
    stage.open(CommandWay::byMapkey);
    const Pose start = stage.position(kBlock);
    moveBlock(stage);
    stage.step("Button pressed: wireframe",
               "The same button was pressed. The plug-in wrote the trail file and typed \"ob\" into the main window.",
               [&](Step& step) {
                   const std::string undo = stage.status("undo");
                   pressWireframe(stage, step);
                   step.check("Mapkeys run", "0", stage.status("mapkeys_run"), "1", stage.number("mapkeys_run") == 1);
                   step.check("Trail files played", "0", stage.status("trails_played"), "1",
                              stage.number("trails_played") == 1);
                   step.check("Steps that can be undone", undo, stage.status("undo"), "unchanged",
                              undo == "1" && stage.status("undo") == undo);
                   const std::string trail = readTextFile(stage.bench().temp() / "orbikon-trail.txt");
                   step.check("Trail file holds the command", "",
                              contains(trail, "`ProCmdEnvMdlDisp` `Wireframe`") ? "yes" : "no", "yes",
                              contains(trail, "~ Command `ProCmdEnvMdlDisp` `Wireframe`;"));
                   step.excerpt = trail;
               });
    stage.step("Undo", "Undo was asked of the host.", [&](Step& step) {
        const Vector before = stage.position(kBlock).origin;
        stage.bench().host("undo");
        const Pose after = stage.position(kBlock);
        step.check("COVER_BLOCK.PRT", text(before), text(after.origin), text(start.origin) + ", where it began",
                   greatestWay(start, after) == 0.0 && before != after.origin);
        stage.shoot(step, "The block is back in its place; the picture is still a wireframe.");
    });
}

}  // namespace workbench
