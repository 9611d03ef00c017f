// What the end-to-end tests share: a workbench with settings of one's choice, and the model as numbers.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "workbench/control/plugin_settings.h"
#include "workbench/control/pose.h"
#include "workbench/control/workbench.h"

namespace e2e {

using workbench::dot;
using workbench::length;
using workbench::menuText;
using workbench::Pose;
using workbench::Poses;
using workbench::turned;
using workbench::Vector;
using workbench::waitFor;
using workbench::Workbench;
using workbench::operator+;
using workbench::operator-;
using workbench::operator*;

using Keys = std::map<std::string, std::string>;

// A settings file with scrolling off, macros instead of the mapkey and the mode read on every tick, but for `changes`.
std::string settingsText(const Keys& changes = {});

// The settings file and menu file that the plug-in meets; none = it meets no such file.
workbench::WorkbenchOptions optionsWith(std::optional<std::string> settings, std::optional<std::string> menuFile);

// What is in a file, to the byte; nothing when it cannot be opened.
std::string bytesOf(const std::filesystem::path& file);

// Whether a component of the sample assembly follows the cap. Component move mode must be off before.
bool capMovesComponent(Workbench& bench);

// A workbench whose daemon and host run, the plug-in loaded.
class Bench : public Workbench {
  public:
    explicit Bench(const Keys& settings = {}, const std::vector<std::string>& commands = {});

    explicit Bench(const workbench::WorkbenchOptions& options, const workbench::Environment& environment = {},
                   const std::vector<std::string>& hostArguments = {"--require-plugin"});

    Poses positions();
    Pose view();                                 // rows as answered: with scale and shift
    std::array<Vector, 3> screenAxes();          // screen right, up and towards the viewer, in model coordinates
    std::string status(const std::string& key);  // of the host
    void push(int tx, int ty, int tz, int rx, int ry, int rz);
    // Waits until the plug-in has read what the cap does now, and a whole tick has acted on it. For a plug-in that runs
    // with readMode on.
    void awaitTick();
    // Releases the cap and waits until the plug-in has seen it.
    void release();
    // Switches the mode and component move mode by the plug-in's menu.
    void openAssemblyForMoving();
    // Selects and waits until the plug-in has taken the motion from the host's own device support.
    void selectForMoving(const std::string& what);
    void expectLog(const std::string& text);  // waits for it

  private:
    std::string statusValue(const std::vector<std::string>& lines, const std::string& key) const;
};

}  // namespace e2e
