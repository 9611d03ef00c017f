#include "workbench/pipes/overlapped.h"

namespace workbench {
namespace {

constexpr DWORD kChunk = 4096;

// Ends an operation that ReadFile, WriteFile or ConnectNamedPipe began with `isDoneAtOnce` as its result.
Transfer finish(HANDLE pipe, OVERLAPPED& operation, bool isDoneAtOnce, HANDLE stop, DWORD timeoutMs, DWORD& count) {
    if (!isDoneAtOnce && GetLastError() != ERROR_IO_PENDING) return Transfer::broken;
    const HANDLE events[] = {operation.hEvent, stop};
    const DWORD woken = WaitForMultipleObjects(stop != nullptr ? 2 : 1, events, FALSE, timeoutMs);
    if (woken != WAIT_OBJECT_0) CancelIoEx(pipe, &operation);
    // The operation may have come to its end before the cancellation: then it counts.
    if (GetOverlappedResult(pipe, &operation, &count, TRUE) != 0) return Transfer::done;
    if (GetLastError() != ERROR_OPERATION_ABORTED) return Transfer::broken;
    return woken == WAIT_TIMEOUT ? Transfer::timedOut : Transfer::stopped;
}

}  // namespace

Transfer readSome(HANDLE pipe, std::string& received, HANDLE stop, DWORD timeoutMs) {
    const Handle event = makeEvent();
    OVERLAPPED operation{};
    operation.hEvent = event.get();
    char chunk[kChunk];
    DWORD count = 0;
    const bool isDone = ReadFile(pipe, chunk, sizeof chunk, nullptr, &operation) != 0;
    const Transfer result = finish(pipe, operation, isDone, stop, timeoutMs, count);
    if (result == Transfer::done) received.append(chunk, count);
    return result;
}

Transfer writeAll(HANDLE pipe, std::string_view text, HANDLE stop, DWORD timeoutMs) {
    const Handle event = makeEvent();
    while (!text.empty()) {
        OVERLAPPED operation{};
        operation.hEvent = event.get();
        DWORD count = 0;
        const bool isDone = WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), nullptr, &operation) != 0;
        const Transfer result = finish(pipe, operation, isDone, stop, timeoutMs, count);
        if (result != Transfer::done) return result;
        text.remove_prefix(count);
    }
    return Transfer::done;
}

Transfer awaitClient(HANDLE pipe, HANDLE stop) {
    const Handle event = makeEvent();
    OVERLAPPED operation{};
    operation.hEvent = event.get();
    DWORD count = 0;
    const bool isDone = ConnectNamedPipe(pipe, &operation) != 0;
    if (!isDone && GetLastError() == ERROR_PIPE_CONNECTED) return Transfer::done;
    return finish(pipe, operation, isDone, stop, INFINITE, count);
}

bool takeLine(std::string& received, std::string& line) {
    const std::size_t end = received.find('\n');
    if (end == std::string::npos) return false;
    line = received.substr(0, end);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    received.erase(0, end + 1);
    return true;
}

}  // namespace workbench
