// The installer, end to end: what becomes of folders, registration files and hosts on a seat with two installations.
#include <windows.h>

#include <algorithm>
#include <fstream>
#include <vector>

#include "tests/e2e/e2e.h"

namespace e2e {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kDone = 0, kCancelled = 1, kFailed = 2, kInUse = 3;
constexpr int kSetupPatienceMs = 120000;

// With letters of another encoding, an entry of somebody else's, and a comment behind all.
constexpr char kForeignRegistry[] =
    "! what we start\r\nname calculator\r\nstartup dll\r\nexec_file C:\\caf\xE9 tools\\calculator.dll\r\n"
    "text_dir C:\\caf\xE9 tools\r\nend\r\n\n! and nothing else\r\n";

fs::path setupProgram() {
    for (const auto& entry : fs::directory_iterator(workbench::buildFolder() / ".." / ".." / "out" / "package")) {
        if (entry.path().filename().string().ends_with("-setup.exe")) return fs::canonical(entry.path());
    }
    throw std::runtime_error("packaging/package.sh has made no installer");
}

std::string utf8(const std::wstring& text) {
    std::string result(WideCharToMultiByte(CP_UTF8, 0, text.data(), -1, nullptr, 0, nullptr, nullptr), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), -1, result.data(), static_cast<int>(result.size()), nullptr, nullptr);
    return result;
}

std::string utf16File(const fs::path& file) {
    const std::string bytes = bytesOf(file);
    return utf8(std::wstring(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / sizeof(wchar_t))).c_str();
}

std::vector<std::string> filesBelow(const fs::path& folder) {
    std::vector<std::string> files;
    std::error_code none;
    for (const auto& entry : fs::recursive_directory_iterator(folder, none)) {
        if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(folder).generic_string());
    }
    std::ranges::sort(files);
    return files;
}

std::string versionText(const fs::path& file, const std::wstring& what) {
    std::vector<char> info(GetFileVersionInfoSizeW(file.c_str(), nullptr));
    void* text = nullptr;
    UINT size = 0;
    if (info.empty() || !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(info.size()), info.data()) ||
        !VerQueryValueW(info.data(), (L"\\StringFileInfo\\040904B0\\" + what).c_str(), &text, &size)) {
        return "none";
    }
    return utf8(static_cast<const wchar_t*>(text)).c_str();
}

BOOL CALLBACK noteResource(HMODULE, const wchar_t*, wchar_t*, LONG_PTR isThere) {
    *reinterpret_cast<bool*>(isThere) = true;
    return FALSE;
}

