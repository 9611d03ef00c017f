#include "workbench/panel/client/daemon_client.h"

#include <chrono>
#include <utility>

namespace workbench {
namespace {

constexpr int kAnswerMs = 2000;
constexpr std::chrono::milliseconds kPoll{100};
constexpr std::chrono::milliseconds kRetry{250};

}  // namespace

std::string DaemonState::value(const std::string& key) const {
    const auto found = status.find(key);
    return found == status.end() ? std::string() : found->second;
}

DaemonClient::DaemonClient(std::function<void()> changed) : mChanged(std::move(changed)) {
    mThread = std::thread([this] { run(); });
}

DaemonClient::~DaemonClient() {
    {
        const std::lock_guard lock(mMutex);
        mIsEnding = true;
        mWoken.notify_all();
    }
    mThread.join();
}

void DaemonClient::setAxes(const CapAxes& axes) {
    const std::lock_guard lock(mMutex);
    mAxes = axes;
    mWoken.notify_all();
}

void DaemonClient::send(const std::string& command) {
    const std::lock_guard lock(mMutex);
    mCommands.push_back(command);
    mWoken.notify_all();
}

void DaemonClient::setBinding(const std::string& command) {
    const std::lock_guard lock(mMutex);
    mBinding = command;
    mIsBindingDue = true;
    mWoken.notify_all();
}

DaemonState DaemonClient::state() {
    const std::lock_guard lock(mMutex);
    return mState;
}

void DaemonClient::run() {
    auto nextPoll = std::chrono::steady_clock::now();
    for (;;) {
        if (!mPipe.isOpen()) connect();
        if (mPipe.isOpen() && std::chrono::steady_clock::now() >= nextPoll) {
            poll();
            nextPoll = std::chrono::steady_clock::now() + kPoll;
        }
        {
            std::unique_lock lock(mMutex);
            mWoken.wait_for(lock, mPipe.isOpen() ? kPoll : kRetry, [this] {
                return mIsEnding || mAxes || !mCommands.empty() || (mIsBindingDue && mPipe.isOpen());
            });
            if (mIsEnding) break;
        }
        while (sendPending()) {
        }
    }
    mPipe.close();  // the daemon takes back what was set
}

void DaemonClient::connect() {
    if (!mPipe.open(pipeName("obk_control"), 0)) return;
    {
        const std::lock_guard lock(mMutex);
        mAxes.reset();  // pushed at a daemon that is gone
        mIsBindingDue = !mBinding.empty();
    }
    ask("take-back on", true);
}

// Sends one thing; answers whether there was one.
bool DaemonClient::sendPending() {
    std::string command;
    {
        const std::lock_guard lock(mMutex);
        if (mIsEnding) return false;
        if (const auto axes = std::exchange(mAxes, std::nullopt)) {
            command = "axes";
            for (const int axis : *axes) command += ' ' + std::to_string(axis);
        } else if (mIsBindingDue && mPipe.isOpen()) {
            mIsBindingDue = false;
            command = mBinding;
        } else if (!mCommands.empty()) {
            command = std::move(mCommands.front());
            mCommands.pop_front();
        }
    }
    if (command.empty()) return false;
    ask(command, !command.starts_with("axes"));
    return true;
}

void DaemonClient::poll() {
    std::vector<std::string> status, applications;
    if (!ask("status", false, &status) || !ask("applications", false, &applications)) return;
    update([&](DaemonState& state) {
        state.isConnected = true;
        state.status.clear();
        for (const std::string& line : status) {
            const std::size_t equals = line.find('=');
            if (equals != std::string::npos) state.status[line.substr(0, equals)] = line.substr(equals + 1);
        }
        state.applications = std::move(applications);
    });
}

// `isTold`: what becomes of the command is shown.
bool DaemonClient::ask(const std::string& command, bool isTold, std::vector<std::string>* lines) {
    Reply reply = mPipe.ask(command, kAnswerMs);
    if (lines != nullptr) *lines = std::move(reply.lines);
    if (!mPipe.isOpen()) {
        update([&](DaemonState& state) {
            const std::string error = isTold ? reply.error : state.error;
            state = {};
            state.error = error;
        });
    } else if (isTold) {
        update([&](DaemonState& state) { state.error = reply.error; });
    }
    return reply.isOk;
}

void DaemonClient::update(const std::function<void(DaemonState&)>& change) {
    {
        const std::lock_guard lock(mMutex);
        const DaemonState before = mState;
        change(mState);
        if (mState == before) return;
    }
    mChanged();
}

}  // namespace workbench
