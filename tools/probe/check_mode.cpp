// Mode numbers, and which notifications come when.
#include <algorithm>
#include <optional>
#include <span>

#include "tools/probe/callers.h"
#include "tools/probe/checker.h"

namespace probe {

namespace {

constexpr int kTypes[] = {24, 41, 18, 72, 73};
constexpr int kWindowTypes[] = {24, 41, 18};
constexpr int kSketchTypes[] = {72, 73};
constexpr int kTypesEnd = 100;
constexpr ULONGLONG kBeforeMs = 1000;  // a change is seen a little after its notification
constexpr int kPatienceMs = 2000;
constexpr ProMode kDrawing = 6;

std::array<std::atomic<ULONGLONG>, kTypesEnd> arrivals{};  // by type

template <int Type>
int onNotification() {
    const void* const arguments = __builtin_dwarf_cfa();
    return atEdge(0, [&] {
        arrivals[Type] = GetTickCount64();
        noteCaller(Caller::notification, arguments);
        return 0;
    });
}
constexpr ProFunction kHandlers[] = {onNotification<24>, onNotification<41>, onNotification<18>, onNotification<72>,
                                     onNotification<73>};

struct Situation {
    int window = -1;
    ProMdl model = nullptr;
    ProBoolean sketch = PRO_B_FALSE;
};

// A change that notifications should tell of.
struct Change {
    const char* row;
    std::span<const int> types;
    ULONGLONG seen;
};

class ModeChecker : public Checker {
  public:
    explicit ModeChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    ~ModeChecker() override {
        for (const int type : kTypes) ProNotificationUnset(type);
    }

    void start() override {
        if (!Context::has({"ProNotificationSet"})) return;
        std::string results;
        bool isSet = true;
        const bool isTried = mContext.attempt("notify.set", [&] {
            for (std::size_t i = 0; i < std::size(kTypes); ++i) {
                const ProError result = ProNotificationSet(kTypes[i], kHandlers[i]);
                isSet = isSet && result == PRO_TK_NO_ERROR;
                results += (i > 0 ? ", " : "") + std::to_string(kTypes[i]) + ": " + std::to_string(result);
            }
        });
        if (isTried) mFindings.tell("notify.set", isSet, results);
    }

    void tick() override {
        if (!Context::has({"ProWindowCurrentGet", "ProMdlCurrentGet", "ProSectionIsActive"})) return;
        Situation now;
        const bool isTried = mContext.attempt("notify.window", [&] {
            ProWindowCurrentGet(&now.window);
            ProMdlCurrentGet(&now.model);
            ProSectionIsActive(&now.sketch);
        });
        if (!isTried) return;
        if (mHasBefore && (now.window != mBefore.window || now.model != mBefore.model)) {
            mWindowChange = Change{"notify.window", kWindowTypes, GetTickCount64()};
        }
        if (mHasBefore && now.sketch != mBefore.sketch) {
            mSketchChange = Change{"notify.sketch", kSketchTypes, GetTickCount64()};
        }
        mBefore = now;
        mHasBefore = true;
        decide(mWindowChange);
        decide(mSketchChange);
    }

    void perform(Task task, bool) override {
        if (textOf(task).kind != TaskKind::confirm || task == Task::selectNothing) return;
        if (!Context::has({"ProModeCurrentGet", "ProSectionIsActive"})) return;
        ProMode mode = PRO_MODE_UNUSED;
        ProBoolean sketch = PRO_B_FALSE;
        ProError result = PRO_TK_GENERAL_ERROR;
        const bool isTried = mContext.attempt("mode.assembly", [&] {
            result = ProModeCurrentGet(&mode);
            ProSectionIsActive(&sketch);
        });
        if (!isTried) return;
        const std::string found = answerText("ProModeCurrentGet", result) + " and mode " + std::to_string(mode) +
                                  ", ProSectionIsActive " + std::to_string(sketch);
        const auto is = [&](ProMode wanted) { return result == PRO_TK_NO_ERROR && mode == wanted; };
        if (task == Task::assembly) mFindings.tell("mode.assembly", is(PRO_MODE_ASSEMBLY), found);
        if (task == Task::part) mFindings.tell("mode.part", is(PRO_MODE_PART), found);
        if (task == Task::drawing) mFindings.tell("mode.drawing", is(kDrawing), found);
        if (task == Task::sketch) mFindings.tell("mode.sketch", sketch == PRO_B_TRUE, found);
        const bool isSketchless = task == Task::assembly || task == Task::part;
        if (isSketchless && sketch != PRO_B_FALSE) mFindings.tell("mode.sketch", false, "without a sketch: " + found);
    }

  private:
    void decide(std::optional<Change>& change) {
        if (!change) return;
        std::string came;
        for (const int type : change->types) {
            if (arrivals[type] != 0 && arrivals[type] + kBeforeMs >= change->seen) came += " " + std::to_string(type);
        }
        if (came.empty() && GetTickCount64() < change->seen + kPatienceMs) return;
        mFindings.tell(change->row, !came.empty(), came.empty() ? "none came" : "came:" + came);
        change.reset();
    }

    Context& mContext;
    Findings& mFindings;
    Situation mBefore;
    bool mHasBefore = false;
    std::optional<Change> mWindowChange;
    std::optional<Change> mSketchChange;
};

}  // namespace

std::unique_ptr<Checker> makeModeChecker(Context& context) { return std::make_unique<ModeChecker>(context); }

}  // namespace probe
