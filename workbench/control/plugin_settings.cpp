#include "workbench/control/plugin_settings.h"

namespace workbench {
namespace {

struct Setting {
    const char* key;
    const char* value;
};
constexpr Setting kProgram[] = {
    {"name", "Geiplaigok"},      {"version", "2.8.6"},       {"transSensBase", "40000"}, {"rotSensBase", "10000"},
    {"minThreshold", "0"},       {"maxContMoveTime", "100"}, {"maxFrameTime", "100"},    {"blockTransInRotMode", "off"},
    {"scrollTreeAndList", "on"}, {"readMode", "off"},        {"mnuLanguage", ""},        {"useMapkeyForCommands", "on"},
    {"mapkeyDefinition", "ob"},
};
constexpr Setting kLogging[] = {
    {"logFile", "Creo_plugin_log.txt"},
    {"maxSize", "50000"},
    {"logToFile", "on"},
    {"logToCnsl", "off"},
    {"warning", "on"},
    {"creation", "on"},
    {"trace", "on"},
    {"devcom", "off"},
    {"intcom", "off"},
    {"info", "off"},
    {"debug", "on"},
    {"tmp", "off"},
    {"fileToLog", ""},
};

}  // namespace

std::string settingsText(const std::map<std::string, std::string>& changes) {
    std::string text;
    const auto append = [&](const char* section, const auto& settings) {
        text += "[" + std::string(section) + "]\n";
        for (const auto& [key, value] : settings) {
            const auto change = changes.find(key);
            text += "\t" + std::string(key) + " = " + (change != changes.end() ? change->second : value) + "\n";
        }
        text += "\n";
    };
    append("PROGRAM", kProgram);
    append("LOGGING", kLogging);
    return text;
}

std::string menuText(const std::vector<std::string>& commands) {
    std::string text = "# PTC Creo menubar file\n \n[Modes]\n";
    int number = 0;
    for (const char* mode : {"Sketcher", "Part", "Sheet_Metal", "Composite", "Scan_Model", "Assembly", "Drawing"}) {
        text += std::string(mode) + "   = " + std::to_string(++number) + "\n";
    }
    text +=
        " \n[MenuBar]\n0Orbikon   = {}\n1Toggle Scroll Mode   = {}OB_Toggle_Scroll_Mode|help\n"
        "1Toggle Move Mode   = {+ 6}OB_Toggle_Object_Move_Mode|help\n0View   = {}\n";
    for (const auto& command : commands) text += "Label of " + command + "   = {}" + command + "|help\n";
    return text + " ";
}

}  // namespace workbench
