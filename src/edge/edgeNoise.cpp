#include "edgeNoise.h"

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

}  // namespace zelm
