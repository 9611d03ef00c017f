#include "workbench/host/toolkit/notifications.h"

#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/plugin_call.h"

namespace workbench {
namespace {

constexpr int MODEL_TYPES[] = {24, 41, 18};
constexpr int SKETCH_OPENED = 72;
constexpr int SKETCH_LEFT = 73;

using Handler = int (*)(int, int, int, int);  // cdecl: a handler without parameters takes no harm from them

}  // namespace

Notifications& notifications() {
    static Notifications all;
    return all;
}

bool Notifications::fire(int type) {
    const auto found = mHandlers.find(type);
    if (found == mHandlers.end()) return false;
    callPlugin(reinterpret_cast<Handler>(reinterpret_cast<void*>(found->second)), 0, 0, 0, 0);
    return true;
}

void notifyModelOpened() {
    static bool wasSketch = false;
    for (const int type : MODEL_TYPES) notifications().fire(type);
    const bool isSketch = host().isSketchActive();
    if (isSketch != wasSketch) notifications().fire(isSketch ? SKETCH_OPENED : SKETCH_LEFT);
    wasSketch = isSketch;
}

}  // namespace workbench
