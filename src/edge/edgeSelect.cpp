#include "edgeSelect.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "edgeNoise.h"
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

// Whether sample i and its neighbour towards limit, a sample of the same plateau, differ in the sense of the
// transition. change: by how much.
bool changesTowards(std::span<const int32_t> q, int64_t i, int64_t limit, int32_t sense, int32_t& change) {
    if (i == limit) {
        return false;
    }
    const int32_t direction = limit < i ? -1 : 1;
    change = sense * direction * (q[static_cast<std::size_t>(i + direction)] - q[static_cast<std::size_t>(i)]);
    return change > 0;
}

// A plateau's end at sample i, taken back towards limit over the steps that exceed the tolerance in the sense of the
// transition: a band lets the plateau reach into the transition's foot.
int64_t strictEnd(std::span<const int32_t> q, int64_t i, int64_t limit, int32_t sense, int32_t flatTolerance) {
    int32_t change = 0;
    while (changesTowards(q, i, limit, sense, change) && change > flatTolerance) {
        i += limit < i ? -1 : 1;
    }
    return i;
}

// The same end one step further back if that step still changes, so that the sub-pixel step sees the whole foot.
int64_t footEnd(std::span<const int32_t> q, int64_t i, int64_t limit, int32_t sense) {
    int32_t change = 0;
    if (changesTowards(q, i, limit, sense, change)) {
        i += limit < i ? -1 : 1;
    }
    return i;
}

EdgeCandidate makeCandidate(std::span<const int32_t> q, const EdgeRule& rule, const EdgePlateau& before,
                            const EdgePlateau& after) {
    const int32_t sense = signOf(q[static_cast<std::size_t>(after.begin)] - q[static_cast<std::size_t>(before.end)]);
    EdgeCandidate edge = {strictEnd(q, before.end, before.begin, sense, rule.flatTolerance),
                          strictEnd(q, after.begin, after.end, sense, rule.flatTolerance), 0, before.begin, after.end};
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
            return std::fabs(static_cast<double>(edge.a + edge.b) - rule.doubledCentre) <
                   std::fabs(static_cast<double>(best.a + best.b) - rule.doubledCentre);
        default:
            return difference > bestDifference;
    }
}

struct Walk {
    bool found = false;
    bool hidden = false;  // a plateau hides an edge
    EdgeCandidate best = {};
};

// One walk over the profile, up to a plateau that hides an edge.
Walk walkProfile(std::span<const int32_t> q, const EdgeRule& rule, int32_t band, bool slopes) {
    const EdgeFlatness flatness = {rule.flatTolerance, band, rule.threshold, rule.minFlatRun, slopes};
    Walk walk;
    EdgePlateau before = {};
    EdgePlateau after = {};
    EdgeRun run = nextEdgePlateau(q, flatness, 0, before);
    while (run == EdgeRun::found && !(walk.found && rule.selector == 2)) {
        run = nextEdgePlateau(q, flatness, before.end + 1, after);
        if (run != EdgeRun::found) {
            break;
        }
        const EdgeCandidate edge = makeCandidate(q, rule, before, after);
        if (isAdmissible(edge, rule) && (!walk.found || isBetter(edge, walk.best, rule))) {
            walk.best = edge;
            walk.found = true;
        }
        before = after;
    }
    walk.hidden = run == EdgeRun::hidesEdge;
    return walk;
}

bool selectStrictly(std::span<const int32_t> q, const EdgeRule& rule, EdgeCandidate& edge) {
    const Walk walk = walkProfile(q, rule, rule.flatTolerance, false);
    if (walk.found) {
        edge = walk.best;
    }
    return walk.found;
}

// A band too wide swallows a blurred edge, and noise may feign a plateau halfway up one: then the band is halved, down
// to the bare tolerance.
bool selectInBand(std::span<const int32_t> q, const EdgeRule& rule, int32_t widest, bool slopes, EdgeCandidate& edge) {
    bool found = false;
    for (int32_t band = widest; band > rule.flatTolerance; band /= 2) {
        const Walk walk = walkProfile(q, rule, band, slopes);
        if (walk.found && (!found || !walk.hidden)) {
            edge = walk.best;
            found = true;
        }
        if (walk.found && !walk.hidden) {
            return true;
        }
    }
    return selectStrictly(q, rule, edge) || found;
}

}  // namespace

bool selectEdge(std::span<const int32_t> q, const EdgeRule& rule, EdgeCandidate& edge) {
    const auto widest = static_cast<int32_t>(int64_t{rule.threshold} * kBandNumerator / kBandDenominator);
    // The band bridges noise. Without noise it serves only where the strict walk finds nothing: on plateaus that blur
    // has rounded off and, if need be, on plateaus that slope.
    const bool clean = !isNoisyProfile(q, widest) && selectStrictly(q, rule, edge);
    if (!clean && !selectInBand(q, rule, widest, false, edge) && !selectInBand(q, rule, widest, true, edge)) {
        return false;
    }
    const int32_t sense = signOf(edge.difference);
    edge.a = footEnd(q, edge.a, edge.from, sense);
    edge.b = footEnd(q, edge.b, edge.to, sense);
    // Against noise the filter sees the plateaus as far as it reaches; else they end with the transition.
    if (clean && !hasJitter(q, rule.flatTolerance)) {
        edge.from = edge.a;
        edge.to = edge.b;
    }
    return true;
}

}  // namespace zelm
