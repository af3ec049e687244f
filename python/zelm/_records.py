"""Records and enums of the C interfaces.

Written by tools/makeRecords.py from the C headers: change those, then run it.
"""

from ctypes import CFUNCTYPE, c_char, c_char_p, c_double, c_float, c_int32, c_int64, c_size_t, c_uint8, c_void_p
from enum import IntEnum

from ._record import Record, record

ZelmMeasureProgress = CFUNCTYPE(c_int32, c_void_p, c_char_p, c_int64, c_int64)
ZELM_MEASURE_ERR_DATA = -1000
ZELM_MEASURE_ERR_CANCELLED = -1001
ZELM_MEASURE_FEATURE_NUMBERS = 7


class ZelmStatus(IntEnum):
    """Status codes. The values are part of the binary interface and never change. What a code means
    for the outputs is said with each function; unless it says otherwise, a failing function has
    written nothing."""

    OK = 0
    ERR_MEMORY = -1
    ERR_PARAM = -2
    ERR_DEGENERATE = -100
    ERR_SINGULAR = -110
    ERR_EIGEN_NOT_CONVERGED = -111
    ERR_SVD_FAILED = -112
    ERR_NOT_POSITIVE_DEFINITE = -113
    ERR_FIT_DATA = -130
    ERR_FIT_NOT_ELLIPSE = -131
    ERR_FIT_NOT_ELLIPSOID = -132
    ERR_FIT_NOT_CONE = -133
    ERR_CALIB_HOMOGRAPHY = -150
    ERR_CALIB_ESTIMATE = -151
    ERR_CALIB_NOT_CONVERGED = -152
    ERR_UNDISTORT = -153
    ERR_PATTERN = -200
    ERR_PATTERN_MARKERS = -201
    ERR_PATTERN_GRID = -202
    ERR_STEREO_GEOMETRY = -210
    ERR_PATTERN_PLATE = -220


ZELM_OK = ZelmStatus.OK
ZELM_ERR_MEMORY = ZelmStatus.ERR_MEMORY
ZELM_ERR_PARAM = ZelmStatus.ERR_PARAM
ZELM_ERR_DEGENERATE = ZelmStatus.ERR_DEGENERATE
ZELM_ERR_SINGULAR = ZelmStatus.ERR_SINGULAR
ZELM_ERR_EIGEN_NOT_CONVERGED = ZelmStatus.ERR_EIGEN_NOT_CONVERGED
ZELM_ERR_SVD_FAILED = ZelmStatus.ERR_SVD_FAILED
ZELM_ERR_NOT_POSITIVE_DEFINITE = ZelmStatus.ERR_NOT_POSITIVE_DEFINITE
ZELM_ERR_FIT_DATA = ZelmStatus.ERR_FIT_DATA
ZELM_ERR_FIT_NOT_ELLIPSE = ZelmStatus.ERR_FIT_NOT_ELLIPSE
ZELM_ERR_FIT_NOT_ELLIPSOID = ZelmStatus.ERR_FIT_NOT_ELLIPSOID
ZELM_ERR_FIT_NOT_CONE = ZelmStatus.ERR_FIT_NOT_CONE
ZELM_ERR_CALIB_HOMOGRAPHY = ZelmStatus.ERR_CALIB_HOMOGRAPHY
ZELM_ERR_CALIB_ESTIMATE = ZelmStatus.ERR_CALIB_ESTIMATE
ZELM_ERR_CALIB_NOT_CONVERGED = ZelmStatus.ERR_CALIB_NOT_CONVERGED
ZELM_ERR_UNDISTORT = ZelmStatus.ERR_UNDISTORT
ZELM_ERR_PATTERN = ZelmStatus.ERR_PATTERN
ZELM_ERR_PATTERN_MARKERS = ZelmStatus.ERR_PATTERN_MARKERS
ZELM_ERR_PATTERN_GRID = ZelmStatus.ERR_PATTERN_GRID
ZELM_ERR_STEREO_GEOMETRY = ZelmStatus.ERR_STEREO_GEOMETRY
ZELM_ERR_PATTERN_PLATE = ZelmStatus.ERR_PATTERN_PLATE


class ZelmCameraModel(IntEnum):
    """The projection of a camera, and what of it is estimated."""

    PERSPECTIVE = 0
    TILTED = 1
    PARALLEL = 2


ZELM_CAMERA_PERSPECTIVE = ZelmCameraModel.PERSPECTIVE
ZELM_CAMERA_TILTED = ZelmCameraModel.TILTED
ZELM_CAMERA_PARALLEL = ZelmCameraModel.PARALLEL


class ZelmSegments(IntEnum):
    """How two segments A and B meet."""

    APART = 0
    CROSS = 1
    ENDPOINTS = 2
    A_ON_B = 3
    B_ON_A = 4
    OVERLAP = 5


ZELM_SEGMENTS_APART = ZelmSegments.APART
ZELM_SEGMENTS_CROSS = ZelmSegments.CROSS
ZELM_SEGMENTS_ENDPOINTS = ZelmSegments.ENDPOINTS
ZELM_SEGMENTS_A_ON_B = ZelmSegments.A_ON_B
ZELM_SEGMENTS_B_ON_A = ZelmSegments.B_ON_A
ZELM_SEGMENTS_OVERLAP = ZelmSegments.OVERLAP


class ZelmCstm(IntEnum):
    """Sampling of the coarse pass. The statistics of a template are kept in this order."""

    QUARTER = 0
    CHECKER = 1
    FULL = 2


ZELM_CSTM_QUARTER = ZelmCstm.QUARTER
ZELM_CSTM_CHECKER = ZelmCstm.CHECKER
ZELM_CSTM_FULL = ZelmCstm.FULL


class ZelmMatch(IntEnum):
    """How zelmMatchBasic() estimates the motion. Rigid motions have the scale 1."""

    RIGID = 0
    SIMILARITY = 1
    RIGID_ROBUST = 2
    SIMILARITY_ROBUST = 3
    RIGID_MINIMAX = 4
    SIMILARITY_MINIMAX = 5


ZELM_MATCH_RIGID = ZelmMatch.RIGID
ZELM_MATCH_SIMILARITY = ZelmMatch.SIMILARITY
ZELM_MATCH_RIGID_ROBUST = ZelmMatch.RIGID_ROBUST
ZELM_MATCH_SIMILARITY_ROBUST = ZelmMatch.SIMILARITY_ROBUST
ZELM_MATCH_RIGID_MINIMAX = ZelmMatch.RIGID_MINIMAX
ZELM_MATCH_SIMILARITY_MINIMAX = ZelmMatch.SIMILARITY_MINIMAX


ZELM_MATCH_EXACT = 1


class ZelmMeasureAdjustedStatus(IntEnum):
    """What became of a dot in the adjustment."""

    USED = 0
    OUTLIER = 1
    VIEW_LEFT_OUT = 2
    NOT_CONFIRMED = 3


ZELM_MEASURE_ADJUSTED_USED = ZelmMeasureAdjustedStatus.USED
ZELM_MEASURE_ADJUSTED_OUTLIER = ZelmMeasureAdjustedStatus.OUTLIER
ZELM_MEASURE_ADJUSTED_VIEW_LEFT_OUT = ZelmMeasureAdjustedStatus.VIEW_LEFT_OUT
ZELM_MEASURE_ADJUSTED_NOT_CONFIRMED = ZelmMeasureAdjustedStatus.NOT_CONFIRMED


class ZelmMeasureCheckKind(IntEnum):
    """What is checked. `value` and `deviation` of a ZelmMeasureCheck are in the units stated
    here."""

    HALVES = 1
    LENS = 2
    BOW = 3
    MOVED = 4
    PITCH = 5
    DOT_DIAMETER = 6
    MARKER_DIAMETER = 7


ZELM_MEASURE_CHECK_HALVES = ZelmMeasureCheckKind.HALVES
ZELM_MEASURE_CHECK_LENS = ZelmMeasureCheckKind.LENS
ZELM_MEASURE_CHECK_BOW = ZelmMeasureCheckKind.BOW
ZELM_MEASURE_CHECK_MOVED = ZelmMeasureCheckKind.MOVED
ZELM_MEASURE_CHECK_PITCH = ZelmMeasureCheckKind.PITCH
ZELM_MEASURE_CHECK_DOT_DIAMETER = ZelmMeasureCheckKind.DOT_DIAMETER
ZELM_MEASURE_CHECK_MARKER_DIAMETER = ZelmMeasureCheckKind.MARKER_DIAMETER


class ZelmMeasureCheckVerdict(IntEnum):
    """How a check came out."""

    FINE = 0
    NOTABLE = 1
    WRONG = 2
    UNDONE = 3


ZELM_MEASURE_CHECK_FINE = ZelmMeasureCheckVerdict.FINE
ZELM_MEASURE_CHECK_NOTABLE = ZelmMeasureCheckVerdict.NOTABLE
ZELM_MEASURE_CHECK_WRONG = ZelmMeasureCheckVerdict.WRONG
ZELM_MEASURE_CHECK_UNDONE = ZelmMeasureCheckVerdict.UNDONE


class ZelmMeasureImageCause(IntEnum):
    """Why the plate in an image cannot be read, or is not read wholly."""

    FINE = 0
    NO_PLATE = 1
    MARKERS = 2
    CUT_OFF = 3
    OUT_OF_FOCUS = 4
    MOTION = 5
    SATURATED = 6
    DARK = 7
    LOW_CONTRAST = 8
    REFLECTION = 9
    COVERED = 10
    POLARITY = 11
    OTHER_PLATE = 12
    MARKER_DISTANCE = 13
    SMALL_DOTS = 14
    TILTED = 15
    NOT_SEPARATE = 16
    UNEVEN_LIGHT = 17
    MARKER_AXES = 18
    PERSPECTIVE = 19
    UNKNOWN = 20


ZELM_MEASURE_IMAGE_FINE = ZelmMeasureImageCause.FINE
ZELM_MEASURE_IMAGE_NO_PLATE = ZelmMeasureImageCause.NO_PLATE
ZELM_MEASURE_IMAGE_MARKERS = ZelmMeasureImageCause.MARKERS
ZELM_MEASURE_IMAGE_CUT_OFF = ZelmMeasureImageCause.CUT_OFF
ZELM_MEASURE_IMAGE_OUT_OF_FOCUS = ZelmMeasureImageCause.OUT_OF_FOCUS
ZELM_MEASURE_IMAGE_MOTION = ZelmMeasureImageCause.MOTION
ZELM_MEASURE_IMAGE_SATURATED = ZelmMeasureImageCause.SATURATED
ZELM_MEASURE_IMAGE_DARK = ZelmMeasureImageCause.DARK
ZELM_MEASURE_IMAGE_LOW_CONTRAST = ZelmMeasureImageCause.LOW_CONTRAST
ZELM_MEASURE_IMAGE_REFLECTION = ZelmMeasureImageCause.REFLECTION
ZELM_MEASURE_IMAGE_COVERED = ZelmMeasureImageCause.COVERED
ZELM_MEASURE_IMAGE_POLARITY = ZelmMeasureImageCause.POLARITY
ZELM_MEASURE_IMAGE_OTHER_PLATE = ZelmMeasureImageCause.OTHER_PLATE
ZELM_MEASURE_IMAGE_MARKER_DISTANCE = ZelmMeasureImageCause.MARKER_DISTANCE
ZELM_MEASURE_IMAGE_SMALL_DOTS = ZelmMeasureImageCause.SMALL_DOTS
ZELM_MEASURE_IMAGE_TILTED = ZelmMeasureImageCause.TILTED
ZELM_MEASURE_IMAGE_NOT_SEPARATE = ZelmMeasureImageCause.NOT_SEPARATE
ZELM_MEASURE_IMAGE_UNEVEN_LIGHT = ZelmMeasureImageCause.UNEVEN_LIGHT
ZELM_MEASURE_IMAGE_MARKER_AXES = ZelmMeasureImageCause.MARKER_AXES
ZELM_MEASURE_IMAGE_PERSPECTIVE = ZelmMeasureImageCause.PERSPECTIVE
ZELM_MEASURE_IMAGE_UNKNOWN = ZelmMeasureImageCause.UNKNOWN


class ZelmMeasureImageSide(IntEnum):
    """Sides of an image, to be added up."""

    LEFT = 1
    RIGHT = 2
    TOP = 4
    BOTTOM = 8


ZELM_MEASURE_SIDE_LEFT = ZelmMeasureImageSide.LEFT
ZELM_MEASURE_SIDE_RIGHT = ZelmMeasureImageSide.RIGHT
ZELM_MEASURE_SIDE_TOP = ZelmMeasureImageSide.TOP
ZELM_MEASURE_SIDE_BOTTOM = ZelmMeasureImageSide.BOTTOM


class ZelmMeasureSpotVerdict(IntEnum):
    """What became of a spot of the image."""

    DOT = 0
    MARKER = 1
    SMALL = 2
    CUT = 3
    NO_ELLIPSE = 4
    WEAK_EDGE = 5
    OTHER_SIZE = 6
    OFF_LATTICE = 7


ZELM_MEASURE_SPOT_DOT = ZelmMeasureSpotVerdict.DOT
ZELM_MEASURE_SPOT_MARKER = ZelmMeasureSpotVerdict.MARKER
ZELM_MEASURE_SPOT_SMALL = ZelmMeasureSpotVerdict.SMALL
ZELM_MEASURE_SPOT_CUT = ZelmMeasureSpotVerdict.CUT
ZELM_MEASURE_SPOT_NO_ELLIPSE = ZelmMeasureSpotVerdict.NO_ELLIPSE
ZELM_MEASURE_SPOT_WEAK_EDGE = ZelmMeasureSpotVerdict.WEAK_EDGE
ZELM_MEASURE_SPOT_OTHER_SIZE = ZelmMeasureSpotVerdict.OTHER_SIZE
ZELM_MEASURE_SPOT_OFF_LATTICE = ZelmMeasureSpotVerdict.OFF_LATTICE


class ZelmMeasureDotStatus(IntEnum):
    """What became of a dot that was looked for at a pixel."""

    OK = 0
    MISSING = 1


ZELM_MEASURE_DOT_OK = ZelmMeasureDotStatus.OK
ZELM_MEASURE_DOT_MISSING = ZelmMeasureDotStatus.MISSING


class ZelmMeasureDotFlag(IntEnum):
    """What fitting a dot to its pixels came across."""

    HALF_HIDDEN = 1
    HIGHLIGHT = 2
    SATURATED = 4
    NEIGHBOUR = 8
    CUT = 16
    ABSENT = 32
    NOT_CONVERGED = 64


