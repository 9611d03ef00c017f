// What the view's matrix means, and what can be set.
#include <cmath>
#include <cstdio>

#include "tools/probe/checker.h"
#include "tools/probe/view_matrix.h"

namespace probe {

namespace {

constexpr double kTolerance = 1e-6;

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

std::string vectorText(const double* v) { return number(v[0]) + " " + number(v[1]) + " " + number(v[2]); }

class ViewChecker : public Checker {
  public:
    explicit ViewChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void look() override {
        if (Context::has({"ProVectorTrfEval"}) && isOpen("view.vector")) checkVector();
        const bool isMatrixToCheck = isOpen("view.convention") || isOpen("view.axes");
        if (!isMatrixToCheck || !Context::has({"ProViewMatrixGet", "ProVectorTrfEval"})) return;
        Marked<ProMatrix> view;
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("view.record", [&] { result = ProViewMatrixGet(nullptr, nullptr, view.record); })) return;
        mFindings.tell("view.record", view.isIntact(), intactText(view.isIntact()));
        if (result != PRO_TK_NO_ERROR) return mFindings.note("view.convention", answerText("ProViewMatrixGet", result));
        checkMatrix(view.record);
    }

    void perform(Task task, bool) override {
        if (task != Task::view || !Context::has({"ProViewMatrixGet", "ProViewMatrixSet"})) return;
        ProMatrix before{}, unit{};
        ProError read = PRO_TK_GENERAL_ERROR;
        mContext.attempt("view.record", [&] { read = ProViewMatrixGet(nullptr, nullptr, before); });
        if (read != PRO_TK_NO_ERROR || !unitRows(before, unit)) {
            return mFindings.note("view.set", "there is no view to set");
        }
        checkSet(unit);
        checkRejection(unit);
        ProMatrix after{};
        ProViewMatrixGet(nullptr, nullptr, after);
        if (distance(before, after) > 0) ProViewMatrixSet(nullptr, nullptr, unit);
    }

  private:
    bool isOpen(const char* row) const { return mFindings.outcome(row) == Outcome::notMet; }

    // A quarter turn about z with a shift: 1 2 3 becomes -2 1 3.
    void checkVector() {
        ProMatrix turn = {{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {7, 8, 9, 1}};
        ProVector in = {1, 2, 3}, out = {};
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("view.vector", [&] { result = ProVectorTrfEval(in, turn, out); })) return;
        const bool isRight = std::abs(out[0] + 2) + std::abs(out[1] - 1) + std::abs(out[2] - 3) < kTolerance;
        mFindings.tell(
            "view.vector", result == PRO_TK_NO_ERROR && isRight,
            answerText("ProVectorTrfEval", result) + ": 1 2 3 becomes " + vectorText(out) + ", expected -2 1 3");
    }

    void checkMatrix(ProMatrix& view) {
        const Convention convention = conventionOf(view);
        if (convention == Convention::unknown) {
            mFindings.note("view.convention", conventionName(convention));
        } else {
            mFindings.tell("view.convention", convention == Convention::row, conventionName(convention));
        }
        const double scale = scaleOf(view);
        mFindings.tell("view.scale", scale > 0, scale > 0 ? "scale " + number(scale) : "lengths or angles differ");
        checkAxes(view);
    }

    void checkAxes(ProMatrix& view) {
        ProMatrix axes{};
        if (!unitRowsOfInverse(view, axes)) return mFindings.tell("view.axes", false, "the matrix has no inverse");
        std::string found;
        bool areRight = true;
        for (int i = 0; i < 3; ++i) {
            ProVector out = {};
            if (!mContext.attempt("view.axes", [&] { ProVectorTrfEval(axes[i], view, out); })) return;
            const double length = std::sqrt(out[0] * out[0] + out[1] * out[1] + out[2] * out[2]);
            areRight = areRight && length > 0 && std::abs(out[i] / length - 1) < kTolerance;
            found += (i > 0 ? "; " : "") + vectorText(out);
        }
        mFindings.tell("view.axes", areRight, "they become " + found);
    }

    void checkSet(ProMatrix& unit) {
        ProMatrix after{}, now{};
        ProError result = PRO_TK_GENERAL_ERROR;
        if (!mContext.attempt("view.set", [&] { result = ProViewMatrixSet(nullptr, nullptr, unit); })) return;
        ProViewMatrixGet(nullptr, nullptr, after);
        const bool isSame = unitRows(after, now) && distance(unit, now) < kTolerance;
        mFindings.tell(
            "view.set", result == PRO_TK_NO_ERROR && isSame,
            answerText("ProViewMatrixSet", result) + (isSame ? ", the axes are those" : ", the axes differ"));
    }

    void checkRejection(const ProMatrix& unit) {
        ProMatrix doubled{};
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) doubled[i][j] = unit[i][j] * (i < 3 ? 2 : 1);
        }
        ProError result = PRO_TK_NO_ERROR;
        if (!mContext.attempt("view.rejects", [&] { result = ProViewMatrixSet(nullptr, nullptr, doubled); })) return;
        mFindings.tell("view.rejects", result != PRO_TK_NO_ERROR, answerText("ProViewMatrixSet", result));
    }

    Context& mContext;
    Findings& mFindings;
};

}  // namespace

std::unique_ptr<Checker> makeViewChecker(Context& context) { return std::make_unique<ViewChecker>(context); }

}  // namespace probe
