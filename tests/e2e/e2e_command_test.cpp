// Device buttons run Creo's commands, as macros and through the mapkey.
#include <cmath>

#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

const std::vector<std::string> kCommands = {"ProCmdEnvMdlDisp*Wireframe", "ProCmdViewTop", "ProCmdEditUndo",
                                            "ProCmdNobodyKnows"};
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

TEST_P(Commands, UnknownCommandAndTooBigIndex) {
    bench.host("front main");
    bench.daemon(event(kFirstCommand + 3));
    EXPECT_TRUE(waitFor([&] { return bench.status("macros_failed") != "0"; })) << "Creo refuses, nothing breaks";
    bench.daemon(event(kFirstCommand + 100));
    bench.expectLog("menuFncIdx (102') too big (max. is 5)!");
    bench.daemon(event(kFirstCommand));
    EXPECT_TRUE(waitForStatus("style", "Wireframe"));
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

TEST(Mapkey, NotWithCreoBehindAnotherWindowAndNotWithoutATrailFile) {
    Bench bench(Keys{{"useMapkeyForCommands", "on"}}, kCommands);
    // A folder where the trail file should be.
    std::filesystem::create_directories(bench.temp() / "orbikon-trail.txt");
    bench.host("front main");
    bench.daemon(event(kFirstCommand));
    bench.expectLog("Cannot write trail file '");
    std::filesystem::remove(bench.temp() / "orbikon-trail.txt");

    // Another program's window in front: dropped, and nothing is typed into it.
    HWND other = CreateWindowExA(0, "EDIT", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100, nullptr, nullptr,
                                 nullptr, nullptr);
    SetForegroundWindow(other);
    const auto pump = [] {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    };
    ASSERT_TRUE(waitFor([&] {
        pump();
        return GetForegroundWindow() == other;
    }));
    bench.daemon(event(kFirstCommand));
    EXPECT_TRUE(waitFor([&] {
        pump();
        return bench.log().find("executeCommandByMapkey, but Creo is not activ window...") != std::string::npos;
    }));
    EXPECT_EQ(GetWindowTextLengthA(other), 0);
    DestroyWindow(other);
    EXPECT_EQ(bench.status("style"), "Shading");
    EXPECT_FALSE(std::filesystem::exists(bench.temp() / "orbikon-trail.txt"));
}

// Creo refuses the mapkey: macros instead.
TEST(Mapkey, RefusedDefinitionFallsBackToMacros) {
    Bench bench(Keys{{"useMapkeyForCommands", "on"}, {"mapkeyDefinition", "F5"}}, kCommands);
    EXPECT_EQ(bench.host("trail").at(0).substr(0, 2), "5 ");
    bench.host("plugin unload");
    bench.host("fail ProConfigoptSet always");
    bench.host("plugin load");
    bench.expectLog("Cannot set Mapkey (5)! => Normal Methode");
    bench.daemon(event(kFirstCommand));
    EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));
    EXPECT_EQ(bench.status("macros_run"), "1");
}

TEST(SpecialEvents, StandardViews) {
    Bench bench;
    struct Case {
        int code;
        std::array<Vector, 3> rows;  // of the view matrix
    };
    const Case cases[] = {
        {0x2000A, {{{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}}},  {0x2000B, {{{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}}},
        {0x20016, {{{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}}}}, {0x20017, {{{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}}}},
        {0x20018, {{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}}},  {0x20009, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}},
    };
    for (const auto& [code, rows] : cases) {
        bench.daemon(event(code));
        EXPECT_TRUE(waitFor([&] {
            const Pose view = bench.view();
            for (int i = 0; i < 3; ++i) {
                if (length(view.axes[i] * (1.0 / length(view.axes[i])) - rows[i]) > 1e-4) return false;
            }
            return true;
        })) << std::hex
            << code;
    }
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
