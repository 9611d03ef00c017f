// The doctor against installations with one thing wrong in each: exactly that is found, with its status.
#include <gmock/gmock.h>

#include <generated/version.h>
#include <functional>
#include <nlohmann/json.hpp>

#include "common_sources/settings.h"
#include "tests/tools/pe_bytes.h"
#include "tests/unit/scratch.h"
#include "tools/doctor/fix.h"
#include "tools/doctor/report.h"

using namespace doctor;
namespace fs = std::filesystem;

namespace {

constexpr char kMark[] = "\xEF\xBB\xBF";
constexpr char kMenuFile[] =
    "# PTC Creo menubar file\n \n[Modes]\nSketcher = 1\n \n[MenuBar]\n0Orbikon = {}\n"
    "1Toggle Scroll Mode = {}OB_Toggle_Scroll_Mode|x\n1Toggle Move Mode = {+ 6}OB_Toggle_Object_Move_Mode|x\n ";

std::string replaced(std::string text, const std::string& old, const std::string& by) {
    const auto at = text.find(old);
    EXPECT_NE(at, std::string::npos) << old;
    return at == std::string::npos ? text : text.replace(at, old.size(), by);
}

std::array<std::uint32_t, 4> ownVersion() {
    std::array<std::uint32_t, 4> version{};
    std::istringstream text(kProductVersion);
    char point;
    text >> version[0] >> point >> version[1] >> point >> version[2];
    return version;
}

// A healthy installation in a folder of its own; a case then damages it.
class Installation {
    const ScratchFolder mScratch;

  public:
    Installation() {
        setVariable("PRO_LANG", "english");
        setVariable("TMPDIR", mScratch.path().c_str());
        write("plugin/orbikon_creo.dll", peBytes(pluginShape));
        write("plugin/KERNEL32.dll", "");
        for (const char* language : {"usascii", "french", "german"}) {
            write(std::string("plugin/text/") + language + "/Orbikon.txt",
                  std::string(kMark) + "Key\nText\n\xC3\x9C\n#\n");
        }
        write("lp/i486_nt/obj/xtop.exe", peBytes({.isLibrary = false}));
        write("lp/text/compiled_resource/pro_default_resources.dll", peBytes({.resource = "FILE_PANE.RES"}));
        write("lp/text/compiled_resource/pro_default_german_resources.dll", peBytes({.resource = "PROCMDA.TXT"}));
        write("protk.dat", entry);
        write("profile/OrbikonController/Applications/Creo_plugin.ini", settings);
        write("profile/OrbikonController/Applications/Creo.mnu", kMenuFile);
        write("profile/OrbikonController/Creo_plugin_log.txt", "");
    }

    fs::path operator()(const std::string& name) const { return fs::path(mScratch.path()) / name; }
    void write(const std::string& name, const std::string& bytes) const {
        fs::create_directories((*this)(name).parent_path());
        writeFile((*this)(name).string(), bytes);
        fs::last_write_time((*this)(name), kTime);  // all of one age, also what is written anew
    }
    void remove(const std::string& name) const { fs::remove_all((*this)(name)); }
    void set(const std::string& key, const std::string& value) const {
        const auto begin = settings.find("\t" + key + " "), end = settings.find('\n', begin);
        write(kSettings, std::string(settings).replace(begin, end - begin, "\t" + key + " = " + value));
    }

