#include "workbench/driver/connection.h"

#include <windows.h>

#include <charconv>

namespace workbench {
namespace {

constexpr int kOpenMs = 100;     // bridges the moments in which a serving daemon has no free pipe instance
constexpr int kAnswerMs = 1000;  // for a daemon that is there but does not answer

std::string request(Operation operation, const Fields& arguments) {
    Fields fields{std::string(kOperationNames[static_cast<std::size_t>(operation)])};
    fields.insert(fields.end(), arguments.begin(), arguments.end());
    return joinFields(fields);
}

void dispatchMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            return;
        }
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// Suffers what the daemon has put before an answer. To be called without a lock of the commands: other threads'
// operations go on.
Reply suffered(Reply reply) {
    while (!reply.lines.empty() && reply.lines.front().starts_with('!')) {
        const std::string line = reply.lines.front();
        reply.lines.erase(reply.lines.begin());
        if (line == kPump) dispatchMessages();
        if (!line.starts_with(kHang)) continue;
        DWORD ms = 0;
        std::from_chars(line.data() + kHang.size(), line.data() + line.size(), ms);
        Sleep(ms);
    }
    return reply;
}

std::optional<Fields> fieldsOf(const Reply& reply) {
    if (!reply.isOk) return std::nullopt;
    return reply.lines.empty() ? Fields{} : splitFields(reply.lines.front());
}

}  // namespace

bool Connection::connect(int device, const std::string& application) {
    return suffered(begin(device, application)).isOk;
}

Reply Connection::begin(int device, const std::string& application) {
    const std::lock_guard lock(mCommandLock);
    if (const int old = mSession.exchange(kNoSession); old != kNoSession) ask(Operation::disconnect, old, {});
    // Always anew: the pipe that is open may lead to a daemon that was ended since.
    if (!mCommands.open(pipeName(kDataRole), kOpenMs)) return {};

    const Fields arguments{std::to_string(GetCurrentProcessId()), std::to_string(device), application};
    Reply reply = mCommands.ask(request(Operation::connect, arguments), kAnswerMs);
    if (!reply.isOk || reply.lines.empty()) return reply;
    const std::string& text = reply.lines.back();
    int session = kNoSession;
    std::from_chars(text.data(), text.data() + text.size(), session);
    reply.isOk = session != kNoSession;
    if (reply.isOk && mLogFlags) mCommands.ask(request(Operation::setDllLogFlags, *mLogFlags), kAnswerMs);
    mSession = session;
    return reply;
}

bool Connection::disconnect() {
    // Reset before the lock: a read that is between two waits must see it, whatever the daemon does.
    const int session = mSession.exchange(kNoSession);
    if (session == kNoSession) return false;
    Reply reply;
    {
        const std::lock_guard lock(mCommandLock);
        reply = ask(Operation::disconnect, session, {});
        mCommands.close();
    }
    return suffered(std::move(reply)).isOk;
}

std::optional<Fields> Connection::command(Operation operation, const Fields& arguments) {
    Reply reply;
    {
        const std::lock_guard lock(mCommandLock);
        const int session = mSession;
        if (session == kNoSession) return std::nullopt;
        reply = ask(operation, session, arguments);
    }
    return fieldsOf(suffered(std::move(reply)));
}

std::optional<Fields> Connection::read(int device) {
    const int session = mSession;
    if (session == kNoSession) return std::nullopt;
    const std::lock_guard lock(mReadLock);
    const std::string text = request(Operation::readDeviceData, {std::to_string(session), std::to_string(device)});
    if (mReadSession != session) mReads.close();  // may lead to a daemon that was ended since
    mReadSession = session;
    while (mSession == session) {
        if (!mReads.isOpen() && !mReads.open(pipeName(kDataRole), kOpenMs)) {
            lose(session);
            return std::nullopt;
        }
        Reply reply = mReads.ask(text, kReadWaitMs + kAnswerMs);
        if (!mReads.isOpen()) lose(session);
        reply = suffered(std::move(reply));
        if (!reply.isOk || reply.lines.empty()) return std::nullopt;
        if (reply.lines.front() != kHeld) return splitFields(reply.lines.front());
    }
    return std::nullopt;
}

bool Connection::setLogFlags(const Fields& flags) {
    Reply reply;
    {
        const std::lock_guard lock(mCommandLock);
        mLogFlags = flags;
        if (!mCommands.isOpen() && !mCommands.open(pipeName(kDataRole), kOpenMs)) return true;
        reply = mCommands.ask(request(Operation::setDllLogFlags, flags), kAnswerMs);
        if (!mCommands.isOpen()) {
            lose(mSession);
            return true;
        }
    }
    return suffered(std::move(reply)).isOk;
}

Reply Connection::ask(Operation operation, int session, Fields arguments) {
    arguments.insert(arguments.begin(), std::to_string(session));
    const Reply reply = mCommands.ask(request(operation, arguments), kAnswerMs);
    if (!mCommands.isOpen()) lose(session);
    return reply;
}

void Connection::lose(int session) { mSession.compare_exchange_strong(session, kNoSession); }

}  // namespace workbench
