// What all windows of the panel work on: the cap, the bindings, the commands, and the daemon. Whatever changes the cap
// or the bindings goes through here, so that daemon and bind file always hear of it. User-interface thread.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "workbench/panel/client/daemon_client.h"
#include "workbench/panel/core/bind_model.h"
#include "workbench/panel/core/cap_state.h"
#include "workbench/panel/core/command_list.h"

namespace workbench {

inline constexpr int kButtonCount = 12;  // that can be pressed and bound by hand; a bind file may hold more

class Desk {
  public:
    // `daemonChanged` is called on another thread, see DaemonClient.
    Desk(std::filesystem::path menuFile, std::filesystem::path bindFile, std::function<void()> daemonChanged);

    // ---- the cap ----

    const CapState& cap() const { return mCap; }
    void moveCap(const std::function<void(CapState&)>& change);  // and tells the daemon

    // ---- bindings ----

    const BindModel& bindings() const { return mBindings; }
    const CommandList& commands() const { return mCommands; }
    const std::filesystem::path& menuFile() const { return mMenuFile; }
    bool hasMenuFile() const { return mHasMenuFile; }
    // Reads a menu file that has come or changed since; answers whether it did.
    bool refreshMenuFile();
    // Change, save, and tell the daemon. False when nothing changed.
    bool changeBindings(const std::function<bool(BindModel&)>& change);
    // What a button does in a mode, for people, and on demand whether it does so in all modes; empty when it is not
    // bound.
    std::wstring labelOf(const std::string& mode, int button, bool isSourceTold) const;
    std::string modeTold();  // "Default" while none is

    // ---- the device ----

    // The application comes in front before: it takes commands there only, and with a device in hand it would be there.
    void pressButton(int button);
    void pressSpecial(std::int32_t event);
    void send(const std::string& command) { mClient.send(command); }
    DaemonState daemon() { return mClient.state(); }
    void startDaemon();  // beside this program; what fails is in problem()

    const std::string& problem() const { return mProblem; }  // with a file or a program; empty = none

    std::function<void()> capMoved = [] {};
    std::function<void()> bindingsChanged = [] {};

  private:
    void bringApplicationInFront();
    void loadBindings();
    void save();
    void tellBindings();

    const std::filesystem::path mMenuFile;
    const std::filesystem::path mBindFile;
    bool mHasMenuFile = false;
    std::filesystem::file_time_type mMenuFileTime;
    bool mIsBindFileDamaged = false;  // kept under another name before it is written over
    CapState mCap;
    CapAxes mSent{};
    BindModel mBindings;
    CommandList mCommands;
    std::string mProblem;
    DaemonClient mClient;
};

}  // namespace workbench
