// Moves the selected component by one unit and puts it back.
#include <cmath>
#include <cstring>

#include "tools/probe/selected_component.h"
#include "tools/probe/view_matrix.h"

namespace probe {

namespace {

constexpr double kTolerance = 1e-9;
constexpr int kTriesToPutBack = 3;

class MoveChecker : public Checker {
  public:
    explicit MoveChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void perform(Task task, bool) override {
        if (task != Task::move || !Context::has(kSelectionFunctions)) return;
        if (!Context::has({"ProAssemblyDynPosSet", "ProAsmcompPositionSet", "ProAsmcompRegenerate", "ProWindowRefresh",
                           "ProWindowCurrentGet"})) {
            return;
        }
        // What ended Creo would be called again to put the component back.
        for (const char* row : {"move.set", "move.regenerate", "move.dynamic"}) {
            if (!mFindings.mayTry(row)) return;
        }
        mContext.attempt("move.back", [&] {
            const Selections selections;
            if (!selections.isThere() || !readComponent(selections.array()[0])) {
                return mFindings.note("move.set", "no component was selected");
            }
            moveAndPutBack();
        });
    }

  private:
    bool readComponent(ProSelection selection) {
        ProMdl model = nullptr;
        return ProSelectionAsmcomppathGet(selection, &mPath) == PRO_TK_NO_ERROR && mPath.table_num >= 1 &&
               ProMdlCurrentGet(&model) == PRO_TK_NO_ERROR && (mAssembly = model) != nullptr &&
               ProFeatureInit(mPath.owner, mPath.comp_id_table[0], &mComponent) == PRO_TK_NO_ERROR &&
               ProAsmcompPositionGet(&mComponent, mBefore) == PRO_TK_NO_ERROR && isFinite(mBefore);
    }

    void moveAndPutBack() {
        const auto dynamic = [&](ProBoolean on) {
            ProError result = PRO_TK_GENERAL_ERROR;
            mContext.attempt("move.dynamic", [&] { result = ProAssemblyDynPosSet(mAssembly, on); });
            return result;
        };
        const ProError on = dynamic(PRO_B_TRUE);
        moveByOne();
        putBack();
        const ProError off = dynamic(PRO_B_FALSE);
        mFindings.tell("move.dynamic", on == PRO_TK_NO_ERROR && off == PRO_TK_NO_ERROR,
                       "on: " + std::to_string(on) + ", off: " + std::to_string(off));
        refresh();
        ProMatrix now{};
        ProAsmcompPositionGet(&mComponent, now);
        const bool isSame = std::memcmp(now, mBefore, sizeof now) == 0;
        mFindings.tell("move.back", isSame,
                       isSame ? "all bits are the same" : "off by " + std::to_string(distance(now, mBefore)));
    }

    // Along x, wherever the matrix has its shift.
    void moveByOne() {
        ProMatrix moved{}, now{};
        std::memcpy(moved, mBefore, sizeof moved);
        const bool isColumn = conventionOf(mBefore) == Convention::column;
        (isColumn ? moved[0][3] : moved[3][0]) += 1;
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("move.set", [&] { result = ProAsmcompPositionSet(&mPath, &mComponent, moved); })) return;
        ProAsmcompPositionGet(&mComponent, now);
        const double missed = distance(now, moved);
        mFindings.tell("move.set", result == PRO_TK_NO_ERROR && missed <= kTolerance,
                       answerText("ProAsmcompPositionSet", result) + ", off by " + std::to_string(missed));
        ProError regenerated = PRO_TK_GENERAL_ERROR;
        const bool isTried =
            mContext.attempt("move.regenerate", [&] { regenerated = ProAsmcompRegenerate(&mComponent, PRO_B_TRUE); });
        if (!isTried) return;
        mFindings.tell("move.regenerate", regenerated == PRO_TK_NO_ERROR,
                       answerText("ProAsmcompRegenerate", regenerated));
    }

    void putBack() {
        for (int tries = 0; tries < kTriesToPutBack; ++tries) {
            ProMatrix back{}, now{};
            std::memcpy(back, mBefore, sizeof back);
            ProAsmcompPositionSet(&mPath, &mComponent, back);
            ProAsmcompRegenerate(&mComponent, PRO_B_TRUE);
            if (ProAsmcompPositionGet(&mComponent, now) == PRO_TK_NO_ERROR && distance(now, mBefore) <= kTolerance) {
                return;
            }
        }
    }

    void refresh() {
        int window = -1;
        ProWindowCurrentGet(&window);
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("move.refresh", [&] { result = ProWindowRefresh(window); })) return;
        mFindings.tell("move.refresh", result == PRO_TK_NO_ERROR, answerText("ProWindowRefresh", result));
    }

    Context& mContext;
    Findings& mFindings;
    ProAsmcomppath mPath{};
    ProAsmcomp mComponent{};
    ProAssembly mAssembly = nullptr;
    ProMatrix mBefore{};
};

}  // namespace

std::unique_ptr<Checker> makeMoveChecker(Context& context) { return std::make_unique<MoveChecker>(context); }

}  // namespace probe
