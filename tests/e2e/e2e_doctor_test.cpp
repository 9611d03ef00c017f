// The doctor as it is run: beside daemon and driver library, with arguments of any script, and what it writes.
#include <nlohmann/json.hpp>

#include <fstream>
#include <sstream>

#include "driver/obk_ctrlr.h"
#include "tests/e2e/e2e.h"
#include "workbench/control/plugin_settings.h"

using namespace e2e;
namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";

// A seat in a workbench's folder: an installation of the plug-in of its own, registered there.
class DoctorSeat : public Workbench {
  public:
    DoctorSeat() : Workbench(optionsWith(workbench::settingsText({{"logToFile", "off"}}), menuText())) {
        fs::create_directories(plugin.parent_path());
        fs::copy_file(workbench::buildFolder() / "orbikon_creo.dll", plugin);
        for (const char* language : {"usascii", "french", "german"}) {
            workbench::writeTextFile(folder() / "seat" / "text" / language / "Orbikon.txt",
                                     std::string(kMark) + "Key\nText\n\xC3\x9C\n#\n");
        }
        workbench::writeTextFile(folder() / "protk.dat", "name orbikon_creo\nstartup dll\nexec_file " +
                                                             plugin.string() + "\ntext_dir " +
                                                             plugin.parent_path().string() + "\nfail_tol TRUE\nend\n");
    }

    // Exit code; what it printed is in `printed`.
    DWORD run(std::vector<std::string> arguments) {
        const fs::path output = folder() / "printed.txt";
        const workbench::Process process = start(workbench::buildFolder() / "orbikon_doctor.exe", arguments, output,
                                                 workbench::Environment{{"PRO_LANG", "english"}});
        const auto code = process.waitForExit(workbench::kPatienceMs);
        printed = bytesOf(output);
        return code.value_or(~DWORD{0});
    }

    // Ids of what is not ok, of a run on this seat.
    std::vector<std::string> ids(std::vector<std::string> arguments = {}) {
        arguments.insert(arguments.end(), {"--json", "--load-point", loadPoint.string()});
        run(arguments);
        std::vector<std::string> found;
        const auto json = nlohmann::json::parse(printed, nullptr, false);
        if (json.is_discarded()) return {"no JSON: " + printed};
        for (const auto& check : json["checks"]) {
            if (check["status"] != "ok" && (found.empty() || found.back() != check["id"])) found.push_back(check["id"]);
        }
        return found;
    }

    const fs::path plugin = folder() / "seat" / "orbikon_creo.dll";
    fs::path loadPoint = workbench::buildFolder() / "workbench" / "creo";
    std::string printed;
};

using Ids = std::vector<std::string>;

TEST(Doctor, DaemonAndDriverLibrary) {
    DoctorSeat seat;
    EXPECT_EQ(seat.ids(), Ids{"daemon.answer"}) << seat.printed;
    EXPECT_EQ(seat.ids({"--offline"}), Ids{}) << seat.printed;
    seat.startDaemon();
    EXPECT_EQ(seat.ids(), Ids{}) << seat.printed;
    EXPECT_THAT(seat.printed, HasSubstr("1 device, "));

    const fs::path library = seat.plugin.parent_path() / kDriverLibrary;  // found before the host's
    fs::copy_file(workbench::buildFolder() / "tests" / "partial_driver" / kDriverLibrary, library);
    const Ids partial = seat.ids();
    EXPECT_THAT(partial, testing::Contains("driver.ordinals")) << seat.printed;
    // A damaged one is passed over, and the next place's is taken.
    fs::remove(library);
    workbench::writeTextFile(library, "no library");
    EXPECT_EQ(seat.ids(), Ids{}) << seat.printed;

    // No host, so no library beside it: each place is named with the reason.
    seat.loadPoint = seat.folder() / "none";
    const Ids none = seat.ids();
    EXPECT_THAT(none, testing::Contains("driver.library"));
    EXPECT_THAT(seat.printed, HasSubstr("machine type, or damaged (193)"));
    EXPECT_THAT(seat.printed, HasSubstr("not there (2)"));
}

TEST(Doctor, ArgumentsAndExitCodes) {
    DoctorSeat seat;
    const std::string loadPoint = seat.loadPoint.string();
    EXPECT_EQ(seat.run({"--help"}), 0u);
    EXPECT_THAT(seat.printed, HasSubstr("Usage: orbikon_doctor"));
    EXPECT_EQ(seat.run({"--version"}), 0u);
    EXPECT_THAT(seat.printed, testing::StartsWith("orbikon_doctor "));
    for (const auto& [arguments, text] :
         std::map<std::vector<std::string>, std::string>{{{"--profil", "x"}, "did you mean '--profile'"},
                                                         {{"--profile"}, "needs a value"},
                                                         {{"--json", "--json"}, "twice"},
                                                         {{"what"}, "'what' is no option"}}) {
        EXPECT_EQ(seat.run(arguments), 3u) << seat.printed;
        EXPECT_THAT(seat.printed, HasSubstr(text));
    }
    EXPECT_EQ(seat.run({"--offline", "--load-point", loadPoint}), 0u) << seat.printed;
    fs::remove(seat.menuFile());
    EXPECT_EQ(seat.run({"--offline", "--load-point", loadPoint}), 1u) << seat.printed;
    EXPECT_EQ(seat.run({"--load-point", loadPoint}), 2u) << seat.printed;
}

