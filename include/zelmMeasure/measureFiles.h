/// @file
/// Rigs as the files of other programs, in memory: OpenCV, ROS, Kalibr, MATLAB, mrcal and NumPy.
///
/// `docs/formats.md` has what stands in each file and what each format cannot hold.
#ifndef ZELM_MEASURE_API_FILES_H
#define ZELM_MEASURE_API_FILES_H

#include "zelmMeasure/measureBase.h"

ZELM_BEGIN_DECLS

/// What files of other programs are.
enum ZelmMeasureFileFormat {
    ZELM_MEASURE_FILE_OPENCV = 0,  ///< OpenCV FileStorage, YAML: one file
    ZELM_MEASURE_FILE_ROS = 1,     ///< ROS camera_info, YAML: a file a camera
    ZELM_MEASURE_FILE_KALIBR = 2,  ///< Kalibr camchain, YAML: one file
    ZELM_MEASURE_FILE_MATLAB = 3,  ///< MATLAB MAT-file level 5 with a struct like stereoParameters: one file
    ZELM_MEASURE_FILE_MRCAL = 4,   ///< mrcal cameramodel: a file a camera
    ZELM_MEASURE_FILE_NUMPY = 5,   ///< NumPy .npz: one file
};

/// What is written.
typedef struct ZelmMeasureExportOptions {
    int32_t size;    ///< of this record, bytes
    int32_t format;  ///< ZelmMeasureFileFormat
    double metres;   ///< in a plate unit, for ROS, Kalibr and mrcal, which count in metres; 0: 0.001
} ZelmMeasureExportOptions;

/// What a format does not hold of a rig.
typedef struct ZelmMeasureExportLoss {
    int32_t size;        ///< of this record, bytes
    int32_t frame;       ///< 1: the frame of the plate of view 0; points are then in the left camera's frame
    int32_t covariance;  ///< 1: the covariance that the rig has
    int32_t views;       ///< number of poses of views that are lost: all but that of view 0
    double skewLeft;   ///< pixels: how far the left camera's skew moves a pixel at most, where its readers ignore skew
    double skewRight;  ///< the same of the right one
} ZelmMeasureExportLoss;

/// What is read.
typedef struct ZelmMeasureImportOptions {
    int32_t size;         ///< of this record, bytes
    int32_t format;       ///< ZelmMeasureFileFormat
    double metres;        ///< as in ZelmMeasureExportOptions
    int32_t leftWidth;    ///< of the left images, pixels, for files that do not say it; 0: not known
    int32_t leftHeight;   ///< likewise
    int32_t rightWidth;   ///< likewise; 0: as left
    int32_t rightHeight;  ///< likewise; 0: as left
    double tolerance;     ///< pixels: how far the two coefficients of the library's lens may be from a lens of more, at
                          ///< any pixel; 0: 0.05
} ZelmMeasureImportOptions;

/// What came of an import.
typedef struct ZelmMeasureImported {
    int32_t size;           ///< of this record, bytes
    int32_t isCameraFrame;  ///< 1: the files have no frame of their own; points are in the left camera's frame
    double leftLensWorst;   ///< pixels: what the library's lens leaves of the file's at worst; 0: it is the same
    double leftLensRms;     ///< its RMS over the image, pixels
    double rightLensWorst;  ///< the same of the right camera
    double rightLensRms;    ///< likewise
} ZelmMeasureImported;

/// Writes a rig of two perspective cameras as a file of another program. Tilted cameras are written by their skew. Text
/// has as many digits as bring every number back bit by bit.
/// @param rig [in] the rig
/// @param options [in] the format
/// @param side [in] 'L' or 'R' for formats with a file a camera; 0 for the others
/// @param capacity [in] of bytes
/// @param bytes [out] the file; NULL to learn its length
/// @param length [out] of the file, bytes
/// @return ZELM_OK; ZELM_ERR_PARAM: a format, side or unit that cannot be meant, a capacity below the length;
///     ZELM_MEASURE_ERR_DATA for a rig with a parallel camera; ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureExport(ZelmMeasureRig* rig, const ZelmMeasureExportOptions* options, int32_t side,
                                   int64_t capacity, void* bytes, int64_t* length);

/// What an export leaves behind.
/// @param rig [in] the rig
/// @param options [in] the format
/// @param loss [out] what is lost
/// @return as zelmMeasureExport()
ZELM_API int32_t zelmMeasureExportLoss(ZelmMeasureRig* rig, const ZelmMeasureExportOptions* options,
                                       ZelmMeasureExportLoss* loss);

/// Makes a rig of files of another program. It has one pose a camera, no dots and no covariance, so that nothing can be
/// planned from its views, and depths have no limits of their own. A lens with other terms than k1 and k2 is replaced
/// by the library's camera, focal lengths, principal point and a small turn included, that comes closest to it over the
/// image (least squares of a grid of pixels).
/// @param options [in] the format
/// @param count [in] of files: for formats with a file a camera 2, left before right; for OpenCV 1 or 2 that complete
///     each other; else 1
/// @param files [in] their bytes
/// @param sizes [in] of each, bytes
/// @param rig [out] the handle, as of zelmMeasureRigOpen()
/// @param imported [out] what came of it; or NULL
/// @return ZELM_OK; ZELM_ERR_PARAM; ZELM_MEASURE_ERR_DATA: the files are refused, or a lens that cannot be replaced to
///     the tolerance; ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureImport(const ZelmMeasureImportOptions* options, int32_t count, const void* const* files,
                                   const int64_t* sizes, ZelmMeasureRig** rig, ZelmMeasureImported* imported);

ZELM_END_DECLS

#endif