ZELM_MEASURE_DOT_HALF_HIDDEN = ZelmMeasureDotFlag.HALF_HIDDEN
ZELM_MEASURE_DOT_HIGHLIGHT = ZelmMeasureDotFlag.HIGHLIGHT
ZELM_MEASURE_DOT_SATURATED = ZelmMeasureDotFlag.SATURATED
ZELM_MEASURE_DOT_NEIGHBOUR = ZelmMeasureDotFlag.NEIGHBOUR
ZELM_MEASURE_DOT_CUT = ZelmMeasureDotFlag.CUT
ZELM_MEASURE_DOT_ABSENT = ZelmMeasureDotFlag.ABSENT
ZELM_MEASURE_DOT_NOT_CONVERGED = ZelmMeasureDotFlag.NOT_CONVERGED


class ZelmMeasureFeatureKind(IntEnum):
    """What is fitted."""

    POINT = 0
    LINE = 1
    PLANE = 2
    CIRCLE = 3
    SPHERE = 4
    CYLINDER = 5


ZELM_MEASURE_FEATURE_POINT = ZelmMeasureFeatureKind.POINT
ZELM_MEASURE_FEATURE_LINE = ZelmMeasureFeatureKind.LINE
ZELM_MEASURE_FEATURE_PLANE = ZelmMeasureFeatureKind.PLANE
ZELM_MEASURE_FEATURE_CIRCLE = ZelmMeasureFeatureKind.CIRCLE
ZELM_MEASURE_FEATURE_SPHERE = ZelmMeasureFeatureKind.SPHERE
ZELM_MEASURE_FEATURE_CYLINDER = ZelmMeasureFeatureKind.CYLINDER


class ZelmMeasureFeatureStatus(IntEnum):
    """How a feature or a relation came out."""

    OK = 0
    FEW = 1
    UNDETERMINED = 2
    NOT_CONVERGED = 3
    NO_MAJORITY = 4
    SMALL = 5
    NO_PART = 6


ZELM_MEASURE_FEATURE_OK = ZelmMeasureFeatureStatus.OK
ZELM_MEASURE_FEATURE_FEW = ZelmMeasureFeatureStatus.FEW
ZELM_MEASURE_FEATURE_UNDETERMINED = ZelmMeasureFeatureStatus.UNDETERMINED
ZELM_MEASURE_FEATURE_NOT_CONVERGED = ZelmMeasureFeatureStatus.NOT_CONVERGED
ZELM_MEASURE_FEATURE_NO_MAJORITY = ZelmMeasureFeatureStatus.NO_MAJORITY
ZELM_MEASURE_FEATURE_SMALL = ZelmMeasureFeatureStatus.SMALL
ZELM_MEASURE_FEATURE_NO_PART = ZelmMeasureFeatureStatus.NO_PART


class ZelmMeasureRelationKind(IntEnum):
    """What is measured between two features."""

    DISTANCE = 1
    ANGLE = 2


ZELM_MEASURE_RELATION_DISTANCE = ZelmMeasureRelationKind.DISTANCE
ZELM_MEASURE_RELATION_ANGLE = ZelmMeasureRelationKind.ANGLE


class ZelmMeasureFileFormat(IntEnum):
    """What files of other programs are."""

    OPENCV = 0
    ROS = 1
    KALIBR = 2
    MATLAB = 3
    MRCAL = 4
    NUMPY = 5


ZELM_MEASURE_FILE_OPENCV = ZelmMeasureFileFormat.OPENCV
ZELM_MEASURE_FILE_ROS = ZelmMeasureFileFormat.ROS
ZELM_MEASURE_FILE_KALIBR = ZelmMeasureFileFormat.KALIBR
ZELM_MEASURE_FILE_MATLAB = ZelmMeasureFileFormat.MATLAB
ZELM_MEASURE_FILE_MRCAL = ZelmMeasureFileFormat.MRCAL
ZELM_MEASURE_FILE_NUMPY = ZelmMeasureFileFormat.NUMPY


class ZelmMeasureMatchStatus(IntEnum):
    """What became of a pixel whose counterpart was looked for."""

    OK = 0
    OUTSIDE = 1
    NO_TEXTURE = 2
    NO_MATCH = 3
    AMBIGUOUS = 4
    INCONSISTENT = 5


ZELM_MEASURE_MATCH_OK = ZelmMeasureMatchStatus.OK
ZELM_MEASURE_MATCH_OUTSIDE = ZelmMeasureMatchStatus.OUTSIDE
ZELM_MEASURE_MATCH_NO_TEXTURE = ZelmMeasureMatchStatus.NO_TEXTURE
ZELM_MEASURE_MATCH_NO_MATCH = ZelmMeasureMatchStatus.NO_MATCH
ZELM_MEASURE_MATCH_AMBIGUOUS = ZelmMeasureMatchStatus.AMBIGUOUS
ZELM_MEASURE_MATCH_INCONSISTENT = ZelmMeasureMatchStatus.INCONSISTENT


class ZelmMeasureViewFate(IntEnum):
    """How the two images of a view go together."""

    FITS = 0
    UNREAD = 1
    OTHER_IMAGE = 2
    COPY = 3
    STORED = 4
    EXCHANGED = 5
    OTHER_SESSION = 6
    NOTHING_FITS = 7
    UNKNOWN = 8
    SAME_IMAGES = 9


ZELM_MEASURE_VIEW_FITS = ZelmMeasureViewFate.FITS
ZELM_MEASURE_VIEW_UNREAD = ZelmMeasureViewFate.UNREAD
ZELM_MEASURE_VIEW_OTHER_IMAGE = ZelmMeasureViewFate.OTHER_IMAGE
ZELM_MEASURE_VIEW_COPY = ZelmMeasureViewFate.COPY
ZELM_MEASURE_VIEW_STORED = ZelmMeasureViewFate.STORED
ZELM_MEASURE_VIEW_EXCHANGED = ZelmMeasureViewFate.EXCHANGED
ZELM_MEASURE_VIEW_OTHER_SESSION = ZelmMeasureViewFate.OTHER_SESSION
ZELM_MEASURE_VIEW_NOTHING_FITS = ZelmMeasureViewFate.NOTHING_FITS
ZELM_MEASURE_VIEW_UNKNOWN = ZelmMeasureViewFate.UNKNOWN
ZELM_MEASURE_VIEW_SAME_IMAGES = ZelmMeasureViewFate.SAME_IMAGES


class ZelmMeasureSetCauseKind(IntEnum):
    """What is wrong with a set of images."""

    UNDETERMINED = 0
    NO_AGREEMENT = 1
    SHIFTED = 2
    EXCHANGED_VIEWS = 3
    OTHER_IMAGES = 4
    COPIES = 5
    TURNED = 6
    MIRRORED = 7
    SIDE_MIRRORED = 8
    EXCHANGED_IMAGES = 9
    OTHER_SESSION = 10
    NOTHING_FITS = 11
    SAME_VIEWS = 12
    SAME_IMAGES = 13


ZELM_MEASURE_SET_UNDETERMINED = ZelmMeasureSetCauseKind.UNDETERMINED
ZELM_MEASURE_SET_NO_AGREEMENT = ZelmMeasureSetCauseKind.NO_AGREEMENT
ZELM_MEASURE_SET_SHIFTED = ZelmMeasureSetCauseKind.SHIFTED
ZELM_MEASURE_SET_EXCHANGED_VIEWS = ZelmMeasureSetCauseKind.EXCHANGED_VIEWS
ZELM_MEASURE_SET_OTHER_IMAGES = ZelmMeasureSetCauseKind.OTHER_IMAGES
ZELM_MEASURE_SET_COPIES = ZelmMeasureSetCauseKind.COPIES
ZELM_MEASURE_SET_TURNED = ZelmMeasureSetCauseKind.TURNED
ZELM_MEASURE_SET_MIRRORED = ZelmMeasureSetCauseKind.MIRRORED
ZELM_MEASURE_SET_SIDE_MIRRORED = ZelmMeasureSetCauseKind.SIDE_MIRRORED
ZELM_MEASURE_SET_EXCHANGED_IMAGES = ZelmMeasureSetCauseKind.EXCHANGED_IMAGES
ZELM_MEASURE_SET_OTHER_SESSION = ZelmMeasureSetCauseKind.OTHER_SESSION
ZELM_MEASURE_SET_NOTHING_FITS = ZelmMeasureSetCauseKind.NOTHING_FITS
ZELM_MEASURE_SET_SAME_VIEWS = ZelmMeasureSetCauseKind.SAME_VIEWS
ZELM_MEASURE_SET_SAME_IMAGES = ZelmMeasureSetCauseKind.SAME_IMAGES


class ZelmMeasurePlanCriterion(IntEnum):
    """What a plan makes small."""

    WORST = 0
    RMS = 1


ZELM_MEASURE_PLAN_WORST = ZelmMeasurePlanCriterion.WORST
ZELM_MEASURE_PLAN_RMS = ZelmMeasurePlanCriterion.RMS


class ZelmMeasurePlateFlaw(IntEnum):
    """What a plate's design lacks. The last words say what `value` and `limit` of a finding are."""

    MARKER_COUNT = 1
    MARKER_OFF_GRID = 2
    MARKER_OUTSIDE = 3
    MARKER_RATIO = 4
    TOUCH = 5
    NEIGHBOUR_IN_REACH = 6
    HALF_TURN = 7
    MIRROR = 8
    FEW_DOTS = 9
    DOTS_SMALL = 10
    DOTS_LARGE = 11
    GAP_SMALL = 12
    AXES_DIFFER = 13
    FIELD_LARGE = 14
    FIELD_SMALL = 15


ZELM_MEASURE_PLATE_MARKER_COUNT = ZelmMeasurePlateFlaw.MARKER_COUNT
ZELM_MEASURE_PLATE_MARKER_OFF_GRID = ZelmMeasurePlateFlaw.MARKER_OFF_GRID
ZELM_MEASURE_PLATE_MARKER_OUTSIDE = ZelmMeasurePlateFlaw.MARKER_OUTSIDE
ZELM_MEASURE_PLATE_MARKER_RATIO = ZelmMeasurePlateFlaw.MARKER_RATIO
ZELM_MEASURE_PLATE_TOUCH = ZelmMeasurePlateFlaw.TOUCH
ZELM_MEASURE_PLATE_NEIGHBOUR_IN_REACH = ZelmMeasurePlateFlaw.NEIGHBOUR_IN_REACH
ZELM_MEASURE_PLATE_HALF_TURN = ZelmMeasurePlateFlaw.HALF_TURN
ZELM_MEASURE_PLATE_MIRROR = ZelmMeasurePlateFlaw.MIRROR
ZELM_MEASURE_PLATE_FEW_DOTS = ZelmMeasurePlateFlaw.FEW_DOTS
ZELM_MEASURE_PLATE_DOTS_SMALL = ZelmMeasurePlateFlaw.DOTS_SMALL
ZELM_MEASURE_PLATE_DOTS_LARGE = ZelmMeasurePlateFlaw.DOTS_LARGE
ZELM_MEASURE_PLATE_GAP_SMALL = ZelmMeasurePlateFlaw.GAP_SMALL
ZELM_MEASURE_PLATE_AXES_DIFFER = ZelmMeasurePlateFlaw.AXES_DIFFER
ZELM_MEASURE_PLATE_FIELD_LARGE = ZelmMeasurePlateFlaw.FIELD_LARGE
ZELM_MEASURE_PLATE_FIELD_SMALL = ZelmMeasurePlateFlaw.FIELD_SMALL


class ZelmMeasurePointViewStatus(IntEnum):
    """Whether a view tells where the target stands."""

    OK = 0
    FEW = 1
    LINE = 2


ZELM_MEASURE_POINT_VIEW_OK = ZelmMeasurePointViewStatus.OK
ZELM_MEASURE_POINT_VIEW_FEW = ZelmMeasurePointViewStatus.FEW
ZELM_MEASURE_POINT_VIEW_LINE = ZelmMeasurePointViewStatus.LINE


class ZelmMeasurePointStatus(IntEnum):
    """What became of a pair of pixels."""

    OK = 0
    BEHIND = 1
    DISTORTION = 2
    PARALLEL = 3
    MISMATCH = 4
    OUTSIDE = 5


ZELM_MEASURE_POINT_OK = ZelmMeasurePointStatus.OK
ZELM_MEASURE_POINT_BEHIND = ZelmMeasurePointStatus.BEHIND
ZELM_MEASURE_POINT_DISTORTION = ZelmMeasurePointStatus.DISTORTION
ZELM_MEASURE_POINT_PARALLEL = ZelmMeasurePointStatus.PARALLEL
ZELM_MEASURE_POINT_MISMATCH = ZelmMeasurePointStatus.MISMATCH
ZELM_MEASURE_POINT_OUTSIDE = ZelmMeasurePointStatus.OUTSIDE


class ZelmMeasureCircleStatus(IntEnum):
    """What became of a target."""

    OK = 0
    POINT_ALONE = 1
    MISSING_LEFT = 2
    MISSING_RIGHT = 3
    MISSING = 4
    BEHIND = 5
    DISTORTION = 6
    PARALLEL = 7
    MISMATCH = 8
    HIDDEN = 9


ZELM_MEASURE_CIRCLE_OK = ZelmMeasureCircleStatus.OK
ZELM_MEASURE_CIRCLE_POINT_ALONE = ZelmMeasureCircleStatus.POINT_ALONE
ZELM_MEASURE_CIRCLE_MISSING_LEFT = ZelmMeasureCircleStatus.MISSING_LEFT
ZELM_MEASURE_CIRCLE_MISSING_RIGHT = ZelmMeasureCircleStatus.MISSING_RIGHT
ZELM_MEASURE_CIRCLE_MISSING = ZelmMeasureCircleStatus.MISSING
ZELM_MEASURE_CIRCLE_BEHIND = ZelmMeasureCircleStatus.BEHIND
ZELM_MEASURE_CIRCLE_DISTORTION = ZelmMeasureCircleStatus.DISTORTION
ZELM_MEASURE_CIRCLE_PARALLEL = ZelmMeasureCircleStatus.PARALLEL
ZELM_MEASURE_CIRCLE_MISMATCH = ZelmMeasureCircleStatus.MISMATCH
ZELM_MEASURE_CIRCLE_HIDDEN = ZelmMeasureCircleStatus.HIDDEN


class ZelmMeasureParameter(IntEnum):
    """Places of the parameters of a rig in its covariance. A pixel is (fx x + skew y + cx, fy y +
    cy) of the distorted normalised coordinates (x, y). The three of a rotation are a small rotation
    vector d in the camera's frame: the true rotation is exp(d) R."""

    LEFT_FX = 0
    LEFT_SKEW = 1
    LEFT_FY = 2
    LEFT_CX = 3
    LEFT_CY = 4
    LEFT_K1 = 5
    LEFT_K2 = 6
    RIGHT_FX = 7
    RELATIVE_ROTATION = 14
    RELATIVE_TRANSLATION = 17
    FRAME_ROTATION = 20
    FRAME_TRANSLATION = 23
    PARAMETERS = 26


