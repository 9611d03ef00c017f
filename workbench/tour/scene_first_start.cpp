// The first start with a profile in which nothing is, on an installation as large as a real one.
#include <algorithm>
#include <cstdio>
#include <optional>
#include <sstream>

#include "workbench/tour/scenes.h"

namespace workbench {
namespace {

constexpr const char* kProgressClass = "MNUDlgClass";
constexpr const char* kHostClass = "CreoMainWindow";
constexpr const char* kProgressText = "Preparing for first start... ";
constexpr std::size_t kExcerptLines = 14;
constexpr std::size_t kModes = 23;
constexpr const char* kBoundCommand = "ProCmdViewTop";

// Makes a load point with the host's programs and the large resource libraries; its host program.
std::filesystem::path makeInstallation(const std::filesystem::path& folder) {
    const std::filesystem::path workbench = buildFolder() / "workbench";
    const auto options = std::filesystem::copy_options::recursive;
    std::filesystem::create_directories(folder);
    std::filesystem::copy(workbench / "creo" / "bin", folder / "bin", options);
    std::filesystem::copy(workbench / "creo" / "text", folder / "text",
                          options | std::filesystem::copy_options::skip_existing);
    std::filesystem::remove_all(folder / "text" / "compiled_resource");
    std::filesystem::copy(workbench / "tour_resources", folder / "text" / "compiled_resource", options);
    return folder / "bin" / "creo_host.exe";
}

// What the progress window's text control says; nothing while there is none.
std::optional<std::string> progressText() {
    const HWND window = FindWindowA(kProgressClass, nullptr);
    const HWND text = window == nullptr ? nullptr : FindWindowExA(window, nullptr, "Static", nullptr);
    if (text == nullptr || !IsWindowVisible(window)) return std::nullopt;
    char buffer[64] = "";
    SendMessageTimeoutA(text, WM_GETTEXT, sizeof buffer, reinterpret_cast<LPARAM>(buffer), SMTO_ABORTIFHUNG, 1000,
                        nullptr);
    return buffer;
}

// The host's main window, and the progress window while there is one.
void shootHost(Stage& stage, Step& step, const std::string& caption) {
    stage.shootTogether(step, caption, {FindWindowA(kHostClass, nullptr), FindWindowA(kProgressClass, nullptr)});
}

int percentOf(const std::string& text) {
    return text.starts_with(kProgressText) ? std::atoi(text.c_str() + std::string(kProgressText).size()) : -1;
}

struct MenuFileFacts {
    std::size_t modes = 0, menus = 0, commands = 0;
    std::string head;  // first lines, and the first of the commands
};

MenuFileFacts factsOf(const std::string& content) {
    MenuFileFacts facts;
    std::istringstream stream(content);
    std::string section;
    std::size_t number = 0, ofMenuBar = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with('[')) section = line;
        const std::size_t value = line.find("= ");
        if (value != std::string::npos && section == "[Modes]") ++facts.modes;
        if (value != std::string::npos && section == "[MenuBar]")
            ++(line.ends_with('}') ? facts.menus : facts.commands);
        if (section == "[MenuBar]") ++ofMenuBar;
        if (number++ < kExcerptLines / 2 || (ofMenuBar > 0 && ofMenuBar <= kExcerptLines)) facts.head += line + "\n";
        if (number == kExcerptLines / 2) facts.head += "...\n";
    }
    facts.head += "...\n";
    return facts;
}

std::string count(std::size_t number) { return std::to_string(number); }

