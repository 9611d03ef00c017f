// The bindings that somebody edits, with the way back. Pure; one thread at a time.
#pragma once

#include <string>
#include <vector>

#include "workbench/bindings/bind_file.h"

namespace workbench {

class BindModel {
  public:
    void load(BindFile file);  // forgets the way back
    const BindFile& file() const { return mFile; }

    // Texts that a bind file cannot hold (line ends, an empty command) are refused: false, and nothing changes.
    bool bind(const std::string& mode, int button, const std::string& command);
    bool unbind(const std::string& mode, int button);  // false when the button is not bound in that mode itself
    bool undo();                                       // false when there is nothing to undo
    bool canUndo() const { return !mBefore.empty(); }

    // What a button does in a mode, and whether the mode itself says so (or "all modes"). Null: nothing.
    struct Bound {
        const std::string* command = nullptr;
        bool isInherited = false;
    };
    Bound bound(const std::string& mode, int button) const;

  private:
    void change(BindFile next);

    BindFile mFile;
    std::vector<BindFile> mBefore;
};

}  // namespace workbench
