#include "tests/substitutes/toolkit.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace substitute {

namespace {

constexpr double kUnitTolerance = 1e-6;

std::string narrow(const wchar_t* text) {
    std::string result;
    for (; *text != L'\0'; ++text) result += static_cast<char>(*text);
    return result;
}

}  // namespace

Matrix4 placedAt(double x, double y, double z) {
    Matrix4 matrix = kIdentity4;
    matrix[3] = {x, y, z, 1};
    return matrix;
}

Toolkit& toolkit() {
    static Toolkit theToolkit;
    return theToolkit;
}

void Toolkit::reset() {
    *this = Toolkit();
    mThread = std::this_thread::get_id();
}

void Toolkit::fail(std::string_view function, ProError err, int from, int count) {
    Function& failing = mFunctions[std::string(function)];
    failing.error = err;
    failing.skip = from - 1;
    failing.left = count;
}

void Toolkit::onCall(std::string_view function, std::function<void()> action) {
    mFunctions[std::string(function)].action =
        action ? std::make_shared<std::function<void()>>(std::move(action)) : nullptr;
}

int Toolkit::calls(std::string_view function) const {
    const auto found = mFunctions.find(function);
    return found == mFunctions.end() ? 0 : found->second.calls;
}

bool Toolkit::hasFailed(std::string_view function) const {
    const auto found = mFunctions.find(function);
    return found != mFunctions.end() && found->second.error != PRO_TK_NO_ERROR;
}

ProError Toolkit::enter(std::string_view name) {
    if (std::this_thread::get_id() != mThread) faults.push_back(std::string(name) + " from another thread");
    auto found = mFunctions.find(name);
    if (found == mFunctions.end()) found = mFunctions.emplace(name, Function{}).first;
    Function& function = found->second;
    ++function.calls;
    if (const auto action = function.action) (*action)();
    if (function.skip > 0) {
        --function.skip;
        return PRO_TK_NO_ERROR;
    }
    if (function.left == 0) return PRO_TK_NO_ERROR;
    if (function.left > 0) --function.left;
    return function.error;
}

void Toolkit::expect(bool isRight, std::string_view function, std::string_view what) {
    if (!isRight) faults.push_back(std::string(function) + ": " + std::string(what));
}

ProSelection* Toolkit::newSelectionArray() {
    std::vector<ProSelection> array;
    for (auto& path : selection) array.push_back(&path);
    ProSelection* const address = array.data();
    mArrays[address] = std::move(array);
    ++selectionArrays;
    return address;
}

bool Toolkit::freeSelectionArray(ProSelection* array) {
    expect(mArrays.contains(array), "ProSelectionarrayFree", "not handed out, or given back already");
    if (mArrays.erase(array) == 0) return false;
    --selectionArrays;
    return true;
}

void expectFinite(const double (*matrix)[4], std::string_view function) {
    const double* const elements = &matrix[0][0];
    toolkit().expect(std::all_of(elements, elements + 16, [](double e) { return std::isfinite(e); }), function,
                     "a matrix that is not finite");
}

}  // namespace substitute

using substitute::expectFinite;
using substitute::toolkit;

constexpr ProMode kMeaningless = 12345;  // what a call that fails may have written all the same

#define ENTER()                                                                   \
    do {                                                                          \
        if (const ProError enterErr = toolkit().enter(__func__)) return enterErr; \
    } while (false)
#define EXPECT_HANDLE(handle) toolkit().expect((handle) != nullptr, __func__, "a null handle")

ProError ProCmdOptionAdd(char* name, uiCmdCmdActFn action, ProBoolean check_type, uiCmdCmdValFn value,
                         uiCmdAccessFn access, ProBoolean in_non_active_window, ProBoolean in_accessory_window,
                         uiCmdCmdId* command) {
    ENTER();
    auto& tk = toolkit();
    tk.commands[name] = {action, value, access};
    *command = &tk.commands[name];
    tk.trace.push_back(std::string("OptionAdd ") + name + " " + std::to_string(check_type) +
                       std::to_string(in_non_active_window) + std::to_string(in_accessory_window));
    return PRO_TK_NO_ERROR;
}

