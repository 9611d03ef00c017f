// The doctor as it is run: beside daemon and driver library, with arguments of any script, and what it writes.
#include <nlohmann/json.hpp>

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

}  // namespace
