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
/// radius 5 pixels and more show blurs from 0.5 pixel to a third of the radius to 5 %, alike in all directions to 5 %,
/// and smears of 3 pixels to the radius to 12 % and 4 degrees.
/// @param image [in] any size
/// @param count [in] of dots
/// @param seeds [in] pixels that the dots cover, 2 a dot: the centres of dots that were read, say
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param sharpness [out] the figures
/// @return ZELM_OK, also when no dot could be measured; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
/// Cost: a millisecond a dot, of at most 30 dots. Method: damped least squares (Levenberg 1944; Marquardt 1963).
ZELM_API int32_t zelmMeasureSharpness(const ZelmMeasureImage* image, int64_t count, const double* seeds,
                                      int32_t polarity, ZelmMeasureSharpness* sharpness);

/// Why the plate in an image cannot be read, or is not read wholly.
enum ZelmMeasureImageCause {
    ZELM_MEASURE_IMAGE_FINE = 0,              ///< nothing that is known to be wrong
    ZELM_MEASURE_IMAGE_NO_PLATE = 1,          ///< no spots that stand in rows and columns
    ZELM_MEASURE_IMAGE_MARKERS = 2,           ///< too few or too many dots of a marker's size
    ZELM_MEASURE_IMAGE_CUT_OFF = 3,           ///< the image's edge cuts the plate off, on `sides`
    ZELM_MEASURE_IMAGE_OUT_OF_FOCUS = 4,      ///< edges are wide, alike in all directions
    ZELM_MEASURE_IMAGE_MOTION = 5,            ///< edges are wide along `direction`
    ZELM_MEASURE_IMAGE_SATURATED = 6,         ///< most pixels are at the largest level
    ZELM_MEASURE_IMAGE_DARK = 7,              ///< the levels end so low that dots hardly stand out
    ZELM_MEASURE_IMAGE_LOW_CONTRAST = 8,      ///< dots hardly stand out of their ground
    ZELM_MEASURE_IMAGE_REFLECTION = 9,        ///< a highlight hides dots
    ZELM_MEASURE_IMAGE_COVERED = 10,          ///< something hides dots
    ZELM_MEASURE_IMAGE_POLARITY = 11,         ///< the dots are bright where dark ones are described, or dark
    ZELM_MEASURE_IMAGE_OTHER_PLATE = 12,      ///< sizes or counts contradict the description
    ZELM_MEASURE_IMAGE_MARKER_DISTANCE = 13,  ///< the markers are other numbers of pitches apart than described
    ZELM_MEASURE_IMAGE_SMALL_DOTS = 14,       ///< the dots take too few pixels
    ZELM_MEASURE_IMAGE_TILTED = 15,           ///< the plate is seen almost edge-on
    ZELM_MEASURE_IMAGE_NOT_SEPARATE = 16,     ///< the plate is not told from what is around it: `region` helps
    ZELM_MEASURE_IMAGE_UNEVEN_LIGHT = 17,     ///< no one level parts all dots from all of their ground
    ZELM_MEASURE_IMAGE_MARKER_AXES = 18,      ///< x and y marker stand 100 pixels less or more from the corner
    ZELM_MEASURE_IMAGE_PERSPECTIVE = 19,      ///< dots near the camera look as large as markers
    ZELM_MEASURE_IMAGE_UNKNOWN = 20,          ///< dots on a lattice that fits, which are not read all the same
};

/// Sides of an image, to be added up.
enum ZelmMeasureImageSide {
    ZELM_MEASURE_SIDE_LEFT = 1,
    ZELM_MEASURE_SIDE_RIGHT = 2,
    ZELM_MEASURE_SIDE_TOP = 4,
    ZELM_MEASURE_SIDE_BOTTOM = 8,
};

/// What became of a spot of the image.
enum ZelmMeasureSpotVerdict {
    ZELM_MEASURE_SPOT_DOT = 0,          ///< a dot in its place
    ZELM_MEASURE_SPOT_MARKER = 1,       ///< likewise, of a marker's size
    ZELM_MEASURE_SPOT_SMALL = 2,        ///< fewer pixels than minDotArea
    ZELM_MEASURE_SPOT_CUT = 3,          ///< at the edge of image or region
    ZELM_MEASURE_SPOT_NO_ELLIPSE = 4,   ///< its pixels fill no ellipse
    ZELM_MEASURE_SPOT_WEAK_EDGE = 5,    ///< its outline is weaker than minEdgeStrength somewhere, or has no edge there
    ZELM_MEASURE_SPOT_OTHER_SIZE = 6,   ///< much smaller or larger than dots and markers
    ZELM_MEASURE_SPOT_OFF_LATTICE = 7,  ///< in no row or column of dots
};

