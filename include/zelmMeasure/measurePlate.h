/// @file
/// Designs of plates: what keeps one from being read, or read well, before it is printed; and plates at a temperature.
#ifndef ZELM_MEASURE_API_PLATE_H
#define ZELM_MEASURE_API_PLATE_H

#include "zelmMeasure/measureBase.h"
#include "zelmMeasure/measureRig.h"

ZELM_BEGIN_DECLS

/// What a plate's design lacks. The last words say what `value` and `limit` of a finding are.
enum ZelmMeasurePlateFlaw {
    ZELM_MEASURE_PLATE_MARKER_COUNT = 1,    ///< there must be three markers; number
    ZELM_MEASURE_PLATE_MARKER_OFF_GRID,     ///< a marker stands on no place of the grid; pitches from the nearest one
    ZELM_MEASURE_PLATE_MARKER_OUTSIDE,      ///< a marker lies outside the field; pitches from the corner marker
    ZELM_MEASURE_PLATE_MARKER_RATIO,        ///< markers are too like the dots; diameter over that of the dots
    ZELM_MEASURE_PLATE_TOUCH,               ///< dots touch each other, or a marker its neighbours; gap, plate units
    ZELM_MEASURE_PLATE_NEIGHBOUR_IN_REACH,  ///< a marker's outline is looked for beyond its neighbour; pitches
    ZELM_MEASURE_PLATE_HALF_TURN,           ///< the plate is its own half turn; 0
    ZELM_MEASURE_PLATE_MIRROR,              ///< the plate is its own mirror image; 0
    ZELM_MEASURE_PLATE_FEW_DOTS,            ///< the field has few dots; number
    ZELM_MEASURE_PLATE_DOTS_SMALL,          ///< dots are small in a camera's image; radius at `farthest`, pixels
    ZELM_MEASURE_PLATE_DOTS_LARGE,          ///< dots are large in a camera's image; radius at `nearest`, pixels
    ZELM_MEASURE_PLATE_GAP_SMALL,           ///< neighbours are near in a camera's image; gap at `farthest`, pixels
    ZELM_MEASURE_PLATE_AXES_DIFFER,         ///< marker distances differ too much; difference at `nearest`, pixels
    ZELM_MEASURE_PLATE_FIELD_LARGE,         ///< the field is larger than a camera's image; share seen at `nearest`
    ZELM_MEASURE_PLATE_FIELD_SMALL          ///< the field is small in a camera's image; share of it at `farthest`
};

/// One thing that a design lacks.
typedef struct ZelmMeasurePlateFinding {
    int32_t size;     ///< of this record, bytes
    int32_t flaw;     ///< ZelmMeasurePlateFlaw
    int32_t camera;   ///< index of the camera that it is about; -1: of none
    int32_t isFatal;  ///< 1: such a plate is not read, or not for certain; 0: it is read, but less well
    double value;     ///< what the design has, as the flaw says
    double limit;     ///< what it should have at least, or at most
} ZelmMeasurePlateFinding;

/// What a plate's design lacks, of itself and before cameras that face it square on.
/// @param plate [in] all lengths greater than 0
/// @param cameraCount [in] 0: the plate is judged by itself
/// @param cameras [in] the first one's field size is the distance of the records in bytes, a multiple of 8. A width and
///     height of 0 are not known: the field is then not compared with the image
/// @param nearest [in] least distance of the plate from the cameras, plate units; not read for parallel cameras alone
/// @param farthest [in] greatest distance, at least `nearest`
/// @param findings [out] what was found, in the order of ZelmMeasurePlateFlaw, camera by camera; the first one's field
///     size must be set by the caller and is the distance of the records in bytes, a multiple of 8. NULL: only counted
/// @param capacity [in] records that there is room for; those beyond are not written
/// @param count [out] number of findings
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_ERR_MEMORY
/// Cost O(1). Limits are those of the plate's reader, measured with rendered plates: `docs/limits.md`.
ZELM_API int32_t zelmMeasurePlateDesign(const Zelm2ViewPatternDesc* plate, int32_t cameraCount,
                                        const ZelmMeasureCamera* cameras, double nearest, double farthest,
                                        ZelmMeasurePlateFinding* findings, int64_t capacity, int64_t* count);

/// A plate at another temperature than the one at which its lengths hold: all of them by the factor
/// 1 + expansion * difference.
/// @param plate [in] lengths d0 to d7 are read, all else is copied
/// @param expansion [in] of lengths, per kelvin
/// @param difference [in] of the temperatures, kelvin: the new one less that of the lengths
/// @param placeCount [in] of measured dot positions; may be 0
/// @param places [in] 3 a dot, plate units
/// @param expanded [out] the plate; may be `plate`
/// @param expandedPlaces [out] 3 a dot; may be `places`
/// @param factor [out] of all lengths; or NULL
/// @return ZELM_OK; ZELM_ERR_PARAM: also numbers that are not finite, and a factor that is not positive
ZELM_API int32_t zelmMeasurePlateExpanded(const Zelm2ViewPatternDesc* plate, double expansion, double difference,
                                          int64_t placeCount, const double* places, Zelm2ViewPatternDesc* expanded,
                                          double* expandedPlaces, double* factor);

ZELM_END_DECLS

#endif
