#include "workbench/host/control/process_counts.h"

#include <windows.h>
// after windows.h
#include <tlhelp32.h>

#include <algorithm>
#include <cstring>
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

template <typename Function>
Function systemFunction(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

int countInHandleTable() {
    const auto query = systemFunction<Query>("NtQuerySystemInformation");
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

// The table of GDI objects that every process can see, as 32-bit programs have it.
struct GdiEntry {
    ULONGLONG object;
    ULONG owner;
    USHORT unique;
    BYTE kind;  // 0 = not in use
    BYTE flags;
    ULONGLONG userPointer;
};
constexpr std::size_t GDI_TABLE_SIZE = 0x4000;
constexpr std::size_t GDI_TABLE_OFFSET = 0x94;  // in the process environment block

int countInGdiTable() {
    using EnvironmentBlock = const char*(WINAPI*)();
    const auto environmentBlock = systemFunction<EnvironmentBlock>("RtlGetCurrentPeb");
    if (environmentBlock == nullptr) return 0;
    const GdiEntry* table = nullptr;
    std::memcpy(&table, environmentBlock() + GDI_TABLE_OFFSET, sizeof table);
    if (table == nullptr) return 0;
    return static_cast<int>(
        std::count_if(table, table + GDI_TABLE_SIZE, [](const GdiEntry& entry) { return entry.kind != 0; }));
}

BOOL CALLBACK countWindow(HWND, LPARAM count) {
    ++*reinterpret_cast<int*>(count);
    return TRUE;
}

BOOL CALLBACK countTopWindow(HWND window, LPARAM count) {
    EnumChildWindows(window, countWindow, count);
    return countWindow(window, count);
}

int countWindows() {
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), countTopWindow, reinterpret_cast<LPARAM>(&count));
    return count;
}

}  // namespace

int handleCount() {
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count > 0 ? static_cast<int>(count) : countInHandleTable();  // not every system has the short way
}

int gdiObjectCount() {
    const DWORD count = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    return count > 0 ? static_cast<int>(count) : countInGdiTable();
}

int userObjectCount() {
    const DWORD count = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
    return count > 0 ? static_cast<int>(count) : countWindows();
}

// Summed up page by page: not every system keeps the sum.
std::size_t privateBytes() {
    std::size_t sum = 0;
    MEMORY_BASIC_INFORMATION pages{};
    for (const char* at = nullptr; VirtualQuery(at, &pages, sizeof pages) != 0;) {
        if (pages.State == MEM_COMMIT && pages.Type == MEM_PRIVATE) sum += pages.RegionSize;
        at = static_cast<const char*>(pages.BaseAddress) + pages.RegionSize;
    }
    return sum;
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
