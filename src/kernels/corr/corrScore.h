// The score of a window from its sums. For files that are built without flags of a vector tier: inline code must be the
// same in all of them.
#ifndef ZELM_CORR_SCORE_H
#define ZELM_CORR_SCORE_H

#include <cmath>
#include <cstdint>

#include "corrKernels.h"

#if defined(__AVX__)
#error "the score must be formed alike on every processor: include this where there are no AVX flags"
#endif

namespace zelm {

// Number of pixels, n * sum(TT) - sum(T)^2, and sum(T) of a template.
struct CorrStatistics {
    std::int64_t n;
    std::int64_t variance;
    std::int64_t sumT;
};

// a * b - c * d modulo 2^64: sums that overflowed must not make undefined behaviour.
inline std::int64_t productDifference(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) {
    const auto word = [](std::int64_t v) { return static_cast<std::uint64_t>(v); };
    return static_cast<std::int64_t>(word(a) * word(b) - word(c) * word(d));
}

// The modes whose template statistics the caller gives.
inline float corrScore(const CorrStatistics& tmpl, const CorrSums& sums) {
    constexpr float kFlat = 1e-9F;
    const std::int64_t imgVariance = productDifference(tmpl.n, sums.ii, sums.i, sums.i);
    const float d = static_cast<float>(tmpl.variance) * static_cast<float>(imgVariance);
    if (d < kFlat) {
        return 0.0F;
    }
    const auto covariance = static_cast<float>(productDifference(tmpl.n, sums.it, sums.i, tmpl.sumT));
    return static_cast<float>(static_cast<double>(covariance) / std::sqrt(static_cast<double>(d)));
}

// The modes whose sums hold the template's too.
inline float corrScoreByOwn(const CorrSums& sums) {
    constexpr float kNoPixel = -2.0F;
    if (sums.count == 0) {
        return kNoPixel;
    }
    return corrScore({sums.count, productDifference(sums.count, sums.tt, sums.t, sums.t), sums.t}, sums);
}

}  // namespace zelm

#endif
