#include "OB_Daemon/src/logging.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>
#include <iterator>
#include <vector>

#include "OB_Daemon/src/mutex.h"
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

// Appends the parts, one behind the other, left- or right-aligned in a column. What is too long keeps its end, with a
// star in front.
template <std::size_t N>
void appendColumn(LogPrefix& prefix, const std::string_view (&parts)[N], std::size_t width, bool isLeft) {
    std::size_t size = 0;
    for (const auto part : parts) size += part.size();
    const std::size_t blanks = width - std::min(width, size);
    if (!isLeft) prefix.append(blanks, ' ');
    std::size_t skipped = size > width ? size - (width - 1) : 0;
    if (skipped != 0) prefix.append(1, '*');
    for (auto part : parts) {
        const std::size_t cut = std::min(skipped, part.size());
        prefix.append(part.substr(cut));
        skipped -= cut;
    }
    if (isLeft) prefix.append(blanks, ' ');
}

template <std::size_t N>
LogPrefix prefixOf(const LogSource& source, int line, const std::string_view (&names)[N]) {
    char digits[16];
    const std::string_view number(digits, std::to_chars(digits, std::end(digits), line).ptr);
    LogPrefix prefix;
    appendColumn(prefix, {source.columnName()}, kFileColumn, false);
    prefix.append("| ");
    prefix.append(kLineColumn - std::min(kLineColumn, number.size()), ' ');
    prefix.append(number);
    prefix.append("| ");
    appendColumn(prefix, names, kMethodColumn, true);
    return prefix;
}

// By hand: a statement's head is most of what it costs beside the writing itself.
template <std::size_t Digits>
void appendDigits(std::string& text, std::uint64_t number, char behind) {
    char digits[Digits + 1];
    for (std::size_t i = Digits; i-- > 0; number /= 10) digits[i] = static_cast<char>('0' + number % 10);
    digits[Digits] = behind;
    text.append(digits, Digits + 1);
}

void appendUtcTime(std::string& text) {
    using namespace std::chrono;
    const auto sinceMidnight = system_clock::now().time_since_epoch() % days(1);
    const auto time = static_cast<std::uint64_t>(duration_cast<milliseconds>(sinceMidnight).count());
    appendDigits<2>(text, time / 3'600'000, ':');
    appendDigits<2>(text, time / 60'000 % 60, ':');
    appendDigits<2>(text, time / 1000 % 60, '.');
    appendDigits<3>(text, time % 1000, '|');
}

// Writes as "%g" does, and answers where the text ends. What has up to three digits before the point and behind it, as
// nearly all that is logged, is written by hand: printf takes longer for it than the rest of a line costs.
char* writeNumber(char (&text)[32], double number) {
    constexpr int kThousand = 1000;
    const double size = std::fabs(number);
    const auto thousandths = size < kThousand ? static_cast<std::uint32_t>(std::lround(size * kThousand)) : 0;
    char* end = text;
    if (size == static_cast<double>(thousandths) / kThousand) {
        if (std::signbit(number)) *end++ = '-';
        end = std::to_chars(end, std::end(text), thousandths / kThousand).ptr;
        std::uint32_t fraction = thousandths % kThousand;
        if (fraction != 0) *end++ = '.';
        for (std::uint32_t unit = kThousand / 10; fraction != 0; fraction %= unit, unit /= 10) {
            *end++ = static_cast<char>('0' + fraction / unit);
        }
    } else {
        end += std::snprintf(text, sizeof text, "%g", number);
        std::replace(text, end, ',', '.');  // whatever the host has made of the C library's locale
    }
    return end;
}

void tellOnConsole(std::string_view lines) {
    std::fwrite(lines.data(), 1, lines.size(), stdout);
    std::fflush(stdout);
}

// True when a remove or rename failed for another reason than a file that is not there.
bool failedSeriously(int status) { return status != 0 && errno != ENOENT; }

}  // namespace

std::atomic<std::uint32_t> gLoggerAlive{0};
Logging gLogging;

