// Stands in for the host within a test program: defines the functions of toolkit/pro_toolkit.h on a small assembly of
// components with positions, a selection, a view and a mode. Everything is for the one thread that plays the host's
// user-interface thread; calls from another one are counted as faults.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
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
    std::optional<int> arraySize;  // what ProArraySizeGet answers instead of the selection's size

    // --- What reached the host ---
    int selectionArrays = 0;  // handed out and not given back
    bool isDynamic = false;   // dynamic positioning is on
    // Whatever no host should be called with: from another thread, null handles, what is not finite, an array given
    // back twice, positions outside dynamic positioning. A line each.
    std::vector<std::string> faults;
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
    // The function answers err (0: works again) and writes no outputs, or such as mean nothing, in `count` calls
    // (negative: all) from the from-th one on.
    void fail(std::string_view function, ProError err = PRO_TK_GENERAL_ERROR, int from = 1, int count = -1);
    // Runs the action in every call of the function, before anything else.
    void onCall(std::string_view function, std::function<void()> action);
    int calls(std::string_view function) const;
    bool hasFailed(std::string_view function) const;  // was made to, and was not made to work again

    // For the functions themselves: counts the call; the error that the function is to answer.
    ProError enter(std::string_view function);
    void expect(bool isRight, std::string_view function, std::string_view what);  // notes a fault
    ProSelection* newSelectionArray();
    bool freeSelectionArray(ProSelection* array);

  private:
    struct Function {
        int calls = 0;
        ProError error = PRO_TK_NO_ERROR;
        int skip = 0;                                   // calls that work before
        int left = -1;                                  // calls that fail; negative: all
        std::shared_ptr<std::function<void()>> action;  // shared: it may set another while it runs
    };
    std::map<std::string, Function, std::less<>> mFunctions;
    std::thread::id mThread;
    std::map<ProSelection*, std::vector<ProSelection>> mArrays;
};

Toolkit& toolkit();

}  // namespace substitute