ProError ProCmdChkbuttonValueSet(uiCmdValue*, ProBoolean state) {
    ENTER();
    toolkit().chkbuttonStates.push_back(state);
    return PRO_TK_NO_ERROR;
}

namespace {

std::string commandName(uiCmdCmdId command) {
    for (auto& [name, entry] : toolkit().commands) {
        if (&entry == command) return name;
    }
    return "none";
}

}  // namespace

ProError ProCmdDesignate(uiCmdCmdId command, char* label, char* help, char* description, wchar_t* message_file) {
    EXPECT_HANDLE(command);
    ENTER();
    toolkit().trace.push_back("Designate " + commandName(command) + "|" + label + "|" + help + "|" + description + "|" +
                              substitute::narrow(message_file));
    return PRO_TK_NO_ERROR;
}

ProError ProMenubarMenuAdd(char* name, char* label, char* neighbour, ProBoolean after_neighbour,
                           wchar_t* message_file) {
    ENTER();
    toolkit().trace.push_back(std::string("MenuAdd ") + name + "|" + label + "|" + neighbour + "|" +
                              std::to_string(after_neighbour) + "|" + substitute::narrow(message_file));
    return PRO_TK_NO_ERROR;
}

ProError ProMenubarmenuChkbuttonAdd(char* parent_menu, char* name, char* label, char* help, char* neighbour,
                                    ProBoolean after_neighbour, uiCmdCmdId command, wchar_t* message_file) {
    EXPECT_HANDLE(command);
    ENTER();
    toolkit().trace.push_back(std::string("ChkbuttonAdd ") + parent_menu + "|" + name + "|" + label + "|" + help + "|" +
                              (neighbour == nullptr ? "null" : neighbour) + "|" + std::to_string(after_neighbour) +
                              "|" + commandName(command) + "|" + substitute::narrow(message_file));
    return PRO_TK_NO_ERROR;
}

ProError ProNotificationSet(int type, ProFunction handler) {
    ENTER();
    toolkit().notifications[type] = handler;
    toolkit().trace.push_back("NotificationSet " + std::to_string(type));
    return PRO_TK_NO_ERROR;
}

ProError ProNotificationUnset(int type) {
    ENTER();
    return toolkit().notifications.erase(type) == 1 ? PRO_TK_NO_ERROR : PRO_TK_E_NOT_FOUND;
}

ProError ProModeCurrentGet(ProMode* mode) {
    *mode = kMeaningless;
    ENTER();
    *mode = toolkit().mode;
    return PRO_TK_NO_ERROR;
}

ProError ProSectionIsActive(ProBoolean* active) {
    ENTER();
    *active = toolkit().isSketchActive;
    return PRO_TK_NO_ERROR;
}

ProError ProWindowCurrentGet(int* window) {
    ENTER();
    *window = toolkit().window;
    return PRO_TK_NO_ERROR;
}

ProError ProWindowRefresh(int window) {
    toolkit().expect(window == toolkit().window, __func__, "no window");
    ENTER();
    return window == toolkit().window ? PRO_TK_NO_ERROR : PRO_TK_BAD_INPUTS;
}

ProError ProMdlCurrentGet(ProMdl* model) {
    ENTER();
    *model = &toolkit();
    return PRO_TK_NO_ERROR;
}

ProError ProSelbufferSelectionsGet(ProSelection** selections) {
    ENTER();
    if (toolkit().selection.empty()) return PRO_TK_E_NOT_FOUND;
    *selections = toolkit().newSelectionArray();
    return PRO_TK_NO_ERROR;
}

ProError ProSelectionarrayFree(ProSelection* selections) {
    EXPECT_HANDLE(selections);
    ENTER();
    return toolkit().freeSelectionArray(selections) ? PRO_TK_NO_ERROR : PRO_TK_BAD_INPUTS;
}

ProError ProArraySizeGet(ProArray array, int* size) {
    EXPECT_HANDLE(array);
    ENTER();
    *size = toolkit().arraySize.value_or(static_cast<int>(toolkit().selection.size()));
    return PRO_TK_NO_ERROR;
}

