// How Creo calls, and where its functions are.
#include <windows.h>
// after windows.h
#include <tlhelp32.h>

#include <vector>

#include "tools/probe/callers.h"
#include "tools/probe/checker.h"
#include "tools/seat/text.h"
#include "tools/seat/wide_text.h"

namespace probe {

namespace {

constexpr std::size_t kErrorTextLength = 80;

// Whether all of the bytes can be read, and written if so wished.
bool isAccessible(const void* bytes, std::size_t size, bool forWriting) {
    constexpr DWORD kWritable = PAGE_READWRITE | PAGE_WRITECOPY | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    MEMORY_BASIC_INFORMATION region{};
    if (bytes == nullptr || VirtualQuery(bytes, &region, sizeof region) == 0 || region.State != MEM_COMMIT)
        return false;
    if ((region.Protect & (PAGE_NOACCESS | PAGE_GUARD)) != 0) return false;
    if (forWriting && (region.Protect & kWritable) == 0) return false;
    const auto offset = static_cast<const char*>(bytes) - static_cast<const char*>(region.BaseAddress);
    return static_cast<std::size_t>(offset) + size <= region.RegionSize;
}

std::string nameOf(const std::filesystem::path& file) {
    const auto name = file.filename().u8string();
    return {name.begin(), name.end()};
}

// The loaded modules that have a function of that name.
std::string modulesWith(const char* function) {
    std::string found;
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    MODULEENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32FirstW(snapshot, &entry); more; more = Module32NextW(snapshot, &entry)) {
        if (GetProcAddress(entry.hModule, function) == nullptr) continue;
        found += (found.empty() ? "in " : ", ") + seat::utf8Text(entry.szModule);
    }
    CloseHandle(snapshot);
    return found.empty() ? "in no loaded module" : found;
}

class EntryChecker : public Checker {
  public:
    explicit EntryChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void start() override {
        checkFunctions();
        if (checkArguments()) checkTexts();
        const HWND window = firstThreadWindow();
        mFindings.tell("entry.thread", window != nullptr,
                       window != nullptr ? "its first window is of class " + classOf(window) : "it has no window");
    }

    void look() override {
        const int asked = callsOf(Caller::access);
        if (asked == 0) return;
        mFindings.tell("callbacks.access", true, "asked " + std::to_string(asked) + " times by now");
    }

  private:
    void checkFunctions() {
        for (const std::string& name : toolkitFunctions()) {
            const bool isThere = Context::has({name.c_str()});
            mFindings.tell(functionRow(name), isThere,
                           isThere ? "in " + nameOf(mContext.hostFile) : modulesWith(name.c_str()));
        }
    }

    bool checkArguments() {
        const auto& [argc, argv, version, build, errorText] = mContext.entry;
        const bool hasTexts = isAccessible(version, 1, false) && isAccessible(build, 1, false) && argc >= 0 &&
                              argc < 1000 && isAccessible(argv, sizeof *argv * static_cast<std::size_t>(argc), false);
        const bool hasBuffer = isAccessible(errorText, kErrorTextLength * sizeof *errorText, true);
        mFindings.tell("entry.arguments", hasTexts && hasBuffer,
                       "argc " + std::to_string(argc) + (hasTexts ? ", texts readable" : ", texts not readable") +
                           (hasBuffer ? ", error buffer writable" : ", no error buffer"));
        mFindings.setFact("release", hasTexts ? std::string(version) + " " + build : "unknown");
        return hasTexts;
    }

    void checkTexts() {
        std::string all = std::string(mContext.entry.version) + mContext.entry.build;
        for (int i = 0; i < mContext.entry.argc && mContext.entry.argv[i] != nullptr; ++i)
            all += mContext.entry.argv[i];
        const bool isAscii = seat::isAscii(all);
        const bool isForeign = !isAscii && seat::isUtf8(all) && GetACP() != CP_UTF8;
        mFindings.tell("entry.texts", !isForeign,
                       isAscii             ? "plain ASCII"
                       : seat::isUtf8(all) ? "UTF-8"
                                           : "not UTF-8, beyond ASCII");
    }

    Context& mContext;
    Findings& mFindings;
};

}  // namespace

std::unique_ptr<Checker> makeEntryChecker(Context& context) { return std::make_unique<EntryChecker>(context); }

}  // namespace probe
