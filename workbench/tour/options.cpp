#include "workbench/tour/options.h"

#include <algorithm>
#include <stdexcept>

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

// Wine shows the Unix file system as drive Z.
std::filesystem::path folderNamed(const std::string& text) {
    const bool isUnixPath = text.starts_with('/') && GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version");
    return isUnixPath ? "Z:" + text : text;
}

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
        if (word != "--out" && word != "--only") throw std::runtime_error("unknown option " + word);
        if (++i == arguments.size()) throw std::runtime_error(word + " needs a value");
        if (word == "--out") {
            options.out = folderNamed(arguments[i]);
        } else if (std::ranges::find(scenes(), arguments[i], &Scene::name) != scenes().end()) {
            options.only.push_back(arguments[i]);
        } else {
            throw std::runtime_error("there is no scene " + arguments[i] + " (see --list)");
        }
    }
    return options;
}

}  // namespace workbench
