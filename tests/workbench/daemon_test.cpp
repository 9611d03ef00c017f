// The daemon as a program: its commands, bindings, scripts and end.
#include <gtest/gtest.h>

#include <sstream>

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

// A bind file that is older than the menu file: what is gone stays bound, and only pressing it is refused.
TEST_F(Daemon, BindingsToCommandsThatAreGoneAreKeptOnDemand) {
    file("Creo.mnu", kMenu);
    file("old.txt", "[Default]\n1 = ProCmdGone\n2 = ProCmdBare\n");
    ASSERT_EQ(bench.library.connect(), 0);
    EXPECT_EQ(bench.bench.askDaemon("bind old.txt Creo.mnu kept").error, "only \"keep\" may follow the files");
    bench.bench.daemon("bind old.txt Creo.mnu keep");
    EXPECT_EQ(bench.bench.daemon("bindings"),
              (std::vector<std::string>{"Default|1|ProCmdGone|-1", "Default|2|ProCmdBare|3"}));
    EXPECT_EQ(bench.bench.askDaemon("button 1").error, "button 1 is bound to ProCmdGone, which is not in \"Creo.mnu\"");
    bench.bench.daemon("button 2");
    EXPECT_EQ(bench.library.read().event, APPL_FUNC_START + 3);
}

TEST_F(Daemon, TakesBackWhatAClientSetOnceItHasGone) {
    const auto state = [&] {
        std::vector<std::string> values;
        for (const char* key : {"axes", "extras", "devices", "rotation_mode", "context_flag", "legacy_own", "hold"}) {
            values.push_back(bench.bench.daemonStatus(key));
        }
        return values;
    };
    bench.bench.daemon("settings 104 1");
    const auto before = state();
    for (const bool isTakenBack : {true, false}) {
        LineClient client;
        bench.bench.connect(client, "obk_control");
        for (const char* command : {isTakenBack ? "take-back on" : "take-back off", "axes 1 2 3 4 5 6", "extras 7 8",
                                    "devices 3", "settings 2 0", "settings 3 0", "legacy 0", "hold on"}) {
            ASSERT_TRUE(client.ask(command).isOk) << command;
        }
        const auto changed = state();
        EXPECT_NE(changed, before);
        client.close();
        if (isTakenBack) {
            EXPECT_TRUE(waitFor([&] { return state() == before; }));
        } else {
            bench.bench.daemon("status");
            EXPECT_EQ(state(), changed);
        }
    }
}

TEST_F(Daemon, TellsWhoIsConnected) {
    EXPECT_TRUE(bench.bench.daemon("applications").empty());
    ASSERT_EQ(bench.library.connect("xtopCreo"), 0);
    const std::string name = std::to_string(GetCurrentProcessId()) + "|xtopCreo|";
    EXPECT_EQ(bench.bench.daemon("applications"), std::vector{name});
    ASSERT_EQ(bench.library.setMode("xtopCreo", "Assembly"), 0);
    EXPECT_EQ(bench.bench.daemon("applications"), std::vector{name + "Assembly"});
}

