// Overlapped transfers with a time-out, for the named pipes of the workbench.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace workbench {

// A kernel object's handle, closed with its owner. Null when there is none.
class Handle {
  public:
    explicit Handle(HANDLE handle = nullptr) : mHandle(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    Handle(Handle&& other) noexcept : mHandle(other.release()) {}
    Handle& operator=(Handle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~Handle() { reset(); }

    HANDLE get() const { return mHandle; }
    explicit operator bool() const { return mHandle != nullptr; }
    HANDLE release() {
        HANDLE handle = mHandle;
        mHandle = nullptr;
        return handle;
    }
    void reset(HANDLE handle = nullptr) {
        if (mHandle != nullptr) CloseHandle(mHandle);
        mHandle = handle;
    }

  private:
    HANDLE mHandle;
};

inline Handle makeEvent() { return Handle(CreateEventW(nullptr, TRUE, FALSE, nullptr)); }

enum class Transfer { done, timedOut, stopped, broken };

// Each waits `timeoutMs` (INFINITE is allowed), gives up as soon as `stop` (may be null) is signalled, and leaves no
// operation behind on the pipe.
Transfer readSome(HANDLE pipe, std::string& received, HANDLE stop, DWORD timeoutMs);
Transfer writeAll(HANDLE pipe, std::string_view text, HANDLE stop, DWORD timeoutMs);
Transfer awaitClient(HANDLE pipe, HANDLE stop);  // server's end: a client connects

// Takes the first complete line out of the received bytes, without its line end; false when there is none.
bool takeLine(std::string& received, std::string& line);

}  // namespace workbench
