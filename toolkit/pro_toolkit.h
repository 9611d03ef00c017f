// Declarations of the Creo toolkit functions that the plug-in calls, written by hand: C linkage, cdecl, the record
// layouts of 32-bit x86 or of 64-bit hosts. The plug-in's definitions (pro_toolkit.cpp) find each function by its
// undecorated name in the running host; the workbench's host defines and exports the same names itself.
//
// Common to all functions:
//  - Result: ProError, 0 = done. In the plug-in a function that the host does not export answers
//    PRO_TK_GENERAL_ERROR and writes none of its outputs.
//  - Thread: only the host's user-interface thread may call them.
//  - Texts are not const because the toolkit's own declarations are not; the host does not write to them. Narrow
//    texts are in the process code page, wide texts are UTF-16 on Windows.
#pragma once

#ifdef PRO_TOOLKIT_HOST  // defined by the program that implements the functions
#define PRO_TOOLKIT_API extern "C" __declspec(dllexport)
#else
#define PRO_TOOLKIT_API extern "C"
#endif

using ProError = int;
inline constexpr ProError PRO_TK_NO_ERROR = 0;
inline constexpr ProError PRO_TK_GENERAL_ERROR = -1;
inline constexpr ProError PRO_TK_BAD_INPUTS = -2;
inline constexpr ProError PRO_TK_E_NOT_FOUND = -4;
inline constexpr ProError PRO_TK_E_FOUND = -5;

using ProBoolean = int;
inline constexpr ProBoolean PRO_B_FALSE = 0;
inline constexpr ProBoolean PRO_B_TRUE = 1;

using ProMode = int;  // order of the menu file's mode list, from 0
inline constexpr ProMode PRO_MODE_UNUSED = -1;
inline constexpr ProMode PRO_MODE_SKETCHER = 0;
inline constexpr ProMode PRO_MODE_PART = 1;
inline constexpr ProMode PRO_MODE_ASSEMBLY = 5;

// Opaque handles, owned by the host.
using ProMdl = void*;
using ProSolid = ProMdl;
using ProAssembly = ProMdl;
using ProView = void*;
using ProSelection = void*;
using ProArray = void*;
using uiCmdCmdId = void*;
struct uiCmdValue;  // only its address is passed on

// Row convention: a vector is a row, out = in x matrix. Rows 0-2 are the axes, row 3 is the origin.
using ProMatrix = double[4][4];
using ProVector = double[3];

struct ProFeature {
    int type;
    int id;
    ProMdl owner;
};
using ProAsmcomp = ProFeature;

inline constexpr int PRO_MAX_ASSEM_LEVEL = 25;

// Way from the top assembly down to a component: identifiers of the first `table_num` levels.
struct ProAsmcomppath {
    ProSolid owner;
    int comp_id_table[PRO_MAX_ASSEM_LEVEL];
    int table_num;
};

#ifdef _WIN64
static_assert(sizeof(ProFeature) == 16 && sizeof(ProAsmcomppath) == 112 && sizeof(ProMatrix) == 128,
              "record layouts are fixed by the host");
#elif defined(_WIN32)
static_assert(sizeof(ProFeature) == 12 && sizeof(ProAsmcomppath) == 108 && sizeof(ProMatrix) == 128,
              "record layouts are fixed by the host");
#endif

// Callbacks (cdecl).
using uiCmdCmdActFn = int (*)(uiCmdCmdId command, uiCmdValue* value, void* data);
using uiCmdCmdValFn = int (*)(uiCmdCmdId command, uiCmdValue* value);
using uiCmdAccessFn = int (*)(int access_mode);  // answers 1 = unavailable, 3 = available
using ProFunction = int (*)();                   // notification handler; the host passes arguments that vary by type

inline constexpr int ACCESS_UNAVAILABLE = 1;
inline constexpr int ACCESS_AVAILABLE = 3;

