// The edge candidates of a quantised profile and the five rules that choose one.
#ifndef ZELM_EDGE_SELECT_H
#define ZELM_EDGE_SELECT_H

#include <cstdint>
#include <span>

namespace zelm {

// The transition between two plateaus.
struct EdgeCandidate {
    int64_t a;           // where it begins: the last sample of the first plateau
    int64_t b;           // where it ends: the first sample of the second plateau
    int32_t difference;  // level of the second plateau minus level of the first, gray levels
    int64_t from;        // samples from..to tell of the edge; beyond a and b they belong to noisy plateaus
    int64_t to;
};

struct EdgeRule {
    int32_t selector;       // 0..4
    int32_t sign;           // +1 rising, -1 falling, 0 either
    int32_t threshold;      // least difference, gray levels
    int32_t flatTolerance;  // gray levels, >= 0
    int32_t minFlatRun;     // steps, >= 1
    double doubledCentre;   // twice the place of the segment's centre, in samples, for selector 4
};

// False when no candidate satisfies the rule.
bool selectEdge(std::span<const int32_t> q, const EdgeRule& rule, EdgeCandidate& edge);

}  // namespace zelm

#endif
