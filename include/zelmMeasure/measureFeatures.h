/// @file
/// Lines, planes, circles, spheres and cylinders of points in space, distances and angles between them, and how well
/// all of it is known.
#ifndef ZELM_MEASURE_API_FEATURES_H
#define ZELM_MEASURE_API_FEATURES_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// Points of space that features are made of.
typedef struct ZelmMeasureFeaturePoints {
    int32_t size;          ///< of this record, bytes
    int32_t reserved;      ///< 0
    int64_t count;         ///< of the points
    const double* points;  ///< 3 a point
    const double* noise;   ///< 6 a point: xx, xy, xz, yy, yz, zz of its own errors, which are independent from point to
                           ///< point; NULL: those that the noise of the rig's dots makes, else what residuals tell
    double freedom;        ///< degrees of freedom that `noise` was estimated from; 0: it is known
} ZelmMeasureFeaturePoints;

/// What is fitted.
enum ZelmMeasureFeatureKind {
    ZELM_MEASURE_FEATURE_POINT = 0,     ///< the mean of its points, or the one point
    ZELM_MEASURE_FEATURE_LINE = 1,      ///< at least 2 points
    ZELM_MEASURE_FEATURE_PLANE = 2,     ///< at least 3
    ZELM_MEASURE_FEATURE_CIRCLE = 3,    ///< at least 3
    ZELM_MEASURE_FEATURE_SPHERE = 4,    ///< at least 4
    ZELM_MEASURE_FEATURE_CYLINDER = 5,  ///< at least 5
};

/// A feature that is asked for.
typedef struct ZelmMeasureFeature {
    int32_t size;           ///< of this record, bytes
    int32_t kind;           ///< ZelmMeasureFeatureKind
    int32_t robust;         ///< 1: points that are far from what the majority tells are left out; 0: all count
    int32_t plain;          ///< 1: all points weigh the same; 0: each by how well it is known across the feature
    int64_t count;          ///< of its points
    const int64_t* points;  ///< their numbers, from 0, each once
} ZelmMeasureFeature;

/// How a feature or a relation came out.
enum ZelmMeasureFeatureStatus {
    ZELM_MEASURE_FEATURE_OK = 0,
    ZELM_MEASURE_FEATURE_FEW = 1,           ///< too few points
    ZELM_MEASURE_FEATURE_UNDETERMINED = 2,  ///< the points do not determine it: on one line, in one plane, all the same
    ZELM_MEASURE_FEATURE_NOT_CONVERGED = 3,  ///< no such feature is near the points
    ZELM_MEASURE_FEATURE_NO_MAJORITY = 4,    ///< robust: less than half of the points agree
    ZELM_MEASURE_FEATURE_SMALL = 5,          ///< relations: less than three of its standard deviations, so that errors
                                             ///< to first order do not tell them; the value alone is given
    ZELM_MEASURE_FEATURE_NO_PART = 6,        ///< relations: one of its features has no numbers
};

/// Numbers of a feature: location, direction and radius, in this order.
#define ZELM_MEASURE_FEATURE_NUMBERS 7

/// A feature. The location is the mean point of a line, plane or cylinder, projected onto it, and the centre of a
/// circle or sphere; the direction that of a line or an axis, or a normal, of unit length, its component of greatest
/// size positive. What a kind does not have is 0.
typedef struct ZelmMeasureFeatureResult {
    int32_t size;                                 ///< of this record, bytes
    int32_t status;                               ///< ZelmMeasureFeatureStatus
    int32_t known;                                ///< 1: deviations are known; 0: nothing tells them
    int32_t reserved;                             ///< 0
    int64_t used;                                 ///< points
    int64_t leftOut;                              ///< points, by the robust fit
    double values[ZELM_MEASURE_FEATURE_NUMBERS];  ///< x, y, z, direction x, y, z, radius
    double noise[ZELM_MEASURE_FEATURE_NUMBERS];   ///< standard deviations by the points' own errors
    double
        calibration[ZELM_MEASURE_FEATURE_NUMBERS];  ///< standard deviations by the calibration, which all points share
    double deviations[ZELM_MEASURE_FEATURE_NUMBERS];  ///< by both together
    double expanded[ZELM_MEASURE_FEATURE_NUMBERS];    ///< half widths of the intervals that hold the truth at 95 %
    double rms;                                       ///< of the distances of the points used
    double form;          ///< flatness of a plane, roundness of a circle, sphere or cylinder: greatest less least
                          ///< distance; straightness of a line: twice the greatest distance
    double flatness;      ///< of a circle: greatest less least distance from its plane
    double worst;         ///< distance of the point used that is farthest off
    int64_t worstPoint;   ///< its number
    double misfit;        ///< size of the residuals, in what `noise` makes them; 0: not known
    double misfitChance;  ///< probability that chance makes them as large; 1: not known
    double freedom;       ///< coordinates less parameters
    double* distances;    ///< [in] one for each of its points, written: signed where there are two sides; or NULL
    int32_t* uses;        ///< [in] one for each of its points, written: 1 used, 0 left out; or NULL
} ZelmMeasureFeatureResult;

