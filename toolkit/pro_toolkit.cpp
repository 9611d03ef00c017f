// Finds the toolkit functions by name in the running host's executable.
#include "toolkit/pro_toolkit.h"

#include <windows.h>

namespace {

// The host's function of that name and type, or null.
template <typename Function>
Function* hostFunction(const char* name) {
    // The host's module and its exports do not change while it runs, so each name is looked up once.
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(nullptr), name)));
}

}  // namespace

#define CALL_HOST(function, ...)                                            \
    static const auto inHost = hostFunction<decltype(function)>(#function); \
    return inHost != nullptr ? inHost(__VA_ARGS__) : PRO_TK_GENERAL_ERROR

ProError ProCmdOptionAdd(char* name, uiCmdCmdActFn action, ProBoolean check_type, uiCmdCmdValFn value,
                         uiCmdAccessFn access, ProBoolean in_non_active_window, ProBoolean in_accessory_window,
                         uiCmdCmdId* command) {
    CALL_HOST(ProCmdOptionAdd, name, action, check_type, value, access, in_non_active_window, in_accessory_window,
              command);
}

ProError ProCmdChkbuttonValueSet(uiCmdValue* value, ProBoolean state) {
    CALL_HOST(ProCmdChkbuttonValueSet, value, state);
}

ProError ProCmdDesignate(uiCmdCmdId command, char* label, char* help, char* description, wchar_t* message_file) {
    CALL_HOST(ProCmdDesignate, command, label, help, description, message_file);
}

ProError ProMenubarMenuAdd(char* name, char* label, char* neighbour, ProBoolean after_neighbour,
                           wchar_t* message_file) {
    CALL_HOST(ProMenubarMenuAdd, name, label, neighbour, after_neighbour, message_file);
}

ProError ProMenubarmenuChkbuttonAdd(char* parent_menu, char* name, char* label, char* help, char* neighbour,
                                    ProBoolean after_neighbour, uiCmdCmdId command, wchar_t* message_file) {
    CALL_HOST(ProMenubarmenuChkbuttonAdd, parent_menu, name, label, help, neighbour, after_neighbour, command,
              message_file);
}

ProError ProNotificationSet(int type, ProFunction handler) { CALL_HOST(ProNotificationSet, type, handler); }

ProError ProNotificationUnset(int type) { CALL_HOST(ProNotificationUnset, type); }

ProError ProModeCurrentGet(ProMode* mode) { CALL_HOST(ProModeCurrentGet, mode); }

ProError ProSectionIsActive(ProBoolean* active) { CALL_HOST(ProSectionIsActive, active); }

ProError ProWindowCurrentGet(int* window) { CALL_HOST(ProWindowCurrentGet, window); }

ProError ProWindowRefresh(int window) { CALL_HOST(ProWindowRefresh, window); }

ProError ProMdlCurrentGet(ProMdl* model) { CALL_HOST(ProMdlCurrentGet, model); }

ProError ProSelbufferSelectionsGet(ProSelection** selections) { CALL_HOST(ProSelbufferSelectionsGet, selections); }

ProError ProSelectionarrayFree(ProSelection* selections) { CALL_HOST(ProSelectionarrayFree, selections); }

ProError ProArraySizeGet(ProArray array, int* size) { CALL_HOST(ProArraySizeGet, array, size); }

ProError ProSelectionAsmcomppathGet(ProSelection selection, ProAsmcomppath* path) {
    CALL_HOST(ProSelectionAsmcomppathGet, selection, path);
}

ProError ProFeatureInit(ProSolid owner, int id, ProFeature* feature) { CALL_HOST(ProFeatureInit, owner, id, feature); }

ProError ProAssemblyDynPosSet(ProAssembly assembly, ProBoolean on) { CALL_HOST(ProAssemblyDynPosSet, assembly, on); }

ProError ProAsmcompPositionGet(ProAsmcomp* component, ProMatrix position) {
    CALL_HOST(ProAsmcompPositionGet, component, position);
}

ProError ProAsmcompPositionSet(ProAsmcomppath* path, ProAsmcomp* component, ProMatrix position) {
    CALL_HOST(ProAsmcompPositionSet, path, component, position);
}

ProError ProAsmcompRegenerate(ProAsmcomp* component, ProBoolean update_solid) {
    CALL_HOST(ProAsmcompRegenerate, component, update_solid);
}

ProError ProViewMatrixGet(ProMdl model, ProView view, ProMatrix matrix) {
    CALL_HOST(ProViewMatrixGet, model, view, matrix);
}

ProError ProViewMatrixSet(ProMdl model, ProView view, ProMatrix matrix) {
    CALL_HOST(ProViewMatrixSet, model, view, matrix);
}

ProError ProViewRefit(ProMdl model, ProView view) { CALL_HOST(ProViewRefit, model, view); }

ProError ProVectorTrfEval(ProVector in, ProMatrix matrix, ProVector out) {
    CALL_HOST(ProVectorTrfEval, in, matrix, out);
}

ProError ProMacroLoad(wchar_t* macro) { CALL_HOST(ProMacroLoad, macro); }

ProError ProConfigoptSet(wchar_t* option, wchar_t* value) { CALL_HOST(ProConfigoptSet, option, value); }
