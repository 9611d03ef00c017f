#include "OB_Daemon/src/logging.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <bit>
#include <cmath>
#include <ctime>
#include <iomanip>
#include <memory>
#include <random>
#include <regex>
#include <sstream>
#include <thread>
#include <utility>

#include "tests/substitutes/system.h"
#include "tests/unit/scratch.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

constexpr char kLogClass[] = "LogTest";

using testing::HasSubstr;

constexpr int kHeaderLines = 5;

const std::regex kHead(R"((\d\d:\d\d:\d\d\.\d\d\d)\|(\w\w\w)\|([ \d]{6,})\|(.*))");

LoggingParameters everythingOn(const ScratchFolder& folder) {
    LoggingParameters parameters;
    parameters.mSettingsDirPath = folder.path();
    parameters.mLogFile = "test.log";
    parameters.mIsLogToFile = true;
    parameters.mIsWarning = parameters.mIsCreation = parameters.mIsTrace = parameters.mIsDevCom = true;
    parameters.mIsIntCom = parameters.mIsInfo = parameters.mIsDebug = parameters.mIsTmp = true;
    return parameters;
}

class Log : public testing::Test {
  protected:
    ~Log() override { gLogging.init(LoggingParameters()); }

    void init() { gLogging.init(parameters); }
    std::string path() const { return folder.file("test.log"); }
    std::string backup() const { return folder.file("test.bak"); }

    // All lines behind the first header.
    std::vector<std::string> lines() const {
        auto all = linesOf(textOf(path()));
        all.erase(all.begin(), all.begin() + std::min<std::ptrdiff_t>(kHeaderLines, std::ssize(all)));
        return all;
    }
    // What stands behind the columns of every line that has them; other lines as they are.
    std::vector<std::string> messages() const {
        std::vector<std::string> result;
        for (const auto& line : lines()) {
            std::smatch match;
            result.push_back(std::regex_match(line, match, kHead) ? match[4].str().substr(16 + 2 + 4 + 2 + 32 + 2)
                                                                  : line);
        }
        return result;
    }

    ScratchFolder folder;
    LoggingParameters parameters = everythingOn(folder);
};

constexpr char kDate[] = "Dat Dat 11 1111";  // stands for the date in a header

std::string header(const std::string& file) {
    const std::string dashes(90, '-');
    return dashes + "\nOrbikon logfile '" + file + "' opened at " + kDate + "\n" + dashes +
           "\n    Time    |Typ|  TID |      File      | Line|        Class And Method         | LogText\n"
           "------------+---+------+----------------+-----+---------------------------------+---------\n";
}

std::string withoutDates(const std::string& text) {
    static const std::regex kOpened("(' opened at )\\w{3} \\w{3} [ \\d]\\d \\d{4}(\r?\n)");
    return std::regex_replace(text, kOpened, "$01" + std::string(kDate) + "$02");
}

TEST_F(Log, DatesInEnglish) {
    const char* dates[] = {"Thu Jan  8 2026", "Sun Feb 15 2026", "Sun Mar  1 2026", "Wed Apr 15 2026",
                           "Fri May 15 2026", "Mon Jun 15 2026", "Wed Jul 15 2026", "Sat Aug 15 2026",
                           "Tue Sep 15 2026", "Thu Oct 15 2026", "Sun Nov 15 2026", "Tue Dec 31 1996"};
    int month = 0;
    for (const std::string date : dates) {
        std::tm local{};
        local.tm_year = std::stoi(date.substr(11)) - 1900;
        local.tm_mon = month++;
        local.tm_mday = std::stoi(date.substr(8, 2));
        local.tm_hour = 12;
        EXPECT_EQ(logDate(std::mktime(&local)), date);
    }
    const std::string before = logDate(std::time(nullptr));
    init();
    EXPECT_THAT(textOf(path()), testing::AnyOf(HasSubstr("opened at " + before + "\n"),
                                               HasSubstr("opened at " + logDate(std::time(nullptr)) + "\n")));
}

