// The Creo side of the plug-in. One class; each concern has a source file of its own:
//
//   creo_proxy.cpp     construction, menu and commands, what Creo calls back
//   creo_base.cpp      what the others stand on
//   creo_timer.cpp     Creo's windows and the timer that drives everything
//   creo_motion.cpp    who gets the cap's motion; moving components
//   creo_mode.cpp      Creo's current mode
//   creo_scroll.cpp    scrolling the tree or list under the mouse pointer
//   creo_menu.cpp      reading the menu file
//   creo_generate.cpp  starting its generation at first start
//   creo_command.cpp   running the command bound to a device button
//   creo_mapkey.cpp    running it through a mapkey and a trail file
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common_sources/log_limit.h"
#include "common_sources/mnu/mnu_reader.h"

struct HWND__;  // Windows' window handle, without its headers. NOLINT(bugprone-reserved-identifier)
using WindowHandle = HWND__*;

struct HandOver;
class Cnfg;
class LegacyCom1;
class LifeCycle;
class Settings;

// Created once per user_initialize, destroyed by user_terminate. Everything runs on Creo's user-interface thread; what
// the device side is to know, and what it tells, goes through the hand-over.
class CreoProxy {
  public:
    static constexpr std::int32_t kSketcherMode = 0;
    static constexpr std::int32_t kAssemblyMode = 5;

    // Finds Creo's windows, arms the timer, registers menu, commands and notifications and, where the settings ask
    // for it, the mapkey. What Creo refuses is logged and gone without. What is handed in outlives this object, and
    // `lifeCycle` the process's last callback.
    CreoProxy(Settings& settings, HandOver& handOver, LegacyCom1& legacyCom1, LifeCycle& lifeCycle);
    ~CreoProxy();
    CreoProxy(const CreoProxy&) = delete;
    CreoProxy& operator=(const CreoProxy&) = delete;

    // The one object for the time of a callback that carries no user data; empty while there is none that may be
    // used. An end that comes meanwhile is put off until the last visit is over.
    class Visit {
      public:
        Visit();
        ~Visit();
        Visit(const Visit&) = delete;
        Visit& operator=(const Visit&) = delete;

        explicit operator bool() const { return mProxy != nullptr; }
        CreoProxy* operator->() const { return mProxy; }

      private:
        CreoProxy* mProxy;
    };

    // --- Mode ---
    // Asks Creo for its mode, stores and answers it. `fromAccessCheck`: the check comes from a command's access
    // callback, where another current window must not change the mode.
    std::int32_t checkMode(bool fromAccessCheck);
    std::int32_t mode() const;
    // Name of the current mode, "Default" when it has none. Valid as long as this object.
    std::string_view modeName() const;

    // --- Motion ---
    // One tick: drains the command slots, decides who gets the motion, scrolls or moves components for up to
    // maxContMoveTime milliseconds. Answers whether the cap is moving.
    bool doTransform();
    static bool isCapMoving();

    // --- Scrolling ---
    enum class ScrollKind { none = 0, scrollBar = 1, wheel = 2 };
    // How the window under the mouse pointer scrolls; the outputs (screen position, window) are written unless
    // scrolling is switched off.
    ScrollKind classifyPointerWindow(int& x, int& y, WindowHandle& window) const;
    // Scrolls it by the cap's translation. True when the motion is consumed. Pauses for up to 200 ms.
    bool scrollTreeAndList(std::int16_t tx, std::int16_t ty, std::int16_t tz) const;

    // --- Menu file and commands ---
    // Reads the menu file into the table of commands and the list of mode names; generates the file when there is
    // none, and waits half a minute for one that cannot be read just now. The timer calls it while
    // isMenuFileAwaited(). The hand-over's progress is at its end as soon as nothing is generated (any more).
    void loadMenufile();
    bool isMenuFileAwaited() const;
    // Runs the command with that index in the table.
    void execApplFunction(std::uint32_t menuFncIdx);
    // Sets the standard view that belongs to a special device event.
    void execSpecialApplFunction(std::int32_t code);

    // --- Toggles ---
    bool isComponentMoveOn() const { return mIsComponentMoveOn; }
    bool toggleComponentMove() { return mIsComponentMoveOn = !mIsComponentMoveOn; }
    bool isScrollingOn() const;
    bool toggleScrolling();

    // --- Timer and windows ---
    // Looks for Creo's windows again, and arms the timer, when one of the known ones is gone.
    void checkWindows();
    // Arms the timer when none is armed: Windows refused it, or something was thrown in a tick.
    void ensureTimer();
    // One timer tick, and the two steps of the window search: true = go on with the enumeration.
    void onTimer();
    bool onThreadWindow(WindowHandle window);
    bool onChildWindow(WindowHandle child);

  private:
    enum class Generation { running, succeeded, failed };
    using Names = std::vector<std::string>;

    void receiveCallbacks(LifeCycle& lifeCycle);
    void refuseCallbacks();
    void registerAll();
    void registerCommands();
    void unregister();
    void discoverWindows();
    void armTimer(std::uint32_t interval);  // milliseconds
    void killTimer();
    void logFailure(const char* function, int err);
    void runPendingCommands();
    void setView(const std::array<double, 3>& axis, double angle);  // radians
    void refitView();
    void decideLegacyChannel();
    bool transformOnce();
    bool generateMenuFile(const std::string& path);
    bool readMenuFile(Cnfg& file, const std::string& path);
    void takeMenuFile(MenuFileContent content, const std::string& path);
    Generation createMNUFile(const std::string& path);
    void endGeneration();
    static void* generationEntry(void* proxy);
    void defineMapkey();
    void executeCommandByMapkey(const std::string& macro);
    void sendMapkey();

    Settings& mSettings;
    HandOver& mHandOver;
    LegacyCom1& mLegacyCom1;
    CommandTable mMenuFunctions;  // command strings by function index
    LogLimit mLogLimit;           // for lines that nobody but us asks for
    bool mIsInTick = false;
    bool mIsTimerArmed = false;
    bool mIsComponentMoveOn = false;
    bool mIsMapkeyUsed = false;
    std::int32_t mLastSeenWindow = -1;
    std::string mMapkeySequence;          // at most two characters of a-z, 0-9
    std::string mTrailFilePath;           // every run of backslashes doubled
    WindowHandle mTimerWindow = nullptr;  // carries the timer; also Creo's main window for keys
    WindowHandle mGraphicsWindow = nullptr;

    // Until when a menu file that is there is tried again; empty unless a try has failed.
    std::optional<std::chrono::steady_clock::time_point> mMenuFileDeadline;
    struct GenerationJob;
    std::shared_ptr<GenerationJob> mGeneration;  // null unless the menu file is being generated
    // What the generating thread has read of the file it made, until it is taken; null when it could not be read.
    std::unique_ptr<MenuFileContent> mGeneratedContent;
};