bool hasIcon(const fs::path& program) {
    bool isThere = false;
    const HMODULE data = LoadLibraryExW(program.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    EnumResourceNamesW(data, MAKEINTRESOURCEW(14 /* RT_GROUP_ICON */), noteResource,
                       reinterpret_cast<LONG_PTR>(&isThere));
    FreeLibrary(data);
    return isThere;
}

constexpr wchar_t kFolderName[] = L"orbikon seat ";

constexpr wchar_t kProgramsKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\OrbikonCreo";

// A text of the entry in "Programs and Features"; empty when there is none.
std::wstring entryInPrograms(HKEY root, const wchar_t* name) {
    wchar_t text[MAX_PATH] = L"";
    DWORD size = sizeof text;
    RegGetValueW(root, kProgramsKey, name, RRF_RT_REG_SZ, nullptr, text, &size);
    return text;
}

// What a test that was cut off has left in the list of programs; no other installation is touched.
void forgetCutOffTest(HKEY root) {
    if (entryInPrograms(root, L"InstallLocation").find(kFolderName) == std::wstring::npos) return;
    RegDeleteTreeW(root, kProgramsKey);
}

class Seat : public testing::Test {
  protected:
    Seat() {
        forgetCutOffTest(HKEY_LOCAL_MACHINE);
        forgetCutOffTest(HKEY_CURRENT_USER);
        fs::remove_all(root);
        makeLoadPoint(load32, workbench::buildFolder());
        makeLoadPoint(load64, workbench::buildFolder().parent_path() / "windows-x64");
        std::ofstream(registry32, std::ios::binary) << kForeignRegistry;
        fs::create_directories(profile / "temp");
    }
    ~Seat() override {
        if (fs::exists(manifest)) uninstall();
        std::error_code ignored;
        fs::remove_all(root, ignored);
    }

    static void makeLoadPoint(const fs::path& loadPoint, const fs::path& build) {
        fs::create_directories(loadPoint / "text");
        fs::copy(build / "workbench" / "creo" / "bin", loadPoint / "bin", fs::copy_options::recursive);
    }

    DWORD run(const fs::path& program, std::vector<std::string> arguments, const std::string& last) {
        fs::remove(logFile);
        arguments.insert(arguments.begin(), {"/S", "/LOG=" + logFile.string()});
        const workbench::Process process({.program = program,
                                          .arguments = arguments,
                                          .lastArgument = last,
                                          .folder = root,
                                          .environment = {{"USERPROFILE", profile.string()},
                                                          {"TEMP", (profile / "temp").string()},
                                                          {"TMP", (profile / "temp").string()}},
                                          .outputFile = {}});
        return process.waitForExit(kSetupPatienceMs).value_or(static_cast<DWORD>(-1));
    }
    DWORD install(const std::vector<std::string>& arguments = {}) {
        return run(setupProgram(), arguments, "/D=" + folder.string());
    }
    DWORD installAtBoth() { return install({"/LOADPOINT=" + load32.string() + ";" + load64.string()}); }
    // The uninstaller cannot both remove itself and be waited for: so a copy of it.
    DWORD uninstall(const std::vector<std::string>& arguments = {}) {
        const fs::path copy = root / "remove.exe";
        fs::copy_file(folder / "uninstall.exe", copy, fs::copy_options::overwrite_existing);
        return run(copy, arguments, "_?=" + folder.string());
    }
    std::string log() const { return utf16File(logFile); }

    workbench::WorkbenchOptions hostOptions(const fs::path& loadPoint) const {
        workbench::WorkbenchOptions options = optionsWith(settingsText(), menuText());
        options.loadPoint = loadPoint;
        options.isRegistered = false;
        return options;
    }

    // The host, started without arguments, has the plug-in, in the user's language, and the cap moves a component.
    static void startAndMove(Workbench& bench) {
        bench.startDaemon();
        bench.startHost();
        ASSERT_TRUE(waitFor([&] { return bench.daemonStatus("application") == "xtopCreo"; })) << bench.hostOutput();
        const auto menus = bench.host("menus");
        EXPECT_NE(std::ranges::find(menus, "Orbikon"), menus.end());
        EXPECT_TRUE(capMovesComponent(bench));
    }
    void expectMoves(const fs::path& loadPoint) {
        Workbench bench(hostOptions(loadPoint));
        startAndMove(bench);
    }

    const fs::path root = fs::temp_directory_path() / (kFolderName + std::to_wstring(GetCurrentProcessId()));
    const fs::path folder = root / "Orbikon plug-in" / "for Creo";
    const fs::path manifest = folder / "installation.ini";
    const fs::path profile = root / "profile";
    const fs::path logFile = root / "setup.log";
    const fs::path load32 = root / "PTC" / "Creo 3.0" / "M060" / "Common Files";
    const fs::path load64 = root / "PTC" / "Creo 7.0" / "Common Files";
    const fs::path registry32 = load32 / "text" / "protk.dat";
    const fs::path registry64 = load64 / "text" / "protk.dat";
};

TEST_F(Seat, TwoLoadPointsFromInstallationToRemoval) {
    ASSERT_EQ(installAtBoth(), kDone) << log();
    for (const char* name : {"x86/orbikon_creo.dll", "x64/orbikon_creo.dll", "text/french/Orbikon.txt",
                             "tools/orbikon_doctor.exe", "docs/user-guide.md", "THIRD-PARTY.txt", "uninstall.exe"}) {
        EXPECT_TRUE(fs::exists(folder / name)) << name;
    }
    EXPECT_FALSE(fs::exists(folder / "simulator")) << "nobody has chosen it";
    EXPECT_EQ(entryInPrograms(HKEY_LOCAL_MACHINE, L"InstallLocation"), folder.wstring());
    EXPECT_NE(entryInPrograms(HKEY_LOCAL_MACHINE, L"Publisher"), L"");
    const std::string version = utf8(entryInPrograms(HKEY_LOCAL_MACHINE, L"DisplayVersion")).c_str();
    EXPECT_NE(setupProgram().filename().string().find("-" + version + "-"), std::string::npos) << version;
    DWORD kilobytes = 0, size = sizeof kilobytes;
    RegGetValueW(HKEY_LOCAL_MACHINE, kProgramsKey, L"EstimatedSize", RRF_RT_REG_DWORD, nullptr, &kilobytes, &size);
    EXPECT_GT(kilobytes, fs::file_size(folder / "x86" / "orbikon_creo.dll") / 1024);
    EXPECT_NE(bytesOf(folder / "docs" / "user-guide.md").find("\r\n"), std::string::npos);
    expectMoves(load32);
    expectMoves(load64);

    // An older version: other bytes, a file that there is no more, and what the user has made meanwhile.
    const std::string plugin = bytesOf(folder / "x86" / "orbikon_creo.dll");
    workbench::writeTextFile(folder / "x86" / "orbikon_creo.dll", "an older one");
    workbench::writeTextFile(folder / "old" / "gone.txt", "of the older version");
    const auto number = std::to_wstring(GetPrivateProfileIntW(L"files", L"count", 0, manifest.c_str()) + 1);
    WritePrivateProfileStringW(L"files", L"count", number.c_str(), manifest.c_str());
    WritePrivateProfileStringW(L"files", number.c_str(), L"old\\gone.txt", manifest.c_str());
    const fs::path settings = profile / "OrbikonController" / "Applications" / "Creo_plugin.ini";
    workbench::writeTextFile(settings, "[PROGRAM]\n");
    workbench::writeTextFile(folder / "notes.txt", "the administrator's");
    ASSERT_EQ(install(), kDone) << log();
    EXPECT_EQ(bytesOf(folder / "x86" / "orbikon_creo.dll"), plugin);
    EXPECT_FALSE(fs::exists(folder / "old"));
    EXPECT_TRUE(fs::exists(settings));
    expectMoves(load32);

    ASSERT_EQ(uninstall(), kDone) << log();
    EXPECT_EQ(filesBelow(folder), std::vector<std::string>{"notes.txt"}) << "what others have put there stays";
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
    EXPECT_EQ(filesBelow(load32 / "text"), std::vector<std::string>{"protk.dat"});
    EXPECT_EQ(filesBelow(load64 / "text"), std::vector<std::string>{}) << "a file that was made for the entry goes";
    EXPECT_TRUE(fs::exists(settings)) << "not asked to remove it";
    EXPECT_EQ(entryInPrograms(HKEY_LOCAL_MACHINE, L"DisplayName"), L"");
}

TEST_F(Seat, FilesInUseAreSaidAndNothingChanges) {
    ASSERT_EQ(install({"/LOADPOINT=" + load32.string(), "/COMPONENTS=plugin32,simulator"}), kDone) << log();
    const std::string list = bytesOf(manifest);
    const auto installed = filesBelow(folder);
    {
        Workbench bench(hostOptions(load32));
        startAndMove(bench);
        for (const bool isRemoval : {false, true}) {
            EXPECT_EQ(isRemoval ? uninstall() : install({"/COMPONENTS=plugin32,tools"}), kInUse);
            EXPECT_NE(log().find("x86\\orbikon_creo.dll"), std::string::npos) << log();
            EXPECT_EQ(filesBelow(folder), installed);
            EXPECT_EQ(bytesOf(manifest), list);
        }
    }
    EXPECT_EQ(install({"/COMPONENTS=plugin32,tools"}), kDone) << log();
    EXPECT_FALSE(fs::exists(folder / "simulator"));
    EXPECT_TRUE(fs::exists(folder / "tools" / "mnu_make.exe"));
    // As "Programs and Features" does it: the uninstaller hands over to a copy of itself.
    const workbench::Process removal({.program = folder / "uninstall.exe",
                                      .arguments = {"/S", "/SETTINGS=remove"},
                                      .folder = root,
                                      .environment = {{"USERPROFILE", profile.string()}},
                                      .outputFile = {}});
    EXPECT_TRUE(waitFor([&] { return !fs::exists(folder); }, kSetupPatienceMs));
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
}

TEST_F(Seat, ForOneUser) {
    ASSERT_EQ(install({"/CURRENTUSER", "/COMPONENTS=plugin32"}), kDone) << log();
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry) << "needs no rights";
    const std::string note = utf16File(folder / "registration.txt");
    const auto option = note.find("toolkit_registry_file ");
    ASSERT_NE(option, note.npos);
    const std::string line = note.substr(option, note.find('\r', option) - option);
    {
        Workbench bench(hostOptions(load32));
        workbench::writeTextFile(bench.folder() / "config.pro", line + "\n");
        startAndMove(bench);
    }
    ASSERT_EQ(install(), kFailed) << "for all users, while it is installed for one";
    const fs::path settings = profile / "OrbikonController" / "Applications" / "Creo_plugin.ini";
    workbench::writeTextFile(settings, "[PROGRAM]\n");
    ASSERT_EQ(uninstall({"/SETTINGS=remove"}), kDone) << log();
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_FALSE(fs::exists(profile / "OrbikonController"));
}

