#include "workbench/daemon/control.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "workbench/pipes/numbers.h"

namespace workbench {
namespace {

constexpr UINT kExitDied = 3;
constexpr long long kMostSteps = 1000000;

Reply done(std::vector<std::string> lines = {}) { return {.isOk = true, .error = {}, .lines = std::move(lines)}; }

std::int32_t number(const std::string& text, long long least, long long greatest) {
    return static_cast<std::int32_t>(parseNumber(text, least, greatest));
}

// Words between blanks; a word with blanks in it stands in double quotes.
std::vector<std::string> splitWords(const std::string& line) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isInWord = false;
    for (const char c : line) {
        const bool isBlank = c == ' ' || c == '\t' || c == '\r';
        if (isBlank && !isQuoted) {
            isInWord = false;
            continue;
        }
        if (!isInWord) words.emplace_back();
        isInWord = true;
        if (c == '"') {
            isQuoted = !isQuoted;
        } else {
            words.back() += c;
        }
    }
    if (isQuoted) throw std::runtime_error("a quote is not closed");
    return words;
}

// Faults are ended together, so one entry stands for all of them.
bool isFault(const std::string& name) { return name == "fail" || name == "hang" || name == "pump" || name == "chaos"; }

void requireOperation(const std::string& name) {
    if (std::ranges::find(kOperationNames, name) != kOperationNames.end()) return;
    throw std::runtime_error('"' + name + "\" is not an operation");
}

bool isChoice(const std::string& word, std::string_view yes, std::string_view no) {
    if (word != yes && word != no)
        throw std::runtime_error('"' + word + "\" is neither " + std::string(yes) + " nor " + std::string(no));
    return word == yes;
}

std::string axesLine(const Axes& axes) {
    Fields fields;
    for (const std::int16_t axis : axes) fields.push_back(std::to_string(axis));
    return joinFields(fields, ' ');
}

}  // namespace

struct Control::Command {
    std::string_view name;
    std::string_view usage;
    std::string_view meaning;
    std::size_t least, greatest;  // number of arguments
    Reply (Control::*run)(const Words&);
};

const Control::Command Control::kCommands[] = {
    {"axes", "TX TY TZ RX RY RZ", "deflects the cap until changed", 6, 6, &Control::axes},
    {"extras", "A B", "sets the two values that come with the axes", 2, 2, &Control::extras},
    {"event", "CODE [failing]", "sends an event, with a failing read on demand", 1, 2, &Control::event},
    {"button", "N", "presses a button as bound for the current mode", 1, 1, &Control::button},
    {"bind", "BINDFILE MNUFILE [keep]", "binds the buttons to commands of a menu file; keep: also to missing ones", 2,
     3, &Control::bind},
    {"bindings", "", "answers all bindings, as lines mode|button|command|index (-1: missing)", 0, 0,
     &Control::bindings},
    {"settings", "ROTATIONMODE FLAG", "changes the advanced settings and says so", 2, 2, &Control::settings},
    {"legacy", "0|1", "sets LegacyCOM1", 1, 1, &Control::legacy},
    {"legacy-read", "", "answers the axes as the legacy channel carries them", 0, 0, &Control::legacyRead},
    {"devices", "N", "sets the number of attached devices, however absurd", 1, 1, &Control::devices},
    {"fail", "OPERATION WHICH", "makes calls fail: 3 (the third), 2-5, always, never", 2, 2, &Control::fault},
    {"hang", "OPERATION MS [WHICH]", "makes calls hang in the library before they return", 2, 3, &Control::fault},
    {"pump", "OPERATION [WHICH]", "makes calls dispatch messages before they return", 1, 2, &Control::fault},
    {"chaos", "SEED [PER_MILLE] | off", "makes calls fail, hang or pump at random", 1, 2, &Control::fault},
    {"calm", "", "ends fail, hang, pump and chaos", 0, 0, &Control::fault},
    {"hold", "on|off", "makes reads hang until released or disconnected", 1, 1, &Control::hold},
    {"status", "", "answers the state as lines key=value", 0, 0, &Control::status},
    {"modes", "", "answers all modes told, as lines application|mode", 0, 0, &Control::modes},
    {"applications", "", "answers who is connected, as lines process|application|mode", 0, 0, &Control::applications},
    {"take-back", "on|off", "sets back what this client sets, once it has gone in whatever way", 1, 1,
     &Control::takeBack},
    {"record", "FILE | off", "writes all that reaches applications into a file", 1, 1, &Control::record},
    {"replay", "FILE [step] | off", "plays a record in real time, or as step asks", 1, 2, &Control::replay},
    {"step", "[COUNT]", "plays the next lines of a record, 1 unless given", 0, 1, &Control::step},
    {"help", "", "answers this list", 0, 0, &Control::showHelp},
    {"quit", "", "ends the daemon in order", 0, 0, &Control::quit},
    {"die", "", "ends the daemon abruptly", 0, 0, &Control::die},
};

