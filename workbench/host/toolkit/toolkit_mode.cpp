// Toolkit functions: notifications, mode, windows, macros, configuration options.
#include "workbench/host/commands/key_sequence.h"
#include "workbench/host/commands/macro_runner.h"
#include "workbench/host/commands/macro_text.h"
#include "workbench/host/model/host_state.h"
#include "workbench/host/model/text.h"
#include "workbench/host/toolkit/notifications.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/windows/frame.h"
#include "workbench/host/windows/ui_loop.h"

#include <algorithm>
#include <cctype>

using namespace workbench;

ProError ProNotificationSet(int type, ProFunction handler) {
    return toolkitCall(__func__, [&] {
        if (type < 0 || handler == nullptr) return PRO_TK_BAD_INPUTS;
        notifications().set(type, handler);
        return PRO_TK_NO_ERROR;
    });
}

ProError ProNotificationUnset(int type) {
    return releasingCall(__func__, [&] { return notifications().unset(type) ? PRO_TK_NO_ERROR : PRO_TK_E_NOT_FOUND; });
}

ProError ProModeCurrentGet(ProMode* mode) {
    return toolkitCall(__func__, [&] {
        if (mode == nullptr) return PRO_TK_BAD_INPUTS;
        *mode = host().mode();
        return PRO_TK_NO_ERROR;
    });
}

ProError ProSectionIsActive(ProBoolean* active) {
    return toolkitCall(__func__, [&] {
        if (active == nullptr) return PRO_TK_BAD_INPUTS;
        *active = host().isSketchActive() ? PRO_B_TRUE : PRO_B_FALSE;
        return PRO_TK_NO_ERROR;
    });
}

ProError ProWindowCurrentGet(int* window) {
    return toolkitCall(__func__, [&] {
        if (window == nullptr) return PRO_TK_BAD_INPUTS;
        *window = host().window();
        return PRO_TK_NO_ERROR;
    });
}

// Redraws before it returns: the plug-in moves components in a loop that does not get back to the message loop.
ProError ProWindowRefresh(int window) {
    return toolkitCall(__func__, [&] {
        if (window != host().window()) return PRO_TK_BAD_INPUTS;
        frame().redrawGraphics();
        noteInput();  // components may move for seconds, and the cap's key be released meanwhile
        return PRO_TK_NO_ERROR;
    });
}

ProError ProMdlCurrentGet(ProMdl* model) {
    return toolkitCall(__func__, [&] {
        if (model == nullptr) return PRO_TK_BAD_INPUTS;
        *model = &host().model();
        return PRO_TK_NO_ERROR;
    });
}

ProError ProMacroLoad(wchar_t* macro) {
    return toolkitCall(__func__, [&] {
        if (macro == nullptr || *macro == L'\0') return PRO_TK_BAD_INPUTS;
        queueMacro(wideToUtf8(macro));
        return PRO_TK_NO_ERROR;
    });
}

ProError ProConfigoptSet(wchar_t* option, wchar_t* value) {
    return toolkitCall(__func__, [&] {
        if (option == nullptr || *option == L'\0' || value == nullptr) return PRO_TK_BAD_INPUTS;
        std::string name = wideToUtf8(option);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const std::string text = wideToUtf8(value);
        if (name == "mapkey") {
            auto mapkey = parseMapkey(text);
            if (!mapkey) return PRO_TK_BAD_INPUTS;
            keySequence().define(std::move(*mapkey));
        }
        host().config[name] = text;
        return PRO_TK_NO_ERROR;
    });
}
