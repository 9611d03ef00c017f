// Runs a command so that Creo keeps its undo stack: a mapkey plays a trail file, which is written afresh for every
// command, and the mapkey's keys are posted to Creo's main window.
#include <windows.h>

#include <cstdio>

#include "OB_Daemon/src/logging.h"
#include "common_sources/command_text.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/profile_folder.h"
#include "common_sources/settings.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr char kTrailFile[] = "orbikon-trail.txt";
constexpr DWORD kTempPathSize = 255;

constexpr LPARAM kKeyPressed = 1;  // repeat count
constexpr LPARAM kKeyReleased = static_cast<LPARAM>(0xC0000001);

std::string tempFolder() {
    wchar_t path[kTempPathSize + 1] = L"";
    const DWORD size = GetTempPathW(kTempPathSize, path);
    if (size == 0 || size > kTempPathSize) OB_LOG(LogLevel::ERR) << "Error in GetTempPathA()!";
    std::string folder = narrowPath(path);
    if (!folder.ends_with('\\')) folder += '\\';
    return folder;
}

// Whether the window in front is one of our own process. Keys go to no other.
bool isCreoInFront() {
    const HWND root = GetAncestor(GetForegroundWindow(), GA_ROOT);
    DWORD process = 0;
    GetWindowThreadProcessId(root, &process);
    return process == GetCurrentProcessId();
}

bool isOwnWindow(HWND window) {
    DWORD process = 0;
    return GetWindowThreadProcessId(window, &process) != 0 && process == GetCurrentProcessId();
}

// True when the whole file is on disk.
bool writeTrailFile(const std::string& path, const std::string& macro) {
    const std::string text = trailFileText(macro);
    std::FILE* file = std::fopen(path.c_str(), "w");
    if (file == nullptr) return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && isWritten;
}

}  // namespace

void CreoProxy::defineMapkey() {
    mIsMapkeyUsed = true;
    mMapkeySequence = mapkeySequence(mSettings.mMapkeyDefinition);
    mTrailFilePath = withDoubledBackslashes(tempFolder() + kTrailFile);
    wchar_t option[] = L"mapkey";
    std::wstring value = toWide(mapkeyValue(mMapkeySequence, mTrailFilePath));
    if (ProConfigoptSet(option, value.data()) == PRO_TK_NO_ERROR) {
        OB_LOG(LogLevel::TRC) << "Mapkey (" << mMapkeySequence << ") is set successfully to trailfile "
                              << mTrailFilePath << "!";
    } else {
        OB_LOG(LogLevel::ERR) << "Cannot set Mapkey (" << mMapkeySequence << ")! => Normal Methode";
        mIsMapkeyUsed = false;
    }
}

void CreoProxy::executeCommandByMapkey(const std::string& macro) {
    static constexpr char kMethod[] = "executeCommandByMapkey";
    atEdge({kLogClass, kMethod}, [&] {
        if (!isCreoInFront()) {
            OB_LOG_IN(LogLevel::TRC, kMethod) << "executeCommandByMapkey, but Creo is not activ window...";
            return;
        }
        OB_LOG_IN(LogLevel::TRC, kMethod) << "Writing new trail file ...";
        if (!writeTrailFile(mTrailFilePath, macro)) {
            OB_LOG_IN(LogLevel::ERR, kMethod) << "Cannot write trail file '" << mTrailFilePath << "' failed!";
            return;
        }
        OB_LOG_IN(LogLevel::TRC, kMethod) << "Trail file written.";
        sendMapkey();
    });
}

void CreoProxy::sendMapkey() {
    if (!isOwnWindow(mTimerWindow)) {
        if (mLogLimit.isDue("mapkey")) OB_LOG(LogLevel::ERR) << "No Creo window for the mapkey, command dropped!";
        return;
    }
    for (const char key : mMapkeySequence) {
        const auto virtualKey = static_cast<WPARAM>(LOBYTE(VkKeyScanA(key)));
        PostMessageA(mTimerWindow, WM_KEYDOWN, virtualKey, kKeyPressed);
        PostMessageA(mTimerWindow, WM_CHAR, static_cast<WPARAM>(key), kKeyPressed);
        PostMessageA(mTimerWindow, WM_KEYUP, virtualKey, kKeyReleased);
    }
    OB_LOG(LogLevel::TRC) << "Mapkey command " << mMapkeySequence << " sent.";
}
