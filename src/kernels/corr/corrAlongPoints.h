// Scores of a template over a stretch of candidate positions in a search image.
#ifndef ZELM_CORR_ALONG_POINTS_H
#define ZELM_CORR_ALONG_POINTS_H

#include <cstdint>

#include "zelm/base.h"

namespace zelm {

// The score of one position, by the position's place in the list. 16 bytes on every platform.
struct CorrScore {
    std::int32_t index;
    std::int32_t reserved;  // never written
    double score;
};
static_assert(sizeof(CorrScore) == 16);

// Lays the template's pixel (trunc(anchorX + 0.5), trunc(anchorY + 0.5)) on positions[k], k0 <= k <= k1, and scores
// every position whose whole window lies inside the search image: scores[k] = (k, score). The entries of other
// positions are left alone.
//
// The masks choose the mode (correlation.h); both may be null. Without a search mask every window is scored. With one,
// only scores above 0.0 are written. The search mask's rows are imgMaskStride apart but its window's origin is found
// with imgStride (docs/decisions.md#mask-stride).
//
// mean and sigma are the template's, over the pattern's pixels; without a search mask they stand in for sums, over a
// pixel count N that is always taken over the full window (w * h, or its template mask's set bytes), also for the
// patterns that visit fewer pixels (docs/decisions.md#full-window-count). The sums are trunc(mean * N) and trunc((sigma
// * N)^2); values beyond their integer types are taken as the nearest end of the range, NaN as 0.
//
// An anchor that is not a number or lies beyond every image accepts no position. Windows without pixels give no entry,
// nor, without a search mask, do those of more than 2^31 - 1 pixels. Positions may be any integers. Nothing else is
// checked.
//
// The scores are the entry points', to the last bit. The tier of the processor is chosen once a call. Positions that
// follow one another along a row, in either direction, take the least time.
//
// w, h            [in]  template size, which is the windows' size
// tmpl            [in]  template, h rows of w bytes, tmplStride apart
// tmplMask        [in]  template mask of the same size, or null
// searchWidth, searchHeight [in] size of the search image
// img             [in]  search image
// imgMask         [in]  search mask of the same size, or null
// positions       [in]  search-image pixels; read from k0 to k1
// scores          [out] entries k0 to k1
// Returns the number of entries written.
std::int32_t innerCorrAlongPointsFull(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl, std::int32_t tmplStride,
                                      const std::uint8_t* tmplMask, std::int32_t tmplMaskStride,
                                      std::int32_t searchWidth, std::int32_t searchHeight, const std::uint8_t* img,
                                      std::int32_t imgStride, const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                      const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                      double mean, double sigma, double anchorX, double anchorY);

// The same with the quarter pattern.
std::int32_t innerCorrAlongPointsQuarter(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl,
                                         std::int32_t tmplStride, const std::uint8_t* tmplMask,
                                         std::int32_t tmplMaskStride, std::int32_t searchWidth,
                                         std::int32_t searchHeight, const std::uint8_t* img, std::int32_t imgStride,
                                         const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                         const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                         double mean, double sigma, double anchorX, double anchorY);

// The same with the checker pattern.
std::int32_t innerCorrAlongPointsChecker(std::int32_t w, std::int32_t h, const std::uint8_t* tmpl,
                                         std::int32_t tmplStride, const std::uint8_t* tmplMask,
                                         std::int32_t tmplMaskStride, std::int32_t searchWidth,
                                         std::int32_t searchHeight, const std::uint8_t* img, std::int32_t imgStride,
                                         const std::uint8_t* imgMask, std::int32_t imgMaskStride,
                                         const Point2i* positions, std::int32_t k0, std::int32_t k1, CorrScore* scores,
                                         double mean, double sigma, double anchorX, double anchorY);

}  // namespace zelm

#endif