// The statement lock, and a queue in front of it. As long as any thread waits, each release of a semaphore costs a call
// of the system that wakes one, also while the one woken before has not come to run yet; a plain mutex knows that, and
// three threads that log all the time need two fifths less. So they wait there, and the semaphore is free for the one
// that comes through.
struct Logging::Lock {
    Lock() = default;
    ~Lock() { pthread_mutex_destroy(&queue); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    bool take() {
        pthread_mutex_lock(&queue);
        if (mutex.lock() == 0) return true;
        pthread_mutex_unlock(&queue);
        return false;
    }
    void release() {
        mutex.unlock();
        pthread_mutex_unlock(&queue);
    }
    // For good: release() is for take() only.
    bool tryTake() { return mutex.tryLock(); }

    Mutex mutex;
    pthread_mutex_t queue = PTHREAD_MUTEX_INITIALIZER;
};

// All statements share one text, so that the memory of the last serves the next. A nested one stands behind the one
// that it interrupts, and is gone again before that goes on.
struct Logging::Building {
    struct Statement {
        std::size_t begin;  // in the text
        int level;
        std::string_view file;
        bool isNested;       // in another one, or in what else has taken the lock
        bool isCut = false;  // memory was short; nothing is added any more
    };
    std::string text;
    std::vector<Statement> statements;  // the innermost last
};

// The log file, opened for appending. What cannot be written is lost.
struct Logging::File {
    explicit File(const std::string& path) : descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666)) {
        if (isOpen()) size = lseek64(descriptor, 0, SEEK_END);
    }
    ~File() {
        if (isOpen()) close(descriptor);
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool isOpen() const { return descriptor >= 0; }

    void write(std::string_view lines) {
        unasked += static_cast<std::int64_t>(lines.size());
        size += static_cast<std::int64_t>(lines.size());
        if (kPathSeparator == '\\') size += std::ranges::count(lines, '\n');  // Windows' line ends
        while (isOpen() && !lines.empty()) {
            const auto written = ::write(descriptor, lines.data(), static_cast<unsigned>(lines.size()));
            if (written <= 0) {
                unasked = kAskAfter;
                return;
            }
            lines.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    // Counted, because to ask the system costs as much as half a line; asked every now and then, because another
    // process may write to the same file.
    std::int64_t currentSize() {
        if (isOpen() && unasked >= kAskAfter) {
            size = lseek64(descriptor, 0, SEEK_END);
            unasked = 0;
        }
        return size;
    }

    static constexpr std::int64_t kAskAfter = 4096;  // bytes written

    int descriptor;
    std::int64_t size = -1;
    std::int64_t unasked = 0;  // bytes written since it was asked
};

struct Logging::Collection {
    struct Statement {
        int level;
        std::string file;
        std::string lines;
    };
    std::vector<Statement> statements;
    std::size_t dropped = 0;
};

Logging::Logging() : mLock(std::make_unique<Lock>()) {
    OB_LOG(LogLevel::CRT) << "Logging::Logging() constructing ...";
    mParameters.mLogFile = "c:\\def_log.txt";
    mBuilding = std::make_unique<Building>();
    gLoggerAlive = kLogEnd;
    OB_LOG(LogLevel::CRT) << "Constructed.";
}

Logging::~Logging() {
    if (!mLock) return;  // left already
    if (!mLock->tryTake()) {
        leaveToProcessEnd();
        return;
    }
    mOwner = currentThreadId();  // the lock stays taken; a statement from here is a nested one
    OB_LOG(LogLevel::CRT) << "Logging::~Logging(): destructing ...";
    gLoggerAlive = 0;
    mFile.reset();
    mBuilding.reset();
    OB_LOG(LogLevel::CRT) << "Logging::~Logging(): destructed.";
}

void Logging::leaveToProcessEnd() {
    gLoggerAlive = 0;
    static std::array<const void*, 4> left;  // known to leak checkers
    left = {mLock.release(), mFile.release(), mBuilding.release(), mCollection.release()};
}

void Logging::init(const LoggingParameters& parameters) {
    if (!mLock->take()) return;
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
    mLock->release();
}

void Logging::startCollecting() {
    if (!mLock->take()) return;
    try {
        mCollection = std::make_unique<Collection>();
        mEnabledLevels = (1u << kLevels.size()) - 1;
        mWantedFile = kAnyFile;
    } catch (const std::exception&) {  // out of memory: they are not kept
    }
    mLock->release();
}

void Logging::stopCollecting() {
    if (!mLock->take()) return;
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
    mLock->release();
}

void Logging::switchLevels() {
    std::uint32_t levels = 0;
    for (std::size_t level = 0; level < kLevels.size(); ++level) {
        const auto isOn = kLevels[level].isOn;
        if (isOn == nullptr || mParameters.*isOn) levels |= 1u << level;
    }
    mEnabledLevels = levels;
    mWantedFile = mParameters.mExclFileToLog.empty() ? kAnyFile : LogSource::hashOf(mParameters.mExclFileToLog);
}

void Logging::collect() {
    if (mCollection->statements.size() < kMaxCollected) {
        const auto& statement = mBuilding->statements.back();
        mCollection->statements.push_back({statement.level, std::string(statement.file), std::string(statementText())});
    } else {
        ++mCollection->dropped;
    }
}

void Logging::writeCollected(std::unique_ptr<Collection> collection) {
    if (!collection) return;
    for (const auto& [level, file, lines] : collection->statements) {
        if (!isEnabled(level) || !passesFileFilter(file)) continue;
        rotateWhenFull();
        write(lines);
    }
    if (collection->dropped != 0) {
        OB_LOG(LogLevel::WRN) << collection->dropped << " further lines from before the log was open were dropped.";
    }
}

void Logging::setSettingsDirPath(const std::string& path) {
    if (!mLock->take()) return;
    try {
        mParameters.mSettingsDirPath = path;
    } catch (const std::exception&) {  // out of memory: init() brings the path again
    }
    mLock->release();
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
        mFile = std::make_unique<File>(mLogFilePath);
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
    if (mFile->isOpen()) {
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
                               "---------\n";
    write(header);
}

bool Logging::beginStatement(int level, const LogSource& source, std::string_view prefix) {
    if (!isEnabled(level) || !mayPassFileFilter(source)) return false;
    const bool isNested = isOwner();
    if (!isNested && !mLock->take()) return false;
    auto& [text, statements] = *mBuilding;
    const std::size_t depth = statements.size();
    try {
        if (passesFileFilter(source.name())) {
            statements.push_back({text.size(), level, source.name(), isNested});
            writeHead(level, prefix);
            mOwner.store(currentThreadId(), std::memory_order_relaxed);
            return true;
        }
    } catch (const std::exception&) {  // out of memory: no line without all of its columns
        if (statements.size() > depth) {
            text.resize(statements.back().begin);
            statements.pop_back();
        }
    }
    if (!isNested) mLock->release();
    return false;
}

bool Logging::passesFileFilter(std::string_view fileName) const {
    const auto& filter = mParameters.mExclFileToLog;
    return filter.empty() || mCollection || filter == fileName;
}

void Logging::writeHead(int level, std::string_view prefix) {
    std::string& text = mBuilding->text;
    const std::size_t begin = text.size();
    appendUtcTime(text);
    text.append(kLevels[static_cast<std::size_t>(level)].tag) += '|';
    char digits[16];
    const std::string_view thread(digits, std::to_chars(digits, std::end(digits), currentThreadId()).ptr);
    text.append(kThreadColumn - std::min(kThreadColumn, thread.size()), ' ').append(thread) += '|';
    text.append(prefix).append("| ");
    if (!mIsHexDump) return;
    // The dump that was asked for is that of the next text, whichever it is.
    const std::string head = text.substr(begin);
    text.resize(begin);
    mIsHexDump = false;
    writeHexDump(head);
}

std::string_view Logging::statementText() const {
    return std::string_view(mBuilding->text).substr(mBuilding->statements.back().begin);
}

// A statement that is out of memory is cut there.
template <typename Text>
void Logging::add(const Text& text) {
    bool& isCut = mBuilding->statements.back().isCut;
    if (isCut) return;
    try {
        mBuilding->text += text;
    } catch (const std::exception&) {
        isCut = true;
    }
}

void Logging::append(std::string_view text) {
    if (!isOwner()) return;
    if (mIsHexDump) {
        writeHexDump(text);
        mIsHexDump = false;
    } else {
        add(text);
    }
}

void Logging::append(std::int64_t number) {
    if (!isOwner()) return;
    if (number == kLogEnd) {
        endStatement();
    } else if (number == kLogHexDump) {
        mIsHexDump = true;
    } else {
        addNumber(number);
    }
}

void Logging::append(std::uint64_t number) {
    if (isOwner()) addNumber(number);
}

void Logging::append(double number) {
    if (!isOwner()) return;
    char digits[32];
    add(std::string_view(digits, writeNumber(digits, number)));
}

void Logging::append(char character) {
    if (isOwner()) add(character);
}

void Logging::appendPointer(const void* pointer) {
    if (!isOwner()) return;
    if (pointer != nullptr) add("0x");
    addNumber(reinterpret_cast<std::uintptr_t>(pointer), 16);
}

template <typename... Format>
void Logging::addNumber(Format... format) {
    char digits[24];
    add(std::string_view(digits, std::to_chars(digits, std::end(digits), format...).ptr));
}

void Logging::writeHexDump(std::string_view text) {
    add("\n       0  1  2  3  4  5  6  7  8  9");
    char cell[16];
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i % kBytesPerHexLine == 0) {
            std::snprintf(cell, sizeof cell, "\n%4u: ", static_cast<unsigned>(i));
            add(cell);
        }
        // As a signed character, so that 0x80 and above come out sign-extended.
        std::snprintf(cell, sizeof cell, "%x ", static_cast<unsigned>(static_cast<signed char>(text[i])));
        add(cell);
    }
}

void Logging::endStatement() {
    try {
        mBuilding->text += '\n';
        if (mCollection) {
            collect();
        } else {
            rotateWhenFull();
            write(statementText());
        }
    } catch (const std::exception&) {  // out of memory: the line is lost, the lock is not
    }
    releaseStatement();
}

void Logging::abandonStatement() {
    if (!isOwner()) return;
    mIsHexDump = false;
    releaseStatement();
}

void Logging::releaseStatement() {
    constexpr std::size_t kKeptSize = 65536;
    auto& [text, statements] = *mBuilding;
    const bool isNested = statements.back().isNested;
    text.resize(statements.back().begin);
    statements.pop_back();
    if (isNested) return;
    if (text.capacity() > kKeptSize) std::string().swap(text);
    mOwner.store(0, std::memory_order_relaxed);
    mLock->release();
}

// Whatever the order, a thread finds itself here only if it has written that, and nothing since.
bool Logging::isOwner() const { return mOwner.load(std::memory_order_relaxed) == currentThreadId(); }

// Each line by itself and at once: what the log holds when the process dies tells why.
void Logging::write(std::string_view lines) {
    if (mFile && mParameters.mIsLogToFile) mFile->write(lines);
    if (mParameters.mIsLogToCnsl) tellOnConsole(lines);
}

void Logging::rotateWhenFull() {
    if (mFile && mFile->currentSize() >= std::int64_t{mParameters.mMaxSize} * kBytesPerKb) backupLogFile();
}

void Logging::backupLogFile() {
    const std::string backup = mLogFilePath.substr(0, mLogFilePath.rfind('.')) + ".bak";
    mFile.reset();
    if (failedSeriously(std::remove(backup.c_str()))) {
        OB_LOG(LogLevel::ERR) << "'" << backup << "' couldn't be removed!";
        return;
    }
    if (failedSeriously(std::rename(mLogFilePath.c_str(), backup.c_str()))) {
        tellOnConsole("File '" + mLogFilePath + "' couldn't be renamed to '" + backup + "'!\n");
        return;
    }
    auto file = std::make_unique<File>(mLogFilePath);
    if (!file->isOpen()) {
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

void LogPrefix::append(std::size_t count, char c) {
    count = std::min(count, sizeof mText - mSize);
    std::memset(mText + mSize, c, count);
    mSize += count;
}

void LogPrefix::append(std::string_view text) {
    text = text.substr(0, sizeof mText - mSize);
    std::memcpy(mText + mSize, text.data(), text.size());
    mSize += text.size();
}

LogPrefix makeLogPrefix(const LogSource& source, int line, std::string_view className, std::string_view method) {
    return prefixOf(source, line, {className, "::", method});
}

LogStatement::LogStatement(LogLevel level, const LogSource& source, int line, const char* className,
                           const char* function)
    : mIsOpen(gLogging.beginStatement(static_cast<int>(level), source,
                                      prefixOf(source, line, {className, "::", className, "::", function}))),
      mExceptions(std::uncaught_exceptions()) {}

LogStatement::~LogStatement() {
    if (!mIsOpen) return;
    if (std::uncaught_exceptions() > mExceptions) {
        gLogging.abandonStatement();
    } else {
        gLogging.append(std::int64_t{kLogEnd});
    }
}
