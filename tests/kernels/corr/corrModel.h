// Correlation by its definition, pixel by pixel in 64-bit integers, and random windows to try it on.
#ifndef ZELM_TEST_CORR_MODEL_H
#define ZELM_TEST_CORR_MODEL_H

#include <cmath>
#include <cstdint>
#include <memory>
#include <vector>

#include "corrKernels.h"
#include "correlation.h"
#include "guardedBuffer.h"
#include "processors.h"
#include "random.h"

namespace zelmtest {

using zelm::CorrMode;
using zelm::CorrPattern;

struct CorrTierCase {
    const char* name;
    Processor processor;
    const zelm::CorrTier* tier;
    bool samplesChecker;
};

// The tiers that this machine can run.
inline std::vector<CorrTierCase> corrTiers() {
    std::vector<CorrTierCase> tiers = {{"plain", plainProcessor(), &zelm::kCorrPlainTier, true}};
#if defined(__x86_64__) || defined(__i386__)
    if (machineHasSse41Tier()) {
        tiers.push_back({"SSE4.1", sse41Processor(), &zelm::kCorrSse41Tier, false});
    }
#endif
#if defined(__x86_64__)
    if (machineHasAvx2Tier()) {
        tiers.push_back({"AVX2", Processor{}, &zelm::kCorrAvx2Tier, false});
    }
#endif
    return tiers;
}

// A plane of h rows of w bytes, stride apart, whose first or last row touches a page that may not be read. A negative
// stride goes upwards.
class GuardedPlane {
public:
    GuardedPlane(std::int32_t w, std::int32_t h, std::int32_t rowStride, Guard guard)
        : stride(rowStride),
          buffer(w < 1 || h < 1 ? 0 : static_cast<std::size_t>(std::abs(rowStride) * (h - 1) + w), guard),
          first(buffer.data() + (rowStride < 0 && h > 0 ? static_cast<std::ptrdiff_t>(-rowStride) * (h - 1) : 0)) {}

    [[nodiscard]] zelm::CorrPlane plane() const { return {first, stride}; }
    std::uint8_t& at(std::int32_t c, std::int32_t row) { return first[static_cast<std::ptrdiff_t>(row) * stride + c]; }
    template <class Draw>
    void fill(const Draw& draw) {
        for (std::uint8_t& byte : buffer) {
            byte = static_cast<std::uint8_t>(draw());
        }
    }

    const std::int32_t stride;

private:
    GuardedBuffer<std::uint8_t> buffer;
    std::uint8_t* const first;
};

// Template, search window and their masks.
struct CorrCase {
    CorrCase(std::int32_t width, std::int32_t height, const std::int32_t (&strides)[4], Guard guard)
        : w(width),
          h(height),
          tmpl(width, height, strides[0], guard),
          img(width, height, strides[1], guard),
          mask(width, height, strides[2], guard),
          imgMask(width, height, strides[3], guard) {}

    [[nodiscard]] zelm::CorrWindows windows() const {
        return {tmpl.plane(), img.plane(), mask.plane(), imgMask.plane(), w, h};
    }

