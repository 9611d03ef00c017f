#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "driver/obk_ctrlr.h"
#include "tests/unit/scratch.h"
#include "tests/windows/process_state.h"
#include "tests/windows/troubled_driver.h"

namespace {

using ::testing::Each;
using ::testing::UnorderedElementsAre;

// A module mapped into the process, seen through its headers.
class ModuleImage {
  public:
    explicit ModuleImage(HMODULE module) : mBase(reinterpret_cast<const char*>(module)) {}

    std::vector<std::string> exportedNames() const {
        const auto* exports = at<IMAGE_EXPORT_DIRECTORY>(directory(IMAGE_DIRECTORY_ENTRY_EXPORT));
        std::vector<std::string> names;
        for (DWORD i = 0; i < exports->NumberOfNames; ++i) {
            names.emplace_back(at<char>(at<DWORD>(exports->AddressOfNames)[i]));
        }
        return names;
    }

    std::vector<std::string> importedLibraries() const {
        std::vector<std::string> names;
        for (auto* entry = at<IMAGE_IMPORT_DESCRIPTOR>(directory(IMAGE_DIRECTORY_ENTRY_IMPORT)); entry->Name != 0;
             ++entry) {
            std::string name = at<char>(entry->Name);
            std::transform(name.begin(), name.end(), name.begin(), ::tolower);
            names.push_back(name);
        }
        return names;
    }

  private:
    template <typename T>
    const T* at(DWORD address) const {
        return reinterpret_cast<const T*>(mBase + address);
    }
    DWORD directory(int index) const {
        const auto* dos = at<IMAGE_DOS_HEADER>(0);
        return at<IMAGE_NT_HEADERS>(static_cast<DWORD>(dos->e_lfanew))
            ->OptionalHeader.DataDirectory[index]
            .VirtualAddress;
    }

    const char* mBase;
};

class PluginLoad : public ::testing::Test {
  protected:
    PluginLoad() {
        std::filesystem::create_directories(mProfile.file("OrbikonController\\Applications"));
        writeSettings("log.txt");
        setVariable("USERPROFILE", mProfile.path().c_str());
    }

    // Everything is logged, so that the threads are inside the log as often as can be.
    void writeSettings(const std::string& logFile) const {
        writeFile(mProfile.file("OrbikonController\\Applications\\Creo_plugin.ini"),
                  "[PROGRAM]\n\ttransSensBase = 40000\n\trotSensBase = 10000\n\tmaxContMoveTime = 100\n"
                  "\tuseMapkeyForCommands = on\n\n[LOGGING]\n\tlogFile = " +
                      logFile +
                      "\n\tmaxSize = 100\n\tlogToFile = on\n\twarning = on\n\tcreation = on\n\ttrace = on\n"
                      "\tinfo = on\n\tdebug = on\n\ttmp = on\n\tfileToLog =\n");
    }
    std::string log() const { return textOf(mProfile.file("OrbikonController\\log.txt")); }

