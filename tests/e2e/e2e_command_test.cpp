// Device buttons run Creo's commands, as macros and through the mapkey.
#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

const std::vector<std::string> kCommands = {"ProCmdEnvMdlDisp*Wireframe", "ProCmdViewTop", "ProCmdEditUndo"};
constexpr int kFirstCommand = 0x20022;  // behind the two toggles

std::string event(int code) { return "event " + std::to_string(code); }

class Commands : public ::testing::TestWithParam<const char*> {
  protected:
    bool isMapkey() const { return std::string(GetParam()) == "on"; }
    Bench bench{Keys{{"useMapkeyForCommands", GetParam()}}, kCommands};

    bool waitForStatus(const std::string& key, const std::string& value) {
        return waitFor([&] { return bench.status(key) == value; });
    }
    void moveShaft() {
        bench.openAssemblyForMoving();
        bench.selectForMoving("41");
        const Poses before = bench.positions();
        bench.push(200, 0, 0, 0, 0, 0);
        ASSERT_TRUE(waitFor([&] { return length(bench.positions().at(41).origin - before.at(41).origin) > 1.0; }));
        bench.release();
    }
};

INSTANTIATE_TEST_SUITE_P(Ways, Commands, ::testing::Values("off", "on"),
                         [](const auto& way) { return std::string(way.param) == "on" ? "Mapkey" : "Macro"; });

// The same button, both ways: the picture changes; the undo stack stays with the mapkey and is lost with the macro.
TEST_P(Commands, ButtonChangesThePictureAndTheUndoStackIsKeptByTheMapkeyOnly) {
    const Poses original = bench.positions();
    moveShaft();
    ASSERT_NE(bench.status("undo"), "0");
    bench.host("front main");
    ASSERT_EQ(bench.status("style"), "Shading");
    bench.daemon(event(kFirstCommand));
    EXPECT_TRUE(waitForStatus("style", "Wireframe"));
    EXPECT_EQ(bench.status("trails_played"), isMapkey() ? "1" : "0");
    EXPECT_EQ(bench.status("macros_run"), isMapkey() ? "0" : "1");
    if (!isMapkey()) {
        EXPECT_EQ(bench.status("undo"), "0");
        const auto reply = bench.askHost("undo");
        EXPECT_FALSE(reply.isOk);
        EXPECT_EQ(reply.error, "there is nothing to undo");
        return;
    }
    bench.daemon(event(kFirstCommand + 2));
    EXPECT_TRUE(waitFor([&] { return length(bench.positions().at(41).origin - original.at(41).origin) < 1e-9; }))
        << "undo by a button restores the moved component";
    EXPECT_EQ(workbench::readTextFile(bench.temp() / "orbikon-trail.txt"),
              "!trail file version No. 1500\n~ Command `ProCmdEditUndo`;\n!End of Trail File\n");
}

// Menu and buttons switch the same two states, and the host's check items show it.
TEST_P(Commands, TogglesOfMenuAndButtonsAreTheSame) {
    bench.host("mode assembly");
    const auto isMenu = [&](const char* scroll, const char* move) {
        const std::vector<std::string> wanted{"Toggle Move Mode checked=" + std::string(move) + " enabled=1",
                                              "Toggle Scroll Mode checked=" + std::string(scroll) + " enabled=1"};
        return waitFor([&] { return bench.host("menu") == wanted; });
    };
    EXPECT_TRUE(isMenu("0", "0"));
    bench.daemon(event(0x20020));
    EXPECT_TRUE(isMenu("1", "0"));
    bench.daemon(event(0x20021));
    EXPECT_TRUE(isMenu("1", "1"));
    bench.host("menu click Toggle Scroll Mode");
    bench.host("menu click Toggle Move Mode");
    EXPECT_TRUE(isMenu("0", "0"));
    bench.daemon(event(0x20020));
    EXPECT_TRUE(isMenu("1", "0"));
    EXPECT_EQ(bench.status("macros_run"), "0") << "the toggles never reach the host";
    EXPECT_EQ(bench.status("trails_played"), "0");
}

// Buttons bound by name for one mode, resolved against the menu file, as the control panel does it.
TEST_P(Commands, ButtonsBoundPerMode) {
    workbench::writeTextFile(bench.folder() / "buttons.txt",
                             "[Assembly]\n1 = ProCmdEnvMdlDisp*Wireframe\n[Part]\n1 = ProCmdViewTop\n");
    bench.daemon("bind \"" + (bench.folder() / "buttons.txt").string() + "\" \"" + bench.menuFile().string() + "\"");
    bench.host("mode assembly");
    ASSERT_TRUE(waitFor([&] { return bench.daemonStatus("mode") == "Assembly"; }));
    bench.host("front main");
    bench.daemon("button 1");
    EXPECT_TRUE(waitForStatus("style", "Wireframe"));
}

TEST(SpecialEvents, StandardViews) {
    Bench bench;
    bench.daemon(event(0x2000A));
    EXPECT_TRUE(waitFor([&] {
        const Pose view = bench.view();
        return length(view.axes[0] * (1.0 / length(view.axes[0])) - Vector{0, 0, -1}) < 1e-4;
    }));
    const int refits = std::stoi(bench.host("calls ProViewRefit").at(0));
    EXPECT_EQ(refits, 0);
    bench.daemon(event(0x2000C));
    EXPECT_TRUE(waitFor([&] { return bench.host("calls ProViewRefit").at(0) == "1"; }));
    // The context flag of the device's settings adds a refit to every view.
    bench.daemon("settings 104 1");
    bench.daemon(event(0x2000A));
    EXPECT_TRUE(waitFor([&] { return std::stoi(bench.host("calls ProViewRefit").at(0)) >= 2; }));
}

}  // namespace
}  // namespace e2e
