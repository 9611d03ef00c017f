#include <windows.h>

#include "OB_Daemon/src/logging.h"

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved);

// When the process ends without user_terminate, Windows has ended the other threads wherever they were, perhaps inside
// a log statement; nothing may wait for the log's lock then, nor may its destruction, which enters the lock, too.
BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID reserved) {
    const bool isProcessEnding = reason == DLL_PROCESS_DETACH && reserved != nullptr;
    if (isProcessEnding) gLogging.leaveToProcessEnd();
    return TRUE;
}
