#include "workbench/control/workbench.h"

#include <algorithm>
#include <atomic>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr int kPollMs = 10;
constexpr std::string_view kDaemonControl = "obk_control";
constexpr std::string_view kHostControl = "creo_control";
constexpr char kInstanceVariable[] = "ORBIKON_WORKBENCH";

// Different for each workbench on this machine.
std::string newInstance() {
    static std::atomic<int> number{0};
    return std::to_string(GetCurrentProcessId()) + '_' + std::to_string(GetTickCount64() % 1000000) + '_' +
           std::to_string(++number);
}

}  // namespace

bool waitFor(const std::function<bool()>& condition, int timeoutMs) {
    const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(timeoutMs);
    while (!condition()) {
        if (GetTickCount64() >= deadline) return false;
        Sleep(kPollMs);
    }
    return true;
}

std::string readTextFile(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();
    return text.str();
}

void writeTextFile(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file);
    out << text;
    out.close();
    if (!out) throw std::runtime_error("cannot write " + file.string());
}

std::filesystem::path buildFolder() {
    const std::filesystem::path program = programFile();
    for (std::filesystem::path folder = program.parent_path();; folder = folder.parent_path()) {
        if (std::filesystem::exists(folder / "workbench" / "obk_daemon.exe")) return folder;
        if (folder == folder.parent_path()) break;
    }
    throw std::runtime_error("no workbench in the folders above " + textOf(program));
}

Workbench::Workbench(const WorkbenchOptions& options)
    : mInstance(newInstance()),
      mBuild(buildFolder()),
      mLoadPoint(options.loadPoint.empty() ? mBuild / "workbench" / "creo" : options.loadPoint),
      mFolder(std::filesystem::temp_directory_path() / ("orbikon_" + mInstance)),
      mProfile(options.profile.empty() ? mFolder / "profile" : options.profile),
      mIsFolderKept(options.isFolderKept) {
    std::filesystem::create_directories(profile());
    std::filesystem::create_directories(temp());
    if (options.settings) writeTextFile(settingsFile(), *options.settings);
    if (options.menuFile) writeTextFile(menuFile(), *options.menuFile);
    if (options.isRegistered) writeRegistry(options);
}

Workbench::~Workbench() {
    mHost.reset();
    mDaemon.reset();
    std::error_code ignored;  // a file that something still holds open stays in the temporary folder
    if (!mIsFolderKept) std::filesystem::remove_all(mFolder, ignored);
}

void Workbench::writeRegistry(const WorkbenchOptions& options) const {
    const std::filesystem::path plugin = options.plugin.empty() ? mBuild / "orbikon_creo.dll" : options.plugin;
    const std::filesystem::path textDir = options.textDir.empty() ? mBuild : options.textDir;
    const std::string paths = "exec_file " + textOf(plugin) + "\ntext_dir " + textOf(textDir);
    // Without a mark the host takes the system's own encoding.
    const bool isAscii = std::ranges::all_of(paths, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    writeTextFile(mFolder / "protk.dat",
                  (isAscii ? "" : "\xEF\xBB\xBF") + ("name orbikon_creo\nstartup dll\n" + paths) +
                      "\nfail_tol TRUE\nallow_stop true\ndelay_start false\nunicode_encoding false\nend\n");
}

std::string Workbench::pipe(std::string_view role) const {
    return R"(\\.\pipe\)" + std::string(role) + '_' + mInstance;
}

std::filesystem::path Workbench::settingsFolder() const { return profile() / "OrbikonController" / "Applications"; }

Process Workbench::start(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                         const std::filesystem::path& outputFile, const Environment& environment) const {
    ProcessOptions options{.program = program,
                           .arguments = arguments,
                           .folder = mFolder,
                           .environment = environment,
                           .outputFile = outputFile};
    // What the caller sets wins over the workbench's own.
    options.environment.merge(Environment{{kInstanceVariable, mInstance},
                                          {"USERPROFILE", textOf(profile())},
                                          {"TEMP", textOf(temp())},
                                          {"TMP", textOf(temp())}});
    return Process(options);
}

void Workbench::connect(LineClient& client, std::string_view role) const {
    if (!client.open(pipe(role), kPatienceMs)) throw std::runtime_error("nobody serves " + pipe(role));
}

void Workbench::awaitServer(LineClient& client, std::string_view role, const Process& server,
                            const std::filesystem::path& output) const {
    const bool isOpen = waitFor([&] { return client.open(pipe(role), 0) || !server.isRunning(); });
    if (isOpen && client.isOpen()) return;
    throw std::runtime_error(pipe(role) + " is not served; the program's output:\n" + readTextFile(output));
}

std::vector<std::string> Workbench::request(LineClient& client, const char* who, const std::string& command) {
    Reply reply = client.ask(command);
    if (!reply.isOk) throw std::runtime_error(std::string(who) + " on \"" + command + "\": " + reply.error);
    return std::move(reply.lines);
}

void Workbench::startDaemon(const std::vector<std::string>& arguments) {
    killDaemon();
    mDaemon.emplace(start(mBuild / "workbench" / "obk_daemon.exe", arguments, daemonOutputFile()));
    awaitServer(mDaemonClient, kDaemonControl, *mDaemon, daemonOutputFile());
}

void Workbench::stopDaemon() {
    daemon("quit");
    if (!daemonProcess().waitForExit(kPatienceMs)) throw std::runtime_error("the daemon does not end");
    killDaemon();
}

void Workbench::killDaemon() {
    mDaemonClient.close();
    mDaemon.reset();
}

Process& Workbench::daemonProcess() {
    if (!mDaemon) throw std::runtime_error("the daemon was not started");
    return *mDaemon;
}

std::string Workbench::daemonStatus(const std::string& key) {
    for (const std::string& line : daemon("status")) {
        if (line.starts_with(key + '=')) return line.substr(key.size() + 1);
    }
    throw std::runtime_error("the daemon's status has no \"" + key + '"');
}

void Workbench::startHost(const std::vector<std::string>& arguments, const Environment& environment) {
    killHost();
    mHost.emplace(start(mLoadPoint / "bin" / "creo_host.exe", arguments, hostOutputFile(), environment));
    awaitServer(mHostClient, kHostControl, *mHost, hostOutputFile());
}

void Workbench::killHost() {
    mHostClient.close();
    mHost.reset();
}

Process& Workbench::hostProcess() {
    if (!mHost) throw std::runtime_error("the host was not started");
    return *mHost;
}

std::optional<DWORD> Workbench::waitForHostExit(int timeoutMs) { return hostProcess().waitForExit(timeoutMs); }

}  // namespace workbench
