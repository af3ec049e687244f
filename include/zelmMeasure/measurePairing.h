/// @file
/// Whether the images that a pair is to be calibrated from belong together: lists that are shifted, images that are
/// exchanged, copied, turned or mirrored, views in which something moved.
#ifndef ZELM_MEASURE_API_PAIRING_H
#define ZELM_MEASURE_API_PAIRING_H

#include "zelmMeasure/measureBase.h"
#include "zelmMeasure/measureDots.h"

ZELM_BEGIN_DECLS

/// The dots of a view as zelm2ViewReadPtnImg() has read them, before any calibration.
/// @param calib [in] an object that was opened for a calibration
/// @param side [in] 'L' or 'R'
/// @param view [in] from 0
/// @param dots [in] the arrays that are written, all but `errors`; NULL: dots are only counted
/// @param count [out] their number, 0 for a view that was not read; those beyond the capacity are not written
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
ZELM_API int32_t zelmMeasureReadDots(const Zelm2ViewCalib* calib, int32_t side, int32_t view,
                                     const ZelmMeasureDots* dots, int64_t* count);

/// The dots of all images of a set. An array of dots holds those of all views in turn.
typedef struct ZelmMeasureImageSet {
    int32_t size;                         ///< of this record, bytes
    int32_t views;                        ///< as many left as right images
    const Zelm2ViewPatternDesc* pattern;  ///< the plate
    const Zelm2ViewCameraDesc* cameras;   ///< two perspective cameras
    const int64_t* leftCounts;            ///< dots of each left image; 0: it could not be read
    const double* leftPlane;              ///< 2 a dot: place on the plate, plate units
    const double* leftPixels;             ///< 2 a dot: centre in the image, as taken
    const int64_t* rightCounts;           ///< likewise of the right images
    const double* rightPlane;             ///< places on the plate of their dots
    const double* rightPixels;            ///< centres of their dots in the images
} ZelmMeasureImageSet;

/// How the two images of a view go together.
enum ZelmMeasureViewFate {
    ZELM_MEASURE_VIEW_FITS = 0,           ///< with each other
    ZELM_MEASURE_VIEW_UNREAD = 1,         ///< one of them has fewer than 6 dots
    ZELM_MEASURE_VIEW_OTHER_IMAGE = 2,    ///< at least one of them fits another image of the other side
    ZELM_MEASURE_VIEW_COPY = 3,           ///< one shows what another image of its side shows
    ZELM_MEASURE_VIEW_STORED = 4,         ///< they do when one of them is turned or mirrored
    ZELM_MEASURE_VIEW_EXCHANGED = 5,      ///< the left camera's image is the right one
    ZELM_MEASURE_VIEW_OTHER_SESSION = 6,  ///< they agree with other views of this kind, on another pair of cameras
    ZELM_MEASURE_VIEW_NOTHING_FITS = 7,   ///< not at all, nor with any other image
    ZELM_MEASURE_VIEW_UNKNOWN = 8,        ///< too few pairs of images agree to judge by
    ZELM_MEASURE_VIEW_SAME_IMAGES = 9,    ///< its two images show all dots in the same places, as no two cameras do
};

/// What was found about a view. Numbers of images are -1 where there is none.
typedef struct ZelmMeasurePairedView {
    int32_t size;          ///< of this record, bytes; a multiple of 8
    int32_t fate;          ///< ZelmMeasureViewFate
    int32_t side;          ///< of a copy and of a stored image: 'L' or 'R'; else 0
    int32_t quarterTurns;  ///< of a stored image, clockwise, by which it is turned
    int32_t isMirrored;    ///< of a stored image: 1 when it was mirrored left to right before that
    int32_t leftFits;      ///< the right image that the left one fits
    int32_t rightFits;     ///< the left image that the right one fits
    int32_t copyOf;        ///< of a copy: the view that has the same image
    int32_t sameView;      ///< an earlier view that shows the plate in the same place, in both images
    int32_t cause;         ///< number of the cause that tells of it; -1: none, or that a whole side is mirrored
    double misfit;         ///< standard deviation of a coordinate of one image's dots where the other one's dots put
                           ///< the plate, pixels; negative where it is not known
    double leftTilt;       ///< of the plate against the left image plane, radians; negative where it is not known
    double rightTilt;      ///< likewise
} ZelmMeasurePairedView;

