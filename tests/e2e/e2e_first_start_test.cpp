// First start: the menu file is made from the host's compiled resources while the host goes on.
#include <algorithm>
#include <fstream>
#include <optional>
#include <sstream>

#include "driver/obk_ctrlr.h"
#include "tests/e2e/e2e.h"
#include "tests/mnu/large_set.h"
#include "tests/mnu/windows/resource_dll.h"

namespace e2e {
namespace {

using workbench::Environment;

constexpr char kProgressClass[] = "MNUDlgClass";

bool isThere(const std::filesystem::path& file) {
    std::error_code notThere;
    return std::filesystem::exists(file, notThere);
}

// The menu file as soon as it is there; the renaming that puts it there may keep it from being opened a moment longer.
std::string newMenuFile(const Bench& bench) {
    std::ifstream file;
    EXPECT_TRUE(waitFor(
        [&] {
            file.open(bench.menuFile(), std::ios::binary);
            return file.is_open();
        },
        60000));
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

// Index of the function that a command of the menu file has; -1 when there is none.
int indexOf(const std::string& menuFile, const std::string& command) {
    std::istringstream lines(menuFile.substr(menuFile.find("[MenuBar]")));
    int index = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto brace = line.find('}');
        const auto bar = line.find('|');
        if (brace == std::string::npos || bar == std::string::npos) continue;
        if (line.substr(brace + 1, bar - brace - 1) == command) return index;
        ++index;
    }
    return -1;
}

Keys settingsFor(const std::string& mapkey) { return {{"mnuLanguage", ""}, {"useMapkeyForCommands", mapkey}}; }

bool isWhole(const std::string& menuFile) { return menuFile.starts_with("# PTC Creo") && menuFile.ends_with("\n "); }

TEST(FirstStart, EachLanguageMakesAFileWhoseIndicesRunTheRightCommands) {
    struct Case {
        const char* language;
        const char* ownItem;
    };
    for (const auto& [language, ownItem] : {Case{"English", "1Toggle Scroll Mode"},
                                            {"german", "1Fensterrollmodus umschalten"},
                                            {"FRENCH", "1Toggle Scroll Mode"}}) {
        SCOPED_TRACE(language);
        Bench bench(optionsWith(settingsText(settingsFor("off")), {}), {{"LANG", "nonsense"}, {"PRO_LANG", language}});
        const std::string file = newMenuFile(bench);
        EXPECT_TRUE(isWhole(file));
        EXPECT_NE(file.find(ownItem), std::string::npos);
        EXPECT_EQ(indexOf(file, "OB_Toggle_Scroll_Mode"), 0);
        EXPECT_EQ(indexOf(file, "OB_Toggle_Object_Move_Mode"), 1);
        bench.expectLog("entries loaded.");
        const int wireframe = indexOf(file, "ProCmdEnvMdlDisp*Wireframe");
        ASSERT_GT(wireframe, 1);
        bench.daemon("event " + std::to_string(0x20020 + wireframe));
        EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));

        // The second start reads the file, whatever the language is by now.
        bench.host("plugin unload");
        const auto time = std::filesystem::last_write_time(bench.menuFile());
        bench.startHost({"--require-plugin"}, {{"PRO_LANG", "german"}});
        ASSERT_TRUE(waitFor([&] { return bench.daemonStatus("connects") == "2"; }));
        bench.daemon("event " + std::to_string(0x20020 + wireframe));
        EXPECT_TRUE(waitFor([&] { return bench.status("style") == "Wireframe"; }));
        EXPECT_EQ(bytesOf(bench.menuFile()), file);
        EXPECT_EQ(std::filesystem::last_write_time(bench.menuFile()), time);
    }
}

TEST(FirstStart, UnknownLanguageLeavesThePlugInWorkingWithoutCommands) {
    Bench bench(optionsWith(settingsText(settingsFor("off")), {}), {{"PRO_LANG", "klingon"}});
    bench.expectLog("Compiled Language Resource File does not exist: ");
    EXPECT_FALSE(isThere(bench.menuFile()));
    bench.daemon("event 0x20020");
    bench.expectLog("menuFncIdx (0') too big (max. is -1)!");
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
}

