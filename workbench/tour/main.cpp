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

int playInteractively() {
    Workbench bench;
    bench.startDaemon();
    bench.startHost({"--interactive"}, kHostEnvironment);
    std::cout << "Close the host's window to end. Its message line names the keys that push the cap.\nThe plug-in's "
                 "settings and log are in "
              << bench.profile().string() << " until then." << std::endl;
    while (!bench.waitForHostExit()) {
    }
    return 0;
}

void listScenes() {
    for (const Scene& scene : scenes()) std::cout << scene.name << "\t" << scene.title << '\n';
}

}  // namespace

int main(int count, char** words) {
    TourOptions options;
    try {
        options = parseOptions({words + 1, words + count});
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
            return options.isInteractive ? playInteractively() : playTour(options);
        }
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "tour: " << failure.what() << '\n';
        return kExitFailed;
    }
}
