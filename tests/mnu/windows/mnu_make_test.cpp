// The administrators' program, run as they run it.
#include <gmock/gmock.h>
#include <windows.h>

#include "tests/mnu/windows/data_folder.h"
#include "tests/unit/scratch.h"

namespace {

class MnuMake : public testing::Test {
  protected:
    MnuMake() { std::filesystem::create_directories(folder); }

    // Exit code of the program; what it printed is in `printed`.
    DWORD run(const std::string& arguments) {
        const std::string outputPath = folder + "printed.txt";
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE output =
            CreateFileA(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = startup.hStdError = output;
        PROCESS_INFORMATION process = {};
        std::string command = "\"" + programFolder() + "..\\mnu_make.exe\" " + arguments;
        DWORD exitCode = ~DWORD{0};
        if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
            WaitForSingleObject(process.hProcess, INFINITE);
            GetExitCodeProcess(process.hProcess, &exitCode);
            CloseHandle(process.hProcess);
            CloseHandle(process.hThread);
        }
        CloseHandle(output);
        printed = bytesOf(outputPath);
        return exitCode;
    }

    static std::string quoted(const std::string& text) { return "\"" + text + "\" "; }

    const ScratchFolder scratch;
    const std::string folder = scratch.file("with blanks in its name\\");
    const std::string menuFile = folder + "Creo.mnu";
    const std::string data = dataFolder().substr(0, dataFolder().size() - 1);
    std::string printed;
};

TEST_F(MnuMake, MakesAMenuFileAndNeverReplacesOne) {
    EXPECT_EQ(run(quoted(data) + "French " + quoted(menuFile)), 0u) << printed;
    EXPECT_THAT(printed, testing::HasSubstr("100%"));
    const std::string made = bytesOf(menuFile);
    EXPECT_THAT(made, testing::HasSubstr("ProCmdEnvMdlDisp"));
    EXPECT_EQ(run(quoted(data) + "german " + quoted(menuFile)), 3u) << printed;
    EXPECT_EQ(bytesOf(menuFile), made);
}

TEST_F(MnuMake, TellsWhatIsWrong) {
    EXPECT_EQ(run(quoted(data) + "klingon " + quoted(menuFile)), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("Compiled Language Resource File does not exist: " + data));
    EXPECT_EQ(run(quoted(data) + "german " + quoted(folder + "none\\Creo.mnu")), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("cannot be written"));
    for (const char* arguments : {"", "german", "--what a b", "a b c d"}) {
        EXPECT_EQ(run(arguments), 2u) << arguments;
        EXPECT_THAT(printed, testing::HasSubstr("Usage:"));
    }
    EXPECT_EQ(run("--help"), 0u);
    EXPECT_THAT(printed, testing::HasSubstr("Usage:"));
    EXPECT_FALSE(std::filesystem::exists(menuFile));
}

}  // namespace