    static inline const fs::file_time_type kTime = fs::file_time_type::clock::now();
    static constexpr char kSettings[] = "profile/OrbikonController/Applications/Creo_plugin.ini";
    static constexpr char kMenus[] = "profile/OrbikonController/Applications/Creo.mnu";
    const PeShape pluginShape{.names = {"user_initialize", "user_terminate"}, .version = ownVersion()};
    const std::string entry = "name orbikon_creo\nstartup dll\nexec_file " + mScratch.path() +
                              "/plugin/orbikon_creo.dll\ntext_dir " + mScratch.path() + "/plugin\nfail_tol TRUE\nend\n";
    const std::string settings = Settings(Settings::DefaultsOnly{}).fileText();
    // What the caller names.
    Request request{
        .profile = (*this)("profile"), .loadPoint = (*this)("lp"), .registry = (*this)("protk.dat"), .plugin = {}};
};

Findings examine(Seat& seat) {
    Findings findings;
    for (const auto check : {checkCreo, checkRegistration, checkPlugin, checkMessages, checkSettings, checkLog,
                             checkResources, checkMenuFile, checkMapkey}) {
        check(seat, findings);
    }
    return findings;
}

TEST(Doctor, FindsExactlyWhatIsWrong) {
    using In = Installation;
    struct Case {
        std::function<void(In&)> damage;
        std::vector<std::string> ids;  // of what is not ok
    };
    const auto edit = [](const char* old, const char* by) {
        return [=](In& in) { in.write("protk.dat", replaced(in.entry, old, by)); };
    };
    const auto put = [](const char* file, const std::string& bytes) { return [=](In& in) { in.write(file, bytes); }; };
    const auto without = [](const char* file) { return [=](In& in) { in.remove(file); }; };
    const auto setting = [](const char* key, const char* value) { return [=](In& in) { in.set(key, value); }; };
    const auto plugin = [](auto change) {
        return [=](In& in) {
            PeShape shape = in.pluginShape;
            change(shape);
            in.write("plugin/orbikon_creo.dll", peBytes(shape));
        };
    };
    const Case cases[] = {
        {[](In&) {}, {}},
        {[](In& in) { in.request.loadPoint = in("none"); },
         {"creo.load-point", "resources.language", "resources.libraries"}},
        {without("lp/i486_nt"), {"creo.host"}},

        {without("protk.dat"), {"registration.file", "plugin.file", "messages.file"}},
        {put("protk.dat", std::string("n\0a\0", 4)),
         {"registration.encoding", "registration.entry", "plugin.file", "messages.file"}},
        {edit("end\n", "end\nname other\n"), {"registration.unfinished"}},
        {edit("orbikon_creo.dll", "other.dll"), {"registration.exec-file", "plugin.file"}},
        {[](In& in) { in.write("protk.dat", "name other\nexec_file other.dll\nend\n"); },
         {"registration.entry", "plugin.file", "messages.file"}},
        {[](In& in) { in.write("protk.dat", in.entry + in.entry); }, {"registration.duplicate"}},
        {edit("startup dll", "startup spawn"), {"registration.startup"}},
        {edit("/plugin\nfail", "/plugin/text\nfail"), {"registration.text-dir"}},
        {edit("fail_tol TRUE\n", ""), {"registration.fail-tol"}},
        {edit("fail_tol TRUE", "fail_tol false"), {"registration.fail-tol"}},

        {put("plugin/orbikon_creo.dll", "MZ"), {"plugin.file"}},
        {plugin([](PeShape& shape) { shape.machine = 0x8664; }), {"plugin.machine"}},
        {plugin([](PeShape& shape) { ++shape.version[1]; }), {"plugin.version"}},
        {plugin([](PeShape& shape) { ++shape.version[2]; }), {"plugin.version"}},
        {plugin([](PeShape& shape) { ++shape.version[3]; }), {}},
        {plugin([](PeShape& shape) { shape.names.pop_back(); }), {"plugin.exports"}},
        {plugin([](PeShape& shape) { shape.imports.emplace_back("libstdc++-6.dll"); }), {"plugin.imports"}},
        {without("plugin/text/usascii/Orbikon.txt"), {"messages.file"}},
        {without("plugin/text/german"), {"messages.language"}},
        {put("plugin/text/german/Orbikon.txt", "Key\nText\n\xC3\x9C\n#\n"), {"messages.encoding"}},
        {put("plugin/text/german/Orbikon.txt", "Key\nText\n"), {"messages.groups"}},
        {put("plugin/text/german/Orbikon.txt", "Key\n" + std::string(5000, 'x') + "\n\n#\n"), {"messages.line-length"}},

        {without(In::kSettings), {"settings.file"}},
        {[](In& in) { in.remove(In::kSettings), fs::create_directories(in(In::kSettings)); },
         {"settings.writable", "settings.readable"}},
        {put(In::kSettings, "\xFF\xFE[\0"),
         {"settings.encoding", "settings.cap-dead", "settings.translation", "settings.rotation"}},
        {put(In::kSettings, "\n"),
         {"settings.empty", "settings.cap-dead", "settings.translation", "settings.rotation"}},
        {[](In& in) { in.write(In::kSettings, replaced(in.settings, "[LOGGING]", "[logging]")); },
         {"settings.missing-section"}},
        {[](In& in) { in.write(In::kSettings, replaced(in.settings, "\tmaxContMoveTime", "\n\tmaxContMoveTime")); },
         {"settings.behind-end", "settings.cap-dead"}},
        {[](In& in) { in.write(In::kSettings, replaced(in.settings, "\ttrace", "\tTrace")); },
         {"settings.unknown-key", "settings.missing-key"}},
        {[](In& in) { in.write(In::kSettings, in.settings + "tmp = on\n"); }, {"settings.repeated-key"}},
        {setting("readMode", "ON"), {"settings.switch"}},
        {setting("minThreshold", "5%"), {"settings.number"}},
        {setting("maxContMoveTime", "0"), {"settings.cap-dead"}},
        {setting("transSensBase", "499"), {"settings.translation"}},
        {setting("rotSensBase", "0"), {"settings.rotation"}},
        {[](In& in) { fs::permissions(in(In::kSettings), fs::perms::owner_read); }, {"settings.writable"}},

        {[](In& in) {
             in.write(
                 In::kSettings,
                 replaced(
                     replaced(
                         replaced(
                             replaced(in.settings,
                                      "logToFile               =                                                off",
                                      "logToFile = on"),
                             "maxSize                 =                                               5000",
                             "maxSize = 0"),
                         "fileToLog               =  ", "fileToLog = a.cpp"),
                     "Creo_plugin_log.txt", "."));
         },
         {"log.filter", "log.size", "log.openable"}},

        {setting("mnuLanguage", "Klingon"), {"resources.language"}},
        {without("lp/text/compiled_resource/pro_default_resources.dll"), {"resources.libraries"}},
        {put("lp/text/compiled_resource/pro_default_german_resources.dll", "MZ"), {"resources.libraries"}},
        {put("lp/text/compiled_resource/pro_default_german_resources.dll", peBytes({})), {"resources.content"}},
        {without(In::kMenus), {"menu.file"}},
        {[](In& in) { in.remove(In::kMenus), fs::create_directories(in(In::kMenus)); }, {"menu.readable"}},
        {put(In::kMenus, "[Modes]\nPart = 1\n"), {"menu.entries"}},
        {setting("mnuLanguage", "german"), {"menu.language"}},
        {[](In& in) {
             fs::last_write_time(in(In::kMenus), fs::last_write_time(in(In::kMenus)) - std::chrono::hours(1));
         },
         {"menu.age"}},
        {put(In::kMenus, std::string(kMenuFile) + "\n[MenuBar]\nx = {}A|"), {}},  // behind the end, no loss
        {put(In::kMenus, replaced(kMenuFile, "0Orbikon = {}\n", "0Orbikon = {}\nA = {}B|\nA = {}B|\nC = {}|\n")),
         {"menu.unreadable", "menu.duplicates"}},
        {setting("mapkeyDefinition", "F5"), {"mapkey.keys"}},
        {[](In& in) { setVariable("TMPDIR", in("").string().c_str()), in.set("useMapkeyForCommands", "off"); }, {}},
        {[](In& in) {
             const fs::path folder = in(std::string(150, 'a')) / std::string(150, 'b');
             fs::create_directories(folder);
             setVariable("TMPDIR", folder.string().c_str());
         },
         {"mapkey.path-length"}},
    };
    std::size_t number = 0;
    for (const Case& now : cases) {
        Installation installation;
        now.damage(installation);
        Seat seat = lookAtSeat(installation.request, installation("doctor"));
        const Findings findings = examine(seat);
        std::vector<std::string> ids;
        for (const Finding& finding : findings.all()) {
            EXPECT_EQ(finding.remedy.empty(), finding.status == Status::ok) << finding.id;
            if (finding.status != Status::ok) ids.emplace_back(finding.id);
        }
        ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
        EXPECT_EQ(ids, now.ids) << "case " << number << "\n" << textOf(findings, true);
        ++number;
    }
}

TEST(Doctor, ChoosesTheReleaseItIsMadeForAndNamesTheOthers) {
    Installation in;
    for (const char* release : {"2.0", "3.0", "4.0"}) {
        in.write("programs/PTC/Creo " + std::string(release) + "/Common Files/text/x", "");
    }
    setVariable("ProgramW6432", in("programs").string().c_str());
    in.request.loadPoint.clear();
    Seat seat = lookAtSeat(in.request, in("doctor"));
    setVariable("ProgramW6432", nullptr);
    EXPECT_NE(seat.loadPoint.string().find("Creo 3.0"), std::string::npos);
    Findings findings;
    checkCreo(seat, findings);
    for (const char* release : {"Creo 2.0", "Creo 4.0"}) {
        EXPECT_THAT(textOf(findings, false), testing::ContainsRegex("there is also .*" + std::string(release)));
    }
}

TEST(Doctor, SaysWhyALibraryCannotBeRead) {
    const char* const library = "lp/text/compiled_resource/pro_default_resources.dll";
    Installation in;
    const auto told = [&] {
        Seat seat = lookAtSeat(in.request, in("doctor"));
        return textOf(examine(seat), false);
    };
    in.write(library, "MZ");
    EXPECT_THAT(told(), testing::HasSubstr("default_resources.dll is no Windows library, or damaged"));
    in.remove(library);
    EXPECT_THAT(told(), testing::HasSubstr("default_resources.dll: not there"));
}

// The places of a registration file, as Creo looks for them.
TEST(Doctor, NamesTheRegistrationThatCountsAndTheShadowedOnes) {
    const Installation in;
    Request request = in.request;
    request.registry.clear();
    in.write("lp/text/protk.dat", in.entry);
    in.write("company/protk.dat", "name other\nend\n");
    Seat seat = lookAtSeat(request, in("doctor"));
    seat.currentFolder = in("empty");
    Findings findings;
    checkRegistration(seat, findings);
    EXPECT_EQ(findings.worst(), Status::ok) << textOf(findings, true);

    in.write("empty/config.pro", "toolkit_registry_file " + in("company/protk.dat").string() + "\n");
    findings = {};
    checkRegistration(seat, findings);
    ASSERT_TRUE(findings.hasFailed("registration.entry"));
    ASSERT_TRUE(findings.hasFailed("registration.shadowed"));
    EXPECT_THAT(textOf(findings, false), testing::HasSubstr("it has an entry of the plug-in"));
}

TEST(Doctor, FixesWhatLosesNothing) {
    Installation in;
    const std::string path = in(Installation::kSettings).string(), backup = path + ".bak";
    const auto fix = [&] { return fixSeat(lookAtSeat(in.request, in("doctor"))); };
    const auto problems = [&] { return lookAtSeat(in.request, in("doctor")).settings.findings; };
    EXPECT_THAT(fix(), testing::IsEmpty());
    EXPECT_FALSE(fs::exists(backup));

    in.remove("profile/OrbikonController");
    EXPECT_EQ(fix().size(), 1u);
    EXPECT_EQ(::textOf(path), in.settings);
    EXPECT_THAT(problems(), testing::IsEmpty());

    // Comments and values stay, a stray key and a wrong name are the user's to mend.
    const std::string old = "# mine\r\n[PROGRAM]\r\nname = A\r\ntransSensBase = 600\r\n\r\nrotSensBase = 7\r\n# end";
    in.write(Installation::kSettings, old);
    EXPECT_TRUE(fix().back().isDone);
    EXPECT_EQ(bytesOf(backup), old);
    const Seat fixed = lookAtSeat(in.request, in("doctor"));
    EXPECT_THAT(fixed.settings.findings, testing::SizeIs(2)) << bytesOf(path);
    EXPECT_TRUE(fixed.settings.has(SettingsProblem::behindEnd) && fixed.settings.has(SettingsProblem::noRotation));
    EXPECT_EQ(fixed.setting("PROGRAM", "transSensBase"), "600");
    EXPECT_EQ(fixed.setting("PROGRAM", "maxContMoveTime"), "5000");
    EXPECT_EQ(fixed.setting("LOGGING", "maxSize"), "5000");
    EXPECT_THAT(bytesOf(path), testing::StartsWith("# mine\r\n[PROGRAM]\r\n"));
    EXPECT_THAT(bytesOf(path),
                testing::HasSubstr("\r\nname = A\r\ntransSensBase = 600\r\n\r\nrotSensBase = 7\r\n# end"));
    EXPECT_THAT(fix(), testing::IsEmpty());
}

TEST(Doctor, ReportsForProgramsAndWithoutNames) {
    setVariable("USERNAME", "Jane.Doe");
    setVariable("COMPUTERNAME", "WS0815");
    const Installation in;
    in.set("logToFile", "on");
    std::string log = "host ws0815 of JANE.DOE in " + in("profile").string() + "\n";
    for (int line = 1; line <= 250; ++line) log += "line " + std::to_string(line) + "\n";
    in.write("profile/OrbikonController/Creo_plugin_log.txt", log + "jane.doe was here\nlast \xFF\n");
    Seat seat = lookAtSeat(in.request, in("doctor"));
    Findings findings;
    checkSettings(seat, findings);
    findings.fail("menu.entries", "bytes \xFF");

    const auto json = nlohmann::json::parse(jsonOf(findings));
    EXPECT_EQ(json["version"], kProductVersion);
    EXPECT_EQ(json["checks"].back()["id"], "menu.entries");
    EXPECT_EQ(json["checks"].back()["status"], "error");
    EXPECT_EQ(json["checks"].size(), findings.all().size());

    const std::string report = reportOf(seat, findings);
    for (const std::string& name :
         {std::string("Doe"), std::string("doe"), std::string("0815"), in("profile").string()}) {
        EXPECT_EQ(report.find(name), std::string::npos) << name;
    }
    for (const char* part : {"menu.entries", "[PROGRAM]", "line 53\n", "line 250\n", "%USERNAME% was here"}) {
        EXPECT_THAT(report, testing::HasSubstr(part));
    }
    EXPECT_EQ(report.find("line 52\n"), std::string::npos);
}

// A table of the guide has a row for each id, in the order in which the doctor shows them.
TEST(Guide, HasARowForEachId) {
    std::vector<std::string> inGuide, inProgram;
    for (const std::string& line : linesOf(textOf(USER_GUIDE))) {
        const auto end = line.find("` |", 3);
        if (!line.starts_with("| `") || end == std::string::npos) continue;
        const std::string id = line.substr(3, end - 3);
        // Other tables' first columns hold no points.
        if (id.find('.') != std::string::npos) inGuide.push_back(id);
    }
    for (const Check& check : kChecks) inProgram.emplace_back(check.id);
    EXPECT_EQ(inGuide, inProgram);
}

}  // namespace
