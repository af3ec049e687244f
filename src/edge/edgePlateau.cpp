#include "edgePlateau.h"

#include <algorithm>
#include <cstdlib>

namespace zelm {
namespace {

// Whether the steps from sample i on, minRun but at least two of them, all exceed the tolerance in one sense.
bool isSlope(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t i) {
    const int64_t last = std::min<int64_t>(i + std::max(flatness.minRun, 2), static_cast<int64_t>(q.size()) - 1);
    const int32_t* const s = q.data();
    bool rising = true;
    bool falling = true;
    for (int64_t k = i + 1; k <= last; ++k) {
        rising = rising && s[k] - s[k - 1] > flatness.tolerance;
        falling = falling && s[k - 1] - s[k] > flatness.tolerance;
    }
    return rising || falling;
}

// Whether the minRun steps from sample i on are flat: each within the tolerance, or all their samples within the band.
// sum: of those samples.
bool isFlat(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t i, int64_t& sum) {
    const int32_t* const s = q.data() + i;
    int32_t low = s[0];
    int32_t high = s[0];
    bool small = true;
    sum = s[0];
    for (int32_t k = 1; k <= flatness.minRun; ++k) {
        low = std::min(low, s[k]);
        high = std::max(high, s[k]);
        small = small && std::abs(s[k] - s[k - 1]) <= flatness.tolerance;
        if (!small && high - low > flatness.band) {
            return false;
        }
        sum += s[k];
    }
    return small || flatness.slopes || !isSlope(q, flatness, i);
}

}  // namespace

EdgeRun nextEdgePlateau(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t from, EdgePlateau& plateau) {
    const int64_t lastStart = static_cast<int64_t>(q.size()) - 1 - flatness.minRun;
    const int64_t span = int64_t{flatness.span} * (flatness.minRun + 1);
    int64_t sum = 0;
    int64_t i = from;
    while (i <= lastStart && !isFlat(q, flatness, i, sum)) {
        ++i;
    }
    if (i > lastStart) {
        return EdgeRun::none;
    }
    int64_t low = sum;
    int64_t high = sum;
    plateau = {i, i + flatness.minRun};
    for (++i; i <= std::min(lastStart, plateau.end); ++i) {
        if (!isFlat(q, flatness, i, sum)) {
            continue;
        }
        plateau.end = i + flatness.minRun;
        low = std::min(low, sum);
        high = std::max(high, sum);
        if (high - low >= span && flatness.band > flatness.tolerance) {
            return EdgeRun::hidesEdge;
        }
    }
    return EdgeRun::found;
}

}  // namespace zelm
