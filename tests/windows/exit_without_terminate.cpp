// Loads the plug-in named by the argument, starts it, lets its threads work and log, and ends the process without
// user_terminate: what happens when the host crashes out of its message loop.
#include <windows.h>

int main(int argc, char** argv) {
    const HMODULE plugin = argc > 1 ? LoadLibraryA(argv[1]) : nullptr;
    if (plugin == nullptr) return 2;
    const auto initialize =
        reinterpret_cast<int (*)()>(reinterpret_cast<void*>(GetProcAddress(plugin, "user_initialize")));
    if (initialize == nullptr || initialize() != 0) return 3;
    Sleep(300);
    return 42;
}
