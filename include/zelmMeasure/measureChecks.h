/// @file
/// What an adjusted calibration tells against itself: tests of the assumptions that it was computed under.
#ifndef ZELM_MEASURE_API_CHECKS_H
#define ZELM_MEASURE_API_CHECKS_H

#include "zelmMeasure/measureAdjust.h"

ZELM_BEGIN_DECLS

/// What is checked. `value` and `deviation` of a ZelmMeasureCheck are in the units stated here.
enum ZelmMeasureCheckKind {
    ZELM_MEASURE_CHECK_HALVES = 1,           ///< two halves of the views give one rig; plate units between their points
    ZELM_MEASURE_CHECK_LENS = 2,             ///< a camera's lens model fits; largest pixels that it leaves
    ZELM_MEASURE_CHECK_BOW = 3,              ///< the plate is flat; plate units at the corner that is bent most
    ZELM_MEASURE_CHECK_MOVED = 4,            ///< nothing moved between a view's exposures; plate units at its middle
    ZELM_MEASURE_CHECK_PITCH = 5,            ///< columns and rows have the stated distances; their ratio, less 1
    ZELM_MEASURE_CHECK_DOT_DIAMETER = 6,     ///< plain dots have the stated diameter; true over stated one, less 1
    ZELM_MEASURE_CHECK_MARKER_DIAMETER = 7,  ///< likewise, markers
};

/// How a check came out.
enum ZelmMeasureCheckVerdict {
    ZELM_MEASURE_CHECK_FINE = 0,     ///< nothing beyond chance
    ZELM_MEASURE_CHECK_NOTABLE = 1,  ///< beyond chance, but less than matters
    ZELM_MEASURE_CHECK_WRONG = 2,    ///< beyond chance, and it matters
    ZELM_MEASURE_CHECK_UNDONE = 3,   ///< these views do not allow the check
};

/// One check.
typedef struct ZelmMeasureCheck {
    int32_t size;        ///< of this record, bytes
    int32_t kind;        ///< ZelmMeasureCheckKind
    int32_t verdict;     ///< ZelmMeasureCheckVerdict
    int32_t view;        ///< that it is about, from 0; -1: none
    int32_t side;        ///< 'L' or 'R': the camera that it is about; 0: none
    int32_t reserved;    ///< 0
    double p;            ///< probability that chance alone gives as much in any of the checks; 1 where undone
    double value;        ///< what was found, in the unit of the kind
    double deviation;    ///< its standard deviation
    double limit;        ///< size of the value from which on it matters; 0: unknown
    double turnDegrees;  ///< ZELM_MEASURE_CHECK_MOVED: how far the plate turned; else 0
    double shift;        ///< how far what was found moves points against one another at most, plate units
    char text[512];      ///< a sentence for the report, without a line break: what is wrong, and what to do
} ZelmMeasureCheck;

/// Checks a solved adjustment: whether halves of its views agree, and whether its residuals show what its model lacks.
/// Each possible flaw is tested by the score of its parameters (Rao, 1948) against what the adjustment can absorb, with
/// Fisher's F; flaws that are found are estimated along with the next ones, so that one does not pass for another. The
/// halves are compared by the test of Chow (1960), to first order. Where the ratio of the plate's pitches is found
/// wrong, all is adjusted anew with the ratio found, and the other flaws are looked for there; the adjustment itself
/// stays as it was solved. A check alarms when chance alone would give as much in one adjustment in a hundred, all
/// checks together (Bonferroni). It is wrong only if it moves a point of the plates by more than 1.96 standard
/// deviations of that point triangulated from one dot; a diameter: by more than 3 %.
/// No check can see a factor that all distances on the plate have in common.
/// @param adjustment [in] solved
/// @param checks [out] the checks, most of them by kind; the first one's field size must be set by the caller and is
///     the distance of the records in bytes, a multiple of 8. NULL: they are only counted
/// @param capacity [in] records that there is room for; those beyond are not written
/// @param count [out] number of checks: 8, and one for each further view that moved
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY; ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed
/// Cost O(dots); that of up to three adjustments more where the pitches are wrong.
ZELM_API int32_t zelmMeasureAdjustChecks(ZelmMeasureAdjustment* adjustment, ZelmMeasureCheck* checks, int64_t capacity,
                                         int64_t* count);

ZELM_END_DECLS

#endif
