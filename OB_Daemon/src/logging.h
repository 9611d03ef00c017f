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
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

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

// The source file that a statement stands in. Worked out when the program is compiled, so that a statement costs
// nothing for it. The path is text that lasts.
class LogSource {
  public:
    // NOLINTNEXTLINE(google-explicit-constructor): written as the path alone
    constexpr LogSource(const char* path)
        : mName(behindLast(path, std::string_view(path).find('/') != std::string_view::npos ? '/' : '\\')),
          mColumnName(behindLast(path, '\\')),
          mNameHash(hashOf(mName)) {}
    static consteval LogSource compiled(const char* path) { return path; }

    constexpr std::string_view name() const { return mName; }              // that the file filter compares
    constexpr std::string_view columnName() const { return mColumnName; }  // that the log's column shows
    constexpr std::uint32_t nameHash() const { return mNameHash; }

    // Never 0.
    static constexpr std::uint32_t hashOf(std::string_view name) {
        std::uint32_t hash = 2166136261u;  // FNV-1a
        for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
        return hash != 0 ? hash : 1;
    }

  private:
    static constexpr std::string_view behindLast(std::string_view path, char separator) {
        return path.substr(path.rfind(separator) + 1);  // all of it when there is none
    }

    std::string_view mName, mColumnName;
    std::uint32_t mNameHash;
};

// The columns source file, line, class and method: a text that needs no memory but its own.
class LogPrefix {
  public:
    // NOLINTNEXTLINE(google-explicit-constructor): it is a text
    operator std::string_view() const { return {mText, mSize}; }
    void append(std::size_t count, char c);
    void append(std::string_view text);

  private:
    char mText[72];  // 16 + 2 + a number + 2 + 32
    std::size_t mSize = 0;
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
    // The same for its source file, so that what is filtered out costs neither prefix nor lock. False is certain.
    bool mayPassFileFilter(const LogSource& source) const {
        const std::uint32_t wanted = mWantedFile.load(std::memory_order_relaxed);
        return wanted == kAnyFile || wanted == source.nameHash();
    }

    // Begins a statement: answers true when it is to be written, and has then taken the statement lock and written
    // the line head. The calling thread ends it by append(kLogEnd) or gives it up by abandonStatement(). A thread may
    // begin a statement inside one of its own; the inner one becomes a line of its own.
    bool beginStatement(int level, const LogSource& source, std::string_view prefix);

    // Appends to the statement that the calling thread has begun. Ignored when it has begun none.
    void append(std::string_view text);
    void append(std::int64_t number);
    void append(std::uint64_t number);  // one that std::int64_t does not hold
    void append(double number);         // with six digits, as "0.5" or "1e+06"
    void append(char character);
    void appendPointer(const void* pointer);  // as "0x1f"; 0 when it is null

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
    void collect();
    struct Collection;  // statements before the parameters are known
    void writeCollected(std::unique_ptr<Collection> collection);
    void writeHeader();
    void write(std::string_view lines);
    void rotateWhenFull();
    void endStatement();
    void releaseStatement();
    bool isOwner() const;
    bool passesFileFilter(std::string_view fileName) const;
    void writeHead(int level, std::string_view prefix);
    void writeHexDump(std::string_view text);
    std::string_view statementText() const;
    template <typename Text>
    void add(const Text& text);
    template <typename... Format>
    void addNumber(Format... format);

    LoggingParameters mParameters;
    std::string mLogFilePath;
    struct File;
    std::unique_ptr<File> mFile;  // null while nothing is logged to a file; guarded by mLock, as all above
    struct Building;
    std::unique_ptr<Building> mBuilding;  // the statements being built
    struct Lock;
    std::unique_ptr<Lock> mLock;  // null after leaveToProcessEnd()
    bool mIsHexDump = false;
    std::string mUnopenedPath;  // of the last log file that could not be opened, empty after one that could
    std::unique_ptr<Collection> mCollection;  // null unless they are collected

    static constexpr std::uint32_t kAnyFile = 0;
    std::atomic<std::uint32_t> mWantedFile{kAnyFile};  // hash of the exclusively logged file's name
    std::atomic<std::uint32_t> mOwner{0};              // thread that holds mLock, 0 = none
    std::atomic<std::uint32_t> mEnabledLevels{1u};     // bit n = level n is on
};

// Builds the columns source file, line, class and method. `method` holds the class name, "::" and the method's name.
LogPrefix makeLogPrefix(const LogSource& source, int line, std::string_view className, std::string_view method);

// The date in the log's header, as "Sat Nov 21 2026": of the local time zone, English whatever the locale is.
std::string logDate(std::time_t time);

// kLogEnd exactly while the global logger is usable.
extern std::atomic<std::uint32_t> gLoggerAlive;
extern Logging gLogging;

// One statement of the global logger; its destructor ends it. When building the message throws, the statement is
// given up and the lock released.
class LogStatement {
  public:
    LogStatement(LogLevel level, const LogSource& source, int line, const char* className, const char* function);
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
        } else if constexpr (std::is_integral_v<T>) {
            gLogging.append(static_cast<char>(value));
        } else if constexpr (std::is_floating_point_v<T>) {
            gLogging.append(static_cast<double>(value));
        } else {
            gLogging.appendPointer(value);
        }
        return *this;
    }

    static bool isWanted(LogLevel level, const LogSource& source) {
        return gLoggerAlive.load(std::memory_order_relaxed) == static_cast<std::uint32_t>(kLogEnd) &&
               gLogging.isEnabled(static_cast<int>(level)) && gLogging.mayPassFileFilter(source);
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
#define OB_LOG_IN(level, method) OB_LOG_AT(level, LogSource::compiled(__FILE__), __LINE__, kLogClass, method)
// The same for another place than the statement's own.
#define OB_LOG_AT(level, source, line, className, method)         \
    !LogStatement::isWanted(level, source) ? static_cast<void>(0) \
                                           : LogVoid{} & LogStatement(level, source, line, className, method).self()
// NOLINTEND(bugprone-macro-parentheses)
