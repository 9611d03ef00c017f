// The first start with a profile in which nothing is.
#include "workbench/tour/scenes.h"

namespace workbench {

void playFirstStart(Stage& stage) {
    Workbench& bench = stage.openEmpty({});
    stage.step("placeholder", "", [&](Step& step) {
        bench.startDaemon();
        bench.startHost({"--require-plugin"}, kHostEnvironment);
        const bool isMade = waitFor([&] { return std::filesystem::exists(bench.menuFile()); });
        step.check("Menu file", "none", isMade ? "made" : "none", "made", isMade);
        step.excerpt = readTextFile(bench.menuFile());
    });
}

}  // namespace workbench
