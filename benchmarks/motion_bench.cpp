// What one motion step of a large selection costs beside the toolkit's calls, against the same arithmetic written out
// by hand over arrays.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "benchmarks/compare.h"
#include "common_sources/motion_step.h"

namespace {

struct Component {
    Position position;
};
using Components = std::vector<Component>;

Components makeComponents(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-1000, 1000), angle(-3, 3);
    Components components(count);
    for (auto& [position] : components) {
        const Matrix3 axes = rotation({1, 0, 0}, angle(random)) * rotation({0, 1, 0}, angle(random));
        toToolkit(axes, {place(random), place(random), place(random)}, position);
    }
    return components;
}

void moveOurs(Components& components, const Step& step) {
    OriginBox box;
    for (const auto& [position] : components) {
        if (isTurnable(position)) box.add(originOf(position));
    }
    const GroupMove move(step, box.centre());
    for (auto& [position] : components) {
        if (isTurnable(position)) move.apply(position);
    }
}

bool isTurnableByHand(const double (&p)[4][4]) {
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

void rotationByHand(const double (&a)[3], double angle, double (&m)[3][3]) {
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

void moveByHand(Components& components, const Step& step) {
    const double axes[3][3] = {{step.ax[0], step.ax[1], step.ax[2]},
                               {step.ay[0], step.ay[1], step.ay[2]},
                               {step.az[0], step.az[1], step.az[2]}};
    const double angles[3] = {step.drx, step.dry, step.drz}, shifts[3] = {step.dtx, step.dty, step.dtz};
    double low[3] = {}, high[3] = {}, centre[3];
    bool isSeeded = false;
    for (const auto& [p] : components) {
        if (!isTurnableByHand(p)) continue;
        for (int k = 0; k < 3; ++k) {
            low[k] = isSeeded ? std::min(low[k], p[3][k]) : p[3][k];
            high[k] = isSeeded ? std::max(high[k], p[3][k]) : p[3][k];
        }
        isSeeded = true;
    }
    for (int k = 0; k < 3; ++k) centre[k] = low[k] + (high[k] - low[k]) * 0.5;
    double pivot[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, turn[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        rotationByHand(axes[i], angles[i], pivot);
        rotationByHand(axes[2 - i], angles[2 - i], turn);
    }
    for (auto& [p] : components) {
        if (!isTurnableByHand(p)) continue;
        double moved[4][4];
        for (int i = 0; i < 3; ++i) {
            for (int k = 0; k < 3; ++k)
                moved[i][k] = turn[k][0] * p[i][0] + turn[k][1] * p[i][1] + turn[k][2] * p[i][2];
            const double d[3] = {p[3][0] - centre[0], p[3][1] - centre[1], p[3][2] - centre[2]};
            moved[3][i] = pivot[i][0] * d[0] + pivot[i][1] * d[1] + pivot[i][2] * d[2] + centre[i];
            for (int k = 0; k < 3; ++k) moved[3][i] += axes[k][i] * shifts[k];
        }
        bool isFinite = true;
        for (int k = 0; k < 3; ++k) {
            const double size =
                std::sqrt(moved[0][k] * moved[0][k] + moved[1][k] * moved[1][k] + moved[2][k] * moved[2][k]);
            for (int i = 0; i < 3; ++i) {
                p[i][k] = moved[i][k] / size;
                isFinite = isFinite && std::isfinite(p[i][k]);
            }
            p[3][k] = moved[3][k];
            isFinite = isFinite && std::isfinite(p[3][k]);
            p[k][3] = 0;
        }
        p[3][3] = 1;
        bench::keep(isFinite);
    }
}

}  // namespace

int main() {
    Components ours = makeComponents(1000), theirs = ours;
    const Step step{{0.36, 0.48, -0.8}, {-0.8, 0.6, 0}, {0.48, 0.64, 0.6}, 0.3, -0.1, 0.2, 0.01, -0.02, 0.03};
    constexpr int kCalls = 100;
    bench::compare(
        {.what = "motion step, our own part, 1,000 components",
         .peer = "the same arithmetic by hand over arrays",
         .calls = kCalls},
        [&] {
            for (int i = 0; i < kCalls; ++i) moveOurs(ours, step);
        },
        [&] {
            for (int i = 0; i < kCalls; ++i) moveByHand(theirs, step);
        });
    double difference = 0;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        for (int k = 0; k < 16; ++k) {
            difference =
                std::max(difference, std::fabs(ours[i].position[k / 4][k % 4] - theirs[i].position[k / 4][k % 4]));
        }
    }
    bench::expectSame(difference < 1e-6, "positions of the components");
}
