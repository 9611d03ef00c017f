// What the other files of CreoProxy stand on: how callbacks reach the one object, the toggle of the scrolling, and the
// line about a call that failed.
#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/life_cycle.h"
#include "common_sources/settings.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

// What callbacks reach, which carry no user data: the object, and whether it may be used.
CreoProxy* instance = nullptr;
LifeCycle* lifeCycleOfInstance = nullptr;

}  // namespace

void CreoProxy::receiveCallbacks(LifeCycle& lifeCycle) {
    instance = this;
    lifeCycleOfInstance = &lifeCycle;
}

void CreoProxy::refuseCallbacks() { instance = nullptr; }

CreoProxy::Visit::Visit() : mProxy(instance != nullptr && lifeCycleOfInstance->enter() ? instance : nullptr) {}

CreoProxy::Visit::~Visit() {
    if (mProxy != nullptr) lifeCycleOfInstance->leave();
}

bool CreoProxy::isScrollingOn() const { return mSettings.mScrollTreeAndList; }

bool CreoProxy::toggleScrolling() {
    bool& isOn = mSettings.mScrollTreeAndList;
    return isOn = !isOn;
}

void CreoProxy::logFailure(const char* function, int err) {
    if (err == PRO_TK_NO_ERROR || !mLogLimit.isDue(function)) return;
    OB_LOG(LogLevel::ERR) << "Error in " << function << "()! err=" << err;
}
