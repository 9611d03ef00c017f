// What is selected, and the records that describe it.
#include <cmath>

#include "tools/probe/selected_component.h"
#include "tools/probe/view_matrix.h"

namespace probe {

namespace {

constexpr int kMostSelections = 100000;
constexpr double kTolerance = 1e-6;

class SelectionChecker : public Checker {
  public:
    explicit SelectionChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void look() override {
        if (mFindings.isDone(Task::selectComponent) || !Context::has(kSelectionFunctions)) return;
        mContext.attempt("selection.free", [&] {
            Selections selections;
            if (!selections.isThere()) return;
            checkArray(selections);
            const ProError freed = selections.free();
            mFindings.tell("selection.free", freed == PRO_TK_NO_ERROR, answerText("ProSelectionarrayFree", freed));
        });
    }

    void perform(Task task, bool) override {
        if (task != Task::selectNothing || !Context::has({"ProSelbufferSelectionsGet"})) return;
        int untouched = 0;
        ProSelection* const mark = reinterpret_cast<ProSelection*>(&untouched);
        ProSelection* array = mark;
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("selection.empty", [&] { result = ProSelbufferSelectionsGet(&array); })) return;
        const std::string pointer = array == mark ? "untouched" : array == nullptr ? "null" : "set";
        mFindings.tell("selection.empty", result == PRO_TK_E_NOT_FOUND,
                       answerText("ProSelbufferSelectionsGet", result) + ", the pointer is " + pointer);
        if (result == PRO_TK_NO_ERROR && array != mark && array != nullptr) ProSelectionarrayFree(array);
    }

  private:
    void checkArray(const Selections& selections) {
        int size = 0;
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("selection.size", [&] { result = ProArraySizeGet(selections.array(), &size); })) return;
        const bool isSensible = result == PRO_TK_NO_ERROR && size >= 1 && size <= kMostSelections;
        mFindings.tell("selection.size", isSensible,
                       answerText("ProArraySizeGet", result) + ": " + std::to_string(size));
        if (isSensible) checkPath(selections.array()[0]);
    }

    void checkPath(ProSelection selection) {
        Marked<ProAsmcomppath> path;
        ProError result = PRO_TK_GENERAL_ERROR;
        const bool isTried =
            mContext.attempt("selection.path", [&] { result = ProSelectionAsmcomppathGet(selection, &path.record); });
        if (!isTried) return;
        mFindings.tell("records.path", path.isIntact(), intactText(path.isIntact()));
        const int levels = path.record.table_num;
        if (result != PRO_TK_NO_ERROR || levels == 0) {
            return mFindings.note("selection.path", "the selection is no component");
        }
        mFindings.tell("selection.path", levels >= 1 && levels <= PRO_MAX_ASSEM_LEVEL,
                       std::to_string(levels) + " identifiers");
        ProMdl model = nullptr;
        ProMdlCurrentGet(&model);
        mFindings.tell("selection.owner", path.record.owner == model,
                       path.record.owner == model ? "the same" : "another model");
        checkComponent(path.record);
        checkMode();
    }

    // Who has components is an assembly.
    void checkMode() {
        ProMode mode = PRO_MODE_UNUSED;
        if (ProModeCurrentGet(&mode) != PRO_TK_NO_ERROR) return;
        mFindings.tell("mode.assembly", mode == PRO_MODE_ASSEMBLY,
                       "mode " + std::to_string(mode) + " with a component selected");
    }

    void checkComponent(const ProAsmcomppath& path) {
        Marked<ProFeature> feature;
        const int id = path.comp_id_table[0];
        ProError result = PRO_TK_GENERAL_ERROR;
        const bool isTried =
            mContext.attempt("records.feature", [&] { result = ProFeatureInit(path.owner, id, &feature.record); });
        if (!isTried) return;
        const bool isFilled = feature.record.id == id && feature.record.owner == path.owner;
        mFindings.tell("records.feature", feature.isIntact() && (result != PRO_TK_NO_ERROR || isFilled),
                       intactText(feature.isIntact()) + ", type " + std::to_string(feature.record.type));
        Marked<ProMatrix> position;
        ProError read = PRO_TK_GENERAL_ERROR;
        if (result == PRO_TK_NO_ERROR) {
            mContext.attempt("records.position",
                             [&] { read = ProAsmcompPositionGet(&feature.record, position.record); });
        }
        mFindings.tell("selection.component", read == PRO_TK_NO_ERROR,
                       answerText("ProFeatureInit", result) + ", " + answerText("ProAsmcompPositionGet", read));
        if (read != PRO_TK_NO_ERROR) return;
        mFindings.tell("records.position", position.isIntact(), intactText(position.isIntact()));
        checkPosition(position.record);
    }

    void checkPosition(const ProMatrix& position) {
        const Convention convention = conventionOf(position);
        const bool isUnit = std::abs(scaleOf(position) - 1) < kTolerance;
        if (convention == Convention::unknown && isUnit) {
            return mFindings.note("selection.position", "the component lies at the origin: select another");
        }
        mFindings.tell("selection.position", convention == Convention::row && isUnit,
                       std::string(conventionName(convention)) + (isUnit ? "" : "; axes not of length 1"));
    }

    Context& mContext;
    Findings& mFindings;
};

}  // namespace

std::unique_ptr<Checker> makeSelectionChecker(Context& context) { return std::make_unique<SelectionChecker>(context); }

}  // namespace probe
