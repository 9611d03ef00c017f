// The panel's connection to the daemon, on a thread of its own: whoever pushes the cap never waits for a pipe.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "workbench/panel/core/cap_state.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

// What is known of the daemon.
struct DaemonState {
    bool isConnected = false;
    std::map<std::string, std::string> status;  // as the daemon's "status" answers it
    std::vector<std::string> applications;      // "process|application|mode"
    std::string error;                          // of the last command that was refused, until one is done

    std::string value(const std::string& key) const;
    bool operator==(const DaemonState&) const = default;
};

class DaemonClient {
  public:
    // `changed` is called on the client's thread whenever the state is another one. What the client sets is taken back
    // by the daemon once the connection ends, in whatever way.
    explicit DaemonClient(std::function<void()> changed);
    ~DaemonClient();
    DaemonClient(const DaemonClient&) = delete;
    DaemonClient& operator=(const DaemonClient&) = delete;

    // Any thread; none of them waits.
    void setAxes(const CapAxes& axes);      // only the newest counts
    void send(const std::string& command);  // in order; dropped, with an error, while there is no daemon
    // The one command that is sent with each new connection, too.
    void setBinding(const std::string& command);
    DaemonState state();

  private:
    void run();
    void connect();
    bool sendPending();
    void poll();
    bool ask(const std::string& command, bool isTold, std::vector<std::string>* lines = nullptr);
    void update(const std::function<void(DaemonState&)>& change);

    const std::function<void()> mChanged;
    LineClient mPipe;   // of the thread
    std::mutex mMutex;  // guards everything below
    std::condition_variable mWoken;
    bool mIsEnding = false;
    std::optional<CapAxes> mAxes;  // not sent yet
    std::deque<std::string> mCommands;
    std::string mBinding;
    bool mIsBindingDue = false;  // this connection has not heard of it yet
    DaemonState mState;
    std::thread mThread;
};

}  // namespace workbench
