// The library's side of the pipe to the daemon. Any thread may call any function at any time; a read that waits holds
// up no other operation. Nothing throws but allocation failure, and nothing waits much longer than a second, even on a
// daemon that does not answer, unless the daemon told an operation to hang.
#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <string>

#include "workbench/driver/protocol.h"
#include "workbench/pipes/line_pipe.h"

namespace workbench {

class Connection {
  public:
    // Begins a session with the daemon; one that was open is ended first. False when no daemon answers or it refuses.
    bool connect(int device, const std::string& application);

    // Ends the session, also when the daemon does not answer, and makes a waiting read return. False when there was
    // no session or the daemon refused.
    bool disconnect();

    // Does an operation of the session; the fields of the answer line (none when it has no line), or nothing on
    // failure. `arguments` stand behind the session's number.
    std::optional<Fields> command(Operation operation, const Fields& arguments);

    // Waits for data: the fields of a reading, or nothing on failure (at once when there is no session).
    std::optional<Fields> read(int device);

    // Hands the settings of the library's log to the daemon, now and at each connection to come. Without a daemon
    // they are kept, and that is no failure.
    bool setLogFlags(const Fields& flags);

  private:
    static constexpr int kNoSession = 0;

    Reply begin(int device, const std::string& application);
    Reply ask(Operation operation, int session, Fields arguments);  // mCommandLock is held
    void lose(int session);

    std::mutex mCommandLock;
    LineClient mCommands;             // guarded by mCommandLock
    std::optional<Fields> mLogFlags;  // guarded by mCommandLock; nothing before setLogFlags

    std::mutex mReadLock;
    LineClient mReads;              // guarded by mReadLock; a connection of its own, since reads wait
    int mReadSession = kNoSession;  // that mReads was opened for; guarded by mReadLock

    std::atomic<int> mSession{kNoSession};  // set by connect; reset by disconnect and when the daemon is found gone
};

}  // namespace workbench
