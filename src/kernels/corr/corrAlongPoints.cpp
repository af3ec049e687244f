#include "corrAlongPoints.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "corrKernels.h"
#include "corrScore.h"

namespace zelm {
namespace {

// Windows that are summed before any of them is scored: the square root and the division of one then wait for nothing,
// and a run of them shares work (corrKernels.h). One more than whole groups of the vector tiers.
constexpr std::int32_t kBatch = 65;

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

// n = 0: nothing to score.
CorrStatistics templateStatistics(const Template& tmpl) {
    const std::int64_t area = std::int64_t{tmpl.w} * tmpl.h;
    if (tmpl.w < 1 || tmpl.h < 1 || area > std::numeric_limits<std::int32_t>::max()) {
        return {0, 0, 0};
    }
    const std::int64_t n = tmpl.mask == nullptr ? area : countMask(tmpl);
    const auto count = static_cast<double>(n);
    const double deviation = tmpl.sigma * count;
    return {n, truncated<std::int64_t>(deviation * deviation), truncated<std::int32_t>(tmpl.mean * count)};
}

// What every window of a list has in common.
struct Search {
    const CorrTier& tier;
    CorrPattern pattern;
    CorrMode mode;
    CorrWindows first;          // laid on the search image's first pixel
    CorrStatistics statistics;  // of the modes without a search mask
};

// Accepted positions that wait for their scores.
struct Batch {
    std::int32_t size = 0;
    std::int32_t places[kBatch];     // in the list
    std::ptrdiff_t offsets[kBatch];  // of the windows' first pixels
};

CorrMode modeOf(const Template& tmpl, const SearchImage& search) {
    if (search.mask != nullptr) {
        return tmpl.mask == nullptr ? kCorrSharedMask : kCorrTwoMasks;
    }
    return tmpl.mask == nullptr ? kCorrNoMask : kCorrRefMask;
}

CorrWindows windowsOf(const Template& tmpl, const SearchImage& search, CorrMode mode) {
    const CorrPlane tmplMask = {tmpl.mask, tmpl.maskStride};
    const CorrPlane imgMask = {search.mask, search.maskStride};
    return {{tmpl.pixels, tmpl.stride},
            {search.pixels, search.stride},
            mode == kCorrSharedMask ? imgMask : tmplMask,
            imgMask,
            tmpl.w,
            tmpl.h};
}

CorrWindows windowsAt(const Search& search, std::ptrdiff_t offset) {
    CorrWindows windows = search.first;
    windows.img.pixels += offset;
    // The search mask's window is found by the image's stride: docs/decisions.md#mask-stride.
    if (search.mode == kCorrSharedMask) {
        windows.mask.pixels += offset;
    } else if (search.mode == kCorrTwoMasks) {
        windows.imgMask.pixels += offset;
    }
    return windows;
}

// Windows of a batch that follow one another pixel by pixel, to the right or to the left.
struct Run {
    std::int32_t length;
    bool toTheLeft;
};

Run runFrom(const Batch& batch, std::int32_t begin) {
    const std::ptrdiff_t* const offsets = batch.offsets;
    std::int32_t end = begin + 1;
    const bool toTheLeft = end < batch.size && offsets[end] == offsets[begin] - 1;
    const std::ptrdiff_t step = toTheLeft ? -1 : 1;
    while (end < batch.size && offsets[end] == offsets[end - 1] + step) {
        ++end;
    }
    return {end - begin, toTheLeft};
}

void sumRun(const Search& search, const Batch& batch, std::int32_t begin, const Run& run, CorrSums* sums) {
    const std::int32_t leftmost = run.toTheLeft ? begin + run.length - 1 : begin;
    search.tier.fullRun(windowsAt(search, batch.offsets[leftmost]), run.length, sums);
    if (run.toTheLeft) {
        std::reverse(sums, sums + run.length);
    }
}

void sumBatch(const Search& search, const Batch& batch, CorrSums* sums) {
    const CorrSumsFunction sumOne = search.tier.sums[search.pattern][search.mode];
    // Where the pattern takes every pixel in this tier.
    const bool inRuns = search.tier.fullRun != nullptr && search.mode == kCorrNoMask &&
                        sumOne == search.tier.sums[kCorrFull][kCorrNoMask];
    for (std::int32_t k = 0; k < batch.size;) {
        const Run run = inRuns ? runFrom(batch, k) : Run{1, false};
        if (run.length > 1) {
            sumRun(search, batch, k, run, sums + k);
        } else {
            sumOne(windowsAt(search, batch.offsets[k]), sums[k]);
        }
        k += run.length;
    }
}

// Scores the batch and empties it. Returns the number of entries written.
std::int32_t scoreBatch(const Search& search, Batch& batch, CorrScore* scores) {
    CorrSums sums[kBatch];
    sumBatch(search, batch, sums);
    const bool anyScore = search.mode == kCorrNoMask || search.mode == kCorrRefMask;
    std::int32_t written = 0;
    for (std::int32_t k = 0; k < batch.size; ++k) {
        const float score = anyScore ? corrScore(search.statistics, sums[k]) : corrScoreByOwn(sums[k]);
        if (anyScore || score > 0.0F) {
            CorrScore& entry = scores[batch.places[k]];
            entry.index = batch.places[k];
            entry.score = static_cast<double>(score);
            ++written;
        }
    }
    batch.size = 0;
    return written;
}

std::int32_t corrAlongPoints(CorrPattern pattern, const Template& tmpl, const SearchImage& image,
                             const PointRange& range, CorrScore* scores) {
    const CorrMode mode = modeOf(tmpl, image);
    Search search = {corrTierOfProcessor(), pattern, mode, windowsOf(tmpl, image, mode), {}};
    if (image.mask == nullptr) {
        search.statistics = templateStatistics(tmpl);
        if (search.statistics.n == 0) {
            return 0;
        }
    }
    const std::int64_t ax = anchorPixel(tmpl.anchorX);
    const std::int64_t ay = anchorPixel(tmpl.anchorY);
    Batch batch;
    std::int32_t written = 0;
    for (std::int64_t k = range.first; k <= range.last; ++k) {
        const auto at = static_cast<std::ptrdiff_t>(k);
        const std::int64_t x = range.positions[at].x - ax;
        const std::int64_t y = range.positions[at].y - ay;
        const bool inside = y + tmpl.h - 1 < image.height && x + tmpl.w - 1 < image.width && x >= 0 && y >= 0;
        if (!inside) {
            continue;
        }
        batch.places[batch.size] = static_cast<std::int32_t>(k);
        batch.offsets[batch.size] = static_cast<std::ptrdiff_t>(y * image.stride + x);
        ++batch.size;
        if (batch.size == kBatch) {
            written += scoreBatch(search, batch, scores);
        }
    }
    return written + scoreBatch(search, batch, scores);
}

}  // namespace

std::int32_t innerCorrAlongPointsFull(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl, std::int32_t tmplStride,
                                      const std::uint8_t* tmplMask, std::int32_t tmplMaskStride,
                                      std::int32_t searchWidth, std::int32_t searchHeight, const std::uint8_t* img,
                                      std::int32_t imgStride, const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                      const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                      double mean, double sigma, double anchorX, double anchorY) {
    return corrAlongPoints(kCorrFull, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
                           {searchWidth, searchHeight, img, imgStride, imgMask, imgMaskStride}, {positions, k0, k1},
                           scores);
}

std::int32_t innerCorrAlongPointsQuarter(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl,
                                         std::int32_t tmplStride, const std::uint8_t* tmplMask,
                                         std::int32_t tmplMaskStride, std::int32_t searchWidth,
                                         std::int32_t searchHeight, const std::uint8_t* img, std::int32_t imgStride,
                                         const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                         const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                         double mean, double sigma, double anchorX, double anchorY) {
    return corrAlongPoints(
        kCorrQuarter, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
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
        kCorrChecker, {w, h, tmpl, tmplStride, tmplMask, tmplMaskStride, mean, sigma, anchorX, anchorY},
        {searchWidth, searchHeight, img, imgStride, imgMask, imgMaskStride}, {positions, k0, k1}, scores);
}

}  // namespace zelm
