/// @file
/// What is wrong with images of a plate: how sharp they are, and why a plate cannot be read.
#ifndef ZELM_MEASURE_API_DIAGNOSIS_H
#define ZELM_MEASURE_API_DIAGNOSIS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// How sharp an image is at the edges of its dots. A lens out of focus blurs alike in all directions; what moves while
/// the shutter is open is smeared along its way.
typedef struct ZelmMeasureSharpness {
    int32_t size;      ///< of this record, bytes
    int32_t dots;      ///< dots whose edges it rests on; 0: none could be measured, and all else is 0
    double largest;    ///< standard deviation of the point spread where it is widest, without the pixel's own square
    double smallest;   ///< and across that direction; pixels
    double direction;  ///< in which it is widest, radians from x towards y, -pi/2 to pi/2
    double smear;      ///< length of a straight smear that would make the largest of the smallest, pixels
    double radius;     ///< median of the dots', pixels
    double inside;     ///< median gray level in the dots
    double outside;    ///< median gray level around them
    double noise;      ///< root mean square of what the edges leave of the pixels, median, gray levels
} ZelmMeasureSharpness;

/// Measures how sharp an image of a plate is. Each dot is fitted by an ellipse between two gray levels, blurred by a
/// normal point spread that differs by direction; what counts is the median over the dots. Rendered plates with dots of
/// radius 5 pixels and more show blurs from 0.5 pixel to a third of the radius to 5 %, alike in all directions to 5 %, and
/// smears of 3 pixels to the radius to 12 % and 4 degrees.
/// @param image [in] any size
/// @param count [in] of dots
/// @param seeds [in] pixels that the dots cover, 2 a dot: the centres of dots that were read, say
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param sharpness [out] the figures
/// @return ZELM_OK, also when no dot could be measured; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
/// Cost: a millisecond a dot, of at most 30 dots. Method: damped least squares (Levenberg 1944; Marquardt 1963).
ZELM_API int32_t zelmMeasureSharpness(const ZelmMeasureImage* image, int64_t count, const double* seeds,
                                      int32_t polarity, ZelmMeasureSharpness* sharpness);

ZELM_END_DECLS

#endif
