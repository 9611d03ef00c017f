#include "tools/seat/registration_file.h"

#include <gmock/gmock.h>

#include "tests/unit/scratch.h"
#include "tools/seat/registration_search.h"
#include "tools/seat/registration_targets.h"
#include "tools/seat/registration_update.h"

using namespace seat;

namespace {

const RegistrationFields kOurs = registrationOf(kPluginId, "C:\\New\\orbikon_creo.dll", "C:\\New");
constexpr char kOursText[] =
    "name orbikon_creo\nstartup dll\nexec_file C:\\New\\orbikon_creo.dll\ntext_dir C:\\New\nfail_tol TRUE\n"
    "allow_stop FALSE\ndelay_start FALSE\nunicode_encoding FALSE\nend\n";

std::string withLineEnds(std::string text, const std::string& end) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += end.size())
        text.replace(at, 1, end);
    return text;
}

TEST(Registration, GoesInAndOutAndLeavesTheRestToTheByte) {
    const std::string foreign = "name other\nexec_file other.dll\nend\n";
    struct Case {
        std::string before, with;
    };
    for (const auto& [before, with] : std::vector<Case>{
             {"", withLineEnds(kOursText, "\r\n")},
             {"\xEF\xBB\xBF", "\xEF\xBB\xBF" + withLineEnds(kOursText, "\r\n")},
             {foreign, foreign + kOursText},
             {withLineEnds(foreign, "\r\n"), withLineEnds(foreign + kOursText, "\r\n")},
             {"! Gr\xFC\xDF"
              "e\n\n" +
                  foreign + "\n",
              "! Gr\xFC\xDF"
              "e\n\n" +
                  foreign + "\n" + kOursText},
             // Behind an open entry ours would be a part of it.
             {foreign + "name open\nexec_file open.dll\n", foreign + kOursText + "name open\nexec_file open.dll\n"},
             {"name open\nname other\nexec_file other.dll\nend",
              kOursText + std::string("name open\nname other\n") + "exec_file other.dll\nend"},
             // The last line keeps its missing line end.
             {foreign + "! last", foreign + kOursText + "! last"},
             {foreign.substr(0, foreign.size() - 1), kOursText + foreign.substr(0, foreign.size() - 1)},
         }) {
        RegistrationFile file(before);
        EXPECT_FALSE(file.remove(kPluginId)) << before;
        file.set(kPluginId, kOurs);
        EXPECT_EQ(file.bytes(), with);
        ASSERT_EQ(file.entriesOf(kPluginId).size(), 1u) << with;
        EXPECT_EQ(file.entriesOf(kPluginId)[0]->value("fail_tol"), "TRUE");
        EXPECT_TRUE(file.remove(kPluginId));
        EXPECT_EQ(file.bytes(), before);
    }
}

// The probe stands beside the plug-in, and goes without it.
TEST(Registration, ProbeAndPluginKeepTheirEntries) {
    RegistrationFile file(kOursText);
    file.set(kProbeId, registrationOf(kProbeId, "C:\\New\\orbikon_probe.dll", "C:\\New"));
    ASSERT_EQ(file.entriesOf(kProbeId).size(), 1u);
    EXPECT_EQ(file.entriesOf(kProbeId)[0]->value("fail_tol"), "TRUE");
    EXPECT_EQ(file.entriesOf(kPluginId).size(), 1u);
    EXPECT_TRUE(file.remove(kProbeId));
    EXPECT_EQ(file.bytes(), kOursText);
}

TEST(Registration, ReplacesWhatIsOursInItsPlace) {
    const std::string foreign = "name other\nexec_file other.dll\nend\n";
    for (const std::string old : {
             "NAME Orbikon_Creo\nexec_file x.dll\nEND\n",
             "exec_file\tC:\\Old\\ORBIKON_CREO.DLL\nname old\nend\n",
             "name a\nexec_file C:/orbikon_creo.dll\nend\nname orbikon_creo\nend\n",
         }) {
        RegistrationFile file("! a\n" + old + "! b\n" + foreign);
        file.set(kPluginId, kOurs);
        EXPECT_EQ(file.bytes(), std::string("! a\n") + kOursText + "! b\n" + foreign);
    }
    RegistrationFile open("name orbikon_creo\nexec_file orbikon_creo.dll\n");
    EXPECT_FALSE(open.remove(kPluginId));  // where it ends is not known
    // What is left becomes an entry of ours when the one between goes: it goes, too.
    RegistrationFile nested("name orbikon_creo\nname orbikon_creo\nend\nend\n! c\n");
    EXPECT_TRUE(nested.remove(kPluginId));
    EXPECT_EQ(nested.bytes(), "! c\n");
    RegistrationFile similar("name orbikon_creo2\nexec_file my_orbikon_creo.dll\nend\n");
    EXPECT_FALSE(similar.remove(kPluginId));
}

