// Decides, once a tick, who gets the cap's motion: Creo's own device support (through the daemon's legacy channel),
// the tree or list under the mouse pointer, or the selected components of an assembly.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "OB_Daemon/src/logging.h"
#include "common_sources/creo_proxy.h"
#include "common_sources/edge.h"
#include "common_sources/hand_over.h"
#include "common_sources/legacy_com1.h"
#include "common_sources/motion_step.h"
#include "common_sources/rotation.h"
#include "common_sources/settings.h"
#include "toolkit/pro_toolkit.h"

namespace {

constexpr char kLogClass[] = "CreoProxy";

constexpr std::int32_t kTransSensUnit = 500;

// More than anybody selects: a size beyond it is none.
constexpr int kMostSelections = 100000;

// True while the cap is outside the dead band.
bool capMoving = false;

// Says what is not moved, and why: once in a movement of the cap, however many steps that has.
class NotMoved {
  public:
    void startMovement() { mIsTold = false; }
    void tell(const char* reason) {
        if (isFirst()) OB_LOG(LogLevel::WRN) << "The selection is not moved, " << reason << "!";
    }
    void tell(int component, const char* reason) {
        if (isFirst()) OB_LOG(LogLevel::WRN) << "Component " << component << " is not moved, " << reason << "!";
    }
    bool isFirst() { return !std::exchange(mIsTold, true); }

  private:
    bool mIsTold = false;
};
NotMoved notMoved;

// The selection buffer's content, given back to the host when it goes out of scope.
class Selections {
  public:
    Selections() { ProSelbufferSelectionsGet(&mArray); }
    ~Selections() {
        if (mArray != nullptr) ProSelectionarrayFree(mArray);
    }
    Selections(const Selections&) = delete;
    Selections& operator=(const Selections&) = delete;

    bool isNull() const { return mArray == nullptr; }
    // Negative when the host does not tell it, or tells nonsense.
    int size() const {
        int size = 0;
        if (ProArraySizeGet(mArray, &size) != PRO_TK_NO_ERROR || size > kMostSelections) return -1;
        return size;
    }
    ProSelection at(int index) const { return mArray[index]; }

  private:
    ProSelection* mArray = nullptr;
};

// Dynamic positioning of an assembly's components, switched on for the time of one step.
class DynamicPositioning {
  public:
    explicit DynamicPositioning(ProAssembly assembly) : mAssembly(assembly) {
        ProAssemblyDynPosSet(mAssembly, PRO_B_TRUE);
    }
    ~DynamicPositioning() {
        // Left on it would stay on: nothing else ever switches it off.
        for (int tries = 0; tries < kTriesToSwitchOff; ++tries) {
            if (ProAssemblyDynPosSet(mAssembly, PRO_B_FALSE) == PRO_TK_NO_ERROR) return;
        }
    }
    DynamicPositioning(const DynamicPositioning&) = delete;
    DynamicPositioning& operator=(const DynamicPositioning&) = delete;

  private:
    static constexpr int kTriesToSwitchOff = 3;

    ProAssembly mAssembly;
};

// Empties a command slot once the command was acted on, also when it failed: it must not come again every tick.
struct SlotConsumer {
    std::atomic<std::int32_t>& slot;
    std::int32_t empty;
    ~SlotConsumer() { slot = empty; }
};

struct Axes {
    std::int16_t tx, ty, tz, rx, ry, rz;

    static Axes read(const HandOver::Motion& slots) {
        return {slots.tx, slots.ty, slots.tz, slots.rx, slots.ry, slots.rz};
    }

    bool areWithin(std::int32_t threshold) const {
        for (const int value : {tx, ty, tz, rx, ry, rz}) {
            if (std::abs(value) > threshold) return false;
        }
        return true;
    }
};

// The screen's axes in model coordinates. False when the host does not tell its view or the view is degenerate.
bool getScreenAxes(Vector3& ax, Vector3& ay, Vector3& az) {
    ProMatrix view{};
    if (ProViewMatrixGet(nullptr, nullptr, view) != PRO_TK_NO_ERROR) return false;
    const Matrix3 rows = withUnitRows(inverse(blockOf(view)));
    if (!isFinite(rows)) return false;
    ProMatrix toModel;
    toToolkit(rows, {0, 0, 0}, toModel);
    Vector3* const results[] = {&ax, &ay, &az};
    for (int i = 0; i < 3; ++i) {
        ProVector unit = {kIdentity3[i][0], kIdentity3[i][1], kIdentity3[i][2]};
        if (ProVectorTrfEval(unit, toModel, results[i]->data()) != PRO_TK_NO_ERROR) return false;
    }
    return true;
}

// The component that a selection moves: always the top-level one of its path.
struct SelectedComponent {
    ProAsmcomppath path{};
    ProAsmcomp component{};
    ProMatrix position{};

