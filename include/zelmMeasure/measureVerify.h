/// @file
/// Whether a rig still measures as it did: lengths of known size, and drift of the cameras told from matched points.
#ifndef ZELM_MEASURE_API_VERIFY_H
#define ZELM_MEASURE_API_VERIFY_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// Measures the dots of a plate anew in both images of a view, as an adjustment does: the dots that were read place the
/// plate before each camera, and the camera tells the shape by which all pixels about a dot's outline are judged. Each
/// camera places the plate for itself, so that cameras that have moved do not matter; before a parallel one the plate
/// stands where the other one's dots put it.
/// @param rig [in] the rig
/// @param pattern [in] the plate; with d0 and d1
/// @param leftImage [in] of the size of the camera's
/// @param rightImage [in] likewise
/// @param count [in] of dots that both images show; at least 6, not in a row
/// @param grid [in] 2 a dot: column and row, counted from the corner marker
/// @param left [in,out] 2 a dot: centre of the ellipse in the left image, raw. Those of missing dots are not written
/// @param right [in,out] the same in the right image
/// @param statuses [out] ZelmMeasureDotStatus, one a dot: missing where the pixels of either image do not confirm it
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: the dots do not place the plate, also when
///     zelmCalibCalcHomography() does not settle, or two parallel cameras
/// Cost: of the pixels about the outlines of all dots of the plate, as zelmMeasureRefineDots().
ZELM_API int32_t zelmMeasureRefinePlate(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
                                        const ZelmMeasureImage* leftImage, const ZelmMeasureImage* rightImage,
                                        int64_t count, const int32_t* grid, double* left, double* right,
                                        int32_t* statuses);

/// The dots of a plate in space, in arrays of the caller's with room for all dots.
typedef struct ZelmMeasurePlatePoints {
    int32_t size;       ///< of this record, bytes
    int32_t reserved;   ///< 0
    int32_t* statuses;  ///< ZelmMeasurePointStatus, one a dot; or NULL
    double* positions;  ///< 3 a dot: its centre in the frame of the plate of view 0, plate units; or NULL
    double* left;       ///< 2 a dot: raw pixel of its centre in the left image, not of its ellipse's; or NULL
    double* right;      ///< 2 a dot: the same in the right image; or NULL
} ZelmMeasurePlatePoints;

/// How the measured dots of one view fit the plate.
typedef struct ZelmMeasurePlateFit {
    int32_t size;           ///< of this record, bytes
    int32_t reserved;       ///< 0
    int64_t count;          ///< of dots that were triangulated
    double R[9];            ///< row-major; X = R P + t moves a place P of the plate to the frame of view 0
    double t[3];            ///< plate units
    double rms;             ///< of the dots' distances from their places, plate units
    double flatnessRms;     ///< of their distances from the best plane, plate units
    double flatnessMax;     ///< the largest of these
    double scale;           ///< by which the measured plate is too large, of 1: 1e-6 is a millionth
    double scaleDeviation;  ///< standard deviation of the scale, from the dots' distances from their places
    double maxOffset;       ///< pixels; the largest distance of an ellipse's centre from the image of the dot's centre
} ZelmMeasurePlateFit;

/// Triangulates the dots of a plate in one view. The centre of a dot's ellipse is not the image of its centre: the
/// plate's pose, fitted to the dots, tells by how much in both images, and what is triangulated is corrected for it.
/// @param rig [in] the rig
/// @param pattern [in] the plate
/// @param count [in] of dots that both images show; at least 4, not in a row
/// @param grid [in] 2 a dot: column and row, counted from the corner marker
/// @param left [in] 2 a dot: centre of the ellipse in the left image, raw
/// @param right [in] the same in the right image
/// @param points [in] the arrays that are written; those of dots without a point are not. May be NULL
/// @param fit [out] how they fit the plate (closest rotation: Arun, Huang and Blostein, 1987)
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: too few points, or two parallel cameras
/// Cost O(count).
ZELM_API int32_t zelmMeasurePlatePoints(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int64_t count,
                                        const int32_t* grid, const double* left, const double* right,
                                        const ZelmMeasurePlatePoints* points, ZelmMeasurePlateFit* fit);

