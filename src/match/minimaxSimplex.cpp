// The minimax angle and scale of a similarity by a simplex search (Spendley, Hext and Himsworth 1962; Nelder and Mead
// 1965). The cost is convex in (scale cos, scale sin), but has edges, on which one simplex may come to rest: several
// runs from different sides must agree.

#include <algorithm>
#include <cmath>
#include <utility>

#include "minimaxCost.h"

namespace zelm {
namespace {

// Degrees and percent.
constexpr double kStartOffset = 1.0;
constexpr double kMinSimplex = 1e-9;
constexpr double kAgreement = 5e-7;  // of two runs; a cost that is smooth at its minimum tells no finer
constexpr double kMinRestart = 0.01;
constexpr double kMaxRestart = 0.5;

constexpr double kGapShare = 3.0;  // size of a restart, in gaps between the last two ends
constexpr double kNoGain = 1e-10;  // relative decrease of the radius that does not count
constexpr int kIdleRuns = 4;       // runs without gain that end the search
constexpr int kMaxProbes = 2000;   // bounds the time on any data
constexpr double kGoldenAngle = 2.399963229728653;
constexpr double kThirdOfTurn = 2.0943951023931953;

bool isLower(const MinimaxProbe& a, const MinimaxProbe& b) {
    return a.circle.r < b.circle.r;
}

double gapBetween(const MinimaxProbe& a, const MinimaxProbe& b) {
    return std::max(std::fabs(a.degrees - b.degrees), std::fabs(a.percent - b.percent));
}

// Vertices from the lowest to the highest.
struct Simplex {
    MinimaxProbe v[3];

    void order() {
        for (const auto& [i, j] : {std::pair(0, 1), std::pair(1, 2), std::pair(0, 1)}) {
            if (isLower(v[j], v[i])) {
                std::swap(v[i], v[j]);
            }
        }
    }
    [[nodiscard]] double size() const { return std::max(gapBetween(v[1], v[0]), gapBetween(v[2], v[0])); }
};

class SimplexSearch {
public:
    SimplexSearch(MinimaxCost& minimaxCost, double degrees, double percent)
        : cost(minimaxCost), best(minimaxCost.at(degrees, percent)) {}

    MinimaxProbe run() {
        descend(aroundStart());
        double size = kMaxRestart;
        int idle = 0;
        for (int i = 1; idle < kIdleRuns && mayProbe(); ++i) {
            const MinimaxProbe before = best;
            const MinimaxProbe end = descend(beside(before, size, i));
            const double gap = gapBetween(before, end);
            if (gap < kAgreement) {
                break;
            }
            follow(before, end);
            size = std::clamp(kGapShare * gap, kMinRestart, kMaxRestart);
            idle = best.circle.r < before.circle.r * (1.0 - kNoGain) ? 0 : idle + 1;
        }
        return best;
    }

private:
    [[nodiscard]] bool mayProbe() const { return probes < kMaxProbes && !cost.failed(); }

    MinimaxProbe at(double degrees, double percent) {
        ++probes;
        const MinimaxProbe probe = cost.at(degrees, percent);
        if (isLower(probe, best)) {
            best = probe;
        }
        return probe;
    }

    // The place `share` of the way from one place to another.
    MinimaxProbe towards(const MinimaxProbe& from, const MinimaxProbe& to, double share) {
        return at(from.degrees + share * (to.degrees - from.degrees),
                  from.percent + share * (to.percent - from.percent));
    }

    Simplex aroundStart() {
        const double degrees = best.degrees;
        const double percent = best.percent;
        return {{at(degrees - kStartOffset, percent - kStartOffset), at(degrees + kStartOffset, percent - kStartOffset),
                 at(degrees - kStartOffset, percent + kStartOffset)}};
    }

    // A simplex that a place lies outside of, on another side in each run: on an edge of the cost it comes to rest
    // elsewhere.
    Simplex beside(const MinimaxProbe& place, double size, int run) {
        const double turn = kGoldenAngle * run;
        const double degrees = place.degrees + 2.0 * size * std::cos(turn + 1.0);
        const double percent = place.percent + 2.0 * size * std::sin(turn + 1.0);
        const auto corner = [&](double angle) {
            return at(degrees + size * std::cos(angle), percent + size * std::sin(angle));
        };
        return {{corner(turn), corner(turn + kThirdOfTurn), corner(turn + 2.0 * kThirdOfTurn)}};
    }

    // Returns the vertex where the simplex has shrunk to nothing.
    MinimaxProbe descend(Simplex simplex) {
        simplex.order();
        while (mayProbe() && simplex.size() > kMinSimplex) {
            step(simplex.v);
            simplex.order();
        }
        return simplex.v[0];
    }

    // Moves the highest vertex v[2].
    void step(MinimaxProbe* v) {
        const MinimaxProbe middle{0.5 * (v[0].degrees + v[1].degrees), 0.5 * (v[0].percent + v[1].percent), {}};
        const MinimaxProbe reflected = towards(v[2], middle, 2.0);
        if (isLower(reflected, v[0])) {
            const MinimaxProbe expanded = towards(v[2], middle, 3.0);
            v[2] = isLower(expanded, reflected) ? expanded : reflected;
            return;
        }
        if (isLower(reflected, v[1])) {
            v[2] = reflected;
            return;
        }
        const MinimaxProbe failing = isLower(reflected, v[2]) ? reflected : v[2];
        v[2] = towards(failing, v[0], 0.5);
        if (!isLower(v[2], failing)) {
            v[1] = towards(v[1], v[0], 0.5);
        }
    }

    // A simplex of two vertices on the line through two ends, which lie on the same edge of the cost.
    void follow(const MinimaxProbe& a, const MinimaxProbe& b) {
        MinimaxProbe lower = isLower(b, a) ? b : a;
        double degrees = b.degrees - a.degrees;
        double percent = b.percent - a.percent;
        while (mayProbe() && std::max(std::fabs(degrees), std::fabs(percent)) > kMinSimplex) {
            MinimaxProbe next = at(lower.degrees + degrees, lower.percent + percent);
            double factor = 2.0;
            if (!isLower(next, lower)) {
                next = at(lower.degrees - degrees, lower.percent - percent);
                factor = -2.0;
            }
            if (isLower(next, lower)) {
                lower = next;
            } else {
                factor = 0.5;
            }
            degrees *= factor;
            percent *= factor;
        }
    }

    MinimaxCost& cost;
    MinimaxProbe best;
    int probes = 1;
};

}  // namespace

MinimaxProbe minimaxSimplex(MinimaxCost& cost, double startDegrees, double startPercent) {
    return SimplexSearch(cost, startDegrees, startPercent).run();
}

}  // namespace zelm
