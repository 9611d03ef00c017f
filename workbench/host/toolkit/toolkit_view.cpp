// Toolkit functions: view.
#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/matrix_check.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/toolkit/toolkit_matrix.h"

using namespace workbench;

namespace {

// Each model has one view, whose handle is the model's; null stands for the current one.
Model* modelOfView(ProMdl model, ProView view) {
    if (view != nullptr && view != model) return nullptr;
    return model == nullptr ? &host().model() : host().findModel(model);
}

}  // namespace

ProError ProViewMatrixGet(ProMdl model, ProView view, ProMatrix matrix) {
    return toolkitCall(__func__, [&] {
        Model* known = modelOfView(model, view);
        if (known == nullptr || matrix == nullptr) return PRO_TK_BAD_INPUTS;
        toMatrix(host().viewOf(*known).matrix(), matrix);
        return PRO_TK_NO_ERROR;
    });
}

ProError ProViewMatrixSet(ProMdl model, ProView view, ProMatrix matrix) {
    noteMatrix(__func__, matrix);
    return toolkitCall(__func__, [&] {
        Model* known = modelOfView(model, view);
        if (known == nullptr || matrix == nullptr) return PRO_TK_BAD_INPUTS;
        if (!host().viewOf(*known).setOrientation(fromMatrix(matrix))) return PRO_TK_BAD_INPUTS;
        host().listeners.pictureChanged();
        return PRO_TK_NO_ERROR;
    });
}

ProError ProViewRefit(ProMdl model, ProView view) {
    return toolkitCall(__func__, [&] {
        Model* known = modelOfView(model, view);
        if (known == nullptr) return PRO_TK_BAD_INPUTS;
        host().viewOf(*known).refit(known->bounds());
        host().listeners.pictureChanged();
        return PRO_TK_NO_ERROR;
    });
}

ProError ProVectorTrfEval(ProVector in, ProMatrix matrix, ProVector out) {
    return toolkitCall(__func__, [&] {
        if (in == nullptr || matrix == nullptr || out == nullptr) return PRO_TK_BAD_INPUTS;
        const Vec3 turned = fromMatrix(matrix).direction({in[0], in[1], in[2]});
        out[0] = turned.x;
        out[1] = turned.y;
        out[2] = turned.z;
        return PRO_TK_NO_ERROR;
    });
}
