// A library that leaves a trace in the process when any code of it runs.
#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) SetEnvironmentVariableA("ARMED_LIBRARY_RAN", "yes");
    return TRUE;
}
