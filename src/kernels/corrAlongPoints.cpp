#include "corrAlongPoints.h"

#include <cmath>
#include <cstddef>
#include <limits>

#include "correlation.h"

namespace zelm {
namespace {

// The entry points of one pattern.
struct Entries {
    decltype(&nccFull) noMask;
    decltype(&nccFullRefMask) refMask;
    decltype(&nccFullMask) sharedMask;
    decltype(&nccFullTwoMasks) twoMasks;
};

constexpr Entries kFullEntries = {nccFull, nccFullRefMask, nccFullMask, nccFullTwoMasks};
constexpr Entries kQuarterEntries = {nccQuarter, nccQuarterRefMask, nccQuarterMask, nccQuarterTwoMasks};
constexpr Entries kCheckerEntries = {nccChecker, nccCheckerRefMask, nccCheckerMask, nccCheckerTwoMasks};

struct Template {
    std::int32_t w;
    std::int32_t h;
    const std::uint8_t* pixels;
    std::int32_t stride;
    const std::uint8_t* mask;
    std::int32_t maskStride;
    double mean;
    double sigma;
    double anchorX;
    double anchorY;
};

struct SearchImage {
    std::int32_t width;
    std::int32_t height;
    const std::uint8_t* pixels;
    std::int32_t stride;
    const std::uint8_t* mask;
    std::int32_t maskStride;
};

struct PointRange {
    const Point2i* positions;
    std::int32_t first;
    std::int32_t last;
};

// Towards zero; the nearest end of the range for values beyond it, 0 for NaN.
template <class Integer>
Integer truncated(double value) {
    constexpr auto kLow = static_cast<double>(std::numeric_limits<Integer>::min());
    if (std::isnan(value)) {
        return 0;
    }
    if (value < kLow) {
        return std::numeric_limits<Integer>::min();
    }
    return value < -kLow ? static_cast<Integer>(value) : std::numeric_limits<Integer>::max();
}

// A limit that keeps 64-bit sums with positions safe, and beyond which no window lies inside any image. NaN joins it.
constexpr double kFarAnchor = 0x1p40;

std::int64_t anchorPixel(double anchor) {
    const double rounded = anchor + 0.5;
    return std::fabs(rounded) < kFarAnchor ? static_cast<std::int64_t>(rounded) : static_cast<std::int64_t>(kFarAnchor);
}

std::int64_t countMask(const Template& tmpl) {
    std::int64_t count = 0;
    for (std::int32_t row = 0; row < tmpl.h; ++row) {
        const std::uint8_t* const mask = tmpl.mask + static_cast<std::ptrdiff_t>(row) * tmpl.maskStride;
        for (std::int32_t c = 0; c < tmpl.w; ++c) {
            count += mask[c] != 0 ? 1 : 0;
        }
    }
    return count;
}

// The template's statistics as the entry points take them.
struct Statistics {
    std::int32_t n;
    std::int64_t variance;
    std::int32_t sumT;
};

// n = 0: nothing to score.
Statistics templateStatistics(const Template& tmpl) {
    const std::int64_t area = std::int64_t{tmpl.w} * tmpl.h;
    if (tmpl.w < 1 || tmpl.h < 1 || area > std::numeric_limits<std::int32_t>::max()) {
        return {0, 0, 0};
    }
    const std::int64_t n = tmpl.mask == nullptr ? area : countMask(tmpl);
    const auto count = static_cast<double>(n);
    const double deviation = tmpl.sigma * count;
    return {static_cast<std::int32_t>(n), truncated<std::int64_t>(deviation * deviation),
            truncated<std::int32_t>(tmpl.mean * count)};
}

// The score of the template over the search window whose first pixel is at offset.
float scoreAt(const Entries& entries, const Template& t, const Statistics& known, const SearchImage& s,
              std::ptrdiff_t offset) {
    const std::uint8_t* const img = s.pixels + offset;
    if (s.mask != nullptr) {
        const std::uint8_t* const mask = s.mask + offset;  // deliberate: by the image's stride
        return t.mask == nullptr ? entries.sharedMask(t.pixels, t.stride, t.w, t.h, img, s.stride, s.width, s.height,
                                                      mask, s.maskStride)
                                 : entries.twoMasks(t.pixels, t.stride, t.w, t.h, t.mask, t.maskStride, img, s.stride,
                                                    s.width, s.height, mask, s.maskStride);
    }
    return t.mask == nullptr
               ? entries.noMask(t.pixels, t.stride, t.w, t.h, known.n, known.variance, known.sumT, img, s.stride)
               : entries.refMask(t.pixels, t.stride, t.w, t.h, t.mask, t.maskStride, known.n, known.variance,
                                 known.sumT, img, s.stride);
}

std::int32_t corrAlongPoints(const Entries& entries, const Template& tmpl, const SearchImage& search,
                             const PointRange& range, CorrScore* scores) {
    const bool anyScore = search.mask == nullptr;
    Statistics known{};
    if (anyScore) {
        known = templateStatistics(tmpl);
        if (known.n == 0) {
            return 0;
        }
    }
    const std::int64_t ax = anchorPixel(tmpl.anchorX);
    const std::int64_t ay = anchorPixel(tmpl.anchorY);
    std::int32_t written = 0;
    for (std::int64_t k = range.first; k <= range.last; ++k) {
        const auto at = static_cast<std::ptrdiff_t>(k);
        const std::int64_t x = range.positions[at].x - ax;
        const std::int64_t y = range.positions[at].y - ay;
        const bool inside = y + tmpl.h - 1 < search.height && x + tmpl.w - 1 < search.width && x >= 0 && y >= 0;
        if (!inside) {
            continue;
        }
        const float score = scoreAt(entries, tmpl, known, search, static_cast<std::ptrdiff_t>(y * search.stride + x));
        if (anyScore || score > 0.0F) {
            scores[at].index = static_cast<std::int32_t>(k);
            scores[at].score = static_cast<double>(score);
            ++written;
        }
    }
    return written;
}

}  // namespace

std::int32_t innerCorrAlongPointsFull(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl, std::int32_t tmplStride,
                                      const std::uint8_t* tmplMask, std::int32_t tmplMaskStride,
                                      std::int32_t searchWidth, std::int32_t searchHeight, const std::uint8_t* img,
                                      std::int32_t imgStride, const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                      const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                      double mean, double sigma, double anchorX, double anchorY) {
    return corrAlongPoints(
        kFullEntries, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
        {searchWidth, searchHeight, img, imgStride, imgMask, imgMaskStride}, {positions, k0, k1}, scores);
}

std::int32_t innerCorrAlongPointsQuarter(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl,
                                         std::int32_t tmplStride, const std::uint8_t* tmplMask,
                                         std::int32_t tmplMaskStride, std::int32_t searchWidth,
                                         std::int32_t searchHeight, const std::uint8_t* img, std::int32_t imgStride,
                                         const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                         const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                         double mean, double sigma, double anchorX, double anchorY) {
    return corrAlongPoints(
        kQuarterEntries, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
        {searchWidth, searchHeight, img, imgStride, imgMask, imgMaskStride}, {positions, k0, k1}, scores);
}

std::int32_t innerCorrAlongPointsChecker(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl,
                                         std::int32_t tmplStride, const std::uint8_t* tmplMask,
                                         std::int32_t tmplMaskStride, std::int32_t searchWidth,
                                         std::int32_t searchHeight, const std::uint8_t* img, std::int32_t imgStride,
                                         const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                         const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                         double mean, double sigma, double anchorX, double anchorY) {
    return corrAlongPoints(
        kCheckerEntries, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
        {searchWidth, searchHeight, img, imgStride, imgMask, imgMaskStride}, {positions, k0, k1}, scores);
}

}  // namespace zelm
