#include "common_sources/creo_proxy.h"

#include <array>

#include "OB_Daemon/src/logging.h"
#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/settings.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

// The toolkit's texts are not const.
char kMenuName[] = "Orbikon";
char kHelpMenu[] = "Help";
char kMoveCommand[] = "Orbikon_ToggleMoveMode";
char kScrollCommand[] = "Orbikon_ToggleScrollMode";
char kMoveLabel[] = "Toggle Move Mode";
char kScrollLabel[] = "Toggle Scroll Mode";
wchar_t kMessageFile[] = L"Orbikon.txt";

// --- What Creo calls ---

// Runs the body of a callback, and before it the timer, should none be armed. `otherwise` is answered when there is no
// object that may be used, and when something is thrown.
template <typename Body>
int visit(const Edge& edge, int otherwise, Body&& body) {
    return atEdge(edge, otherwise, [&] {
        const CreoProxy::Visit proxy;
        if (!proxy) return otherwise;
        proxy->ensureTimer();
        return body(proxy);
    });
}

int moveToggleAction(uiCmdCmdId, uiCmdValue* value, void*) {
    return visit({kLogClass, "moveToggleAction"}, 0, [value](auto& proxy) {
        const bool isOn = proxy->toggleComponentMove();
        ProCmdChkbuttonValueSet(value, isOn);
        return isOn ? 1 : 0;
    });
}

int scrollToggleAction(uiCmdCmdId, uiCmdValue* value, void*) {
    return visit({kLogClass, "scrollToggleAction"}, 0, [value](auto& proxy) {
        const bool isOn = proxy->toggleScrolling();
        ProCmdChkbuttonValueSet(value, isOn);
        return isOn ? 0 : 1;  // the inverse of the move toggle's answer, as it always was
    });
}

int moveToggleValue(uiCmdCmdId, uiCmdValue* value) {
    return visit({kLogClass, "moveToggleValue"}, -1, [value](auto& proxy) {
        ProCmdChkbuttonValueSet(value, proxy->isComponentMoveOn());
        return -1;
    });
}

int scrollToggleValue(uiCmdCmdId, uiCmdValue* value) {
    return visit({kLogClass, "scrollToggleValue"}, -1, [value](auto& proxy) {
        ProCmdChkbuttonValueSet(value, proxy->isScrollingOn());
        return -1;
    });
}

int moveToggleAccess(int) {
    return visit({kLogClass, "moveToggleAccess"}, ACCESS_UNAVAILABLE, [](auto& proxy) {
        proxy->checkWindows();
        return proxy->checkMode(true) == CreoProxy::kAssemblyMode ? ACCESS_AVAILABLE : ACCESS_UNAVAILABLE;
    });
}

int scrollToggleAccess(int) {
    return visit({kLogClass, "scrollToggleAccess"}, ACCESS_AVAILABLE, [](auto& proxy) {
        proxy->checkWindows();
        proxy->checkMode(true);
        return ACCESS_AVAILABLE;
    });
}

int onWindowChange() {
    return visit({kLogClass, "onWindowChange"}, 0, [](auto& proxy) {
        proxy->checkWindows();
        proxy->checkMode(false);
        return 0;
    });
}

int onModelChange() {
    return visit({kLogClass, "onModelChange"}, 0, [](auto& proxy) {
        proxy->checkMode(false);
        return 0;
    });
}

// Notification types in Creo's numbering. Not all are unset at the end; the handlers stand that.
struct Notification {
    int type;
    ProFunction handler;
    bool isUnset;
};
constexpr std::array<Notification, 5> kNotifications{{
    {24, onWindowChange, true},
    {41, onWindowChange, true},
    {18, onWindowChange, true},
    {72, onModelChange, false},
    {73, onModelChange, false},
}};

}  // namespace

CreoProxy::CreoProxy(Settings& settings, HandOver& handOver, LegacyCom1& legacyCom1, LifeCycle& lifeCycle)
    : mSettings(settings), mHandOver(handOver), mLegacyCom1(legacyCom1) {
    OB_LOG(LogLevel::CRT) << "Constructing ...";
    receiveCallbacks(lifeCycle);
    try {
        discoverWindows();
        registerAll();
        if (mSettings.mUseMapkeyForCommands) defineMapkey();
    } catch (...) {
        unregister();
        throw;
    }
    OB_LOG(LogLevel::CRT) << "CreoProxy constructed.";
}

CreoProxy::~CreoProxy() {
    OB_LOG(LogLevel::CRT) << "Destructing ...";
    unregister();
    OB_LOG(LogLevel::CRT) << "Destructed.";
}

void CreoProxy::registerAll() {
    registerCommands();
    for (const auto& [type, handler, isUnset] : kNotifications) {
        logFailure("ProNotificationSet", ProNotificationSet(type, handler));
    }
}

void CreoProxy::unregister() {
    for (const auto& [type, handler, isUnset] : kNotifications) {
        if (isUnset) logFailure("ProNotificationUnset", ProNotificationUnset(type));
    }
    mHandOver.isEnding = true;
    killTimer();
    endGeneration();
    refuseCallbacks();
}

void CreoProxy::registerCommands() {
    uiCmdCmdId moveCommand = nullptr;
    uiCmdCmdId scrollCommand = nullptr;
    logFailure("ProCmdOptionAdd", ProCmdOptionAdd(kMoveCommand, moveToggleAction, PRO_B_TRUE, moveToggleValue,
                                                  moveToggleAccess, PRO_B_TRUE, PRO_B_TRUE, &moveCommand));
    logFailure("ProCmdOptionAdd", ProCmdOptionAdd(kScrollCommand, scrollToggleAction, PRO_B_TRUE, scrollToggleValue,
                                                  scrollToggleAccess, PRO_B_TRUE, PRO_B_TRUE, &scrollCommand));
    logFailure("ProMenubarMenuAdd", ProMenubarMenuAdd(kMenuName, kMenuName, kHelpMenu, PRO_B_FALSE, kMessageFile));

    struct Item {
        char* label;
        uiCmdCmdId command;  // null when Creo refused it
    };
    const std::array<Item, 2> items{{{kMoveLabel, moveCommand}, {kScrollLabel, scrollCommand}}};
    for (const auto& [label, command] : items) {
        if (command == nullptr) continue;
        logFailure("ProMenubarmenuChkbuttonAdd", ProMenubarmenuChkbuttonAdd(kMenuName, label, label, label, nullptr,
                                                                            PRO_B_TRUE, command, kMessageFile));
    }
    for (const auto& [label, command] : items) {
        if (command == nullptr) continue;
        logFailure("ProCmdDesignate", ProCmdDesignate(command, label, label, label, kMessageFile));
    }
}