ProError ProSelectionAsmcomppathGet(ProSelection selection, ProAsmcomppath* path) {
    EXPECT_HANDLE(selection);
    ENTER();
    const auto& ids = *static_cast<std::vector<int>*>(selection);
    path->owner = &toolkit();
    path->table_num = static_cast<int>(ids.size());
    std::copy_n(ids.begin(), std::min<std::size_t>(ids.size(), PRO_MAX_ASSEM_LEVEL), path->comp_id_table);
    return PRO_TK_NO_ERROR;
}

ProError ProFeatureInit(ProSolid owner, int id, ProFeature* feature) {
    EXPECT_HANDLE(owner);
    ENTER();
    *feature = {0, id, owner};
    return PRO_TK_NO_ERROR;
}

ProError ProAssemblyDynPosSet(ProAssembly assembly, ProBoolean on) {
    EXPECT_HANDLE(assembly);
    ENTER();
    if (assembly != &toolkit()) return PRO_TK_BAD_INPUTS;
    toolkit().isDynamic = on == PRO_B_TRUE;
    return PRO_TK_NO_ERROR;
}

ProError ProAsmcompPositionGet(ProAsmcomp* component, ProMatrix position) {
    EXPECT_HANDLE(component->owner);
    ENTER();
    const auto found = toolkit().components.find(component->id);
    if (component->owner != &toolkit() || found == toolkit().components.end()) return PRO_TK_E_NOT_FOUND;
    std::memcpy(position, &found->second, sizeof(ProMatrix));
    return PRO_TK_NO_ERROR;
}

ProError ProAsmcompPositionSet(ProAsmcomppath* path, ProAsmcomp* component, ProMatrix position) {
    EXPECT_HANDLE(path->owner);
    EXPECT_HANDLE(component->owner);
    expectFinite(position, __func__);
    ENTER();
    toolkit().expect(toolkit().isDynamic || toolkit().hasFailed("ProAssemblyDynPosSet"), __func__,
                     "outside dynamic positioning");
    const auto found = toolkit().components.find(component->id);
    if (path->owner != &toolkit() || path->table_num < 1 || found == toolkit().components.end()) {
        return PRO_TK_E_NOT_FOUND;
    }
    std::memcpy(&found->second, position, sizeof(ProMatrix));
    return PRO_TK_NO_ERROR;
}

ProError ProAsmcompRegenerate(ProAsmcomp* component, ProBoolean) {
    EXPECT_HANDLE(component->owner);
    ENTER();
    return toolkit().components.contains(component->id) ? PRO_TK_NO_ERROR : PRO_TK_E_NOT_FOUND;
}

ProError ProViewMatrixGet(ProMdl, ProView, ProMatrix matrix) {
    ENTER();
    std::memcpy(matrix, &toolkit().view, sizeof(ProMatrix));
    return PRO_TK_NO_ERROR;
}

ProError ProViewMatrixSet(ProMdl, ProView, ProMatrix matrix) {
    expectFinite(matrix, __func__);
    ENTER();
    for (int i = 0; i < 3; ++i) {
        const double size = std::hypot(matrix[i][0], matrix[i][1], matrix[i][2]);
        const bool isUnit = std::abs(size - 1.0) < substitute::kUnitTolerance;
        toolkit().expect(isUnit, __func__, "a row that is not of length 1");
        if (!isUnit) return PRO_TK_BAD_INPUTS;
    }
    std::memcpy(&toolkit().view, matrix, sizeof(ProMatrix));
    return PRO_TK_NO_ERROR;
}

ProError ProViewRefit(ProMdl, ProView) {
    ENTER();
    return PRO_TK_NO_ERROR;
}

ProError ProVectorTrfEval(ProVector in, ProMatrix matrix, ProVector out) {
    expectFinite(matrix, __func__);
    ENTER();
    const double x = in[0], y = in[1], z = in[2];
    for (int i = 0; i < 3; ++i) out[i] = x * matrix[0][i] + y * matrix[1][i] + z * matrix[2][i];
    return PRO_TK_NO_ERROR;
}

ProError ProMacroLoad(wchar_t* macro) {
    ENTER();
    toolkit().macros.emplace_back(macro);
    return PRO_TK_NO_ERROR;
}

ProError ProConfigoptSet(wchar_t* option, wchar_t* value) {
    ENTER();
    toolkit().options[option] = value;
    return PRO_TK_NO_ERROR;
}
