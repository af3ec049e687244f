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

// How far a plateau's end goes back, from sample i towards limit, over the steps that change in the sense of the
// transition: all that exceed the tolerance, and one more if it still changes.
int64_t trimmed(std::span<const int32_t> q, int64_t i, int64_t limit, int32_t sense, int32_t flatTolerance) {
    const int32_t direction = limit < i ? -1 : 1;
    while (i != limit) {
        const int32_t next = q[static_cast<std::size_t>(i + direction)];
        const int32_t change = sense * direction * (next - q[static_cast<std::size_t>(i)]);
        if (change <= 0) {
            break;
        }
        i += direction;
        if (change <= flatTolerance) {
            break;
        }
    }
    return i;
}

EdgeCandidate makeCandidate(std::span<const int32_t> q, const EdgeRule& rule, const EdgePlateau& before,
                            const EdgePlateau& after) {
    // The band lets a plateau reach into the foot of the transition; the sub-pixel step is to see the whole of it.
    const int32_t sense = signOf(q[static_cast<std::size_t>(after.begin)] - q[static_cast<std::size_t>(before.end)]);
    EdgeCandidate edge = {trimmed(q, before.end, before.begin, sense, rule.flatTolerance),
                          trimmed(q, after.begin, after.end, sense, rule.flatTolerance), 0, before.begin, after.end};
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

struct Walk {
    bool found = false;
    bool hidden = false;  // a plateau hides an edge
    EdgeCandidate best = {};
};

// One walk over the profile, up to a plateau that hides an edge.
Walk walkProfile(std::span<const int32_t> q, const EdgeRule& rule, int32_t band) {
    const EdgeFlatness flatness = {rule.flatTolerance, band, rule.threshold, rule.minFlatRun};
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

}  // namespace

bool selectEdge(std::span<const int32_t> q, const EdgeRule& rule, EdgeCandidate& edge) {
    // A band too wide swallows a blurred edge, and noise may feign a plateau halfway up one: then the band is halved.
    // The last walk takes the bare tolerance, so that nothing that a strict reading finds is missed.
    auto band = static_cast<int32_t>(int64_t{rule.threshold} * kBandNumerator / kBandDenominator);
    bool found = false;
    for (; band > rule.flatTolerance; band /= 2) {
        const Walk walk = walkProfile(q, rule, band);
        if (walk.found && (!found || !walk.hidden)) {
            edge = walk.best;
            found = true;
        }
        if (walk.found && !walk.hidden) {
            return true;
        }
    }
    const Walk strict = walkProfile(q, rule, rule.flatTolerance);
    if (strict.found) {
        edge = strict.best;
    }
    return found || strict.found;
}

}  // namespace zelm