TEST(Registration, FilesAreReplacedInOneStepWithABackup) {
    using Outcome = RegistrationUpdate::Outcome;
    ScratchFolder scratch;
    const std::filesystem::path path = scratch.file("protk.dat");
    const std::filesystem::path backup = registrationBackup(path);
    const auto enter = [&] { return registerApplication(path, kPluginId, kOurs).outcome; };
    const auto takeOut = [&] { return unregisterApplication(path, kPluginId).outcome; };

    EXPECT_EQ(takeOut(), Outcome::unchanged);
    EXPECT_EQ(enter(), Outcome::written);
    EXPECT_EQ(enter(), Outcome::unchanged);
    EXPECT_EQ(takeOut(), Outcome::removed);  // we made it
    EXPECT_FALSE(std::filesystem::exists(path));

    const std::string foreign = "name other\r\nexec_file other.dll\r\nend\r\n";
    for (const std::string& before : {foreign, std::string()}) {
        writeFile(path.string(), before);
        EXPECT_EQ(enter(), Outcome::written);
        EXPECT_EQ(bytesOf(backup.string()), before);
        EXPECT_EQ(takeOut(), Outcome::written);
        EXPECT_EQ(bytesOf(path.string()), before);  // also an empty one, which is not ours
    }

    writeFile(path.string(), foreign);
    std::filesystem::permissions(path, std::filesystem::perms::owner_read);
    EXPECT_EQ(enter(), Outcome::failed);
    EXPECT_EQ(bytesOf(path.string()), foreign);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const std::string utf16("n\0a\0", 4);
    writeFile(path.string(), utf16);
    EXPECT_EQ(enter(), Outcome::failed);
    EXPECT_EQ(bytesOf(path.string()), utf16);
    std::size_t files = 0;
    for ([[maybe_unused]] const auto& file : std::filesystem::directory_iterator(scratch.path())) ++files;
    EXPECT_EQ(files, 2u);  // the file and its backup, nothing temporary
}

TEST(RegistrationSearch, TheFirstOfANameCountsInCreosOrder) {
    ScratchFolder scratch;
    const std::filesystem::path root = scratch.path();
    const std::filesystem::path start = root / "start", loadPoint = root / "Common Files";
    const std::vector<std::filesystem::path> files = {root / "named" / "PROTK.DAT", root / "named" / "company.dat",
                                                      loadPoint / "i486_nt" / "text" / "german" / "creotk.dat",
                                                      loadPoint / "text" / "creotk.dat",
                                                      loadPoint / "text" / "protk.dat"};
    for (const auto& file : files) {
        std::filesystem::create_directories(file.parent_path());
        writeFile(file.string(), "");
    }
    std::vector<std::filesystem::path> read, shadowed;
    for (const auto& place : registrationPlaces({start, {files[0], files[1]}, loadPoint, "i486_nt", "german"})) {
        if (place.isFound) (place.isShadowed ? shadowed : read).push_back(place.file);
    }
    EXPECT_THAT(read, testing::ElementsAre(files[0], files[1], files[2]));
    EXPECT_THAT(shadowed, testing::UnorderedElementsAre(files[3], files[4]));

    EXPECT_THAT(namedRegistrationFiles("! protkdat x\r\nmdl 1\r\nPROTKDAT  C:\\a b\\protk.dat \r\n"
                                       "toolkit_registry_file old.dat\ntoolkit_registry_file new.dat\n"),
                testing::ElementsAre("C:\\a b\\protk.dat", "new.dat"));
}

// Whatever files a load point has: those that Creo reads in some language, each name once, and no others.
TEST(RegistrationTargets, AreWhatCreoReadsInAnyLanguage) {
    const std::string text = "text/", german = "i486_nt/text/german/", french = "x86e_win64/text/french/";
    struct Case {
        std::vector<std::string> there, targets;
    };
    for (const auto& [there, targets] : std::vector<Case>{
             {{}, {text + "protk.dat"}},
             {{text + "protk.dat", text + "creotk.dat"}, {text + "protk.dat"}},
             {{text + "creotk.dat"}, {text + "creotk.dat"}},
             {{german + "creotk.dat"}, {text + "protk.dat"}},
             {{text + "creotk.dat", german + "creotk.dat", german + "protk.dat"},
              {text + "creotk.dat", german + "creotk.dat"}},
             {{text + "protk.dat", german + "protk.dat", french + "protk.dat", "i486_nt/text/protk.dat"},
              {text + "protk.dat", german + "protk.dat", french + "protk.dat"}},
         }) {
        const ScratchFolder scratch;
        const auto below = [&](const std::vector<std::string>& names) {
            std::vector<std::filesystem::path> files;
            for (const auto& name : names) files.push_back(std::filesystem::path(scratch.path()) / name);
            return files;
        };
        for (const auto& file : below(there)) {
            std::filesystem::create_directories(file.parent_path());
            writeFile(file.string(), "");
        }
        EXPECT_THAT(registrationTargets(scratch.path()), testing::ElementsAreArray(below(targets)));
        auto all = below(there);
        std::erase(all, below({"i486_nt/text/protk.dat"}).front());  // Creo looks there in no language
        EXPECT_THAT(registrationFilesOf(scratch.path()), testing::UnorderedElementsAreArray(all));
    }
}

}  // namespace
