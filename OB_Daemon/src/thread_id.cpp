#include "OB_Daemon/src/thread_id.h"

#ifdef _WIN32
#include <windows.h>

std::uint32_t currentThreadId() { return GetCurrentThreadId(); }
#else
#include <sys/syscall.h>
#include <unistd.h>

std::uint32_t currentThreadId() {
    static thread_local const auto id = static_cast<std::uint32_t>(syscall(SYS_gettid));
    return id;
}
#endif
