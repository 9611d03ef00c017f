// Settings, menu files and places that nobody would wish for: the plug-in starts in the host all the same.
#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

constexpr std::size_t kMegabyte = 1'000'000;
constexpr int kShaft = 41;

// Starts daemon and host and shows that the plug-in is whole: registered, connected, and moving what is selected.
void expectWorks(Workbench& bench) {
    bench.startDaemon();
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; }));
    bench.host("model GEARBOX.ASM");
    bench.host("menu click Toggle Move Mode");
    bench.host("select " + std::to_string(kShaft));
    bench.host("cursor graphics");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("legacy") == "0"; }));
    const auto before = bench.host("positions");
    bench.daemon("axes 100 0 0 0 0 0");
    EXPECT_TRUE(waitFor([&] { return bench.host("positions") != before; }));
    bench.daemon("axes 0 0 0 0 0 0");
}

// A file where the folders should be: nothing can be written anywhere below it.
TEST(HostileSettings, FolderThatCannotBeMade) {
    Workbench bench(optionsWith({}, {}));
    workbench::writeTextFile(bench.profile() / "OrbikonController", "in the way");
    expectWorks(bench);
    EXPECT_EQ(workbench::readTextFile(bench.profile() / "OrbikonController"), "in the way");
}

// Another program has the files open and shares them with nobody: they stay as they are, and the menu file is read as
// soon as it can be; the device is served before that.
TEST(HostileSettings, FilesThatAreHeld) {
    Workbench bench(optionsWith(settingsText(), menuText()));
    const std::string settings = bytesOf(bench.settingsFile()), menuFile = bytesOf(bench.menuFile());
    const auto hold = [](const std::filesystem::path& file) {
        return workbench::Handle(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    const auto isInLog = [&](const char* text) { return bench.log().find(text) != std::string::npos; };
    {
        const workbench::Handle held = hold(bench.settingsFile());
        expectWorks(bench);
        bench.host("plugin unload");
    }
    {
        const workbench::Handle held = hold(bench.menuFile());
        bench.host("plugin load");
        EXPECT_TRUE(waitFor([&] { return isInLog("cannot be read, trying again for 30 s"); }));
        bench.daemon("event 0x20020");
        EXPECT_TRUE(waitFor([&] { return isInLog("menuFncIdx (0') too big (max. is -1)!"); }));
    }
    EXPECT_TRUE(waitFor([&] { return isInLog("entries loaded."); }));
    EXPECT_EQ(bytesOf(bench.settingsFile()), settings);
    EXPECT_EQ(bytesOf(bench.menuFile()), menuFile);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(bench.settingsFolder()), {}), 2);
}

TEST(HostileSettings, LineOfTenMegabytes) {
    const std::string text = settingsText({{"name", std::string(10 * kMegabyte, 'x')}, {"transSensBase", "30000"}});
    Workbench bench(optionsWith(text, menuText()));
    expectWorks(bench);
    EXPECT_NE(bench.log().find("entries loaded."), std::string::npos) << "the log's switches behind it count";
}

// The table stays while Creo runs; the next start has the file made again.
TEST(HostileMenuFile, ThatVanishesIsMadeAgainAtTheNextStart) {
    Bench bench(Keys{}, {"ProCmdEnvMdlDisp*Wireframe"});
    bench.expectLog("with 3 entries loaded.");
    std::filesystem::remove(bench.menuFile());
    bench.daemon("event 0x20022");
    EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));
    EXPECT_FALSE(std::filesystem::exists(bench.menuFile()));
    bench.startHost({"--require-plugin"});
    EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(bench.menuFile()); }));
}

}  // namespace
}  // namespace e2e
