// The arithmetic of a motion step once more, written out over arrays: what tests and the benchmark compare it with.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstring>
#include <span>

#include "common_sources/motion_step.h"

namespace plain {

struct Component {
    Position position;
    bool isGood = true;  // the last step's result is finite
};

inline bool isTurnable(const Position& p) {
    double u[3][3];
    for (int i = 0; i < 3; ++i) {
        if (!std::isfinite(p[3][i])) return false;
        const double size = std::sqrt(p[i][0] * p[i][0] + p[i][1] * p[i][1] + p[i][2] * p[i][2]);
        for (int k = 0; k < 3; ++k) u[i][k] = p[i][k] / size;
    }
    return std::fabs(u[0][0] * (u[1][1] * u[2][2] - u[1][2] * u[2][1]) +
                     u[0][1] * (u[1][2] * u[2][0] - u[1][0] * u[2][2]) +
                     u[0][2] * (u[1][0] * u[2][1] - u[1][1] * u[2][0])) > 1e-9;
}

// m = m * the rotation about the axis
inline void turn(double (&m)[3][3], const Vector3& a, double angle) {
    const double c = std::cos(angle), s = std::sin(angle), t = 1 - c;
    const double r[3][3] = {{t * a[0] * a[0] + c, t * a[0] * a[1] - s * a[2], t * a[0] * a[2] + s * a[1]},
                            {t * a[0] * a[1] + s * a[2], t * a[1] * a[1] + c, t * a[1] * a[2] - s * a[0]},
                            {t * a[0] * a[2] - s * a[1], t * a[1] * a[2] + s * a[0], t * a[2] * a[2] + c}};
    double product[3][3];
    for (int i = 0; i < 3; ++i) {
        for (int k = 0; k < 3; ++k) product[i][k] = m[i][0] * r[0][k] + m[i][1] * r[1][k] + m[i][2] * r[2][k];
    }
    std::memcpy(m, product, sizeof product);
}

// Moves those that can be turned, about the centre of the box of their origins.
inline void move(std::span<Component> components, const Step& step) {
    const Vector3 axes[3] = {step.ax, step.ay, step.az};
    const double angles[3] = {step.drx, step.dry, step.drz}, shifts[3] = {step.dtx, step.dty, step.dtz};
    double low[3] = {}, high[3] = {}, centre[3];
    bool isSeeded = false;
    for (const auto& [p, isGood] : components) {
        if (!isTurnable(p)) continue;
        for (int k = 0; k < 3; ++k) {
            low[k] = isSeeded ? std::min(low[k], p[3][k]) : p[3][k];
            high[k] = isSeeded ? std::max(high[k], p[3][k]) : p[3][k];
        }
        isSeeded = true;
    }
    for (int k = 0; k < 3; ++k) centre[k] = low[k] + (high[k] - low[k]) * 0.5;
    double pivot[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, own[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        turn(pivot, axes[i], angles[i]);
        turn(own, axes[2 - i], angles[2 - i]);
    }
    for (auto& [p, isGood] : components) {
        if (!isTurnable(p)) continue;
        double moved[4][4];
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < 3; ++k) moved[i][k] = own[k][0] * p[i][0] + own[k][1] * p[i][1] + own[k][2] * p[i][2];
            const double d[3] = {p[3][0] - centre[0], p[3][1] - centre[1], p[3][2] - centre[2]};
            moved[3][i] = pivot[i][0] * d[0] + pivot[i][1] * d[1] + pivot[i][2] * d[2] + centre[i];
            for (int k = 0; k < 3; ++k) moved[3][i] += axes[k][i] * shifts[k];
        }
        isGood = true;
        for (int k = 0; k < 3; ++k) {
            const double size =
                std::sqrt(moved[0][k] * moved[0][k] + moved[1][k] * moved[1][k] + moved[2][k] * moved[2][k]);
            for (int i = 0; i < 3; ++i) {
                p[i][k] = moved[i][k] / size;
                isGood = isGood && std::isfinite(p[i][k]);
            }
            p[3][k] = moved[3][k];
            isGood = isGood && std::isfinite(p[3][k]);
            p[k][3] = 0;
        }
        p[3][3] = 1;
    }
}

// The same by motion_step.h.
inline void moveByMotionStep(std::span<Component> components, const Step& step) {
    OriginBox box;
    for (const auto& [position, isGood] : components) {
        if (::isTurnable(position)) box.add(originOf(position));
    }
    const GroupMove move(step, box.centre());
    for (auto& [position, isGood] : components) {
        if (::isTurnable(position)) isGood = move.apply(position);
    }
}

}  // namespace plain
