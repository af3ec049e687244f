#include "edgePlateau.h"

#include <algorithm>
#include <cstdlib>

namespace zelm {
namespace {

// Whether the minRun steps from sample i on are flat: each within the tolerance, or all their samples within the band.
bool isFlatRun(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t i) {
    const int32_t* const s = q.data() + i;
    int32_t low = s[0];
    int32_t high = s[0];
    bool small = true;
    for (int32_t k = 1; k <= flatness.minRun; ++k) {
        low = std::min(low, s[k]);
        high = std::max(high, s[k]);
        small = small && std::abs(s[k] - s[k - 1]) <= flatness.tolerance;
        if (!small && high - low > flatness.band) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool nextEdgePlateau(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t from, EdgePlateau& plateau) {
    const int64_t lastStart = static_cast<int64_t>(q.size()) - 1 - flatness.minRun;
    int64_t i = from;
    while (i <= lastStart && !isFlatRun(q, flatness, i)) {
        ++i;
    }
    if (i > lastStart) {
        return false;
    }
    plateau = {i, i + flatness.minRun};
    for (++i; i <= std::min(lastStart, plateau.end); ++i) {
        if (isFlatRun(q, flatness, i)) {
            plateau.end = i + flatness.minRun;
        }
    }
    return true;
}

}  // namespace zelm