/// Chooses lengths between the dots of one view, in the manner of VDI/VDE 2634 part 1: along rows, columns and both
/// diagonals, three lines each, up to five lengths a line from a fifth of it to all of it, and from corner to corner.
/// @param pattern [in] the plate
/// @param count [in] of dots
/// @param grid [in] 2 a dot: column and row, each place once
/// @param capacity [in] lengths that there is room for
/// @param ends [out] 2 a length: the indices of its dots; or NULL
/// @param nominal [out] 1 a length: its size on the plate, plate units; or NULL
/// @param chosen [out] their number; those beyond the capacity are not written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost O(count log count).
ZELM_API int32_t zelmMeasurePlateLengths(const Zelm2ViewPatternDesc* pattern, int64_t count, const int32_t* grid,
                                         int64_t capacity, int64_t* ends, double* nominal, int64_t* chosen);

/// Measured lengths, in arrays of the caller's with room for all.
typedef struct ZelmMeasureLengthErrors {
    int32_t size;      ///< of this record, bytes
    int32_t reserved;  ///< 0
    double* measured;  ///< 1 a length: plate units; or NULL
    double* middles;   ///< 3 a length: its middle in the frame of the plate of view 0; or NULL
    double* depths;    ///< 1 a length: of its middle along the left camera's axis, plate units; or NULL
    int32_t* regions;  ///< 1 a length: third of the left image that shows its middle, 0 to 8, row by row; or NULL
    int32_t* slabs;    ///< 1 a length: third of the depths that holds its middle, 0 (near) to 2; or NULL
} ZelmMeasureLengthErrors;

/// Errors of lengths, measured less nominal.
typedef struct ZelmMeasureLengthFigures {
    int64_t count;  ///< of lengths; 0: the others are 0
    double mean;    ///< plate units
    double rms;     ///< plate units
    double worst;   ///< the largest by magnitude, with its sign
} ZelmMeasureLengthFigures;

/// What the errors of lengths tell together.
typedef struct ZelmMeasureLengthSummary {
    int32_t size;                         ///< of this record, bytes
    int32_t reserved;                     ///< 0
    ZelmMeasureLengthFigures all;         ///< of all lengths
    ZelmMeasureLengthFigures regions[9];  ///< by third of the left image, row by row
    ZelmMeasureLengthFigures slabs[3];    ///< by third of the depths, near to far
    double depths[4];                     ///< the limits of these, plate units
    double minNominal;                    ///< the shortest, plate units
    double maxNominal;                    ///< the longest, plate units
    int64_t worst;                        ///< index of the length of the largest error
    double scale;                         ///< by which all lengths are too long, of 1: 1e-6 is a millionth
    double scaleDeviation;                ///< its standard deviation, if the lengths' errors are independent; 0 of one
                                          ///< length, which tells none
    double rmsWithoutScale;               ///< of the errors that remain when every length is divided by 1 + scale; that
                                          ///< of all where every length was measured as 0
} ZelmMeasureLengthSummary;

/// Errors of lengths between points of space, by region of the volume and by depth.
/// @param rig [in] the rig
/// @param pointCount [in] of points
/// @param positions [in] 3 a point: in the frame of the plate of view 0
/// @param count [in] of lengths, at least 1
/// @param ends [in] 2 a length: indices of its points
/// @param nominal [in] 1 a length: its true size, greater than 0
/// @param lengths [in] the arrays that are written; may be NULL
/// @param summary [out] figures of all
/// @return ZELM_OK; ZELM_ERR_PARAM, also for an end that is no point or not finite; ZELM_ERR_MEMORY
/// Cost O(count).
ZELM_API int32_t zelmMeasureLengthErrors(ZelmMeasureRig* rig, int64_t pointCount, const double* positions,
                                         int64_t count, const int64_t* ends, const double* nominal,
                                         const ZelmMeasureLengthErrors* lengths, ZelmMeasureLengthSummary* summary);

/// What of the right camera may have moved since the calibration, in its own frame. Points alone show no more of a
/// pair: what the left camera does shows as turns and shifts of the right one.
enum ZelmMeasureDriftPart {
    ZELM_MEASURE_DRIFT_TURN_X = 0,  ///< turn about its x axis through its centre, from y to z, radians
    ZELM_MEASURE_DRIFT_TURN_Y = 1,  ///< turn about its y axis, from z to x
    ZELM_MEASURE_DRIFT_TURN_Z = 2,  ///< turn about its z axis, from x to y
    ZELM_MEASURE_DRIFT_ACROSS = 3,  ///< shift across baseline and viewing direction, plate units
    ZELM_MEASURE_DRIFT_ALONG = 4,   ///< shift at right angles to the baseline, about along the viewing direction
    ZELM_MEASURE_DRIFT_PARTS = 5
};