// Waits for a window of the process with this button, and presses it.
bool press(const workbench::Process& process, int button) {
    HWND window = nullptr;
    waitFor([&] { return (window = process.windowWith(button)) != nullptr; });
    return window != nullptr && PostMessageA(window, WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
}

TEST_F(Seat, CancellingChangesNothing) {
    const workbench::Process setup({.program = setupProgram(),
                                    .arguments = {"/LOADPOINT=" + load32.string()},
                                    .lastArgument = "/D=" + folder.string(),
                                    .folder = root,
                                    .environment = {},
                                    .outputFile = {}});
    ASSERT_TRUE(press(setup, IDOK));  // the next page
    ASSERT_TRUE(press(setup, IDCANCEL));
    ASSERT_TRUE(press(setup, IDYES));  // really
    EXPECT_EQ(setup.waitForExit(kSetupPatienceMs), kCancelled);
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
}

TEST_F(Seat, WhatCannotBeDoneIsSaidBeforeAnythingIsTouched) {
    struct Case {
        std::vector<std::string> arguments;
        std::string said;
    };
    const Case cases[] = {
        {{"/LOADPOINT=" + (root / "nowhere").string()}, (root / "nowhere").string()},
        {{"/COMPONENTS=plugin32,plugin16"}, "plugin16"},
        {{"/COMPONENTS=tools"}, "plug-in"},
        {{"/LOADPOINT=" + load64.string(), "/COMPONENTS=plugin32"}, load64.string()},
        {{"/LOADPONT=x"}, "/LOADPONT=x"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(install(c.arguments), kFailed);
        EXPECT_NE(log().find(c.said), std::string::npos) << log();
        EXPECT_FALSE(fs::exists(folder));
    }
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
}

TEST_F(Seat, RegistrationFileInUseIsSaidAndARepairMendsIt) {
    {
        const workbench::Handle held(
            CreateFileW(registry32.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(install({"/LOADPOINT=" + load32.string()}), kFailed);
        EXPECT_NE(log().find("protk.dat"), std::string::npos) << log();
        EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
    }
    EXPECT_EQ(install({"/LOADPOINT=" + load32.string()}), kDone) << log();
    EXPECT_NE(bytesOf(registry32).find("orbikon_creo.dll"), std::string::npos);
    {
        const workbench::Handle held(
            CreateFileW(registry32.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(install({"/LOADPOINT="}), kFailed) << "it cannot be taken out";
        EXPECT_NE(bytesOf(registry32).find("orbikon_creo.dll"), std::string::npos);
    }
    EXPECT_EQ(install({"/LOADPOINT="}), kDone) << log();
    EXPECT_EQ(bytesOf(registry32), kForeignRegistry);
}

TEST_F(Seat, EveryProgramAndLibrarySaysWhatItIs) {
    ASSERT_EQ(install({"/LOADPOINT=", "/COMPONENTS=plugin32,plugin64,tools,simulator"}), kDone) << log();
    const std::string setup = setupProgram().filename().string();
    int count = 0;
    for (const std::string& name : filesBelow(folder)) {
        const fs::path file = folder / name;
        if (file.extension() != ".exe" && file.extension() != ".dll") continue;
        ++count;
        EXPECT_NE(setup.find("-" + versionText(file, L"ProductVersion") + "-"), setup.npos) << name;
        EXPECT_NE(versionText(file, L"FileDescription"), "none") << name;
        EXPECT_TRUE(file.extension() == ".dll" || hasIcon(file)) << name;
    }
    EXPECT_GE(count, 10);
}

}  // namespace
}  // namespace e2e
