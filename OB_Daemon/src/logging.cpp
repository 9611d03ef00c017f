#include "OB_Daemon/src/logging.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <iostream>
#include <iterator>
#include <vector>

#include "OB_Daemon/src/thread_id.h"

namespace {

constexpr char kLogClass[] = "Logging";

constexpr std::size_t kThreadColumn = 6;
constexpr std::size_t kFileColumn = 16;
constexpr std::size_t kLineColumn = 4;
constexpr std::size_t kMethodColumn = 32;
constexpr int kBytesPerHexLine = 10;
constexpr std::int64_t kBytesPerKb = 1000;
constexpr std::size_t kMaxCollected = 200;  // a settings file has 26 keys, and a check of it 100 findings

struct Level {
    const char* tag;
    bool LoggingParameters::*isOn;  // null = always
};
constexpr std::array<Level, 9> kLevels{{
    {"ERR", nullptr},
    {"WRN", &LoggingParameters::mIsWarning},
    {"CRT", &LoggingParameters::mIsCreation},
    {"TRC", &LoggingParameters::mIsTrace},
    {"DCM", &LoggingParameters::mIsDevCom},
    {"ICM", &LoggingParameters::mIsIntCom},
    {"INF", &LoggingParameters::mIsInfo},
    {"DBG", &LoggingParameters::mIsDebug},
    {"TMP", &LoggingParameters::mIsTmp},
}};

std::string_view fileNameOf(std::string_view path, std::string_view separators) {
    const auto cut = path.find_last_of(separators);
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

// What is too long for its column keeps its end, with a star in front.
std::string cutToColumn(std::string_view text, std::size_t width) {
    if (text.size() <= width) return std::string(text);
    return "*" + std::string(text.substr(text.size() - (width - 1)));
}

std::string utcTime() {
    using namespace std::chrono;
    const auto sinceMidnight = system_clock::now().time_since_epoch() % days(1);
    const hh_mm_ss time(duration_cast<milliseconds>(sinceMidnight));
    char text[16];
    std::snprintf(text, sizeof text, "%02u:%02u:%02u.%03u", static_cast<unsigned>(time.hours().count()) % 24u,
                  static_cast<unsigned>(time.minutes().count()) % 60u,
                  static_cast<unsigned>(time.seconds().count()) % 60u,
                  static_cast<unsigned>(time.subseconds().count()) % 1000u);
    return text;
}

std::string blanks(std::size_t width, std::string_view text) {
    return std::string(width - std::min(width, text.size()), ' ');
}

// Heads are put together as strings: a stream that is out of memory would go on with half of one.
std::string lineHead(int level, std::string_view prefix) {
    const std::string thread = std::to_string(currentThreadId());
    return utcTime() + "|" + kLevels[static_cast<std::size_t>(level)].tag + "|" + blanks(kThreadColumn, thread) +
           thread + "|" + std::string(prefix) + "| ";
}

// True when a remove or rename failed for another reason than a file that is not there.
bool failedSeriously(int status) { return status != 0 && errno != ENOENT; }

}  // namespace

std::atomic<std::uint32_t> gLoggerAlive{0};
Logging gLogging;

struct Logging::Outer {
    std::unique_ptr<std::ostringstream> buffer;
    Origin origin;
    std::unique_ptr<Outer> next;
};

struct Logging::Collection {
    struct Statement {
        Origin origin;
        std::string text;
    };
    std::vector<Statement> statements;
    std::size_t dropped = 0;
};

Logging::Logging() {
    OB_LOG(LogLevel::CRT) << "Logging::Logging() constructing ...";
    mParameters.mLogFile = "c:\\def_log.txt";
    mBuffer = std::make_unique<std::ostringstream>();
    gLoggerAlive = kLogEnd;
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

Logging::~Logging() {
    if (!mMutex) return;  // left already
    if (!mMutex->tryLock()) {
        leaveToProcessEnd();
        return;
    }
    mOwner = currentThreadId();  // the lock stays taken; a statement from here is a nested one
    OB_LOG(LogLevel::CRT) << "Logging::~Logging(): destructing ...";
    gLoggerAlive = 0;
    mFile.reset();
    mBuffer.reset();
    OB_LOG(LogLevel::CRT) << "Logging::~Logging(): destructed.";
}

void Logging::leaveToProcessEnd() {
    gLoggerAlive = 0;
    static std::array<const void*, 5> left;  // known to leak checkers
    left = {mMutex.release(), mFile.release(), mBuffer.release(), mOuter.release(), mCollection.release()};
}

void Logging::init(const LoggingParameters& parameters) {
    if (mMutex->lock() != 0) return;
    mOwner = currentThreadId();  // a statement from here is a nested one
    try {
        auto collection = std::move(mCollection);
        mParameters = parameters;
        switchLevels();
        openLogFile();
        writeCollected(std::move(collection));
    } catch (const std::exception&) {  // out of memory: go on without a file
        mFile.reset();
    }
    mOwner = 0;
    mMutex->unlock();
}

void Logging::startCollecting() {
    if (mMutex->lock() != 0) return;
    try {
        mCollection = std::make_unique<Collection>();
        mEnabledLevels = (1u << kLevels.size()) - 1;
    } catch (const std::exception&) {  // out of memory: they are not kept
    }
    mMutex->unlock();
}

void Logging::stopCollecting() {
    if (mMutex->lock() != 0) return;
    mOwner = currentThreadId();
    if (mCollection) {
        auto collection = std::move(mCollection);
        switchLevels();
        try {
            writeCollected(std::move(collection));
        } catch (const std::exception&) {  // out of memory: what is left is lost
        }
    }
    mOwner = 0;
    mMutex->unlock();
}

void Logging::switchLevels() {
    std::uint32_t levels = 0;
    for (std::size_t level = 0; level < kLevels.size(); ++level) {
        const auto isOn = kLevels[level].isOn;
        if (isOn == nullptr || mParameters.*isOn) levels |= 1u << level;
    }
    mEnabledLevels = levels;
}

void Logging::collect(std::string text) {
    if (mCollection->statements.size() < kMaxCollected) {
        mCollection->statements.push_back({std::move(mOrigin), std::move(text)});
    } else {
        ++mCollection->dropped;
    }
}

void Logging::writeCollected(std::unique_ptr<Collection> collection) {
    if (!collection) return;
    for (const auto& [origin, text] : collection->statements) {
        if (isEnabled(origin.level) && passesFileFilter(origin.sourceFile)) writeLine(text);
    }
    if (collection->dropped != 0) {
        OB_LOG(LogLevel::WRN) << collection->dropped << " further lines from before the log was open were dropped.";
    }
}

void Logging::setSettingsDirPath(const std::string& path) {
    if (mMutex->lock() != 0) return;
    try {
        mParameters.mSettingsDirPath = path;
    } catch (const std::exception&) {  // out of memory: init() brings the path again
    }
    mMutex->unlock();
}

void Logging::openLogFile() {
    mFile.reset();
    if (!mParameters.mIsLogToFile) {
        if (mParameters.mIsLogToCnsl) writeHeader();
        return;
    }
    if (mParameters.mLogFile.empty()) mParameters.mLogFile = "forgot_to_name_this_file_log.txt";
    const bool isBareName = mParameters.mLogFile.find(kPathSeparator) == std::string::npos;
    mLogFilePath =
        isBareName ? mParameters.mSettingsDirPath + kPathSeparator + mParameters.mLogFile : mParameters.mLogFile;
    try {
        makeDirectories(mLogFilePath.substr(0, mLogFilePath.rfind(kPathSeparator)));
        mFile = std::make_unique<std::ofstream>(mLogFilePath, std::ios::app);
        tellUnopened();
    } catch (const std::exception&) {
        OB_LOG(LogLevel::ERR) << "Opening log file '" << mParameters.mLogFile << "failed!";
        mParameters.mIsLogToFile = false;
        return;
    }
    writeHeader();
}

// The log cannot say that there is none; once for a file.
void Logging::tellUnopened() {
    const std::string reason = std::strerror(errno);
    if (mFile->is_open()) {
        mUnopenedPath.clear();
    } else if (mUnopenedPath != mLogFilePath) {
        mUnopenedPath = mLogFilePath;
        tellWithoutLog("the log file '" + mLogFilePath + "' cannot be opened: " + reason +
                       "; correct logFile in the settings, or the rights on the folder");
    }
}

void Logging::writeHeader() {
    const std::string dashes(90, '-');
    const std::string header = dashes + "\nOrbikon logfile '" + mParameters.mLogFile + "' opened at " +
                               logDate(std::time(nullptr)) + "\n" + dashes + "\n" +
                               "    Time    |Typ|  TID |      File      | Line|        Class And Method         | "
                               "LogText\n"
                               "------------+---+------+----------------+-----+---------------------------------+"
                               "---------";
    if (mFile && mParameters.mIsLogToFile) *mFile << header << std::endl;
    if (mParameters.mIsLogToCnsl) std::cout << header << std::endl;
}

bool Logging::beginStatement(int level, std::string_view sourceFile, std::string_view prefix) {
    if (!isEnabled(level)) return false;
    const bool isNested = isOwner();
    if (!isNested && mMutex->lock() != 0) return false;
    std::string head;
    bool isAccepted = false;
    try {
        if (passesFileFilter(sourceFile)) {
            head = lineHead(level, prefix);
            Origin origin;
            if (mCollection) origin = {level, std::string(sourceFile)};
            if (isNested) interruptStatement();
            mOrigin = std::move(origin);
            isAccepted = true;
        }
    } catch (const std::exception&) {  // out of memory: no line
    }
    if (isAccepted) {
        mOwner = currentThreadId();
        append(head);
        if (mBuffer->good()) return true;
        abandonStatement();  // out of memory: no line without all of its columns
    } else if (!isNested) {
        mMutex->unlock();
    }
    return false;
}

bool Logging::passesFileFilter(std::string_view sourceFile) const {
    const auto& filter = mParameters.mExclFileToLog;
    if (filter.empty() || mCollection) return true;
    return filter == fileNameOf(sourceFile, sourceFile.find('/') != std::string_view::npos ? "/" : "\\");
}

void Logging::interruptStatement() {
    auto outer = std::make_unique<Outer>();
    auto fresh = std::make_unique<std::ostringstream>();
    outer->buffer = std::move(mBuffer);
    outer->origin = std::move(mOrigin);
    outer->next = std::move(mOuter);
    mOuter = std::move(outer);
    mBuffer = std::move(fresh);
}

void Logging::append(std::string_view text) {
    if (!isOwner()) return;
    if (mIsHexDump) {
        writeHexDump(text);
        mIsHexDump = false;
    } else {
        mBuffer->write(text.data(), static_cast<std::streamsize>(text.size()));
    }
}

void Logging::append(std::int64_t number) {
    if (!isOwner()) return;
    if (number == kLogEnd) {
        endStatement();
    } else if (number == kLogHexDump) {
        mIsHexDump = true;
    } else {
        writeNumber(number);
    }
}

void Logging::append(std::uint64_t number) {
    if (isOwner()) writeNumber(number);
}

// Not by the stream's own output, which follows the locale.
template <typename Number>
void Logging::writeNumber(Number number) {
    char digits[24];
    *mBuffer << std::string_view(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

std::ostream* Logging::statementStream() { return isOwner() ? mBuffer.get() : nullptr; }

void Logging::writeHexDump(std::string_view text) {
    *mBuffer << "\n       0  1  2  3  4  5  6  7  8  9";
    char cell[16];
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % kBytesPerHexLine == 0) {
            std::snprintf(cell, sizeof cell, "\n%4u: ", static_cast<unsigned>(i));
            *mBuffer << cell;
        }
        // As a signed character, so that 0x80 and above come out sign-extended.
        std::snprintf(cell, sizeof cell, "%x ", static_cast<unsigned>(static_cast<signed char>(text[i])));
        *mBuffer << cell;
    }
}

void Logging::endStatement() {
    try {
        std::string text = mBuffer->str();
        mBuffer = std::make_unique<std::ostringstream>();
        if (mCollection) {
            collect(std::move(text));
        } else {
            writeLine(text);
        }
    } catch (const std::exception&) {  // out of memory: the line is lost, the lock is not
        mBuffer->str({});
        mBuffer->clear();
    }
    releaseStatement();
}

void Logging::abandonStatement() {
    if (!isOwner()) return;
    mIsHexDump = false;
    mBuffer->str({});
    mBuffer->clear();
    releaseStatement();
}

void Logging::releaseStatement() {
    if (mOuter) {
        mBuffer = std::move(mOuter->buffer);
        mOrigin = std::move(mOuter->origin);
        mOuter = std::move(mOuter->next);
        return;
    }
    mOwner = 0;
    mMutex->unlock();
}

bool Logging::isOwner() const { return mOwner.load(std::memory_order_relaxed) == currentThreadId(); }

void Logging::writeLine(const std::string& text) {
    if (mFile) {
        mFile->clear();
        const std::int64_t position = std::streamoff(mFile->tellp());
        if (position >= std::int64_t{mParameters.mMaxSize} * kBytesPerKb) backupLogFile();
    }
    if (mFile && mParameters.mIsLogToFile) *mFile << text << std::endl;
    if (mParameters.mIsLogToCnsl) std::cout << text << std::endl;
}

void Logging::backupLogFile() {
    const std::string backup = mLogFilePath.substr(0, mLogFilePath.rfind('.')) + ".bak";
    mFile.reset();
    if (failedSeriously(std::remove(backup.c_str()))) {
        OB_LOG(LogLevel::ERR) << "'" << backup << "' couldn't be removed!";
        return;
    }
    if (failedSeriously(std::rename(mLogFilePath.c_str(), backup.c_str()))) {
        std::cout << "File '" << mLogFilePath << "' couldn't be renamed to '" << backup << "'!" << std::endl;
        return;
    }
    auto file = std::make_unique<std::ofstream>(mLogFilePath, std::ios::app);
    if (!file->good()) {
        OB_LOG(LogLevel::ERR) << "Opening of stream of'" << mLogFilePath << "' failed!\n";
        return;
    }
    mFile = std::move(file);
    writeHeader();
}

std::string logDate(std::time_t time) {
    static constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm date{};
#ifdef _WIN32
    localtime_s(&date, &time);
#else
    localtime_r(&time, &date);
#endif
    char text[32];
    std::snprintf(text, sizeof text, "%s %s %2d %d", kWeekdays[date.tm_wday % 7], kMonths[date.tm_mon % 12],
                  date.tm_mday, date.tm_year + 1900);
    return text;
}

std::string makeLogPrefix(std::string_view sourceFile, int line, std::string_view className, std::string_view method) {
    const std::string file = cutToColumn(fileNameOf(sourceFile, "\\"), kFileColumn);
    const std::string name = cutToColumn(std::string(className) + "::" + std::string(method), kMethodColumn);
    const std::string number = std::to_string(line);
    return blanks(kFileColumn, file) + file + "| " + blanks(kLineColumn, number) + number + "| " + name +
           blanks(kMethodColumn, name);
}

LogStatement::LogStatement(LogLevel level, const char* sourceFile, int line, const char* className,
                           const char* function)
    : mIsOpen(false), mExceptions(std::uncaught_exceptions()) {
    try {
        const std::string method = std::string(className) + "::" + function;
        mIsOpen = gLogging.beginStatement(static_cast<int>(level), sourceFile,
                                          makeLogPrefix(sourceFile, line, className, method));
    } catch (const std::exception&) {  // out of memory: no line
    }
}

LogStatement::~LogStatement() {
    if (!mIsOpen) return;
    if (std::uncaught_exceptions() > mExceptions) {
        gLogging.abandonStatement();
    } else {
        gLogging.append(std::int64_t{kLogEnd});
    }
}
