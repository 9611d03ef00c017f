#include "workbench/control/process.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "workbench/pipes/text.h"

namespace workbench {
namespace {

constexpr UINT kExitKilled = 9;
constexpr DWORD kKillWaitMs = 10000;

[[noreturn]] void fail(const std::string& what) {
    throw std::runtime_error(what + ", error " + std::to_string(GetLastError()));
}

struct WindowSearch {
    DWORD process;
    int control;
    HWND found;
};

BOOL CALLBACK takeIfWanted(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<WindowSearch*>(parameter);
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner != search.process || !IsWindowVisible(window) || GetDlgItem(window, search.control) == nullptr) {
        return TRUE;
    }
    search.found = window;
    return FALSE;
}

// One argument as the C run-time takes it apart again.
std::string quoted(const std::string& argument) {
    if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (const char c : argument) {
        if (c == '"') text.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, '\\') + '"';
}

bool isLessNoCase(const std::string& left, const std::string& right) {
    return std::ranges::lexicographical_compare(
        left, right, {}, [](char c) { return std::toupper(c); }, [](char c) { return std::toupper(c); });
}

// The starter's environment with the changes, as CreateProcess takes it: sorted, each entry ends with a zero.
std::wstring environmentBlock(const Environment& changes) {
    std::map<std::string, std::string, decltype(&isLessNoCase)> variables(&isLessNoCase);
    wchar_t* const own = GetEnvironmentStringsW();
    for (const wchar_t* entry = own; *entry != L'\0'; entry += std::wstring_view(entry).size() + 1) {
        const std::string text = utf8Text(entry);
        const std::size_t equals = text.find('=', 1);  // drive entries begin with "="
        if (equals != std::string::npos) variables[text.substr(0, equals)] = text.substr(equals + 1);
    }
    FreeEnvironmentStringsW(own);
    for (const auto& [name, value] : changes) {
        if (value.empty()) {
            variables.erase(name);
        } else {
            variables[name] = value;
        }
    }
    std::wstring block;
    for (const auto& [name, value] : variables) block += wideText(name + '=' + value) + L'\0';
    return block + L'\0';
}

Handle makeJob() {
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    if (!job || !SetInformationJobObject(job.get(), JobObjectExtendedLimitInformation, &limits, sizeof limits)) {
        fail("cannot make a job object");
    }
    return job;
}

// An inheritable handle of the file, or of the null device when there is none.
Handle openOutput(const std::filesystem::path& path) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    const std::wstring name = path.empty() ? L"NUL" : path.wstring();
    Handle file(CreateFileW(name.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                            &inheritable, path.empty() ? OPEN_EXISTING : CREATE_ALWAYS, 0, nullptr));
    if (!file) fail("cannot write " + textOf(path));
    return file;
}

}  // namespace

Process::Process(const ProcessOptions& options) : mJob(makeJob()) {
    std::string command = quoted(textOf(options.program));
    for (const std::string& argument : options.arguments) command += ' ' + quoted(argument);
    if (!options.lastArgument.empty()) command += ' ' + options.lastArgument;
    std::wstring commandLine = wideText(command);
    std::wstring environment = environmentBlock(options.environment);
    const Handle output = openOutput(options.outputFile);

    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = output.get();
    start.hStdError = output.get();
    PROCESS_INFORMATION made{};
    const auto make = [&] {  // suspended, so that it is in the job before it does anything
        return CreateProcessW(options.program.c_str(), commandLine.data(), nullptr, nullptr, TRUE,
                              CREATE_SUSPENDED | CREATE_NO_WINDOW | CREATE_UNICODE_ENVIRONMENT, environment.data(),
                              options.folder.empty() ? nullptr : options.folder.c_str(), &start, &made) != FALSE;
    };
    // On rare occasions Wine's new process dies before it comes to the program, which is an internal error then.
    constexpr int kTries = 3;
    bool isMade = make();
    for (int i = 1; i < kTries && !isMade && GetLastError() == ERROR_INTERNAL_ERROR; ++i) isMade = make();
    if (!isMade) fail("cannot start " + textOf(options.program));
    mProcess.reset(made.hProcess);
    mId = made.dwProcessId;
    const Handle thread(made.hThread);
    if (!AssignProcessToJobObject(mJob.get(), mProcess.get())) {
        kill();
        fail("cannot put the process into its job");
    }
    ResumeThread(thread.get());
}

Process::~Process() { kill(); }

bool Process::isRunning() const { return !waitForExit(0); }

std::optional<DWORD> Process::waitForExit(int timeoutMs) const {
    DWORD code = 0;
    if (WaitForSingleObject(mProcess.get(), static_cast<DWORD>(std::max(timeoutMs, 0))) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(mProcess.get(), &code)) {
        return std::nullopt;
    }
    return code;
}

HWND Process::windowWith(int control) const {
    WindowSearch search{mId, control, nullptr};
    EnumWindows(takeIfWanted, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void Process::kill() {
    if (!mProcess || !isRunning()) return;
    TerminateProcess(mProcess.get(), kExitKilled);
    WaitForSingleObject(mProcess.get(), kKillWaitMs);
}

}  // namespace workbench