// Starts the host of a large installation and watches the menu file being made.
void generate(Stage& stage, Step& step, std::optional<Process>& host) {
    Workbench& bench = stage.bench();
    const std::filesystem::path program = makeInstallation(bench.folder() / "creo");
    step.check("Menu file", "", std::filesystem::exists(bench.menuFile()) ? "there" : "none", "none yet",
               !std::filesystem::exists(bench.menuFile()));
    bench.startDaemon();
    host.emplace(bench.start(program, {"--require-plugin"}, bench.hostOutputFile(), kHostEnvironment));
    std::string shown;
    int lowest = 100, highest = 0;
    ULONGLONG firstSeen = 0, lastSeen = 0;
    waitFor([&] {
        if (const auto now = progressText()) {
            shown = *now;
            lastSeen = GetTickCount64();
            if (firstSeen == 0) firstSeen = lastSeen;
            const int percent = percentOf(shown);
            if (percent >= 0) lowest = std::min(lowest, percent);
            highest = std::max(highest, percent);
            if (step.shots.empty() && percent > 0) shootHost(stage, step, "The progress window, and the host.");
            return false;
        }
        return std::filesystem::exists(bench.menuFile());
    });
    step.check("Last text of the progress window", "", shown, std::string(kProgressText) + "NN%", highest > 0);
    step.tell("Per cent shown, lowest to highest", std::to_string(lowest), std::to_string(highest));
    step.tell("Shown for, milliseconds", "", std::to_string(lastSeen - firstSeen));
    step.check("Picture taken while it was shown", "", std::to_string(step.shots.size()), "1", step.shots.size() == 1);
    step.check("Settings file", "none", std::filesystem::exists(bench.settingsFile()) ? "written" : "none", "written",
               std::filesystem::exists(bench.settingsFile()));
    step.check("Progress window", "", progressText() ? "there" : "gone", "gone", !progressText());
    shootHost(stage, step, "The host is ready.");
}

void lookAtFile(Stage& stage, Step& step) {
    const MenuFileFacts facts = factsOf(readTextFile(stage.bench().menuFile()));
    step.check("Modes", "", count(facts.modes), count(kModes), facts.modes == kModes);
    step.check("Menus", "", count(facts.menus), "more than 480", facts.menus > 480);
    step.check("Commands", "", count(facts.commands), "more than 28000", facts.commands > 28000);
    step.excerpt = facts.head;
    shootHost(stage, step, "The host, still running.");
}

void bindButton(Stage& stage, Step& step) {
    Workbench& bench = stage.bench();
    bench.startHost({"--require-plugin"}, kHostEnvironment);
    bench.host("model GEARBOX.ASM");
    bench.host("front main");
    waitFor([&] { return bench.daemonStatus("mode") == kAssemblyMode; });
    const std::filesystem::path bindings = bench.folder() / "buttons.txt";
    writeTextFile(bindings, std::string("[Default]\n7 = ") + kBoundCommand + "\n");
    bench.daemon("bind " + quoted(bindings) + " " + quoted(bench.menuFile()));
    const auto before = stage.viewRows();
    stage.shoot(step, "Before.");
    bench.daemon("button 7");
    constexpr std::array<Vector, 3> kTop{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    const auto difference = [&](const auto& rows) {
        return std::max({length(rows[0] - kTop[0]), length(rows[1] - kTop[1]), length(rows[2] - kTop[2])});
    };
    constexpr double kExact = 1e-9;
    const bool isTop = waitFor([&] { return difference(stage.viewRows()) < kExact; });
    step.check("Difference from the top view", text(difference(before)), text(difference(stage.viewRows())), "0 (1e-9)",
               isTop && difference(before) > kExact);
    step.check("Menu file made again", "", FindWindowA(kProgressClass, nullptr) ? "yes" : "no", "no",
               FindWindowA(kProgressClass, nullptr) == nullptr);
    stage.shoot(step, "After: the top view.");
}

}  // namespace

void playFirstStart(Stage& stage) {
    stage.openEmpty({});
    std::optional<Process> host;
    stage.step("The menu file is made", "Daemon and host were started with an empty user profile.",
               [&](Step& step) { generate(stage, step, host); });
    stage.step("The menu file", "Creo.mnu in the folder of the settings was read and its entries were counted.",
               [&](Step& step) { lookAtFile(stage, step); });
    host.reset();
    stage.step("A button bound to one of its commands",
               std::string("The host was started again with the same profile; button 7 was bound to ") + kBoundCommand +
                   " and pressed.",
               [&](Step& step) { bindButton(stage, step); });
}

}  // namespace workbench