Control::Control(Device& device, std::function<void()> quit)
    : mDevice(device), mQuit(std::move(quit)), mPlayer([this](const std::string& line) { return run(line); }) {
    mDevice.setListener([this](const std::string& command) { mRecorder.note(command); });
}

Reply Control::run(const std::string& line) try {
    const Words words = splitWords(line);
    if (words.empty()) throw std::runtime_error("no command");
    const auto command = std::ranges::find(kCommands, words.front(), &Command::name);
    if (command == std::end(kCommands)) throw std::runtime_error("unknown command \"" + words.front() + '"');
    const std::size_t count = words.size() - 1;
    if (count < command->least || count > command->greatest) {
        throw std::runtime_error("usage: " + std::string(command->name) + ' ' + std::string(command->usage));
    }
    return (this->*command->run)(words);
} catch (const std::runtime_error& failure) {
    return {.isOk = false, .error = failure.what(), .lines = {}};
}

std::vector<std::string> Control::help() {
    constexpr std::size_t kColumn = 31;
    std::vector<std::string> lines;
    for (const Command& command : kCommands) {
        std::string line = std::string(command.name) + ' ' + std::string(command.usage);
        line.resize(std::max(line.size() + 1, kColumn), ' ');
        lines.push_back(line + std::string(command.meaning));
    }
    return lines;
}

Reply Control::axes(const Words& words) {
    Axes axes;
    std::transform(words.begin() + 1, words.end(), axes.begin(),
                   [](const std::string& word) { return parseNumber<std::int16_t>(word); });
    mDevice.setAxes(axes);
    return done();
}

Reply Control::extras(const Words& words) {
    mDevice.setExtras({parseNumber<std::int32_t>(words[1]), parseNumber<std::int32_t>(words[2])});
    return done();
}

Reply Control::event(const Words& words) {
    const auto code = parseNumber<std::int32_t>(words[1]);
    if (words.size() > 2 && words[2] != "failing") throw std::runtime_error("only \"failing\" may follow the code");
    mDevice.pushEvent({.code = code, .isFailing = words.size() > 2});
    return done();
}

Reply Control::button(const Words& words) {
    const std::int32_t button = parseNumber<std::int32_t>(words[1]);
    const std::lock_guard lock(mBindingsLock);
    const int index = mBindings.functionIndex(mDevice.currentMode(), button);
    mDevice.pushEvent({.code = APPL_FUNC_START + index, .isFailing = false});
    return done();
}

Reply Control::bind(const Words& words) {
    if (words.size() > 3 && words[3] != "keep") throw std::runtime_error("only \"keep\" may follow the files");
    const std::lock_guard lock(mBindingsLock);
    mBindings.load(words[1], words[2], words.size() > 3 ? UnknownCommands::kept : UnknownCommands::refused);
    return done({"bindings=" + std::to_string(mBindings.count())});
}

Reply Control::bindings(const Words&) {
    const std::lock_guard lock(mBindingsLock);
    return done(mBindings.lines());
}

Reply Control::settings(const Words& words) {
    mDevice.setAdvancedSettings(
        {.rotationMode = parseNumber<std::int32_t>(words[1]), .contextFlag = parseNumber<std::uint8_t>(words[2])});
    return done();
}

Reply Control::legacy(const Words& words) {
    mDevice.setOwnLegacy(number(words[1], 0, 1));
    return done();
}

