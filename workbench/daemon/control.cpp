#include "workbench/daemon/control.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

#include "workbench/pipes/numbers.h"

namespace workbench {
namespace {

constexpr UINT kExitDied = 3;

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
    {"bind", "BINDFILE MNUFILE", "binds the buttons to commands of a menu file", 2, 2, &Control::bind},
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
    {"help", "", "answers this list", 0, 0, &Control::showHelp},
    {"quit", "", "ends the daemon in order", 0, 0, &Control::quit},
    {"die", "", "ends the daemon abruptly", 0, 0, &Control::die},
};

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
    const std::lock_guard lock(mBindingsLock);
    mBindings.load(words[1], words[2]);
    return done({"bindings=" + std::to_string(mBindings.count())});
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

Reply Control::status(const Words&) { return done(mDevice.status()); }

Reply Control::modes(const Words&) {
    std::vector<std::string> lines;
    for (const ModeReport& report : mDevice.modeReports()) lines.push_back(report.application + '|' + report.mode);
    return done(std::move(lines));
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
