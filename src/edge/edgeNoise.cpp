#include "edgeNoise.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace zelm {
namespace {

constexpr std::size_t kMaxWiggle = 3;  // steps from the last one before a wiggle to the first one after it

}  // namespace

bool isNoisyProfile(std::span<const int32_t> q, int32_t swing) {
    // A wiggle is what lies between two turns of sense: after step before, up to step i.
    bool turned = false;
    std::size_t before = 0;  // the last step ahead of the latest turn
    std::size_t last = 0;    // the latest step that changes
    int32_t sense = 0;       // its sense
    for (std::size_t i = 0; i + 1 < q.size(); ++i) {
        const int32_t change = (q[i + 1] > q[i]) - (q[i + 1] < q[i]);
        if (change == 0) {
            continue;
        }
        if (change == -sense) {
            if (turned && i - before <= kMaxWiggle && std::abs(q[i] - q[before + 1]) <= swing) {
                return true;
            }
            turned = true;
            before = last;
        }
        sense = change;
        last = i;
    }
    return false;
}

bool hasJitter(std::span<const int32_t> q, int32_t tolerance) {
    for (std::size_t i = 1; i + 1 < q.size(); ++i) {
        const int32_t before = q[i] - q[i - 1];
        const int32_t after = q[i] - q[i + 1];
        const bool peak = before > 0 && after > 0;
        const bool dip = before < 0 && after < 0;
        if ((peak || dip) && std::min(std::abs(before), std::abs(after)) <= tolerance) {
            return true;
        }
    }
    return false;
}

}  // namespace zelm