/// What is measured between two features.
enum ZelmMeasureRelationKind {
    ZELM_MEASURE_RELATION_DISTANCE = 1,  ///< plate units; from the location of a point, circle or sphere; between lines
                                         ///< and axes at their closest; from a plane to the other's location. Of two
                                         ///< planes or lines within a degree of parallel: from the first one to the
                                         ///< location of the second
    ZELM_MEASURE_RELATION_ANGLE = 2,     ///< radians, 0 to pi / 2, between lines, axes and planes; a circle is a plane
};

/// A relation that is asked for.
typedef struct ZelmMeasureRelation {
    int32_t size;    ///< of this record, bytes
    int32_t kind;    ///< ZelmMeasureRelationKind
    int64_t first;   ///< number of a feature
    int64_t second;  ///< number of another feature
} ZelmMeasureRelation;

/// A relation. Features may share points: what they have in common is taken into account.
typedef struct ZelmMeasureRelationResult {
    int32_t size;        ///< of this record, bytes
    int32_t status;      ///< ZelmMeasureFeatureStatus
    int32_t known;       ///< 1: deviations are known; 0: nothing tells them
    int32_t reserved;    ///< 0
    double value;        ///< distance or angle
    double noise;        ///< standard deviation by the points' own errors
    double calibration;  ///< standard deviation by the calibration
    double deviation;    ///< by both together
    double expanded;     ///< half the width of the interval that holds the truth at 95 %
} ZelmMeasureRelationResult;

/// Fits features to points and measures between them. A feature has the least squares of the orthogonal distances of
/// its points (Gauss-Newton with Levenberg's and Marquardt's damping on the distances themselves), each over what is
/// known of it along that distance. A robust fit begins with the feature of a few points whose median squared distance
/// is least (Rousseeuw, 1984) and keeps points within 3.5 standard deviations. Uncertainties are to first order: each
/// point's own errors, and those of the calibration, which move all points together and cancel in part. They say
/// nothing of the form of the thing: `misfit` tells when the points lie off the feature by more than their errors.
/// @param points [in] the points
/// @param rig [in] whose calibration the points come from, in its plate's frame: what its covariance makes uncertain;
///     NULL, or without covariance: that part is 0
/// @param featureCount [in] of features
/// @param features [in] what is asked for; the size of the first holds for all
/// @param results [in,out] one a feature; the size of the first is set by the caller and holds for all
/// @param relationCount [in] of relations
/// @param relations [in] what is asked for; the size of the first holds for all; NULL with a count of 0
/// @param relationResults [in,out] one a relation; the size of the first holds for all likewise
/// @return ZELM_OK: statuses tell of each; ZELM_ERR_PARAM: also points that are not finite, covariances that are not
///     positive definite, a feature whose points are not there or stand twice, an angle of a point or sphere;
///     ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: two parallel cameras, or a point that no camera of the rig can see
/// Cost O(points), some 10 passes; a robust fit some 300.
ZELM_API int32_t zelmMeasureFeatures(const ZelmMeasureFeaturePoints* points, ZelmMeasureRig* rig, int64_t featureCount,
                                     const ZelmMeasureFeature* features, ZelmMeasureFeatureResult* results,
                                     int64_t relationCount, const ZelmMeasureRelation* relations,
                                     ZelmMeasureRelationResult* relationResults);

ZELM_END_DECLS

#endif
