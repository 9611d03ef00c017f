// The process-wide log. A statement is one expression:
//
//     static constexpr char kLogClass[] = "CreoProxy";   // once in each source file
//     OB_LOG(LogLevel::DBG) << "timerIntvl: " << interval;
//
// and comes out as one line of fixed columns:
//
//     time|level|thread|file|line|class and method|message
//
// A statement whose level is off evaluates nothing behind the macro. Statements of several threads never mix. A
// statement is skipped silently before the global logger exists and after it is gone.
#pragma once

#include <atomic>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "OB_Daemon/src/mutex.h"
#include "OB_Daemon/src/without_log.h"

enum class LogLevel : int { ERR, WRN, CRT, TRC, DCM, ICM, INF, DBG, TMP };

// Integers that act as commands when they are written into a statement.
inline constexpr int kLogEnd = 314159;      // ends the statement: writes the line and releases the lock
inline constexpr int kLogHexDump = 271828;  // makes the next string of the statement come out as a hex dump

// Section LOGGING of the settings file.
struct LoggingParameters {
    std::string mSectionName = "LOGGING";
    std::string mSettingsDirPath;                  // folder of a log file given by its bare name
    std::string mLogFile = "Creo_plugin_log.txt";  // name or full path
    std::int32_t mMaxSize = 5000;                  // kB of 1000 bytes; a larger file is rotated
    bool mIsLogToFile = false;
    bool mIsLogToCnsl = false;
    bool mIsWarning = false;
    bool mIsCreation = false;
    bool mIsTrace = false;
    bool mIsDevCom = false;
    bool mIsIntCom = false;
    bool mIsInfo = false;
    bool mIsDebug = false;
    bool mIsTmp = false;
    std::string mExclFileToLog;  // when not empty, only statements of the source file with this name are logged
};

// Any thread may call any member, except construction and destruction. Nothing throws, also not for lack of memory: the
// line that it concerns is lost or cut then.
class Logging {
  public:
    Logging();
    // Waits for nobody: while another thread is inside a statement, it does the same as leaveToProcessEnd().
    ~Logging();
    Logging(const Logging&) = delete;
    Logging& operator=(const Logging&) = delete;

    // Takes the parameters over and reopens the log file. May be called again.
    void init(const LoggingParameters& parameters);

    // Keeps all statements from here on, whatever their level, for a log whose parameters are not known yet: init(), or
    // stopCollecting() at the latest, writes those that it has switched on, in order. Of a number beyond any reasonable
    // one only the first are kept, and a line says how many were dropped.
    void startCollecting();
    void stopCollecting();

    // Sets the folder of a log file given by its bare name, for the time until init().
    void setSettingsDirPath(const std::string& path);

    // Whether a statement of this level could be written at all: the cheap test before a statement is built.
    bool isEnabled(int level) const {
        return level >= 0 && level < 32 && (mEnabledLevels.load(std::memory_order_relaxed) >> level & 1u) != 0;
    }

    // Begins a statement: answers true when it is to be written, and has then taken the statement lock and written
    // the line head. The calling thread ends it by append(kLogEnd) or gives it up by abandonStatement(). A thread may
    // begin a statement inside one of its own; the inner one becomes a line of its own.
    bool beginStatement(int level, std::string_view sourceFile, std::string_view prefix);

    // Appends to the statement that the calling thread has begun. Ignored when it has begun none.
    void append(std::string_view text);
    void append(std::int64_t number);
    void append(std::uint64_t number);  // one that std::int64_t does not hold
    std::ostream* statementStream();    // for all other types; null when the thread has begun no statement

    // Gives the statement up: nothing is written, the lock is released.
    void abandonStatement();

    // Renames the log file to its backup (extension .bak) and starts a fresh one. The caller has begun a statement.
    void backupLogFile();

    // For the end of a process, when the other threads are gone wherever they were, perhaps inside the lock or the
    // file: nothing is logged any more, and destruction leaves all that alone. Every line is in the file already.
    void leaveToProcessEnd();

