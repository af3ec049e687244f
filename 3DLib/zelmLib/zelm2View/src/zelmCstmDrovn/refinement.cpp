#include "refinement.h"

#include <algorithm>
#include <cmath>

#include "assertion.h"
#include "zelm/clp2d.h"
#include "zelm/mat.h"

namespace zelm {
namespace {

constexpr int kMaxSteps = 2;             // pixels that a peak climbs
constexpr double kMinLogArgument = 0.1;  // score; lower ones are raised by a common offset
constexpr double kFlatCurvature = 1e-9;  // logarithms a squared pixel

double distance(const Point2d& p, const Point2d& q) {
    const double dx = p.x - q.x;
    const double dy = p.y - q.y;
    return std::sqrt(dx * dx + dy * dy);
}

// The feet of the lattice points k - 1, k, k + 1 on the line.
std::int32_t footPoints(const Point2i* lattice, const Line2d& line, std::int32_t k, Point2d feet[3]) {
    for (std::int32_t i = 0; i < 3; ++i) {
        const Point2i& pixel = lattice[k - 1 + i];
        const Point2d point{static_cast<double>(pixel.x), static_cast<double>(pixel.y)};
        // The clipping has accepted the line, so that a foot fails for want of memory alone.
        if (zelmClp2dFootOfPerpendicularToLine(&point, &line, &feet[i]) < 0) {
            return ZELM_ERR_MEMORY;
        }
    }
    return ZELM_OK;
}

}  // namespace

bool innerClimbToPeak(const LineScorer& scorer, std::int32_t iLatNum, std::int32_t* k) {
    std::int32_t centre = *k;
    if (scorer.rescore(centre - 1, centre + 1) < 3) {
        return false;
    }
    for (int step = 0;; ++step) {
        const double before = scorer.scores[centre - 1].score;
        const double here = scorer.scores[centre].score;
        const double behind = scorer.scores[centre + 1].score;
        if (here >= before && here >= behind) {
            *k = centre;
            return true;
        }
        if (step == kMaxSteps) {
            return false;
        }
        const std::int32_t uphill = behind > before ? 1 : -1;
        const std::int32_t beyond = centre + 2 * uphill;
        if (beyond < 0 || beyond >= iLatNum || scorer.rescore(beyond, beyond) < 1) {
            return false;
        }
        centre += uphill;
    }
}

std::int32_t innerLogParabolaPeak(const double s[3], const double score[3], double* peak, bool* found) {
    *found = false;
    const double least = std::min({score[0], score[1], score[2]});
    const double raise = least < kMinLogArgument ? std::max(0.0, -least) + kMinLogArgument : 0.0;
    double powers[9];
    double logs[3];
    for (int i = 0; i < 3; ++i) {
        powers[3 * i] = s[i] * s[i];
        powers[3 * i + 1] = s[i];
        powers[3 * i + 2] = 1.0;
        logs[i] = std::log(score[i] + raise);
    }
    double parabola[3];
    const std::int32_t status = zelmMatSolveLU(3, powers, logs, parabola);
    if (status < 0) {
        return status == ZELM_ERR_SINGULAR ? ZELM_OK : status;
    }
    const auto [first, last] = std::minmax({s[0], s[1], s[2]});
    const double a = parabola[0];
    const double extremum = std::fabs(a) <= kFlatCurvature ? (first + last) / 2.0 : -parabola[1] / (2.0 * a);
    // Written so that an extremum that is not a number is refused too.
    *found = !(a > kFlatCurvature) && extremum >= first && extremum <= last;
    *peak = extremum;
    return ZELM_OK;
}

std::int32_t innerRefinePeak(const LineScorer& scorer, const SearchLine& line, std::int32_t iLatNum, std::int32_t k,
                             ZelmCstmMatch* match, bool* found) {
    // clang-format off
    ZELM_ASSERT(k>=1 && k<=(iLatNum-2));
    // clang-format on
    *found = false;
    Point2d feet[3];
    const std::int32_t footStatus = footPoints(scorer.lattice, line.line, k, feet);
    if (footStatus < 0) {
        return footStatus;
    }
    const double abscissae[3] = {-distance(feet[0], feet[1]), 0.0, distance(feet[2], feet[1])};
    const double scores[3] = {scorer.scores[k - 1].score, scorer.scores[k].score, scorer.scores[k + 1].score};
    double peak = 0.0;
    const std::int32_t status = innerLogParabolaPeak(abscissae, scores, &peak, found);
    if (status < 0) {
        return status;
    }
    *match = {scores[1], feet[1].x + peak * line.direction.x, feet[1].y + peak * line.direction.y};
    return ZELM_OK;
}

}  // namespace zelm