    std::int32_t w;
    std::int32_t h;
    GuardedPlane tmpl;
    GuardedPlane img;
    GuardedPlane mask;
    GuardedPlane imgMask;
};

inline std::int32_t randomStride(Random& random, std::int32_t w) {
    const std::int32_t stride = w + (random.integer(0, 2) == 0 ? 0 : random.integer(0, 40));
    return random.integer(0, 3) == 0 ? -stride : stride;
}

// kind: 0 noise, 1 a search window like the template, 2 white, 3 black and white.
inline std::unique_ptr<CorrCase> randomCorrCase(Random& random, std::int32_t w, std::int32_t h, int kind, Guard guard) {
    const std::int32_t strides[4] = {randomStride(random, w), randomStride(random, w), randomStride(random, w),
                                     randomStride(random, w)};
    auto c = std::make_unique<CorrCase>(w, h, strides, guard);
    const auto draw = [&] { return kind == 2 ? 255 : kind == 3 ? 255 * random.integer(0, 1) : random.integer(0, 255); };
    c->tmpl.fill(draw);
    c->img.fill(draw);
    // Any byte other than 0 counts as set.
    c->mask.fill([&] { return random.integer(0, 2) == 0 ? 0 : random.integer(1, 255); });
    c->imgMask.fill([&] { return random.integer(0, 2) == 0 ? 0 : 1 << random.integer(0, 7); });
    if (kind == 1) {
        for (std::int32_t row = 0; row < h; ++row) {
            for (std::int32_t col = 0; col < w; ++col) {
                const std::int32_t gray = c->tmpl.at(col, row) + random.integer(-9, 9);
                c->img.at(col, row) = static_cast<std::uint8_t>(gray < 0 ? 0 : gray > 255 ? 255 : gray);
            }
        }
    }
    return c;
}

struct ModelSums {
    std::int64_t n = 0;
    std::int64_t t = 0;
    std::int64_t tt = 0;
    std::int64_t i = 0;
    std::int64_t ii = 0;
    std::int64_t it = 0;
};

inline bool takesPart(CorrPattern pattern, CorrMode mode, CorrCase& c, std::int32_t col, std::int32_t row) {
    if (pattern == zelm::kCorrChecker && (col + row) % 2 != 0) {
        return false;
    }
    if (pattern == zelm::kCorrQuarter && (col % 2 != 0 || row % 2 != 0)) {
        return false;
    }
    return (mode == zelm::kCorrNoMask || c.mask.at(col, row) != 0) &&
           (mode != zelm::kCorrTwoMasks || c.imgMask.at(col, row) != 0);
}

inline ModelSums modelSums(CorrPattern pattern, CorrMode mode, CorrCase& c) {
    ModelSums s;
    for (std::int32_t row = 0; row < c.h; ++row) {
        for (std::int32_t col = 0; col < c.w; ++col) {
            if (takesPart(pattern, mode, c, col, row)) {
                const std::int64_t t = c.tmpl.at(col, row);
                const std::int64_t i = c.img.at(col, row);
                s.n += 1;
                s.t += t;
                s.tt += t * t;
                s.i += i;
                s.ii += i * i;
                s.it += i * t;
            }
        }
    }
    return s;
}

// The score of sums, the template's statistics being those of other or of the same.
inline float modelScore(const ModelSums& tmpl, const ModelSums& s) {
    const std::int64_t tmplVariance = tmpl.n * tmpl.tt - tmpl.t * tmpl.t;
    const std::int64_t imgVariance = tmpl.n * s.ii - s.i * s.i;
    const float d = static_cast<float>(tmplVariance) * static_cast<float>(imgVariance);
    if (d < 1e-9F) {
        return 0.0F;
    }
    const auto covariance = static_cast<float>(tmpl.n * s.it - s.i * tmpl.t);
    return static_cast<float>(static_cast<double>(covariance) / std::sqrt(static_cast<double>(d)));
}

// Template statistics as the entry points take them.
struct GivenStatistics {
    std::int32_t n;
    std::int64_t variance;
    std::int32_t sumT;
};

// An entry point on windows.
inline float entryScoreOf(CorrPattern pattern, CorrMode mode, const zelm::CorrWindows& v,
                          const GivenStatistics& given) {
    using namespace zelm;
    static constexpr decltype(&nccFull) kNoMask[] = {nccFull, nccChecker, nccQuarter};
    static constexpr decltype(&nccFullRefMask) kRefMask[] = {nccFullRefMask, nccCheckerRefMask, nccQuarterRefMask};
    static constexpr decltype(&nccFullMask) kMask[] = {nccFullMask, nccCheckerMask, nccQuarterMask};
    static constexpr decltype(&nccFullTwoMasks) kTwoMasks[] = {nccFullTwoMasks, nccCheckerTwoMasks, nccQuarterTwoMasks};
    switch (mode) {
        case kCorrNoMask:
            return kNoMask[pattern](v.tmpl.pixels, v.tmpl.stride, v.w, v.h, given.n, given.variance, given.sumT,
                                    v.img.pixels, v.img.stride);
        case kCorrRefMask:
            return kRefMask[pattern](v.tmpl.pixels, v.tmpl.stride, v.w, v.h, v.mask.pixels, v.mask.stride, given.n,
                                     given.variance, given.sumT, v.img.pixels, v.img.stride);
        case kCorrSharedMask:
            return kMask[pattern](v.tmpl.pixels, v.tmpl.stride, v.w, v.h, v.img.pixels, v.img.stride, 0, 0,
                                  v.mask.pixels, v.mask.stride);
        default:
            return kTwoMasks[pattern](v.tmpl.pixels, v.tmpl.stride, v.w, v.h, v.mask.pixels, v.mask.stride,
                                      v.img.pixels, v.img.stride, 0, 0, v.imgMask.pixels, v.imgMask.stride);
    }
}

// An entry point on a case. The modes that take the template's statistics get those of the sums given.
inline float entryScore(CorrPattern pattern, CorrMode mode, const CorrCase& c, const ModelSums& tmpl) {
    return entryScoreOf(
        pattern, mode, c.windows(),
        {static_cast<std::int32_t>(tmpl.n), tmpl.n * tmpl.tt - tmpl.t * tmpl.t, static_cast<std::int32_t>(tmpl.t)});
}

// The pattern that a tier sums in place of the one asked for.
inline CorrPattern patternOf(const CorrTierCase& tier, CorrPattern pattern) {
    return pattern == zelm::kCorrChecker && !tier.samplesChecker ? zelm::kCorrFull : pattern;
}

}  // namespace zelmtest

#endif
