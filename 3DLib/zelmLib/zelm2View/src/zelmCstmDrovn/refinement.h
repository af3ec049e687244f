// From a peak on the pixels of a line to a place between them.
#ifndef ZELM_REFINEMENT_H
#define ZELM_REFINEMENT_H

#include <cstdint>

#include "scorer.h"
#include "zelm/cstmSearch.h"

namespace zelm {

// The line that a lattice follows.
struct SearchLine {
    Line2d line;
    Point2d direction;  // unit, from the lattice's first point to its last
};

// Moves *k uphill by the scores of all pixels: while a neighbour is higher, one step towards the higher one (of equal
// ones the earlier), at most twice. Leaves the scores of *k and its neighbours in the scorer's list. False when a point
// that is needed lies beyond the lattice or gets no score, or when there is no local maximum where two steps lead.
bool innerClimbToPeak(const LineScorer& scorer, std::int32_t iLatNum, std::int32_t* k);

// Extremum of y = a s^2 + b s + c0 through the logarithms of three scores, which are raised first to be at least 0.1
// when one of them is less. Sets *found to false for a minimum, for an extremum outside the abscissae and for
// abscissae that coincide. A parabola that is flat within 1e-9 has it in the middle of the range.
// Returns ZELM_OK or the failure of the solver.
std::int32_t innerLogParabolaPeak(const double s[3], const double score[3], double* peak, bool* found);

// The match at peak k, 1 <= k <= iLatNum - 2, from the scores of k and its neighbours. Sets *found to false when it is
// no match. Returns ZELM_OK or a failure.
std::int32_t innerRefinePeak(const LineScorer& scorer, const SearchLine& line, std::int32_t iLatNum, std::int32_t k,
                             ZelmCstmMatch* match, bool* found);

}  // namespace zelm

#endif
