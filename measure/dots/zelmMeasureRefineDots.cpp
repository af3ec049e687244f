// The exported function that places dots by all their pixels.
#include <vector>

#include "dotFit.h"
#include "records.h"

using namespace zelm::measure;

namespace {

constexpr bool isSame(ZelmMeasureDotFlag inTheInterface, DotFlags flag) {
    return static_cast<unsigned>(inTheInterface) == static_cast<unsigned>(flag);
}
static_assert(isSame(ZELM_MEASURE_DOT_HALF_HIDDEN, kDotHalfHidden) &&
              isSame(ZELM_MEASURE_DOT_HIGHLIGHT, kDotHighlight) && isSame(ZELM_MEASURE_DOT_SATURATED, kDotSaturated) &&
              isSame(ZELM_MEASURE_DOT_NEIGHBOUR, kDotNeighbour) && isSame(ZELM_MEASURE_DOT_CUT, kDotCut) &&
              isSame(ZELM_MEASURE_DOT_ABSENT, kDotNoDot) && isSame(ZELM_MEASURE_DOT_NOT_CONVERGED, kDotNotConverged));

// Writes numbers of one dot to the caller's array, where there is one.
template <class... Numbers>
void put(double* array, std::size_t dot, Numbers... numbers) {
    if (array != nullptr) {
        double* to = array + dot * sizeof...(numbers);
        ((*to++ = numbers), ...);
    }
}

void give(const std::vector<DotFitResult>& found, const ZelmMeasureRefinedDots& out) {
    for (std::size_t i = 0; i < found.size(); ++i) {
        const DotFitResult& dot = found[i];
        if (out.statuses != nullptr) {
            out.statuses[i] = dot.ok ? ZELM_MEASURE_DOT_OK : ZELM_MEASURE_DOT_MISSING;
        }
        if (out.flags != nullptr) {
            out.flags[i] = static_cast<std::int32_t>(dot.flags);
        }
        if (dot.ok) {
            put(out.centres, i, dot.centre.x, dot.centre.y);
            put(out.covariances, i, dot.covariance[0], dot.covariance[1], dot.covariance[2]);
            put(out.scales, i, dot.scale);
            put(out.blurs, i, dot.blur);
            put(out.noises, i, dot.noise);
            put(out.levels, i, dot.inside, dot.outside);
        }
    }
}

}  // namespace

std::int32_t zelmMeasureRefineDots(const ZelmMeasureImage* image, std::int64_t count, const double* shapes,
                                   const double* neighbours, std::int32_t polarity,
                                   const ZelmMeasureRefinedDots* dots) {
    return guarded(nullptr, [&] {
        checkImage(image);
        require(count >= 0 && (shapes != nullptr || count == 0), "the shapes are NULL, or their number negative");
        require(polarity == 0 || polarity == 1, "the polarity is 0, dark, or 1, bright");
        const ZelmMeasureRefinedDots out = recordOf(dots);
        const DenseImage dense(*image);
        std::vector<DotFitResult> found(static_cast<std::size_t>(count));
        for (std::size_t i = 0; i < found.size(); ++i) {
            const double* s = shapes + 6 * i;
            const DotFitOptions options{polarity == 1 ? DotPolarity::bright : DotPolarity::dark,
                                        neighbours != nullptr ? neighbours[i] : 0.0};
            found[i] = fitDot(dense, {{s[0], s[1]}, {s[2], s[3], s[4], s[5]}}, options);
        }
        give(found, out);
    });
}
