// The buttons of the device, bound to commands of a menu file.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "workbench/bindings/bind_file.h"

namespace workbench {

// Command part of each item of a menu file's section [MenuBar] that has one, in file order: the position is the
// function index that a button press reports. Throws std::runtime_error when the file cannot be read or has no such
// section.
std::vector<std::string> readMenuFunctions(const std::string& menuFile);

enum class UnknownCommands { refused, kept };

class Bindings {
  public:
    // Replaces the bindings by those of the file, with each command looked up in the menu file. Throws
    // std::runtime_error, and changes nothing, when a file cannot be read, a line cannot be understood, or commands
    // are not in the menu file (all of them are named). Commands that are kept although the menu file has them no
    // more can be bound, not pressed.
    void load(const std::string& bindFile, const std::string& menuFile, UnknownCommands unknown);

    // Function index of a button in a mode. Throws std::runtime_error when it is not bound there, or to a command that
    // is not in the menu file.
    int functionIndex(const std::string& mode, int button) const;

    std::size_t count() const;
    std::vector<std::string> lines() const;  // "mode|button|command|function index", -1 = not in the menu file

  private:
    BindFile mFile;
    std::map<std::string, int> mIndices;  // by command; the first counts
    std::string mMenuFile;
};

}  // namespace workbench
