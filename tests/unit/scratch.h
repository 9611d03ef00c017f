// A folder of its own for a test, files in it, environment variables, and waiting for a condition.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "OB_Daemon/src/logging.h"

#ifdef _WIN32
#include <process.h>
inline int processId() { return _getpid(); }
#else
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
inline int processId() { return getpid(); }

// For the time of a scope no file can grow beyond that size, as if the disk were full then.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &mBefore);
        rlimit small = mBefore;
        small.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &mBefore); }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit mBefore{};
};
#endif

// Null: unset.
inline void setVariable(const char* name, const char* value) {
#ifdef _WIN32
    _putenv_s(name, value != nullptr ? value : "");
#else
    if (value != nullptr) {
        setenv(name, value, 1);
    } else {
        unsetenv(name);
    }
#endif
}

// A fresh folder in the system's one for such, removed at the end of the scope. Not in the checkout, whose name may
// have letters that a narrow path does not hold.
class ScratchFolder {
  public:
    ScratchFolder()
        : mPath(base() / ("orbikon-test-" + std::to_string(processId()) + "-" + std::to_string(++count()))) {
        std::filesystem::remove_all(mPath);
        std::filesystem::create_directories(mPath);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(mPath, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path() const { return mPath.string(); }
    std::string file(const std::string& name) const { return path() + kPathSeparator + name; }

  private:
    static const std::filesystem::path& base() {
        static const std::filesystem::path folder =
            std::filesystem::temp_directory_path();  // before a test sets another
        return folder;
    }
    static int& count() {
        static int number = 0;
        return number;
    }
    std::filesystem::path mPath;
};

// The bytes of a file; empty when it cannot be read.
inline std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A text's bytes in a file that is written in text mode.
inline std::string inTextMode([[maybe_unused]] std::string text) {
#ifdef _WIN32
    for (auto at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) text.insert(at, 1, '\r');
#endif
    return text;
}

// The text of a file with line ends as "\n".
inline std::string textOf(const std::string& path) {
    std::string text = bytesOf(path);
    std::erase(text, '\r');
    return text;
}

// Names of the files and folders in a folder, in order.
inline std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t begin = 0;
    for (auto end = text.find('\n'); end != std::string::npos; end = text.find('\n', begin)) {
        lines.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    if (begin < text.size()) lines.push_back(text.substr(begin));
    return lines;
}

// What a log holds: "TAG message" for each line of it.
inline std::vector<std::string> logged(const std::string& path) {
    constexpr std::size_t kOtherColumns = 16 + 2 + 4 + 2 + 32 + 2;
    std::vector<std::string> result;
    for (const auto& line : linesOf(textOf(path))) {
        if (line.size() < 16 || line[2] != ':' || line[12] != '|') continue;
        const std::size_t begin = line.find('|', 17) + 1 + kOtherColumns;  // the thread's column may be longer
        result.push_back(line.substr(13, 3) + " " + line.substr(begin));
    }
    return result;
}

inline void writeFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// Waits until the condition holds. False after a long time.
template <typename Condition>
bool waitUntil(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