ZELM_MEASURE_LEFT_FX = ZelmMeasureParameter.LEFT_FX
ZELM_MEASURE_LEFT_SKEW = ZelmMeasureParameter.LEFT_SKEW
ZELM_MEASURE_LEFT_FY = ZelmMeasureParameter.LEFT_FY
ZELM_MEASURE_LEFT_CX = ZelmMeasureParameter.LEFT_CX
ZELM_MEASURE_LEFT_CY = ZelmMeasureParameter.LEFT_CY
ZELM_MEASURE_LEFT_K1 = ZelmMeasureParameter.LEFT_K1
ZELM_MEASURE_LEFT_K2 = ZelmMeasureParameter.LEFT_K2
ZELM_MEASURE_RIGHT_FX = ZelmMeasureParameter.RIGHT_FX
ZELM_MEASURE_RELATIVE_ROTATION = ZelmMeasureParameter.RELATIVE_ROTATION
ZELM_MEASURE_RELATIVE_TRANSLATION = ZelmMeasureParameter.RELATIVE_TRANSLATION
ZELM_MEASURE_FRAME_ROTATION = ZelmMeasureParameter.FRAME_ROTATION
ZELM_MEASURE_FRAME_TRANSLATION = ZelmMeasureParameter.FRAME_TRANSLATION
ZELM_MEASURE_PARAMETERS = ZelmMeasureParameter.PARAMETERS


class ZelmMeasureLengthStatus(IntEnum):
    """What became of a length."""

    OK = 0
    NO_POINT = 1
    SHORT = 2


ZELM_MEASURE_LENGTH_OK = ZelmMeasureLengthStatus.OK
ZELM_MEASURE_LENGTH_NO_POINT = ZelmMeasureLengthStatus.NO_POINT
ZELM_MEASURE_LENGTH_SHORT = ZelmMeasureLengthStatus.SHORT


class ZelmMeasureDriftPart(IntEnum):
    """What of the right camera may have moved since the calibration, in its own frame. Points alone
    show no more of a pair: what the left camera does shows as turns and shifts of the right one."""

    TURN_X = 0
    TURN_Y = 1
    TURN_Z = 2
    ACROSS = 3
    ALONG = 4
    PARTS = 5


ZELM_MEASURE_DRIFT_TURN_X = ZelmMeasureDriftPart.TURN_X
ZELM_MEASURE_DRIFT_TURN_Y = ZelmMeasureDriftPart.TURN_Y
ZELM_MEASURE_DRIFT_TURN_Z = ZelmMeasureDriftPart.TURN_Z
ZELM_MEASURE_DRIFT_ACROSS = ZelmMeasureDriftPart.ACROSS
ZELM_MEASURE_DRIFT_ALONG = ZelmMeasureDriftPart.ALONG
ZELM_MEASURE_DRIFT_PARTS = ZelmMeasureDriftPart.PARTS


@record
class Point2d(Record):
    """A point in the plane. Image points are in pixels, x to the right, y downwards; integer
    coordinates are pixel centres.

    Attributes
    ----------
    x : double
        to the right
    y : double
        downwards
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
    ]


@record
class Point2i(Record):
    """A point with integer coordinates.

    Attributes
    ----------
    x : int32_t
        column
    y : int32_t
        row
    """

    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
    ]


@record
class Point3d(Record):
    """A point in space.

    Attributes
    ----------
    x : double
        along the frame's first axis
    y : double
        along its second axis
    z : double
        along its third axis
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("z", c_double),
    ]


@record
class Line2d(Record):
    """The line a*x + b*y + c = 0, produced with a^2 + b^2 = 1. Functions that need the normal form
    make it themselves.

    Attributes
    ----------
    a : double
        normal along x
    b : double
        normal along y
    c : double
        signed distance of the origin, the normal being a unit vector
    """

    _fields_ = [
        ("a", c_double),
        ("b", c_double),
        ("c", c_double),
    ]


@record
class Circle2d(Record):
    """A circle.

    Attributes
    ----------
    x : double
        centre
    y : double
        centre
    r : double
        radius
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("r", c_double),
    ]


@record
class Ellipse2d(Record):
    """An ellipse by its geometry.

    Attributes
    ----------
    x : double
        centre
    y : double
        centre
    a : double
        semi-major axis, a >= b
    b : double
        semi-minor axis
    angle : double
        direction of the major axis in radians, in [-pi/2, pi/2]
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("a", c_double),
        ("b", c_double),
        ("angle", c_double),
    ]


@record
class Ellipsoid3d(Record):
    """An ellipsoid by its geometry.

    Attributes
    ----------
    x : double
        centre
    y : double
        centre
    z : double
        centre
    a : double
        largest semi-axis, a >= b >= c
    b : double
        middle semi-axis
    c : double
        smallest semi-axis
    azimuth : double
        of the largest axis, radians in [-pi, pi]
    elevation : double
        of the largest axis, radians in [-pi/2, pi/2]
    roll : double
        of the smallest axis about the largest, radians in [-pi/2, pi/2]
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("z", c_double),
        ("a", c_double),
        ("b", c_double),
        ("c", c_double),
        ("azimuth", c_double),
        ("elevation", c_double),
        ("roll", c_double),
    ]


@record
class ZelmRect(Record):
    """A rectangle by its top-left corner and size in pixels.

    Attributes
    ----------
    x : int32_t
        leftmost column
    y : int32_t
        topmost row
    width : int32_t
        columns
    height : int32_t
        rows
    """

    _fields_ = [
        ("x", c_int32),
        ("y", c_int32),
        ("width", c_int32),
        ("height", c_int32),
    ]


@record
class ZelmRect2(Record):
    """A rectangle by inclusive corners: x2 = x + width - 1, y2 = y + height - 1.

    Attributes
    ----------
    x1 : int32_t
        leftmost column
    y1 : int32_t
        topmost row
    x2 : int32_t
        rightmost column
    y2 : int32_t
        bottom row
    """

    _fields_ = [
        ("x1", c_int32),
        ("y1", c_int32),
        ("x2", c_int32),
        ("y2", c_int32),
    ]


@record
class ZelmImage(Record):
    """An 8-bit gray image without padding: pixel (x, y) is pixels[y * width + x]. The caller owns
    the pixels; the library never frees them.

    Attributes
    ----------
    pixels : uint8_t*
        width * height bytes
    width : int32_t
        pixels in a row, and bytes from one row to the next
    height : int32_t
        rows
    """

    _fields_ = [
        ("_pixels", c_void_p),
        ("width", c_int32),
        ("height", c_int32),
    ]
    _pointers_ = {
        "pixels": "u1",
    }


@record
class vImage_Buffer(Record):
    """A strided pixel buffer, laid out as the platform's record of the same name. Two layouts
    occur: Planar8 (one gray byte a pixel) and ARGB8888 (four bytes a pixel in memory order A, R, G,
    B).

    Attributes
    ----------
    data : void*
        first row
    height : size_t
        rows
    width : size_t
        pixels in a row
    rowBytes : size_t
        bytes from one row to the next
    """

    _fields_ = [
        ("_data", c_void_p),
        ("height", c_size_t),
        ("width", c_size_t),
        ("rowBytes", c_size_t),
    ]
    _pointers_ = {
        "data": "",
    }


@record
class ZelmBlob(Record):
    """One connected region of foreground pixels.

    Attributes
    ----------
    area : int32_t
        number of pixels
    cx : double
        centroid, image column
    cy : double
        centroid, image row
    left : int32_t
        smallest column
    top : int32_t
        smallest row
    right : int32_t
        largest column, inclusive
    bottom : int32_t
        largest row, inclusive
    width : int32_t
        right - left + 1
    height : int32_t
        bottom - top + 1
    angle : double
        principal axis in radians, -pi/2..pi/2, y downwards
    """

    _fields_ = [
        ("area", c_int32),
        ("cx", c_double),
        ("cy", c_double),
        ("left", c_int32),
        ("top", c_int32),
        ("right", c_int32),
        ("bottom", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("angle", c_double),
    ]


@record
class ZelmCameraIntrinsics(Record):
    """Intrinsic parameters of a camera: 22 doubles.

    Attributes
    ----------
    A : double[9]
        3x3 camera matrix, row-major; used for projection
    alpha : double
        horizontal focal length in pixels
    beta : double
        vertical focal length in pixels
    gamma : double
        skew between the image axes in pixels
    cx : double
        principal point, x, in pixels
    cy : double
        principal point, y, in pixels
    theta : double
        tilt of the image axes in radians; 0 for models 0 and 2
    k1 : double
        radial distortion coefficient of r^2
    k2 : double
        radial distortion coefficient of r^4
    reserved : double[5]
        carried along, never read or written
    """

    _fields_ = [
        ("_A", c_double * 9),
        ("alpha", c_double),
        ("beta", c_double),
        ("gamma", c_double),
        ("cx", c_double),
        ("cy", c_double),
        ("theta", c_double),
        ("k1", c_double),
        ("k2", c_double),
        ("_reserved", c_double * 5),
    ]


@record
class ZelmCameraExtrinsics(Record):
    """Pose of a camera relative to a calibration view: X_camera = R * X_world + t. 15 doubles.

    Attributes
    ----------
    R : double[9]
        3x3 rotation matrix, row-major
    t : double[3]
        translation, plate units
    r : double[3]
        rotation vector, axis * angle in radians
    """

    _fields_ = [
        ("_R", c_double * 9),
        ("_t", c_double * 3),
        ("_r", c_double * 3),
    ]


@record
class Zelm2ViewPtnEntry(Record):
    """The dots of one calibration view as one camera sees them.

    Attributes
    ----------
    count : int32_t
        number of dots
    plane : Point2d*
        count plane coordinates (z = 0), plate units
    image : Point2d*
        count image coordinates in pixels, in the same order
    """

    _fields_ = [
        ("count", c_int32),
        ("_plane", c_void_p),
        ("_image", c_void_p),
    ]
    _pointers_ = {
        "plane": "f8",
        "image": "f8",
    }


@record
class Line3d(Record):
    """A line in space: a point of it and its direction. Produced with a direction of length 1; any
    length from 1e-14 on is accepted.

    Attributes
    ----------
    x : double
        a point of the line
    y : double
        likewise
    z : double
        likewise
    dx : double
        direction
    dy : double
        likewise
    dz : double
        likewise
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("z", c_double),
        ("dx", c_double),
        ("dy", c_double),
        ("dz", c_double),
    ]


@record
class Plane3d(Record):
    """The plane a*x + b*y + c*z + d = 0. Produced with a normal (a, b, c) of length 1; any length
    from 1e-14 on is accepted.

    Attributes
    ----------
    a : double
        normal
    b : double
        likewise
    c : double
        likewise
    d : double
        offset: minus the distance from the origin along a unit normal
    """

    _fields_ = [
        ("a", c_double),
        ("b", c_double),
        ("c", c_double),
        ("d", c_double),
    ]


@record
class Zelm2ViewCameraDesc(Record):
    """Models and image sizes of the two cameras.

    Attributes
    ----------
    leftModel : int32_t
        0 perspective, 1 tilted, 2 parallel
    leftWidth : int32_t
        pixels, > 0
    leftHeight : int32_t
        pixels, > 0
    rightModel : int32_t
        0 perspective, 1 tilted, 2 parallel
    rightWidth : int32_t
        pixels, > 0
    rightHeight : int32_t
        pixels, > 0
    """

    _fields_ = [
        ("leftModel", c_int32),
        ("leftWidth", c_int32),
        ("leftHeight", c_int32),
        ("rightModel", c_int32),
        ("rightWidth", c_int32),
        ("rightHeight", c_int32),
    ]


@record
class Zelm2ViewPatternDesc(Record):
    """The plate: 96 bytes, fixed layout. Lengths are > 0 and in any one unit, the plate unit (for
    example millimetres). A grid of round dots of one size, of which some larger ones, the markers,
    fix origin and axes: the corner marker at the origin, one on the x axis and one on the y axis.
    The dot field is centred on the corner marker.

    Attributes
    ----------
    d0 : double
        extent of the dot field along x: dots up to d0 / 2 from the corner marker are kept
    d1 : double
        extent of the dot field along y
    d2 : double
        dot diameter
    d3 : double
        marker-dot diameter; markers are told from dots reliably from about 1.6 * d2 on
    d4 : double
        dot pitch along x
    d5 : double
        dot pitch along y
    d6 : double
        distance from the corner marker to the marker on the x axis, a multiple of d4
    d7 : double
        distance from the corner marker to the marker on the y axis, a multiple of d5
    markers : int32_t
        number of marker dots, > 0; 3 on every readable plate
    polarity : int32_t
        1: dots brighter than the plate, 0: darker
    minDotArea : int32_t
        smallest dot area in pixels
    reserved76 : int32_t
        carried along, not read
    minEdgeStrength : double
        smallest edge strength of the ray searches, gray levels a pixel
    minDots : int32_t
        smallest number of dots that an image must yield
    reserved92 : int32_t
        carried along, not read
    """

    _fields_ = [
        ("d0", c_double),
        ("d1", c_double),
        ("d2", c_double),
        ("d3", c_double),
        ("d4", c_double),
        ("d5", c_double),
        ("d6", c_double),
        ("d7", c_double),
        ("markers", c_int32),
        ("polarity", c_int32),
        ("minDotArea", c_int32),
        ("reserved76", c_int32),
        ("minEdgeStrength", c_double),
        ("minDots", c_int32),
        ("reserved92", c_int32),
    ]


@record
class Zelm2ViewCalibResult(Record):
    """What the calibration of a pair reports of each camera.

    Attributes
    ----------
    statusL : int32_t
        status of the left camera's estimation
    errorL : double
        its mean reprojection error in pixels
    statusR : int32_t
        status of the right camera's estimation
    errorR : double
        its mean reprojection error in pixels
    """

    _fields_ = [
        ("statusL", c_int32),
        ("errorL", c_double),
        ("statusR", c_int32),
        ("errorR", c_double),
    ]


@record
class Zelm2ViewEpiLine(Record):
    """A line of an image and its visible segment.

    Attributes
    ----------
    a : double
        a*x + b*y + c = 0 with a^2 + b^2 = 1, undistorted or rectified pixels
    b : double
        see a
    c : double
        see a
    x0 : double
        first end point: where the line crosses the image inset by one pixel; all four are 0 when it
        misses
    y0 : double
        see x0
    x1 : double
        second end point; equal to the first when the line only touches the inset image
    y1 : double
        see x1
    """

    _fields_ = [
        ("a", c_double),
        ("b", c_double),
        ("c", c_double),
        ("x0", c_double),
        ("y0", c_double),
        ("x1", c_double),
        ("y1", c_double),
    ]


