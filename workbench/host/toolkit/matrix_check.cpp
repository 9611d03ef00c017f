#include "workbench/host/toolkit/matrix_check.h"

#include <cmath>
#include <cstdio>

namespace workbench {
namespace {

constexpr double TOLERANCE = 1e-6;
constexpr std::size_t KEPT = 10;

std::vector<std::string> kept;

double product(const double* a, const double* b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

std::string withNumber(const char* text, double number) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.9g", number);
    return std::string(text) + digits;
}

}  // namespace

std::optional<std::string> matrixFault(const ProMatrix matrix) {
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            if (!std::isfinite(matrix[i][j])) return "a matrix is not finite";
        }
    }
    for (int i = 0; i < 3; ++i) {
        const double length = std::sqrt(product(matrix[i], matrix[i]));
        if (std::abs(length - 1.0) > TOLERANCE) return withNumber("an axis is of length ", length);
        const double lean = product(matrix[i], matrix[(i + 1) % 3]);
        if (std::abs(lean) > TOLERANCE) return withNumber("two axes lean to each other by ", lean);
    }
    return std::nullopt;
}

void noteMatrix(const char* function, const ProMatrix matrix) {
    if (matrix == nullptr || kept.size() == KEPT) return;
    if (const auto fault = matrixFault(matrix)) kept.push_back(std::string(function) + ": " + *fault);
}

const std::vector<std::string>& badMatrices() { return kept; }

}  // namespace workbench
