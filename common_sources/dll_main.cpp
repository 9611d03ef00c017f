#include <windows.h>

#include "OB_Daemon/src/logging.h"
#include "common_sources/ob_addin.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved);

// When the process ends without user_terminate, Windows has ended the other threads wherever they were, perhaps inside
// a log statement or the lock itself, so the log is not touched any more. After user_terminate none of our threads is
// left that could have been there, and the log ends as it should.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    const bool isProcessEnding = reason == DLL_PROCESS_DETACH && reserved != nullptr;
    if (isProcessEnding && gAddin != nullptr) gLogging.leaveToProcessEnd();
    return TRUE;
}