@record
class Zelm2ViewHomParam(Record):
    """Parameters of a rectification.

    Attributes
    ----------
    px : double
        reference pixel (undistorted): the rectified image is shifted so that it lands on the image
        centre
    py : double
        see px
    s : double
        depth term: s times column 3 of a camera's projection matrix is added to column 3 of its
        rectifying matrix. In a pair with a parallel camera it moves the plane of view 0 to height
        s; between perspective cameras it scales a column of both matrices alike and changes nothing
    """

    _fields_ = [
        ("px", c_double),
        ("py", c_double),
        ("s", c_double),
    ]


@record
class ZelmCstmExpPrm(Record):
    """A record of two roles. As destination (tHomPrm): size of the expanded image, the point of the
    source camera's undistorted image that lands on its centre, and d. As expansion (tExpPrm): the
    magnification in dVal; the transfers use dVal alone, pure magnifications use all fields.

    Attributes
    ----------
    iWidth : int32_t
        width of the expanded image, >= 0
    iHeight : int32_t
        height of the expanded image, >= 0
    dX : double
        reference point, x
    dY : double
        reference point, y
    dVal : double
        expansion: magnification m, >= 1; destination: plane term d, see above
    """

    _fields_ = [
        ("iWidth", c_int32),
        ("iHeight", c_int32),
        ("dX", c_double),
        ("dY", c_double),
        ("dVal", c_double),
    ]


@record
class ZelmCstmHomMap(Record):
    """Where the pixels of an expanded image come from. The caller owns the two planes of floats.

    Attributes
    ----------
    iWidth : int32_t
        width of the maps, >= 0
    iHeight : int32_t
        height of the maps, >= 0
    mapX : float*
        source column of each pixel, -1 where there is no source
    mapXStride : int32_t
        bytes from one row of mapX to the next
    mapY : float*
        source row of each pixel, -1 where there is no source
    mapYStride : int32_t
        bytes from one row of mapY to the next
    minX : int32_t
        inclusive box of the pixels that have a source: (iWidth, iHeight, 0, 0) when none has
    minY : int32_t
        see minX
    maxX : int32_t
        see minX
    maxY : int32_t
        see minX
    """

    _fields_ = [
        ("iWidth", c_int32),
        ("iHeight", c_int32),
        ("_mapX", c_void_p),
        ("mapXStride", c_int32),
        ("_mapY", c_void_p),
        ("mapYStride", c_int32),
        ("minX", c_int32),
        ("minY", c_int32),
        ("maxX", c_int32),
        ("maxY", c_int32),
    ]
    _pointers_ = {
        "mapX": "f4",
        "mapY": "f4",
    }


@record
class ZelmCstmRefImg(Record):
    """A template. The caller owns the pixels and the mask; rows follow each other without padding.

    Attributes
    ----------
    width : int32_t
        size in pixels, >= 1
    height : int32_t
        see width
    pixels : uint8_t*
        width * height gray levels
    mask : uint8_t*
        width * height bytes, non-zero where a pixel takes part; NULL for all
    mean : double[3]
        mean gray level over the pixels of Quarter, Checker and Full, in this order
    sigma : double[3]
        standard deviation over the same pixels
    anchorX : double
        the template pixel that is laid on the line, 0 <= anchorX < width; rounded to a whole pixel
    anchorY : double
        see anchorX; 0 <= anchorY < height
    """

    _fields_ = [
        ("width", c_int32),
        ("height", c_int32),
        ("_pixels", c_void_p),
        ("_mask", c_void_p),
        ("_mean", c_double * 3),
        ("_sigma", c_double * 3),
        ("anchorX", c_double),
        ("anchorY", c_double),
    ]
    _pointers_ = {
        "pixels": "u1",
        "mask": "u1",
    }


@record
class ZelmCstmSearchPrm(Record):
    """What is searched, and how. The caller owns the pixels and the mask; rows follow each other
    without padding.

    Attributes
    ----------
    width : int32_t
        size of the image in pixels, >= 1
    height : int32_t
        see width
    pixels : uint8_t*
        width * height gray levels
    mask : uint8_t*
        width * height bytes, non-zero where a pixel takes part; NULL for all
    roiX : int32_t
        rectangle whose pixels on the line are searched, >= 0; windows may reach beyond it
    roiY : int32_t
        see roiX
    roiWidth : int32_t
        1 to width
    roiHeight : int32_t
        1 to height
    epiLine : Line2d
        the epipolar line in pixels of the image, any scale
    reserved : double[4]
        not read; room for the segment that Zelm2ViewEpiLine carries behind its line
    maxResults : int32_t
        room for results, >= 1
    minScore : double
        least score of a match; below 0 counts as 0
    minDistance : int32_t
        least distance between two matches in pixels; <= 0 suppresses only identical places
    mode : int32_t
        sampling of the coarse pass: ZELM_CSTM_...
    """

    _fields_ = [
        ("width", c_int32),
        ("height", c_int32),
        ("_pixels", c_void_p),
        ("_mask", c_void_p),
        ("roiX", c_int32),
        ("roiY", c_int32),
        ("roiWidth", c_int32),
        ("roiHeight", c_int32),
        ("epiLine", Line2d),
        ("_reserved", c_double * 4),
        ("maxResults", c_int32),
        ("minScore", c_double),
        ("minDistance", c_int32),
        ("mode", c_int32),
    ]
    _pointers_ = {
        "pixels": "u1",
        "mask": "u1",
    }


@record
class ZelmCstmMatch(Record):
    """A place where the template matches.

    Attributes
    ----------
    score : double
        correlation over all pixels of the window at the pixel of the peak; 1 for a perfect match
    x : double
        where the template's anchor comes to lie: a point of the line
    y : double
        see x
    """

    _fields_ = [
        ("score", c_double),
        ("x", c_double),
        ("y", c_double),
    ]


@record
class ZelmEdge1dParam(Record):
    """Parameters of the edge search.

    Attributes
    ----------
    halfWidth : int32_t
        the profile is averaged over +-halfWidth samples across the segment; usual 1
    contrastPercent : int32_t
        edge threshold in per cent of the profile's range; usual 30
    minContrast : int32_t
        lower bound of the edge threshold in gray levels; usual 5
    flatTolerance : int32_t
        neighbouring values that differ by at most this are flat; below 0 acts as 0; usual 1
    minFlatRun : int32_t
        flat steps that confirm a plateau; acts within 1..4096; usual 2
    filterSize : int32_t
        derivative filter of the sub-pixel step: 5 or 7, others find no edge; usual 7
    selector : int32_t
        selection rule 0..4
    """

    _fields_ = [
        ("halfWidth", c_int32),
        ("contrastPercent", c_int32),
        ("minContrast", c_int32),
        ("flatTolerance", c_int32),
        ("minFlatRun", c_int32),
        ("filterSize", c_int32),
        ("selector", c_int32),
    ]


@record
class ZelmMatchPose(Record):
    """A pose in the plane.

    Attributes
    ----------
    x : double
        position
    y : double
        position
    angle : double
        radians
    scale : double
        not read from the model pose; from mode 5 it may be negative
    """

    _fields_ = [
        ("x", c_double),
        ("y", c_double),
        ("angle", c_double),
        ("scale", c_double),
    ]


@record
class ZelmMeasureImage(Record):
    """A gray image in the caller's memory.

    Attributes
    ----------
    pixels : uint8_t*
        of the pixel (0, 0)
    width : int32_t
        pixels
    height : int32_t
        pixels
    stride : int64_t
        bytes from a row to the next; at least the width
    """

    _fields_ = [
        ("_pixels", c_void_p),
        ("width", c_int32),
        ("height", c_int32),
        ("stride", c_int64),
    ]
    _pointers_ = {
        "pixels": "u1",
    }


@record
class ZelmMeasureAdjustOptions(Record):
    """What is estimated besides both cameras, their relative pose and the poses of the plates. All
    0 is what most need.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    holdSkew : int32_t
        1: the image axes are orthogonal; 0: their skew is estimated
    squarePixels : int32_t
        1: both focal lengths of a camera are one; 0: each for itself
    estimateDiameters : int32_t
        1: a factor of the diameter for each kind of dot, as print bleeds; 0: as on the plate
    estimateBow : int32_t
        1: the plate may be bent: z = b0 x^2 + b1 x y + b2 y^2; 0: it is flat
    reserved : int32_t
        0
    noise : double
        standard deviation of a dot's coordinate, 1e-6 to 100 pixels; 0: from the residuals
    placeCount : int64_t
        of measured dot positions; 0: all dots stand on the grid
    placeGrid : int32_t*
        2 a measured dot: column and row, counted from the corner marker
    places : double*
        3 a measured dot: its position on the plate, plate units
    """

    _fields_ = [
        ("size", c_int32),
        ("holdSkew", c_int32),
        ("squarePixels", c_int32),
        ("estimateDiameters", c_int32),
        ("estimateBow", c_int32),
        ("reserved", c_int32),
        ("noise", c_double),
        ("placeCount", c_int64),
        ("_placeGrid", c_void_p),
        ("_places", c_void_p),
    ]
    _pointers_ = {
        "placeGrid": "i4",
        "places": "f8",
    }


@record
class ZelmMeasureRefined(Record):
    """What became of the dots of an image that was shown once more.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    read : int32_t
        dots that the reader had found
    refined : int32_t
        of these, measured anew on their pixels
    refused : int32_t
        of these, without a centre that their pixels confirm; they take no part
    added : int32_t
        that the reader had not found and the pixels confirm
    reserved : int32_t
        0
    """

    _fields_ = [
        ("size", c_int32),
        ("read", c_int32),
        ("refined", c_int32),
        ("refused", c_int32),
        ("added", c_int32),
        ("reserved", c_int32),
    ]


@record
class ZelmMeasureAdjustSummary(Record):
    """How an adjustment came out.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    views : int32_t
        with those added
    viewsLeftOut : int32_t
        zelmMeasureAdjustView() tells why
    parameters : int32_t
        that were estimated
    dots : int64_t
        that take part
    outliers : int64_t
        that do not
    freedom : double
        coordinates less parameters
    chiSquare : double
        sum of the squared weighted residuals
    leftBefore : double
        RMS of a coordinate's residual at the start, left camera, pixels
    rightBefore : double
        likewise, right camera
    leftRms : double
        RMS of a coordinate's residual, left camera, pixels
    rightRms : double
        likewise, right camera
    leftNoise : double
        standard deviation beyond what the dots' pixels tell, left camera, pixels
    rightNoise : double
        likewise, right camera
    dotFactor : double
        of the diameter of the plain dots
    dotFactorSigma : double
        its standard deviation; 0: held
    markerFactor : double
        of the diameter of the markers
    markerFactorSigma : double
        its standard deviation; 0: held
    bow : double[3]
        of the plate, plate units at half the diagonal of the dot field
    bowSigma : double[3]
        their standard deviations; 0: held
    refinedDots : int32_t
        1: the dots are those measured anew; 0: the reader's
    reserved : int32_t
        0
    """

    _fields_ = [
        ("size", c_int32),
        ("views", c_int32),
        ("viewsLeftOut", c_int32),
        ("parameters", c_int32),
        ("dots", c_int64),
        ("outliers", c_int64),
        ("freedom", c_double),
        ("chiSquare", c_double),
        ("leftBefore", c_double),
        ("rightBefore", c_double),
        ("leftRms", c_double),
        ("rightRms", c_double),
        ("leftNoise", c_double),
        ("rightNoise", c_double),
        ("dotFactor", c_double),
        ("dotFactorSigma", c_double),
        ("markerFactor", c_double),
        ("markerFactorSigma", c_double),
        ("_bow", c_double * 3),
        ("_bowSigma", c_double * 3),
        ("refinedDots", c_int32),
        ("reserved", c_int32),
    ]


@record
class ZelmMeasureAdjustedDots(Record):
    """Dots of an image as the adjustment has them, in arrays of the caller's.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    capacity : int64_t
        dots that every array has room for
    grid : int32_t*
        2 a dot: column and row, counted from the corner marker; or NULL
    pixels : double*
        2 a dot: the measured centre of the ellipse; or NULL
    centres : double*
        2 a dot: the image of the dot's own centre, free of the bias of ellipses; or NULL
    residuals : double*
        2 a dot: measured less predicted, pixels; or NULL
    covariances : double*
        3 a dot: xx, xy, yy with which it takes part, pixels^2; or NULL
    statuses : int32_t*
        ZelmMeasureAdjustedStatus, one a dot; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("capacity", c_int64),
        ("_grid", c_void_p),
        ("_pixels", c_void_p),
        ("_centres", c_void_p),
        ("_residuals", c_void_p),
        ("_covariances", c_void_p),
        ("_statuses", c_void_p),
    ]
    _pointers_ = {
        "grid": "i4",
        "pixels": "f8",
        "centres": "f8",
        "residuals": "f8",
        "covariances": "f8",
        "statuses": "i4",
    }


@record
class ZelmMeasureCheck(Record):
    """One check.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    kind : int32_t
        ZelmMeasureCheckKind
    verdict : int32_t
        ZelmMeasureCheckVerdict
    view : int32_t
        that it is about, from 0; -1: none
    side : int32_t
        'L' or 'R': the camera that it is about; 0: none
    reserved : int32_t
        0
    p : double
        probability that chance alone gives as much in any of the checks; 1 where undone
    value : double
        what was found, in the unit of the kind
    deviation : double
        its standard deviation
    limit : double
        size of the value from which on it matters; 0: unknown
    turnDegrees : double
        ZELM_MEASURE_CHECK_MOVED: how far the plate turned; else 0
    shift : double
        how far what was found moves points against one another at most, plate units
    text : char[512]
        a sentence for the report, without a line break: what is wrong, and what to do
    """

    _fields_ = [
        ("size", c_int32),
        ("kind", c_int32),
        ("verdict", c_int32),
        ("view", c_int32),
        ("side", c_int32),
        ("reserved", c_int32),
        ("p", c_double),
        ("value", c_double),
        ("deviation", c_double),
        ("limit", c_double),
        ("turnDegrees", c_double),
        ("shift", c_double),
        ("text", c_char * 512),
    ]


@record
class ZelmMeasureCompareOptions(Record):
    """What is compared.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    nearest : double
        of the volume, along the left camera's axis, plate units; 0: half the depth of the nearest
        plate that the first rig was calibrated from
    farthest : double
        likewise; 0: twice the depth of the farthest plate
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("nearest", c_double),
        ("farthest", c_double),
    ]


@record
class ZelmMeasureImageDifference(Record):
    """How far the second calibration of a camera images the same directions from where the first
    one does.

    Attributes
    ----------
    rms : double
        pixels, over the image, after the turn
    worst : double
        pixels
    worstAt : double[2]
        the raw pixel of the first calibration where it is worst
    unturned : double
        pixels: RMS of the two cameras' own frames laid on each other, before the turn
    turn : double[3]
        the rotation vector, radians, that brings the directions closest: the first one's frame to
        the second one's. A principal point that moves is mostly this
    """

    _fields_ = [
        ("rms", c_double),
        ("worst", c_double),
        ("_worstAt", c_double * 2),
        ("unturned", c_double),
        ("_turn", c_double * 3),
    ]


