/// @file
/// What the headers of the measuring library share: statuses, the handle of a rig, images.
#ifndef ZELM_MEASURE_API_BASE_H
#define ZELM_MEASURE_API_BASE_H

#include <stddef.h>
#include <stdint.h>

#include "zelmLib.h"

ZELM_BEGIN_DECLS

/// The data do not allow what was asked.
#define ZELM_MEASURE_ERR_DATA (-1000)
/// The caller's progress function ended the work.
#define ZELM_MEASURE_ERR_CANCELLED (-1001)

/// A calibrated pair of cameras, ready to measure with.
typedef struct ZelmMeasureRig ZelmMeasureRig;

/// A gray image in the caller's memory.
typedef struct ZelmMeasureImage {
    const uint8_t* pixels;  ///< of the pixel (0, 0)
    int32_t width;          ///< pixels
    int32_t height;         ///< pixels
    int64_t stride;         ///< bytes from a row to the next; at least the width
} ZelmMeasureImage;

ZELM_END_DECLS

#endif
