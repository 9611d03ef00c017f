#include "tools/probe/probe.h"

#include <algorithm>
#include <cstdlib>

#include "tools/probe/callers.h"
#include "tools/probe/registrations.h"
#include "tools/seat/file.h"
#include "tools/seat/text.h"
#include "tools/seat/wide_text.h"

namespace probe {

namespace {

namespace fs = std::filesystem;

constexpr UINT kTickMs = 100;
constexpr int kTicksToLook = 5;
constexpr DWORD kLongestPath = 32768;

std::unique_ptr<Probe> theProbe;

fs::path fileOf(HMODULE module) {
    std::wstring path(kLongestPath, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), kLongestPath));
    return path;
}

// Callbacks of Creo may come after the end, so the code stays.
HMODULE pinnedSelf() {
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&pinnedSelf), &self);
    return self;
}

std::string variable(const std::string& name) {
    const wchar_t* const value = _wgetenv(std::wstring(name.begin(), name.end()).c_str());
    return value != nullptr ? seat::utf8Text(value) : "";
}

seat::PrivateNames privateNames() {
    seat::PrivateNames names;
    for (const char* name : seat::kPrivateVariables) names.emplace_back(variable(name), "%" + std::string(name) + "%");
    return names;
}

// Creo's, by its variables; the system's otherwise.
std::string language() {
    for (const char* name : {"PRO_LANG", "LANG"}) {
        if (const std::string value = variable(name); !value.empty()) return seat::lowerCase(value);
    }
    wchar_t name[64] = L"";
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_SENGLANGUAGE, name, 64);
    return seat::lowerCase(seat::utf8Text(name));
}

fs::path loadPointAbove(const fs::path& host) {
    std::error_code error;
    for (fs::path folder = host.parent_path(); folder.has_relative_path(); folder = folder.parent_path()) {
        if (fs::is_directory(folder / "text" / "compiled_resource", error)) return folder;
    }
    return {};
}

void CALLBACK onTick(HWND, UINT, UINT_PTR, DWORD) {
    atEdge(0, [] {
        if (theProbe != nullptr) theProbe->tick();
        return 0;
    });
}

}  // namespace

Probe::Probe(const EntryArguments& arguments, const void* argumentsOnStack)
    : mFindings(seat::pathOf(variable("USERPROFILE")) / "OrbikonController", privateNames()),
      mContext{mFindings,
               arguments,
               fileOf(pinnedSelf()),
               fileOf(nullptr),
               loadPointAbove(fileOf(nullptr)),
               language(),
               language() == "german",
               0} {
    noteCrashesIn(mFindings.inDoubtFile());
    watchCallers(mFindings);
    noteCaller(Caller::entry, argumentsOnStack);
    setFacts();
    for (const auto make : {makeEntryChecker, makeWindowChecker, makeModeChecker, makeViewChecker, makeSelectionChecker,
                            makeMoveChecker, makeMacroChecker, makePointerChecker, makeTimerChecker,
                            makeResourceChecker, makeRegistrationChecker, makeDriverChecker}) {
        mCheckers.push_back(make(mContext));
    }
    mContext.attempt("registration.menu", [this] {
        registerAll(mFindings, [this](Task task) {
            if (mWindow) mWindow->show(task);
        });
    });
    for (const auto& checker : mCheckers) {
        atEdge(0, [&] { return checker->start(), 0; });
    }
    mWindow.emplace(mContext, [this](Task task, bool yes) {
        const std::lock_guard lock(mLock);
        mRequests.emplace_back(task, yes);
    });
    startTimer();
}

Probe::~Probe() {
    forgetRegistrations();
    if (mTimerWindow != nullptr) DestroyWindow(mTimerWindow);
    mWindow.reset();
    mCheckers.clear();
    stopWatchingCallers();
    stopNotingCrashes();
}

void Probe::setFacts() {
    mFindings.setFact("probe", ORBIKON_VERSION);
    mFindings.setFact("bit width", std::to_string(sizeof(void*) * 8));
    mFindings.setFact("language", mContext.language);
    mFindings.setFact("code page", std::to_string(GetACP()));
}

void Probe::startTimer() {
    mTimerWindow = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetTimer(mTimerWindow, 1, kTickMs, onTick);
}

std::vector<Probe::Request> Probe::takeRequests() {
    const std::lock_guard lock(mLock);
    return std::exchange(mRequests, {});
}

void Probe::tick() {
    if (mIsInTick) return;
    mIsInTick = true;
    for (const auto& [task, yes] : takeRequests()) {
        for (const auto& checker : mCheckers) {
            atEdge(0, [&] { return checker->perform(task, yes), 0; });
        }
    }
    runCheckers();
    mFindings.flush();
    mIsInTick = false;
}

// What one of them throws keeps none of the others from its turn.
void Probe::runCheckers() {
    const bool isToLook = ++mTicks % kTicksToLook == 0;
    for (const auto& checker : mCheckers) {
        atEdge(0, [&] { return checker->tick(), 0; });
        if (isToLook) atEdge(0, [&] { return checker->look(), 0; });
    }
}

}  // namespace probe

// Creo takes 0 for a good start; the probe never keeps it from starting.
extern "C" int user_initialize(int argc, char** argv, char* version, char* build, wchar_t* errorText) {
    const void* const arguments = __builtin_dwarf_cfa();
    return probe::atEdge(0, [&] {
        if (probe::theProbe == nullptr) {
            const probe::EntryArguments given{argc, argv, version, build, errorText};
            probe::theProbe = std::make_unique<probe::Probe>(given, arguments);
        }
        return 0;
    });
}

extern "C" void user_terminate() {
    probe::atEdge(0, [] {
        probe::theProbe.reset();
        return 0;
    });
}
