// A plug-in that breaks every rule of its host, and cleans nothing up.
#include <windows.h>

#include <process.h>

#include <string>
#include <utility>

#include "driver/obk_ctrlr.h"
#include "toolkit/pro_toolkit.h"

namespace {

template <typename Function>
Function* functionIn(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

#define IN_HOST(function) functionIn<decltype(function)>(GetModuleHandleW(nullptr), #function)

template <typename Function>
Function* inDriver(ObOrdinal ordinal) {
    return functionIn<Function>(LoadLibraryA(kDriverLibrary), MAKEINTRESOURCEA(static_cast<WORD>(ordinal)));
}

unsigned __stdcall sleepForEver(void*) {
    Sleep(INFINITE);
    return 0;
}

int ignore() { return 0; }
int ignoreClick(uiCmdCmdId, uiCmdValue*, void*) { return 0; }

void addCommands() {
    const auto addCommand = IN_HOST(ProCmdOptionAdd);
    for (std::string name : {"Orbikon_ToggleMoveMode", "Orbikon_ToggleScrollMode"}) {
        uiCmdCmdId command = nullptr;
        addCommand(name.data(), ignoreClick, PRO_B_TRUE, nullptr, nullptr, PRO_B_TRUE, PRO_B_TRUE, &command);
    }
}

}  // namespace

extern "C" __declspec(dllexport) int user_initialize() {
    SetTimer(nullptr, 0, 1000000, nullptr);
    _beginthreadex(nullptr, 0, sleepForEver, nullptr, 0, nullptr);
    static bool isFirstStart = true;
    if (!std::exchange(isFirstStart, false)) addCommands();
    IN_HOST(ProNotificationSet)(24, ignore);
    IN_HOST(ProNotificationSet)(72, ignore);
    ProSelection* selection = nullptr;
    IN_HOST(ProSelbufferSelectionsGet)(&selection);
    ProMdl model = nullptr;
    IN_HOST(ProMdlCurrentGet)(&model);
    IN_HOST(ProAssemblyDynPosSet)(model, PRO_B_TRUE);
    ProMatrix flat = {};
    IN_HOST(ProViewMatrixSet)(nullptr, nullptr, flat);
    std::int32_t off = 0;
    inDriver<decltype(obConnect)>(ObOrdinal::connect)(0, "bad");
    inDriver<decltype(obSetOption)>(ObOrdinal::setOption)(kOptionLegacyCom1, &off);
    return 0;
}

extern "C" __declspec(dllexport) void user_terminate() {}