// The settings win over Creo's own variable, that over the system's variable, that over the system's language.
TEST(FirstStart, LanguageHasFourSources) {
    struct Case {
        const char *setting, *proLang, *lang;
        const char* wanted;  // language of the library that is looked for; "" = that of the system, which is there
    };
    for (const auto& [setting, proLang, lang, wanted] :
         {Case{"Aaa", "bbb", "ccc", "aaa"}, {"", "bBb", "ccc", "bbb"}, {"", "", "CCC", "ccc"}, {"", "", "", ""}}) {
        SCOPED_TRACE(wanted);
        Bench bench(optionsWith(settingsText({{"mnuLanguage", setting}}), {}), {{"PRO_LANG", proLang}, {"LANG", lang}});
        if (*wanted == '\0') {
            EXPECT_TRUE(waitFor([&] { return isThere(bench.menuFile()); }));
        } else {
            bench.expectLog("\\pro_default_" + std::string(wanted) + "_resources.dll");
        }
    }
}

// Reading thread, watchdog and generating thread are started in this order.
TEST(FirstStart, GeneratingThreadThatIsRefusedLeavesThePlugInWorkingWithoutCommands) {
    Bench bench;
    bench.host("plugin unload");
    std::filesystem::remove(bench.menuFile());
    bench.host("fail _beginthreadex 3");
    bench.host("plugin load");
    bench.expectLog("Error creating generating thread!");
    EXPECT_FALSE(isThere(bench.menuFile()));
    bench.openAssemblyForMoving();
    bench.selectForMoving("41");
    EXPECT_TRUE(waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; }));
}

struct ProgressFrame {
    std::string title;
    bool isTopmost;
};

