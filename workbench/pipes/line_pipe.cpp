#include "workbench/pipes/line_pipe.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <exception>
#include <list>
#include <stdexcept>
#include <thread>

#include "workbench/pipes/overlapped.h"

namespace workbench {
namespace {

constexpr std::size_t kMaxRequest = 1 << 20;  // a client that sends more without a line end is dropped
constexpr DWORD kPipeBuffer = 1 << 16;
constexpr DWORD kLastWriteMs = 1000;  // what a client gets to take its answer when the server stops
constexpr DWORD kRetryMs = 10;
constexpr std::string_view kOk = "ok";
constexpr std::string_view kError = "error";

std::string withoutLineEnds(std::string text) {
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return text;
}

bool looksLikeClosing(std::string_view line) {
    return line == kOk || line == kError || line.starts_with(std::string(kError) + ' ');
}

std::string encode(const Reply& reply) {
    std::string text;
    for (const std::string& answer : reply.lines) {
        const std::string line = withoutLineEnds(answer);
        if (looksLikeClosing(line) || line.starts_with('\\')) text += '\\';
        text += line + '\n';
    }
    return text + (reply.isOk ? std::string(kOk) : std::string(kError) + ' ' + withoutLineEnds(reply.error)) + '\n';
}

// Takes one line of an answer over; true when it was the closing one.
bool decode(std::string line, Reply& reply) {
    if (looksLikeClosing(line)) {
        reply.isOk = line == kOk;
        if (line.size() > kError.size()) reply.error = line.substr(kError.size() + 1);
        return true;
    }
    if (line.starts_with('\\')) line.erase(0, 1);
    reply.lines.push_back(std::move(line));
    return false;
}

Handle createInstance(const std::string& name) {
    return Handle(CreateNamedPipeA(name.c_str(), PIPE_ACCESS_DUPLEX | FILE_FLAG_OVERLAPPED,
                                   PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT | PIPE_REJECT_REMOTE_CLIENTS,
                                   PIPE_UNLIMITED_INSTANCES, kPipeBuffer, kPipeBuffer, 0, nullptr));
}

// The mark that a pipe is served. It ends with the server's process; a pipe instance would outlive a killed server
// for as long as a client keeps its end open, and then a restarted server could not tell.
Handle claim(const std::string& name) {
    std::string mark = "Local\\served " + name;
    std::replace(mark.begin() + 6, mark.end(), '\\', '/');  // behind "Local\" a name holds no backslash
    Handle handle(CreateMutexA(nullptr, FALSE, mark.c_str()));
    const bool isTaken = GetLastError() == ERROR_ALREADY_EXISTS;
    if (!handle || isTaken) throw std::runtime_error(name + " is already served by another program");
    return handle;
}

DWORD remaining(ULONGLONG deadline) {
    const ULONGLONG now = GetTickCount64();
    return now < deadline ? static_cast<DWORD>(deadline - now) : 0;
}

}  // namespace

std::string pipeName(std::string_view role) {
    char instance[128];
    const DWORD length = GetEnvironmentVariableA("ORBIKON_WORKBENCH", instance, sizeof instance);
    const bool isSet = length > 0 && length < sizeof instance;
    return R"(\\.\pipe\)" + std::string(role) + '_' + (isSet ? instance : "default");
}

struct LineServer::Impl {
    struct Client {
        Handle pipe;
        std::atomic<bool> isDone{false};
        std::thread thread;
    };

    std::string name;
    HandlerMaker makeHandler;
    Handle mark;
    Handle stop = makeEvent();
    std::list<Client> clients;  // belongs to the acceptor while that runs
    std::thread acceptor;

