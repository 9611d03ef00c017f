// Where the host finds the plug-in, and where the plug-in finds the driver library.
#include <windows.h>

#include <tlhelp32.h>

#include "driver/obk_ctrlr.h"
#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr auto& kDriver = kDriverLibrary;
constexpr char kRegistry[] = "protk.dat";

// A load point of a test's own with the host in it, and with nothing that the plug-in needs.
class Installation : public ::testing::Test {
  protected:
    Installation() {
        fs::create_directories(bin());
        fs::create_directories(loadPoint() / "text");
        fs::copy_file(original() / "creo_host.exe", bin() / "creo_host.exe", fs::copy_options::overwrite_existing);
    }
    ~Installation() override {
        std::error_code ignored;
        fs::remove_all(loadPoint(), ignored);
    }

    static fs::path original() { return workbench::buildFolder() / "workbench" / "creo" / "bin"; }
    static fs::path driver() { return original() / kDriver; }
    static fs::path loadPoint() {
        return fs::temp_directory_path() / ("orbikon_place_" + std::to_string(GetCurrentProcessId()));
    }
    static fs::path bin() { return loadPoint() / "bin"; }

    static workbench::WorkbenchOptions options(const fs::path& plugin = {}) {
        workbench::WorkbenchOptions options = optionsWith(settingsText(), menuText());
        options.loadPoint = loadPoint();
        options.plugin = plugin;
        return options;
    }
};

bool isConnected(Workbench& bench) {
    return waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; });
}

// File from which a process has loaded a module; empty when it has not.
fs::path loadedFrom(DWORD process, const std::string& module) {
    const workbench::Handle modules(CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, process));
    MODULEENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32First(modules.get(), &entry); more; more = Module32Next(modules.get(), &entry)) {
        if (lstrcmpiA(entry.szModule, module.c_str()) == 0) return entry.szExePath;
    }
    return {};
}

class Registry : public Installation {
  protected:
    Registry() { fs::copy_file(driver(), bin() / kDriver); }
};

TEST_F(Registry, NamedByTheConfigurationOption) {
    Workbench bench(options());
    fs::create_directories(bench.folder() / "elsewhere");
    fs::rename(bench.folder() / kRegistry, bench.folder() / "elsewhere" / "plugins.dat");
    workbench::writeTextFile(
        bench.folder() / "config.pro",
        "toolkit_registry_file " + (bench.folder() / "elsewhere" / "plugins.dat").generic_string() + "\n");
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(isConnected(bench)) << bench.hostOutput();
}

TEST_F(Registry, InTheLoadPointsText) {
    Workbench bench(options());
    fs::rename(bench.folder() / kRegistry, loadPoint() / "text" / kRegistry);
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(isConnected(bench)) << bench.hostOutput();
    const auto menus = bench.host("menus");
    EXPECT_NE(std::find(menus.begin(), menus.end(), "Orbikon"), menus.end()) << "the message file was found, too";
}

// No folder above the host has compiled resources: no menu file, and all else works.
TEST_F(Registry, NoCompiledResourcesAnywhere) {
    Workbench bench(options());
    fs::remove(bench.menuFile());
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(
        waitFor([&] { return bench.log().find("Cannot determine loadpoint and/or language") != std::string::npos; }));
    EXPECT_TRUE(isConnected(bench));
    bench.daemon("event 0x20020");
    EXPECT_TRUE(
        waitFor([&] { return bench.log().find("menuFncIdx (0') too big (max. is -1)!") != std::string::npos; }));
    EXPECT_FALSE(fs::exists(bench.menuFile()));
}

class DriverLibrary : public Installation {};

// Copies of the library in the current directory and along PATH would connect; they are not taken, and the one that
// turns up beside the host is.
TEST_F(DriverLibrary, IsTakenFromSafePlacesOnlyAndMayTurnUpLater) {
    Workbench bench(options());
    const fs::path onPath = bench.folder() / "on path";
    fs::create_directories(onPath);
    for (const fs::path& decoy : {bench.folder() / kDriver, onPath / kDriver}) fs::copy_file(driver(), decoy);
    bench.startDaemon();
    bench.startHost({"--require-plugin"}, {{"PATH", onPath.string() + ";" + std::string(std::getenv("PATH"))}});
    const DWORD process = bench.hostProcess().id();
    const std::string missing = std::string(kDriver) + " not found.";
    // At the start and by the watchdog.
    ASSERT_TRUE(waitFor([&] {
        const std::string log = bench.log();
        return log.find(missing) != log.rfind(missing);
    }));
    EXPECT_EQ(bench.daemonStatus("connects"), "0");
    EXPECT_EQ(loadedFrom(process, kDriver), fs::path());

    fs::copy_file(driver(), bin() / kDriver);
    EXPECT_TRUE(isConnected(bench));
    EXPECT_TRUE(fs::equivalent(loadedFrom(process, kDriver), bin() / kDriver));
    bench.host("mode assembly");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; }));
}

TEST_F(DriverLibrary, BesideThePlugInWinsOverTheOneBesideTheHost) {
    const fs::path folder = loadPoint() / "plugin";
    fs::create_directories(folder);
    fs::copy_file(workbench::buildFolder() / "orbikon_creo.dll", folder / "orbikon_creo.dll");
    for (const fs::path& place : {folder, bin()}) fs::copy_file(driver(), place / kDriver);
    Workbench bench(options(folder / "orbikon_creo.dll"));
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(isConnected(bench));
    EXPECT_TRUE(fs::equivalent(loadedFrom(bench.hostProcess().id(), kDriver), folder / kDriver));
}

// A damaged file in a place that is looked at first opens no message box and does not hide the good one.
TEST_F(DriverLibrary, DamagedOneIsPassedOver) {
    const fs::path folder = loadPoint() / "plugin";
    fs::create_directories(folder);
    fs::copy_file(workbench::buildFolder() / "orbikon_creo.dll", folder / "orbikon_creo.dll");
    workbench::writeTextFile(folder / kDriver, "no library");
    fs::copy_file(driver(), bin() / kDriver);
    Workbench bench(options(folder / "orbikon_creo.dll"));
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(isConnected(bench));
}

// An older library without three of the ordinals: those operations fail, the others work.
TEST_F(DriverLibrary, MissingOrdinalsFailAlone) {
    fs::copy_file(workbench::buildFolder() / "tests" / "partial_driver" / kDriver, bin() / kDriver);
    Workbench bench(options());
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(isConnected(bench));
    EXPECT_TRUE(waitFor([&] { return bench.log().find("Error in obGetAdvancedSettings()!") != std::string::npos; }));
    // The mode cannot be told, the legacy channel cannot be asked for; what the cap does is read all the same.
    EXPECT_TRUE(capMovesComponent(bench));
    EXPECT_EQ(bench.daemonStatus("modes_told"), "0");
    EXPECT_EQ(bench.daemonStatus("legacy_sets"), "0");
}

}  // namespace
}  // namespace e2e