@record
class ZelmMeasureVolumeDifference(Record):
    """How far lengths and places differ that are measured with both calibrations from the same
    pixels.

    Attributes
    ----------
    count : int64_t
        of points, all over the volume that both cameras see
    nearest : double
        depths of the volume, plate units
    farthest : double
        likewise
    rms : double
        of the points' distances in the left camera's frame, plate units
    worst : double
        likewise
    alignedRms : double
        after the rigid motion that brings the points closest, plate units
    alignedWorst : double
        likewise
    worstAt : double[3]
        the point, in the left camera's frame of the first rig, where it is worst when aligned
    scale : double
        by how much the second rig's lengths are longer in the mean; 0: as long
    lengthRms : double
        of the differences of lengths by the length, of at least 30 % of the volume's diagonal
    lengthWorst : double
        the largest such difference, by its length
    """

    _fields_ = [
        ("count", c_int64),
        ("nearest", c_double),
        ("farthest", c_double),
        ("rms", c_double),
        ("worst", c_double),
        ("alignedRms", c_double),
        ("alignedWorst", c_double),
        ("_worstAt", c_double * 3),
        ("scale", c_double),
        ("lengthRms", c_double),
        ("lengthWorst", c_double),
    ]


@record
class ZelmMeasureComparison(Record):
    """Two calibrations beside each other.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    covariances : int32_t
        of how many of the two rigs the covariance is known
    left : ZelmMeasureImageDifference
        of the left camera
    right : ZelmMeasureImageDifference
        of the right camera
    pairTurn : double[3]
        how the right camera of the second rig is turned against that of the first one as the left
        one sees it, once both cameras' own turns are taken out: rotation vector, radians
    pairShift : double[3]
        likewise its shift, plate units, in the right camera's frame
    baseline : double
        the second baseline less the first one, plate units
    volume : ZelmMeasureVolumeDifference
        of points and lengths
    chiSquare : double
        of the parameters' differences by the covariances that are known; 0: none
    freedom : int32_t
        its degrees of freedom: parameters that were estimated
    reserved : int32_t
        0
    probability : double
        that chance alone gives as much, when the two were calibrated from different images; 1
        without covariances
    """

    _fields_ = [
        ("size", c_int32),
        ("covariances", c_int32),
        ("left", ZelmMeasureImageDifference),
        ("right", ZelmMeasureImageDifference),
        ("_pairTurn", c_double * 3),
        ("_pairShift", c_double * 3),
        ("baseline", c_double),
        ("volume", ZelmMeasureVolumeDifference),
        ("chiSquare", c_double),
        ("freedom", c_int32),
        ("reserved", c_int32),
        ("probability", c_double),
    ]


@record
class ZelmMeasureSharpness(Record):
    """How sharp an image is at the edges of its dots. A lens out of focus blurs alike in all
    directions; what moves while the shutter is open is smeared along its way.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    dots : int32_t
        dots whose edges it rests on; 0: none could be measured, and all else is 0
    largest : double
        standard deviation of the point spread where it is widest, without the pixel's own square
    smallest : double
        and across that direction; pixels
    direction : double
        in which it is widest, radians from x towards y, -pi/2 to pi/2
    smear : double
        length of a straight smear that would make the largest of the smallest, pixels
    radius : double
        median of the dots', pixels
    inside : double
        median gray level in the dots
    outside : double
        median gray level around them
    noise : double
        root mean square of what the edges leave of the pixels, median, gray levels
    """

    _fields_ = [
        ("size", c_int32),
        ("dots", c_int32),
        ("largest", c_double),
        ("smallest", c_double),
        ("direction", c_double),
        ("smear", c_double),
        ("radius", c_double),
        ("inside", c_double),
        ("outside", c_double),
        ("noise", c_double),
    ]


@record
class ZelmMeasureSpots(Record):
    """The spots that were looked at. Arrays of the caller's with room for `capacity` spots; each
    may be NULL.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    capacity : int64_t
        spots that every array has room for
    centres : double*
        2 a spot, pixels
    axes : double*
        3 a spot: half axes of its ellipse, the long one first, pixels, and the direction of the
        long one, radians from x towards y
    strengths : double*
        weakest edge on 20 rays, gray levels a pixel; 0: on some ray there is none
    verdicts : int32_t*
        ZelmMeasureSpotVerdict
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("capacity", c_int64),
        ("_centres", c_void_p),
        ("_axes", c_void_p),
        ("_strengths", c_void_p),
        ("_verdicts", c_void_p),
    ]
    _pointers_ = {
        "centres": "f8",
        "axes": "f8",
        "strengths": "f8",
        "verdicts": "i4",
    }


@record
class ZelmMeasureImageDiagnosis(Record):
    """What an image of a plate shows, and what that means.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    cause : int32_t
        ZelmMeasureImageCause
    status : int32_t
        what zelmMeasurePlateDots() returns for the image
    read : int32_t
        dots that it reads, with a place on the grid
    spots : int32_t
        spots that were looked at
    dots : int32_t
        of these, how many stand in rows and columns
    columns : int32_t
        across which the dots spread,
    rows : int32_t
        and rows; which are the plate's columns is known from the markers alone
    expected : int32_t
        dots of the described field
    strong : int32_t
        dots whose edges are strong enough all round
    markers : int32_t
        dots of a marker's size
    markerColumns : int32_t
        pitches from corner to x marker; 0: not seen
    markerRows : int32_t
        and to the y marker
    sides : int32_t
        ZelmMeasureImageSide, where places of the field lie outside the image
    outside : int32_t
        such places
    hidden : int32_t
        places inside the image without a dot
    highlights : int32_t
        of these, how many are brighter than dots and ground
    darkLevel : int32_t
        gray level: 2 pixels in a thousand are darker,
    brightLevel : int32_t
        2 pixels in a thousand brighter
    oppositeDots : int32_t
        dots in rows and columns when dark and bright are exchanged
    region : ZelmRect
        about the dots; of no size where there are none
    saturated : double
        share of the pixels at the largest levels
    inside : double
        median gray level of the dots
    ground : double
        and of the ground around them
    noise : double
        standard deviation of gray levels
    radius : double
        median of the dots', pixels
    axisRatio : double
        their short axis over their long one: the cosine of the tilt
    largest : double
        blur as in ZelmMeasureSharpness; where no dots are seen, of the steepest edges
    smallest : double
        the smallest blur, pixels
    direction : double
        of the largest blur, as in ZelmMeasureSharpness
    smear : double
        length of a straight smear, pixels
    edgeStrength : double
        of such edges between these levels, as the reader sees them, gray levels a pixel
    dotRatio : double
        diameter of a dot over the pitch, mean of both axes; of the description: (d2/d4+d2/d5)/2
    markerRatio : double
        diameter of a marker over that of a dot; of the description: d3/d2
    """

    _fields_ = [
        ("size", c_int32),
        ("cause", c_int32),
        ("status", c_int32),
        ("read", c_int32),
        ("spots", c_int32),
        ("dots", c_int32),
        ("columns", c_int32),
        ("rows", c_int32),
        ("expected", c_int32),
        ("strong", c_int32),
        ("markers", c_int32),
        ("markerColumns", c_int32),
        ("markerRows", c_int32),
        ("sides", c_int32),
        ("outside", c_int32),
        ("hidden", c_int32),
        ("highlights", c_int32),
        ("darkLevel", c_int32),
        ("brightLevel", c_int32),
        ("oppositeDots", c_int32),
        ("region", ZelmRect),
        ("saturated", c_double),
        ("inside", c_double),
        ("ground", c_double),
        ("noise", c_double),
        ("radius", c_double),
        ("axisRatio", c_double),
        ("largest", c_double),
        ("smallest", c_double),
        ("direction", c_double),
        ("smear", c_double),
        ("edgeStrength", c_double),
        ("dotRatio", c_double),
        ("markerRatio", c_double),
    ]


@record
class ZelmMeasureFigures(Record):
    """Figures of distances.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    count : int64_t
        of the distances
    mean : double
        of the distances
    rms : double
        root of the mean square
    max : double
        the largest
    median : double
        half of them are less
    quantile95 : double
        95 % are less
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("count", c_int64),
        ("mean", c_double),
        ("rms", c_double),
        ("max", c_double),
        ("median", c_double),
        ("quantile95", c_double),
    ]


@record
class ZelmMeasureDots(Record):
    """Dots of an image, with the places that they have on the plate. Arrays of the caller's, with
    room for `capacity` dots.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    capacity : int64_t
        dots that every array has room for
    grid : int32_t*
        2 a dot: column and row, counted from the corner marker; or NULL
    plane : double*
        2 a dot: place on the plate, plate units; or NULL
    pixels : double*
        2 a dot: centre in the image, as taken; or NULL
    errors : double*
        2 a dot: centre less the projection of the place; or NULL. Of calibrated dots alone.
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("capacity", c_int64),
        ("_grid", c_void_p),
        ("_plane", c_void_p),
        ("_pixels", c_void_p),
        ("_errors", c_void_p),
    ]
    _pointers_ = {
        "grid": "i4",
        "plane": "f8",
        "pixels": "f8",
        "errors": "f8",
    }


@record
class ZelmMeasurePlateTraits(Record):
    """What an image of a plate that cannot be read shows.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    brightLevel : int32_t
        gray level that all but the brightest thousandth of the pixels stay within
    markerSized : int32_t
        spots of the size of a marker, beside dots of the usual size
    oppositeDots : int32_t
        dots that are read when dark and bright are exchanged; 0: none are
    """

    _fields_ = [
        ("size", c_int32),
        ("brightLevel", c_int32),
        ("markerSized", c_int32),
        ("oppositeDots", c_int32),
    ]


@record
class ZelmMeasureRefinedDots(Record):
    """Dots placed by all their pixels. Arrays of the caller's, one entry a dot unless said
    otherwise; each may be NULL. All but the statuses and flags are written for dots whose status is
    ZELM_MEASURE_DOT_OK alone.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasureDotStatus
    flags : int32_t*
        sums of ZelmMeasureDotFlag
    centres : double*
        2 a dot: of the ellipse of the outline, pixels
    covariances : double*
        3 a dot: xx, xy, yy of the centre, by the noise of its pixels, square pixels
    scales : double*
        the outline's size over the predicted one
    blurs : double*
        standard deviation of the point spread without the pixel's own square, pixels
    noises : double*
        root mean square of the residuals, gray levels
    levels : double*
        2 a dot: inside and outside at its centre, gray levels
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_flags", c_void_p),
        ("_centres", c_void_p),
        ("_covariances", c_void_p),
        ("_scales", c_void_p),
        ("_blurs", c_void_p),
        ("_noises", c_void_p),
        ("_levels", c_void_p),
    ]
    _pointers_ = {
        "statuses": "i4",
        "flags": "i4",
        "centres": "f8",
        "covariances": "f8",
        "scales": "f8",
        "blurs": "f8",
        "noises": "f8",
        "levels": "f8",
    }


@record
class ZelmMeasureFeaturePoints(Record):
    """Points of space that features are made of.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    count : int64_t
        of the points
    points : double*
        3 a point
    noise : double*
        6 a point: xx, xy, xz, yy, yz, zz of its own errors, which are independent from point to
        point; NULL: those that the noise of the rig's dots makes, else what residuals tell
    freedom : double
        degrees of freedom that `noise` was estimated from; 0: it is known
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("count", c_int64),
        ("_points", c_void_p),
        ("_noise", c_void_p),
        ("freedom", c_double),
    ]
    _pointers_ = {
        "points": "f8",
        "noise": "f8",
    }


@record
class ZelmMeasureFeature(Record):
    """A feature that is asked for.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    kind : int32_t
        ZelmMeasureFeatureKind
    robust : int32_t
        1: points that are far from what the majority tells are left out; 0: all count
    plain : int32_t
        1: all points weigh the same; 0: each by how well it is known across the feature
    count : int64_t
        of its points
    points : int64_t*
        their numbers, from 0, each once
    """

    _fields_ = [
        ("size", c_int32),
        ("kind", c_int32),
        ("robust", c_int32),
        ("plain", c_int32),
        ("count", c_int64),
        ("_points", c_void_p),
    ]
    _pointers_ = {
        "points": "i8",
    }


@record
class ZelmMeasureFeatureResult(Record):
    """A feature. The location is the mean point of a line, plane or cylinder, projected onto it,
    and the centre of a circle or sphere; the direction that of a line or an axis, or a normal, of
    unit length, its component of greatest size positive. What a kind does not have is 0.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    status : int32_t
        ZelmMeasureFeatureStatus
    known : int32_t
        1: deviations are known; 0: nothing tells them
    reserved : int32_t
        0
    used : int64_t
        points
    leftOut : int64_t
        points, by the robust fit
    values : double[7]
        x, y, z, direction x, y, z, radius
    noise : double[7]
        standard deviations by the points' own errors
    calibration : double[7]
        standard deviations by the calibration, which all points share
    deviations : double[7]
        by both together
    expanded : double[7]
        half widths of the intervals that hold the truth at 95 %
    rms : double
        of the distances of the points used
    form : double
        flatness of a plane, roundness of a circle, sphere or cylinder: greatest less least
        distance; straightness of a line: twice the greatest distance
    flatness : double
        of a circle: greatest less least distance from its plane
    worst : double
        distance of the point used that is farthest off
    worstPoint : int64_t
        its number
    misfit : double
        size of the residuals, in what `noise` makes them; 0: not known
    misfitChance : double
        probability that chance makes them as large; 1: not known
    freedom : double
        coordinates less parameters
    distances : double*
        [in] one for each of its points, written: signed where there are two sides; or NULL
    uses : int32_t*
        [in] one for each of its points, written: 1 used, 0 left out; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("status", c_int32),
        ("known", c_int32),
        ("reserved", c_int32),
        ("used", c_int64),
        ("leftOut", c_int64),
        ("_values", c_double * 7),
        ("_noise", c_double * 7),
        ("_calibration", c_double * 7),
        ("_deviations", c_double * 7),
        ("_expanded", c_double * 7),
        ("rms", c_double),
        ("form", c_double),
        ("flatness", c_double),
        ("worst", c_double),
        ("worstPoint", c_int64),
        ("misfit", c_double),
        ("misfitChance", c_double),
        ("freedom", c_double),
        ("_distances", c_void_p),
        ("_uses", c_void_p),
    ]
    _pointers_ = {
        "distances": "f8",
        "uses": "i4",
    }


@record
class ZelmMeasureRelation(Record):
    """A relation that is asked for.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    kind : int32_t
        ZelmMeasureRelationKind
    first : int64_t
        number of a feature
    second : int64_t
        number of another feature
    """

    _fields_ = [
        ("size", c_int32),
        ("kind", c_int32),
        ("first", c_int64),
        ("second", c_int64),
    ]


