// Finds, loads and ends the plug-ins that are registered with the host.
#pragma once

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include <windows.h>

#include "workbench/host/toolkit/text_files.h"

namespace workbench {

class Plugins {
  public:
    // Registered in: protk.dat in the current directory, the file that the option toolkit_registry_file names, and
    // <load point>\text\protk.dat. Entries of the same name count once, the first one wins.
    void findRegistered();

    // Each answers whether everything went well; what did not is in the message line and on standard error.
    bool start();  // loads and initialises all that are not
    // Calls the entry point of all that are loaded whatever was called before, as nobody should but somebody may.
    bool call(bool isStart);
    bool terminate();   // user_terminate of those that are initialised
    bool initialise();  // user_initialize of those that are loaded
    void unload();      // terminates and frees all

    // Whether a function was made to fail while one of them started: it may lack menus, threads or handlers since.
    bool isStartDisturbed() const { return mIsStartDisturbed; }
    // How long the last loading, and the last start, held the user-interface thread up.
    std::chrono::microseconds loadTime() const { return mLoadTime; }
    std::chrono::microseconds startTime() const { return mStartTime; }
    bool isAnyRegistered() const { return !mPlugins.empty(); }
    std::string state() const;                    // "none", "registered", "loaded", "initialised" (of the first)
    HMODULE moduleAt(const void* address) const;  // the plug-in that an address lies in, null for none

  private:
    struct Plugin {
        PluginEntry entry;
        HMODULE module = nullptr;
        bool isInitialised = false;  // as the latest call of an entry point asked for, also while that is running
    };
    void readRegistry(const std::filesystem::path& file, bool isRequired);
    bool load(Plugin& plugin);
    bool initialise(Plugin& plugin);
    bool terminate(Plugin& plugin);
    bool callInitialise(Plugin& plugin);
    bool callTerminate(Plugin& plugin);

    std::vector<Plugin> mPlugins;
    bool mIsStartDisturbed = false;
    std::chrono::microseconds mLoadTime{0}, mStartTime{0};
};

Plugins& plugins();

// Folder above the one that the host's program lies in.
std::filesystem::path loadPoint();

}  // namespace workbench
