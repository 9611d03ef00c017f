#include "workbench/host/control/process_counts.h"

#include <windows.h>
// after windows.h
#include <tlhelp32.h>

#include <algorithm>
#include <vector>

namespace workbench {
namespace {

// The system's table of all open handles, as NtQuerySystemInformation gives it.
struct HandleEntry {
    ULONG process;
    BYTE kind;
    BYTE flags;
    USHORT handle;
    PVOID object;
    ULONG access;
};
struct HandleTable {
    ULONG count;
    HandleEntry entries[1];
};
constexpr ULONG HANDLE_TABLE = 16;
constexpr LONG TOO_SMALL = static_cast<LONG>(0xC0000004);
using Query = LONG(WINAPI*)(ULONG what, void* buffer, ULONG size, ULONG* needed);

int countInHandleTable() {
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    const auto query =
        reinterpret_cast<Query>(reinterpret_cast<void*>(GetProcAddress(library, "NtQuerySystemInformation")));
    if (query == nullptr) return 0;
    std::vector<HandleEntry> buffer(4096);
    LONG result = TOO_SMALL;
    while (result == TOO_SMALL) {
        buffer.resize(buffer.size() * 2);
        result = query(HANDLE_TABLE, buffer.data(), static_cast<ULONG>(buffer.size() * sizeof(HandleEntry)), nullptr);
    }
    if (result != 0) return 0;
    const auto* table = reinterpret_cast<const HandleTable*>(buffer.data());
    const DWORD self = GetCurrentProcessId();
    return static_cast<int>(std::count_if(table->entries, table->entries + table->count,
                                          [&](const HandleEntry& entry) { return entry.process == self; }));
}

}  // namespace

int handleCount() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count > 0 ? static_cast<int>(count) : countInHandleTable();  // not every system has the short way
}

int threadCount() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
    }
    CloseHandle(snapshot);
    return count;
}

}  // namespace workbench
