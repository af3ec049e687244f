#include "peaks.h"

#include <algorithm>

#include "scorer.h"

namespace zelm {
namespace {

// How far a score of fewer pixels may fall short of the score of all.
constexpr double kCoarseAllowance = 0.2;
// How far a peak may move by refinement, in pixels: a little for the parabola, and two steps of climbing.
constexpr std::int64_t kFullAllowance = 2;            // pixels
constexpr std::int64_t kCoarseDistanceAllowance = 4;  // pixels

bool ranksHigher(const CorrScore& a, const CorrScore& b) {
    return a.score > b.score || (a.score == b.score && a.index < b.index);
}

std::int64_t squaredDistance(const Point2i& p, const Point2i& q) {
    const std::int64_t dx = std::int64_t{p.x} - q.x;
    const std::int64_t dy = std::int64_t{p.y} - q.y;
    return dx * dx + dy * dy;
}

std::int32_t dropNearPeaks(std::int32_t count, const Point2i* lattice, std::int64_t r, CorrScore* peaks) {
    std::int32_t kept = 0;
    for (std::int32_t i = 0; i < count; ++i) {
        const Point2i& place = lattice[peaks[i].index];
        const bool isNear = std::any_of(peaks, peaks + kept, [&](const CorrScore& better) {
            return squaredDistance(lattice[better.index], place) < r * r;
        });
        if (!isNear) {
            peaks[kept] = peaks[i];
            ++kept;
        }
    }
    return kept;
}

}  // namespace

std::int32_t innerFindPeaks(std::int32_t n, const CorrScore* scores, CorrScore* peaks) {
    std::int32_t count = 0;
    for (std::int32_t i = 1; i < n - 1; ++i) {
        const bool allScored = isScored(scores[i - 1]) && isScored(scores[i]) && isScored(scores[i + 1]);
        if (allScored && scores[i].score >= scores[i - 1].score && scores[i].score >= scores[i + 1].score) {
            peaks[count].index = i;
            peaks[count].score = scores[i].score;
            ++count;
        }
    }
    return count;
}

std::int32_t innerSelectPeaks(std::int32_t count, const Point2i* lattice, const PeakSelection& selection,
                              CorrScore* peaks) {
    if (count < 2) {
        return count;
    }
    const double threshold = acceptedScore(selection.minScore) - (selection.isFull ? 0.0 : kCoarseAllowance);
    CorrScore* const end =
        std::remove_if(peaks, peaks + count, [threshold](const CorrScore& peak) { return !(peak.score >= threshold); });
    std::sort(peaks, end, ranksHigher);
    const auto reaching = static_cast<std::int32_t>(end - peaks);
    const std::int64_t r = selection.minDistance - (selection.isFull ? kFullAllowance : kCoarseDistanceAllowance);
    return r >= 2 && reaching >= 2 ? dropNearPeaks(reaching, lattice, r, peaks) : reaching;
}

}  // namespace zelm
