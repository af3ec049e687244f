/// @file
/// Dots of plates and single dots in images, and how well a calibration fits the dots that it was made from.
#ifndef ZELM_MEASURE_API_DOTS_H
#define ZELM_MEASURE_API_DOTS_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// Figures of distances.
typedef struct ZelmMeasureFigures {
    int32_t size;       ///< of this record, bytes
    int32_t reserved;   ///< 0
    int64_t count;      ///< of the distances
    double mean;        ///< of the distances
    double rms;         ///< root of the mean square
    double max;         ///< the largest
    double median;      ///< half of them are less
    double quantile95;  ///< 95 % are less
} ZelmMeasureFigures;

/// Figures of any distances; all 0 for none.
/// @param count [in] of the distances
/// @param distances [in] not negative; NaN counts as infinitely far
/// @param figures [out] their figures
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count log count).
ZELM_API int32_t zelmMeasureFigures(int64_t count, const double* distances, ZelmMeasureFigures* figures);

/// Dots of an image, with the places that they have on the plate. Arrays of the caller's, with room for `capacity`
/// dots.
typedef struct ZelmMeasureDots {
    int32_t size;      ///< of this record, bytes
    int32_t reserved;  ///< 0
    int64_t capacity;  ///< dots that every array has room for
    int32_t* grid;     ///< 2 a dot: column and row, counted from the corner marker; or NULL
    double* plane;     ///< 2 a dot: place on the plate, plate units; or NULL
    double* pixels;    ///< 2 a dot: centre in the image, as taken; or NULL
    double* errors;    ///< 2 a dot: centre less the projection of the place; or NULL. Of calibrated dots alone.
} ZelmMeasureDots;

/// The dots of one view from which a rig was calibrated, and how far they are from their projections.
/// @param rig [in] of zelmMeasureRigOfCalib()
/// @param pattern [in] the plate
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param dots [in] the arrays that are written; NULL: dots are only counted
/// @param placed [out] their number; dots beyond the capacity are not written
/// @param found [out] the number of dots read, of which all but damaged data have a place on the plate; or NULL
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigDots(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int32_t side,
                                    int32_t view, const ZelmMeasureDots* dots, int64_t* placed, int64_t* found);

/// Distances of the dot pairs of one view from each other's epipolar lines, undistorted pixels: two a dot that both
/// images show, in the left and in the right image in turn.
/// @param rig [in] of zelmMeasureRigOfCalib()
/// @param pattern [in] the plate
/// @param view [in] from 0
/// @param capacity [in] distances that there is room for
/// @param distances [out] pixels; NULL: they are only counted
/// @param count [out] their number; those beyond the capacity are not written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureRigEpipolar(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int32_t view,
                                        int64_t capacity, double* distances, int64_t* count);

/// Reads the dots of a plate and puts them on its grid by the markers, which are told by their size.
/// @param image [in] any size
/// @param pattern [in] the plate
/// @param region [in] the part of the image that holds the plate; NULL: it is looked for
/// @param dots [in] the arrays that are written, in the order of the reader, all but `errors`; NULL: only counted
/// @param placed [out] number of dots with a place on the grid; those beyond the capacity are not written
/// @param found [out] number of dots found; or NULL
/// @return ZELM_OK; what zelm2ViewReadPtnImg() returns where it fails; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePlateDots(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                      const ZelmRect* region, const ZelmMeasureDots* dots, int64_t* placed,
                                      int64_t* found);

/// What an image of a plate that cannot be read shows.
typedef struct ZelmMeasurePlateTraits {
    int32_t size;          ///< of this record, bytes
    int32_t brightLevel;   ///< gray level that all but the brightest thousandth of the pixels stay within
    int32_t markerSized;   ///< spots of the size of a marker, beside dots of the usual size
    int32_t oppositeDots;  ///< dots that are read when dark and bright are exchanged; 0: none are
} ZelmMeasurePlateTraits;

/// Traits of an image that tell why its plate cannot be read.
/// @param image [in] any size
/// @param pattern [in] the plate
/// @param traits [out] what it shows
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasurePlateTraits(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc* pattern,
                                        ZelmMeasurePlateTraits* traits);