    void accept(Handle instance);
    void welcome(Handle instance);
    void serve(Client& client);
    static Reply answer(const Handler& handler, const std::string& request);
    bool isStopping() const { return WaitForSingleObject(stop.get(), 0) == WAIT_OBJECT_0; }
    bool send(HANDLE pipe, const Reply& reply);
    void removeFinished();
};

LineServer::LineServer(std::string name, Handler handler)
    : LineServer(std::move(name), HandlerMaker([handler = std::move(handler)] { return handler; })) {}

LineServer::LineServer(std::string name, HandlerMaker makeHandler) : mImpl(std::make_unique<Impl>()) {
    mImpl->name = std::move(name);
    mImpl->makeHandler = std::move(makeHandler);
    mImpl->mark = claim(mImpl->name);
    Handle first = createInstance(mImpl->name);
    if (!first) throw std::runtime_error(mImpl->name + " cannot be created, error " + std::to_string(GetLastError()));
    mImpl->acceptor = std::thread(&Impl::accept, mImpl.get(), std::move(first));
}

LineServer::~LineServer() {
    SetEvent(mImpl->stop.get());
    mImpl->acceptor.join();
    for (Impl::Client& client : mImpl->clients) client.thread.join();
}

void LineServer::Impl::accept(Handle instance) {
    while (!isStopping()) {
        if (!instance) {
            instance = createInstance(name);
            if (!instance) WaitForSingleObject(stop.get(), kRetryMs);
            continue;
        }
        // A client that came and went again breaks the instance; the next one is fresh.
        const Transfer result = awaitClient(instance.get(), stop.get());
        if (result == Transfer::done) {
            Handle connected = std::move(instance);
            instance = createInstance(name);
            welcome(std::move(connected));
        } else {
            instance.reset();
        }
    }
}

void LineServer::Impl::welcome(Handle instance) {
    removeFinished();
    Client& client = clients.emplace_back();
    client.pipe = std::move(instance);
    try {
        client.thread = std::thread(&Impl::serve, this, std::ref(client));
    } catch (const std::exception&) {
        clients.pop_back();  // no thread left for it: the client finds its connection closed
    }
}

void LineServer::Impl::removeFinished() {
    for (auto client = clients.begin(); client != clients.end();) {
        if (!client->isDone) {
            ++client;
            continue;
        }
        client->thread.join();
        client = clients.erase(client);
    }
}

void LineServer::Impl::serve(Client& client) {
    Handler handler = makeHandler();
    std::string received;
    std::string request;
    bool isConnected = true;
    // A client that asks without a pause must not hide the stop.
    while (isConnected && !isStopping() &&
           readSome(client.pipe.get(), received, stop.get(), INFINITE) == Transfer::done) {
        while (isConnected && takeLine(received, request))
            isConnected = send(client.pipe.get(), answer(handler, request));
        if (received.size() > kMaxRequest) isConnected = false;
    }
    client.pipe.reset();
    handler = nullptr;
    client.isDone = true;
}

Reply LineServer::Impl::answer(const Handler& handler, const std::string& request) {
    try {
        return handler(request);
    } catch (const std::exception& failure) {
        return {.isOk = false, .error = failure.what(), .lines = {}};
    } catch (...) {
        return {.isOk = false, .error = "unknown failure", .lines = {}};
    }
}

bool LineServer::Impl::send(HANDLE pipe, const Reply& reply) {
    // A request that the server itself stops on ("quit") still gets its answer.
    const std::string text = encode(reply);
    const Transfer result =
        isStopping() ? writeAll(pipe, text, nullptr, kLastWriteMs) : writeAll(pipe, text, stop.get(), INFINITE);
    return result == Transfer::done;
}

LineClient::~LineClient() { close(); }

bool LineClient::open(const std::string& name, int timeoutMs) {
    close();
    const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(std::max(timeoutMs, 0));
    for (;;) {
        Handle pipe(CreateFileA(name.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_OVERLAPPED | SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION, nullptr));
        if (pipe) {
            mPipe = pipe.release();
            return true;
        }
        const DWORD left = remaining(deadline);
        if (left == 0) return false;
        Sleep(std::min(left, kRetryMs));
    }
}

void LineClient::close() {
    Handle(mPipe).reset();
    mPipe = nullptr;
    mReceived.clear();
}

Reply LineClient::ask(const std::string& request, int timeoutMs) {
    Reply reply;
    const auto refuse = [&reply](const char* reason) {
        reply = {.isOk = false, .error = reason, .lines = {}};
        return reply;
    };
    if (!isOpen()) return refuse("not connected");
    if (request.find('\n') != std::string::npos) return refuse("a request is one line");

    const ULONGLONG deadline = GetTickCount64() + static_cast<ULONGLONG>(std::max(timeoutMs, 0));
    Transfer result = writeAll(mPipe, request + '\n', nullptr, remaining(deadline));
    std::string line;
    while (result == Transfer::done) {
        while (takeLine(mReceived, line)) {
            if (decode(line, reply)) return reply;
        }
        result = readSome(mPipe, mReceived, nullptr, remaining(deadline));
    }
    close();
    return refuse(result == Transfer::timedOut ? "no answer in time" : "the server is gone");
}

}  // namespace workbench
