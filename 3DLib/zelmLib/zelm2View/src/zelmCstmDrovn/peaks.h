// The local maxima of scores along a line.
#ifndef ZELM_PEAKS_H
#define ZELM_PEAKS_H

#include <cstdint>

#include "corrAlongPoints.h"

namespace zelm {

// Lists the points of scores[0 .. n-1] that are scored, as are both their neighbours, and score no less than these.
// A plateau gives several, points next to unscored ones none. peaks has room for n entries; returns their number.
std::int32_t innerFindPeaks(std::int32_t n, const CorrScore* scores, CorrScore* peaks);

struct PeakSelection {
    double minScore;           // a NaN counts as 0
    std::int32_t minDistance;  // pixels
    bool isFull;               // the scores are those of all pixels
};

// Of two or more peaks: sorts them by score, highest first, equal ones in the order of the line; keeps those that reach
// max(0, minScore), lowered by 0.2 unless isFull; drops those whose pixel is closer than minDistance - 4 (isFull:
// minDistance - 2), when that is at least 2, to an earlier one that is kept. Works in place, returns the number kept.
std::int32_t innerSelectPeaks(std::int32_t count, const Point2i* lattice, const PeakSelection& selection,
                              CorrScore* peaks);

// max(0, minScore), and 0 when that is not a number.
inline double acceptedScore(double minScore) {
    return minScore > 0.0 ? minScore : 0.0;
}

}  // namespace zelm

#endif
