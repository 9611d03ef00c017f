#include "workbench/host/control/options.h"

#include <charconv>
#include <stdexcept>

namespace workbench {
namespace {

struct Flag {
    const char* name;
    bool Options::*field;
    bool value;
};
constexpr Flag FLAGS[] = {
    {"--no-plugin", &Options::loadsPlugin, false},    {"--require-plugin", &Options::requiresPlugin, true},
    {"--interactive", &Options::isInteractive, true}, {"--hidden", &Options::isHidden, true},
    {"--misalign", &Options::misaligns, true},        {"--version", &Options::isVersionWanted, true},
};

bool setFlag(Options& options, const std::string& argument) {
    for (const Flag& flag : FLAGS) {
        if (argument != flag.name) continue;
        options.*flag.field = flag.value;
        return true;
    }
    return false;
}

bool readNumber(const std::string& text, unsigned long& number) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc{} && end == text.data() + text.size();
}

void setVariant(Options& options, const std::string& names) {
    try {
        options.creo = parseCreoVariant(names);
    } catch (const std::runtime_error& error) {
        options.error = error.what();
    }
}

}  // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
        if (setFlag(options, arguments[i])) continue;
        const std::string value = i + 1 < arguments.size() ? arguments[i + 1] : "";
        if (arguments[i] == "--creo") {
            setVariant(options, value);
        } else if (arguments[i] != "--parent") {
            options.error = "unknown option " + arguments[i];
        } else if (!readNumber(value, options.parent)) {
            options.error = "--parent needs a process id";
        }
        ++i;
    }
    return options;
}

}  // namespace workbench
