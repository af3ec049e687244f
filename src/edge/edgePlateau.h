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

// What counts as flat. All but minRun in gray levels.
struct EdgeFlatness {
    int32_t tolerance;  // two neighbours that differ by at most this are flat
    int32_t band;       // samples that stay together within this are flat too; >= tolerance
    int32_t span;       // a plateau whose level, a mean over minRun + 1 samples, moves by this much hides an edge
    int32_t minRun;     // steps that confirm a plateau; >= 1
    bool slopes;        // within the band, steps that all exceed the tolerance in one sense are flat as well
};

enum class EdgeRun { none, found, hidesEdge };

// Finds the first plateau that begins at or after from: a run of at least minRun flat steps, as long as it gets.
// hidesEdge: the run moves by the span, and a narrower band would divide it.
EdgeRun nextEdgePlateau(std::span<const int32_t> q, const EdgeFlatness& flatness, int64_t from, EdgePlateau& plateau);

}  // namespace zelm

#endif
