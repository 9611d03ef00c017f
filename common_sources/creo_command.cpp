// Runs what the user bound to a device button: an entry of the menu file, or a standard view.
#include <array>
#include <cstdio>

#include "OB_Daemon/src/logging.h"
#include "common_sources/command_text.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/hand_over.h"
#include "common_sources/rotation.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr std::string_view kToggleMoveCommand = "OB_Toggle_Object_Move_Mode";
constexpr std::string_view kToggleScrollCommand = "OB_Toggle_Scroll_Mode";

constexpr std::int32_t kFitEvent = 0x2000C;

// The angles are truncated on purpose; buttons have always set exactly these views.
constexpr double kHalfTurn = 3.14159;
constexpr double kQuarterTurn = 1.570795;

struct StandardView {
    std::int32_t code;
    Vector3 axis;
    double angle;  // radians
};
constexpr std::array<StandardView, 6> kStandardViews{{
    {0x20009, {0, 0, 1}, 0.0},
    {0x2000A, {0, 1, 0}, kQuarterTurn},
    {0x2000B, {1, 0, 0}, -kQuarterTurn},
    {0x20016, {0, 1, 0}, kHalfTurn},
    {0x20017, {0, 1, 0}, -kQuarterTurn},
    {0x20018, {1, 0, 0}, kQuarterTurn},
}};

const StandardView* findStandardView(std::int32_t code) {
    for (const auto& view : kStandardViews) {
        if (view.code == code) return &view;
    }
    return nullptr;
}

}  // namespace

void CreoProxy::execApplFunction(std::uint32_t menuFncIdx) {
    if (menuFncIdx >= mMenuFunctions.size()) {
        OB_LOG(LogLevel::ERR) << "menuFncIdx (" << menuFncIdx << "') too big (max. is "
                              << static_cast<int>(mMenuFunctions.size()) - 1 << ")!";
        return;
    }
    const std::string command(mMenuFunctions[menuFncIdx]);
    if (command == kToggleMoveCommand) {
        toggleComponentMove();
        return;
    }
    if (command == kToggleScrollCommand) {
        toggleScrolling();
        return;
    }
    const std::string macro = commandMacro(command);
    OB_LOG(LogLevel::TRC) << "macro: " << macro;
    if (mIsMapkeyUsed) {
        executeCommandByMapkey(macro);
        return;
    }
    std::wstring wide = toWide(macro);
    const ProError err = ProMacroLoad(wide.data());
    if (err != PRO_TK_NO_ERROR) std::fprintf(stderr, "Error in ProMacroLoad()! err=%d\n", static_cast<int>(err));
}

void CreoProxy::execSpecialApplFunction(std::int32_t code) {
    OB_LOG(LogLevel::TMP) << "Execute special function " << code << " ... ";
    if (code == kFitEvent) {
        refitView();
        return;
    }
    if (const StandardView* view = findStandardView(code)) {
        setView(view->axis, view->angle);
    } else {
        OB_LOG(LogLevel::ERR) << "Unknown special command '" << code << "' found!";
    }
    if (mHandOver.contextFlag != 0) refitView();
}

void CreoProxy::setView(const std::array<double, 3>& axis, double angle) {
    const Matrix3 block = angle == 0.0 ? kIdentity3 : withUnitRows(rotation(axis, angle));
    ProMatrix matrix;
    toToolkit(transposed(block), {0, 0, 0}, matrix);
    logFailure("ProViewMatrixSet", ProViewMatrixSet(nullptr, nullptr, matrix));
    int window = -1;
    const ProError err = ProWindowCurrentGet(&window);
    logFailure("ProWindowCurrentGet", err);
    if (err == PRO_TK_NO_ERROR) logFailure("ProWindowRefresh", ProWindowRefresh(window));
}

void CreoProxy::refitView() { logFailure("ProViewRefit", ProViewRefit(nullptr, nullptr)); }
