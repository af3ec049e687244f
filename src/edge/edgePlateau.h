// Plateaus of a quantised profile: the stretches that count as flat.
#ifndef ZELM_EDGE_PLATEAU_H
#define ZELM_EDGE_PLATEAU_H

#include <cstdint>
#include <span>

namespace zelm {

struct EdgePlateau {
    int64_t begin;  // first sample
    int64_t end;    // last sample
};

// What counts as flat.
struct EdgeFlatness {
    int32_t tolerance;  // two neighbours that differ by at most this are flat, gray levels
    int32_t band;       // samples that stay together within this are flat too, gray levels; >= tolerance
    int32_t minRun;     // steps that confirm a plateau; >= 1
};

// Finds the first plateau that begins at or after from: a run of at least minRun flat steps, as long as it gets. False
// when there is none.
bool nextEdgePlateau(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t from, EdgePlateau& plateau);

}  // namespace zelm

#endif
