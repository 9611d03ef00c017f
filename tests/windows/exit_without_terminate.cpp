// Loads the plug-in named by the first argument, starts it and ends the process, as the second argument says:
//
//   running     while its threads work and log: what happens when the host crashes out of its message loop
//   terminated  after user_terminate
//   PIPE        while a thread is inside the log for good: the log's file is this pipe, which nobody reads
#include <windows.h>

#include <string>
#include <thread>

namespace {

template <typename Function>
Function* find(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

bool waitForBytes(HANDLE pipe) {
    DWORD bytes = 0;
    for (int i = 0; i < 1000 && bytes == 0; ++i) {
        Sleep(20);
        PeekNamedPipe(pipe, nullptr, 0, nullptr, &bytes, nullptr);
    }
    return bytes != 0;
}

}  // namespace

int main(int argc, char** argv) {
    const HMODULE plugin = argc > 2 ? LoadLibraryA(argv[1]) : nullptr;
    if (plugin == nullptr) return 2;
    auto* initialize = find<int()>(plugin, "user_initialize");
    auto* terminate = find<void()>(plugin, "user_terminate");
    const std::string end = argv[2];
    if (initialize == nullptr || terminate == nullptr) return 3;
    if (end == "running" || end == "terminated") {
        initialize();
        Sleep(300);
        if (end == "terminated") terminate();
        return 42;
    }
    const HANDLE pipe = CreateNamedPipeA(argv[2], PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 1, 1, 0, nullptr);
    std::thread(initialize).detach();
    return waitForBytes(pipe) ? 42 : 4;
}
