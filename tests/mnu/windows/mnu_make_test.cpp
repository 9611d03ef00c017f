// The administrators' program, run as they run it.
#include <gmock/gmock.h>
#include <windows.h>

#include <filesystem>

#include "tests/mnu/windows/data_folder.h"
#include "tests/unit/scratch.h"

namespace {

class MnuMake : public testing::Test {
  protected:
    MnuMake() { std::filesystem::create_directories(folder); }

    // Exit code of the program; what it printed is in `printed`. Texts are UTF-8.
    DWORD run(const std::string& arguments) {
        const std::string outputPath = folder + "printed.txt";
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const HANDLE output =
            CreateFileA(outputPath.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS, 0, nullptr);
        STARTUPINFOW startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = startup.hStdError = output;
        PROCESS_INFORMATION process = {};
        std::wstring command = wide(quoted(programFolder() + "..\\mnu_make.exe") + arguments).wstring();
        DWORD exitCode = ~DWORD{0};
        if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process)) {
            WaitForSingleObject(process.hProcess, INFINITE);
            GetExitCodeProcess(process.hProcess, &exitCode);
            CloseHandle(process.hProcess);
            CloseHandle(process.hThread);
        }
        CloseHandle(output);
        printed = textOf(outputPath);
        return exitCode;
    }

    static std::filesystem::path wide(const std::string& utf8) { return std::u8string(utf8.begin(), utf8.end()); }
    static std::string quoted(const std::string& text) { return "\"" + text + "\" "; }

    const ScratchFolder scratch;
    const std::string folder = scratch.file("with blanks in its name\\");
    const std::string menuFile = folder + "Creo.mnu";
    const std::string data = dataFolder().substr(0, dataFolder().size() - 1);
    std::string printed;
};

TEST_F(MnuMake, MakesAMenuFileAndNeverReplacesOne) {
    EXPECT_EQ(run(quoted(data) + "French " + quoted(menuFile)), 0u) << printed;
    EXPECT_EQ(printed, menuFile + "\n");  // no progress in a file
    const std::string made = bytesOf(menuFile);
    EXPECT_THAT(made, testing::HasSubstr("ProCmdEnvMdlDisp"));
    EXPECT_EQ(run(quoted(data) + "german " + quoted(menuFile)), 3u) << printed;
    EXPECT_EQ(bytesOf(menuFile), made);
}

TEST_F(MnuMake, TellsWhatIsWrong) {
    EXPECT_EQ(run(quoted(data) + "klingon " + quoted(menuFile)), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("Compiled Language Resource File does not exist: " + data));
    EXPECT_THAT(printed, testing::HasSubstr("Languages in that folder: english, french, german"));
    EXPECT_EQ(run(quoted(data) + "german " + quoted(folder + "none\\Creo.mnu")), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("cannot be written"));
    const std::pair<const char*, const char*> wrong[] = {
        {"", "RESOURCE_FOLDER is missing"},
        {"a german", "OUTPUT_FILE is missing"},
        {"a \"\" b", "LANGUAGE is empty"},
        {"a b c d", "'d' is one argument too many"},
        {"--list a b", "'b' is one argument too many"},
        {"--what a b", "unknown option '--what'"},
        {"--lst a", "did you mean '--list'?"},
        {"--quiet --verbose a b c", "exclude each other"},
    };
    for (const auto& [arguments, text] : wrong) {
        EXPECT_EQ(run(arguments), 2u) << arguments;
        EXPECT_THAT(printed, testing::AllOf(testing::HasSubstr(text), testing::HasSubstr("Usage:"))) << arguments;
    }
    EXPECT_EQ(run("--help"), 0u);
    EXPECT_THAT(printed, testing::HasSubstr("Usage:"));
    EXPECT_EQ(run("--version"), 0u);
    EXPECT_THAT(printed, testing::MatchesRegex("mnu_make \\d+\\.\\d+\\.\\d+\n"));
    EXPECT_FALSE(std::filesystem::exists(menuFile));
}

TEST_F(MnuMake, ListsLanguages) {
    EXPECT_EQ(run("--list " + quoted(data)), 0u);
    EXPECT_EQ(printed, "english\nfrench\ngerman\n");
    EXPECT_EQ(run("--list " + quoted(folder + "none")), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("no resource library of any language in '" + folder + "none'"));
}

// Letters that no code page of the process has, in each of the places.
TEST_F(MnuMake, TakesPathsOfAnyScript) {
    const std::string name = "\xD0\x96\xE6\xBC\xA2 \xC3\xBC";
    const std::string place = folder + name;
    std::filesystem::copy(data, wide(place));
    ASSERT_EQ(run(quoted(data) + "french " + quoted(menuFile)), 0u) << printed;
    const std::string expected = bytesOf(menuFile);
    for (const std::string& file : {place + "\\Creo.mnu", place + "\\" + name + ".mnu"}) {
        EXPECT_EQ(run("--quiet " + quoted(place) + "french " + quoted(file)), 0u) << printed;
        EXPECT_EQ(printed, "");
        std::filesystem::rename(wide(file), folder + "made.mnu");
        EXPECT_EQ(bytesOf(folder + "made.mnu"), expected);
    }
    EXPECT_EQ(run(quoted(place) + "klingon " + quoted(menuFile + "2")), 1u);
    EXPECT_THAT(printed, testing::HasSubstr("does not exist: " + place));
    EXPECT_EQ(namesIn(folder).size(), 4u);  // the folder, what was printed, two menu files
}

// Near the system's limit some of the names that a file has while it is made are too long, others are not.
TEST_F(MnuMake, LeavesNothingBehindOnAPathThatIsTooLong) {
    const auto before = namesIn(folder).size() + 1;  // what is printed
    for (std::size_t length = 235; length < 275; length += 3) {
        const std::string file = folder + std::string(length - folder.size(), 'x');
        const DWORD code = run(quoted(data) + "german " + quoted(file));
        EXPECT_TRUE(code == 0 || code == 1) << length << printed;
        EXPECT_EQ(namesIn(folder).size(), before + (code == 0 ? 1 : 0)) << length << printed;
        EXPECT_THAT(printed, testing::HasSubstr(code == 0 ? file : "too long"));
        std::filesystem::remove(file);
    }
}

}  // namespace