    template <typename Function>
    static Function* find(HMODULE module, const char* name) {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

    const std::string mPath = programFolder() + "\\" + PLUGIN_FROM_TESTS;
    const ScratchFolder mProfile;
};

TEST_F(PluginLoad, ExportsTwoFunctionsAndImportsOnlyWhatEveryWindowsHas) {
    const HMODULE plugin = LoadLibraryA(mPath.c_str());
    ASSERT_NE(plugin, nullptr) << GetLastError();
    const ModuleImage image(plugin);
    EXPECT_THAT(image.exportedNames(), UnorderedElementsAre("user_initialize", "user_terminate"));
    EXPECT_THAT(image.importedLibraries(), Each(::testing::AnyOf("kernel32.dll", "user32.dll", "msvcrt.dll",
                                                                 "gdi32.dll", "comctl32.dll", "advapi32.dll")));
    FreeLibrary(plugin);
}

// Nothing of the outside world is there: no toolkit function, no driver library, no Creo window.
TEST_F(PluginLoad, StartsAndEndsInAnEmptyWorldWithoutLeaks) {
    constexpr int kRounds = 5;
    // Two a round, which the thread library keeps of the thread that loads it, and a few that the run-times make once,
    // when two threads first meet at a lock. One more lost in every round would exceed it.
    constexpr int kMostHandles = 2 * kRounds + kRounds - 1;
    const DWORD process = GetCurrentProcessId();
    int threads = 0, handles = 0;
    auto fastest = std::chrono::steady_clock::duration::max();
    for (int round = 0; round <= kRounds; ++round) {
        const HMODULE plugin = LoadLibraryA(mPath.c_str());
        ASSERT_NE(plugin, nullptr) << GetLastError();
        auto* initialize = find<int()>(plugin, "user_initialize");
        auto* terminate = find<void()>(plugin, "user_terminate");
        ASSERT_TRUE(initialize != nullptr && terminate != nullptr);
        terminate();  // without a start it does nothing
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(initialize(), 0);
        fastest = std::min(fastest, std::chrono::steady_clock::now() - begin);
        EXPECT_EQ(initialize(), 0) << "a second start is no second plug-in";
        terminate();
        FreeLibrary(plugin);
        if (round == 0) {  // the first round also fetches what the run-times keep
            threads = countThreads(process);
            handles = countHandles(process);
        }
    }
    std::printf("user_initialize takes %d us where Creo and the driver answer at once\n",
                static_cast<int>(std::chrono::duration_cast<std::chrono::microseconds>(fastest).count()));
    // A thread that has reported its end is still on its last instructions.
    int handlesNow = 0, threadsNow = 0;
    for (int i = 0; i < 100; ++i) {
        handlesNow = countHandles(process);
        threadsNow = countThreads(process);
        if (threadsNow <= threads && handlesNow - handles <= kMostHandles) break;
        Sleep(50);
    }
    EXPECT_LE(threadsNow, threads);
    EXPECT_LE(handlesNow - handles, kMostHandles) << "more than two a round";
    const std::string contents = log();
    for (const auto& text : std::vector<std::string>{
             "Error in ProCmdOptionAdd()! err=-1", "Error in ProMenubarMenuAdd()! err=-1",
             "No valid Creo Window Handle found for Timer", "Cannot set Mapkey (ob)! => Normal Methode",
             "Error in obConnect()!", std::string(kDriverLibrary) + " not found.", "user_initialize() called twice!"}) {
        EXPECT_TRUE(contents.find(text) != std::string::npos) << text;
    }
}

// Reads that fail are paced, also those that bring an event, and every event comes. One that does not come back is left
// behind after ten seconds, and harms nobody when it comes after all.
TEST_F(PluginLoad, StandsADriverInTrouble) {
    constexpr int kReads = 20;
    constexpr ULONGLONG kLeastPauseMs = 9;  // the system's clock ticks that coarsely
    std::filesystem::copy_file(mPath, mProfile.file("plugin.dll"));
    std::filesystem::copy_file(programFolder() + "\\troubled_driver.dll", mProfile.file(kDriverLibrary));
    const HWND window =
        CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    const HMODULE plugin = LoadLibraryA(mProfile.file("plugin.dll").c_str());
    ASSERT_NE(plugin, nullptr) << GetLastError();
    EXPECT_EQ(find<int()>(plugin, "user_initialize")(), 0);
    const HMODULE driver = GetModuleHandleA(kDriverLibrary);
    ASSERT_NE(driver, nullptr);
    auto* reads = find<int()>(driver, "readsSoFar");
    const auto waitFor = [&](int count) {  // as the host does, for the timer
        const ULONGLONG end = GetTickCount64() + 60000;
        for (MSG message; reads() < count && GetTickCount64() < end; Sleep(1)) {
            while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
        }
        return reads() >= count;
    };
    ASSERT_TRUE(waitFor(1));
    const ULONGLONG begin = GetTickCount64();
    ASSERT_TRUE(waitFor(1 + kReads));
    EXPECT_GE(GetTickCount64() - begin, (kReads - 1) * kLeastPauseMs);
    EXPECT_LT(find<int()>(driver, "shortestDelayUs")(), 5000) << "events wait until the pause is over";

    find<void(bool)>(driver, "hangReads")(true);
    const int last = reads();
    const ULONGLONG beginOfEnd = GetTickCount64();
    find<void()>(plugin, "user_terminate")();
    EXPECT_GE(GetTickCount64() - beginOfEnd, 9900u);
    const std::string contents = log();
    for (int event = 0; event < last; ++event) {
        if (event % kReadsAChange == kReadsAChange - 1) continue;
        EXPECT_NE(contents.find("event: " + std::to_string(event) + ","), std::string::npos);
    }
    EXPECT_NE(contents.find("The driver library does not come back: the reading thread is left behind!"),
              std::string::npos);
    const int threads = countThreads(GetCurrentProcessId());
    find<void(bool)>(driver, "hangReads")(false);
    for (int i = 0; i < 1000 && countThreads(GetCurrentProcessId()) == threads; ++i) Sleep(10);
    EXPECT_LT(countThreads(GetCurrentProcessId()), threads);
    EXPECT_EQ(log(), contents);
    FreeLibrary(plugin);
    DestroyWindow(window);
}

TEST_F(PluginLoad, ProcessEndsInEveryState) {
    const std::string pipe = "\\\\.\\pipe\\orbikon_log_" + std::to_string(processId());
    for (const std::string& end : {std::string("running"), std::string("terminated"), pipe}) {
        writeSettings(end == pipe ? pipe : "log.txt");
        std::string command = "\"" + programFolder() + "\\exit_without_terminate.exe\" \"" + mPath + "\" " + end;
        STARTUPINFOA startup{};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION process{};
        ASSERT_TRUE(
            CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
        const DWORD waited = WaitForSingleObject(process.hProcess, 30000);
        DWORD code = 0;
        GetExitCodeProcess(process.hProcess, &code);
        if (waited != WAIT_OBJECT_0) TerminateProcess(process.hProcess, 1);
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        ASSERT_EQ(waited, WAIT_OBJECT_0) << end << ": hangs at its end";
        EXPECT_EQ(code, 42u) << end;
        if (end == pipe) continue;
        EXPECT_EQ(log().ends_with("| Logging::~Logging(): destructing ...\n"), end == "terminated") << end;
    }
}

}  // namespace
