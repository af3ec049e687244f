/// @file
/// Adjustment of a calibration: both cameras, their relative pose and all plates from all dots at once, with the
/// covariance of what comes out.
#ifndef ZELM_MEASURE_API_ADJUST_H
#define ZELM_MEASURE_API_ADJUST_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// An adjustment of a rig's calibration. Its steps: open it with a rig that has its dots; solve; show it the images
/// again, in which it refines the dots where it now knows them to be; solve once more; take the adjusted rig.
typedef struct ZelmMeasureAdjustment ZelmMeasureAdjustment;

/// What is estimated besides both cameras, their relative pose and the poses of the plates. All 0 is what most need.
typedef struct ZelmMeasureAdjustOptions {
    int32_t size;          ///< of this record, bytes
    int32_t holdSkew;      ///< 1: the image axes are orthogonal; 0: their skew is estimated
    int32_t squarePixels;  ///< 1: both focal lengths of a camera are one; 0: each for itself
    int32_t
        estimateDiameters;  ///< 1: a factor of the diameter for each kind of dot, as print bleeds; 0: as on the plate
    int32_t estimateBow;    ///< 1: the plate may be bent: z = b0 x^2 + b1 x y + b2 y^2; 0: it is flat
    int32_t reserved;       ///< 0
    double noise;           ///< standard deviation of a dot's coordinate, 1e-6 to 100 pixels; 0: from the residuals
    int64_t placeCount;     ///< of measured dot positions; 0: all dots stand on the grid
    const int32_t* placeGrid;  ///< 2 a measured dot: column and row, counted from the corner marker
    const double* places;      ///< 3 a measured dot: its position on the plate, plate units
} ZelmMeasureAdjustOptions;

/// Opens an adjustment.
/// @param rig [in] of zelmMeasureRigOfCalib(), with its dots; not needed later
/// @param pattern [in] the plate
/// @param options [in] what is estimated; NULL: the defaults
/// @param adjustment [out] the handle, to be closed by zelmMeasureAdjustClose(); must be NULL before. Also when the rig
///     is refused: such a handle holds the error text alone, and every other function refuses it
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the rig has no dots; its two cameras are
///     parallel, which their one view determines; the plate's dots are wider than their pitch; more than a quarter of a
///     camera's dots lie off the plate's grid
ZELM_API int32_t zelmMeasureAdjustOpen(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
                                       const ZelmMeasureAdjustOptions* options, ZelmMeasureAdjustment** adjustment);

/// Ends an adjustment and sets the caller's handle to NULL; nothing for NULL.
/// @param adjustment [in,out] the caller's handle
ZELM_API void zelmMeasureAdjustClose(ZelmMeasureAdjustment** adjustment);

/// What was wrong with the last call that failed, in English, without a line break; empty when none did.
/// @param adjustment [in] an adjustment, also a refused one
/// @return the text; it belongs to the adjustment and holds until the next call
ZELM_API const char* zelmMeasureAdjustError(const ZelmMeasureAdjustment* adjustment);

/// Finds the parameters of the least weighted squares of what the dots lack from their predictions: a dot is predicted
/// as the centre of the ellipse through its outline, seen through projection and lens (Heikkila, 2000, gives the
/// centre without the lens). Dots beyond five standard deviations, and views whose dots lie four times as far off as
/// the usual view's, take no part (robust start: Huber, 1964). Solved with Ceres.
/// @param adjustment [in] the adjustment
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the views do not determine the parameters,
///     the error says which; a camera has too few dots that agree with the others; no rig sees the dots within 2 pixels
///     (RMS of a coordinate)
/// Cost O(dots), some 10 to 30 passes.
ZELM_API int32_t zelmMeasureAdjustSolve(ZelmMeasureAdjustment* adjustment);

/// What became of the dots of an image that was shown once more.
typedef struct ZelmMeasureRefined {
    int32_t size;      ///< of this record, bytes
    int32_t read;      ///< dots that the reader had found
    int32_t refined;   ///< of these, measured anew on their pixels
    int32_t refused;   ///< of these, without a centre that their pixels confirm; they take no part
    int32_t added;     ///< that the reader had not found and the pixels confirm
    int32_t reserved;  ///< 0
} ZelmMeasureRefined;

/// Measures the dots of an image anew, by the pixels of each and the shape that the present cameras give it; looks for
/// dots that the reader missed where they must be. Call zelmMeasureAdjustSolve() before and after it.
/// @param adjustment [in] solved
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param image [in] that the dots were read from
/// @param refined [out] what became of them; or NULL
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: not solved yet, or the image has not the
///     size of the camera's
ZELM_API int32_t zelmMeasureAdjustRefine(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
                                         const ZelmMeasureImage* image, ZelmMeasureRefined* refined);

