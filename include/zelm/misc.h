/// @file
/// Small image and integer helpers.
#ifndef ZELM_MISC_H
#define ZELM_MISC_H

#include "zelm/base.h"

ZELM_BEGIN_DECLS

/// A rectangle by its inclusive corners.
/// @param tRect  [in]  rectangle by corner and size
/// @param tRect2 [out] (x, y, x + width - 1, y + height - 1), wrapping around at the ends of the 32-bit range
/// @return ZELM_OK; ZELM_ERR_PARAM when a pointer is NULL
ZELM_API int32_t zelmMiscChangeRectToRect2(const ZelmRect* tRect, ZelmRect2* tRect2);

/// A rectangle by its corner and size.
/// @param tRect2 [in]  rectangle by inclusive corners
/// @param tRect  [out] (x1, y1, x2 + 1 - x1, y2 + 1 - y1), wrapping around at the ends of the 32-bit range
/// @return ZELM_OK; ZELM_ERR_PARAM when a pointer is NULL
ZELM_API int32_t zelmMiscChangeRect2ToRect(const ZelmRect2* tRect2, ZelmRect* tRect);

/// Bilinear gray level at a real position. Between the last column (row) and the image's border the edge pixel serves
/// as its own neighbour.
/// @param tImage [in] image; not NULL (not checked)
/// @param dX, dY [in] position in pixels
/// @return the gray level, not rounded; 0.0 when x < 0, y < 0, x >= width, y >= height or a coordinate is not a number
ZELM_API double zelmMiscBilinearGrayLevel(const ZelmImage* tImage, double dX, double dY);

/// The pixels of a straight line (Bresenham 1965, symmetric error term).
/// @param tP0, tP1 [in]  end pixels; coordinates within +-2^30
/// @param taPoints [out] room for max(|dx|, |dy|) + 1 pixels, from P0 to P1 inclusive
/// @return the number of pixels written; ZELM_ERR_PARAM when a pointer is NULL
ZELM_API int32_t zelmMiscPlotPointsOfLine(const Point2i* tP0, const Point2i* tP1, Point2i* taPoints);

ZELM_END_DECLS

#endif
