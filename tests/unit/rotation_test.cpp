#include "common_sources/rotation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "tests/unit/quaternion.h"

namespace {

void expectNear(const Vector3& actual, const Vector3& expected, double tolerance) {
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], expected[i], tolerance) << "coordinate " << i;
}

void expectNear(const Matrix3& actual, const Matrix3& expected, double tolerance) {
    for (int i = 0; i < 3; ++i) expectNear(actual[i], expected[i], tolerance);
}

struct Random {
    std::mt19937 engine{20080914};
    double operator()(double low, double high) { return std::uniform_real_distribution<>(low, high)(engine); }
    Vector3 vector() { return {(*this)(-1, 1), (*this)(-1, 1), (*this)(-1, 1)}; }
    Vector3 unit() {
        for (;;) {
            const Vector3 v = vector();
            const double size = std::hypot(v[0], v[1], v[2]);
            if (size > 0.1) return {v[0] / size, v[1] / size, v[2] / size};
        }
    }
};

TEST(Rotation, TurnsRightHandedAboutEachAxis) {
    constexpr double kQuarter = std::numbers::pi / 2;
    expectNear(rotation({0, 0, 1}, kQuarter) * Vector3{1, 0, 0}, {0, 1, 0}, 1e-15);
    expectNear(rotation({1, 0, 0}, kQuarter) * Vector3{0, 1, 0}, {0, 0, 1}, 1e-15);
    expectNear(rotation({0, 1, 0}, kQuarter) * Vector3{0, 0, 1}, {1, 0, 0}, 1e-15);
}

TEST(Rotation, AgreesWithQuaternions) {
    Random random;
    for (int i = 0; i < 1000; ++i) {
        const Vector3 axis = random.unit(), v = random.vector();
        const double angle = random(-7, 7);
        expectNear(rotation(axis, angle) * v, turned(v, axis, angle), 1e-14);
    }
    for (const double angle : {0.0, 1e-12, -1e-300, std::numbers::pi, 1e6}) {
        const Vector3 axis = random.unit(), v = random.vector();
        expectNear(rotation(axis, angle) * v, turned(v, axis, angle), 1e-14);
    }
}

TEST(Rotation, ProductAppliesTheRightFactorFirst) {
    Random random;
    for (int i = 0; i < 100; ++i) {
        const Vector3 a = random.unit(), b = random.unit(), v = random.vector();
        const double angleA = random(-3, 3), angleB = random(-3, 3);
        expectNear((rotation(a, angleA) * rotation(b, angleB)) * v, turned(turned(v, b, angleB), a, angleA), 1e-14);
    }
}

TEST(Rotation, InverseUndoesTurnScaleAndShear) {
    Random random;
    for (int i = 0; i < 1000; ++i) {
        Matrix3 m = rotation(random.unit(), random(-3, 3));
        for (auto& row : m) row = row * std::pow(10.0, random(-4, 4));
        const double shear = random(-1, 1);
        m[1] = m[1] + m[0] * shear;
        const Matrix3 inverted = inverse(m);
        for (int r = 0; r < 3; ++r) {
            for (int c = 0; c < 3; ++c) {
                long double sum = 0, size = 0;
                for (int k = 0; k < 3; ++k) {
                    const long double term = static_cast<long double>(inverted[r][k]) * m[k][c];
                    sum += term;
                    size += std::abs(term);
                }
                EXPECT_NEAR(static_cast<double>(sum), r == c ? 1.0 : 0.0, 1e-11 * static_cast<double>(size + 1));
            }
        }
    }
    for (const Matrix3& singular : {Matrix3{}, Matrix3{{{1, 2, 3}, {1, 2, 3}, {0, 0, 1}}}}) {
        const Matrix3 inverted = inverse(singular);
        EXPECT_FALSE(isFinite(inverted[0]) && isFinite(inverted[1]) && isFinite(inverted[2]));
    }
}

TEST(Rotation, RowsGetUnitLengthAndKeepTheirDirection) {
    Random random;
    for (int i = 0; i < 100; ++i) {
        const Matrix3 rows{random.unit(), random.unit(), random.unit()};
        const Matrix3 scaled{rows[0] * random(1e-9, 1), rows[1] * random(1, 1e9), rows[2] * 3.0};
        expectNear(withUnitRows(scaled), rows, 1e-15);
    }
    EXPECT_FALSE(isFinite(withUnitRows(Matrix3{})[0]));
    EXPECT_FALSE(isFinite(Vector3{0, std::numeric_limits<double>::infinity(), 0}));
}

TEST(Rotation, ToolkitMatrixKeepsRowsAndOrigin) {
    const Matrix3 block{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}};
    double matrix[4][4];
    toToolkit(block, {10, 11, 12}, matrix);
    const double expected[4][4] = {{1, 2, 3, 0}, {4, 5, 6, 0}, {7, 8, 9, 0}, {10, 11, 12, 1}};
    for (int i = 0; i < 4; ++i) {
        for (int k = 0; k < 4; ++k) EXPECT_EQ(matrix[i][k], expected[i][k]);
    }
    EXPECT_EQ(blockOf(matrix), block);
    EXPECT_EQ(originOf(matrix), (Vector3{10, 11, 12}));
}

}  // namespace