@record
class ZelmMeasureRelationResult(Record):
    """A relation. Features may share points: what they have in common is taken into account.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    status : int32_t
        ZelmMeasureFeatureStatus
    known : int32_t
        1: deviations are known; 0: nothing tells them
    reserved : int32_t
        0
    value : double
        distance or angle
    noise : double
        standard deviation by the points' own errors
    calibration : double
        standard deviation by the calibration
    deviation : double
        by both together
    expanded : double
        half the width of the interval that holds the truth at 95 %
    """

    _fields_ = [
        ("size", c_int32),
        ("status", c_int32),
        ("known", c_int32),
        ("reserved", c_int32),
        ("value", c_double),
        ("noise", c_double),
        ("calibration", c_double),
        ("deviation", c_double),
        ("expanded", c_double),
    ]


@record
class ZelmMeasureExportOptions(Record):
    """What is written.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    format : int32_t
        ZelmMeasureFileFormat
    metres : double
        in a plate unit, for ROS, Kalibr and mrcal, which count in metres; 0: 0.001
    """

    _fields_ = [
        ("size", c_int32),
        ("format", c_int32),
        ("metres", c_double),
    ]


@record
class ZelmMeasureExportLoss(Record):
    """What a format does not hold of a rig.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    frame : int32_t
        1: the frame of the plate of view 0; points are then in the left camera's frame
    covariance : int32_t
        1: the covariance that the rig has
    views : int32_t
        number of poses of views that are lost: all but that of view 0
    skewLeft : double
        pixels: how far the left camera's skew moves a pixel at most, where its readers ignore skew
    skewRight : double
        the same of the right one
    """

    _fields_ = [
        ("size", c_int32),
        ("frame", c_int32),
        ("covariance", c_int32),
        ("views", c_int32),
        ("skewLeft", c_double),
        ("skewRight", c_double),
    ]


@record
class ZelmMeasureImportOptions(Record):
    """What is read.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    format : int32_t
        ZelmMeasureFileFormat
    metres : double
        as in ZelmMeasureExportOptions
    leftWidth : int32_t
        of the left images, pixels, for files that do not say it; 0: not known
    leftHeight : int32_t
        likewise
    rightWidth : int32_t
        likewise; 0: as left
    rightHeight : int32_t
        likewise; 0: as left
    tolerance : double
        pixels: how far the two coefficients of the library's lens may be from a lens of more, at
        any pixel; 0: 0.05
    """

    _fields_ = [
        ("size", c_int32),
        ("format", c_int32),
        ("metres", c_double),
        ("leftWidth", c_int32),
        ("leftHeight", c_int32),
        ("rightWidth", c_int32),
        ("rightHeight", c_int32),
        ("tolerance", c_double),
    ]


@record
class ZelmMeasureImported(Record):
    """What came of an import.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    isCameraFrame : int32_t
        1: the files have no frame of their own; points are in the left camera's frame
    leftLensWorst : double
        pixels: what the library's lens leaves of the file's at worst; 0: it is the same
    leftLensRms : double
        its RMS over the image, pixels
    rightLensWorst : double
        the same of the right camera
    rightLensRms : double
        likewise
    """

    _fields_ = [
        ("size", c_int32),
        ("isCameraFrame", c_int32),
        ("leftLensWorst", c_double),
        ("leftLensRms", c_double),
        ("rightLensWorst", c_double),
        ("rightLensRms", c_double),
    ]


@record
class ZelmMeasureDepthLimits(Record):
    """Distances along the axes of the cameras between which points are looked for, plate units.

    Attributes
    ----------
    leftMin : double
        along the left camera
    leftMax : double
        along the left camera
    rightMin : double
        along the right camera
    rightMax : double
        along the right camera
    """

    _fields_ = [
        ("leftMin", c_double),
        ("leftMax", c_double),
        ("rightMin", c_double),
        ("rightMax", c_double),
    ]


@record
class ZelmMeasureMatchOptions(Record):
    """How counterparts are looked for. zelmMeasureMatchDefaults() fills it.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    window : int32_t
        side of a window, pixels; odd, at least 5
    minScore : double
        correlation of a match, after its surface has been fitted, 0 to 1
    returnTolerance : double
        pixels by which the way back may miss the start
    precision : double
        pixels; the standard deviation that the texture near a pixel must promise
    noise : double
        standard deviation of a gray level; 0: as zelmMeasureNoise() tells of both images
    reach : double
        pixels from a point to those that may tell of its surface
    limits : ZelmMeasureDepthLimits
        between which points are looked for
    threads : int32_t
        0: as many as the machine runs at a time. The results are the same for any.
    reserved : int32_t
        0
    progress : ZelmMeasureProgress
        NULL: none
    context : void*
        for `progress`
    """

    _fields_ = [
        ("size", c_int32),
        ("window", c_int32),
        ("minScore", c_double),
        ("returnTolerance", c_double),
        ("precision", c_double),
        ("noise", c_double),
        ("reach", c_double),
        ("limits", ZelmMeasureDepthLimits),
        ("threads", c_int32),
        ("reserved", c_int32),
        ("progress", ZelmMeasureProgress),
        ("_context", c_void_p),
    ]
    _pointers_ = {
        "context": "",
    }


@record
class ZelmMeasureMatches(Record):
    """Counterparts and their points of space, in arrays of the caller's with room for all points. A
    point that is not OK has its status alone.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasureMatchStatus, one a point; or NULL
    pixels : double*
        2 a point: in the right image as taken; or NULL
    scores : double*
        1 a point: correlation of the two windows over the pixels that take part; or NULL
    positions : double*
        3 a point: in the frame of the plate of view 0, plate units; or NULL
    depths : double*
        1 a point: along the left camera's axis, plate units; or NULL
    deviations : double*
        1 a point: standard deviation to expect of the depth, plate units; or NULL
    errors : double*
        2 a point: pixels from both pixels to the point's projections; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_pixels", c_void_p),
        ("_scores", c_void_p),
        ("_positions", c_void_p),
        ("_depths", c_void_p),
        ("_deviations", c_void_p),
        ("_errors", c_void_p),
    ]
    _pointers_ = {
        "statuses": "i4",
        "pixels": "f8",
        "scores": "f8",
        "positions": "f8",
        "depths": "f8",
        "deviations": "f8",
        "errors": "f8",
    }


@record
class ZelmMeasureImageSet(Record):
    """The dots of all images of a set. An array of dots holds those of all views in turn.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    views : int32_t
        as many left as right images
    pattern : Zelm2ViewPatternDesc*
        the plate
    cameras : Zelm2ViewCameraDesc*
        two perspective cameras
    leftCounts : int64_t*
        dots of each left image; 0: it could not be read
    leftPlane : double*
        2 a dot: place on the plate, plate units
    leftPixels : double*
        2 a dot: centre in the image, as taken
    rightCounts : int64_t*
        likewise of the right images
    rightPlane : double*
        places on the plate of their dots
    rightPixels : double*
        centres of their dots in the images
    """

    _fields_ = [
        ("size", c_int32),
        ("views", c_int32),
        ("_pattern", c_void_p),
        ("_cameras", c_void_p),
        ("_leftCounts", c_void_p),
        ("_leftPlane", c_void_p),
        ("_leftPixels", c_void_p),
        ("_rightCounts", c_void_p),
        ("_rightPlane", c_void_p),
        ("_rightPixels", c_void_p),
    ]
    _pointers_ = {
        "pattern": "",
        "cameras": "",
        "leftCounts": "i8",
        "leftPlane": "f8",
        "leftPixels": "f8",
        "rightCounts": "i8",
        "rightPlane": "f8",
        "rightPixels": "f8",
    }


@record
class ZelmMeasurePairedView(Record):
    """What was found about a view. Numbers of images are -1 where there is none.

    Attributes
    ----------
    size : int32_t
        of this record, bytes; a multiple of 8
    fate : int32_t
        ZelmMeasureViewFate
    side : int32_t
        of a copy and of a stored image: 'L' or 'R'; else 0
    quarterTurns : int32_t
        of a stored image, clockwise, by which it is turned
    isMirrored : int32_t
        of a stored image: 1 when it was mirrored left to right before that
    leftFits : int32_t
        the right image that the left one fits
    rightFits : int32_t
        the left image that the right one fits
    copyOf : int32_t
        of a copy: the view that has the same image
    sameView : int32_t
        an earlier view that shows the plate in the same place, in both images
    cause : int32_t
        number of the cause that tells of it; -1: none, or that a whole side is mirrored
    misfit : double
        standard deviation of a coordinate of one image's dots where the other one's dots put the
        plate, pixels; negative where it is not known
    leftTilt : double
        of the plate against the left image plane, radians; negative where it is not known
    rightTilt : double
        likewise
    """

    _fields_ = [
        ("size", c_int32),
        ("fate", c_int32),
        ("side", c_int32),
        ("quarterTurns", c_int32),
        ("isMirrored", c_int32),
        ("leftFits", c_int32),
        ("rightFits", c_int32),
        ("copyOf", c_int32),
        ("sameView", c_int32),
        ("cause", c_int32),
        ("misfit", c_double),
        ("leftTilt", c_double),
        ("rightTilt", c_double),
    ]


@record
class ZelmMeasureSetCause(Record):
    """A cause, once for all views that it explains: those whose `cause` is its number.

    Attributes
    ----------
    size : int32_t
        of this record, bytes; a multiple of 8
    kind : int32_t
        ZelmMeasureSetCauseKind
    side : int32_t
        whose images are at fault: 'L' or 'R'; 0 where the dots do not tell
    offset : int32_t
        of a shift: the right image of view i fits the left one of view i + offset
    isCyclic : int32_t
        of a shift: 1 when it goes on at the other end of the list
    quarterTurns : int32_t
        of turned images, clockwise
    views : int32_t
        that it explains
    reserved : int32_t
        0
    turn : double
        of another session: the right camera's turn against the left one's, from that of the views
        which fit, radians; else 0
    shift : double
        likewise of its centre, plate units; the views of a session tell it roughly
    """

    _fields_ = [
        ("size", c_int32),
        ("kind", c_int32),
        ("side", c_int32),
        ("offset", c_int32),
        ("isCyclic", c_int32),
        ("quarterTurns", c_int32),
        ("views", c_int32),
        ("reserved", c_int32),
        ("turn", c_double),
        ("shift", c_double),
    ]


@record
class ZelmMeasurePairing(Record):
    """What was found about a set.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    causes : int32_t
        number of causes; 0: the images belong together
    agreeing : int32_t
        pairs of images that agree on one pair of cameras, put right where that is needed
    isDetermined : int32_t
        1: the images of each side determine their camera
    noise : double
        median misfit of what agrees, pixels
    limit : double
        misfit beyond which images do not fit, pixels
    """

    _fields_ = [
        ("size", c_int32),
        ("causes", c_int32),
        ("agreeing", c_int32),
        ("isDetermined", c_int32),
        ("noise", c_double),
        ("limit", c_double),
    ]


@record
class ZelmMeasurePitchRatio(Record):
    """The ratio of a plate's pitches as the images of one camera show it.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    isDetermined : int32_t
        1: the images tell the ratio; 0: they fit others about as well, or none
    ratio : double
        the pitch along x over that along y, as a multiple of the stated ratio; 0: none fits
    error : double
        mean reprojection error with this ratio, pixels
    stated : double
        mean reprojection error with the stated ratio, pixels; negative: nothing fits it
    """

    _fields_ = [
        ("size", c_int32),
        ("isDetermined", c_int32),
        ("ratio", c_double),
        ("error", c_double),
        ("stated", c_double),
    ]


@record
class ZelmMeasureCamera(Record):
    """One camera of a rig.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    model : int32_t
        0 perspective, 1 perspective with a tilted sensor, 2 parallel
    width : int32_t
        of its images, pixels
    height : int32_t
        of its images, pixels
    intrinsics : ZelmCameraIntrinsics
        camera matrix and lens distortion
    """

    _fields_ = [
        ("size", c_int32),
        ("model", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("intrinsics", ZelmCameraIntrinsics),
    ]


@record
class ZelmMeasureRelativePose(Record):
    """How the right camera stands to the left one in view 0: X_right = R X_left + t.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    R : double[9]
        row-major
    t : double[3]
        plate units
    baseline : double
        length of t, plate units
    convergence : double
        angle between the optical axes, radians
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_R", c_double * 9),
        ("_t", c_double * 3),
        ("baseline", c_double),
        ("convergence", c_double),
    ]


@record
class ZelmMeasurePlanOptions(Record):
    """What a plan is asked for. The volume is a box in the frame of the pair: its origin is midway
    between the centres of projection, z is the mean of the optical axes, x lies along the mean of
    the images' x axes, y points down.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    criterion : int32_t
        ZelmMeasurePlanCriterion
    centre : double[3]
        of the volume, plate units; its z is the distance from the pair
    extent : double[3]
        of the volume along x, y and z, plate units; 0 along z: a plane
    length : double
        of the test lengths, plate units; 0: 30 % of the volume's diagonal
    noise : double
        standard deviation of a coordinate of a plate's dot, pixels; 0: 0.02
    pointNoise : double
        the same of the points that will be measured; 0: as `noise`
    focusNear : double
        least depth before either camera that is sharp, plate units; 0: no limit
    focusFar : double
        greatest depth that is sharp; 0: no limit
    maxTilt : double
        of the plate against either camera's line of sight, radians; 0: 50 degrees
    holdSkew : int32_t
        1: the adjustment will not estimate the skews; 0: it will
    squarePixels : int32_t
        1: the adjustment will estimate one focal length a camera; 0: two
    """

    _fields_ = [
        ("size", c_int32),
        ("criterion", c_int32),
        ("_centre", c_double * 3),
        ("_extent", c_double * 3),
        ("length", c_double),
        ("noise", c_double),
        ("pointNoise", c_double),
        ("focusNear", c_double),
        ("focusFar", c_double),
        ("maxTilt", c_double),
        ("holdSkew", c_int32),
        ("squarePixels", c_int32),
    ]


@record
class ZelmMeasurePlanView(Record):
    """One view of a plan.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    taken : int32_t
        1: taken before; 0: planned
    position : double[3]
        of the plate's corner marker, the middle of its field, in the frame of the pair
    tilt : double
        of the plate against the pair's z axis, radians
    azimuth : double
        of the direction to which the plate's face is tilted, from x towards y, radians
    roll : double
        of the plate's x axis, as seen by the pair, from x towards y, radians
    tilts : double[2]
        against the lines of sight of the left and the right camera, radians
    fill : double[2]
        share of the left and of the right image that the plate's field takes
    dots : int32_t[2]
        of the field in the left and in the right image
    pose : ZelmCameraExtrinsics
        X_left = R X_plate + t
    worst : double
        predicted U95 of the worst length after this view and all before; 0: not determined
    rms : double
        root mean square of the lengths' U95, likewise
    """

    _fields_ = [
        ("size", c_int32),
        ("taken", c_int32),
        ("_position", c_double * 3),
        ("tilt", c_double),
        ("azimuth", c_double),
        ("roll", c_double),
        ("_tilts", c_double * 2),
        ("_fill", c_double * 2),
        ("_dots", c_int32 * 2),
        ("pose", ZelmCameraExtrinsics),
        ("worst", c_double),
        ("rms", c_double),
    ]