/// The spots that were looked at. Arrays of the caller's with room for `capacity` spots; each may be NULL.
typedef struct ZelmMeasureSpots {
    int32_t size;      ///< of this record, bytes
    int32_t reserved;  ///< 0
    int64_t capacity;  ///< spots that every array has room for
    double* centres;   ///< 2 a spot, pixels
    double* axes;  ///< 3 a spot: half axes of its ellipse, the long one first, pixels, and the direction of the long
                   ///< one, radians from x towards y
    double* strengths;  ///< weakest edge on 20 rays, gray levels a pixel; 0: on some ray there is none
    int32_t* verdicts;  ///< ZelmMeasureSpotVerdict
} ZelmMeasureSpots;

/// What an image of a plate shows, and what that means.
typedef struct ZelmMeasureImageDiagnosis {
    int32_t size;           ///< of this record, bytes
    int32_t cause;          ///< ZelmMeasureImageCause
    int32_t status;         ///< what zelmMeasurePlateDots() returns for the image
    int32_t read;           ///< dots that it reads, with a place on the grid
    int32_t spots;          ///< spots that were looked at
    int32_t dots;           ///< of these, how many stand in rows and columns
    int32_t columns;        ///< across which the dots spread,
    int32_t rows;           ///< and rows; which are the plate's columns is known from the markers alone
    int32_t expected;       ///< dots of the described field
    int32_t strong;         ///< dots whose edges are strong enough all round
    int32_t markers;        ///< dots of a marker's size
    int32_t markerColumns;  ///< pitches from corner to x marker; 0: not seen
    int32_t markerRows;     ///< and to the y marker
    int32_t sides;          ///< ZelmMeasureImageSide, where places of the field lie outside the image
    int32_t outside;        ///< such places
    int32_t hidden;         ///< places inside the image without a dot
    int32_t highlights;     ///< of these, how many are brighter than dots and ground
    int32_t darkLevel;      ///< gray level: 2 pixels in a thousand are darker,
    int32_t brightLevel;    ///< 2 pixels in a thousand brighter
    int32_t oppositeDots;   ///< dots in rows and columns when dark and bright are exchanged
    ZelmRect region;        ///< about the dots; of no size where there are none
    double saturated;       ///< share of the pixels at the largest levels
    double inside;          ///< median gray level of the dots
    double ground;          ///< and of the ground around them
    double noise;           ///< standard deviation of gray levels
    double radius;          ///< median of the dots', pixels
    double axisRatio;       ///< their short axis over their long one: the cosine of the tilt
    double largest;         ///< blur as in ZelmMeasureSharpness; where no dots are seen, of the steepest edges
    double smallest;        ///< the smallest blur, pixels
    double direction;       ///< of the largest blur, as in ZelmMeasureSharpness
    double smear;           ///< length of a straight smear, pixels
    double edgeStrength;    ///< of such edges between these levels, as the reader sees them, gray levels a pixel
    double dotRatio;     ///< diameter of a dot over the pitch, mean of both axes; of the description: (d2/d4+d2/d5)/2
    double markerRatio;  ///< diameter of a marker over that of a dot; of the description: d3/d2
} ZelmMeasureImageDiagnosis;

/// Tells why the plate in an image cannot be read, or why fewer dots are read than are described. The spots of the
/// image are put on a lattice without the description, which is then compared with it.
/// @param image [in] any size
/// @param pattern [in] the plate
/// @param region [in] the part of the image that holds the plate; NULL: all of it
/// @param diagnosis [out] cause and figures; those that cannot be told are 0
/// @param spots [in] the arrays that are written, dots first; NULL: none
/// @return ZELM_OK, whatever the image shows; ZELM_ERR_PARAM, also for what the reader cannot mean; ZELM_ERR_MEMORY
/// Cost: some 20 passes over the pixels and 20 edge searches a spot. What the causes rest on: docs/diagnosis.md.
ZELM_API int32_t zelmMeasureDiagnoseImage(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                          const ZelmRect* region, ZelmMeasureImageDiagnosis* diagnosis,
                                          const ZelmMeasureSpots* spots);

/// A cause as one word for programs, "out-of-focus".
/// @param cause [in] ZelmMeasureImageCause
/// @return the word, static; "unknown" for any other number
ZELM_API const char* zelmMeasureImageCauseName(int32_t cause);

ZELM_END_DECLS

#endif
