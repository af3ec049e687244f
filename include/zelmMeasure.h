/// @file
/// What a measuring station does with a pair of cameras: dots of plates and targets, how well a calibration fits, 3-D
/// points with figures that tell how good they are, and correspondences over whole images. The library
/// `libzelmMeasure`, a plain C interface above zelmLib.h; valid C99 and C++17.
///
/// Conventions of all functions
/// - A status >= 0 is success. ZELM_ERR_PARAM: an argument cannot be meant; ZELM_ERR_MEMORY: memory ran out;
///   ZELM_MEASURE_ERR_DATA: the data do not allow it; ZELM_MEASURE_ERR_CANCELLED: the caller's progress function ended
///   it. Outputs are written on success alone, and untouched otherwise.
/// - A rig says what was wrong with the last call that failed: zelmMeasureRigError().
/// - Many points are one call: n points of an image are an array of 2 n doubles x0, y0, x1, y1, ...; n points of space
///   are 3 n doubles. What becomes of one point is told in an array of statuses, one of the enumerations below each.
/// - Records begin with `size`, in bytes: set it to sizeof the record as your compiler knows it. Newer libraries take
///   older, shorter records; fields that a record does not have are taken as 0, or are not written.
/// - Arrays of outputs may be NULL where the caller does not need them.
/// - Images are gray, a byte a pixel; nothing writes into them. Pixel centres are whole numbers, x to the right, y
///   down.
/// - Lengths are in the units of the plate, angles in radians, unless a name says otherwise.
/// - Different handles may be used by different threads at a time; one handle by one thread at a time.
#ifndef ZELM_MEASURE_H
#define ZELM_MEASURE_H

#include "zelmMeasure/measureAdjust.h"
#include "zelmMeasure/measureBase.h"
#include "zelmMeasure/measureChecks.h"
#include "zelmMeasure/measureCompare.h"
#include "zelmMeasure/measureDiagnosis.h"
#include "zelmMeasure/measureDots.h"
#include "zelmMeasure/measureFeatures.h"
#include "zelmMeasure/measureFiles.h"
#include "zelmMeasure/measureMatch.h"
#include "zelmMeasure/measurePairing.h"
#include "zelmMeasure/measurePitch.h"
#include "zelmMeasure/measurePixels.h"
#include "zelmMeasure/measurePlan.h"
#include "zelmMeasure/measurePlate.h"
#include "zelmMeasure/measurePointTargets.h"
#include "zelmMeasure/measurePoints.h"
#include "zelmMeasure/measureRig.h"
#include "zelmMeasure/measureRows.h"
#include "zelmMeasure/measureTargets.h"
#include "zelmMeasure/measureUncertainty.h"
#include "zelmMeasure/measureVerify.h"

#endif
