#include "workbench/host/commands/builtin_commands.h"

#include <string>
#include <utility>

#include "workbench/host/commands/commands.h"
#include "workbench/host/commands/macro_runner.h"
#include "workbench/host/model/host_state.h"

namespace workbench {
namespace {

constexpr double ZOOM_STEP = 1.25;

BuiltinNeeds theNeeds;

bool done(const std::string& text) {
    host().message(text);
    return true;
}

bool refused(const std::string& text) {
    host().error(text);
    return false;
}

bool setStyle(const std::string& option) {
    const auto style = styleByName(option);
    if (!style) return refused("ProCmdEnvMdlDisp: unknown display style \"" + option + "\".");
    host().style = *style;
    host().listeners.pictureChanged();
    return done("Display style: " + option);
}

bool lookFrom(const char* standardView) {
    View& view = host().view();
    view.setOrientation(findStandardView(standardView)->orientation);
    view.refit(host().model().bounds());
    host().listeners.pictureChanged();
    return done(std::string("View: ") + standardView);
}

bool zoomBy(double factor) {
    host().view().zoom(factor);
    host().listeners.pictureChanged();
    return true;
}

bool openModel(const std::string& name) {
    Model* model = host().findModelByName(name);
    if (model == nullptr) return refused("There is no model \"" + name + "\".");
    host().open(*model);
    theNeeds.modelOpened();
    return done("Model " + model->name + " is current.");
}

bool report(bool isDone, const char* text, const char* otherwise) { return done(isDone ? text : otherwise), isDone; }

using Run = bool (*)(const std::string& option);
struct Builtin {
    const char* name;
    const char* label;
    Run run;
};

constexpr Builtin BUILTINS[] = {
    {"ProCmdEnvMdlDisp", "Display style", setStyle},
    {"ProCmdViewFront", "Front", [](const auto&) { return lookFrom("front"); }},
    {"ProCmdViewBack", "Back", [](const auto&) { return lookFrom("back"); }},
    {"ProCmdViewTop", "Top", [](const auto&) { return lookFrom("top"); }},
    {"ProCmdViewBottom", "Bottom", [](const auto&) { return lookFrom("bottom"); }},
    {"ProCmdViewLeft", "Left", [](const auto&) { return lookFrom("left"); }},
    {"ProCmdViewRight", "Right", [](const auto&) { return lookFrom("right"); }},
    {"ProCmdViewDefault", "Default orientation", [](const auto&) { return lookFrom("default"); }},
    {"ProCmdViewRefit", "Refit",
     [](const auto&) {
         host().view().refit(host().model().bounds());
         host().listeners.pictureChanged();
         return done("View refitted.");
     }},
    {"ProCmdViewZoomIn", "Zoom in", [](const auto&) { return zoomBy(ZOOM_STEP); }},
    {"ProCmdViewZoomOut", "Zoom out", [](const auto&) { return zoomBy(1.0 / ZOOM_STEP); }},
    {"ProCmdViewRepaint", "Repaint",
     [](const auto&) {
         theNeeds.redrawGraphics();
         return done("Repainted.");
     }},
    {"ProCmdViewModelTree", "Model tree",
     [](const auto&) { return done(theNeeds.toggleTree() ? "Model tree shown." : "Model tree hidden."); }},
    {"ProCmdViewTriad", "Axis triad",
     [](const auto&) {
         host().hasTriad = !host().hasTriad;
         host().listeners.pictureChanged();
         return done(host().hasTriad ? "Triad shown." : "Triad hidden.");
     }},
    {"ProCmdSelectAll", "Select all",
     [](const auto&) {
         host().selectAll();
         return done(std::to_string(host().selection().size()) + " selected.");
     }},
    {"ProCmdSelectNone", "Select none",
     [](const auto&) {
         host().select({});
         return done("Nothing selected.");
     }},
    {"ProCmdEditUndo", "Undo",
     [](const auto&) { return report(host().undo(), "Undone.", "There is nothing to undo."); }},
    {"ProCmdEditRedo", "Redo",
     [](const auto&) { return report(host().redo(), "Redone.", "There is nothing to redo."); }},
    {"ProCmdCompDelete", "Delete",
     [](const auto&) { return report(host().deleteSelected(), "Deleted.", "Nothing is selected."); }},
    {"ProCmdCompSuppress", "Suppress",
     [](const auto&) { return report(host().suppressSelected(), "Suppressed.", "Nothing is selected."); }},
    {"ProCmdCompResume", "Resume all",
     [](const auto&) { return report(host().resumeAll(), "Resumed.", "Nothing is suppressed."); }},
    {"ProCmdModelOpen", "Open model", openModel},
    {"ProCmdWindowActivate", "Accessory window",
     [](const auto&) {
         theNeeds.showAccessory();
         return done("Accessory window shown.");
     }},
    {"ProCmdUtilTrailTrain", "Play trail file...",
     [](const auto&) {
         openTrailDialog();
         return true;
     }},
    {"ProFileSelPushOpen@context_dlg_open_cmd", "Open the named file",
     [](const auto&) { return confirmTrailDialog(); }},
};

}  // namespace

void addBuiltinCommands(BuiltinNeeds needs) {
    theNeeds = std::move(needs);
    for (const auto& [name, label, run] : BUILTINS) {
        Command command;
        command.name = name;
        command.label = label;
        command.run = run;
        commands().add(std::move(command));
    }
}

}  // namespace workbench
