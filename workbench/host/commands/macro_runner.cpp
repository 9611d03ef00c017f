#include "workbench/host/commands/macro_runner.h"

#include <windows.h>

#include <optional>
#include <utility>
#include <vector>

#include "workbench/host/commands/commands.h"
#include "workbench/host/commands/key_sequence.h"
#include "workbench/host/commands/macro_text.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"

namespace workbench {
namespace {

constexpr int TRAIL_DEPTH_MAX = 4;  // a trail file may play another one, but not endlessly

MacroCounts counts;
std::vector<std::string> queuedMacros;   // the last one runs first
std::optional<std::string> trailDialog;  // the name typed so far; nothing while the dialog is closed
int trailDepth = 0;
std::function<void()> wakeRunner = [] {};

bool refuse(const std::string& reason) {
    ++counts.failed;
    host().error(reason);
    return false;
}

// "~ Update `dialog` `field` `value`": types into a dialog.
bool updateDialog(const MacroStatement& statement) {
    const auto& arguments = statement.arguments;
    if (arguments.size() < 3) return refuse("Macro: Update needs a dialog, a field and a value.");
    if (arguments[0] != "file_open" || arguments[1] != "Inputname") {
        return refuse("Macro: there is no field \"" + arguments[1] + "\" in a dialog \"" + arguments[0] + "\".");
    }
    if (!trailDialog) return refuse("Macro: the dialog \"file_open\" is not open.");
    trailDialog = arguments[2];
    return true;
}

bool runCommandStatement(const MacroStatement& statement) {
    if (statement.arguments.empty()) return refuse("Macro: Command needs a name.");
    const std::string option = statement.arguments.size() > 1 ? statement.arguments[1] : "";
    if (runCommand(statement.arguments[0], option)) return true;
    ++counts.failed;
    return false;
}

bool runStatement(const MacroStatement& statement) {
    if (statement.verb == "Command") return runCommandStatement(statement);
    if (statement.verb == "Update") return updateDialog(statement);
    return refuse("Macro: unknown verb \"" + statement.verb + "\".");
}

bool runStatements(const MacroParse& parse, const std::string& source) {
    if (!parse.error.empty()) return refuse(source + ": " + parse.error + ".");
    for (const MacroStatement& statement : parse.statements) {
        if (!runStatement(statement)) return false;
    }
    return true;
}

}  // namespace

const MacroCounts& macroCounts() { return counts; }

void setMacroWaker(std::function<void()> wake) { wakeRunner = std::move(wake); }

void queueMacro(const std::string& macro) {
    queuedMacros.push_back(macro);
    wakeRunner();
}

void runQueuedMacros() {
    while (!queuedMacros.empty()) {
        const std::string macro = std::move(queuedMacros.back());
        queuedMacros.pop_back();
        ++counts.queuedRun;
        host().history.clear();  // before, so that the macro itself cannot undo, and after for what it did
        runMacro(macro);
        host().history.clear();
    }
}

bool runMacro(const std::string& macro) { return runStatements(parseMacro(macro), "Macro"); }

void openTrailDialog() {
    trailDialog = "";
    host().message("Play trail file: which one?");
}

bool confirmTrailDialog() {
    if (!trailDialog) return refuse("The dialog \"file_open\" is not open.");
    const std::string path = std::move(*trailDialog);
    trailDialog.reset();
    return playTrailFile(path);
}

bool playTrailFile(const std::string& path) {
    if (trailDepth >= TRAIL_DEPTH_MAX) return refuse("Trail file \"" + path + "\": nested too deeply.");
    const auto content = readFile(utf8ToWide(path));
    if (!content) return refuse("Trail file \"" + path + "\" cannot be opened.");
    ++counts.trailsPlayed;
    ++trailDepth;
    const bool isDone = runStatements(parseTrailFile(*content), "Trail file \"" + path + "\"");
    --trailDepth;
    return isDone;
}

void typeMapkeyCharacter(char key) {
    const Mapkey* found = keySequence().type(key, GetTickCount());
    if (found == nullptr) return;
    const Mapkey mapkey = *found;  // its macro may define others
    ++counts.mapkeysRun;
    host().message("Mapkey " + mapkey.keys + (mapkey.label.empty() ? "" : " (" + mapkey.label + ")"));
    runMacro(mapkey.macro);
}

}  // namespace workbench