/// What is wrong with a set of images.
enum ZelmMeasureSetCauseKind {
    ZELM_MEASURE_SET_UNDETERMINED = 0,      ///< the images of a side do not determine their camera
    ZELM_MEASURE_SET_NO_AGREEMENT = 1,      ///< no two pairs of images agree on one pair of cameras
    ZELM_MEASURE_SET_SHIFTED = 2,           ///< one list of images is shifted against the other one
    ZELM_MEASURE_SET_EXCHANGED_VIEWS = 3,   ///< two images of a list have changed places
    ZELM_MEASURE_SET_OTHER_IMAGES = 4,      ///< images fit others in no such order
    ZELM_MEASURE_SET_COPIES = 5,            ///< images that show what others of their side show
    ZELM_MEASURE_SET_TURNED = 6,            ///< images are turned
    ZELM_MEASURE_SET_MIRRORED = 7,          ///< images are mirrored
    ZELM_MEASURE_SET_SIDE_MIRRORED = 8,     ///< all images of one side are
    ZELM_MEASURE_SET_EXCHANGED_IMAGES = 9,  ///< left and right are exchanged in some views
    ZELM_MEASURE_SET_OTHER_SESSION = 10,    ///< views of cameras that stood otherwise to each other
    ZELM_MEASURE_SET_NOTHING_FITS = 11,     ///< views in which something moved, or of which an image is foreign
    ZELM_MEASURE_SET_SAME_VIEWS = 12,       ///< views that add nothing to earlier ones
    ZELM_MEASURE_SET_SAME_IMAGES = 13,      ///< views of which both images are one and the same
};

/// A cause, once for all views that it explains: those whose `cause` is its number.
typedef struct ZelmMeasureSetCause {
    int32_t size;          ///< of this record, bytes; a multiple of 8
    int32_t kind;          ///< ZelmMeasureSetCauseKind
    int32_t side;          ///< whose images are at fault: 'L' or 'R'; 0 where the dots do not tell
    int32_t offset;        ///< of a shift: the right image of view i fits the left one of view i + offset
    int32_t isCyclic;      ///< of a shift: 1 when it goes on at the other end of the list
    int32_t quarterTurns;  ///< of turned images, clockwise
    int32_t views;         ///< that it explains
    int32_t reserved;      ///< 0
    double turn;           ///< of another session: the right camera's turn against the left one's, from that of the
                           ///< views which fit, radians; else 0
    double shift;          ///< likewise of its centre, plate units; the views of a session tell it roughly
} ZelmMeasureSetCause;

/// What was found about a set.
typedef struct ZelmMeasurePairing {
    int32_t size;          ///< of this record, bytes
    int32_t causes;        ///< number of causes; 0: the images belong together
    int32_t agreeing;      ///< pairs of images that agree on one pair of cameras, put right where that is needed
    int32_t isDetermined;  ///< 1: the images of each side determine their camera
    double noise;          ///< median misfit of what agrees, pixels
    double limit;          ///< misfit beyond which images do not fit, pixels
} ZelmMeasurePairing;

/// Judges whether the images of a set belong together, and says what is wrong where they do not. Every image tells
/// where the plate stood before its camera; all pairs of images that belong together agree on one relative pose of the
/// cameras. When the pairs as given do not, the relative pose is looked for that most one-to-one combinations of any
/// left with any right image share. What the rest shows is explained by it: images of other views, copies, images that
/// are turned or mirrored, left and right exchanged. An explanation holds when an adjustment confirms it to the noise
/// of the dots; images of other views are one only where the views as given do not fit. Views whose two images show all
/// dots in the same places, to 0.1 pixel, are taken out before.
/// A camera that is turned as a whole is no fault. Which of two images of a list have changed places, or which side of
/// a mirrored pair is the mirrored one, dots alone may not tell: then both are named.
/// @param images [in] the dots of the set
/// @param views [out] a record for each view; the size of the first one holds for all; or NULL
/// @param causes [out] the causes, those that explain most views first; or NULL
/// @param capacity [in] causes that there is room for
/// @param pairing [out] the whole
/// @return ZELM_OK, ZELM_ERR_PARAM, ZELM_ERR_MEMORY
/// Cost: an adjustment of up to 24 dots an image for good sets; for others, some more, and the cube of the number of
/// views. Method: one vote for each combination, then least squares; the calibration of each camera is that of
/// zelmCalibCameraParam().
ZELM_API int32_t zelmMeasurePairImages(const ZelmMeasureImageSet* images, ZelmMeasurePairedView* views,
                                       ZelmMeasureSetCause* causes, int64_t capacity, ZelmMeasurePairing* pairing);

ZELM_END_DECLS

#endif