TEST_F(Log, WritesHeaderAndColumns) {
    const std::string expectedHeader = inTextMode(header("test.log"));
    init();
    const auto isAccepted =
        gLogging.beginStatement(1, "logging.cpp", makeLogPrefix("logging.cpp", 7, "Logging", "Logging::init"));
    ASSERT_TRUE(isAccepted);
    gLogging.append("size ");
    gLogging.append(std::int64_t{-12});
    gLogging.append(std::int64_t{kLogEnd});
    const std::string text = withoutDates(bytesOf(path()));
    ASSERT_EQ(text.substr(0, expectedHeader.size()), expectedHeader);
    std::smatch match;
    const std::string line = text.substr(expectedHeader.size());
    const std::regex columns(R"((\d\d):(\d\d):(\d\d)\.\d\d\d\|WRN\|([ \d]{6,})\|([^]*))");
    ASSERT_TRUE(std::regex_match(line, match, columns)) << line;
    EXPECT_EQ(match[5], inTextMode("     logging.cpp|    7| Logging::Logging::init          | size -12\n"));
    // UTC, whatever the local time zone is.
    const std::time_t now = std::time(nullptr);
    const int seconds = std::stoi(match[1]) * 3600 + std::stoi(match[2]) * 60 + std::stoi(match[3]);
    EXPECT_LE((now % 86400 - seconds + 86400) % 86400, 60);
    // Right-aligned in six columns, longer ids are not cut.
    const std::string id = match[4];
    EXPECT_TRUE(id.size() == 6 || id[0] != ' ') << id;
}

