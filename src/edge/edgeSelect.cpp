#include "edgeSelect.h"

#include <algorithm>
#include <cstdlib>

#include "edgePlateau.h"

namespace zelm {
namespace {

// The band in which samples count as flat, as a part of the edge threshold: as wide as leaves an edge of a blur of 1.5
// pixels standing out, so that noise hides as few plateaus as can be.
constexpr int32_t kBandNumerator = 2;
constexpr int32_t kBandDenominator = 3;

int32_t signOf(int32_t value) {
    return (value > 0) - (value < 0);
}

// Mean of samples begin..end, rounded.
int32_t meanLevel(std::span<const int32_t> q, int64_t begin, int64_t end) {
    int64_t sum = 0;
    for (int64_t i = begin; i <= end; ++i) {
        sum += q[static_cast<std::size_t>(i)];
    }
    const int64_t count = end - begin + 1;
    return static_cast<int32_t>((2 * sum + count) / (2 * count));
}

// The band lets a plateau reach into the foot of the transition. This takes its ends back over the steps that change
// in the sense of the transition, so that the sub-pixel step sees the whole of it.
void trimToTransition(std::span<const int32_t> q, const EdgePlateau& before, const EdgePlateau& after,
                      int32_t flatTolerance, int64_t& a, int64_t& b) {
    const auto at = [&](int64_t i) { return q[static_cast<std::size_t>(i)]; };
    const int32_t sense = signOf(at(b) - at(a));
    if (sense == 0) {
        return;
    }
    while (a > before.begin && sense * (at(a) - at(a - 1)) > flatTolerance) {
        --a;
    }
    while (b < after.end && sense * (at(b + 1) - at(b)) > flatTolerance) {
        ++b;
    }
}

EdgeCandidate makeCandidate(std::span<const int32_t> q, const EdgeRule& rule, const EdgePlateau& before,
                            const EdgePlateau& after) {
    EdgeCandidate edge = {before.end, after.begin, 0};
    trimToTransition(q, before, after, rule.flatTolerance, edge.a, edge.b);
    // Selector 0 takes the levels where the plateaus meet the transition, the others average the samples that confirm
    // the plateau.
    const int64_t reach = rule.selector == 0 ? 0 : rule.minFlatRun;
    edge.difference = meanLevel(q, edge.b, std::min(edge.b + reach, after.end)) -
                      meanLevel(q, std::max(edge.a - reach, before.begin), edge.a);
    return edge;
}

bool isAdmissible(const EdgeCandidate& edge, const EdgeRule& rule) {
    const int32_t sense = signOf(edge.difference);
    return sense != 0 && (rule.sign == 0 || rule.sign == sense) && std::abs(edge.difference) >= rule.threshold;
}

// Whether the rule prefers a later candidate to the best so far; equal ones never replace the first.
bool isBetter(const EdgeCandidate& edge, const EdgeCandidate& best, const EdgeRule& rule) {
    const int64_t difference = std::abs(edge.difference);
    const int64_t bestDifference = std::abs(best.difference);
    switch (rule.selector) {
        case 3:
            return difference * (best.b - best.a) > bestDifference * (edge.b - edge.a);
        case 4:
            return std::abs(edge.a + edge.b - rule.doubledCentre) < std::abs(best.a + best.b - rule.doubledCentre);
        default:
            return difference > bestDifference;
    }
}

bool selectWithBand(std::span<const int32_t> q, const EdgeRule& rule, int32_t band, EdgeCandidate& best) {
    const EdgeFlatness flatness = {rule.flatTolerance, band, rule.threshold, rule.minFlatRun};
    EdgePlateau before = {};
    if (!nextEdgePlateau(q, flatness, 0, before)) {
        return false;
    }
    bool found = false;
    for (EdgePlateau after = {}; nextEdgePlateau(q, flatness, before.end + 1, after); before = after) {
        const EdgeCandidate edge = makeCandidate(q, rule, before, after);
        if (!isAdmissible(edge, rule) || (found && !isBetter(edge, best, rule))) {
            continue;
        }
        best = edge;
        found = true;
        if (rule.selector == 2) {
            break;
        }
    }
    return found;
}

}  // namespace

bool selectEdge(std::span<const int32_t> q, const EdgeRule& rule, EdgeCandidate& edge) {
    // A plateau that noise feigns halfway up a wide transition can hide the edge. The last walk takes the bare
    // tolerance, so that nothing that a strict reading finds is missed.
    int32_t band = static_cast<int32_t>(int64_t{rule.threshold} * kBandNumerator / kBandDenominator);
    for (; band > rule.flatTolerance; band /= 2) {
        if (selectWithBand(q, rule, band, edge)) {
            return true;
        }
    }
    return selectWithBand(q, rule, rule.flatTolerance, edge);
}

}  // namespace zelm
