// Between the toolkit's matrices and the host's transforms; the convention is the same.
#pragma once

#include "toolkit/pro_toolkit.h"
#include "workbench/host/model/geometry.h"

namespace workbench {

inline void toMatrix(const Transform& transform, ProMatrix matrix) {
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) matrix[i][j] = transform.m[i][j];
    }
}

inline Transform fromMatrix(const ProMatrix matrix) {
    Transform transform;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) transform.m[i][j] = matrix[i][j];
    }
    return transform;
}

}  // namespace workbench