TEST_F(Log, CutsLongNamesToTheirEnds) {
    struct Case {
        const char* file;
        int line;
        const char* className;
        const char* method;
        const char* prefix;
    };
    const Case cases[] = {
        {"exactly_16__.cpp", 1, "A", "A::b", "exactly_16__.cpp|    1| A::A::b                         "},
        {"a_name_of_22_chars.cpp", 12345, "A", "A::b", "*of_22_chars.cpp| 12345| A::A::b                         "},
        {"C:\\src\\dir\\x.cpp", 12, "Class", "Class::f", "           x.cpp|   12| Class::Class::f                 "},
        {"src/dir/x.cpp", 1, "C", "C::f", "   src/dir/x.cpp|    1| C::C::f                         "},
        {"x.cpp", 1, "Twelve_chars", "Twelve_chars::eighteen",
         "           x.cpp|    1| *e_chars::Twelve_chars::eighteen"},
        {"x.cpp", 1, "1234567890", "1234567890::12345678", "           x.cpp|    1| 1234567890::1234567890::12345678"},
        {"", 1, "", "", "                |    1| ::                              "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(std::string_view(makeLogPrefix(c.file, c.line, c.className, c.method)), c.prefix);
    }
}

TEST_F(Log, EverySwitchTurnsExactlyItsLevelOn) {
    using Switch = bool LoggingParameters::*;
    const std::pair<Switch, const char*> switches[] = {
        {nullptr, "ERR"},
        {&LoggingParameters::mIsWarning, "WRN"},
        {&LoggingParameters::mIsCreation, "CRT"},
        {&LoggingParameters::mIsTrace, "TRC"},
        {&LoggingParameters::mIsDevCom, "DCM"},
        {&LoggingParameters::mIsIntCom, "ICM"},
        {&LoggingParameters::mIsInfo, "INF"},
        {&LoggingParameters::mIsDebug, "DBG"},
        {&LoggingParameters::mIsTmp, "TMP"},
    };
    for (const auto& [isOn, tag] : switches) {
        ScratchFolder fresh;
        LoggingParameters one;
        one.mSettingsDirPath = fresh.path();
        one.mLogFile = "test.log";
        one.mIsLogToFile = true;
        if (isOn != nullptr) one.*isOn = true;
        gLogging.init(one);
        for (int level = -1; level < 34; ++level) {
            OB_LOG(static_cast<LogLevel>(level)) << "level " << level;
            if (gLogging.beginStatement(level, "x.cpp", "")) gLogging.append(std::int64_t{kLogEnd});
        }
        gLogging.init(LoggingParameters());
        std::vector<std::string> tags;
        const auto written = linesOf(textOf(fresh.file("test.log")));
        for (std::size_t i = kHeaderLines; i < written.size(); ++i) tags.push_back(written[i].substr(13, 3));
        std::vector<std::string> expected{"ERR", "ERR"};
        if (isOn != nullptr) expected.insert(expected.end(), 2, tag);
        EXPECT_EQ(tags, expected);
    }
}

TEST_F(Log, ExclusiveFileIsComparedByItsExactBaseName) {
    const std::pair<const char*, bool> cases[] = {
        {"one.cpp", true},  {"src/one.cpp", true},      {"C:\\src\\one.cpp", true}, {"C:\\src/one.cpp", true},
        {"One.cpp", false}, {"two.cpp", false},         {"xone.cpp", false},        {"one.cpp/two.cpp", false},
        {"one.cp", false},  {"C:/src\\one.cpp", false},  // a slash wins: the base name is "src\one.cpp"
    };
    parameters.mExclFileToLog = "one.cpp";
    init();
    for (const auto& [file, isWritten] : cases) {
        const bool isAccepted = gLogging.beginStatement(0, file, makeLogPrefix(file, 1, "C", "C::f"));
        EXPECT_EQ(isAccepted, isWritten) << file;
        if (isAccepted) gLogging.append(std::int64_t{kLogEnd});
    }
    OB_LOG(LogLevel::ERR) << "not from that file";
    EXPECT_EQ(lines().size(), 4u);
}

TEST_F(Log, HexDump) {
    struct Case {
        std::string bytes;
        std::string dump;
    };
    const Case cases[] = {
        {"", ""},
        {"AB\xff", "\n   0: 41 42 ffffffff "},
        {std::string("\0\x01\x7f\x80", 4), "\n   0: 0 1 7f ffffff80 "},
        {"0123456789", "\n   0: 30 31 32 33 34 35 36 37 38 39 "},
        {"0123456789a", "\n   0: 30 31 32 33 34 35 36 37 38 39 \n  10: 61 "},
    };
    for (const auto& c : cases) {
        ScratchFolder fresh;
        parameters.mSettingsDirPath = fresh.path();
        init();
        OB_LOG(LogLevel::ERR) << "data" << kLogHexDump << c.bytes << " plain " << 17;
        const std::string text = textOf(fresh.file("test.log"));
        const std::string expected = "data\n       0  1  2  3  4  5  6  7  8  9" + c.dump + " plain 17\n";
        EXPECT_TRUE(text.ends_with("| " + expected)) << text;
        gLogging.init(LoggingParameters());
    }
}

TEST_F(Log, FormatsPiecesLikeAStream) {
    init();
    OB_LOG(LogLevel::ERR) << 'c' << true << -1 << 4000000000u << std::int64_t{-5000000000} << 0.5 << std::string("s")
                          << std::string_view("v") << std::uint64_t{18446744073709551615u};
    EXPECT_THAT(messages(), testing::ElementsAre("c1-14000000000-50000000000.5sv18446744073709551615"));
}

// The plain way of a line: streams, and a file name looked up when the statement runs.
std::string plainPrefix(std::string file, int line, const std::string& method) {
    file = file.substr(file.rfind('\\') + 1);
    if (file.size() > 16) file = "*" + file.substr(file.size() - 15);
    const std::string name = method.size() > 32 ? "*" + method.substr(method.size() - 31) : method;
    std::ostringstream out;
    out << std::setw(16) << file << "| " << std::setw(4) << line << "| " << std::left << std::setw(32) << name;
    return out.str();
}

TEST_F(Log, EqualsThePlainWayOnRandomStatements) {
    std::mt19937_64 random(4711);
    const auto word = [&](std::size_t longest) {
        std::string text(static_cast<std::size_t>(random() % (longest + 1)), ' ');
        for (char& c : text) c = "ab/\\. \x80\xff"[random() % 8];
        return text;
    };
    init();
    std::vector<std::string> expected;
    for (int round = 0; round < 2000; ++round) {
        const std::string path = word(40), className = word(12), method = word(30), text = word(50);
        const int line = static_cast<int>(random() >> (33 + random() % 30)) - 5;
        EXPECT_EQ(std::string_view(makeLogPrefix(path.c_str(), line, className, method)),
                  plainPrefix(path, line, className + "::" + method));
        const auto whole = static_cast<std::int64_t>(random() >> random() % 64);
        const auto digits = static_cast<double>(static_cast<std::int32_t>(random()) >> random() % 32);
        const double fraction = round == 1        ? -0.0
                                : round % 50 == 0 ? std::pow(-10.0, round) / (round % 100)
                                : round % 2 == 0  ? digits / std::pow(10.0, random() % 6)
                                                  : std::bit_cast<double>(random());
        const void* pointer = round % 9 == 0 ? nullptr : path.c_str() + whole % 9999;
        std::ostringstream plain;
        plain << text << 'c' << whole << ',' << fraction << ',' << pointer << ',' << (whole % 2 == 0);
        expected.push_back(plain.str());
        OB_LOG(LogLevel::ERR) << text << 'c' << whole << ',' << fraction << ',' << pointer << ',' << (whole % 2 == 0);
    }
    EXPECT_EQ(messages(), expected);
}

TEST_F(Log, RotatesBeforeTheFirstLineThatFindsTheFileFull) {
    parameters.mMaxSize = 1;
    init();
    const std::string filler(100, 'x');
    // Lines until the file has 1000 bytes or more; each of them still goes into it.
    int written = 0;
    while (std::filesystem::file_size(path()) < 1000) {
        OB_LOG(LogLevel::ERR) << filler;
        ++written;
        ASSERT_FALSE(std::filesystem::exists(backup()));
    }
    ASSERT_GT(written, 1);
    const std::string full = bytesOf(path());
    OB_LOG(LogLevel::ERR) << "first of the fresh file";
    EXPECT_EQ(bytesOf(backup()), full);
    EXPECT_TRUE(withoutDates(textOf(path())).starts_with(header("test.log")));
    EXPECT_THAT(messages(), testing::ElementsAre("first of the fresh file"));

    // The next rotation replaces the backup.
    OB_LOG(LogLevel::ERR) << std::string(1000, 'y');
    const std::string second = bytesOf(path());
    OB_LOG(LogLevel::ERR) << "third file";
    EXPECT_EQ(bytesOf(backup()), second);
    EXPECT_THAT(messages(), testing::ElementsAre("third file"));
}

TEST_F(Log, RotatesAFileThatIsFullFromTheStart) {
    init();
    gLogging.init(LoggingParameters());
    const std::size_t headerSize = bytesOf(path()).size();
    parameters.mMaxSize = 2;
    for (const auto& [size, isRotated] : {std::pair{1999u, false}, {2000u, true}, {5000u, true}}) {
        std::filesystem::remove(backup());
        writeFile(path(), std::string(size - headerSize, 'o'));
        init();
        OB_LOG(LogLevel::ERR) << "new";
        EXPECT_EQ(std::filesystem::exists(backup()), isRotated) << size;
        EXPECT_EQ(bytesOf(path()).starts_with("o"), !isRotated) << size;
        gLogging.init(LoggingParameters());
    }
}

// Asked for every 4 kB, since to ask costs as much as half a line.
TEST_F(Log, RotatesAFileThatAnotherProcessHasFilled) {
    parameters.mMaxSize = 20;
    init();
    std::ofstream(path(), std::ios::binary | std::ios::app) << std::string(30'000, 'o');
    for (int i = 0; i < 6; ++i) OB_LOG(LogLevel::ERR) << std::string(1000, 'x');
    EXPECT_TRUE(std::filesystem::exists(backup()));
}

TEST_F(Log, SizeZeroRotatesBeforeEveryLineAndHugeSizesNever) {
    parameters.mMaxSize = 0;
    init();
    for (int i = 0; i < 3; ++i) OB_LOG(LogLevel::ERR) << "line " << i;
    EXPECT_THAT(messages(), testing::ElementsAre("line 2"));
    EXPECT_THAT(textOf(backup()), HasSubstr("line 1"));
    std::filesystem::remove(backup());

    parameters.mMaxSize = 2147483647;  // times 1000 needs 64 bits
    init();
    OB_LOG(LogLevel::ERR) << "line 3";
    EXPECT_FALSE(std::filesystem::exists(backup()));
}

TEST_F(Log, BackupThatCannotBeRemovedSilencesTheFileUntilInit) {
    std::filesystem::create_directory(backup());
    writeFile(backup() + kPathSeparator + "occupied", "x");
    parameters.mMaxSize = 0;
    parameters.mIsLogToCnsl = true;
    testing::internal::CaptureStdout();
    init();
    OB_LOG(LogLevel::ERR) << "outer " << 1;
    OB_LOG(LogLevel::ERR) << "next";
    parameters.mMaxSize = 5000;
    init();
    OB_LOG(LogLevel::ERR) << "again";
    const std::string console = testing::internal::GetCapturedStdout();
    EXPECT_THAT(console, HasSubstr("| '" + backup() + "' couldn't be removed!\n"));
    EXPECT_THAT(console, HasSubstr("| outer 1\n"));
    EXPECT_THAT(console, HasSubstr("| next\n"));
    EXPECT_LT(console.find("couldn't be removed"), console.find("outer 1"));
    const std::string text = textOf(path());
    EXPECT_THAT(text, testing::Not(HasSubstr("outer")));
    EXPECT_THAT(text, testing::Not(HasSubstr("next")));
    EXPECT_TRUE(text.ends_with("| again\n")) << text;
}

TEST_F(Log, StatementThatIsOutOfMemoryIsCutThere) {
    init();
    OB_LOG(LogLevel::ERR) << "before";
    const std::string longer(100000, 'x');
    const substitute::NthFails noMemory(substitute::Call::allocation, 1);
    OB_LOG(LogLevel::ERR) << "first" << longer << "last";
    EXPECT_TRUE(noMemory.hasFailed());
    const std::string text = textOf(path());
    EXPECT_TRUE(text.ends_with("| first\n")) << text.substr(text.size() - 40);
}

#ifndef _WIN32
TEST_F(Log, FullDiskLosesTheLinesOfThatTimeOnly) {
    init();
    {
        const FullDisk full(bytesOf(path()).size() + 10);
        OB_LOG(LogLevel::ERR) << "cut";
    }
    OB_LOG(LogLevel::ERR) << "next";
    EXPECT_TRUE(textOf(path()).ends_with("| next\n"));
}

// The folder of the log file is gone: nothing to remove, nothing to rename, nothing to open.
TEST_F(Log, FolderThatVanishesIsReported) {
    ScratchFolder vanishing;
    parameters.mSettingsDirPath = vanishing.path();
    parameters.mMaxSize = 0;
    parameters.mIsLogToCnsl = true;
    testing::internal::CaptureStdout();
    init();
    std::filesystem::remove_all(vanishing.path());
    OB_LOG(LogLevel::ERR) << "lost";
    OB_LOG(LogLevel::ERR) << "next";
    const std::string console = testing::internal::GetCapturedStdout();
    EXPECT_THAT(console, HasSubstr("| Opening of stream of'" + vanishing.file("test.log") + "' failed!\n\n"));
    EXPECT_TRUE(console.ends_with("| next\n"));
}
#else
// Somebody has the log file open in a way that keeps it from being renamed.
TEST_F(Log, RenameFailureGoesStraightToTheConsole) {
    parameters.mMaxSize = 0;
    parameters.mIsLogToCnsl = true;
    testing::internal::CaptureStdout();
    init();
    {
        const std::ifstream reader(path());
        OB_LOG(LogLevel::ERR) << "line";
        OB_LOG(LogLevel::ERR) << "next";
    }
    const std::string console = testing::internal::GetCapturedStdout();
    EXPECT_THAT(console, HasSubstr("\nFile '" + path() + "' couldn't be renamed to '" + backup() + "'!\n"));
    EXPECT_TRUE(console.ends_with("| next\n"));
    EXPECT_THAT(lines(), testing::IsEmpty());
}
#endif

TEST_F(Log, NameDecidesThePlaceOfTheFile) {
    parameters.mLogFile = "";
    init();
    EXPECT_EQ(withoutDates(textOf(folder.file("forgot_to_name_this_file_log.txt"))),
              header("forgot_to_name_this_file_log.txt"));

    ScratchFolder elsewhere;
    const std::string full = elsewhere.file("full.txt");
    parameters.mLogFile = full;
    init();
    EXPECT_EQ(withoutDates(textOf(full)), header(full));
    gLogging.init(LoggingParameters());
}

TEST_F(Log, MissingFoldersOfTheFileAreMade) {
    parameters.mLogFile = folder.file("missing") + kPathSeparator + "too" + kPathSeparator + "x.log";
    init();
    EXPECT_EQ(withoutDates(textOf(parameters.mLogFile)), header(parameters.mLogFile));
}

#ifdef _WIN32
// What is written to the debugger's output: the system raises it as an exception, and goes on after it.
std::string debuggerOutput;

LONG CALLBACK hearDebuggerOutput(EXCEPTION_POINTERS* raised) {
    const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
    if (record.ExceptionCode == DBG_PRINTEXCEPTION_C) {
        debuggerOutput += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST_F(Log, FileThatCannotBeOpenedIsToldToTheDebugger) {
    writeFile(folder.file("in the way"), "");
    parameters.mLogFile = folder.file("in the way") + "\\x.log";
    void* const handler = AddVectoredExceptionHandler(1, &hearDebuggerOutput);
    init();
    RemoveVectoredExceptionHandler(handler);
    EXPECT_THAT(debuggerOutput, HasSubstr("Orbikon Creo plug-in: the log file '" + parameters.mLogFile + "' cannot"));
}
#endif

TEST_F(Log, FileThatCannotBeOpenedIsToldOnceOutside) {
    writeFile(folder.file("in the way"), "");
    parameters.mLogFile = folder.file("in the way") + kPathSeparator + "x.log";
    parameters.mMaxSize = 0;
    const auto toldByInit = [&] {
        testing::internal::CaptureStderr();
        init();
        OB_LOG(LogLevel::ERR) << "nowhere";
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_THAT(toldByInit(), HasSubstr("the log file '" + parameters.mLogFile + "' cannot be opened: "));
    EXPECT_EQ(toldByInit(), "");
    const std::string blocked = std::exchange(parameters.mLogFile, "test.log");
    EXPECT_EQ(toldByInit(), "");
    parameters.mLogFile = blocked;
    EXPECT_THAT(toldByInit(), HasSubstr(blocked)) << "another one was opened meanwhile";
}

TEST_F(Log, ConsoleOnlyMakesNoFile) {
    parameters.mIsLogToFile = false;
    parameters.mIsLogToCnsl = true;
    testing::internal::CaptureStdout();
    init();
    OB_LOG(LogLevel::DBG) << "to the console";
    const std::string console = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(withoutDates(console).starts_with(header("test.log"))) << console;
    EXPECT_TRUE(console.ends_with("| to the console\n")) << console;
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(Log, InitAgainAppendsANewHeaderAndTakesNewSwitchesOver) {
    init();
    OB_LOG(LogLevel::DBG) << "one";
    parameters.mIsDebug = false;
    init();
    OB_LOG(LogLevel::DBG) << "off";
    OB_LOG(LogLevel::TMP) << "two";
    const auto all = linesOf(textOf(path()));
    ASSERT_EQ(all.size(), 2u * kHeaderLines + 2u);
    EXPECT_TRUE(all[kHeaderLines].ends_with("| one"));
    EXPECT_TRUE(all.back().ends_with("| two"));

    // Without an output errors are accepted all the same, and go nowhere.
    parameters.mIsLogToFile = false;
    init();
    testing::internal::CaptureStdout();
    ASSERT_TRUE(gLogging.beginStatement(0, "x.cpp", ""));
    gLogging.append(std::int64_t{kLogEnd});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(linesOf(textOf(path())), all);
    std::filesystem::rename(path(), backup());  // nobody has the file open any more
}

TEST_F(Log, LifeHasAFirstAndALastLine) {
    init();
    std::destroy_at(&gLogging);
    int evaluated = 0;
    OB_LOG(LogLevel::ERR) << "skipped " << ++evaluated;
    std::construct_at(&gLogging);
    OB_LOG(LogLevel::ERR) << "accepted " << ++evaluated;
    EXPECT_EQ(evaluated, 1);
    EXPECT_THAT(messages(), testing::ElementsAre("Logging::~Logging(): destructing ..."));
}

// As at the end of a process whose other threads were stopped wherever they were.
TEST_F(Log, EndDoesNotWaitForAStatementThatNobodyEnds) {
    init();
    std::thread([] { ASSERT_TRUE(gLogging.beginStatement(0, "x.cpp", "")); }).join();
    std::destroy_at(&gLogging);
    OB_LOG(LogLevel::ERR) << "skipped";
    std::construct_at(&gLogging);
    EXPECT_THAT(messages(), testing::IsEmpty());
}

TEST_F(Log, OffStatementEvaluatesAndAllocatesNothing) {
    parameters.mIsDebug = false;
    init();
    int evaluated = 0;
    const std::string longText(100, 'x');
    const long before = substitute::allocations();
    for (int i = 0; i < 100; ++i) OB_LOG(LogLevel::DBG) << longText + "y" << ++evaluated;
    EXPECT_EQ(substitute::allocations(), before);
    EXPECT_EQ(evaluated, 0);
}

int failing() { throw std::runtime_error("building failed"); }

TEST_F(Log, MessageThatThrowsIsGivenUpAndReleasesTheLock) {
    init();
    EXPECT_THROW(OB_LOG(LogLevel::ERR) << "lost " << kLogHexDump << failing(), std::runtime_error);
    std::thread([] { OB_LOG(LogLevel::ERR) << "another thread"; }).join();
    EXPECT_THAT(messages(), testing::ElementsAre("another thread"));
}

int logging(int value) {
    OB_LOG(LogLevel::ERR) << "inner " << value;
    return value;
}

int loggingAndFailing() {
    try {
        OB_LOG(LogLevel::ERR) << "inner lost" << failing();
    } catch (const std::runtime_error&) {
        return -1;
    }
    return 0;
}

// A number that happens to be the end mark ends its own statement, not the one around it.
int loggingTheEndMark() {
    OB_LOG(LogLevel::ERR) << "inner " << kLogEnd << " dropped";
    return 3;
}

TEST_F(Log, StatementInsideAStatementIsALineOfItsOwn) {
    init();
    OB_LOG(LogLevel::ERR) << "outer " << logging(1) << " and " << logging(2) << " end";
    OB_LOG(LogLevel::ERR) << "around " << loggingAndFailing() << " end";
    OB_LOG(LogLevel::ERR) << "marked " << loggingTheEndMark() << " end";
    OB_LOG(LogLevel::ERR) << "closed" << kLogEnd << " dropped";
    std::thread([] { OB_LOG(LogLevel::ERR) << "lock is free"; }).join();
    EXPECT_THAT(messages(), testing::ElementsAre("inner 1", "inner 2", "outer 1 and 2 end", "around -1 end", "inner ",
                                                 "marked 3 end", "closed", "lock is free"));
}

// What comes before the parameters are known is written as if they had been known: order, levels, file filter.
TEST_F(Log, StatementsBeforeInitAreCollectedForIt) {
    parameters.mIsDebug = false;
    gLogging.startCollecting();
    OB_LOG(LogLevel::ERR) << "first " << logging(1) << " end";
    OB_LOG(LogLevel::DBG) << "off";
    std::thread([] { OB_LOG(LogLevel::TMP) << "of a thread"; }).join();
    init();
    OB_LOG(LogLevel::ERR) << "open";
    OB_LOG(LogLevel::DBG) << "still off";
    gLogging.stopCollecting();
    EXPECT_THAT(messages(), testing::ElementsAre("inner 1", "first 1 end", "of a thread", "open"));

    // A log that is open already takes them when no init() comes; one that is not open keeps nothing.
    gLogging.startCollecting();
    OB_LOG(LogLevel::INF) << "late";
    EXPECT_EQ(messages().back(), "open");
    gLogging.stopCollecting();
    EXPECT_EQ(messages().back(), "late");
    parameters.mExclFileToLog = "other.cpp";
    gLogging.startCollecting();
    OB_LOG(LogLevel::ERR) << "of a file that is not asked for";
    init();
    EXPECT_EQ(lines().back().substr(0, 4), "----");
    gLogging.startCollecting();
    OB_LOG(LogLevel::ERR) << "of a file that is asked for from now on";
    parameters.mExclFileToLog.clear();
    init();
    EXPECT_EQ(messages().back(), "of a file that is asked for from now on");
}

TEST_F(Log, CollectedStatementsAreBounded) {
    gLogging.startCollecting();
    for (int i = 0; i < 1000; ++i) OB_LOG(LogLevel::INF) << i;
    init();
    const auto written = messages();
    ASSERT_EQ(written.size(), 201u);
    EXPECT_EQ(written[199], "199");
    EXPECT_EQ(written[200], "800 further lines from before the log was open were dropped.");
}

// Whatever fails inside a statement: no lock is left, and the next line arrives.
TEST_F(Log, EachCallMayFail) {
    parameters.mMaxSize = 0;  // each line rotates
    const std::string longText(100, 'x');
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"init", [&] { init(); }},
        {"folder", [&] { gLogging.setSettingsDirPath(folder.path()); }},
        {"statement", [&] { OB_LOG(LogLevel::ERR) << longText << 'c' << -5000000000 << kLogHexDump << longText; }},
        {"collected",
         [&] {
             gLogging.startCollecting();
             OB_LOG(LogLevel::ERR) << longText << logging(1);
             gLogging.stopCollecting();
         }},
        {"nested", [&] { OB_LOG(LogLevel::ERR) << longText << logging(1) << ~std::uint64_t{}; }},
    };
    for (const auto& [name, operation] : operations) {
        init();
        const auto faults = substitute::failEachCall(operation, [&](const std::string&) {
            init();
            OB_LOG(LogLevel::ERR) << "next line";
            if (textOf(backup()).find("xinner") != std::string::npos) return "mixed lines";
            return messages() == std::vector<std::string>{"next line"} ? "" : "another line";
        });
        EXPECT_THAT(faults, testing::IsEmpty()) << name;
    }
}

TEST_F(Log, ThreadsNeverMixLinesNotEvenDuringInitAndRotation) {
    constexpr int kThreads = 4, kLines = 300;
    parameters.mMaxSize = 20;
    init();
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t, &running] {
            for (int i = 0; i < kLines; ++i) OB_LOG(LogLevel::ERR) << "<" << t << ":" << i << ":" << 0.5 << ">";
            --running;
        });
    }
    while (running > 0) init();
    for (auto& thread : threads) thread.join();
    const std::regex wanted(
        R"(\d\d:\d\d:\d\d\.\d\d\d\|ERR\|[ \d]{6,}\|[ \S]{16}\| *\d+\| LogTest::LogTest::\S+ *\| <\d:\d+:0\.5>)");
    int seen = 0;
    for (const auto& file : {path(), backup()}) {
        for (const auto& line : linesOf(textOf(file))) {
            if (line.find('<') == std::string::npos) {
                const bool isHeader = header("test.log").find(withoutDates(line + "\n")) != std::string::npos;
                EXPECT_TRUE(isHeader) << line;
                continue;
            }
            ++seen;
            EXPECT_TRUE(std::regex_match(line, wanted)) << line;
        }
    }
    EXPECT_GT(seen, 0);
}

TEST_F(Log, EveryLineOfEveryThreadArrives) {
    constexpr int kThreads = 4, kLines = 200;
    init();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i) OB_LOG(LogLevel::INF) << t << " " << i;
        });
    }
    for (auto& thread : threads) thread.join();
    std::vector<int> next(kThreads);
    for (const auto& message : messages()) {
        const auto t = static_cast<std::size_t>(message[0] - '0');
        EXPECT_EQ(message.substr(2), std::to_string(next.at(t)++));
    }
    EXPECT_EQ(next, std::vector<int>(kThreads, kLines));
}

}  // namespace