// What an application got while it was recorded it gets again, in time or line by line.
TEST_F(Daemon, RecordsAndReplaysWhatReachesAnApplication) {
    ASSERT_EQ(bench.library.connect(), 0);
    bench.bench.daemon("record record.txt");
    for (const char* command : {"axes 10 0 0 0 0 0", "event 0x20017", "axes 0 0 0 0 0 -20", "settings 104 1"}) {
        bench.bench.daemon(command);
    }
    bench.bench.daemon("record off");
    bench.bench.daemon("axes 1 1 1 1 1 1");
    std::string commands;
    const std::string record = readTextFile(bench.bench.folder() / "record.txt");
    std::istringstream lines(record);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with('#')) commands += line.substr(line.find(' ') + 1) + '\n';
    }
    EXPECT_EQ(commands,
              "settings 0 0\ndevices 1\naxes 0 0 0 0 0 0\naxes 10 0 0 0 0 0\nevent 131095\n"
              "axes 0 0 0 0 0 -20\nsettings 104 1\n");

    bench.bench.daemon("settings 0 0");
    const auto next = [&] { return bench.readUntil([](const DriverReading& reading) { return reading.event != -1; }); };
    while (bench.library.read().event != -1) {
    }
    bench.bench.daemon("replay record.txt step");
    EXPECT_EQ(bench.bench.daemon("step 4").size(), 4u);
    EXPECT_EQ(bench.bench.daemonStatus("axes"), "10 0 0 0 0 0");
    EXPECT_EQ(bench.bench.daemonStatus("replayed"), "4/7");
    EXPECT_EQ(next().event, kEventSettingsChanged1);
    EXPECT_TRUE(bench.bench.daemon("step").at(0).ends_with(" event 131095"));
    EXPECT_EQ(next().event, 0x20017);
    EXPECT_EQ(bench.bench.daemon("step 9").size(), 2u) << "no more than there are";
    EXPECT_EQ(bench.bench.daemonStatus("axes"), "0 0 0 0 0 0") << "a record that is over leaves the cap at rest";
    EXPECT_EQ(bench.bench.askDaemon("step").error, "no record is played stepwise, or it is over");

    ASSERT_EQ(next().event, kEventSettingsChanged1);
    bench.bench.daemon("replay record.txt");
    EXPECT_EQ(next().event, kEventSettingsChanged1);
    EXPECT_EQ(next().event, 0x20017);
    EXPECT_TRUE(waitFor([&] { return bench.bench.daemonStatus("replayed") == "7/7"; }));

    file("bad.txt", "0 axes 0 0 0 0 0 0\n5 die\n");
    EXPECT_EQ(bench.bench.askDaemon("replay bad.txt").error, "bad.txt:2: \"die\" is nothing that a record holds");
    file("back.txt", "5 axes 0 0 0 0 0 0\n4 axes 1 0 0 0 0 0\n");
    EXPECT_EQ(bench.bench.askDaemon("replay back.txt").error, "back.txt:2: \"4\" is not in 5 .. 86400000");
    EXPECT_EQ(bench.bench.askDaemon("record missing/record.txt").error, "cannot write \"missing/record.txt\"");
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

// The same commands from a command line, with an exit code for scripts.
TEST(ControlProgram, SteersByArgumentsAndByScript) {
    Workbench bench;
    bench.startDaemon();
    writeTextFile(bench.folder() / "good.txt", "# push\naxes 0 0 50 0 0 0\r\n\nwait 1\nstatus\n");
    writeTextFile(bench.folder() / "bad.txt", "axes 1 0 0 0 0 0\njump\naxes 2 0 0 0 0 0\n");
    const std::filesystem::path program = buildFolder() / "workbench" / "obk_ctl.exe";
    const struct {
        const char* arguments;
        DWORD exitCode;
        const char* output;
    } cases[] = {
        {"daemon axes 0 0 30 0 0 0", 0, ""},
        {"daemon status", 0, "axes=0 0 30 0 0 0"},
        {"daemon jump", 1, "obk_ctl: unknown command \"jump\""},
        {"daemon bind \"no such file\" Creo.mnu", 1, "cannot read"},
        {"daemon help", 0, "take-back on|off"},
        {"daemon - < good.txt", 0, "axes=0 0 50 0 0 0"},
        {"daemon - < bad.txt", 1, "line 2: unknown command \"jump\""},
        {"daemon status", 0, "axes=1 0 0 0 0 0"},
        {"host status", 3, "there is no host"},
        {"nobody status", 2, "usage: obk_ctl"},
        {"daemon", 2, "say what to command"},
    };
    for (const auto& [arguments, exitCode, output] : cases) {
        SCOPED_TRACE(arguments);
        // By a shell of its own, which hands the file over.
        writeTextFile(bench.folder() / "run.bat", std::string("\"%~1\" ") + arguments + "\r\n");
        const std::filesystem::path file = bench.folder() / "output.txt";
        const Process process = bench.start(std::getenv("COMSPEC"), {"/c", "run.bat", program.string()}, file);
        EXPECT_EQ(process.waitForExit(kPatienceMs), exitCode);
        EXPECT_NE(readTextFile(file).find(output), std::string::npos) << readTextFile(file);
    }
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