// Commands and menus.
PRO_TOOLKIT_API ProError ProCmdOptionAdd(char* name, uiCmdCmdActFn action, ProBoolean check_type, uiCmdCmdValFn value,
                                         uiCmdAccessFn access, ProBoolean in_non_active_window,
                                         ProBoolean in_accessory_window, uiCmdCmdId* command);
PRO_TOOLKIT_API ProError ProCmdChkbuttonValueSet(uiCmdValue* value, ProBoolean state);
PRO_TOOLKIT_API ProError ProCmdDesignate(uiCmdCmdId command, char* label, char* help, char* description,
                                         wchar_t* message_file);
PRO_TOOLKIT_API ProError ProMenubarMenuAdd(char* name, char* label, char* neighbour, ProBoolean after_neighbour,
                                           wchar_t* message_file);
PRO_TOOLKIT_API ProError ProMenubarmenuChkbuttonAdd(char* parent_menu, char* name, char* label, char* help,
                                                    char* neighbour, ProBoolean after_neighbour, uiCmdCmdId command,
                                                    wchar_t* message_file);

// Notifications, in the host's numbering of types.
PRO_TOOLKIT_API ProError ProNotificationSet(int type, ProFunction handler);
PRO_TOOLKIT_API ProError ProNotificationUnset(int type);

// Mode and windows.
PRO_TOOLKIT_API ProError ProModeCurrentGet(ProMode* mode);
PRO_TOOLKIT_API ProError ProSectionIsActive(ProBoolean* active);
PRO_TOOLKIT_API ProError ProWindowCurrentGet(int* window);
PRO_TOOLKIT_API ProError ProWindowRefresh(int window);
PRO_TOOLKIT_API ProError ProMdlCurrentGet(ProMdl* model);

// Selection. ProSelbufferSelectionsGet answers PRO_TK_E_NOT_FOUND with nothing selected and may then leave the
// pointer untouched; an array it hands out belongs to the caller, who gives it back with ProSelectionarrayFree.
PRO_TOOLKIT_API ProError ProSelbufferSelectionsGet(ProSelection** selections);
PRO_TOOLKIT_API ProError ProSelectionarrayFree(ProSelection* selections);
PRO_TOOLKIT_API ProError ProArraySizeGet(ProArray array, int* size);
PRO_TOOLKIT_API ProError ProSelectionAsmcomppathGet(ProSelection selection, ProAsmcomppath* path);

// Assembly components.
PRO_TOOLKIT_API ProError ProFeatureInit(ProSolid owner, int id, ProFeature* feature);
PRO_TOOLKIT_API ProError ProAssemblyDynPosSet(ProAssembly assembly, ProBoolean on);
PRO_TOOLKIT_API ProError ProAsmcompPositionGet(ProAsmcomp* component, ProMatrix position);
PRO_TOOLKIT_API ProError ProAsmcompPositionSet(ProAsmcomppath* path, ProAsmcomp* component, ProMatrix position);
PRO_TOOLKIT_API ProError ProAsmcompRegenerate(ProAsmcomp* component, ProBoolean update_solid);

// View; a null model or view is the current one. The matrix that the get answers turns model into screen coordinates
// and has shift and scale in it; the set rejects a matrix whose axis rows are not of length 1.
PRO_TOOLKIT_API ProError ProViewMatrixGet(ProMdl model, ProView view, ProMatrix matrix);
PRO_TOOLKIT_API ProError ProViewMatrixSet(ProMdl model, ProView view, ProMatrix matrix);
PRO_TOOLKIT_API ProError ProViewRefit(ProMdl model, ProView view);
PRO_TOOLKIT_API ProError ProVectorTrfEval(ProVector in, ProMatrix matrix, ProVector out);  // rotation part only

// Macros (queued; run when control is back in the host's message loop) and configuration options.
PRO_TOOLKIT_API ProError ProMacroLoad(wchar_t* macro);
PRO_TOOLKIT_API ProError ProConfigoptSet(wchar_t* option, wchar_t* value);
