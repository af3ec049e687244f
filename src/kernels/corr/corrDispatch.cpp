// The twelve entry points: sums by the tier of the processor, then the score.
#include "corrKernels.h"
#include "corrScore.h"
#include "correlation.h"
#include "cpuFeatures.h"

#if defined(__AVX__)
#error "the dispatch must run on every processor: build this file without AVX flags"
#endif

namespace zelm {
namespace {

// The modes whose template statistics the caller gives.
float scoreByGiven(CorrPattern pattern, CorrMode mode, const CorrWindows& windows, const CorrStatistics& tmpl) {
    CorrSums sums;
    corrTierOfProcessor().sums[pattern][mode](windows, sums);
    return corrScore(tmpl, sums);
}

// The modes that compute them.
float scoreByOwn(CorrPattern pattern, CorrMode mode, const CorrWindows& windows) {
    CorrSums sums;
    corrTierOfProcessor().sums[pattern][mode](windows, sums);
    return corrScoreByOwn(sums);
}

}  // namespace

const CorrTier& corrTierOfProcessor() {
#ifdef ZELM_AVX2_TIER
    if (cpuHasAvx2Set() != 0) {
        return kCorrAvx2Tier;
    }
#endif
#ifdef ZELM_SSE41_TIER
    if (cpuHasSse41() != 0) {
        return kCorrSse41Tier;
    }
#endif
    return kCorrPlainTier;
}

float nccFull(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
              std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrFull, kCorrNoMask, {{tmpl, tmplStride}, {img, imgStride}, {}, {}, w, h},
                        {N, variance, sumT});
}

float nccChecker(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
                 std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrChecker, kCorrNoMask, {{tmpl, tmplStride}, {img, imgStride}, {}, {}, w, h},
                        {N, variance, sumT});
}

float nccQuarter(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h, std::int32_t N,
                 std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrQuarter, kCorrNoMask, {{tmpl, tmplStride}, {img, imgStride}, {}, {}, w, h},
                        {N, variance, sumT});
}

float nccFullRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N, std::int64_t variance,
                     std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrFull, kCorrRefMask,
                        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {}, w, h},
                        {N, variance, sumT});
}

float nccCheckerRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                        const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N,
                        std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrChecker, kCorrRefMask,
                        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {}, w, h},
                        {N, variance, sumT});
}

float nccQuarterRefMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                        const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, std::int32_t N,
                        std::int64_t variance, std::int32_t sumT, const std::uint8_t* img, std::int32_t imgStride) {
    return scoreByGiven(kCorrQuarter, kCorrRefMask,
                        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {}, w, h},
                        {N, variance, sumT});
}

float nccFullMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                  const std::uint8_t* img, std::int32_t imgStride, std::int32_t, std::int32_t, const std::uint8_t* mask,
                  std::int32_t maskStride) {
    return scoreByOwn(kCorrFull, kCorrSharedMask, {{tmpl, tmplStride}, {img, imgStride}, {mask, maskStride}, {}, w, h});
}

float nccCheckerMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* img, std::int32_t imgStride, std::int32_t, std::int32_t,
                     const std::uint8_t* mask, std::int32_t maskStride) {
    return scoreByOwn(kCorrChecker, kCorrSharedMask,
                      {{tmpl, tmplStride}, {img, imgStride}, {mask, maskStride}, {}, w, h});
}

float nccQuarterMask(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                     const std::uint8_t* img, std::int32_t imgStride, std::int32_t, std::int32_t,
                     const std::uint8_t* mask, std::int32_t maskStride) {
    return scoreByOwn(kCorrQuarter, kCorrSharedMask,
                      {{tmpl, tmplStride}, {img, imgStride}, {mask, maskStride}, {}, w, h});
}

float nccFullTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                      const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                      std::int32_t imgStride, std::int32_t, std::int32_t, const std::uint8_t* imgMask,
                      std::int32_t imgMaskStride) {
    return scoreByOwn(
        kCorrFull, kCorrTwoMasks,
        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {imgMask, imgMaskStride}, w, h});
}

float nccCheckerTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                         const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                         std::int32_t imgStride, std::int32_t, std::int32_t, const std::uint8_t* imgMask,
                         std::int32_t imgMaskStride) {
    return scoreByOwn(
        kCorrChecker, kCorrTwoMasks,
        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {imgMask, imgMaskStride}, w, h});
}

float nccQuarterTwoMasks(const std::uint8_t* tmpl, std::int32_t tmplStride, std::int32_t w, std::int32_t h,
                         const std::uint8_t* tmplMask, std::int32_t tmplMaskStride, const std::uint8_t* img,
                         std::int32_t imgStride, std::int32_t, std::int32_t, const std::uint8_t* imgMask,
                         std::int32_t imgMaskStride) {
    return scoreByOwn(
        kCorrQuarter, kCorrTwoMasks,
        {{tmpl, tmplStride}, {img, imgStride}, {tmplMask, tmplMaskStride}, {imgMask, imgMaskStride}, w, h});
}

}  // namespace zelm