@record
class ZelmMeasurePlanFigures(Record):
    """What a plan's views give. U95 is half of the interval that holds 95 % of the errors of a
    length, plate units.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    views : int32_t
        taken and planned
    taken : int32_t
        of them
    lengths : int32_t
        test lengths: both ends lie in the volume and are seen by both cameras
    length : double
        of each, plate units
    seen : double
        share of the volume that both cameras see
    worst : double
        U95 of the worst length
    rms : double
        root mean square of the lengths' U95
    worstImage : double
        what a perfect calibration would leave of `worst`: the noise of the measured points
    rmsImage : double
        and of `rms`
    """

    _fields_ = [
        ("size", c_int32),
        ("views", c_int32),
        ("taken", c_int32),
        ("lengths", c_int32),
        ("length", c_double),
        ("seen", c_double),
        ("worst", c_double),
        ("rms", c_double),
        ("worstImage", c_double),
        ("rmsImage", c_double),
    ]


@record
class ZelmMeasurePlateFinding(Record):
    """One thing that a design lacks.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    flaw : int32_t
        ZelmMeasurePlateFlaw
    camera : int32_t
        index of the camera that it is about; -1: of none
    isFatal : int32_t
        1: such a plate is not read, or not for certain; 0: it is read, but less well
    value : double
        what the design has, as the flaw says
    limit : double
        what it should have at least, or at most
    """

    _fields_ = [
        ("size", c_int32),
        ("flaw", c_int32),
        ("camera", c_int32),
        ("isFatal", c_int32),
        ("value", c_double),
        ("limit", c_double),
    ]


@record
class ZelmMeasurePointCamera(Record):
    """A camera that is to be calibrated.

    Attributes
    ----------
    model : int32_t
        0 perspective, 1 perspective with a tilted sensor
    width : int32_t
        of its images, pixels; 0: there is no such camera
    height : int32_t
        of its images, pixels
    reserved : int32_t
        0
    """

    _fields_ = [
        ("model", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("reserved", c_int32),
    ]


@record
class ZelmMeasureTargetPoints(Record):
    """Points of a flat target, each as one camera sees it in one view.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    views : int32_t
        their number; view 0 gives the frame of the world
    count : int64_t
        of the points
    view : int32_t*
        of each point, from 0
    side : int32_t*
        of each point: 'L' or 'R', the camera that sees it
    grid : int32_t*
        2 a point, which name it: the same in all views and both cameras. Of a plate of dots: column
        and row, counted from the corner marker
    places : double*
        3 a point: its place on the target, plate units; NULL for a plate of dots
    pixels : double*
        2 a point: its raw pixel; of a dot the centre of its ellipse
    left : ZelmMeasurePointCamera
        the left camera
    right : ZelmMeasurePointCamera
        the right camera
    """

    _fields_ = [
        ("size", c_int32),
        ("views", c_int32),
        ("count", c_int64),
        ("_view", c_void_p),
        ("_side", c_void_p),
        ("_grid", c_void_p),
        ("_places", c_void_p),
        ("_pixels", c_void_p),
        ("left", ZelmMeasurePointCamera),
        ("right", ZelmMeasurePointCamera),
    ]
    _pointers_ = {
        "view": "i4",
        "side": "i4",
        "grid": "i4",
        "places": "f8",
        "pixels": "f8",
    }


@record
class ZelmMeasureAdjustedCamera(Record):
    """A camera as an adjustment has it.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    model : int32_t
        ZelmCameraModel
    width : int32_t
        of its images, pixels
    height : int32_t
        of its images, pixels
    intrinsics : ZelmCameraIntrinsics
        adjusted
    start : ZelmCameraIntrinsics
        before
    covariance : double[49]
        of fx, skew, fy, cx, cy, k1, k2: row-major; zeros for what is held
    noise : double
        standard deviation of a point's coordinate, pixels
    freedom : double
        degrees of freedom that it was estimated from; 0: it was known
    """

    _fields_ = [
        ("size", c_int32),
        ("model", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("intrinsics", ZelmCameraIntrinsics),
        ("start", ZelmCameraIntrinsics),
        ("_covariance", c_double * 49),
        ("noise", c_double),
        ("freedom", c_double),
    ]


@record
class ZelmMeasurePoints(Record):
    """Points of space, in arrays of the caller's with room for all pairs.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasurePointStatus, one a pair; or NULL
    positions : double*
        3 a pair: in the frame of the plate of view 0, plate units; or NULL
    errors : double*
        2 a pair: pixels from the left and the right pixel to the point's projection; or NULL
    angles : double*
        1 a pair: between the two rays at the point, radians; or NULL
    maxError : double
        pixels: more than this in the root sum of squares of both errors is a mismatch; 0: nothing
        is
    outside : int32_t
        1: pixels outside the images (-0.5 to W - 0.5, -0.5 to H - 0.5) are told; 0: taken as any
    reserved2 : int32_t
        0
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_positions", c_void_p),
        ("_errors", c_void_p),
        ("_angles", c_void_p),
        ("maxError", c_double),
        ("outside", c_int32),
        ("reserved2", c_int32),
    ]
    _pointers_ = {
        "statuses": "i4",
        "positions": "f8",
        "errors": "f8",
        "angles": "f8",
    }


@record
class ZelmMeasureRowOptions(Record):
    """What a row-aligned pair is to be like.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    width : int32_t
        of both images, pixels; 0: the larger of the cameras' widths
    height : int32_t
        of both images, pixels; 0: the larger of the cameras' heights
    zeroAtInfinity : int32_t
        not 0: one principal point for both, so that disparity 0 is at infinity; 0: each image is
        centred on what both cameras look at, where the disparity is then about 0
    focal : double
        pixels; 0: the mean of the cameras' four focal lengths, with one principal point so much
        less that what the images show stays in them
    nearest : double
        depth that disparities are told of, plate units; 0: half that of the nearest plate
    farthest : double
        likewise; 0: twice that of the farthest plate
    """

    _fields_ = [
        ("size", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("zeroAtInfinity", c_int32),
        ("focal", c_double),
        ("nearest", c_double),
        ("farthest", c_double),
    ]


@record
class ZelmMeasureRows(Record):
    """A row-aligned pair. X_aligned = R1 X_left; the right camera's coordinates are R2 X_right, and
    those of the left one less the baseline in x. A point's disparity is its column in the left
    image less that in the right one.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    width : int32_t
        of both images, pixels
    height : int32_t
        of both images, pixels
    reserved : int32_t
        0
    R1 : double[9]
        3 x 3, row-major: turns the left camera's frame into the aligned one
    R2 : double[9]
        3 x 3, row-major: the same for the right camera
    P1 : double[12]
        3 x 4, row-major: from the aligned left frame to the left image's pixels
    P2 : double[12]
        3 x 4, row-major: from the aligned left frame to the right image's pixels
    Q : double[16]
        4 x 4, row-major: (column, row, disparity, 1) of the left image to (X, Y, Z, W) of the
        aligned left frame, the point being (X, Y, Z) / W, plate units
    leftSeen : int32_t[4]
        x, y, width, height of the largest rectangle of pixels that the left camera all sees
    rightSeen : int32_t[4]
        the same of the right one
    disparities : double[2]
        pixels: the least and the greatest of the depths; both 0 where nothing tells depths
    """

    _fields_ = [
        ("size", c_int32),
        ("width", c_int32),
        ("height", c_int32),
        ("reserved", c_int32),
        ("_R1", c_double * 9),
        ("_R2", c_double * 9),
        ("_P1", c_double * 12),
        ("_P2", c_double * 12),
        ("_Q", c_double * 16),
        ("_leftSeen", c_int32 * 4),
        ("_rightSeen", c_int32 * 4),
        ("_disparities", c_double * 2),
    ]


@record
class ZelmMeasureTargets(Record):
    """Targets, in arrays of the caller's with room for all of them.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasureCircleStatus, one a target; or NULL
    centres : double*
        3 a target: in the frame of the plate of view 0, plate units; or NULL. Those of rays that
        meet behind a camera, too
    normals : double*
        3 a target: of unit length, towards the left camera; or NULL. Of circles alone
    radii : double*
        1 a target: plate units; or NULL. Of circles alone
    covariances : double*
        9 a target: of the centre, row-major, square plate units; or NULL. Of circles alone
    errors : double*
        2 a target: RMS distance in pixels between outline and image of the circle, left and right;
        of others from the ellipses' centres to the point's projections; or NULL
    angles : double*
        1 a target: between the two rays at the centre, radians; or NULL
    ellipses : double*
        4 a target: centres of the outlines' ellipses, x and y of the left and of the right image,
        pixels; or NULL. Also of targets without a point, where the dot was found
    shares : double*
        2 a target: the share of the outline that is seen, undisturbed to 3.5 pixels on either side,
        left and right, 0 to 1; or NULL. Written as `ellipses` are
    maxError : double
        pixels: more than this in the root sum of squares of both errors is a mismatch; 0: none
    minShare : double
        0 to 1: a point alone of which either image shows less of the outline is hidden; 0: none
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_centres", c_void_p),
        ("_normals", c_void_p),
        ("_radii", c_void_p),
        ("_covariances", c_void_p),
        ("_errors", c_void_p),
        ("_angles", c_void_p),
        ("_ellipses", c_void_p),
        ("_shares", c_void_p),
        ("maxError", c_double),
        ("minShare", c_double),
    ]
    _pointers_ = {
        "statuses": "i4",
        "centres": "f8",
        "normals": "f8",
        "radii": "f8",
        "covariances": "f8",
        "errors": "f8",
        "angles": "f8",
        "ellipses": "f8",
        "shares": "f8",
    }


@record
class ZelmMeasureCovariance(Record):
    """How well the parameters of a rig are known.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    noise : double
        standard deviation of a coordinate of the calibration's dots, pixels
    freedom : double
        degrees of freedom that the noise was estimated from, at least 1; 0: it was known
    matrix : double[676]
        26 x 26, row-major, order of ZelmMeasureParameter; rows of zeros: parameters that are held
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("noise", c_double),
        ("freedom", c_double),
        ("_matrix", c_double * 676),
    ]


@record
class ZelmMeasurePixelNoise(Record):
    """How well the pixels of points are known.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    sigma : double
        standard deviation of each coordinate, pixels; 0: that of the calibration's dots
    freedom : double
        degrees of freedom that it was estimated from, at least 1; 0: it is known. Of `sigma` 0 not
        used
    left : double*
        3 a pair: covariance of the left pixel xx, xy, yy, pixels^2; or NULL: `sigma` holds
    right : double*
        of the right pixel likewise
    points : double*
        6 a pair: covariance of the point by its images, where they tell it, as those of round
        targets do: xx, xy, xz, yy, yz, zz in the frame of the plate of view 0, plate units^2. Where
        the first number is NaN, and where this is NULL, the pixels tell it
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("sigma", c_double),
        ("freedom", c_double),
        ("_left", c_void_p),
        ("_right", c_void_p),
        ("_points", c_void_p),
    ]
    _pointers_ = {
        "left": "f8",
        "right": "f8",
        "points": "f8",
    }


@record
class ZelmMeasurePointCovariances(Record):
    """Covariances of points, in arrays of the caller's with room for all pairs. Six numbers of a
    covariance are xx, xy, xz, yy, yz, zz. The parts are independent: their sum is the point's
    covariance.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasurePointStatus, one a pair; or NULL
    positions : double*
        3 a pair: in the frame of the plate of view 0, plate units; or NULL
    image : double*
        6 a pair: by the noise of the pixels, plate units^2; or NULL
    calibration : double*
        6 a pair: by the calibration, plate units^2; or NULL
    depths : double*
        2 a pair: standard deviations of the depth along the left camera's axis, by the noise of the
        pixels and by the calibration, plate units; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_positions", c_void_p),
        ("_image", c_void_p),
        ("_calibration", c_void_p),
        ("_depths", c_void_p),
    ]
    _pointers_ = {
        "statuses": "i4",
        "positions": "f8",
        "image": "f8",
        "calibration": "f8",
        "depths": "f8",
    }


@record
class ZelmMeasureLengths(Record):
    """Lengths, in arrays of the caller's with room for all of them.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasureLengthStatus, one a length; or NULL
    lengths : double*
        plate units; or NULL
    image : double*
        standard deviations by the noise of the pixels, plate units; or NULL
    calibration : double*
        standard deviations by the calibration, plate units; or NULL
    deviations : double*
        standard deviations by both together, plate units; or NULL
    expanded : double*
        half widths of the intervals that hold the true length at 95 %, plate units; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_lengths", c_void_p),
        ("_image", c_void_p),
        ("_calibration", c_void_p),
        ("_deviations", c_void_p),
        ("_expanded", c_void_p),
    ]
    _pointers_ = {
        "statuses": "i4",
        "lengths": "f8",
        "image": "f8",
        "calibration": "f8",
        "deviations": "f8",
        "expanded": "f8",
    }


@record
class ZelmMeasurePlatePoints(Record):
    """The dots of a plate in space, in arrays of the caller's with room for all dots.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    statuses : int32_t*
        ZelmMeasurePointStatus, one a dot; or NULL
    positions : double*
        3 a dot: its centre in the frame of the plate of view 0, plate units; or NULL
    left : double*
        2 a dot: raw pixel of its centre in the left image, not of its ellipse's; or NULL
    right : double*
        2 a dot: the same in the right image; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_statuses", c_void_p),
        ("_positions", c_void_p),
        ("_left", c_void_p),
        ("_right", c_void_p),
    ]
    _pointers_ = {
        "statuses": "i4",
        "positions": "f8",
        "left": "f8",
        "right": "f8",
    }


@record
class ZelmMeasurePlateFit(Record):
    """How the measured dots of one view fit the plate.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    count : int64_t
        of dots that were triangulated
    R : double[9]
        row-major; X = R P + t moves a place P of the plate to the frame of view 0
    t : double[3]
        plate units
    rms : double
        of the dots' distances from their places, plate units
    flatnessRms : double
        of their distances from the best plane, plate units
    flatnessMax : double
        the largest of these
    scale : double
        by which the measured plate is too large, of 1: 1e-6 is a millionth
    scaleDeviation : double
        standard deviation of the scale, from the dots' distances from their places
    maxOffset : double
        pixels; the largest distance of an ellipse's centre from the image of the dot's centre
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("count", c_int64),
        ("_R", c_double * 9),
        ("_t", c_double * 3),
        ("rms", c_double),
        ("flatnessRms", c_double),
        ("flatnessMax", c_double),
        ("scale", c_double),
        ("scaleDeviation", c_double),
        ("maxOffset", c_double),
    ]


