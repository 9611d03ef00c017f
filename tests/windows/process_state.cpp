#include "tests/windows/process_state.h"

#include <tlhelp32.h>
#include <winternl.h>

#include <vector>

namespace {

constexpr int kSystemHandleInformation = 16;
constexpr NTSTATUS kInfoLengthMismatch = static_cast<NTSTATUS>(0xC0000004);

struct SystemHandleEntry {
    USHORT process;
    USHORT backTrace;
    UCHAR type;
    UCHAR attributes;
    USHORT handle;
    PVOID object;
    ACCESS_MASK access;
};
struct SystemHandles {
    ULONG count;
    SystemHandleEntry entries[1];
};

}  // namespace

int countHandles(DWORD process) {
    std::vector<ULONG> buffer(1 << 16);
    ULONG needed = 0;
    while (NtQuerySystemInformation(static_cast<SYSTEM_INFORMATION_CLASS>(kSystemHandleInformation), buffer.data(),
                                    static_cast<ULONG>(buffer.size() * sizeof(ULONG)),
                                    &needed) == kInfoLengthMismatch) {
        buffer.resize(buffer.size() * 2);
    }
    const auto* handles = reinterpret_cast<const SystemHandles*>(buffer.data());
    int count = 0;
    for (ULONG i = 0; i < handles->count; ++i) {
        if (handles->entries[i].process == static_cast<USHORT>(process)) ++count;
    }
    return count;
}

int countThreads(DWORD process) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == process) ++count;
    }
    CloseHandle(snapshot);
    return count;
}

std::string programFolder() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string text(path);
    return text.substr(0, text.rfind('\\'));
}