/// How drift is looked for. What is 0 has the default.
typedef struct ZelmMeasureDriftOptions {
    int32_t size;             ///< of this record, bytes
    int32_t reserved;         ///< 0
    double noise;             ///< standard deviation of a pixel's coordinates; 0: from what the five parts leave
    double calibrationError;  ///< pixels; RMS epipolar distance that is put down to the calibration itself, beside what
                              ///< the rig's covariance tells of it
    double level;             ///< probability of a false alarm that is accepted; 0: 0.0001
} ZelmMeasureDriftOptions;

/// One part of the drift as the only one.
typedef struct ZelmMeasureDriftSingle {
    double value;        ///< radians or plate units
    double deviation;    ///< its standard deviation
    double probability;  ///< that chance alone makes the distances so much smaller by it
    double rms;          ///< epipolar distance that remains, pixels
    double detectable;   ///< the size of this part that these points would show 9 times out of 10
} ZelmMeasureDriftSingle;

/// What pairs of pixels tell of drift.
typedef struct ZelmMeasureDrift {
    int32_t size;                       ///< of this record, bytes
    int32_t found;                      ///< 1: the right camera has moved; 0: nothing tells so
    int32_t best;                       ///< ZelmMeasureDriftPart that explains the distances best, alone
    int32_t isSingle;                   ///< 1: this part alone leaves no more than noise
    int32_t alternatives;               ///< bit 1 << part of each other part that explains them about as well
    int32_t covariance;                 ///< 1: the rig's covariance was taken into account; 0: it has none
    int64_t used;                       ///< pairs that took part
    int64_t wrong;                      ///< pairs left out as wrong matches
    int64_t unusable;                   ///< pairs with a pixel whose lens distortion cannot be removed
    double noise;                       ///< standard deviation of a pixel's coordinates, given or estimated
    double freedom;                     ///< degrees of freedom of its estimate; 0: it was given
    double probability;                 ///< that chance alone makes what was found (all tests together)
    double rms;                         ///< epipolar distance of the calibration, pixels
    double rmsAll;                      ///< the same after all five parts together
    double all[5];                      ///< the five parts together, by ZelmMeasureDriftPart
    double allDeviations[5];            ///< their standard deviations
    ZelmMeasureDriftSingle singles[5];  ///< each alone
    double across[3];                   ///< unit vector of ZELM_MEASURE_DRIFT_ACROSS in the right camera's frame
    double along[3];                    ///< unit vector of ZELM_MEASURE_DRIFT_ALONG
} ZelmMeasureDrift;

/// Looks for drift of the cameras in pairs of pixels that show the same points, of any scene. The epipolar distances,
/// to first order in the noise of all four coordinates (Sampson, 1982), are explained by nothing, by each part alone
/// and by all five; F tests, or chi-square tests where the noise is given, judge the six explanations, corrected for
/// their number (Bonferroni). Wrong matches are left out: least absolute distances, then Tukey's weights (Holland and
/// Welsch, 1977). Where the rig has a covariance, the errors that it tells are among what chance may do: all pairs
/// share them, and the distances are weighed by the inverse of both covariances together. The length of the baseline is
/// never seen.
/// @param rig [in] of two perspective cameras
/// @param count [in] of pairs; at least 30, all over the images
/// @param left [in] raw pixels, 2 a pair
/// @param right [in] raw pixels, 2 a pair
/// @param options [in] how to look; NULL: the defaults
/// @param statuses [out] 1 a pair: 1 used, 0 left out as wrong, -1 unusable; or NULL
/// @param drift [out] what they tell
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: a parallel camera, too few pairs, pairs of
///     one place only, or pairs that no drift explains
/// Cost O(count), some hundred passes.
ZELM_API int32_t zelmMeasureDrift(ZelmMeasureRig* rig, int64_t count, const double* left, const double* right,
                                  const ZelmMeasureDriftOptions* options, int32_t* statuses, ZelmMeasureDrift* drift);

ZELM_END_DECLS

#endif