@record
class ZelmMeasureLengthErrors(Record):
    """Measured lengths, in arrays of the caller's with room for all.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    measured : double*
        1 a length: plate units; or NULL
    middles : double*
        3 a length: its middle in the frame of the plate of view 0; or NULL
    depths : double*
        1 a length: of its middle along the left camera's axis, plate units; or NULL
    regions : int32_t*
        1 a length: third of the left image that shows its middle, 0 to 8, row by row; or NULL
    slabs : int32_t*
        1 a length: third of the depths that holds its middle, 0 (near) to 2; or NULL
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("_measured", c_void_p),
        ("_middles", c_void_p),
        ("_depths", c_void_p),
        ("_regions", c_void_p),
        ("_slabs", c_void_p),
    ]
    _pointers_ = {
        "measured": "f8",
        "middles": "f8",
        "depths": "f8",
        "regions": "i4",
        "slabs": "i4",
    }


@record
class ZelmMeasureLengthFigures(Record):
    """Errors of lengths, measured less nominal.

    Attributes
    ----------
    count : int64_t
        of lengths; 0: the others are 0
    mean : double
        plate units
    rms : double
        plate units
    worst : double
        the largest by magnitude, with its sign
    """

    _fields_ = [
        ("count", c_int64),
        ("mean", c_double),
        ("rms", c_double),
        ("worst", c_double),
    ]


@record
class ZelmMeasureLengthSummary(Record):
    """What the errors of lengths tell together.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    all : ZelmMeasureLengthFigures
        of all lengths
    regions : ZelmMeasureLengthFigures[9]
        by third of the left image, row by row
    slabs : ZelmMeasureLengthFigures[3]
        by third of the depths, near to far
    depths : double[4]
        the limits of these, plate units
    minNominal : double
        the shortest, plate units
    maxNominal : double
        the longest, plate units
    worst : int64_t
        index of the length of the largest error
    scale : double
        by which all lengths are too long, of 1: 1e-6 is a millionth
    scaleDeviation : double
        its standard deviation, if the lengths' errors are independent; 0 of one length, which tells
        none
    rmsWithoutScale : double
        of the errors that remain when every length is divided by 1 + scale; that of all where every
        length was measured as 0
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("all", ZelmMeasureLengthFigures),
        ("regions", ZelmMeasureLengthFigures * 9),
        ("slabs", ZelmMeasureLengthFigures * 3),
        ("_depths", c_double * 4),
        ("minNominal", c_double),
        ("maxNominal", c_double),
        ("worst", c_int64),
        ("scale", c_double),
        ("scaleDeviation", c_double),
        ("rmsWithoutScale", c_double),
    ]


@record
class ZelmMeasureDriftOptions(Record):
    """How drift is looked for. What is 0 has the default.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    reserved : int32_t
        0
    noise : double
        standard deviation of a pixel's coordinates; 0: from what the five parts leave
    calibrationError : double
        pixels; RMS epipolar distance that is put down to the calibration itself, beside what the
        rig's covariance tells of it
    level : double
        probability of a false alarm that is accepted; 0: 0.0001
    """

    _fields_ = [
        ("size", c_int32),
        ("reserved", c_int32),
        ("noise", c_double),
        ("calibrationError", c_double),
        ("level", c_double),
    ]


@record
class ZelmMeasureDriftSingle(Record):
    """One part of the drift as the only one.

    Attributes
    ----------
    value : double
        radians or plate units
    deviation : double
        its standard deviation
    probability : double
        that chance alone makes the distances so much smaller by it
    rms : double
        epipolar distance that remains, pixels
    detectable : double
        the size of this part that these points would show 9 times out of 10
    """

    _fields_ = [
        ("value", c_double),
        ("deviation", c_double),
        ("probability", c_double),
        ("rms", c_double),
        ("detectable", c_double),
    ]


@record
class ZelmMeasureDrift(Record):
    """What pairs of pixels tell of drift.

    Attributes
    ----------
    size : int32_t
        of this record, bytes
    found : int32_t
        1: the right camera has moved; 0: nothing tells so
    best : int32_t
        ZelmMeasureDriftPart that explains the distances best, alone
    isSingle : int32_t
        1: this part alone leaves no more than noise
    alternatives : int32_t
        bit 1 << part of each other part that explains them about as well
    covariance : int32_t
        1: the rig's covariance was taken into account; 0: it has none
    used : int64_t
        pairs that took part
    wrong : int64_t
        pairs left out as wrong matches
    unusable : int64_t
        pairs with a pixel whose lens distortion cannot be removed
    noise : double
        standard deviation of a pixel's coordinates, given or estimated
    freedom : double
        degrees of freedom of its estimate; 0: it was given
    probability : double
        that chance alone makes what was found (all tests together)
    rms : double
        epipolar distance of the calibration, pixels
    rmsAll : double
        the same after all five parts together
    all : double[5]
        the five parts together, by ZelmMeasureDriftPart
    allDeviations : double[5]
        their standard deviations
    singles : ZelmMeasureDriftSingle[5]
        each alone
    across : double[3]
        unit vector of ZELM_MEASURE_DRIFT_ACROSS in the right camera's frame
    along : double[3]
        unit vector of ZELM_MEASURE_DRIFT_ALONG
    """

    _fields_ = [
        ("size", c_int32),
        ("found", c_int32),
        ("best", c_int32),
        ("isSingle", c_int32),
        ("alternatives", c_int32),
        ("covariance", c_int32),
        ("used", c_int64),
        ("wrong", c_int64),
        ("unusable", c_int64),
        ("noise", c_double),
        ("freedom", c_double),
        ("probability", c_double),
        ("rms", c_double),
        ("rmsAll", c_double),
        ("_all", c_double * 5),
        ("_allDeviations", c_double * 5),
        ("singles", ZelmMeasureDriftSingle * 5),
        ("_across", c_double * 3),
        ("_along", c_double * 3),
    ]


# Size and offsets of every record as the C compiler lays it out on 64-bit machines.
LAYOUT = {
    "Point2d": (16, 0, 8),
    "Point2i": (8, 0, 4),
    "Point3d": (24, 0, 8, 16),
    "Line2d": (24, 0, 8, 16),
    "Circle2d": (24, 0, 8, 16),
    "Ellipse2d": (40, 0, 8, 16, 24, 32),
    "Ellipsoid3d": (72, 0, 8, 16, 24, 32, 40, 48, 56, 64),
    "ZelmRect": (16, 0, 4, 8, 12),
    "ZelmRect2": (16, 0, 4, 8, 12),
    "ZelmImage": (16, 0, 8, 12),
    "vImage_Buffer": (32, 0, 8, 16, 24),
    "ZelmBlob": (56, 0, 8, 16, 24, 28, 32, 36, 40, 44, 48),
    "ZelmCameraIntrinsics": (176, 0, 72, 80, 88, 96, 104, 112, 120, 128, 136),
    "ZelmCameraExtrinsics": (120, 0, 72, 96),
    "Zelm2ViewPtnEntry": (24, 0, 8, 16),
    "Line3d": (48, 0, 8, 16, 24, 32, 40),
    "Plane3d": (32, 0, 8, 16, 24),
    "Zelm2ViewCameraDesc": (24, 0, 4, 8, 12, 16, 20),
    "Zelm2ViewPatternDesc": (96, 0, 8, 16, 24, 32, 40, 48, 56, 64, 68, 72, 76, 80, 88, 92),
    "Zelm2ViewCalibResult": (32, 0, 8, 16, 24),
    "Zelm2ViewEpiLine": (56, 0, 8, 16, 24, 32, 40, 48),
    "Zelm2ViewHomParam": (24, 0, 8, 16),
    "ZelmCstmExpPrm": (32, 0, 4, 8, 16, 24),
    "ZelmCstmHomMap": (56, 0, 4, 8, 16, 24, 32, 36, 40, 44, 48),
    "ZelmCstmRefImg": (88, 0, 4, 8, 16, 24, 48, 72, 80),
    "ZelmCstmSearchPrm": (120, 0, 4, 8, 16, 24, 28, 32, 36, 40, 64, 96, 104, 112, 116),
    "ZelmCstmMatch": (24, 0, 8, 16),
    "ZelmEdge1dParam": (28, 0, 4, 8, 12, 16, 20, 24),
    "ZelmMatchPose": (32, 0, 8, 16, 24),
    "ZelmMeasureImage": (24, 0, 8, 12, 16),
    "ZelmMeasureAdjustOptions": (56, 0, 4, 8, 12, 16, 20, 24, 32, 40, 48),
    "ZelmMeasureRefined": (24, 0, 4, 8, 12, 16, 20),
    "ZelmMeasureAdjustSummary": (184, 0, 4, 8, 12, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88, 96, 104,
    112, 120, 128, 152, 176, 180),
    "ZelmMeasureAdjustedDots": (64, 0, 4, 8, 16, 24, 32, 40, 48, 56),
    "ZelmMeasureCheck": (584, 0, 4, 8, 12, 16, 20, 24, 32, 40, 48, 56, 64, 72),
    "ZelmMeasureCompareOptions": (24, 0, 4, 8, 16),
    "ZelmMeasureImageDifference": (64, 0, 8, 16, 32, 40),
    "ZelmMeasureVolumeDifference": (104, 0, 8, 16, 24, 32, 40, 48, 56, 80, 88, 96),
    "ZelmMeasureComparison": (320, 0, 4, 8, 72, 136, 160, 184, 192, 296, 304, 308, 312),
    "ZelmMeasureSharpness": (72, 0, 4, 8, 16, 24, 32, 40, 48, 56, 64),
    "ZelmMeasureSpots": (48, 0, 4, 8, 16, 24, 32, 40),
    "ZelmMeasureImageDiagnosis": (200, 0, 4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 44, 48, 52, 56, 60,
    64, 68, 72, 76, 80, 96, 104, 112, 120, 128, 136, 144, 152, 160, 168, 176, 184, 192),
    "ZelmMeasureFigures": (56, 0, 4, 8, 16, 24, 32, 40, 48),
    "ZelmMeasureDots": (48, 0, 4, 8, 16, 24, 32, 40),
    "ZelmMeasurePlateTraits": (16, 0, 4, 8, 12),
    "ZelmMeasureRefinedDots": (72, 0, 4, 8, 16, 24, 32, 40, 48, 56, 64),
    "ZelmMeasureFeaturePoints": (40, 0, 4, 8, 16, 24, 32),
    "ZelmMeasureFeature": (32, 0, 4, 8, 12, 16, 24),
    "ZelmMeasureFeatureResult": (392, 0, 4, 8, 12, 16, 24, 32, 88, 144, 200, 256, 312, 320, 328,
    336, 344, 352, 360, 368, 376, 384),
    "ZelmMeasureRelation": (24, 0, 4, 8, 16),
    "ZelmMeasureRelationResult": (56, 0, 4, 8, 12, 16, 24, 32, 40, 48),
    "ZelmMeasureExportOptions": (16, 0, 4, 8),
    "ZelmMeasureExportLoss": (32, 0, 4, 8, 12, 16, 24),
    "ZelmMeasureImportOptions": (40, 0, 4, 8, 16, 20, 24, 28, 32),
    "ZelmMeasureImported": (40, 0, 4, 8, 16, 24, 32),
    "ZelmMeasureDepthLimits": (32, 0, 8, 16, 24),
    "ZelmMeasureMatchOptions": (104, 0, 4, 8, 16, 24, 32, 40, 48, 80, 84, 88, 96),
    "ZelmMeasureMatches": (64, 0, 4, 8, 16, 24, 32, 40, 48, 56),
    "ZelmMeasureImageSet": (72, 0, 4, 8, 16, 24, 32, 40, 48, 56, 64),
    "ZelmMeasurePairedView": (64, 0, 4, 8, 12, 16, 20, 24, 28, 32, 36, 40, 48, 56),
    "ZelmMeasureSetCause": (48, 0, 4, 8, 12, 16, 20, 24, 28, 32, 40),
    "ZelmMeasurePairing": (32, 0, 4, 8, 12, 16, 24),
    "ZelmMeasurePitchRatio": (32, 0, 4, 8, 16, 24),
    "ZelmMeasureCamera": (192, 0, 4, 8, 12, 16),
    "ZelmMeasureRelativePose": (120, 0, 4, 8, 80, 104, 112),
    "ZelmMeasurePlanOptions": (112, 0, 4, 8, 32, 56, 64, 72, 80, 88, 96, 104, 108),
    "ZelmMeasurePlanView": (232, 0, 4, 8, 32, 40, 48, 56, 72, 88, 96, 216, 224),
    "ZelmMeasurePlanFigures": (64, 0, 4, 8, 12, 16, 24, 32, 40, 48, 56),
    "ZelmMeasurePlateFinding": (32, 0, 4, 8, 12, 16, 24),
    "ZelmMeasurePointCamera": (16, 0, 4, 8, 12),
    "ZelmMeasureTargetPoints": (88, 0, 4, 8, 16, 24, 32, 40, 48, 56, 72),
    "ZelmMeasureAdjustedCamera": (776, 0, 4, 8, 12, 16, 192, 368, 760, 768),
    "ZelmMeasurePoints": (56, 0, 4, 8, 16, 24, 32, 40, 48, 52),
    "ZelmMeasureRowOptions": (40, 0, 4, 8, 12, 16, 24, 32),
    "ZelmMeasureRows": (528, 0, 4, 8, 12, 16, 88, 160, 256, 352, 480, 496, 512),
    "ZelmMeasureTargets": (96, 0, 4, 8, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88),
    "ZelmMeasureCovariance": (5432, 0, 4, 8, 16, 24),
    "ZelmMeasurePixelNoise": (48, 0, 4, 8, 16, 24, 32, 40),
    "ZelmMeasurePointCovariances": (48, 0, 4, 8, 16, 24, 32, 40),
    "ZelmMeasureLengths": (56, 0, 4, 8, 16, 24, 32, 40, 48),
    "ZelmMeasurePlatePoints": (40, 0, 4, 8, 16, 24, 32),
    "ZelmMeasurePlateFit": (160, 0, 4, 8, 16, 88, 112, 120, 128, 136, 144, 152),
    "ZelmMeasureLengthErrors": (48, 0, 4, 8, 16, 24, 32, 40),
    "ZelmMeasureLengthFigures": (32, 0, 8, 16, 24),
    "ZelmMeasureLengthSummary": (504, 0, 4, 8, 40, 328, 424, 456, 464, 472, 480, 488, 496),
    "ZelmMeasureDriftOptions": (32, 0, 4, 8, 16, 24),
    "ZelmMeasureDriftSingle": (40, 0, 8, 16, 24, 32),
    "ZelmMeasureDrift": (416, 0, 4, 8, 12, 16, 20, 24, 32, 40, 48, 56, 64, 72, 80, 88, 128, 168,
    368, 392),
}
