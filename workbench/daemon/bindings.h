// What the device's control panel keeps: which button runs which command in which mode.
//
// A bind file is text. "[Mode]" begins the bindings of a mode ("[Default]" holds for modes that do not bind the
// button), "button = command" binds a button, counted from 1. A command is written as in the menu file, for example
// "ProCmdEnvMdlDisp*Wireframe" or "OB_Toggle_Object_Move_Mode". Empty lines and lines that begin with "#" are skipped.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace workbench {

// Command part of each item of a menu file's section [MenuBar] that has one, in file order: the position is the
// function index that a button press reports. Throws std::runtime_error when the file cannot be read or has no such
// section.
std::vector<std::string> readMenuFunctions(const std::string& menuFile);

class Bindings {
  public:
    // Replaces the bindings by those of the file, with each command looked up in the menu file. Throws
    // std::runtime_error, and changes nothing, when a file cannot be read, a line cannot be understood, or commands
    // are not in the menu file (all of them are named).
    void load(const std::string& bindFile, const std::string& menuFile);

    // Function index of a button in a mode. Throws std::runtime_error when it is not bound there.
    int functionIndex(const std::string& mode, int button) const;

    std::size_t count() const;

  private:
    using Buttons = std::map<int, int>;  // function index by button
    std::map<std::string, Buttons> mModes;
};

}  // namespace workbench
