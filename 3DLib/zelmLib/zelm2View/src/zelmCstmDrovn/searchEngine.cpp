#include "searchEngine.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "lattice.h"
#include "matchList.h"
#include "peaks.h"
#include "refinement.h"
#include "workBuffer.h"

namespace zelm {
namespace {

// A line that reaches the lattice has crossed the region's border twice.
constexpr std::int32_t kCrossings = 2;

// Room for the pixels from one end of the span to the other.
std::size_t latticeRoom(const LatticeSpan& span) {
    const std::int64_t dx = std::abs(std::int64_t{span.last.x} - span.first.x);
    const std::int64_t dy = std::abs(std::int64_t{span.last.y} - span.first.y);
    return static_cast<std::size_t>(std::max(dx, dy)) + 1;
}

SearchLine searchLine(const Line2d& line, const LatticeSpan& span) {
    const Point2d along{span.to.x - span.from.x, span.to.y - span.from.y};
    const double length = std::sqrt(along.x * along.x + along.y * along.y);
    return {line, {along.x / length, along.y / length}};
}

void scoreLattice(const LineScorer& scorer, std::int32_t iLatNum, std::int32_t mode) {
    for (std::int32_t k = 0; k < iLatNum; ++k) {
        scorer.scores[k].score = kUnscored;
    }
    scorer.score(mode, 0, iLatNum - 1);
}

// Refines the peaks in order until the matches are full.
std::int32_t refinePeaks(const LineScorer& scorer, const SearchLine& line, std::int32_t iLatNum,
                         const ZelmCstmSearchPrm& tPrm, std::int32_t peakCount, const CorrScore* peaks,
                         MatchList* matches) {
    const double accepted = acceptedScore(tPrm.minScore);
    for (std::int32_t i = 0; i < peakCount && matches->size() < tPrm.maxResults; ++i) {
        std::int32_t k = peaks[i].index;
        if (tPrm.mode != ZELM_CSTM_FULL && !innerClimbToPeak(scorer, iLatNum, &k)) {
            continue;
        }
        if (scorer.scores[k].score < accepted) {
            continue;
        }
        ZelmCstmMatch match;
        bool found = false;
        const std::int32_t status = innerRefinePeak(scorer, line, iLatNum, k, &match, &found);
        if (status < 0) {
            return status;
        }
        if (found) {
            matches->add(match);
        }
    }
    return ZELM_OK;
}

// The matches are gathered in work memory, so that a search that fails leaves the caller's as they were.
std::int32_t findMatches(const LineScorer& scorer, const SearchLine& line, std::int32_t iLatNum,
                         const ZelmCstmSearchPrm& tPrm, CorrScore* peaks, std::int32_t* iCount,
                         ZelmCstmMatch* taMatches) {
    const bool isFull = tPrm.mode == ZELM_CSTM_FULL;
    const std::int32_t peakCount = innerSelectPeaks(innerFindPeaks(iLatNum, scorer.scores, peaks), scorer.lattice,
                                                    {tPrm.minScore, tPrm.minDistance, isFull}, peaks);
    if (peakCount == 0) {
        *iCount = 0;
        return ZELM_OK;
    }
    WorkBuffer<ZelmCstmMatch> room(static_cast<std::size_t>(std::min(peakCount, tPrm.maxResults)));
    if (!room.ok()) {
        return ZELM_ERR_MEMORY;
    }
    MatchList matches(room.data(), tPrm.minDistance, !isFull);
    const std::int32_t status = refinePeaks(scorer, line, iLatNum, tPrm, peakCount, peaks, &matches);
    if (status < 0) {
        return status;
    }
    std::copy_n(room.data(), matches.size(), taMatches);
    *iCount = matches.size();
    return ZELM_OK;
}

}  // namespace

std::int32_t innerSearchOnEpiLine(const SearchTemplate& tmpl, const MaskedPlane& image, const ZelmCstmSearchPrm& tPrm,
                                  std::int32_t* iCount, ZelmCstmMatch* taMatches) {
    LatticeSpan span;
    const std::int32_t status =
        innerLatticeSpan({tPrm.roiX, tPrm.roiY, tPrm.roiWidth, tPrm.roiHeight}, tPrm.epiLine, &span);
    if (status < 0) {
        return status;
    }
    WorkBuffer<Point2i> lattice(latticeRoom(span));
    if (!lattice.ok()) {
        return ZELM_ERR_MEMORY;
    }
    const std::int32_t iLatNum = zelmMiscPlotPointsOfLine(&span.first, &span.last, lattice.data());
    if (iLatNum < 1) {
        return kCrossings;  // docs/decisions.md#search-count-status
    }
    WorkBuffer<CorrScore> scores(static_cast<std::size_t>(iLatNum));
    WorkBuffer<CorrScore> peaks(static_cast<std::size_t>(iLatNum));
    if (!scores.ok() || !peaks.ok()) {
        return ZELM_ERR_MEMORY;
    }
    const LineScorer scorer{tmpl, image, lattice.data(), scores.data()};
    scoreLattice(scorer, iLatNum, tPrm.mode);
    return findMatches(scorer, searchLine(tPrm.epiLine, span), iLatNum, tPrm, peaks.data(), iCount, taMatches);
}

}  // namespace zelm