    // False for a selection without a component path, and for a component whose position the host does not tell or
    // that cannot be turned: it would otherwise be put anywhere.
    bool read(ProSelection selection) {
        if (ProSelectionAsmcomppathGet(selection, &path) != PRO_TK_NO_ERROR || path.table_num <= 0) return false;
        const int id = path.comp_id_table[0];
        if (path.table_num > PRO_MAX_ASSEM_LEVEL) return leaveAlone(id, "its path is longer than a path can be");
        if (ProFeatureInit(path.owner, id, &component) != PRO_TK_NO_ERROR ||
            ProAsmcompPositionGet(&component, position) != PRO_TK_NO_ERROR) {
            return leaveAlone(id, "its position cannot be read");
        }
        if (!isTurnable(position)) {
            return leaveAlone(id, "its position is degenerate or not finite");
        }
        return true;
    }

  private:
    static bool leaveAlone(int id, const char* reason) {
        notMoved.tell(id, reason);
        return false;
    }
};

// The selections that take part in a step, by index: those that the centre was taken of. What cannot be read then, and
// can a moment later, would be turned about a centre that is not its own.
class Members {
  public:
    explicit Members(int count) : mFlags(std::move(sSpare)) {
        mFlags.assign(static_cast<std::size_t>(std::max(0, count)), false);
    }
    ~Members() { sSpare = std::move(mFlags); }
    Members(const Members&) = delete;
    Members& operator=(const Members&) = delete;

    void add(int index) { mFlags[static_cast<std::size_t>(index)] = true; }
    bool contains(int index) const { return mFlags[static_cast<std::size_t>(index)]; }

  private:
    static std::vector<bool> sSpare;  // keeps its memory, so that a step allocates nothing
    std::vector<bool> mFlags;
};
std::vector<bool> Members::sSpare;

// Centre of the bounding box of the selected components' origins; not finite when they are too far apart.
Vector3 centreOf(const Selections& selections, int count, Members& members) {
    OriginBox box;
    for (int i = 0; i < count; ++i) {
        SelectedComponent selected;
        if (!selected.read(selections.at(i))) continue;
        members.add(i);
        box.add(originOf(selected.position));
    }
    return box.centre();
}

// Moves and turns the selected components by one step, as a group about the centre of their origins. False when there
// is nothing that could be moved.
bool moveComponents(const Step& step) {
    int window = -1;
    ProMdl assembly = nullptr;
    const bool isWindowKnown = ProWindowCurrentGet(&window) == PRO_TK_NO_ERROR;
    ProMdlCurrentGet(&assembly);
    const Selections selections;
    if (selections.isNull()) return false;
    if (assembly == nullptr) {
        notMoved.tell("there is no current model");
        return false;
    }

    {
        const DynamicPositioning positioning(assembly);
        const int count = selections.size();
        if (count < 0) {
            notMoved.tell("its size makes no sense");
            return false;
        }
        Members members(count);
        const GroupMove move(step, centreOf(selections, count, members));
        for (int i = 0; i < count; ++i) {
            SelectedComponent selected;
            if (!members.contains(i) || !selected.read(selections.at(i))) continue;
            if (!move.apply(selected.position)) {
                notMoved.tell(selected.component.id, "it would come to lie nowhere");
                continue;
            }
            ProAsmcompPositionSet(&selected.path, &selected.component, selected.position);
            ProAsmcompRegenerate(&selected.component, PRO_B_TRUE);
        }
    }
    if (isWindowKnown) ProWindowRefresh(window);
    return true;
}

bool scaleStep(const Axes& axes, const Settings& settings, Step& step) {
    const std::int32_t quotient = settings.mTraSensBase / kTransSensUnit;
    const double transDivisor = quotient;
    const double rotDivisor = settings.mRotSensBase;
    const Vector3 translation{axes.tx / transDivisor, axes.ty / transDivisor, axes.tz / transDivisor};
    const Vector3 turn{axes.rx / rotDivisor, axes.ry / rotDivisor, axes.rz / rotDivisor};
    if (!isFinite(translation) || !isFinite(turn)) return false;
    step.dtx = translation[0];
    step.dty = translation[1];
    step.dtz = translation[2];
    step.drx = turn[0];
    step.dry = turn[1];
    step.drz = turn[2];
    return true;
}

}  // namespace