  private:
    void switchLevels();
    void openLogFile();
    void tellUnopened();
    void collect(std::string text);
    struct Collection;  // statements before the parameters are known
    void writeCollected(std::unique_ptr<Collection> collection);
    void writeHeader();
    void writeLine(const std::string& text);
    void endStatement();
    void releaseStatement();
    bool isOwner() const;
    bool passesFileFilter(std::string_view sourceFile) const;
    void interruptStatement();
    void writeHexDump(std::string_view text);
    template <typename Number>
    void writeNumber(Number number);

    LoggingParameters mParameters;
    std::string mLogFilePath;
    std::unique_ptr<std::ostringstream> mBuffer;  // statement being built; guarded by mMutex, as all above
    std::unique_ptr<std::ofstream> mFile;         // null while nothing is logged to a file
    std::unique_ptr<Mutex> mMutex = std::make_unique<Mutex>();  // null after leaveToProcessEnd()
    bool mIsHexDump = false;
    std::string mUnopenedPath;  // of the last log file that could not be opened, empty after one that could

    struct Origin {
        int level = 0;
        std::string sourceFile;
    };
    Origin mOrigin;                           // of the statement being built, told while they are collected only
    std::unique_ptr<Collection> mCollection;  // null unless they are collected

    struct Outer;                                   // statement that a nested one interrupts
    std::unique_ptr<Outer> mOuter;                  // null unless a nested statement is being built
    std::atomic<std::uint32_t> mOwner{0};           // thread that holds mMutex, 0 = none
    std::atomic<std::uint32_t> mEnabledLevels{1u};  // bit n = level n is on
};

// Builds the columns source file, line, class and method. `method` holds the class name, "::" and the method's name.
std::string makeLogPrefix(std::string_view sourceFile, int line, std::string_view className, std::string_view method);

// The date in the log's header, as "Sat Nov 21 2026": of the local time zone, English whatever the locale is.
std::string logDate(std::time_t time);

// kLogEnd exactly while the global logger is usable.
extern std::atomic<std::uint32_t> gLoggerAlive;
extern Logging gLogging;

// One statement of the global logger; its destructor ends it. When building the message throws, the statement is
// given up and the lock released.
class LogStatement {
  public:
    LogStatement(LogLevel level, const char* sourceFile, int line, const char* className, const char* function);
    ~LogStatement();
    LogStatement(const LogStatement&) = delete;
    LogStatement& operator=(const LogStatement&) = delete;

    LogStatement& self() { return *this; }

    template <typename T>
    LogStatement& operator<<(const T& value) {
        if (!mIsOpen) return *this;
        if constexpr (std::is_same_v<T, bool>) {
            gLogging.append(std::int64_t{value});
        } else if constexpr (std::is_convertible_v<const T&, std::string_view>) {
            gLogging.append(std::string_view(value));
        } else if constexpr (std::is_integral_v<T> && sizeof(T) > 1) {
            if (!std::in_range<std::int64_t>(value)) {
                gLogging.append(static_cast<std::uint64_t>(value));
                return *this;
            }
            gLogging.append(static_cast<std::int64_t>(value));
            // The end mark has ended this statement; what follows must not go into one around it.
            if (std::cmp_equal(value, kLogEnd)) mIsOpen = false;
        } else if (std::ostream* out = gLogging.statementStream()) {
            *out << value;
        }
        return *this;
    }

    static bool isWanted(LogLevel level) {
        return gLoggerAlive.load(std::memory_order_relaxed) == static_cast<std::uint32_t>(kLogEnd) &&
               gLogging.isEnabled(static_cast<int>(level));
    }

  private:
    bool mIsOpen;
    int mExceptions;  // in flight when the statement began
};

// Makes the statement an expression of type void, so that it can stand behind "?:".
struct LogVoid {
    void operator&(const LogStatement&) const {}
};

// NOLINTBEGIN(bugprone-macro-parentheses): the message follows the macro
#define OB_LOG(level) OB_LOG_IN(level, __func__)
// The same inside a lambda, whose own name would tell nothing: `method` is the method that the lambda belongs to.
#define OB_LOG_IN(level, method) OB_LOG_AT(level, __FILE__, __LINE__, kLogClass, method)
// The same for another place than the statement's own.
#define OB_LOG_AT(level, file, line, className, method)   \
    !LogStatement::isWanted(level) ? static_cast<void>(0) \
                                   : LogVoid{} & LogStatement(level, file, line, className, method).self()
// NOLINTEND(bugprone-macro-parentheses)
