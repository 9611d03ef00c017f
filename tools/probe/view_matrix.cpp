#include "tools/probe/view_matrix.h"

#include <algorithm>
#include <cmath>

namespace probe {

namespace {

constexpr double kTolerance = 1e-6;

bool isNear(double a, double b) { return std::abs(a - b) <= kTolerance; }

double product(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

double length(const double* row) { return std::sqrt(product(row, row)); }

bool isUnitCorner(double x, double y, double z, double corner) {
    return isNear(x, 0) && isNear(y, 0) && isNear(z, 0) && isNear(corner, 1);
}

void clear(ProMatrix& matrix) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) matrix[i][j] = i == j ? 1.0 : 0.0;
    }
}

}  // namespace

Convention conventionOf(const ProMatrix& m) {
    const bool isColumnUnit = isUnitCorner(m[0][3], m[1][3], m[2][3], m[3][3]);
    const bool isRowUnit = isUnitCorner(m[3][0], m[3][1], m[3][2], m[3][3]);
    if (isColumnUnit == isRowUnit) return Convention::unknown;
    return isColumnUnit ? Convention::row : Convention::column;
}

const char* conventionName(Convention convention) {
    switch (convention) {
        case Convention::row:
            return "the fourth column is 0 0 0 1: row convention";
        case Convention::column:
            return "the fourth row is 0 0 0 1: column convention";
        default:
            return "no shift, or no line is 0 0 0 1";
    }
}

bool isFinite(const ProMatrix& matrix) {
    return std::ranges::all_of(matrix, [](const auto& row) {
        return std::ranges::all_of(row, [](double value) { return std::isfinite(value); });
    });
}

double scaleOf(const ProMatrix& m) {
    const double scale = length(m[0]);
    for (int i = 0; i < 3; ++i) {
        const double lean = product(m[i], m[(i + 1) % 3]);
        if (!(std::abs(length(m[i]) - scale) <= kTolerance * scale)) return 0;
        if (!(std::abs(lean) <= kTolerance * scale * scale)) return 0;
    }
    return scale;
}

bool unitRows(const ProMatrix& matrix, ProMatrix& out) {
    clear(out);
    for (int i = 0; i < 3; ++i) {
        const double divisor = length(matrix[i]);
        for (int j = 0; j < 3; ++j) out[i][j] = matrix[i][j] / divisor;
    }
    return isFinite(out);
}

// By cofactors; the determinant falls out with the rows' lengths, but for its sign.
bool unitRowsOfInverse(const ProMatrix& m, ProMatrix& out) {
    ProMatrix adjoint{};
    for (int i = 0; i < 3; ++i) {
        const int a = (i + 1) % 3, b = (i + 2) % 3;
        for (int j = 0; j < 3; ++j) {
            const int c = (j + 1) % 3, d = (j + 2) % 3;
            adjoint[i][j] = m[c][a] * m[d][b] - m[c][b] * m[d][a];
        }
    }
    const double determinant = m[0][0] * adjoint[0][0] + m[0][1] * adjoint[1][0] + m[0][2] * adjoint[2][0];
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) adjoint[i][j] /= determinant;
    }
    return unitRows(adjoint, out);
}

double distance(const ProMatrix& a, const ProMatrix& b) {
    double largest = 0;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) largest = std::max(largest, std::abs(a[i][j] - b[i][j]));
    }
    return largest;
}

}  // namespace probe
