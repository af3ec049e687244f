/// Search along an epipolar line: where a template cut from one camera's image matches in the other camera's image, to
/// a fraction of a pixel, best first.
///
/// Typical order: fill a ZelmCstmRefImg, let zelmCstmDrovnCalcBasicStatisticsOfRefImg complete it, fill a
/// ZelmCstmSearchPrm, call zelmCstmDrovnSearchOnEpiLine. The line is walked over pixels, every pixel is scored by
/// normalised cross-correlation of the template with the window around it, local maxima are thinned out, scored in full
/// and refined by a parabola through the logarithms of three scores. There is no state: all functions are reentrant.
///
/// Sampling patterns. Full takes every pixel of the window; Checker every second one, as the dark fields of a board;
/// Quarter every second one of every second row. On processors with SSE4.1 or AVX2 (64-bit builds) the coarse pass with
/// Checker takes every pixel as well. Without a search mask, scores of fewer pixels are still scaled for the full
/// window (`docs/decisions.md#full-window-count`), so that a perfect match scores less than 1 in the coarse pass. With
/// Quarter (and Checker in its plain form) choose a low minScore, for the coarse pass holds its peaks to minScore -
/// 0.2, or use Full. With a search mask all sums are those of the pixels that take part, and a perfect match scores 1
/// in every mode; but a pixel there needs a positive score to count as a neighbour, so that textures whose detail is as
/// fine as the pixels are lost.
///
/// A template of more than 66,051 pixels may overflow the 32-bit sums of the scores and statistics, unnoticed.
#ifndef ZELM_CSTM_SEARCH_H
#define ZELM_CSTM_SEARCH_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// Sampling of the coarse pass. The statistics of a template are kept in this order.
enum {
    ZELM_CSTM_QUARTER = 0,  ///< every second pixel of every second row
    ZELM_CSTM_CHECKER = 1,  ///< every second pixel, odd ones in odd rows
    ZELM_CSTM_FULL = 2      ///< every pixel
};

/// A template. The caller owns the pixels and the mask; rows follow each other without padding.
typedef struct ZelmCstmRefImg {
    int32_t width;    ///< size in pixels, >= 1
    int32_t height;   ///< see width
    uint8_t* pixels;  ///< width * height gray levels
    uint8_t* mask;    ///< width * height bytes, non-zero where a pixel takes part; NULL for all
    double mean[3];   ///< mean gray level over the pixels of Quarter, Checker and Full, in this order
    double sigma[3];  ///< standard deviation over the same pixels
    double anchorX;   ///< the template pixel that is laid on the line, 0 <= anchorX < width; rounded to a whole pixel
    double anchorY;   ///< see anchorX; 0 <= anchorY < height
} ZelmCstmRefImg;

/// What is searched, and how. The caller owns the pixels and the mask; rows follow each other without padding.
typedef struct ZelmCstmSearchPrm {
    int32_t width;        ///< size of the image in pixels, >= 1
    int32_t height;       ///< see width
    uint8_t* pixels;      ///< width * height gray levels
    uint8_t* mask;        ///< width * height bytes, non-zero where a pixel takes part; NULL for all
    int32_t roiX;         ///< rectangle whose pixels on the line are searched, >= 0; windows may reach beyond it
    int32_t roiY;         ///< see roiX
    int32_t roiWidth;     ///< 1 to width
    int32_t roiHeight;    ///< 1 to height
    Line2d epiLine;       ///< the epipolar line in pixels of the image, any scale
    double reserved[4];   ///< not read; room for the segment that Zelm2ViewEpiLine carries behind its line
    int32_t maxResults;   ///< room for results, >= 1
    double minScore;      ///< least score of a match; below 0 counts as 0
    int32_t minDistance;  ///< least distance between two matches in pixels; <= 0 suppresses only identical places
    int32_t mode;         ///< sampling of the coarse pass: ZELM_CSTM_...
} ZelmCstmSearchPrm;

/// A place where the template matches.
typedef struct ZelmCstmMatch {
    double score;  ///< correlation over all pixels of the window at the pixel of the peak; 1 for a perfect match
    double x;      ///< where the template's anchor comes to lie: a point of the line
    double y;      ///< see x
} ZelmCstmMatch;

/// Mean and standard deviation of a template over each sampling pattern, and over its mask when it has one. They are
/// sums of 32-bit integers (mod 2^32) divided in doubles; O(width * height), nothing is allocated.
/// @param tRef [in,out] width, height, pixels and mask are read, mean and sigma written on success
/// @return ZELM_OK; ZELM_ERR_PARAM when the record or its pixels are NULL; ZELM_ERR_DEGENERATE when width * height or
///         height is below 1, or the mask leaves a pattern without pixels
ZELM_API int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg(ZelmCstmRefImg* tRef);