TEST(Doctor, RegistersTheProbeBesideThePlugIn) {
    DoctorSeat seat;
    const std::string file = (seat.folder() / "both.dat").string();
    EXPECT_EQ(seat.run({"register", file}), 0u) << seat.printed;
    const std::string plugin = bytesOf(file);
    EXPECT_EQ(seat.run({"register", file, "--probe"}), 0u) << seat.printed;
    EXPECT_THAT(bytesOf(file), testing::AllOf(testing::StartsWith(plugin), HasSubstr("name orbikon_probe\r\n"),
                                              HasSubstr("\\orbikon_probe.dll\r\n")));
    EXPECT_EQ(seat.run({"unregister", file, "--probe"}), 0u) << seat.printed;
    EXPECT_EQ(bytesOf(file), plugin);
}

// A profile whose name no code page of the process has; nothing changes there without --fix.
TEST(Doctor, ProfilesOfAnyScriptAreReadAndMended) {
    DoctorSeat seat;
    const std::string name = "\xD0\x96\xE6\xBC\xA2 \xC3\xBC";
    const fs::path profile = seat.folder() / fs::path(std::u8string(name.begin(), name.end()));
    fs::create_directory(profile);
    const std::string given = (seat.folder() / "").string() + name;
    EXPECT_EQ(seat.ids({"--offline", "--profile", given}), (Ids{"settings.file", "menu.file"})) << seat.printed;
    EXPECT_TRUE(fs::is_empty(profile));
    seat.run({"--offline", "--fix", "--profile", given});
    EXPECT_THAT(seat.printed, HasSubstr("fixed: "));
    EXPECT_EQ(seat.ids({"--offline", "--profile", given, "--report", given + "\\report.txt"}), Ids{"menu.file"});
    const std::string report = bytesOf(profile / "report.txt");
    EXPECT_THAT(report, HasSubstr("maxContMoveTime"));
    EXPECT_EQ(report.find(name), std::string::npos);
}

std::string replaced(std::string text, const std::string& old, const std::string& by) {
    const auto at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), by);
}

// What a text has more than before; all of it when it was begun anew.
std::string since(std::size_t size, const std::string& text) { return size <= text.size() ? text.substr(size) : text; }

bool hasLine(const std::string& text, const std::string& level, const std::string& part) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(level) != std::string::npos && line.find(part) != std::string::npos) return true;
    }
    return false;
}

// Loads the plug-in anew. Empty once it says so, in its log or where it goes while that is off; else what it says.
std::string notSaid(DoctorSeat& seat, const std::string& level, const std::string& part) {
    seat.host("plugin unload");
    const std::size_t logged = seat.log().size(), printed = seat.hostOutput().size();
    seat.host("plugin load");
    std::string said;
    const bool isSaid = waitFor(
        [&] {
            said = since(logged, seat.log()) + since(printed, seat.hostOutput());
            return hasLine(said, level, part);
        },
        5000);
    return isSaid ? "" : said;
}

constexpr std::string_view kUtf16 = std::string_view("\xFF\xFE[\0P\0", 6);

