#include "scorer.h"

#include <cstddef>

#include "zelm/cstmSearch.h"

namespace zelm {
namespace {

std::int32_t correlate(std::int32_t pattern, const SearchTemplate& t, const MaskedPlane& image, const Point2i* lattice,
                       std::int32_t k0, std::int32_t k1, CorrScore* scores) {
    const auto routine = pattern == ZELM_CSTM_QUARTER   ? innerCorrAlongPointsQuarter
                         : pattern == ZELM_CSTM_CHECKER ? innerCorrAlongPointsChecker
                                                        : innerCorrAlongPointsFull;
    return routine(t.plane.width, t.plane.height, t.plane.pixels, t.plane.stride, t.plane.mask, t.plane.maskStride,
                   image.width, image.height, image.pixels, image.stride, image.mask, image.maskStride, lattice, k0, k1,
                   scores, t.mean[pattern], t.sigma[pattern], t.anchorX, t.anchorY);
}

}  // namespace

std::int32_t LineScorer::score(std::int32_t pattern, std::int32_t k0, std::int32_t k1) const {
    if (image.mask == nullptr || image.maskStride == image.stride) {
        return correlate(pattern, tmpl, image, lattice, k0, k1, scores);
    }
    return scoreRows(pattern, k0, k1);
}

std::int32_t LineScorer::rescore(std::int32_t k0, std::int32_t k1) const {
    for (std::int32_t k = k0; k <= k1; ++k) {
        scores[k].score = kUnscored;
    }
    return score(ZELM_CSTM_FULL, k0, k1);
}

// The position lists find the origin of a mask window by the image's stride (docs/decisions.md#mask-stride). Where the
// two strides differ, the points of one row are therefore scored together, in an image and a mask that begin with the
// row of their windows: the origin then lies in row 0 of both.
std::int32_t LineScorer::scoreRows(std::int32_t pattern, std::int32_t k0, std::int32_t k1) const {
    const auto anchorRow = static_cast<std::int32_t>(tmpl.anchorY + 0.5);
    std::int32_t written = 0;
    for (std::int32_t first = k0; first <= k1;) {
        const std::int32_t y = lattice[first].y;
        std::int32_t last = first;
        while (last < k1 && lattice[last + 1].y == y) {
            ++last;
        }
        const std::int64_t row = std::int64_t{y} - anchorRow;
        if (row >= 0 && row + tmpl.plane.height <= image.height) {
            MaskedPlane strip = image;
            strip.height = tmpl.plane.height;
            strip.pixels += static_cast<std::ptrdiff_t>(row) * image.stride;
            strip.mask += static_cast<std::ptrdiff_t>(row) * image.maskStride;
            for (std::int32_t k = first; k <= last; ++k) {
                lattice[k].y = anchorRow;
            }
            written += correlate(pattern, tmpl, strip, lattice, first, last, scores);
            for (std::int32_t k = first; k <= last; ++k) {
                lattice[k].y = y;
            }
        }
        first = last + 1;
    }
    return written;
}

}  // namespace zelm
