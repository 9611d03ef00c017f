#include "workbench/tour/stage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <tuple>

#include "workbench/control/plugin_settings.h"
#include "workbench/tour/cap_sketch.h"

namespace workbench {
namespace {

constexpr const char* kAssembly = "GEARBOX.ASM";
constexpr Colour kSelectedEdge{0x00, 0xA0, 0x40};  // in which the host paints what is selected
constexpr const char* kTickText = "timerIntvl: ";  // in the plug-in's log, once each tick
constexpr int kSketchGap = 8;                      // of the cap's picture to the edge of the graphics
constexpr int kTicksSeen = 2;                      // the first may have begun before

// Commands that the device's buttons are bound to, button 1 first.
constexpr const char* kButtons[] = {kWireframeCommand, "ProCmdEnvMdlDisp*Shading", kMoveCommand, kScrollCommand};

std::string valueOf(const std::vector<std::string>& lines, const std::string& key) {
    for (const std::string& line : lines) {
        if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
    }
    throw std::runtime_error("no \"" + key + "\" in the host's status");
}

std::vector<std::string> splitAtBlanks(const std::string& line) {
    std::vector<std::string> words;
    for (std::size_t at = 0; at < line.size();) {
        const std::size_t end = std::min(line.find(' ', at), line.size());
        if (end > at) words.push_back(line.substr(at, end - at));
        at = end + 1;
    }
    return words;
}

ScreenPoint pointerPlace() {
    POINT at{};
    GetCursorPos(&at);
    return {static_cast<int>(at.x), static_cast<int>(at.y)};
}

// What a step's line tells: its first check that failed, or else the first that says what changed, or any.
std::string gist(const Step& step) {
    if (!step.failure.empty()) return step.failure;
    const auto& all = step.measures;
    if (all.empty()) return {};
    auto told = std::ranges::find(all, false, &Measure::isOk);
    if (told == all.end()) {
        told = std::ranges::find_if(
            all, [](const auto& m) { return !m.expected.empty() && !m.before.empty() && m.before != m.after; });
    }
    if (told == all.end()) told = all.begin();
    return told->what + ": " + (told->before.empty() ? "" : told->before + " -> ") + told->after +
           (told->isOk ? "" : " (expected: " + told->expected + ")");
}

std::string bytesOf(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

std::string quoted(const std::filesystem::path& file) { return '"' + file.string() + '"'; }

Stage::Stage(std::filesystem::path folder, Record& record) : mFolder(std::move(folder)), mRecord(record) {}

// ---- steps ----

void Stage::beginScene(std::string name, std::string title, std::string text) {
    mRecord.scenes.push_back({std::move(name), std::move(title), std::move(text), {}});
    std::cout << '\n' << mRecord.scenes.back().title << std::endl;
}

void Stage::step(const std::string& title, const std::string& action, const std::function<void(Step&)>& body) {
    Step step;
    step.number = ++mSteps;
    step.title = title;
    step.action = action;
    try {
        body(step);
    } catch (const std::exception& failure) {
        step.failure = failure.what();
    }
    try {
        const bool isHostShown = mBench && mBench->isHostRunning();  // otherwise the screen is black
        if (!step.failure.empty() || (step.shots.empty() && isHostShown)) shoot(step, "At the end of the step.");
    } catch (const std::exception& failure) {
        step.failure += std::string(step.failure.empty() ? "" : "; ") + "no picture: " + failure.what();
    }
    std::printf("%3d  %-52s %-6s  %s\n", step.number, title.c_str(), step.isOk() ? "ok" : "FAILED", gist(step).c_str());
    std::fflush(stdout);
    mRecord.scenes.back().steps.push_back(std::move(step));
}

void Stage::save(Step& step, const Exposure& exposure) {
    char name[64];
    std::snprintf(name, sizeof name, "%03d-%s.png", ++mShots, mRecord.scenes.back().name.c_str());
    exposure.picture.save(mFolder / name);
    Shot shot{name, exposure.caption, exposure.picture.width(), exposure.picture.height(), exposure.pointer, 0};
    if (const auto earlier = findSame(name)) {
        std::filesystem::remove(mFolder / name);
        --mShots;
        std::tie(shot.file, shot.earlierStep) = *earlier;
    }
    step.shots.push_back(std::move(shot));
}

std::optional<std::pair<std::string, int>> Stage::findSame(const std::string& file) const {
    const std::string bytes = bytesOf(mFolder / file);
    for (const SceneRecord& scene : mRecord.scenes) {
        for (const Step& step : scene.steps) {
            for (const Shot& shot : step.shots) {
                if (std::filesystem::file_size(mFolder / shot.file) != bytes.size()) continue;
                if (bytesOf(mFolder / shot.file) == bytes) return std::pair(shot.file, step.number);
            }
        }
    }
    return std::nullopt;
}

Stage::Exposure Stage::expose(const RECT& area, const Caption& caption) {
    Exposure exposure{Picture::ofScreen(area), caption.text, {}};
    drawCap(exposure.picture, area);
    if (caption.hasPointer) {
        const auto [x, y] = pointerPlace();
        exposure.pointer = Shot::Point{x - static_cast<int>(area.left), y - static_cast<int>(area.top)};
    }
    return exposure;
}

Stage::Exposure Stage::exposeMain(const Caption& caption) {
    bench().host("status");  // the windows have painted what they had to once this is answered
    RECT frame{};
    if (!GetWindowRect(window("main"), &frame)) throw std::runtime_error("the main window is gone");
    return expose(frame, caption);
}

void Stage::drawCap(Picture& picture, const RECT& area) {
    if (!mBench || !mBench->isDaemonRunning()) return;
    const auto words = splitAtBlanks(mBench->daemonStatus("axes"));
    CapDeflection cap{};
    for (std::size_t i = 0; i < cap.size(); ++i) cap[i] = std::stoi(words.at(i));
    if (cap == CapDeflection{}) return;
    RECT graphics{};
    if (!GetWindowRect(window("graphics"), &graphics)) throw std::runtime_error("the graphics window is gone");
    drawCapSketch(picture, static_cast<int>(graphics.left - area.left) + kSketchGap,
                  static_cast<int>(graphics.top - area.top) + kSketchGap, cap);
}

void Stage::shoot(Step& step, const Caption& caption) {
    if (!mBench || !mBench->isHostRunning()) return shootScreen(step, caption.text);
    save(step, exposeMain(caption));
}

void Stage::shootScreen(Step& step, const std::string& caption) { save(step, {Picture::ofDesktop(), caption, {}}); }

void Stage::shootTogether(Step& step, const Caption& caption, const std::vector<HWND>& windows) {
    RECT area{};
    for (const HWND window : windows) {
        RECT place{};
        if (GetWindowRect(window, &place)) UnionRect(&area, &area, &place);
    }
    save(step, expose(area, caption));
}

// ---- workbenches ----

Workbench& Stage::bench() {
    if (!mBench) throw std::runtime_error("no workbench is on");
    return *mBench;
}

void Stage::open(CommandWay way) {
    openWith(settingsText({{"useMapkeyForCommands", way == CommandWay::byMapkey ? "on" : "off"}}));
}

void Stage::openWith(const std::string& settings) {
    openEmpty({.settings = settings, .menuFile = {}, .plugin = {}, .textDir = {}});
    bench().startDaemon();
    startHost();
    bindButtons();
}

void Stage::startHost() {
    bench().startHost({"--require-plugin"}, kHostEnvironment);
    bench().host(std::string("model ") + kAssembly);
    bench().host("front main");
    bench().host("cursor graphics");
    const auto isReady = [&] {
        return bench().daemonStatus("mode") == kAssemblyMode && std::filesystem::exists(bench().menuFile());
    };
    if (!waitFor(isReady)) throw std::runtime_error("the plug-in does not tell its mode, or makes no menu file");
}

Workbench& Stage::openEmpty(const WorkbenchOptions& options) {
    close();
    mBench = std::make_unique<Workbench>(options);
    return *mBench;
}

void Stage::close() { mBench.reset(); }

void Stage::bindButtons() {
    std::string text = "[Default]\n";
    int button = 0;
    for (const char* command : kButtons) text += std::to_string(++button) + " = " + command + "\n";
    const std::filesystem::path file = bench().folder() / "buttons.txt";
    writeTextFile(file, text);
    bench().daemon("bind " + quoted(file) + " " + quoted(bench().menuFile()));
}

void Stage::selectForMoving(const std::string& components) {
    bench().host("select " + components);
    setToggle(kMoveToggle, true);
    // Until its next tick the plug-in leaves the motion to the host, which moves the view by it.
    const bool isClaimed = waitFor([&] { return bench().daemonStatus("legacy") == "0"; });
    if (!isClaimed) throw std::runtime_error("the plug-in does not take the motion");
}

// ---- doing ----

void Stage::push(const Push& push) {
    std::string command = "axes";
    for (const int axis : {push.tx, push.ty, push.tz, push.rx, push.ry, push.rz}) command += ' ' + std::to_string(axis);
    bench().daemon(command);
}

void Stage::release() {
    push({});
    std::vector<std::string> last;
    waitFor([&] {
        awaitTicks();
        std::vector<std::string> now = bench().host("positions");
        now.push_back(bench().host("view").at(0));
        const bool isAtRest = now == last;
        last = std::move(now);
        return isAtRest;
    });
}

bool Stage::pushUntil(Step& step, const Caption& caption, const Push& wanted, const std::function<bool()>& condition) {
    push(wanted);
    const bool isMet = waitFor(condition);
    const Exposure exposure = exposeMain(caption);  // saved later: what is pushed goes on moving meanwhile
    release();
    save(step, exposure);
    return isMet;
}

void Stage::setToggle(const std::string& label, bool isOn) {
    if (isToggled(label) != isOn) bench().host("menu click " + label);
    if (isToggled(label) != isOn) throw std::runtime_error(label + " does not follow the menu");
}

void Stage::pressButton(const std::string& command) {
    const auto found = std::ranges::find(kButtons, command);
    if (found == std::end(kButtons)) throw std::runtime_error("no button is bound to " + command);
    bench().daemon("button " + std::to_string(found - std::begin(kButtons) + 1));
}

// ---- measuring ----

Poses Stage::positions() {
    Poses poses;
    for (const std::string& line : bench().host("positions")) {
        const std::size_t name = line.find(' ');
        poses[std::stoi(line)] = poseOf(line.substr(line.find(' ', name + 1)));
    }
    return poses;
}

Pose Stage::view() { return poseOf(bench().host("view").at(0)); }

std::array<Vector, 3> Stage::viewRows() {
    const Pose now = view();
    return {normalised(now.axes[0]), normalised(now.axes[1]), normalised(now.axes[2])};
}

std::array<Vector, 3> Stage::screenAxes() {
    // The view turns model rows into screen rows, so the model direction shown along screen axis k is its column k.
    const auto rows = viewRows();
    std::array<Vector, 3> axes;
    for (std::size_t k = 0; k < 3; ++k) axes[k] = normalised({rows[0][k], rows[1][k], rows[2][k]});
    return axes;
}

std::string Stage::status(const std::string& key) { return valueOf(bench().host("status"), key); }

int Stage::number(const std::string& key) { return std::stoi(status(key)); }

bool Stage::isToggled(const std::string& label) {
    for (const std::string& line : bench().host("menu")) {
        if (line.starts_with(label + " checked=")) return contains(line, "checked=1");
    }
    throw std::runtime_error("the plug-in's menu has no \"" + label + "\"");
}

ScreenPoint Stage::onScreen(int component) {
    const auto words = splitAtBlanks(bench().host("screen " + std::to_string(component)).at(0));
    return {std::stoi(words.at(0)), std::stoi(words.at(1))};
}

HWND Stage::window(const std::string& name) {
    for (const std::string& line : bench().host("windows")) {
        const auto words = splitAtBlanks(line);
        if (words.at(0) != name) continue;
        return reinterpret_cast<HWND>(static_cast<std::uintptr_t>(std::stoul(words.at(2), nullptr, 16)));
    }
    throw std::runtime_error("the host has no window \"" + name + '"');
}

int Stage::selectedPixels() { return Picture::ofWindow(window("graphics")).countNear(kSelectedEdge, 0); }

double Stage::backgroundShare() {
    // The background is of one colour along each row of pixels; the model does not reach the window's left edge.
    const Picture picture = Picture::ofWindow(window("graphics"));
    int background = 0;
    for (int y = 0; y < picture.height(); ++y) {
        background += picture.countNear({0, y, picture.width(), y + 1}, picture.pixel(0, y), 0);
    }
    return double(background) / (picture.width() * picture.height());
}

int Stage::calls(const std::string& toolkitFunction) {
    return std::stoi(bench().host("calls " + toolkitFunction).at(0));
}

int Stage::ticks() {
    const std::string log = bench().log();
    int count = 0;
    for (std::size_t at = log.find(kTickText); at != std::string::npos; at = log.find(kTickText, at + 1)) ++count;
    return count;
}

void Stage::awaitTicks() {
    const int seen = ticks();
    if (!waitFor([&] { return ticks() >= seen + kTicksSeen; })) throw std::runtime_error("the plug-in's timer rests");
}

}  // namespace workbench
