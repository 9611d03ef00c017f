// The tour: shows the plug-in at work. Plays scenes with the real plug-in, host and daemon, measures what each step did
// and leaves a page with pictures and numbers.
#include <windows.h>

#include <generated/version.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <iostream>
#include <stdexcept>

#include <generated/build_commit.h>
#include "workbench/pipes/text.h"
#include "workbench/tour/options.h"
#include "workbench/tour/scenes.h"

namespace {

using namespace workbench;

constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

std::string dateAndTime(std::time_t time) {
    char text[64];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", std::localtime(&time));
    return text;
}

std::time_t writtenAt(const std::filesystem::path& file) {
    const auto age = std::filesystem::file_time_type::clock::now() - std::filesystem::last_write_time(file);
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(age);
    return std::time(nullptr) - static_cast<std::time_t>(seconds.count());
}

BuildFacts buildFacts() {
    const std::filesystem::path plugin = buildFolder() / "orbikon_creo.dll";
    return {.commit = std::string("commit ") + kBuildCommit,
            .compiler = "g++ " __VERSION__,
            .plugin = plugin.filename().string() + ", " + std::to_string(std::filesystem::file_size(plugin)) +
                      " bytes, built " + dateAndTime(writtenAt(plugin))};
}

void playScene(Stage& stage, const Scene& scene) {
    stage.beginScene(scene.name, scene.title, scene.text);
    try {
        scene.play(stage);
    } catch (const std::exception& failure) {
        const std::string reason = failure.what();
        stage.step("The scene cannot go on", "What the remaining steps need could not be set up.",
                   [&](Step&) { throw std::runtime_error(reason); });
    }
    stage.close();
}

int playTour(const TourOptions& options) {
    const auto start = std::chrono::steady_clock::now();
    Record record;
    record.started = dateAndTime(std::time(nullptr));
    record.build = buildFacts();
    {
        Stage stage(options.out, record);
        for (const Scene& scene : scenes()) {
            const bool isNamed = std::ranges::find(options.only, scene.name) != options.only.end();
            if (!options.only.empty() && !isNamed) continue;
            if (scene.isPossible == nullptr || scene.isPossible()) {
                playScene(stage, scene);
            } else {
                std::cout << "\n" << scene.title << ": left out, packaging/package.sh has made no package" << std::endl;
            }
        }
    }
    record.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const std::filesystem::path page = options.out / "index.html";
    writePage(record, page);
    std::cout << '\n'
              << record.stepCount() << " steps, " << record.failedSteps() << " failed; " << record.checkCount()
              << " checks, " << record.failedChecks() << " failed; " << std::lround(record.seconds) << " s; "
              << page.string() << std::endl;
    return record.failedSteps() == 0 ? 0 : kExitFailed;
}

// What the panel's buttons do until somebody binds them otherwise.
constexpr const char* kSampleBindings =
    "# Made by ./run --interactive\n[Default]\n1 = OB_Toggle_Scroll_Mode\n2 = ProCmdEnvMdlDisp*Wireframe\n"
    "3 = ProCmdEnvMdlDisp*Shading\n4 = ProCmdViewRefit\n5 = ProCmdEditUndo\n"
    "[Assembly]\n1 = OB_Toggle_Object_Move_Mode\n";
constexpr const char* kWhatToTry =
    "Try this:\n"
    "  1. Drag the panel's cap: the view moves. With the right button it turns; the side handle is the third axis.\n"
    "  2. Select components in the host (Ctrl adds), press the panel's button 1, and drag: they move.\n"
    "  3. Press button 2 for a wireframe, 3 for shading, 5 to undo; keys 1 to 9 press buttons, too.\n"
    "  4. On the page \"Bindings\" search for a command, double-click it, and press the button that was chosen.\n"
    "  5. On the page \"Device\" let the daemon die and return; close the host's window to end.\n";

// The host at the left of the screen, the panel at its right.
std::string panelPlace(const RECT& work) {
    const long width = std::max(520L, (work.right - work.left) * 9 / 20);
    const long height = std::min(work.bottom - work.top, 900L);
    return std::to_string(work.right - width) + ',' + std::to_string(work.top) + ',' + std::to_string(width) + ',' +
           std::to_string(height);
}

int playInteractively(const std::filesystem::path& profile) {
    Workbench bench({.settings = {}, .menuFile = {}, .plugin = {}, .textDir = {}, .loadPoint = {}, .profile = profile});
    const std::filesystem::path bindings = bench.settingsFolder() / "Creo_buttons.txt";
    if (!std::filesystem::exists(bindings)) writeTextFile(bindings, kSampleBindings);
    bench.startDaemon();
    bench.startHost({"--interactive"}, kHostEnvironment);
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    const std::string place = panelPlace(work);
    const long hostWidth = std::max(640L, std::stol(place) - work.left);
    bench.host("place 0 0 " + std::to_string(hostWidth) + ' ' + std::to_string(std::min(work.bottom - work.top, 900L)));
    bench.host("command ProCmdViewRefit");
    const Process panel = bench.start(buildFolder() / "workbench" / "obk_panel.exe", {"--place", place},
                                      bench.folder() / "panel_output.txt");
    std::cout << kWhatToTry << "The user's folder" << (profile.empty() ? " (it goes when this ends)" : "") << ": "
              << shellPath(bench.profile()) << "\nThe plug-in's log: " << shellPath(bench.logFile())
              << "\nThis workbench's name, for obk_ctl: ORBIKON_WORKBENCH=" << bench.instance() << std::endl;
    while (!bench.waitForHostExit()) {
    }
    return 0;
}

void listScenes() {
    for (const Scene& scene : scenes()) std::cout << scene.name << "\t" << scene.title << '\n';
}

}  // namespace

int main() {
    TourOptions options;
    try {
        options = parseOptions(commandLineArguments());
    } catch (const std::exception& failure) {
        std::cerr << "tour: " << failure.what() << '\n' << kUsage;
        return kExitUsage;
    }
    try {
        if (options.isHelpWanted) {
            std::cout << kUsage;
        } else if (options.isVersionWanted) {
            std::cout << "tour " << kProductVersion << ", commit " << kBuildCommit << '\n';
        } else if (options.isListWanted) {
            listScenes();
        } else {
            return options.isInteractive ? playInteractively(options.profile) : playTour(options);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "tour: " << failure.what() << '\n';
        return kExitFailed;
    }
}
