#include "tools/probe/crash_note.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <string>

namespace probe {

namespace {

constexpr DWORD kFatal[] = {EXCEPTION_ACCESS_VIOLATION, EXCEPTION_ILLEGAL_INSTRUCTION, EXCEPTION_STACK_OVERFLOW,
                            EXCEPTION_PRIV_INSTRUCTION, EXCEPTION_INT_DIVIDE_BY_ZERO,  EXCEPTION_IN_PAGE_ERROR};

// Ready before the crash: its handler must need no memory.
std::wstring noteFile;
DWORD slot = TLS_OUT_OF_INDEXES;  // each thread's innermost CrashNote
std::atomic<bool> isNoted{false};
void* handler = nullptr;

std::size_t describe(const EXCEPTION_RECORD& record, std::string_view row, char* text, std::size_t size) {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<LPCSTR>(record.ExceptionAddress), &module);
    char path[MAX_PATH] = "?";
    if (module != nullptr) GetModuleFileNameA(module, path, MAX_PATH);
    const char* name = path;
    for (const char* at = path; *at != '\0'; ++at) {
        if (*at == '\\') name = at + 1;
    }
    const auto offset = reinterpret_cast<ULONG_PTR>(record.ExceptionAddress) - reinterpret_cast<ULONG_PTR>(module);
    const int length =
        std::snprintf(text, size, "%.*s\nexception %08lX in %s at offset %lX\n", static_cast<int>(row.size()),
                      row.data(), record.ExceptionCode, name, static_cast<unsigned long>(offset));
    return std::min(size, static_cast<std::size_t>(std::max(0, length)));
}

LONG CALLBACK onException(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const bool isFatal = std::ranges::find(kFatal, record.ExceptionCode) != std::end(kFatal);
    const auto* note = static_cast<const CrashNote*>(TlsGetValue(slot));
    if (!isFatal || note == nullptr || isNoted.exchange(true)) return EXCEPTION_CONTINUE_SEARCH;
    char text[256];
    const std::size_t size = describe(record, note->row(), text, sizeof text);
    const HANDLE file =
        CreateFileW(noteFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) return EXCEPTION_CONTINUE_SEARCH;
    DWORD written = 0;
    WriteFile(file, text, static_cast<DWORD>(size), &written, nullptr);
    CloseHandle(file);
    return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

void noteCrashesIn(const std::filesystem::path& inDoubtFile) {
    noteFile = inDoubtFile.wstring();
    if (slot == TLS_OUT_OF_INDEXES) slot = TlsAlloc();
    handler = AddVectoredExceptionHandler(1, onException);
}

void stopNotingCrashes() {
    if (handler != nullptr) RemoveVectoredExceptionHandler(handler);
    handler = nullptr;
}

CrashNote::CrashNote(std::string_view row) : mRow(row), mOuter(static_cast<CrashNote*>(TlsGetValue(slot))) {
    TlsSetValue(slot, this);
}

// What came back was no crash: Creo has handled the exception itself.
CrashNote::~CrashNote() {
    TlsSetValue(slot, mOuter);
    if (isNoted.exchange(false)) DeleteFileW(noteFile.c_str());
}

}  // namespace probe