/// Adds a view of which the reader could read one image only, or none of whose two it was shown: the image that can be
/// read places the plate, and the other's dots are looked for where they must be.
/// @param adjustment [in] solved
/// @param left [in] image of the left camera
/// @param right [in] image of the right camera
/// @param leftDots [out] dots of the left image that take part; 0: it adds nothing
/// @param rightDots [out] likewise
/// @return ZELM_OK, with the view added after all others when any dots are; ZELM_ERR_PARAM; ZELM_ERR_MEMORY;
///     ZELM_MEASURE_ERR_DATA: not solved yet, or an image has not the size of its camera's
ZELM_API int32_t zelmMeasureAdjustAddView(ZelmMeasureAdjustment* adjustment, const ZelmMeasureImage* left,
                                          const ZelmMeasureImage* right, int32_t* leftDots, int32_t* rightDots);

/// How an adjustment came out.
typedef struct ZelmMeasureAdjustSummary {
    int32_t size;              ///< of this record, bytes
    int32_t views;             ///< with those added
    int32_t viewsLeftOut;      ///< zelmMeasureAdjustView() tells why
    int32_t parameters;        ///< that were estimated
    int64_t dots;              ///< that take part
    int64_t outliers;          ///< that do not
    double freedom;            ///< coordinates less parameters
    double chiSquare;          ///< sum of the squared weighted residuals
    double leftBefore;         ///< RMS of a coordinate's residual at the start, left camera, pixels
    double rightBefore;        ///< likewise, right camera
    double leftRms;            ///< RMS of a coordinate's residual, left camera, pixels
    double rightRms;           ///< likewise, right camera
    double leftNoise;          ///< standard deviation beyond what the dots' pixels tell, left camera, pixels
    double rightNoise;         ///< likewise, right camera
    double dotFactor;          ///< of the diameter of the plain dots
    double dotFactorSigma;     ///< its standard deviation; 0: held
    double markerFactor;       ///< of the diameter of the markers
    double markerFactorSigma;  ///< its standard deviation; 0: held
    double bow[3];             ///< of the plate, plate units at half the diagonal of the dot field
    double bowSigma[3];        ///< their standard deviations; 0: held
    int32_t refinedDots;       ///< 1: the dots are those measured anew; 0: the reader's
    int32_t reserved;          ///< 0
} ZelmMeasureAdjustSummary;

/// How the last zelmMeasureAdjustSolve() came out.
/// @param adjustment [in] solved
/// @param summary [out] its figures
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_MEASURE_ERR_DATA: not solved yet
ZELM_API int32_t zelmMeasureAdjustSummary(ZelmMeasureAdjustment* adjustment, ZelmMeasureAdjustSummary* summary);

/// Why a view takes no part.
/// @param adjustment [in] the adjustment
/// @param view [in] from 0
/// @return the words, without a line break, empty for a view that takes part; they hold until the next call. NULL:
///     there is no such view
ZELM_API const char* zelmMeasureAdjustView(const ZelmMeasureAdjustment* adjustment, int32_t view);

/// What became of a dot in the adjustment.
enum ZelmMeasureAdjustedStatus {
    ZELM_MEASURE_ADJUSTED_USED = 0,           ///< it takes part
    ZELM_MEASURE_ADJUSTED_OUTLIER = 1,        ///< it is too far from where all others put it
    ZELM_MEASURE_ADJUSTED_VIEW_LEFT_OUT = 2,  ///< its view takes no part
    ZELM_MEASURE_ADJUSTED_NOT_CONFIRMED = 3,  ///< its pixels do not confirm the reader's dot
};

/// Dots of an image as the adjustment has them, in arrays of the caller's.
typedef struct ZelmMeasureAdjustedDots {
    int32_t size;         ///< of this record, bytes
    int32_t reserved;     ///< 0
    int64_t capacity;     ///< dots that every array has room for
    int32_t* grid;        ///< 2 a dot: column and row, counted from the corner marker; or NULL
    double* pixels;       ///< 2 a dot: the measured centre of the ellipse; or NULL
    double* centres;      ///< 2 a dot: the image of the dot's own centre, free of the bias of ellipses; or NULL
    double* residuals;    ///< 2 a dot: measured less predicted, pixels; or NULL
    double* covariances;  ///< 3 a dot: xx, xy, yy with which it takes part, pixels^2; or NULL
    int32_t* statuses;    ///< ZelmMeasureAdjustedStatus, one a dot; or NULL
} ZelmMeasureAdjustedDots;

/// The dots of one image.
/// @param adjustment [in] solved
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param dots [in] the arrays that are written; NULL: dots are only counted
/// @param count [out] their number; dots beyond the capacity are not written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed
ZELM_API int32_t zelmMeasureAdjustDots(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
                                       const ZelmMeasureAdjustedDots* dots, int64_t* count);

/// The adjusted rig: a calibration block like the core's own, with the covariance of its parameters, and with the dots
/// that took part, free of the bias of ellipses.
/// @param adjustment [in] solved
/// @param rig [out] the handle, to be closed by zelmMeasureRigClose(); must be NULL before; NULL on failure
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: not solved since the dots
///     were last changed
ZELM_API int32_t zelmMeasureAdjustRig(ZelmMeasureAdjustment* adjustment, ZelmMeasureRig** rig);

ZELM_END_DECLS

#endif
