#include "tests/e2e/e2e.h"

#include <cmath>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace e2e {

namespace {

constexpr int kMaxAxis = 350;  // a firm push of the cap

}  // namespace

std::string settingsText(const Keys& changes) {
    Keys keys = changes;
    keys.merge(Keys{{"maxContMoveTime", "200"},
                    {"scrollTreeAndList", "off"},
                    {"readMode", "on"},
                    {"mnuLanguage", "english"},
                    {"useMapkeyForCommands", "off"}});
    return workbench::settingsText(keys);
}

workbench::WorkbenchOptions optionsWith(std::optional<std::string> settings, std::optional<std::string> menuFile) {
    workbench::WorkbenchOptions options;
    options.settings = std::move(settings);
    options.menuFile = std::move(menuFile);
    return options;
}

bool capMovesComponent(Workbench& bench) {
    bench.host("model GEARBOX.ASM");
    bench.host("menu click Toggle Move Mode");
    bench.host("select 41");
    const auto before = bench.host("positions");
    bench.daemon("axes 100 0 0 0 0 0");
    const bool hasMoved = waitFor([&] { return bench.host("positions") != before; });
    bench.daemon("axes 0 0 0 0 0 0");
    return hasMoved;
}

std::string bytesOf(const std::filesystem::path& file) {
    std::ostringstream bytes;
    bytes << std::ifstream(file, std::ios::binary).rdbuf();
    return bytes.str();
}

Bench::Bench(const Keys& settings, const std::vector<std::string>& commands)
    : Bench(optionsWith(settingsText(settings), menuText(commands))) {}

Bench::Bench(const workbench::WorkbenchOptions& options, const workbench::Environment& environment,
             const std::vector<std::string>& hostArguments)
    : Workbench(options) {
    startDaemon();
    startHost(hostArguments, environment);
    if (!waitFor([&] { return daemonStatus("application") == "xtopCreo"; })) {
        throw std::runtime_error("the plug-in does not connect to the daemon");
    }
}

Poses Bench::positions() {
    Poses frames;
    for (const std::string& line : host("positions")) {
        std::istringstream stream(line);
        int id = 0;
        std::string name, rest;
        stream >> id >> name;
        std::getline(stream, rest);
        frames[id] = workbench::poseOf(rest);
    }
    return frames;
}

Pose Bench::view() { return workbench::poseOf(host("view").at(0)); }

std::array<Vector, 3> Bench::screenAxes() {
    // The view turns model rows into screen rows: the model direction that is shown along screen axis k is column k
    // of its rotation.
    const Pose now = view();
    std::array<Vector, 3> axes;
    for (int k = 0; k < 3; ++k) {
        const Vector column{now.axes[0][k], now.axes[1][k], now.axes[2][k]};
        axes[k] = column * (1.0 / length(column));
    }
    return axes;
}

std::string Bench::status(const std::string& key) { return statusValue(host("status"), key); }

std::string Bench::statusValue(const std::vector<std::string>& lines, const std::string& key) const {
    for (const std::string& line : lines) {
        if (line.starts_with(key + "=")) return line.substr(key.size() + 1);
    }
    throw std::runtime_error("the host's status has no '" + key + "'");
}

void Bench::push(int tx, int ty, int tz, int rx, int ry, int rz) {
    std::string command = "axes";
    for (const int axis : {tx, ty, tz, rx, ry, rz}) {
        if (std::abs(axis) > kMaxAxis) throw std::runtime_error("nobody pushes the cap that far");
        command += " " + std::to_string(axis);
    }
    daemon(command);
}

void Bench::awaitTick() {
    const auto await = [](const std::function<int()>& count, const char* what) {
        const int wanted = count() + 2;  // the one that goes on now may have begun too early
        if (!waitFor([&] { return count() >= wanted; })) throw std::runtime_error(what);
    };
    await([&] { return std::stoi(daemonStatus("reads")); }, "the plug-in does not read the device");
    await([&] { return std::stoi(host("calls ProModeCurrentGet").at(0)); }, "the plug-in's timer does not tick");
}

void Bench::release() {
    push(0, 0, 0, 0, 0, 0);
    awaitTick();
}

void Bench::openAssemblyForMoving() {
    host("model GEARBOX.ASM");
    host("menu click Toggle Move Mode");
}

void Bench::selectForMoving(const std::string& what) {
    host("select " + what);
    if (!waitFor([&] { return daemonStatus("legacy") == "0"; })) {
        throw std::runtime_error("the plug-in does not take the motion");
    }
}

void Bench::expectLog(const std::string& text) {
    EXPECT_TRUE(waitFor([&] { return log().find(text) != std::string::npos; })) << "not in the log: " << text;
}

}  // namespace e2e