/// What became of a dot that was looked for at a pixel.
enum ZelmMeasureDotStatus {
    ZELM_MEASURE_DOT_OK = 0,       ///< its centre is given
    ZELM_MEASURE_DOT_MISSING = 1,  ///< no outline there is an ellipse of some 4 to 120 pixels
};

/// The centres of single dots: of the ellipse through the outline of the dot that covers a pixel. A dot of which up to
/// 40 % of the outline is hidden is measured by the arc that is seen, less surely.
/// @param image [in] any size
/// @param count [in] of dots
/// @param seeds [in] pixels that the dots cover, 2 a dot
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param centres [out] 2 a dot; those of missing dots are not written. May be `seeds`
/// @param statuses [out] ZelmMeasureDotStatus, one a dot
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureDotCentres(const ZelmMeasureImage* image, int64_t count, const double* seeds,
                                       int32_t polarity, double* centres, int32_t* statuses);

/// What fitting a dot to its pixels came across.
enum ZelmMeasureDotFlag {
    ZELM_MEASURE_DOT_HALF_HIDDEN = 1,     ///< a part of its outline is hidden and was left out
    ZELM_MEASURE_DOT_HIGHLIGHT = 2,       ///< pixels much brighter than dot and ground were left out
    ZELM_MEASURE_DOT_SATURATED = 4,       ///< gray levels are clipped
    ZELM_MEASURE_DOT_NEIGHBOUR = 8,       ///< another dot is so near that fewer pixels were taken for it
    ZELM_MEASURE_DOT_CUT = 16,            ///< the image's edge cuts it off
    ZELM_MEASURE_DOT_ABSENT = 32,         ///< the pixels show no such dot
    ZELM_MEASURE_DOT_NOT_CONVERGED = 64,  ///< its place did not settle
};

/// Dots placed by all their pixels. Arrays of the caller's, one entry a dot unless said otherwise; each may be NULL.
/// All but the statuses and flags are written for dots whose status is ZELM_MEASURE_DOT_OK alone.
typedef struct ZelmMeasureRefinedDots {
    int32_t size;         ///< of this record, bytes
    int32_t reserved;     ///< 0
    int32_t* statuses;    ///< ZelmMeasureDotStatus
    int32_t* flags;       ///< sums of ZelmMeasureDotFlag
    double* centres;      ///< 2 a dot: of the ellipse of the outline, pixels
    double* covariances;  ///< 3 a dot: xx, xy, yy of the centre, by the noise of its pixels, square pixels
    double* scales;       ///< the outline's size over the predicted one
    double* blurs;        ///< standard deviation of the point spread without the pixel's own square, pixels
    double* noises;       ///< root mean square of the residuals, gray levels
    double* levels;       ///< 2 a dot: inside and outside at its centre, gray levels
} ZelmMeasureRefinedDots;

/// Places dots of known shape by all pixels about their outlines: the most likely shift, size, blur and gray levels,
/// these linear inside and outside, in normal noise. Its precision is that of the Cramer-Rao bound; the bias of
/// edge-by-edge methods, and of light that falls off across a dot, is not there. A dot is measured when its own pixels
/// show it all along its outline, of which up to 40 % in one arc may be hidden; never another one beside it.
/// @param image [in] any size
/// @param count [in] of dots
/// @param shapes [in] 6 a dot: predicted centre x, y of the ellipse of its outline, pixels, right to 2 pixels or half
/// the radius, whichever is more; and U, 2 x 2 row-major: the outline is the centre + U (cos, sin), right but for its
/// scale, which may be 0.7 to 1.4
/// @param neighbours [in] from each centre to the nearest outline of another dot, pixels, 0 where it is not known;
/// NULL: none is known
/// @param polarity [in] 0: dark dots on a bright ground; 1: bright ones
/// @param dots [in] the arrays that are written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost: of the pixels within some blurs of the outlines. Method: damped least squares (Levenberg 1944; Marquardt 1963)
/// of an edge blurred by a normal point spread and by the pixel, after Edgeworth (1905).
ZELM_API int32_t zelmMeasureRefineDots(const ZelmMeasureImage* image, int64_t count, const double* shapes,
                                       const double* neighbours, int32_t polarity, const ZelmMeasureRefinedDots* dots);

ZELM_END_DECLS

#endif