Reply Control::legacyRead(const Words&) { return done({axesLine(mDevice.legacyAxes())}); }

Reply Control::devices(const Words& words) {
    mDevice.setDeviceCount(parseNumber<std::int32_t>(words[1]));
    return done();
}

Reply Control::fault(const Words& words) {
    if (words[0] != "chaos" && words[0] != "calm") requireOperation(words[1]);
    mDevice.setFaults(words[0], {words.begin() + 1, words.end()});
    return done();
}

Reply Control::hold(const Words& words) {
    mDevice.setHold(isChoice(words[1], "on", "off"));
    return done();
}

Reply Control::status(const Words&) {
    std::vector<std::string> lines = mDevice.status();
    lines.push_back("recording=" + mRecorder.path());
    lines.push_back("replayed=" + mPlayer.state());
    return done(std::move(lines));
}

Reply Control::modes(const Words&) {
    std::vector<std::string> lines;
    for (const ModeReport& report : mDevice.modeReports()) lines.push_back(report.application + '|' + report.mode);
    return done(std::move(lines));
}

Reply Control::applications(const Words&) {
    std::vector<std::string> lines;
    for (const Application& one : mDevice.applications()) {
        lines.push_back(std::to_string(one.processId) + '|' + one.name + '|' + one.mode);
    }
    return done(std::move(lines));
}

// Reached by what is no connection only, such as a script.
Reply Control::takeBack(const Words&) {
    throw std::runtime_error("only a client of the control pipe can ask for this");
}

Reply Control::record(const Words& words) {
    if (words[1] == "off") {
        mRecorder.stop();
        return done();
    }
    mRecorder.start(words[1]);
    mRecorder.note("settings " + settingsWords());
    mRecorder.note("devices " + std::to_string(mDevice.deviceCount()));
    mRecorder.note("axes " + axesLine(mDevice.axes()));
    return done();
}

Reply Control::replay(const Words& words) {
    if (words.size() > 2 && words[2] != "step") throw std::runtime_error("only \"step\" may follow the file");
    if (words[1] == "off") {
        mPlayer.stop();
    } else {
        mPlayer.start(words[1], words.size() > 2);
    }
    return done();
}

Reply Control::step(const Words& words) {
    return done(mPlayer.step(words.size() > 1 ? number(words[1], 1, kMostSteps) : 1));
}

std::string Control::settingsWords() {
    const AdvancedSettings settings = mDevice.advancedSettings();
    return std::to_string(settings.rotationMode) + ' ' + std::to_string(settings.contextFlag);
}

std::string Control::undoOf(const std::string& line) {
    const std::string name = line.substr(0, line.find_first_of(" \t"));
    if (name == "axes") return "axes 0 0 0 0 0 0";
    if (name == "extras") return "extras 0 0";
    if (name == "settings") return "settings " + settingsWords();
    if (name == "devices") return "devices " + std::to_string(mDevice.deviceCount());
    if (name == "legacy") return "legacy " + std::to_string(mDevice.ownLegacy());
    if (name == "hold") return "hold off";
    if (name == "record") return "record off";
    if (name == "replay") return "replay off";
    return isFault(name) ? "calm" : "";
}

Reply ControlConnection::run(const std::string& line) {
    if (line == "take-back on" || line == "take-back off") {
        mIsTakingBack = line.ends_with("on");
        if (!mIsTakingBack) mUndos.clear();
        return done();
    }
    const std::string undo = mIsTakingBack ? mControl.undoOf(line) : "";
    Reply reply = mControl.run(line);
    if (reply.isOk && !undo.empty()) mUndos.emplace(undo.substr(0, undo.find(' ')), undo);
    return reply;
}

ControlConnection::~ControlConnection() {
    for (const auto& [name, undo] : mUndos) mControl.run(undo);
}

Reply Control::showHelp(const Words&) { return done(help()); }

Reply Control::quit(const Words&) {
    mQuit();
    return done();
}

Reply Control::die(const Words&) {
    TerminateProcess(GetCurrentProcess(), kExitDied);
    return done();
}

}  // namespace workbench
