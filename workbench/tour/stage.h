// Where the scenes play: workbenches with the plug-in in a running host, what can be measured on them, and the record
// of the steps. Each scene gets workbenches of its own, so that scenes can be played alone and in any order.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbench/control/picture.h"
#include "workbench/control/pose.h"
#include "workbench/control/workbench.h"
#include "workbench/tour/page.h"

namespace workbench {

struct Push {  // of the cap; at most some 350 each
    int tx = 0, ty = 0, tz = 0, rx = 0, ry = 0, rz = 0;
};

struct ScreenPoint {
    int x = 0, y = 0;
};

struct Caption {  // of a picture
    Caption(const char* caption) : text(caption) {}
    Caption(std::string caption) : text(std::move(caption)) {}
    Caption(std::string caption, bool isPointerMarked) : text(std::move(caption)), hasPointer(isPointerMarked) {}

    std::string text;
    bool hasPointer = false;  // the mouse pointer is marked
};

// How commands of the menu file reach the host.
enum class CommandWay { byMacro, byMapkey };

class Stage {
  public:
    // Pictures go to `folder`. The record must outlive the stage.
    Stage(std::filesystem::path folder, Record& record);

    // ---- steps ----

    void beginScene(std::string name, std::string title, std::string text);
    // Plays a step: what the body throws makes it fail, and the next one follows. Prints the step's line; a body that
    // took no picture gets one of the main window at its end, if there is one.
    void step(const std::string& title, const std::string& action, const std::function<void(Step&)>& body);
    // A picture of the main window; of the whole screen when there is none. While the cap is deflected, as the daemon
    // has it, pictures show it in a corner of the graphics.
    void shoot(Step& step, const Caption& caption);
    void shootScreen(Step& step, const std::string& caption);
    // The part of the screen that holds these windows.
    void shootTogether(Step& step, const Caption& caption, const std::vector<HWND>& windows);

    // ---- workbenches ----

    // The workbench that is on. Throws std::runtime_error when there is none.
    Workbench& bench();
    // A new workbench with the assembly open, the host in front, the pointer on the graphics, buttons bound (see
    // pressButton).
    void open(CommandWay way = CommandWay::byMacro);
    // The same with this content of the settings file.
    void openWith(const std::string& settings);
    // The host of this workbench, anew when it runs; with the assembly open, in front, the pointer on the graphics.
    void startHost();
    // A new workbench in which nothing runs yet.
    Workbench& openEmpty(const WorkbenchOptions& options);
    void close();
    // Selects, switches move mode on, and waits until the plug-in takes the motion.
    void selectForMoving(const std::string& components);

    // ---- doing ----

    void push(const Push& push);
    void release();  // and waits until components and view rest
    // Pushes until the condition holds, or patience ends, takes a picture of that, and releases. Answers whether it
    // held.
    bool pushUntil(Step& step, const Caption& caption, const Push& push, const std::function<bool()>& condition);
    void setToggle(const std::string& label, bool isOn);  // of the plug-in's menu
    void pressButton(const std::string& command);         // the device's button that is bound to it

    // ---- measuring ----

    Poses positions();
    Pose position(int component) { return positions().at(component); }
    Pose view();                                 // rows with scale
    std::array<Vector, 3> viewRows();            // of length 1
    std::array<Vector, 3> screenAxes();          // right, up and towards the viewer, in model coordinates
    std::string status(const std::string& key);  // of the host
    int number(const std::string& key);          // of the host's status
    bool isToggled(const std::string& label);    // check mark in the plug-in's menu
    ScreenPoint onScreen(int component);         // where its origin is shown
    HWND window(const std::string& name);        // of the host
    int selectedPixels();                        // in the graphics window, painted as selected
    double backgroundShare();                    // of the graphics window, 0 to 1
    int calls(const std::string& toolkitFunction);

    // Waits until the plug-in has looked at cap and pointer once more.
    void awaitTicks();

  private:
    int ticks();       // of the plug-in's timer so far
    struct Exposure {  // a picture that is not saved yet
        Picture picture;
        std::string caption;
        std::optional<Shot::Point> pointer;
    };
    Exposure expose(const RECT& area, const Caption& caption);
    Exposure exposeMain(const Caption& caption);
    void save(Step& step, const Exposure& exposure);
    void drawCap(Picture& picture, const RECT& area);
    // File and step of an earlier picture that is the same to the last pixel.
    std::optional<std::pair<std::string, int>> findSame(const std::string& file) const;
    void bindButtons();

    std::filesystem::path mFolder;
    Record& mRecord;
    int mSteps = 0;
    int mShots = 0;
    std::unique_ptr<Workbench> mBench;
};

inline constexpr const char* kAssemblyMode = "Assembly";
inline constexpr const char* kMoveToggle = "Toggle Move Mode";
inline constexpr const char* kScrollToggle = "Toggle Scroll Mode";
inline constexpr const char* kMoveCommand = "OB_Toggle_Object_Move_Mode";
inline constexpr const char* kScrollCommand = "OB_Toggle_Scroll_Mode";
inline constexpr const char* kWireframeCommand = "ProCmdEnvMdlDisp*Wireframe";

// The host's language, in the variable that Creo uses.
inline const Environment kHostEnvironment = {{"PRO_LANG", "english"}};

inline bool contains(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }
std::string quoted(const std::filesystem::path& file);  // as a word of a control command

}  // namespace workbench
