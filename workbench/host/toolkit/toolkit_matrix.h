// Between the toolkit's matrices and the host's transforms; the convention is the same, but for a Creo with columns.
#pragma once

#include "toolkit/pro_toolkit.h"
#include "workbench/host/model/creo_variant.h"
#include "workbench/host/model/geometry.h"

namespace workbench {

inline void toMatrix(const Transform& transform, ProMatrix matrix) {
    const bool isTurned = creoVariant().hasColumnMatrices;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) matrix[i][j] = isTurned ? transform.m[j][i] : transform.m[i][j];
    }
}

inline Transform fromMatrix(const ProMatrix matrix) {
    const bool isTurned = creoVariant().hasColumnMatrices;
    Transform transform;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) transform.m[i][j] = isTurned ? matrix[j][i] : matrix[i][j];
    }
    return transform;
}

}  // namespace workbench
