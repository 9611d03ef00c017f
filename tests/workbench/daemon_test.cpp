// The daemon as a program: its commands, bindings, scripts and end.
#include <gtest/gtest.h>

#include "tests/workbench/driver_library.h"

namespace workbench {
namespace {

constexpr char kMenu[] =
    "# PTC Creo menubar file\n \n[Modes]\nSketcher   = 1\nAssembly   = 6\n \n[MenuBar]\n"
    "0Orbikon   = {}\n"
    "1Scroll    = {}OB_Toggle_Scroll_Mode|help\n"
    "1Move      = {+ 6}OB_Toggle_Object_Move_Mode|help | more\n"
    "0View      = {}\n"
    "Nothing    = {}|only help\n"
    "Wireframe  = {}ProCmdEnvMdlDisp*Hidden line|help\n"
    "Bare       = ProCmdBare\n"
    " \n"
    "Behind     = {}ProCmdBehind|not in the section any more\n";

class Daemon : public testing::Test {
  protected:
    Daemon() { bench.bench.startDaemon(); }

    std::string file(const char* name, const std::string& text) {
        writeTextFile(bench.bench.folder() / name, text);
        return name;
    }

    DriverBench bench;
};

TEST_F(Daemon, ButtonsAreResolvedAgainstTheMenuFileByMode) {
    file("Creo.mnu", kMenu);
    file("buttons with blanks.txt",
         "# comment\n[Default]\n1 = OB_Toggle_Scroll_Mode\n 2 = ProCmdBare \n\n[Assembly]\n"
         "1=OB_Toggle_Object_Move_Mode\r\n3 = ProCmdEnvMdlDisp*Hidden line\n");
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.bench.daemon("bind \"buttons with blanks.txt\" Creo.mnu").front(), "bindings=4");
    const struct {
        const char* mode;
        int button;
        int index;  // -1 = not bound
    } cases[] = {{nullptr, 1, 0},    {"Part", 1, 0},     {"Part", 2, 3},     {"Part", 3, -1},
                 {"Assembly", 1, 1}, {"Assembly", 2, 3}, {"Assembly", 3, 2}, {"Assembly", 4, -1}};
    for (const auto& [mode, button, index] : cases) {
        SCOPED_TRACE(std::string(mode == nullptr ? "no mode" : mode) + ' ' + std::to_string(button));
        if (mode != nullptr) {
            ASSERT_EQ(bench.library.setMode("Creo", mode), 0);
        }
        const Reply reply = bench.bench.askDaemon("button " + std::to_string(button));
        EXPECT_EQ(reply.isOk, index >= 0) << reply.error;
        EXPECT_EQ(bench.library.read().event, index >= 0 ? APPL_FUNC_START + index : -1);
    }
}

TEST_F(Daemon, BadBindingsAreRefusedAndChangeNothing) {
    file("Creo.mnu", kMenu);
    file("good.txt", "[Default]\n1 = ProCmdBare\n");
    file("no_menu.mnu", "[Modes]\nPart = 2\n");
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("bind good.txt Creo.mnu");
    const struct {
        const char *bindings, *menu, *reason;
    } cases[] = {
        {"[Part]\n1 = ProCmdX\n2 = ProCmdBare\n3 = ProCmdBehind\n", "Creo.mnu",
         "not in \"Creo.mnu\": ProCmdX, ProCmdBehind"},
        {"1 = ProCmdBare\n", "Creo.mnu", "bad.txt:1: a binding before the first [Mode]"},
        {"[Part]\nnonsense\n", "Creo.mnu", "bad.txt:2: neither [Mode] nor button = command"},
        {"[Part]\n0 = ProCmdBare\n", "Creo.mnu", "bad.txt:2: \"0\" is not in 1 .. 999"},
        {"[Part]\n", "missing.mnu", "cannot read \"missing.mnu\""},
        {"[Part]\n", "no_menu.mnu", "\"no_menu.mnu\" has no section [MenuBar]"},
    };
    for (const auto& [bindings, menu, reason] : cases) {
        file("bad.txt", bindings);
        EXPECT_EQ(bench.bench.askDaemon("bind bad.txt " + std::string(menu)).error, reason);
    }
    bench.bench.daemon("button 1");
    EXPECT_EQ(bench.library.read().event, APPL_FUNC_START + 3);
}

TEST_F(Daemon, BadCommandsAreRefusedWithAReason) {
    ASSERT_EQ(bench.library.connect(), 0);
    const std::string before = bench.bench.daemonStatus("axes");
    const std::pair<std::string, const char*> cases[] = {
        {"", "no command"},
        {"   ", "no command"},
        {"jump", "unknown command \"jump\""},
        {"axes", "usage: axes TX TY TZ RX RY RZ"},
        {"axes 1 2 3 4 5", "usage: axes TX TY TZ RX RY RZ"},
        {"axes 1 2 3 4 5 6 7", "usage: axes TX TY TZ RX RY RZ"},
        {"axes 1 2 3 4 5 32768", "\"32768\" is not in -32768 .. 32767"},
        {"axes 1 2 3 4 5 -32769", "\"-32769\" is not in -32768 .. 32767"},
        {"axes 1 2 3 4 5 6x", "\"6x\" is not a number"},
        {"axes 1 2 3 4 5 0x-5", "\"0x-5\" is not a number"},
        {"event", "usage: event CODE [failing]"},
        {"event 99999999999999999999", "\"99999999999999999999\" is not in -2147483648 .. 2147483647"},
        {"event 1 often", "only \"failing\" may follow the code"},
        {"button 1", "button 1 is not bound in mode \"\""},
        {"button one", "\"one\" is not a number"},
        {"settings 1 256", "\"256\" is not in 0 .. 255"},
        {"legacy 2", "\"2\" is not in 0 .. 1"},
        {"devices many", "\"many\" is not a number"},
        {"fail obJump 1", "\"obJump\" is not an operation"},
        {"fail obConnect 0", "\"0\" is not in 1 .. 1000000"},
        {"fail obConnect 3-2", "\"2\" is not in 3 .. 1000000"},
        {"hang obConnect 60001", "\"60001\" is not in 0 .. 60000"},
        {"chaos 1 1001", "\"1001\" is not in 0 .. 1000"},
        {"hold maybe", "\"maybe\" is neither on nor off"},
        {"bind \"open", "a quote is not closed"},
        {std::string(100000, 'x'), nullptr},
        {"\x01\x80\xff", nullptr},
    };
    for (const auto& [command, reason] : cases) {
        const Reply reply = bench.bench.askDaemon(command);
        EXPECT_FALSE(reply.isOk) << command;
        if (reason != nullptr) {
            EXPECT_EQ(reply.error, reason) << command;
        }
    }
    EXPECT_EQ(bench.bench.daemonStatus("axes"), before);
    EXPECT_EQ(bench.bench.daemonStatus("events_pending"), "0");
}

TEST_F(Daemon, BadDriverRequestsAreRefused) {
    LineClient client;
    bench.bench.connect(client, "obk_daemon");
    for (const char* request :
         {"", "obJump", "obConnect", "obConnect\t0\t0\tx", "obConnect\tx\t0\tx", "obReadDeviceData\t1\t0",
          "obGetDevNum\t99999999999", "obSetAppMode\t1\tCreo\tPart", "obSetDllLogFlags\tx"}) {
        EXPECT_FALSE(client.ask(request).isOk) << request;
    }
    EXPECT_EQ(bench.bench.daemonStatus("clients"), "0");
}

TEST_F(Daemon, EventsNeedAConnectedApplication) {
    EXPECT_EQ(bench.bench.askDaemon("event 1").error, "no application is connected");
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("event 1");
    ASSERT_EQ(bench.library.disconnect(), 0);
    EXPECT_EQ(bench.bench.askDaemon("event 1").error, "no application is connected");
}

TEST_F(Daemon, SecondDaemonOfAWorkbenchGivesUp) {
    const Process second =
        bench.bench.start(buildFolder() / "workbench" / "obk_daemon.exe", {}, bench.bench.folder() / "second.txt");
    EXPECT_EQ(second.waitForExit(kPatienceMs), 1u);
    EXPECT_NE(readTextFile(bench.bench.folder() / "second.txt").find("already served"), std::string::npos);
    EXPECT_EQ(bench.bench.daemonStatus("connects"), "0");
}

TEST_F(Daemon, EndsAsToldAndReportsIt) {
    bench.bench.daemon("quit");
    EXPECT_EQ(bench.bench.daemonProcess().waitForExit(kPatienceMs), 0u);
    bench.bench.startDaemon();
    EXPECT_FALSE(bench.bench.askDaemon("die").isOk);
    EXPECT_EQ(bench.bench.daemonProcess().waitForExit(kPatienceMs), 3u);
}

TEST(DaemonProgram, PlaysAScript) {
    DriverBench bench;
    writeTextFile(bench.bench.folder() / "script.txt",
                  "# deflect, then wait for the driver\naxes 1 2 3 4 5 6\nnonsense\nwait 5\nwait -1\n"
                  "wait-connected 20000\nevent 0x20017\nevent 0x20018 failing\n");
    bench.bench.startDaemon({"--script", "script.txt"});
    EXPECT_TRUE(waitFor([&] { return bench.bench.daemonStatus("axes") == "1 2 3 4 5 6"; }));
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.readUntil([](const DriverReading& reading) { return reading.event != -1; }).event, 0x20017);
    EXPECT_EQ(bench.readUntil([](const DriverReading& reading) { return reading.event != -1; }).event, 0x20018);
    bench.bench.daemon("quit");
    EXPECT_EQ(bench.bench.daemonProcess().waitForExit(kPatienceMs), 1u) << "two lines of the script were bad";
    const std::string output = bench.bench.daemonOutput();
    EXPECT_NE(output.find("script.txt:3: unknown command \"nonsense\""), std::string::npos) << output;
    EXPECT_NE(output.find("script.txt:5: \"-1\" is not in 0 .. 3600000"), std::string::npos) << output;
}

