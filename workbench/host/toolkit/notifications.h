// Notification handlers that the plug-in registered, one for each type.
#pragma once

#include <map>

#include "toolkit/pro_toolkit.h"

namespace workbench {

class Notifications {
  public:
    void set(int type, ProFunction handler) { mHandlers[type] = handler; }
    bool unset(int type) { return mHandlers.erase(type) > 0; }
    bool fire(int type);  // false when nothing is registered for the type
    void clear() { mHandlers.clear(); }
    const std::map<int, ProFunction>& all() const { return mHandlers; }

  private:
    std::map<int, ProFunction> mHandlers;
};

Notifications& notifications();

// Fires what a change of the current model and its window means: types 24, 41 and 18, and 72 or 73 when a sketch
// was opened or left.
void notifyModelOpened();

}  // namespace workbench