/// As zelmCstmDrovnCalcBasicStatisticsOfRefImg for a template held in a Planar8 buffer.
/// @param tImage [in]  template
/// @param tMask  [in]  its mask, of the same width and height; NULL for none
/// @param tRef   [out] mean and sigma are written on success; nothing else is read or written
/// @return as zelmCstmDrovnCalcBasicStatisticsOfRefImg; also ZELM_ERR_PARAM when a buffer has no data, a width, height
///         or row length beyond 2^31 - 1, or the mask another size than the template
ZELM_API int32_t zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(const vImage_Buffer* tImage,
                                                                        const vImage_Buffer* tMask,
                                                                        ZelmCstmRefImg* tRef);

/// The places on a line where a template matches.
///
/// 1. The line is clipped to the rectangle through the centres of the region's outer pixels, and its pixels between the
///    rounded end points are walked (Bresenham 1965).
/// 2. Each pixel whose window lies in the image is scored with the sampling of the mode. With a search mask, pixels
///    whose score is not positive are not scored.
/// 3. A peak is a pixel that scores no less than both its neighbours, which must be scored; a plateau holds several. Of
///    two or more peaks, those below max(0, minScore), less 0.2 unless the mode is 2, are dropped, and so is each one
///    closer than minDistance - 4 (mode 2: minDistance - 2; below 2: none) to a better one. Equal peaks are taken in
///    the order of the line.
/// 4. From the best down, a peak is scored with all pixels. Unless the mode is 2 it climbs, at most twice, one pixel to
///    its higher neighbour (of equal ones the earlier on the line), and is dropped where a window is not scored or no
///    maximum is reached.
/// 5. The extremum of the parabola through the logarithms of the scores of the peak and its neighbours, over the feet
///    of their perpendiculars on the line, is the match (log-parabolic interpolation: exact for a Gaussian peak). It is
///    dropped when it scores less than max(0, minScore), is no maximum or lies beyond the neighbours.
/// 6. Matches are listed by score, best first (mode 2: as they were found), and one closer than minDistance to an
///    earlier one is dropped. The search ends when maxResults are listed (`docs/decisions.md#results-stop`).
///
/// Accuracy: see docs/accuracy.md. A line parallel to an axis that passes through pixel centres is matched best
/// (to 0.006 pixel); other lines are left by the pixels walked by up to a pixel, because
/// the ends of the walk are rounded too, and are matched to about 0.06 pixel. Cost: one coarse score a pixel of the
/// line, 3 to 5 full scores a peak (mode 2: none).
/// @param tRef     [in]  template; the statistics are not needed, nor tested, with a search mask
/// @param tPrm     [in]  search
/// @param iCount   [out] number of matches, 0 to maxResults
/// @param taMatches [out] room for maxResults matches
/// @return ZELM_OK, also without a match; ZELM_ERR_PARAM when a pointer is NULL, a size, the anchor, the region,
///         maxResults or the mode is out of range, or without a search mask a mean or sigma is negative or not a
///         number, or the line's normal is shorter than 1e-13; ZELM_ERR_DEGENERATE when the line misses the region,
///         touches it in one point, runs along its border or is not finite, and when memory fails while it is clipped;
///         ZELM_ERR_MEMORY. A positive result, the number of points in which the line crosses the region's border,
///         means that the segment between them has no pixel: success without a match, nothing is written.
ZELM_API int32_t zelmCstmDrovnSearchOnEpiLine(const ZelmCstmRefImg* tRef, const ZelmCstmSearchPrm* tPrm,
                                              int32_t* iCount, ZelmCstmMatch* taMatches);

/// As zelmCstmDrovnSearchOnEpiLine for images held in Planar8 buffers; no image is copied. Each buffer keeps its own
/// row length.
/// @param tRef      [in]  mean, sigma and anchor are read; width, height, pixels and mask are not
/// @param tRefImage [in]  template
/// @param tRefMask  [in]  its mask, of the same width and height; NULL for none
/// @param tPrm      [in]  search; width, height, pixels and mask are not read
/// @param tImage    [in]  image to be searched
/// @param tMask     [in]  its mask, of the same width and height; NULL for none
/// @param iCount    [out] number of matches
/// @param taMatches [out] room for maxResults matches
/// @return as zelmCstmDrovnSearchOnEpiLine; also ZELM_ERR_PARAM when a buffer has no data, a width, height or row
///         length beyond 2^31 - 1, or a mask another size than its image
ZELM_API int32_t zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(const ZelmCstmRefImg* tRef, const vImage_Buffer* tRefImage,
                                                            const vImage_Buffer* tRefMask,
                                                            const ZelmCstmSearchPrm* tPrm, const vImage_Buffer* tImage,
                                                            const vImage_Buffer* tMask, int32_t* iCount,
                                                            ZelmCstmMatch* taMatches);

ZELM_END_DECLS

#endif