bool CreoProxy::isCapMoving() { return capMoving; }

bool CreoProxy::doTransform() {
    static constexpr char kMethod[] = "doTransform";
    atEdge({kLogClass, kMethod}, [this] {
        using Clock = std::chrono::steady_clock;
        const auto start = Clock::now();
        OB_LOG_IN(LogLevel::INF, kMethod) << "Do Transformation";
        const auto maxTime = static_cast<std::uint32_t>(mSettings.mMaxContMoveTime);
        decideLegacyChannel();
        std::uint32_t elapsed = 0;
        int cnt = 0;
        while (elapsed < maxTime && !mHandOver.isEnding) {
            using std::chrono::milliseconds;
            elapsed =
                static_cast<std::uint32_t>(std::chrono::duration_cast<milliseconds>(Clock::now() - start).count());
            runPendingCommands();
            if (!transformOnce()) break;
            ++cnt;
        }
        OB_LOG_IN(LogLevel::INF, kMethod) << "Finished Transformation, cnt: " << cnt << ", timeDiff: " << elapsed;
    });
    return capMoving;
}

// Leaves the motion to Creo's own device support unless the plug-in is going to use it.
void CreoProxy::decideLegacyChannel() {
    bool hasSelection = false;
    if (mHandOver.mode == kAssemblyMode && mIsComponentMoveOn) {
        ProMdl model = nullptr;
        ProMdlCurrentGet(&model);
        hasSelection = !Selections().isNull();
    }
    int x = 0, y = 0;
    WindowHandle window = nullptr;
    const bool isScrolling = classifyPointerWindow(x, y, window) != ScrollKind::none;
    if (mHandOver.isEnding) return;  // whoever ends the plug-in gives the channel back for good
    if (isScrolling || hasSelection) {
        mLegacyCom1.stopLegacyCom1();
    } else {
        mLegacyCom1.resetLegacyCom1();
    }
}

void CreoProxy::runPendingCommands() {
    if (const std::int32_t index = mHandOver.applFunction; index >= 0) {
        const SlotConsumer consumer{mHandOver.applFunction, HandOver::kNoFunction};
        execApplFunction(static_cast<std::uint32_t>(index));
    }
    if (const std::int32_t code = mHandOver.specialEvent; code > 0) {
        const SlotConsumer consumer{mHandOver.specialEvent, HandOver::kNoEvent};
        OB_LOG(LogLevel::INF) << "keyEvent: " << code;
        execSpecialApplFunction(code);
    }
}

// One pass over the latest motion. True when components were moved and the next pass may follow at once.
bool CreoProxy::transformOnce() {
    const Axes axes = Axes::read(mHandOver.motion);
    const bool isMoving = !axes.areWithin(mSettings.mMinThreshold);
    if (isMoving != capMoving) {
        capMoving = isMoving;
        notMoved.startMovement();
        OB_LOG(LogLevel::TRC) << (isMoving ? "Cap moving." : "Cap released.");
    }
    if (!isMoving) return false;
    if (scrollTreeAndList(axes.tx, axes.ty, axes.tz)) return false;
    if (mHandOver.mode != kAssemblyMode || !mIsComponentMoveOn) return false;

    Step step;
    if (!scaleStep(axes, mSettings, step)) {
        if (notMoved.isFirst()) {
            OB_LOG(LogLevel::ERR) << "transSensBase or rotSensBase too small, components are not moved!";
        }
        return false;
    }
    if (!getScreenAxes(step.ax, step.ay, step.az)) {
        if (notMoved.isFirst()) OB_LOG(LogLevel::ERR) << "No screen axes, components are not moved!";
        return false;
    }
    return moveComponents(step);
}
