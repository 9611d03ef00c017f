// Records what the device does to applications, and plays it back.
//
// A record is text, a line each: milliseconds since its beginning, and the control command that does it again:
//
//     0 axes 0 0 50 0 0 0
//     312 event 131104
//     900 axes 0 0 0 0 0 0
//
// Empty lines and lines that begin with "#" are skipped, so a record can be shortened and annotated by hand.
#pragma once

#include <chrono>
#include <condition_variable>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "workbench/pipes/line_pipe.h"

namespace workbench {

// Any thread.
class Recorder {
  public:
    // Throws std::runtime_error when the file cannot be made. A record that runs ends.
    void start(const std::string& path);
    // Throws std::runtime_error when the record did not fit into its file.
    void stop();
    void note(const std::string& command);  // one line, with the time; nothing while no record runs
    std::string path();                     // empty = no record runs

  private:
    std::mutex mMutex;  // guards everything below
    std::ofstream mFile;
    std::string mPath;
    std::chrono::steady_clock::time_point mStart;
};

// Any thread. The cap is released when a record has come to its end, or is given up.
class Player {
  public:
    using Run = std::function<Reply(const std::string& command)>;

    explicit Player(Run run) : mRun(std::move(run)) {}
    ~Player() { stop(); }
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    // Reads the whole record first; throws std::runtime_error with the place of what is no line of a record. Plays at
    // the times of the record, or as step() asks.
    void start(const std::string& path, bool isStepwise);
    void stop();
    // Does the next lines of a stepwise record, `count` at most; each with its time, as they are in the record. Throws
    // std::runtime_error when no such record is being played, or it is over.
    std::vector<std::string> step(int count);
    std::string state();  // "7/120" (lines done, of how many), with ", 2 refused"; empty = nothing was played

  private:
    struct Line {
        std::chrono::milliseconds time;
        std::string command;
    };

    static std::vector<Line> read(const std::string& path);
    void play();
    Line next();  // with mMutex held

    const Run mRun;
    std::mutex mControl;  // one start, stop or step at a time; taken before mMutex
    std::mutex mMutex;    // guards everything below
    std::condition_variable mChanged;
    std::vector<Line> mLines;
    std::size_t mDone = 0;
    int mRefused = 0;
    bool mIsPlaying = false;
    bool mIsStepwise = false;
    std::thread mThread;  // of a record played in real time; belongs to who holds mControl
};

}  // namespace workbench
