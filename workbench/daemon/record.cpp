#include "workbench/daemon/record.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "workbench/pipes/numbers.h"
#include "workbench/pipes/text.h"

namespace workbench {
namespace {

using Clock = std::chrono::steady_clock;

constexpr long long kLongestMs = 24LL * 3600 * 1000;
constexpr char kHeading[] = "# What a device did: milliseconds since the beginning, and the control command for it.\n";
constexpr char kRelease[] = "axes 0 0 0 0 0 0";

// What a record may hold; nothing else reaches an application.
constexpr std::array<std::string_view, 5> kCommands = {"axes", "extras", "event", "settings", "devices"};

}  // namespace

void Recorder::start(const std::string& path) {
    std::ofstream file(pathOf(path), std::ios::binary | std::ios::trunc);
    file << kHeading << std::flush;
    if (!file) throw std::runtime_error("cannot write \"" + path + '"');
    const std::lock_guard lock(mMutex);
    mFile = std::move(file);
    mPath = path;
    mStart = Clock::now();
}

void Recorder::stop() {
    const std::lock_guard lock(mMutex);
    if (mPath.empty()) return;
    mFile.close();
    const bool isWhole = !mFile.fail();
    const std::string path = std::exchange(mPath, {});
    mFile.clear();
    if (!isWhole) throw std::runtime_error("\"" + path + "\" could not be written to its end");
}

void Recorder::note(const std::string& command) {
    const std::lock_guard lock(mMutex);
    if (mPath.empty()) return;
    const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - mStart);
    mFile << time.count() << ' ' << command << std::endl;  // whole lines are there also when the daemon dies
}

std::string Recorder::path() {
    const std::lock_guard lock(mMutex);
    return mPath;
}

std::vector<Player::Line> Player::read(const std::string& path) {
    std::ifstream file(pathOf(path), std::ios::binary);
    if (!file) throw std::runtime_error("cannot read \"" + path + '"');
    std::vector<Line> lines;
    std::string text;
    for (int number = 1; std::getline(file, text); ++number) {
        if (text.ends_with('\r')) text.pop_back();
        if (text.empty() || text.front() == '#') continue;
        const std::string place = path + ':' + std::to_string(number) + ": ";
        std::istringstream words(text);
        std::string time, name;
        words >> time >> name;
        if (std::ranges::find(kCommands, name) == kCommands.end()) {
            throw std::runtime_error(place + "\"" + name + "\" is nothing that a record holds");
        }
        try {
            const long long least = lines.empty() ? 0 : lines.back().time.count();
            lines.push_back({std::chrono::milliseconds(parseNumber(time, least, kLongestMs)),
                             text.substr(text.find(name, time.size()))});
        } catch (const std::runtime_error& failure) {
            throw std::runtime_error(place + failure.what());
        }
    }
    return lines;
}

void Player::start(const std::string& path, bool isStepwise) {
    std::vector<Line> lines = read(path);
    stop();
    const std::lock_guard control(mControl);
    {
        const std::lock_guard lock(mMutex);
        mLines = std::move(lines);
        mDone = 0;
        mRefused = 0;
        mIsPlaying = !mLines.empty();
        mIsStepwise = isStepwise;
    }
    if (!isStepwise) mThread = std::thread([this] { play(); });
}

void Player::stop() {
    const std::lock_guard control(mControl);
    bool wasPlaying;
    {
        const std::lock_guard lock(mMutex);
        wasPlaying = std::exchange(mIsPlaying, false);
        mChanged.notify_all();
    }
    if (mThread.joinable()) mThread.join();
    if (wasPlaying) mRun(kRelease);
}

Player::Line Player::next() {
    Line line = mLines[mDone++];
    if (mDone == mLines.size()) mIsPlaying = false;
    return line;
}

void Player::play() {
    const Clock::time_point start = Clock::now();
    std::unique_lock lock(mMutex);
    while (mIsPlaying) {
        const Clock::time_point due = start + mLines[mDone].time;
        if (mChanged.wait_until(lock, due, [this] { return !mIsPlaying; })) return;
        const Line line = next();
        const bool isLast = !mIsPlaying;
        lock.unlock();
        const bool isDone = mRun(line.command).isOk;
        if (isLast) mRun(kRelease);
        lock.lock();
        if (!isDone) ++mRefused;
    }
}

std::vector<std::string> Player::step(int count) {
    const std::lock_guard control(mControl);
    std::vector<std::string> done;
    for (; count > 0; --count) {
        std::unique_lock lock(mMutex);
        if (!mIsPlaying || !mIsStepwise) {
            if (!done.empty()) break;
            throw std::runtime_error("no record is played stepwise, or it is over");
        }
        const Line line = next();
        const bool isLast = !mIsPlaying;
        lock.unlock();
        const Reply reply = mRun(line.command);
        if (isLast) mRun(kRelease);
        lock.lock();
        if (!reply.isOk) ++mRefused;
        done.push_back(std::to_string(line.time.count()) + ' ' + line.command +
                       (reply.isOk ? "" : " refused: " + reply.error));
    }
    return done;
}

std::string Player::state() {
    const std::lock_guard lock(mMutex);
    if (mLines.empty()) return {};
    return std::to_string(mDone) + '/' + std::to_string(mLines.size()) +
           (mRefused > 0 ? ", " + std::to_string(mRefused) + " refused" : "");
}

}  // namespace workbench
