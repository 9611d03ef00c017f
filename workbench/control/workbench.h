// A whole workbench for one test or tour scene: a folder of its own with a user profile in it, a device daemon, a host,
// and the connections that steer both. Everything ends and is removed with the object.
//
//     Workbench bench({.settings = "[PROGRAM]\n", .menuFile = text});
//     bench.startDaemon();
//     bench.startHost();
//     bench.daemon("axes 0 0 100 0 0 0");
//     EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "0"; }));
//
// Not thread-safe. What goes wrong throws std::runtime_error with a text that says what was asked and what came back.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/control/process.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

inline constexpr int kPatienceMs = 20000;  // for anything that must happen sooner or later

// Waits until the condition holds, looking at it every 10 ms. False when it does not within the time-out.
bool waitFor(const std::function<bool()>& condition, int timeoutMs = kPatienceMs);

// Whole content of a file, also of one that another process writes at the moment; empty when it cannot be read.
std::string readTextFile(const std::filesystem::path& file);
void writeTextFile(const std::filesystem::path& file, const std::string& text);  // makes the folders

// The build folder: the one above the running program that holds "workbench\obk_daemon.exe".
std::filesystem::path buildFolder();

struct WorkbenchOptions {
    std::optional<std::string> settings{};  // content of Creo_plugin.ini; none = the plug-in meets no settings file
    std::optional<std::string> menuFile{};  // content of Creo.mnu; none = the plug-in meets no menu file
    std::filesystem::path plugin{};         // the plug-in's DLL; empty = orbikon_creo.dll in the build folder
    std::filesystem::path textDir{};        // folder that holds "text"; empty = the build folder
    std::filesystem::path loadPoint{};      // the host's; empty = workbench\\creo in the build folder
    bool isRegistered = true;               // false: no registration file in the host's current directory
    std::filesystem::path profile{};        // kept, and used again next time; empty = one that goes with the workbench
    bool isFolderKept = false;              // leaves the folder behind, to be looked at
};

class Workbench {
  public:
    explicit Workbench(const WorkbenchOptions& options = {});
    ~Workbench();  // ends host and daemon, removes the folder
    Workbench(const Workbench&) = delete;
    Workbench& operator=(const Workbench&) = delete;

    // ---- places ----

    const std::string& instance() const { return mInstance; }          // value of ORBIKON_WORKBENCH of the processes
    std::string pipe(std::string_view role) const;                     // name of a pipe of this workbench
    const std::filesystem::path& folder() const { return mFolder; }    // the host's current directory
    const std::filesystem::path& profile() const { return mProfile; }  // USERPROFILE of the processes
    std::filesystem::path temp() const { return mFolder / "temp"; }    // TEMP and TMP of the processes
    std::filesystem::path settingsFolder() const;
    std::filesystem::path settingsFile() const { return settingsFolder() / "Creo_plugin.ini"; }
    std::filesystem::path menuFile() const { return settingsFolder() / "Creo.mnu"; }
    std::filesystem::path logFile() const { return settingsFolder().parent_path() / "Creo_plugin_log.txt"; }
    std::filesystem::path hostOutputFile() const { return mFolder / "host_output.txt"; }
    std::filesystem::path daemonOutputFile() const { return mFolder / "daemon_output.txt"; }

    std::string log() const { return readTextFile(logFile()); }  // the plug-in's log
    std::string hostOutput() const { return readTextFile(hostOutputFile()); }
    std::string daemonOutput() const { return readTextFile(daemonOutputFile()); }

    // ---- device daemon ----

    void startDaemon(const std::vector<std::string>& arguments = {});  // answers once it can be steered
    void stopDaemon();                                                 // in order; throws when it does not end
    void killDaemon();                                                 // abruptly
    bool isDaemonRunning() const { return mDaemon && mDaemon->isRunning(); }
    Process& daemonProcess();

    // Sends a control command to the daemon; the lines of the answer. Throws when it is refused.
    std::vector<std::string> daemon(const std::string& command) { return request(mDaemonClient, "daemon", command); }
    Reply askDaemon(const std::string& command) { return mDaemonClient.ask(command); }  // refusals included
    std::string daemonStatus(const std::string& key);  // one value of "status"; throws when there is no such key

    // ---- host ----

    // Starts the host and waits until it can be steered. Throws, with the host's output, when it ends before that.
    void startHost(const std::vector<std::string>& arguments = {}, const Environment& environment = {});
    void killHost();
    bool isHostRunning() const { return mHost && mHost->isRunning(); }
    Process& hostProcess();
    std::optional<DWORD> waitForHostExit(int timeoutMs = kPatienceMs);  // exit code; nothing while it runs

    std::vector<std::string> host(const std::string& command) { return request(mHostClient, "host", command); }
    Reply askHost(const std::string& command) { return mHostClient.ask(command); }

    // ---- for programs of all kinds ----

    // Starts another program in this workbench's folder and environment.
    Process start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                  const std::filesystem::path& outputFile, const Environment& environment = {}) const;
    // A further connection to a role of this workbench ("obk_control", "creo_control").
    void connect(LineClient& client, std::string_view role) const;

  private:
    void writeRegistry(const WorkbenchOptions& options) const;
    void awaitServer(LineClient& client, std::string_view role, const Process& server,
                     const std::filesystem::path& output) const;
    static std::vector<std::string> request(LineClient& client, const char* who, const std::string& command);

    std::string mInstance;
    std::filesystem::path mBuild;
    std::filesystem::path mLoadPoint;
    std::filesystem::path mFolder;
    std::filesystem::path mProfile;
    bool mIsFolderKept;
    std::optional<Process> mDaemon;
    std::optional<Process> mHost;
    LineClient mDaemonClient;
    LineClient mHostClient;
};

}  // namespace workbench
