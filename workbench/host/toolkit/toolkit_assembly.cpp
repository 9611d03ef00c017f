// Toolkit functions: selection and assembly components.
#include <windows.h>

#include <algorithm>

#include "workbench/host/model/host_state.h"
#include "workbench/host/toolkit/matrix_check.h"
#include "workbench/host/toolkit/selection_arrays.h"
#include "workbench/host/toolkit/toolkit_call.h"
#include "workbench/host/toolkit/toolkit_matrix.h"

using namespace workbench;

namespace {

constexpr int FEATURE_TYPE = 3;  // what ProFeatureInit writes into a record's type

// The component that a record names; null when the owner is no model or has no such top-level component.
Component* findComponent(const ProAsmcomp* component, Model** owner) {
    *owner = component == nullptr ? nullptr : host().findModel(component->owner);
    return *owner == nullptr ? nullptr : (*owner)->find({component->id});
}

}  // namespace

ProError ProSelbufferSelectionsGet(ProSelection** selections) {
    return toolkitCall(__func__, [&] {
        if (selections == nullptr) return PRO_TK_BAD_INPUTS;
        if (host().selection().empty()) return PRO_TK_E_NOT_FOUND;
        Model& model = host().model();
        std::vector<SelectionItem> items;
        for (const ComponentPath& path : host().selection()) {
            items.push_back({&model, model.isAssembly() ? path : ComponentPath{}});  // a part's bodies have no path
        }
        *selections = selectionArrays().make(items);
        return PRO_TK_NO_ERROR;
    });
}

ProError ProSelectionarrayFree(ProSelection* selections) {
    return releasingCall(__func__,
                         [&] { return selectionArrays().free(selections) ? PRO_TK_NO_ERROR : PRO_TK_BAD_INPUTS; });
}

ProError ProArraySizeGet(ProArray array, int* size) {
    return toolkitCall(__func__, [&] {
        const int known = selectionArrays().sizeOf(array);
        if (known < 0 || size == nullptr) return PRO_TK_BAD_INPUTS;
        *size = known;
        return PRO_TK_NO_ERROR;
    });
}

ProError ProSelectionAsmcomppathGet(ProSelection selection, ProAsmcomppath* path) {
    return toolkitCall(__func__, [&] {
        const SelectionItem* item = selectionArrays().find(selection);
        if (item == nullptr || path == nullptr) return PRO_TK_BAD_INPUTS;
        *path = {};
        path->owner = item->model;
        path->table_num = static_cast<int>(std::min<std::size_t>(item->path.size(), PRO_MAX_ASSEM_LEVEL));
        std::copy_n(item->path.begin(), path->table_num, path->comp_id_table);
        return PRO_TK_NO_ERROR;
    });
}

ProError ProFeatureInit(ProSolid owner, int id, ProFeature* feature) {
    return toolkitCall(__func__, [&] {
        Model* model = host().findModel(owner);
        if (model == nullptr || feature == nullptr) return PRO_TK_BAD_INPUTS;
        if (model->find({id}) == nullptr) return PRO_TK_E_NOT_FOUND;
        *feature = {FEATURE_TYPE, id, owner};
        return PRO_TK_NO_ERROR;
    });
}

ProError ProAssemblyDynPosSet(ProAssembly assembly, ProBoolean on) {
    return toolkitCall(__func__, [&] {
        Model* model = host().findModel(assembly);
        if (model == nullptr || !model->isAssembly()) return PRO_TK_BAD_INPUTS;
        if (on != PRO_B_FALSE) {
            host().history.openDrag(*model);
        } else {
            host().history.closeDrag(GetTickCount());
        }
        return PRO_TK_NO_ERROR;
    });
}

ProError ProAsmcompPositionGet(ProAsmcomp* component, ProMatrix position) {
    return toolkitCall(__func__, [&] {
        Model* owner = nullptr;
        const Component* known = findComponent(component, &owner);
        if (owner == nullptr || position == nullptr) return PRO_TK_BAD_INPUTS;
        if (known == nullptr) return PRO_TK_E_NOT_FOUND;
        toMatrix(known->position, position);
        return PRO_TK_NO_ERROR;
    });
}

// The component's own position within the model is set; the path must lead to it or into it. A position that is no
// set of numbers is refused, since nothing could be drawn any more.
ProError ProAsmcompPositionSet(ProAsmcomppath* path, ProAsmcomp* component, ProMatrix position) {
    noteMatrix(__func__, position);
    return toolkitCall(__func__, [&] {
        Model* owner = nullptr;
        Component* known = findComponent(component, &owner);
        if (owner == nullptr || path == nullptr || position == nullptr) return PRO_TK_BAD_INPUTS;
        if (path->owner != owner || path->table_num < 1 || path->comp_id_table[0] != component->id) {
            return PRO_TK_BAD_INPUTS;
        }
        if (known == nullptr) return PRO_TK_E_NOT_FOUND;
        const Transform placed = fromMatrix(position);
        if (!placed.isFinite()) return PRO_TK_BAD_INPUTS;
        host().setPosition(*owner, *known, {component->id}, placed);
        return PRO_TK_NO_ERROR;
    });
}

// A position takes effect at once in this host, so there is nothing left to compute but the picture, which the next
// repaint brings.
ProError ProAsmcompRegenerate(ProAsmcomp* component, ProBoolean) {
    return toolkitCall(__func__, [&] {
        Model* owner = nullptr;
        const Component* known = findComponent(component, &owner);
        if (owner == nullptr) return PRO_TK_BAD_INPUTS;
        if (known == nullptr) return PRO_TK_E_NOT_FOUND;
        host().listeners.pictureChanged();
        return PRO_TK_NO_ERROR;
    });
}