// The progress window of this bench; other tests may show theirs. Null while there is none.
HWND progressWindow(Bench& bench) {
    HWND window = nullptr;
    while ((window = FindWindowExA(nullptr, window, kProgressClass, nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        if (process == bench.hostProcess().id()) break;
    }
    return window;
}

std::optional<ProgressFrame> progressFrame(Bench& bench) {
    const HWND window = progressWindow(bench);
    char title[64] = "";
    const int length = GetWindowTextA(window, title, sizeof title);
    const LONG style = GetWindowLongA(window, GWL_EXSTYLE);
    PostMessageA(window, WM_CLOSE, 0, 0);  // does not close it
    if (length == 0 || !IsWindow(window)) return std::nullopt;
    return ProgressFrame{title, (style & WS_EX_TOPMOST) != 0};
}

// A load point of its own with as many resources as a real installation has.
class LargeInstallation : public ::testing::Test {
  protected:
    static constexpr int kCommands = 4000;
    static constexpr int kPanes = 200;
    static constexpr int kPaneSize = 50'000;

    static void SetUpTestSuite() {
        const std::filesystem::path creo = workbench::buildFolder() / "workbench" / "creo";
        const std::filesystem::path resources = loadPoint() / "text" / "compiled_resource";
        std::filesystem::create_directories(loadPoint() / "bin");
        std::filesystem::create_directories(resources);
        for (const char* file : {"creo_host.exe", kDriverLibrary}) {
            std::filesystem::copy_file(creo / "bin" / file, loadPoint() / "bin" / file,
                                       std::filesystem::copy_options::overwrite_existing);
        }
        const LargeSet set = makeLargeSet(kCommands, kPanes, kPaneSize);
        makeLibrary(resources / "pro_default_resources.dll", set.panes);
        makeLibrary(resources / "pro_default_german_resources.dll", set.commands);
    }
    static void TearDownTestSuite() {
        std::error_code ignored;
        std::filesystem::remove_all(loadPoint(), ignored);
    }

    static std::filesystem::path loadPoint() {
        return std::filesystem::temp_directory_path() / ("orbikon_large_" + std::to_string(GetCurrentProcessId()));
    }
    static void makeLibrary(const std::filesystem::path& path, const std::vector<Resource>& resources) {
        std::vector<DllResource> entries;
        for (const auto& [name, text] : resources) entries.push_back({"TEXT", name.c_str(), text});
        const auto empty = workbench::buildFolder() / "workbench" / "creo" / "text" / "compiled_resource" /
                           "pro_default_resources.dll";
        ASSERT_TRUE(makeResourceDll(path, empty, entries));
    }
    static workbench::WorkbenchOptions options() {
        workbench::WorkbenchOptions options = optionsWith(settingsText(settingsFor("off")), {});
        options.loadPoint = loadPoint();
        return options;
    }
    static Environment german() { return {{"PRO_LANG", "german"}}; }

    static constexpr int kMostStarts = 50;

    // Loads the plug-in as at the first start of all; size of its log before that.
    static std::size_t startAfresh(Bench& bench) {
        bench.host("plugin unload");
        EXPECT_TRUE(waitFor([&] {
            std::error_code isHeld;  // a moment longer by the renaming
            std::filesystem::remove(bench.menuFile(), isHeld);
            return !isHeld;
        }));
        const std::size_t logSize = bench.log().size();
        bench.host("plugin load");
        return logSize;
    }
};

// Generation takes a fraction of a second, so it may take some starts to be there in its middle. In every second one
// the cap is pushed and a button pressed meanwhile: nothing harmful. In the others the longest block is measured, since
// it is the host itself that draws the moving view.
TEST_F(LargeInstallation, ShowsItsProgressAndDoesNotHoldTheHost) {
    Bench bench(options(), german());
    std::printf("the host's thread loads the plug-in in %s us, its user_initialize takes %s us\n",
                bench.status("plugin_load_us").c_str(), bench.status("plugin_start_us").c_str());
    std::optional<ProgressFrame> seen;
    int longestBlock = 0;
    for (int start = 0; !seen || start < 2; ++start) {
        ASSERT_LT(start, kMostStarts) << "no progress window was seen";
        const std::size_t logSize = startAfresh(bench);
        bench.host("blocked");
        const auto frame = [&] {
            const auto now = progressFrame(bench);
            if (now) seen = now;
            return now.has_value();
        };
        ASSERT_TRUE(waitFor([&] { return frame() || isThere(bench.menuFile()); }));
        const bool isPushed = start % 2 != 0;
        if (isPushed) {
            bench.push(0, 0, 0, 0, 200, 0);
            ASSERT_TRUE(waitFor([&] { return bench.askDaemon("event 0x20022").isOk; }));
        }
        EXPECT_TRUE(isWhole(newMenuFile(bench)));
        EXPECT_TRUE(waitFor([&] { return progressWindow(bench) == nullptr; }));
        EXPECT_TRUE(waitFor([&] { return bench.log().find("entries loaded.", logSize) != std::string::npos; }));
        if (!isPushed) longestBlock = std::max(longestBlock, std::stoi(bench.host("blocked").at(0)));
        bench.push(0, 0, 0, 0, 0, 0);
        EXPECT_TRUE(bench.isHostRunning());
    }
    EXPECT_EQ(seen->title, "Orbikon");
    EXPECT_TRUE(seen->isTopmost);
    std::printf("longest block of the host's message loop: %d ms\n", longestBlock);
}

TEST_F(LargeInstallation, EndsCleanlyInTheMiddle) {
    Bench bench(options(), german());
    int cancelled = 0;
    for (int start = 0; cancelled < 3; ++start) {
        ASSERT_LT(start, kMostStarts) << "the middle was never met";
        const std::size_t logSize = startAfresh(bench);
        ASSERT_TRUE(waitFor([&] { return progressFrame(bench) || isThere(bench.menuFile()); }));
        bench.host("plugin unload");
        EXPECT_EQ(progressWindow(bench), nullptr);
        if (bench.log().find("Menu file generation was cancelled", logSize) == std::string::npos) {
            EXPECT_TRUE(isWhole(newMenuFile(bench))) << "it had been faster";
            continue;
        }
        ++cancelled;
        EXPECT_FALSE(isThere(bench.menuFile())) << "no half file is taken for a whole one later";
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(bench.settingsFolder()), {}), 1)
            << "only the settings are there";
    }
    startAfresh(bench);
    EXPECT_TRUE(isWhole(newMenuFile(bench)));
}

}  // namespace
}  // namespace e2e