TEST(DaemonProgram, EndsWithItsParent) {
    Workbench bench;
    const std::filesystem::path program = buildFolder() / "workbench" / "obk_daemon.exe";
    Process parent = bench.start(program, {}, bench.folder() / "parent.txt");
    const Process child = bench.start(program, {"--parent", std::to_string(parent.id())}, bench.folder() / "child.txt",
                                      {{"ORBIKON_WORKBENCH", bench.instance() + "_child"}});
    LineClient client;
    ASSERT_TRUE(client.open(R"(\\.\pipe\obk_control_)" + bench.instance() + "_child", kPatienceMs));
    EXPECT_TRUE(client.ask("status").isOk);
    parent.kill();
    EXPECT_EQ(child.waitForExit(kPatienceMs), 0u);
}

TEST(DaemonProgram, CommandLine) {
    const Workbench bench;
    const struct {
        std::vector<std::string> arguments;
        DWORD exitCode;
        const char* output;
    } cases[] = {
        {{"--help"}, 0, "axes TX TY TZ RX RY RZ"},
        {{"--jump"}, 2, "--jump"},
        {{"--script"}, 2, "without its value"},
        {{"--parent", "x"}, 2, "\"x\" is not a number"},
        {{"--parent", "4294967294"}, 1, "no such process"},
    };
    for (const auto& [arguments, exitCode, output] : cases) {
        const std::filesystem::path file = bench.folder() / "output.txt";
        const Process process = bench.start(buildFolder() / "workbench" / "obk_daemon.exe", arguments, file);
        EXPECT_EQ(process.waitForExit(kPatienceMs), exitCode) << arguments[0];
        EXPECT_NE(readTextFile(file).find(output), std::string::npos) << readTextFile(file);
    }
}

}  // namespace
}  // namespace workbench
