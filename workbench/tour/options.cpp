#include "workbench/tour/options.h"

#include <algorithm>
#include <stdexcept>

#include "workbench/pipes/text.h"
#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

struct Flag {
    const char* name;
    bool TourOptions::*field;
};
constexpr Flag kFlags[] = {
    {"--interactive", &TourOptions::isInteractive},
    {"--list", &TourOptions::isListWanted},
    {"--version", &TourOptions::isVersionWanted},
    {"--help", &TourOptions::isHelpWanted},
};

}  // namespace

TourOptions parseOptions(const std::vector<std::string>& arguments) {
    TourOptions options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const auto flag = std::ranges::find(kFlags, word, &Flag::name);
        if (flag != std::end(kFlags)) {
            options.*flag->field = true;
            continue;
        }
        if (word != "--out" && word != "--only" && word != "--profile")
            throw std::runtime_error("unknown option " + word);
        if (++i == arguments.size()) throw std::runtime_error(word + " needs a value");
        if (word == "--out") {
            options.out = hostPath(arguments[i]);
        } else if (word == "--profile") {
            options.profile = hostPath(arguments[i]);
        } else if (std::ranges::find(scenes(), arguments[i], &Scene::name) != scenes().end()) {
            options.only.push_back(arguments[i]);
        } else {
            throw std::runtime_error("there is no scene " + arguments[i] + " (see --list)");
        }
    }
    return options;
}

}  // namespace workbench
