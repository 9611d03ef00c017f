// The host's own commands.
#pragma once

#include <functional>

namespace workbench {

// What some of them need of windows and plug-ins. No function may be empty.
struct BuiltinNeeds {
    std::function<void()> redrawGraphics;  // before it returns
    std::function<bool()> toggleTree;      // answers whether the model tree is shown now
    std::function<void()> showAccessory;
    std::function<void()> modelOpened;  // another model has become the current one
};

// To be called once, before commands are run.
void addBuiltinCommands(BuiltinNeeds needs);

}  // namespace workbench