// One mistake each: the plug-in starts with it, its log names it, and so does the doctor, by its id.
TEST(Mistakes, InFilesAreNamedInTheLogAndByTheDoctor) {
    const auto with = [](Keys changes) {
        changes.merge(Keys{{"mnuLanguage", "english"}, {"info", "on"}, {"debug", "off"}});
        return workbench::settingsText(changes);
    };
    const std::string whole = with({});
    const Ids allDead{"settings.cap-dead", "settings.translation", "settings.rotation"};
    const auto first = [&](const char* id) {
        Ids ids = allDead;
        ids.insert(ids.begin(), id);
        return ids;
    };
    struct InSettings {
        std::string bytes, level, line;  // level: none where the log is off
        Ids ids;
    };
    DoctorSeat seat;
    seat.startHost({"--require-plugin", "--hidden"}, {{"PRO_LANG", "english"}});
    for (const auto& [bytes, level, line, ids] : std::vector<InSettings>{
             {whole, "|INF|", "Build: commit ", {}},
             {std::string(kUtf16), "", "is UTF-16: nothing of it can be read", first("settings.encoding")},
             {"", "", "the file has no key", first("settings.empty")},
             {replaced(whole, "[PROGRAM]", "[Program]"), "|ERR|", "section [PROGRAM] is not there",
              first("settings.missing-section")},
             {replaced(whole, "\ttmp = off\n", ""),
              "|ERR|",
              "Parameter 'tmp' in section 'LOGGING' not found!",
              {"settings.missing-key"}},
             {replaced(whole, "\tmaxContMoveTime", "\n\tmaxContMoveTime"),
              "|WRN|",
              "stands behind line ",
              {"settings.behind-end", "settings.cap-dead"}},
             {replaced(whole, "transSensBase", "transsensbase"),
              "|WRN|",
              "the nearest known key is 'transSensBase'",
              {"settings.unknown-key", "settings.missing-key", "settings.translation"}},
             {replaced(whole, "\ttmp = off\n", "\ttmp = off\n\ttmp = on\n"),
              "|WRN|",
              "stands again in line",
              {"settings.repeated-key"}},
             {with({{"readMode", "On"}}), "|WRN|", "'On' of 'readMode'", {"settings.switch"}},
             {with({{"minThreshold", "5%"}}), "|WRN|", "'5%' of 'minThreshold'", {"settings.number"}},
             {with({{"maxContMoveTime", "0"}}), "|ERR|", "cap and buttons are dead", {"settings.cap-dead"}},
             {with({{"transSensBase", "499"}}), "|ERR|", "the cap moves no component", {"settings.translation"}},
             {with({{"rotSensBase", "0"}}), "|ERR|", "the cap turns no component", {"settings.rotation"}},
             {with({{"logFile", "none?.txt"}}), "", "cannot be opened", {"log.openable"}},
         }) {
        SCOPED_TRACE(line);
        std::ofstream(seat.settingsFile(), std::ios::binary) << bytes;
        EXPECT_EQ(notSaid(seat, level, line), "");
        EXPECT_EQ(seat.ids({"--offline"}), ids) << seat.printed;
    }

    const std::string german =
        replaced(replaced(menuText({"ProCmdModelCopy"}), "1Toggle Move Mode", "1Bewegungsmodus umschalten"),
                 "1Toggle Scroll Mode", "1Fensterrollmodus umschalten");
    struct InMenu {
        std::string language, bytes, level, line;
        Ids ids;
    };
    for (const auto& [language, bytes, level, line, ids] : std::vector<InMenu>{
             {"english", "[MenuBar]\n", "|WRN|", "has no entry", {"menu.entries"}},
             {"english", german, "|WRN|", "is German, Creo's language is 'english'", {"menu.language"}},
             {"klingon",
              "",
              "|ERR|",
              "Compiled Language Resource File does not exist",
              {"resources.language", "menu.file"}},
         }) {
        SCOPED_TRACE(line);
        std::ofstream(seat.settingsFile(), std::ios::binary) << with({{"mnuLanguage", language}});
        fs::remove(seat.menuFile());
        if (!bytes.empty()) std::ofstream(seat.menuFile(), std::ios::binary) << bytes;
        EXPECT_EQ(notSaid(seat, level, line), "");
        EXPECT_EQ(seat.ids({"--offline"}), ids) << seat.printed;
    }
}

TEST(Mistakes, OfDriverAndDaemonAreNamedInTheLogAndByTheDoctor) {
    const auto hasIds = [](DoctorSeat& seat, const char* id) {
        EXPECT_THAT(seat.ids(), testing::Contains(id)) << seat.printed;
    };
    DoctorSeat seat;
    const fs::path library = seat.plugin.parent_path() / kDriverLibrary;  // found before the host's
    fs::copy_file(workbench::buildFolder() / "tests" / "partial_driver" / kDriverLibrary, library);
    std::ofstream(seat.settingsFile(), std::ios::binary) << workbench::settingsText({});
    seat.startHost({"--require-plugin", "--hidden"});
    EXPECT_TRUE(waitFor([&] { return seat.log().find("Error in obConnect()!") != std::string::npos; }));
    hasIds(seat, "daemon.answer");
    hasIds(seat, "driver.ordinals");
    const std::string log = seat.log();
    const auto named = log.find(" has no ordinal ");
    ASSERT_NE(named, std::string::npos) << log;
    const std::string line = log.substr(named, log.find('\n', named) - named);
    EXPECT_EQ(log.find(line, named + 1), std::string::npos) << "each is named once";

    // A host without a library beside it, and a damaged one beside the plug-in.
    seat.killHost();
    fs::remove(library);
    workbench::writeTextFile(library, "no library");
    seat.loadPoint = seat.folder() / "bare";
    fs::create_directories(seat.loadPoint / "bin");
    const fs::path host = seat.loadPoint / "bin" / "creo_host.exe";
    fs::copy_file(workbench::buildFolder() / "workbench" / "creo" / "bin" / "creo_host.exe", host);
    const workbench::Process bare = seat.start(host, {"--require-plugin", "--hidden"}, seat.folder() / "bare.txt");
    for (const char* reason : {" not found.", "machine type, or damaged (193)", "not there (2)"}) {
        EXPECT_TRUE(waitFor([&] { return seat.log().find(reason) != std::string::npos; })) << reason << seat.log();
    }
    hasIds(seat, "driver.library");
}

}  // namespace
