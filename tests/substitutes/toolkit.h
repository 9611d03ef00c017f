// Stands in for the host within a test program: defines the functions of toolkit/pro_toolkit.h on a small assembly of
// components with positions, a selection, a view and a mode. Everything is for the one thread that plays the host's
// user-interface thread; calls from another one are counted as faults.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "toolkit/pro_toolkit.h"

namespace substitute {

using Matrix4 = std::array<std::array<double, 4>, 4>;
inline constexpr Matrix4 kIdentity4{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};
Matrix4 placedAt(double x, double y, double z);

class Toolkit {
  public:
    // An empty assembly in mode 1 (part), identity view, current window 1.
    void reset();

    // --- Model ---
    std::map<int, Matrix4> components;        // top-level components by identifier
    std::vector<std::vector<int>> selection;  // component paths; an empty path is a selection of something else
    Matrix4 view = kIdentity4;
    ProMode mode = PRO_MODE_PART;
    bool isSketchActive = false;
    int window = 1;

    // --- What reached the host ---
    int selectionArrays = 0;  // handed out and not given back
    int badFrees = 0;         // given back twice, or never handed out
    int foreignCalls = 0;     // from another thread
    bool isDynamic = false;   // dynamic positioning is on
    int positionsSetOutsideDynamic = 0;
    int rejectedViews = 0;  // ProViewMatrixSet with rows not of length 1
    std::vector<std::wstring> macros;
    std::map<std::wstring, std::wstring> options;
    std::map<int, ProFunction> notifications;
    std::vector<std::string> trace;  // registrations, in order, with their arguments

    struct Command {
        uiCmdCmdActFn action;
        uiCmdCmdValFn value;
        uiCmdAccessFn access;
    };
    std::map<std::string, Command> commands;
    std::vector<int> chkbuttonStates;  // what ProCmdChkbuttonValueSet was called with

    // --- Failures and calls ---
    // The function answers err from now on (0: works again) and writes no outputs.
    void fail(std::string_view function, ProError err = PRO_TK_GENERAL_ERROR);
    // Runs the action in every call of the function, before anything else.
    void onCall(std::string_view function, std::function<void()> action);
    int calls(std::string_view function) const;

    // For the functions themselves: counts the call; the error that the function is to answer.
    ProError enter(std::string_view function);
    ProSelection* newSelectionArray();
    bool freeSelectionArray(ProSelection* array);

  private:
    struct Function {
        int calls = 0;
        ProError error = PRO_TK_NO_ERROR;
        std::shared_ptr<const std::function<void()>> action;
    };
    std::map<std::string, Function, std::less<>> mFunctions;
    std::thread::id mThread;
    std::map<ProSelection*, std::vector<ProSelection>> mArrays;
};

Toolkit& toolkit();

}  // namespace substitute
