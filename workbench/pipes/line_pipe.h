// Text control over named pipes between the workbench's programs. A request is one line; the answer is any number of
// lines followed by a line "ok" or "error <reason>". Lines end with a line feed and never hold one. An answer line that
// could be taken for the closing one, or that begins with a backslash, travels with a backslash before it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

// "\\.\pipe\<role>_<instance>", where the instance is the environment variable ORBIKON_WORKBENCH ("default" when
// unset): programs started with the same value belong together, so several workbenches can run side by side.
// Roles in use: "obk_daemon" (device data), "obk_control" (steers the daemon), "creo_control" (steers the host).
std::string pipeName(std::string_view role);

struct Reply {
    bool isOk = false;
    std::string error;               // reason when not ok
    std::vector<std::string> lines;  // answer without the closing line
};

// Serves any number of clients, each on a thread of its own. The handler is called on those threads, one request at
// a time a client; it answers the reply to send. Exceptions of the handler become an error reply.
class LineServer {
  public:
    using Handler = std::function<Reply(const std::string& request)>;

    // Makes the handler of one client when it connects; the handler is destroyed when the client has gone, in whatever
    // way. Both on the client's thread.
    using HandlerMaker = std::function<Handler()>;

    // Creates the pipe and starts to serve. Throws std::runtime_error when the pipe cannot be created (for example
    // because another program serves it).
    LineServer(std::string name, Handler handler);
    LineServer(std::string name, HandlerMaker makeHandler);
    ~LineServer();  // stops serving, closes all clients, waits for the threads
    LineServer(const LineServer&) = delete;
    LineServer& operator=(const LineServer&) = delete;

  private:
    struct Impl;
    std::unique_ptr<Impl> mImpl;
};

// One connection to a LineServer. Not thread-safe.
class LineClient {
  public:
    LineClient() = default;
    ~LineClient();
    LineClient(const LineClient&) = delete;
    LineClient& operator=(const LineClient&) = delete;

    // Connects, waiting up to the time-out for the server to appear.
    bool open(const std::string& name, int timeoutMs);
    void close();
    bool isOpen() const { return mPipe != nullptr; }

    // Sends a request and waits for the answer, `timeoutMs` at most. Not ok with a reason when the server is gone,
    // does not answer in time (the connection is then closed) or refuses.
    Reply ask(const std::string& request, int timeoutMs = 20000);

  private:
    void* mPipe = nullptr;  // Windows handle, overlapped
    std::string mReceived;  // bytes behind the last complete line
};

}  // namespace workbench
