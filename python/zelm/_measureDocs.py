"""Docstrings of zelm.measure.

Written by tools/makeRecords.py from the C headers: change those, then run it.
"""

# What each status means.
STATUSES = {
    "ZELM_MEASURE_ERR_DATA": "The data do not allow what was asked.",
    "ZELM_MEASURE_ERR_CANCELLED": "The caller's progress function ended the work.",
}

# What each function says of its statuses.
WORDS = {
    "zelmMeasureAdjustOpen": {
        "ZELM_MEASURE_ERR_DATA": (
            "the rig has no dots; its two cameras are parallel, which their one view determines; the "
            "plate's dots are wider than their pitch; more than a quarter of a camera's dots lie off the "
            "plate's grid"
        ),
    },
    "zelmMeasureAdjustSolve": {
        "ZELM_MEASURE_ERR_DATA": (
            "the views do not determine the parameters, the error says which; a camera has too few dots "
            "that agree with the others; no rig sees the dots within 2 pixels (RMS of a coordinate)"
        ),
    },
    "zelmMeasureAdjustRefine": {
        "ZELM_MEASURE_ERR_DATA": "not solved yet, or the image has not the size of the camera's",
    },
    "zelmMeasureAdjustAddView": {
        "ZELM_MEASURE_ERR_DATA": "not solved yet, or an image has not the size of its camera's",
    },
    "zelmMeasureAdjustSummary": {
        "ZELM_MEASURE_ERR_DATA": "not solved yet",
    },
    "zelmMeasureAdjustDots": {
        "ZELM_MEASURE_ERR_DATA": "not solved since the dots were last changed",
    },
    "zelmMeasureAdjustRig": {
        "ZELM_MEASURE_ERR_DATA": "not solved since the dots were last changed",
    },
    "zelmMeasureAdjustChecks": {
        "ZELM_MEASURE_ERR_DATA": "not solved since the dots were last changed",
    },
    "zelmMeasureCompare": {
        "ZELM_MEASURE_ERR_DATA": (
            "with words in the first rig: a parallel camera, images of other sizes, cameras that see no "
            "volume together, or a volume without depths"
        ),
    },
    "zelmMeasureCompareImage": {
        "ZELM_MEASURE_ERR_DATA": (
            "with words in the first rig: a parallel camera, images of other sizes, cameras that see no "
            "volume together, or a volume without depths"
        ),
    },
    "zelmMeasureDiagnoseImage": {
        "ZELM_ERR_PARAM": "also for what the reader cannot mean",
    },
    "zelmMeasureFeatures": {
        "ZELM_ERR_PARAM": (
            "also points that are not finite, covariances that are not positive definite, a feature whose "
            "points are not there or stand twice, an angle of a point or sphere"
        ),
        "ZELM_MEASURE_ERR_DATA": "two parallel cameras, or a point that no camera of the rig can see",
    },
    "zelmMeasureExport": {
        "ZELM_ERR_PARAM": "a format, side or unit that cannot be meant, a capacity below the length",
        "ZELM_MEASURE_ERR_DATA": "for a rig with a parallel camera",
    },
    "zelmMeasureExportLoss": {
        "ZELM_ERR_PARAM": "a format, side or unit that cannot be meant, a capacity below the length",
        "ZELM_MEASURE_ERR_DATA": "for a rig with a parallel camera",
    },
    "zelmMeasureImport": {
        "ZELM_MEASURE_ERR_DATA": "the files are refused, or a lens that cannot be replaced to the tolerance",
    },
    "zelmMeasureMatch": {
        "ZELM_MEASURE_ERR_DATA": "the rig cannot triangulate",
    },
    "zelmMeasureMatchDense": {
        "ZELM_MEASURE_ERR_DATA": "the rig cannot triangulate",
    },
    "zelmMeasurePitchRatio": {
        "ZELM_MEASURE_ERR_DATA": "fewer than 3 views, a parallel camera",
    },
    "zelmMeasureRigOpen": {
        "ZELM_ERR_PARAM": "NULL or a handle that is not NULL",
        "ZELM_MEASURE_ERR_DATA": "the block is refused",
    },
    "zelmMeasureRigOfCalib": {
        "ZELM_ERR_PARAM": "NULL or a handle that is not NULL",
        "ZELM_MEASURE_ERR_DATA": "the block is refused",
    },
    "zelmMeasureRigRelativePose": {
        "ZELM_MEASURE_ERR_DATA": "for a rig with a parallel camera, which has no centre",
    },
    "zelmMeasureRigTilt": {
        "ZELM_MEASURE_ERR_DATA": "for a camera that is not parallel",
    },
    "zelmMeasurePlanOpen": {
        "ZELM_MEASURE_ERR_DATA": (
            "numbers that cannot be meant, a parallel camera, a volume of which both cameras see less "
            "than half, a plate that nowhere shows enough dots to both"
        ),
    },
    "zelmMeasurePlanOfRig": {
        "ZELM_MEASURE_ERR_DATA": (
            "numbers that cannot be meant, a parallel camera, a volume of which both cameras see less "
            "than half, a plate that nowhere shows enough dots to both"
        ),
    },
    "zelmMeasurePlanTake": {
        "ZELM_MEASURE_ERR_DATA": "R is no rotation, or neither camera sees a dot; then none is added",
    },
    "zelmMeasurePlanNext": {
        "ZELM_MEASURE_ERR_DATA": "every pose is in the plan",
    },
    "zelmMeasurePlanFewest": {
        "ZELM_MEASURE_ERR_DATA": "the tolerance cannot be met, and what would help",
    },
    "zelmMeasurePlanFigures": {
        "ZELM_MEASURE_ERR_DATA": (
            "the views do not determine a calibration, and which parameter they leave open"
        ),
    },
    "zelmMeasurePlateExpanded": {
        "ZELM_ERR_PARAM": "also numbers that are not finite, and a factor that is not positive",
    },
    "zelmMeasureAdjustOpenPoints": {
        "ZELM_MEASURE_ERR_DATA": (
            "a camera sees the target in fewer than 3 views well enough, or no view is seen by both; the "
            "target is not flat; the views do not determine a camera"
        ),
    },
    "zelmMeasureAdjustStartRig": {
        "ZELM_MEASURE_ERR_DATA": "one camera alone, or the two make no pair",
    },
    "zelmMeasureAdjustCamera": {
        "ZELM_ERR_PARAM": "also for a camera that is not there",
        "ZELM_MEASURE_ERR_DATA": "not solved since the dots were last changed",
    },
    "zelmMeasureAdjustPose": {
        "ZELM_ERR_PARAM": "also for a camera that is not there",
        "ZELM_MEASURE_ERR_DATA": "not solved since the dots were last changed",
    },
    "zelmMeasureAdjustEpipolar": {
        "ZELM_MEASURE_ERR_DATA": "one camera alone, or not solved since the dots were last changed",
    },
    "zelmMeasureTriangulate": {
        "ZELM_MEASURE_ERR_DATA": "for two parallel cameras, whose rays cannot be brought together",
    },
    "zelmMeasureTrueDepths": {
        "ZELM_MEASURE_ERR_DATA": "for a rig with a parallel camera",
    },
    "zelmMeasureAlignRows": {
        "ZELM_ERR_PARAM": "a size below 0 or above 32768, a focal length below 0",
        "ZELM_MEASURE_ERR_DATA": "for a parallel camera, or one that looks along the baseline",
    },
    "zelmMeasureAlignRowsMap": {
        "ZELM_ERR_PARAM": "a size below 0 or above 32768, a focal length below 0",
        "ZELM_MEASURE_ERR_DATA": "for a parallel camera, or one that looks along the baseline",
    },
    "zelmMeasureAlignRowsPoints": {
        "ZELM_ERR_PARAM": "a size below 0 or above 32768, a focal length below 0",
        "ZELM_MEASURE_ERR_DATA": "for a parallel camera, or one that looks along the baseline",
    },
    "zelmMeasureCircles": {
        "ZELM_MEASURE_ERR_DATA": "for two parallel cameras",
    },
    "zelmMeasureRigCovariance": {
        "ZELM_MEASURE_ERR_DATA": "for a rig that has none",
    },
    "zelmMeasureRigSetCovariance": {
        "ZELM_ERR_PARAM": "a record whose size is not that of the whole",
        "ZELM_MEASURE_ERR_DATA": "the covariance is refused, and the rig keeps what it had",
    },
    "zelmMeasurePointCovariance": {
        "ZELM_ERR_PARAM": (
            "also noise that is negative or not finite, and covariances that are not positive "
            "semi-definite"
        ),
        "ZELM_MEASURE_ERR_DATA": "the rig has no covariance, or two parallel cameras",
    },
    "zelmMeasureLengths": {
        "ZELM_ERR_PARAM": (
            "also noise that is negative or not finite, and covariances that are not positive "
            "semi-definite; also for an end that is no point's number"
        ),
        "ZELM_MEASURE_ERR_DATA": "the rig has no covariance, or two parallel cameras",
    },
    "zelmMeasureCovarianceSize": {
        "ZELM_MEASURE_ERR_DATA": "for a rig without a covariance",
    },
    "zelmMeasureCovarianceSave": {
        "ZELM_MEASURE_ERR_DATA": "for a rig without a covariance",
    },
    "zelmMeasureCovarianceLoad": {
        "ZELM_MEASURE_ERR_DATA": "the bytes are refused",
    },
    "zelmMeasureRefinePlate": {
        "ZELM_MEASURE_ERR_DATA": (
            "the dots do not place the plate, also when zelmCalibCalcHomography() does not settle, or two "
            "parallel cameras"
        ),
    },
    "zelmMeasurePlatePoints": {
        "ZELM_MEASURE_ERR_DATA": "too few points, or two parallel cameras",
    },
    "zelmMeasureLengthErrors": {
        "ZELM_ERR_PARAM": "also for an end that is no point or not finite",
    },
    "zelmMeasureDrift": {
        "ZELM_MEASURE_ERR_DATA": (
            "a parallel camera, too few pairs, pairs of one place only, or pairs that no drift explains"
        ),
    },
}

DOCS = {
    "zelmMeasureAdjustOpen": """\
Opens an adjustment.

Parameters
----------
rig : ZelmMeasureRig
    of zelmMeasureRigOfCalib(), with its dots; not needed later
pattern : Zelm2ViewPatternDesc
    the plate
options : ZelmMeasureAdjustOptions, or None, default None
    what is estimated; NULL: the defaults

Returns
-------
adjustment : ZelmMeasureAdjustment
    the handle, to be closed by zelmMeasureAdjustClose(); must be NULL before. Also when the rig is
    refused: such a handle holds the error text alone, and every other function refuses it

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the rig has no dots; its two cameras are parallel, which their one view
        determines; the plate's dots are wider than their pitch; more than a quarter of a camera's
        dots lie off the plate's grid

Notes
-----
In C: int32_t zelmMeasureAdjustOpen(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
const ZelmMeasureAdjustOptions* options, ZelmMeasureAdjustment** adjustment)
""",
    "zelmMeasureAdjustClose": """\
Ends an adjustment and sets the caller's handle to NULL; nothing for NULL.

Parameters
----------
adjustment : ZelmMeasureAdjustment, or None, default None
    the caller's handle

Notes
-----
In C: void zelmMeasureAdjustClose(ZelmMeasureAdjustment** adjustment)
""",
    "zelmMeasureAdjustError": """\
What was wrong with the last call that failed, in English, without a line break; empty when none
did.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    an adjustment, also a refused one

Returns
-------
text : str, or None
    the text; it belongs to the adjustment and holds until the next call

Notes
-----
In C: const char* zelmMeasureAdjustError(const ZelmMeasureAdjustment* adjustment)
""",
    "zelmMeasureAdjustSolve": """\
Finds the parameters of the least weighted squares of what the dots lack from their predictions: a
dot is predicted as the centre of the ellipse through its outline, seen through projection and lens
(Heikkila, 2000, gives the centre without the lens). Dots beyond five standard deviations, and views
whose dots lie four times as far off as the usual view's, take no part (robust start: Huber, 1964).
Solved with Ceres.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    the adjustment

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the views do not determine the parameters, the error says which; a camera
        has too few dots that agree with the others; no rig sees the dots within 2 pixels (RMS of a
        coordinate)

Notes
-----
Cost O(dots), some 10 to 30 passes.

In C: int32_t zelmMeasureAdjustSolve(ZelmMeasureAdjustment* adjustment)
""",
    "zelmMeasureAdjustRefine": """\
Measures the dots of an image anew, by the pixels of each and the shape that the present cameras
give it; looks for dots that the reader missed where they must be. Call zelmMeasureAdjustSolve()
before and after it.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0
image : array of uint8, shape (height, width)
    that the dots were read from

Returns
-------
refined : ZelmMeasureRefined
    what became of them; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: not solved yet, or the image has not the size of the camera's

Notes
-----
In C: int32_t zelmMeasureAdjustRefine(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
const ZelmMeasureImage* image, ZelmMeasureRefined* refined)
""",
    "zelmMeasureAdjustAddView": """\
Adds a view of which the reader could read one image only, or none of whose two it was shown: the
image that can be read places the plate, and the other's dots are looked for where they must be.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved
left : array of uint8, shape (height, width)
    image of the left camera
right : array of uint8, shape (height, width)
    image of the right camera

Returns
-------
zelmMeasureAdjustAddViewResult : named tuple of
    leftDots : int
        dots of the left image that take part; 0: it adds nothing
    rightDots : int
        likewise

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: not solved yet, or an image has not the size of its camera's

Notes
-----
In C: int32_t zelmMeasureAdjustAddView(ZelmMeasureAdjustment* adjustment, const ZelmMeasureImage*
left, const ZelmMeasureImage* right, int32_t* leftDots, int32_t* rightDots)
""",
    "zelmMeasureAdjustSummary": """\
How the last zelmMeasureAdjustSolve() came out.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved

Returns
-------
summary : ZelmMeasureAdjustSummary
    its figures

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: not solved yet

Notes
-----
In C: int32_t zelmMeasureAdjustSummary(ZelmMeasureAdjustment* adjustment, ZelmMeasureAdjustSummary*
summary)
""",
    "zelmMeasureAdjustView": """\
Why a view takes no part.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    the adjustment
view : int
    from 0

Returns
-------
words : str, or None
    the words, without a line break, empty for a view that takes part; they hold until the next
    call. NULL: there is no such view

Notes
-----
In C: const char* zelmMeasureAdjustView(const ZelmMeasureAdjustment* adjustment, int32_t view)
""",
    "zelmMeasureAdjustDots": """\
The dots of one image.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0

Returns
-------
dots : ZelmMeasureAdjustedDots
    the arrays that are written; NULL: dots are only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed

Notes
-----
In C: int32_t zelmMeasureAdjustDots(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
const ZelmMeasureAdjustedDots* dots, int64_t* count)
""",
    "zelmMeasureAdjustRig": """\
The adjusted rig: a calibration block like the core's own, with the covariance of its parameters,
and with the dots that took part, free of the bias of ellipses.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved

Returns
-------
rig : ZelmMeasureRig
    the handle, to be closed by zelmMeasureRigClose(); must be NULL before; NULL on failure

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed

Notes
-----
In C: int32_t zelmMeasureAdjustRig(ZelmMeasureAdjustment* adjustment, ZelmMeasureRig** rig)
""",
    "zelmMeasureAdjustChecks": """\
Checks a solved adjustment: whether halves of its views agree, and whether its residuals show what
its model lacks. Each possible flaw is tested by the score of its parameters (Rao, 1948) against
what the adjustment can absorb, with Fisher's F; flaws that are found are estimated along with the
next ones, so that one does not pass for another. The halves are compared by the test of Chow
(1960), to first order. A check alarms when chance alone would give as much in one adjustment in a
hundred, all checks together (Bonferroni). It is wrong only if it moves a point of the plates by
more than 1.96 standard deviations of that point triangulated from one dot; a diameter: by more than
3 %. No check can see a factor that all distances on the plate have in common.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved

Returns
-------
checks : array of ZelmMeasureCheck, shape (capacity,), as many entries as there are
    the checks, most of them by kind; the first one's field size must be set by the caller and is
    the distance of the records in bytes, a multiple of 8. NULL: they are only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed

Notes
-----
Cost O(dots).

In C: int32_t zelmMeasureAdjustChecks(ZelmMeasureAdjustment* adjustment, ZelmMeasureCheck* checks,
int64_t capacity, int64_t* count)
""",
    "zelmMeasureCompare": """\
Compares two calibrations of the same cameras.

Parameters
----------
first : ZelmMeasureRig
    a rig of two perspective cameras
second : ZelmMeasureRig
    another, with images of the same sizes
options : ZelmMeasureCompareOptions, or None, default None
    NULL: all 0

Returns
-------
comparison : ZelmMeasureComparison
    the differences, second minus first

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: with words in the first rig: a parallel camera, images of other sizes,
        cameras that see no volume together, or a volume without depths

Notes
-----
In C: int32_t zelmMeasureCompare(ZelmMeasureRig* first, ZelmMeasureRig* second, const
ZelmMeasureCompareOptions* options, ZelmMeasureComparison* comparison)
""",
    "zelmMeasureCompareImage": """\
The differences of one camera over its image, after the turn, for a picture.

Parameters
----------
first : ZelmMeasureRig
    as of zelmMeasureCompare()
second : ZelmMeasureRig
    likewise
side : 'L' or 'R'
    'L' or 'R'
pixels : array of float64, shape (count, 2)
    raw pixels of the first calibration, 2 doubles each

Returns
-------
differences : array of float64, shape (count, 2)
    2 doubles each: where the second one images the same direction, less the pixel; NaN where the
    first one's lens cannot be undone

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: with words in the first rig: a parallel camera, images of other sizes,
        cameras that see no volume together, or a volume without depths

Notes
-----
In C: int32_t zelmMeasureCompareImage(ZelmMeasureRig* first, ZelmMeasureRig* second, int32_t side,
int64_t count, const double* pixels, double* differences)
""",
    "zelmMeasureSharpness": """\
Measures how sharp an image of a plate is. Each dot is fitted by an ellipse between two gray levels,
blurred by a normal point spread that differs by direction; what counts is the median over the dots.
Rendered plates with dots of radius 5 pixels and more show blurs from 0.5 pixel to a third of the
radius to 5 %, alike in all directions to 5 %, and smears of 3 pixels to the radius to 12 % and 4
degrees.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
seeds : array of float64, shape (count, 2)
    pixels that the dots cover, 2 a dot: the centres of dots that were read, say
polarity : int, default 0
    0: dark dots on a bright ground; 1: bright ones

Returns
-------
sharpness : ZelmMeasureSharpness
    the figures

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost: a millisecond a dot, of at most 30 dots. Method: damped least squares (Levenberg 1944;
Marquardt 1963).

In C: int32_t zelmMeasureSharpness(const ZelmMeasureImage* image, int64_t count, const double*
seeds, int32_t polarity, ZelmMeasureSharpness* sharpness)
""",
    "zelmMeasureDiagnoseImage": """\
Tells why the plate in an image cannot be read, or why fewer dots are read than are described. The
spots of the image are put on a lattice without the description, which is then compared with it.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
pattern : Zelm2ViewPatternDesc
    the plate
region : ZelmRect, or None, default None
    the part of the image that holds the plate; NULL: all of it

Returns
-------
zelmMeasureDiagnoseImageResult : named tuple of
    diagnosis : ZelmMeasureImageDiagnosis
        cause and figures; those that cannot be told are 0
    spots : ZelmMeasureSpots
        the arrays that are written, dots first; NULL: none

Raises
------
ZelmError
    ZELM_ERR_PARAM: also for what the reader cannot mean
    ZELM_ERR_MEMORY

Notes
-----
Cost: some 20 passes over the pixels and 20 edge searches a spot. What the causes rest on:
docs/diagnosis.md.

In C: int32_t zelmMeasureDiagnoseImage(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc*
pattern, const ZelmRect* region, ZelmMeasureImageDiagnosis* diagnosis, const ZelmMeasureSpots*
spots)
""",
    "zelmMeasureImageCauseName": """\
A cause as one word for programs, "out-of-focus".

Parameters
----------
cause : int
    ZelmMeasureImageCause

Returns
-------
word : str, or None
    the word, static; "unknown" for any other number

Notes
-----
In C: const char* zelmMeasureImageCauseName(int32_t cause)
""",
    "zelmMeasureFigures": """\
Figures of any distances; all 0 for none.

Parameters
----------
distances : array of float64, shape (count,)
    not negative; NaN counts as infinitely far

Returns
-------
figures : ZelmMeasureFigures
    their figures

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count log count).

In C: int32_t zelmMeasureFigures(int64_t count, const double* distances, ZelmMeasureFigures*
figures)
""",
    "zelmMeasureRigDots": """\
The dots of one view from which a rig was calibrated, and how far they are from their projections.

Parameters
----------
rig : ZelmMeasureRig
    of zelmMeasureRigOfCalib()
pattern : Zelm2ViewPatternDesc
    the plate
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0

Returns
-------
zelmMeasureRigDotsResult : named tuple of
    dots : ZelmMeasureDots
        the arrays that are written; NULL: dots are only counted
    found : int
        the number of dots read, of which all but damaged data have a place on the plate; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureRigDots(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, int32_t
side, int32_t view, const ZelmMeasureDots* dots, int64_t* placed, int64_t* found)
""",
    "zelmMeasureRigEpipolar": """\
Distances of the dot pairs of one view from each other's epipolar lines, undistorted pixels: two a
dot that both images show, in the left and in the right image in turn.

Parameters
----------
rig : ZelmMeasureRig
    of zelmMeasureRigOfCalib()
pattern : Zelm2ViewPatternDesc
    the plate
view : int
    from 0

Returns
-------
distances : array of float64, shape (capacity,), as many entries as there are
    pixels; NULL: they are only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureRigEpipolar(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
int32_t view, int64_t capacity, double* distances, int64_t* count)
""",
    "zelmMeasurePlateDots": """\
Reads the dots of a plate and puts them on its grid by the markers, which are told by their size.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
pattern : Zelm2ViewPatternDesc
    the plate
region : ZelmRect, or None, default None
    the part of the image that holds the plate; NULL: it is looked for

Returns
-------
zelmMeasurePlateDotsResult : named tuple of
    dots : ZelmMeasureDots
        the arrays that are written, in the order of the reader, all but `errors`; NULL: only counted
    found : int
        number of dots found; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasurePlateDots(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc*
pattern, const ZelmRect* region, const ZelmMeasureDots* dots, int64_t* placed, int64_t* found)
""",
    "zelmMeasurePlateTraits": """\
Traits of an image that tell why its plate cannot be read.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
pattern : Zelm2ViewPatternDesc
    the plate

Returns
-------
traits : ZelmMeasurePlateTraits
    what it shows

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasurePlateTraits(const ZelmMeasureImage* image, const Zelm2ViewPatternDesc*
pattern, ZelmMeasurePlateTraits* traits)
""",
    "zelmMeasureDotCentres": """\
The centres of single dots: of the ellipse through the outline of the dot that covers a pixel. A dot
of which up to 40 % of the outline is hidden is measured by the arc that is seen, less surely.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
seeds : array of float64, shape (count, 2)
    pixels that the dots cover, 2 a dot
polarity : int, default 0
    0: dark dots on a bright ground; 1: bright ones

Returns
-------
zelmMeasureDotCentresResult : named tuple of
    centres : array of float64, shape (count, 2)
        2 a dot; those of missing dots are not written. May be `seeds`
    statuses : array of int32, shape (count,)
        ZelmMeasureDotStatus, one a dot

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureDotCentres(const ZelmMeasureImage* image, int64_t count, const double*
seeds, int32_t polarity, double* centres, int32_t* statuses)
""",
    "zelmMeasureRefineDots": """\
Places dots of known shape by all pixels about their outlines: the most likely shift, size, blur and
gray levels, these linear inside and outside, in normal noise. Its precision is that of the
Cramer-Rao bound; the bias of edge-by-edge methods, and of light that falls off across a dot, is not
there. A dot is measured when its own pixels show it all along its outline, of which up to 40 % in
one arc may be hidden; never another one beside it.

Parameters
----------
image : array of uint8, shape (height, width)
    any size
shapes : array of float64, shape (count, 6)
    6 a dot: predicted centre x, y of the ellipse of its outline, pixels, right to 2 pixels or half
    the radius, whichever is more; and U, 2 x 2 row-major: the outline is the centre + U (cos, sin),
    right but for its scale, which may be 0.7 to 1.4
neighbours : array of float64, shape (count,), or None, default None
    from each centre to the nearest outline of another dot, pixels, 0 where it is not known;
polarity : int, default 0
    0: dark dots on a bright ground; 1: bright ones
dots : ZelmMeasureRefinedDots, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
dots : ZelmMeasureRefinedDots
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
NULL: none is known

Cost: of the pixels within some blurs of the outlines. Method: damped least squares (Levenberg 1944;
Marquardt 1963) of an edge blurred by a normal point spread and by the pixel, after Edgeworth
(1905).

In C: int32_t zelmMeasureRefineDots(const ZelmMeasureImage* image, int64_t count, const double*
shapes, const double* neighbours, int32_t polarity, const ZelmMeasureRefinedDots* dots)
""",
    "zelmMeasureFeatures": """\
Fits features to points and measures between them. A feature has the least squares of the orthogonal
distances of its points (Gauss-Newton with Levenberg's and Marquardt's damping on the distances
themselves), each over what is known of it along that distance. A robust fit begins with the feature
of a few points whose median squared distance is least (Rousseeuw, 1984) and keeps points within 3.5
standard deviations. Uncertainties are to first order: each point's own errors, and those of the
calibration, which move all points together and cancel in part. They say nothing of the form of the
thing: `misfit` tells when the points lie off the feature by more than their errors.

Parameters
----------
points : ZelmMeasureFeaturePoints
    the points
features : array of ZelmMeasureFeature, shape (featureCount,)
    what is asked for; the size of the first holds for all
rig : ZelmMeasureRig, or None, default None
    whose calibration the points come from, in its plate's frame: what its covariance makes
    uncertain; NULL, or without covariance: that part is 0
relations : array of ZelmMeasureRelation, shape (relationCount,), default none
    what is asked for; the size of the first holds for all; NULL with a count of 0

Returns
-------
zelmMeasureFeaturesResult : named tuple of
    results : array of ZelmMeasureFeatureResult, shape (featureCount,)
        one a feature; the size of the first is set by the caller and holds for all
    relationResults : array of ZelmMeasureRelationResult, shape (relationCount,)
        one a relation; the size of the first holds for all likewise

Raises
------
ZelmError
    ZELM_ERR_PARAM: also points that are not finite, covariances that are not positive definite, a
        feature whose points are not there or stand twice, an angle of a point or sphere
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: two parallel cameras, or a point that no camera of the rig can see

Notes
-----
Cost O(points), some 10 passes; a robust fit some 300.

In C: int32_t zelmMeasureFeatures(const ZelmMeasureFeaturePoints* points, ZelmMeasureRig* rig,
int64_t featureCount, const ZelmMeasureFeature* features, ZelmMeasureFeatureResult* results, int64_t
relationCount, const ZelmMeasureRelation* relations, ZelmMeasureRelationResult* relationResults)
""",
    "zelmMeasureExport": """\
Writes a rig of two perspective cameras as a file of another program. Tilted cameras are written by
their skew. Text has as many digits as bring every number back bit by bit.

Parameters
----------
rig : ZelmMeasureRig
    the rig
options : ZelmMeasureExportOptions
    the format
side : 'L' or 'R', default 0
    'L' or 'R' for formats with a file a camera; 0 for the others

Returns
-------
bytes : bytes
    the file; NULL to learn its length

Raises
------
ZelmError
    ZELM_ERR_PARAM: a format, side or unit that cannot be meant, a capacity below the length
    ZELM_MEASURE_ERR_DATA: for a rig with a parallel camera
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureExport(ZelmMeasureRig* rig, const ZelmMeasureExportOptions* options,
int32_t side, int64_t capacity, void* bytes, int64_t* length)
""",
    "zelmMeasureExportLoss": """\
What an export leaves behind.

Parameters
----------
rig : ZelmMeasureRig
    the rig
options : ZelmMeasureExportOptions
    the format

Returns
-------
loss : ZelmMeasureExportLoss
    what is lost

Raises
------
ZelmError
    ZELM_ERR_PARAM: a format, side or unit that cannot be meant, a capacity below the length
    ZELM_MEASURE_ERR_DATA: for a rig with a parallel camera
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureExportLoss(ZelmMeasureRig* rig, const ZelmMeasureExportOptions* options,
ZelmMeasureExportLoss* loss)
""",
    "zelmMeasureImport": """\
Makes a rig of files of another program. It has one pose a camera, no dots and no covariance, so
that nothing can be planned from its views, and depths have no limits of their own. A lens with
other terms than k1 and k2 is replaced by the library's camera, focal lengths, principal point and a
small turn included, that comes closest to it over the image (least squares of a grid of pixels).

Parameters
----------
options : ZelmMeasureImportOptions
    the format
files : sequence of bytes
    their bytes

Returns
-------
zelmMeasureImportResult : named tuple of
    rig : ZelmMeasureRig
        the handle, as of zelmMeasureRigOpen()
    imported : ZelmMeasureImported
        what came of it; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: the files are refused, or a lens that cannot be replaced to the tolerance
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureImport(const ZelmMeasureImportOptions* options, int32_t count, const void*
const* files, const int64_t* sizes, ZelmMeasureRig** rig, ZelmMeasureImported* imported)
""",
    "zelmMeasureMatchDefaults": """\
The options that hold where a user names none: a window of 21 pixels, a score of 0.8, and for each
perspective camera depths from half the distance of the nearest plate of the calibration to twice
that of the farthest.

Parameters
----------
rig : ZelmMeasureRig, or None, default None
    the rig; NULL: the options of any rig, without limits of depth

Returns
-------
options : ZelmMeasureMatchOptions
    the options

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasureMatchDefaults(const ZelmMeasureRig* rig, ZelmMeasureMatchOptions* options)
""",
    "zelmMeasureNoise": """\
The standard deviation of the noise of an image, from what its smoothest parts show (Immerkaer,
1996).

Parameters
----------
image : array of uint8, shape (height, width)
    any size

Returns
-------
noise : float
    gray levels; at least 0.3, which is what rounding makes

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureNoise(const ZelmMeasureImage* image, double* noise)
""",
    "zelmMeasureOverlap": """\
Whether the epipolar line of any of the pixels crosses the other image within the limits.

Parameters
----------
rig : ZelmMeasureRig
    the rig
pixels : array of float64, shape (count, 2)
    of the left image, raw, 2 each
options : ZelmMeasureMatchOptions, default those of zelmMeasureMatchDefaults()
    with the limits of depth

Returns
-------
any : int
    1 or 0

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA

Notes
-----
In C: int32_t zelmMeasureOverlap(ZelmMeasureRig* rig, const ZelmMeasureMatchOptions* options,
int64_t count, const double* pixels, int32_t* any)
""",
    "zelmMeasureMatch": """\
Finds the counterparts of pixels of the left image in the right one and triangulates them. Each
pixel is looked for along its whole epipolar line by correlation; the best places are refined by
least-squares matching of a plane (Gruen, 1985) and must lead back. Pixels not found are tried again
where the surfaces of found neighbours lead; small groups that nothing around agrees with are left
out.

Parameters
----------
rig : ZelmMeasureRig
    the rig
left : array of uint8, shape (height, width)
    raw image of the size that was calibrated
right : array of uint8, shape (height, width)
    raw image of the size that was calibrated
pixels : array of float64, shape (count, 2)
    of the left image, raw, 2 each
options : ZelmMeasureMatchOptions, default those of zelmMeasureMatchDefaults()
    how to look
matches : ZelmMeasureMatches, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
matches : ZelmMeasureMatches
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the rig cannot triangulate
    ZELM_MEASURE_ERR_CANCELLED

Notes
-----
In C: int32_t zelmMeasureMatch(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const
ZelmMeasureImage* right, const ZelmMeasureMatchOptions* options, int64_t count, const double*
pixels, const ZelmMeasureMatches* matches)
""",
    "zelmMeasureMatchDense": """\
The same for every pixel of the left image, row by row: a grid of every fourth pixel as above, then
the pixels between on the surfaces found around them.

Parameters
----------
rig : ZelmMeasureRig
    the rig
left : array of uint8, shape (height, width)
    raw image of the size that was calibrated
right : array of uint8, shape (height, width)
    raw image of the size that was calibrated
options : ZelmMeasureMatchOptions, default those of zelmMeasureMatchDefaults()
    how to look
matches : ZelmMeasureMatches, written in place, default a new one with all arrays
    the arrays that are written, with room for width x height points

Returns
-------
matches : ZelmMeasureMatches
    the arrays that are written, with room for width x height points

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the rig cannot triangulate
    ZELM_MEASURE_ERR_CANCELLED

Notes
-----
In C: int32_t zelmMeasureMatchDense(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const
ZelmMeasureImage* right, const ZelmMeasureMatchOptions* options, const ZelmMeasureMatches* matches)
""",
    "zelmMeasureReadDots": """\
The dots of a view as zelm2ViewReadPtnImg() has read them, before any calibration.

Parameters
----------
calib : Zelm2ViewCalib
    an object that was opened for a calibration
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0

Returns
-------
dots : ZelmMeasureDots
    the arrays that are written, all but `errors`; NULL: dots are only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureReadDots(const Zelm2ViewCalib* calib, int32_t side, int32_t view, const
ZelmMeasureDots* dots, int64_t* count)
""",
    "zelmMeasurePairImages": """\
Judges whether the images of a set belong together, and says what is wrong where they do not. Every
image tells where the plate stood before its camera; all pairs of images that belong together agree
on one relative pose of the cameras. When the pairs as given do not, the relative pose is looked for
that most one-to-one combinations of any left with any right image share. What the rest shows is
explained by it: images of other views, copies, images that are turned or mirrored, left and right
exchanged. An explanation holds when an adjustment confirms it to the noise of the dots; images of
other views are one only where the views as given do not fit. Views whose two images show all dots
in the same places, to 0.1 pixel, are taken out before. A camera that is turned as a whole is no
fault. Which of two images of a list have changed places, or which side of a mirrored pair is the
mirrored one, dots alone may not tell: then both are named.

Parameters
----------
images : ZelmMeasureImageSet
    the dots of the set

Returns
-------
zelmMeasurePairImagesResult : named tuple of
    views : array of ZelmMeasurePairedView, shape (n,)
        a record for each view; the size of the first one holds for all; or NULL
    causes : array of ZelmMeasureSetCause, shape (n,)
        the causes, those that explain most views first; or NULL
    pairing : ZelmMeasurePairing
        the whole

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost: an adjustment of up to 24 dots an image for good sets; for others, some more, and the cube of
the number of views. Method: one vote for each combination, then least squares; the calibration of
each camera is that of zelmCalibCameraParam().

In C: int32_t zelmMeasurePairImages(const ZelmMeasureImageSet* images, ZelmMeasurePairedView* views,
ZelmMeasureSetCause* causes, int64_t capacity, ZelmMeasurePairing* pairing)
""",
    "zelmMeasurePitchRatio": """\
The ratio of the pitches with which the images of a plate fit one camera best. It serves where a
calibration fails: with another ratio than the plate's no camera sees all views as they are, and the
estimation may not converge. A factor that both pitches have in common cannot be seen.

Parameters
----------
calib : Zelm2ViewCalib
    an object with the dots of at least 3 views, whether it could be calibrated or not
side : 'L' or 'R'
    'L' or 'R': the camera, not a parallel one

Returns
-------
ratio : ZelmMeasurePitchRatio
    the ratio

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: fewer than 3 views, a parallel camera

Notes
-----
Cost: some 40 times that of zelmCalibCameraParam(). Method: in closed form from the homographies of
the views, for square pixels and a principal point in the middle (after Zhang, 2000); then by the
golden section (Kiefer, 1953) over the estimation with all its unknowns.

In C: int32_t zelmMeasurePitchRatio(const Zelm2ViewCalib* calib, int32_t side,
ZelmMeasurePitchRatio* ratio)
""",
    "zelmMeasureProject": """\
The raw pixels that show points of space, as of zelm2ViewChange3Dto2D(). They may lie outside the
image.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
points : array of float64, shape (count, 3)
    3 each: in the frame of the plate of view 0, plate units

Returns
-------
pixels : array of float64, shape (count, 2)
    2 each: raw; NaN of points that are not in front of a perspective camera, or beyond the fold of
    the lens

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count).

In C: int32_t zelmMeasureProject(ZelmMeasureRig* rig, int32_t side, int64_t count, const double*
points, double* pixels)
""",
    "zelmMeasureUndistort": """\
Raw pixels without the distortion of the lens, as of zelm2ViewUnDistortPoint().

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
raw : array of float64, shape (count, 2)
    raw pixels, 2 each

Returns
-------
undistorted : array of float64, shape (count, 2)
    2 each; may be `raw`. NaN of pixels too far outside for the distortion to be removed

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count).

In C: int32_t zelmMeasureUndistort(ZelmMeasureRig* rig, int32_t side, int64_t count, const double*
raw, double* undistorted)
""",
    "zelmMeasureDistort": """\
Undistorted pixels with the distortion of the lens, as of zelm2ViewDistortPoint().

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
undistorted : array of float64, shape (count, 2)
    2 each

Returns
-------
raw : array of float64, shape (count, 2)
    2 each; may be `undistorted`. NaN of pixels beyond the fold of the lens, which no raw pixel
    shows

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count).

In C: int32_t zelmMeasureDistort(ZelmMeasureRig* rig, int32_t side, int64_t count, const double*
undistorted, double* raw)
""",
    "zelmMeasureEpipolarLines": """\
The lines of the other camera's undistorted image on which the counterparts of raw pixels lie, as of
zelm2ViewCalcEpiLine().

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R': the camera of the pixels; the lines are the other one's
raw : array of float64, shape (count, 2)
    raw pixels, 2 each

Returns
-------
lines : array of float64, shape (count, 3)
    3 each: a, b, c of a x + b y + c = 0 with a^2 + b^2 = 1; NaN of pixels too far outside for the
    distortion to be removed, and of the epipole itself

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count).

In C: int32_t zelmMeasureEpipolarLines(ZelmMeasureRig* rig, int32_t side, int64_t count, const
double* raw, double* lines)
""",
    "zelmMeasureRigOpen": """\
Opens a rig from a calibration block, the bytes that zelm2ViewSaveCalibData() gives, once they prove
sound: the size fits the number of views, models and image sizes can be meant, all numbers are
finite, focal lengths are positive.

Parameters
----------
block : bytes
    the bytes; copied

Returns
-------
rig : ZelmMeasureRig
    the handle, to be closed by zelmMeasureRigClose(); must be NULL before. Also when the block is
    refused: such a handle holds the error text alone, and every other function refuses it

Raises
------
ZelmError
    ZELM_ERR_PARAM: NULL or a handle that is not NULL
    ZELM_MEASURE_ERR_DATA: the block is refused
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureRigOpen(const void* block, int64_t size, ZelmMeasureRig** rig)
""",
    "zelmMeasureRigOfCalib": """\
Opens a rig from a calibrated object of zelmLib.h, with the dots that it was calibrated from.

Parameters
----------
calib : Zelm2ViewCalib
    calibrated by zelm2ViewCalibCameraParam(), or loaded; copied

Returns
-------
rig : ZelmMeasureRig
    as of zelmMeasureRigOpen()

Raises
------
ZelmError
    ZELM_ERR_PARAM: NULL or a handle that is not NULL
    ZELM_MEASURE_ERR_DATA: the block is refused
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureRigOfCalib(const Zelm2ViewCalib* calib, ZelmMeasureRig** rig)
""",
    "zelmMeasureRigClose": """\
Ends a rig and sets the caller's handle to NULL; nothing for NULL.

Parameters
----------
rig : ZelmMeasureRig, or None, default None
    the caller's handle

Notes
-----
In C: void zelmMeasureRigClose(ZelmMeasureRig** rig)
""",
    "zelmMeasureRigError": """\
What was wrong with the last call on the rig that failed, in English, without a line break; empty
when none did.

Parameters
----------
rig : ZelmMeasureRig
    a rig, also a refused one

Returns
-------
text : str, or None
    the text; it belongs to the rig and holds until the next call

Notes
-----
In C: const char* zelmMeasureRigError(const ZelmMeasureRig* rig)
""",
    "zelmMeasureRigCalib": """\
The rig as an object of zelmLib.h, for the functions that only read its block.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
calib : Zelm2ViewCalib

Notes
-----
In C: const Zelm2ViewCalib* zelmMeasureRigCalib(const ZelmMeasureRig* rig)
""",
    "zelmMeasureRigViews": """\
The number of views that the rig was calibrated from.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
views : int
    their number

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasureRigViews(const ZelmMeasureRig* rig, int32_t* views)
""",
    "zelmMeasureRigCamera": """\
A camera of the rig.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'

Returns
-------
camera : ZelmMeasureCamera
    model, image size and intrinsic parameters

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasureRigCamera(const ZelmMeasureRig* rig, int32_t side, ZelmMeasureCamera*
camera)
""",
    "zelmMeasureRigPose": """\
The pose of a view: X_camera = R X_plate + t. A view that a parallel camera was not calibrated from
has zeros.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0

Returns
-------
pose : ZelmCameraExtrinsics
    the pose

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasureRigPose(const ZelmMeasureRig* rig, int32_t side, int32_t view,
ZelmCameraExtrinsics* pose)
""",
    "zelmMeasureRigFundamental": """\
The fundamental matrix: x_left' F x_right = 0 for undistorted pixels.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
F : array of float64, shape (3, 3)
    3 x 3, row-major

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasureRigFundamental(const ZelmMeasureRig* rig, double* F)
""",
    "zelmMeasureRigRelativePose": """\
How the right camera stands to the left one.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
pose : ZelmMeasureRelativePose
    rotation, translation, baseline and convergence angle

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: for a rig with a parallel camera, which has no centre

Notes
-----
In C: int32_t zelmMeasureRigRelativePose(ZelmMeasureRig* rig, ZelmMeasureRelativePose* pose)
""",
    "zelmMeasureRigTilt": """\
How far the plate of view 0 is turned against a parallel camera of square pixels. Such a camera
shortens what is tilted, so that a circle's axes are as one to the cosine; a calibration from a
tilted plate has wrong scales.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'

Returns
-------
tilt : float
    radians, 0 to pi / 2

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: for a camera that is not parallel

Notes
-----
In C: int32_t zelmMeasureRigTilt(ZelmMeasureRig* rig, int32_t side, double* tilt)
""",
    "zelmMeasureRigCentre": """\
The undistorted pixels of both cameras that a rectified pair is best centred on, so that the field
of view that the two share stays in sight: of the point that both cameras look at; where that is not
seen by both, of the origin of the plate of view 0; else the image centres.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
zelmMeasureRigCentreResult : named tuple of
    left : array of float64, shape (2,)
        x, y
    right : array of float64, shape (2,)
        x, y
    origin : int
        which of the three it is: 0, 1 or 2; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureRigCentre(const ZelmMeasureRig* rig, double* left, double* right, int32_t*
origin)
""",
    "zelmMeasurePlanOpen": """\
Opens a plan without views. Works out what each of some thousand poses of the plate in the volume
would tell, which takes about a second; the rest is quick.

Parameters
----------
left : ZelmMeasureCamera
    the left camera as it is expected to be; perspective or tilted
right : ZelmMeasureCamera
    the right camera
relative : ZelmMeasureRelativePose
    how the right camera stands to the left one: R and t, in plate units; the rest is not read
plate : Zelm2ViewPatternDesc
    lengths in plate units; minDots is the number of dots that each image has to show, half of the
    field's where it is 0
options : ZelmMeasurePlanOptions
    the volume, the noise, the limits

Returns
-------
plan : ZelmMeasurePlan
    the handle, to be closed by zelmMeasurePlanClose(); must be NULL before. Also when the data do
    not allow a plan: such a handle holds the error text alone, and every other function refuses it

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: numbers that cannot be meant, a parallel camera, a volume of which both
        cameras see less than half, a plate that nowhere shows enough dots to both

Notes
-----
In C: int32_t zelmMeasurePlanOpen(const ZelmMeasureCamera* left, const ZelmMeasureCamera* right,
const ZelmMeasureRelativePose* relative, const Zelm2ViewPatternDesc* plate, const
ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan)
""",
    "zelmMeasurePlanOfRig": """\
Opens a plan that goes on from a calibrated rig: the views that it was calibrated from are taken, of
each all dots that lie in the images.

Parameters
----------
rig : ZelmMeasureRig
    of two perspective or tilted cameras
plate : Zelm2ViewPatternDesc
    as of zelmMeasurePlanOpen()
options : ZelmMeasurePlanOptions
    as of zelmMeasurePlanOpen()

Returns
-------
plan : ZelmMeasurePlan
    as of zelmMeasurePlanOpen()

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: numbers that cannot be meant, a parallel camera, a volume of which both
        cameras see less than half, a plate that nowhere shows enough dots to both

Notes
-----
In C: int32_t zelmMeasurePlanOfRig(const ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* plate,
const ZelmMeasurePlanOptions* options, ZelmMeasurePlan** plan)
""",
    "zelmMeasurePlanClose": """\
Ends a plan and sets the caller's handle to NULL; nothing for NULL.

Parameters
----------
plan : ZelmMeasurePlan, or None, default None
    the caller's handle

Notes
-----
In C: void zelmMeasurePlanClose(ZelmMeasurePlan** plan)
""",
    "zelmMeasurePlanError": """\
What was wrong with the last call on the plan that failed, in English, without a line break; empty
when none did.

Parameters
----------
plan : ZelmMeasurePlan
    a plan, also a refused one

Returns
-------
text : str, or None
    the text; it belongs to the plan and holds until the next call

Notes
-----
In C: const char* zelmMeasurePlanError(const ZelmMeasurePlan* plan)
""",
    "zelmMeasurePlanTake": """\
Adds views that were taken; planned ones are dropped.

Parameters
----------
plan : ZelmMeasurePlan
    the plan
poses : array of ZelmCameraExtrinsics, shape (count,)
    X_left = R X_plate + t of each; r is not read

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: R is no rotation, or neither camera sees a dot; then none is added

Notes
-----
In C: int32_t zelmMeasurePlanTake(ZelmMeasurePlan* plan, int64_t count, const ZelmCameraExtrinsics*
poses)
""",
    "zelmMeasurePlanNext": """\
The view that makes the criterion least when it is added to those of the plan. The plan stays as it
is; hand the pose that was taken, this one or nearly, to zelmMeasurePlanTake(). Some 10 ms, however
many views there are.

Parameters
----------
plan : ZelmMeasurePlan
    the plan

Returns
-------
view : ZelmMeasurePlanView
    the view; where three views or fewer do not determine a calibration, worst and rms are 0

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: every pose is in the plan

Notes
-----
In C: int32_t zelmMeasurePlanNext(ZelmMeasurePlan* plan, ZelmMeasurePlanView* view)
""",
    "zelmMeasurePlanFewest": """\
Plans anew: adds views to the taken ones, one after the other the best, then exchanges single views
for better ones (Fedorov 1972; Mitchell 1974), until the tolerance is met with as few views as this
finds. Some 10 ms a view added and 10 to 40 ms a view exchanged.

Parameters
----------
plan : ZelmMeasurePlan
    the plan; stays as it is where this fails
tolerance : float
    that the criterion has to meet, plate units; 0: `most` views, as good as can be
most : int
    views, taken ones included; 3 to 1000

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the tolerance cannot be met, and what would help

Notes
-----
In C: int32_t zelmMeasurePlanFewest(ZelmMeasurePlan* plan, double tolerance, int32_t most)
""",
    "zelmMeasurePlanViews": """\
The number of views, the taken ones first.

Parameters
----------
plan : ZelmMeasurePlan
    the plan

Returns
-------
views : int
    their number

Raises
------
ZelmError
    ZELM_ERR_PARAM

Notes
-----
In C: int32_t zelmMeasurePlanViews(const ZelmMeasurePlan* plan, int32_t* views)
""",
    "zelmMeasurePlanView": """\
A view of the plan.

Parameters
----------
plan : ZelmMeasurePlan
    the plan
index : int
    from 0

Returns
-------
view : ZelmMeasurePlanView
    the view

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasurePlanView(ZelmMeasurePlan* plan, int32_t index, ZelmMeasurePlanView* view)
""",
    "zelmMeasurePlanFigures": """\
What the plan's views give.

Parameters
----------
plan : ZelmMeasurePlan
    the plan

Returns
-------
figures : ZelmMeasurePlanFigures
    the figures

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the views do not determine a calibration, and which parameter they leave
        open

Notes
-----
In C: int32_t zelmMeasurePlanFigures(ZelmMeasurePlan* plan, ZelmMeasurePlanFigures* figures)
""",
    "zelmMeasurePlateDesign": """\
What a plate's design lacks, of itself and before cameras that face it square on.

Parameters
----------
plate : Zelm2ViewPatternDesc
    all lengths greater than 0
cameras : array of ZelmMeasureCamera, shape (cameraCount,), default none
    the first one's field size is the distance of the records in bytes, a multiple of 8. A width and
    height of 0 are not known: the field is then not compared with the image
nearest : float, default 0
    least distance of the plate from the cameras, plate units; not read for parallel cameras alone
farthest : float, default 0
    greatest distance, at least `nearest`

Returns
-------
findings : array of ZelmMeasurePlateFinding, shape (capacity,), as many entries as there are
    what was found, in the order of ZelmMeasurePlateFlaw, camera by camera; the first one's field
    size must be set by the caller and is the distance of the records in bytes, a multiple of 8.
    NULL: only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(1). Limits are those of the plate's reader, measured with rendered plates: `docs/limits.md`.

In C: int32_t zelmMeasurePlateDesign(const Zelm2ViewPatternDesc* plate, int32_t cameraCount, const
ZelmMeasureCamera* cameras, double nearest, double farthest, ZelmMeasurePlateFinding* findings,
int64_t capacity, int64_t* count)
""",
    "zelmMeasurePlateExpanded": """\
A plate at another temperature than the one at which its lengths hold: all of them by the factor 1 +
expansion * difference.

Parameters
----------
plate : Zelm2ViewPatternDesc
    lengths d0 to d7 are read, all else is copied
expansion : float
    of lengths, per kelvin
difference : float
    of the temperatures, kelvin: the new one less that of the lengths
places : array of float64, shape (placeCount, 3), default none
    3 a dot, plate units

Returns
-------
zelmMeasurePlateExpandedResult : named tuple of
    expanded : Zelm2ViewPatternDesc
        the plate; may be `plate`
    expandedPlaces : array of float64, shape (placeCount, 3)
        3 a dot; may be `places`
    factor : float
        of all lengths; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM: also numbers that are not finite, and a factor that is not positive

Notes
-----
In C: int32_t zelmMeasurePlateExpanded(const Zelm2ViewPatternDesc* plate, double expansion, double
difference, int64_t placeCount, const double* places, Zelm2ViewPatternDesc* expanded, double*
expandedPlaces, double* factor)
""",
    "zelmMeasurePointViews": """\
Which views can be used. zelmMeasureAdjustOpenPoints() refuses points of which a view cannot.

Parameters
----------
points : ZelmMeasureTargetPoints
    the points

Returns
-------
statuses : array of int32, shape (points.views,)
    ZelmMeasurePointViewStatus, one a view

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasurePointViews(const ZelmMeasureTargetPoints* points, int32_t* statuses)
""",
    "zelmMeasureAdjustOpenPoints": """\
Opens an adjustment of points, which needs no rig: each camera is calibrated on its own first
(Zhang, 2000), and the cameras' relative pose is that of the view whose own agrees best with those
of all others. Points are predicted as points: what outlines of dots do to their centres is left
out. Everything else is as of zelmMeasureAdjustOpen(). With one camera alone there is no rig:
zelmMeasureAdjustCamera() and zelmMeasureAdjustPose() give the result.

Parameters
----------
points : ZelmMeasureTargetPoints
    of at least 3 views; not needed later
pattern : Zelm2ViewPatternDesc, or None, default None
    the plate whose dots the points are, which can then be refined; NULL: points of another target
options : ZelmMeasureAdjustOptions, or None, default None
    what is estimated; NULL: the defaults. Diameters and measured places are of plates of dots alone

Returns
-------
adjustment : ZelmMeasureAdjustment
    the handle, to be closed by zelmMeasureAdjustClose(); must be NULL before. Also when the points
    are refused: such a handle holds the error text alone, and every other function refuses it

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: a camera sees the target in fewer than 3 views well enough, or no view is
        seen by both; the target is not flat; the views do not determine a camera

Notes
-----
In C: int32_t zelmMeasureAdjustOpenPoints(const ZelmMeasureTargetPoints* points, const
Zelm2ViewPatternDesc* pattern, const ZelmMeasureAdjustOptions* options, ZelmMeasureAdjustment**
adjustment)
""",
    "zelmMeasureAdjustStartRig": """\
The rig that an adjustment begins with.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    of two cameras

Returns
-------
rig : ZelmMeasureRig
    the handle, without dots and covariance, to be closed by zelmMeasureRigClose(); must be NULL
    before

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: one camera alone, or the two make no pair

Notes
-----
In C: int32_t zelmMeasureAdjustStartRig(ZelmMeasureAdjustment* adjustment, ZelmMeasureRig** rig)
""",
    "zelmMeasureAdjustCamera": """\
A camera and the covariance of its parameters.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved
side : 'L' or 'R'
    'L' or 'R'

Returns
-------
camera : ZelmMeasureAdjustedCamera
    the camera

Raises
------
ZelmError
    ZELM_ERR_PARAM: also for a camera that is not there
    ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed

Notes
-----
In C: int32_t zelmMeasureAdjustCamera(ZelmMeasureAdjustment* adjustment, int32_t side,
ZelmMeasureAdjustedCamera* camera)
""",
    "zelmMeasureAdjustPose": """\
Where the target of a view stands: X_camera = R X_target + t.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved
side : 'L' or 'R'
    'L' or 'R'
view : int
    from 0

Returns
-------
pose : ZelmCameraExtrinsics
    the pose; of a view that takes no part the one that its own points tell

Raises
------
ZelmError
    ZELM_ERR_PARAM: also for a camera that is not there
    ZELM_MEASURE_ERR_DATA: not solved since the dots were last changed

Notes
-----
In C: int32_t zelmMeasureAdjustPose(ZelmMeasureAdjustment* adjustment, int32_t side, int32_t view,
ZelmCameraExtrinsics* pose)
""",
    "zelmMeasureAdjustEpipolar": """\
Distances of the points of one view from the epipolar lines of their counterparts, undistorted
pixels: two a point that takes part in both images, the left one first.

Parameters
----------
adjustment : ZelmMeasureAdjustment
    solved, of two cameras
view : int
    from 0

Returns
-------
distances : array of float64, shape (capacity,), as many entries as there are
    pixels; NULL: they are only counted

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: one camera alone, or not solved since the dots were last changed

Notes
-----
In C: int32_t zelmMeasureAdjustEpipolar(ZelmMeasureAdjustment* adjustment, int32_t view, int64_t
capacity, double* distances, int64_t* count)
""",
    "zelmMeasureTriangulate": """\
Triangulates pairs of raw pixels, with the optimal correction of zelm2ViewChange2Dto3D(). What a
pair without numbers would have written is not. The optimal correction is the least that makes the
two rays meet, so that the root sum of squares of the errors of a true pair is one error of noise: a
standard normal one times the standard deviation of a pixel's coordinate. Six deviations are none in
a million. A wrong pair whose pixels happen to lie on each other's epipolar lines is not told.

Parameters
----------
rig : ZelmMeasureRig
    the rig
left : array of float64, shape (count, 2)
    raw pixels, 2 a pair
right : array of float64, shape (count, 2)
    raw pixels, 2 a pair
points : ZelmMeasurePoints, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
points : ZelmMeasurePoints
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: for two parallel cameras, whose rays cannot be brought together

Notes
-----
In C: int32_t zelmMeasureTriangulate(ZelmMeasureRig* rig, int64_t count, const double* left, const
double* right, const ZelmMeasurePoints* points)
""",
    "zelmMeasureTrueDepths": """\
The true depths of the pixels of a rendered scene, and whether the right camera sees them too.

Parameters
----------
rig : ZelmMeasureRig
    of two perspective cameras
map : array of uint16, shape (leftHeight(rig), leftWidth(rig))
    depths along the left camera's axis, a pixel each of its raw image, in `unit`s; 0: nothing there
unit : float
    of the map, in plate units
pixels : array of float64, shape (count, 2)
    of the left image, 2 each

Returns
-------
zelmMeasureTrueDepthsResult : named tuple of
    depths : array of float64, shape (count,)
        plate units, mixed from the four pixels around; NaN where there is no surface, or an edge of one
    seenByBoth : array of int32, shape (count,)
        1 or 0 each; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: for a rig with a parallel camera

Notes
-----
In C: int32_t zelmMeasureTrueDepths(ZelmMeasureRig* rig, const uint16_t* map, double unit, int64_t
count, const double* pixels, double* depths, int32_t* seenByBoth)
""",
    "zelmMeasureAlignRows": """\
Turns two perspective cameras about their centres until their x axes lie along the baseline and
their z axes are the mean of both optical axes, made square to it (Fusiello, Trucco and Verri 2000).
Images stay as upright as that allows; of a pair whose right camera is on the left the disparities
are negative. R1, R2, P1, P2 and Q mean what OpenCV's stereoRectify() means by them.

Parameters
----------
rig : ZelmMeasureRig
    the rig
options : ZelmMeasureRowOptions, or None, default None
    NULL: all 0

Returns
-------
rows : ZelmMeasureRows
    the pair

Raises
------
ZelmError
    ZELM_ERR_PARAM: a size below 0 or above 32768, a focal length below 0
    ZELM_MEASURE_ERR_DATA: for a parallel camera, or one that looks along the baseline
    ZELM_ERR_MEMORY

Notes
-----
Some 100 ns a pixel, for the rectangles.

In C: int32_t zelmMeasureAlignRows(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options,
ZelmMeasureRows* rows)
""",
    "zelmMeasureAlignRowsMap": """\
The map of an aligned image: for each of its pixels, row by row, x and y of the raw pixel that it
shows, -1 and -1 where the camera does not see it. It serves OpenCV's remap() as it is, as an array
of height x width x 2 floats.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
options : ZelmMeasureRowOptions, or None, default None
    those of zelmMeasureAlignRows()

Returns
-------
map : array of float32, shape (rowsHeight(rig,options), rowsWidth(rig,options), 2)
    2 width height floats

Raises
------
ZelmError
    ZELM_ERR_PARAM: a size below 0 or above 32768, a focal length below 0
    ZELM_MEASURE_ERR_DATA: for a parallel camera, or one that looks along the baseline
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureAlignRowsMap(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options,
int32_t side, float* map)
""",
    "zelmMeasureAlignRowsPoints": """\
Where raw pixels lie in an aligned image.

Parameters
----------
rig : ZelmMeasureRig
    the rig
side : 'L' or 'R'
    'L' or 'R'
raw : array of float64, shape (count, 2)
    raw pixels, 2 doubles each
options : ZelmMeasureRowOptions, or None, default None
    those of zelmMeasureAlignRows()

Returns
-------
aligned : array of float64, shape (count, 2)
    2 doubles each; may be raw. NaN for a pixel too far outside for the lens distortion to be
    removed

Raises
------
ZelmError
    ZELM_ERR_PARAM: a size below 0 or above 32768, a focal length below 0
    ZELM_MEASURE_ERR_DATA: for a parallel camera, or one that looks along the baseline
    ZELM_ERR_MEMORY

Notes
-----
In C: int32_t zelmMeasureAlignRowsPoints(ZelmMeasureRig* rig, const ZelmMeasureRowOptions* options,
int32_t side, int64_t count, const double* raw, double* aligned)
""",
    "zelmMeasureCircles": """\
Measures round targets as the circles that they are. The centre of a dot's outline is not the image
of the dot's centre: perspective moves it by some r^2 sin(2 tilt) / (2 f) pixels for an outline of r
pixels (Ahn, Warnecke and Kotowski, 1999), and so a point triangulated from two of them is off,
always to the same side. Here the outlines of both images give one circle, with its centre, normal
and radius: the one whose images, lens distortion included, have the least squared distances from
the outlines' points, each weighed by its own uncertainty; what Quan (1996) solves in closed form
for two conics, as orthogonal distance regression (Ahn, Rauh and Warnecke, 2001).

The covariance tells what the noise of the images leaves of the centre, scaled by how well the
circle fits; the calibration's own uncertainty comes on top. What a target without a number would
have written is not.

Parameters
----------
rig : ZelmMeasureRig
    the rig, with one parallel camera at most
left : array of uint8, shape (height, width)
    of the size of the left camera's images
right : array of uint8, shape (height, width)
    of the size of the right camera's images
leftSeeds : array of float64, shape (count, 2)
    pixels of the left image that the dots cover, 2 a target
rightSeeds : array of float64, shape (count, 2)
    pixels of the right image, in the same order
polarity : int, default 0
    0: dark dots on a bright ground; 1: bright ones
targets : ZelmMeasureTargets, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
targets : ZelmMeasureTargets
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: for two parallel cameras

Notes
-----
Cost: some milliseconds a target.

In C: int32_t zelmMeasureCircles(ZelmMeasureRig* rig, const ZelmMeasureImage* left, const
ZelmMeasureImage* right, int64_t count, const double* leftSeeds, const double* rightSeeds, int32_t
polarity, const ZelmMeasureTargets* targets)
""",
    "zelmMeasureRigCovariance": """\
The covariance of a rig's parameters.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
covariance : ZelmMeasureCovariance
    the covariance

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: for a rig that has none

Notes
-----
In C: int32_t zelmMeasureRigCovariance(ZelmMeasureRig* rig, ZelmMeasureCovariance* covariance)
""",
    "zelmMeasureRigSetCovariance": """\
Gives a rig the covariance of its parameters, once it proves sound: finite, symmetric, and positive
semi-definite to rounding, which is 1e-9 of the standard deviations.

Parameters
----------
rig : ZelmMeasureRig
    the rig
covariance : ZelmMeasureCovariance, or None
    copied; NULL takes the rig's away

Raises
------
ZelmError
    ZELM_ERR_PARAM: a record whose size is not that of the whole
    ZELM_MEASURE_ERR_DATA: the covariance is refused, and the rig keeps what it had

Notes
-----
In C: int32_t zelmMeasureRigSetCovariance(ZelmMeasureRig* rig, const ZelmMeasureCovariance*
covariance)
""",
    "zelmMeasurePointCovariance": """\
The covariances of the points of pixel pairs, to first order at the point that
zelmMeasureTriangulate() gives: that is the least-squares point of the undistorted pixels, all
weighted alike, so that the implicit function theorem tells how pixels and parameters move it
(Haralick, 1996); the weights stay alike where covariances of pixels are given. Points whose rays
are so nearly parallel that the equations are singular to rounding are ZELM_MEASURE_POINT_PARALLEL.
What a pair without numbers would have written is not. About a microsecond a pair beside
triangulation.

Parameters
----------
rig : ZelmMeasureRig
    the rig; with a covariance unless `calibration` and `depths` are NULL
left : array of float64, shape (count, 2)
    raw pixels, 2 a pair
right : array of float64, shape (count, 2)
    raw pixels, 2 a pair
noise : ZelmMeasurePixelNoise, or None, default None
    of the pixels; NULL: that of the calibration's dots
covariances : ZelmMeasurePointCovariances, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
covariances : ZelmMeasurePointCovariances
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM: also noise that is negative or not finite, and covariances that are not positive
        semi-definite
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the rig has no covariance, or two parallel cameras

Notes
-----
In C: int32_t zelmMeasurePointCovariance(ZelmMeasureRig* rig, int64_t count, const double* left,
const double* right, const ZelmMeasurePixelNoise* noise, const ZelmMeasurePointCovariances*
covariances)
""",
    "zelmMeasureLengths": """\
Distances of points with their uncertainty. The errors of pixels are independent from point to
point; those of the calibration move all points together, and what both ends share cancels. The
expanded uncertainty is k times the standard deviation with k = 1.96, or Student's t where variances
were estimated: of the freedom of the calibration when it gives the noise too, else of the effective
degrees of freedom (Welch and Satterthwaite, 1946; JCGM 100:2008, G.4). All to first order: it is no
better than its variances where a length is not large against its uncertainty.

Parameters
----------
rig : ZelmMeasureRig
    the rig; with a covariance unless `calibration`, `deviations` and `expanded` are NULL
left : array of float64, shape (count, 2)
    raw pixels, 2 a pair
right : array of float64, shape (count, 2)
    raw pixels, 2 a pair
ends : array of int64, shape (lengthCount, 2)
    2 a length: the numbers of its points, from 0
noise : ZelmMeasurePixelNoise, or None, default None
    of the pixels; NULL: that of the calibration's dots
lengths : ZelmMeasureLengths, written in place, default a new one with all arrays
    the arrays that are written

Returns
-------
lengths : ZelmMeasureLengths
    the arrays that are written

Raises
------
ZelmError
    ZELM_ERR_PARAM: also noise that is negative or not finite, and covariances that are not positive
        semi-definite; also for an end that is no point's number
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the rig has no covariance, or two parallel cameras

Notes
-----
In C: int32_t zelmMeasureLengths(ZelmMeasureRig* rig, int64_t count, const double* left, const
double* right, const ZelmMeasurePixelNoise* noise, int64_t lengthCount, const int64_t* ends, const
ZelmMeasureLengths* lengths)
""",
    "zelmMeasureCovarianceSize": """\
The size of what zelmMeasureCovarianceSave() writes.

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
size : int
    bytes

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_MEASURE_ERR_DATA: for a rig without a covariance

Notes
-----
In C: int32_t zelmMeasureCovarianceSize(ZelmMeasureRig* rig, int64_t* size)
""",
    "zelmMeasureCovarianceSave": """\
Writes a rig's covariance as bytes to be kept beside its calibration block, which they are tied to
by a checksum of it: little-endian `ZCOV`, the version 1, the size and the number of parameters
(int32), the checksum of the calibration block, noise and freedom, the lower triangle of the matrix
row by row, and a checksum of all of it. Both are CRC-64 of ECMA-182 (1992).

Parameters
----------
rig : ZelmMeasureRig
    the rig

Returns
-------
bytes : bytes
    as many as zelmMeasureCovarianceSize() tells

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: for a rig without a covariance

Notes
-----
In C: int32_t zelmMeasureCovarianceSave(ZelmMeasureRig* rig, int64_t capacity, void* bytes)
""",
    "zelmMeasureCovarianceLoad": """\
Gives a rig the covariance that was saved from it. Bytes that are cut, foreign, changed or of
another calibration are refused, and what zelmMeasureRigSetCovariance() refuses.

Parameters
----------
rig : ZelmMeasureRig
    the rig; keeps what it had when the bytes are refused
bytes : bytes
    the bytes

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the bytes are refused

Notes
-----
In C: int32_t zelmMeasureCovarianceLoad(ZelmMeasureRig* rig, const void* bytes, int64_t size)
""",
    "zelmMeasureRefinePlate": """\
Measures the dots of a plate anew in both images of a view, as an adjustment does: the dots that
were read place the plate before each camera, and the camera tells the shape by which all pixels
about a dot's outline are judged. Each camera places the plate for itself, so that cameras that have
moved do not matter; before a parallel one the plate stands where the other one's dots put it.

Parameters
----------
rig : ZelmMeasureRig
    the rig
pattern : Zelm2ViewPatternDesc
    the plate; with d0 and d1
leftImage : array of uint8, shape (height, width)
    of the size of the camera's
rightImage : array of uint8, shape (height, width)
    likewise
grid : array of int32, shape (count, 2)
    2 a dot: column and row, counted from the corner marker
left : array of float64, shape (count, 2), written in place
    2 a dot: centre of the ellipse in the left image, raw. Those of missing dots are not written
right : array of float64, shape (count, 2), written in place
    the same in the right image

Returns
-------
zelmMeasureRefinePlateResult : named tuple of
    left : array of float64, shape (count, 2)
        2 a dot: centre of the ellipse in the left image, raw. Those of missing dots are not written
    right : array of float64, shape (count, 2)
        the same in the right image
    statuses : array of int32, shape (count,)
        ZelmMeasureDotStatus, one a dot: missing where the pixels of either image do not confirm it

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: the dots do not place the plate, also when zelmCalibCalcHomography() does
        not settle, or two parallel cameras

Notes
-----
Cost: of the pixels about the outlines of all dots of the plate, as zelmMeasureRefineDots().

In C: int32_t zelmMeasureRefinePlate(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern, const
ZelmMeasureImage* leftImage, const ZelmMeasureImage* rightImage, int64_t count, const int32_t* grid,
double* left, double* right, int32_t* statuses)
""",
    "zelmMeasurePlatePoints": """\
Triangulates the dots of a plate in one view. The centre of a dot's ellipse is not the image of its
centre: the plate's pose, fitted to the dots, tells by how much in both images, and what is
triangulated is corrected for it.

Parameters
----------
rig : ZelmMeasureRig
    the rig
pattern : Zelm2ViewPatternDesc
    the plate
grid : array of int32, shape (count, 2)
    2 a dot: column and row, counted from the corner marker
left : array of float64, shape (count, 2)
    2 a dot: centre of the ellipse in the left image, raw
right : array of float64, shape (count, 2)
    the same in the right image
points : ZelmMeasurePlatePoints, written in place, default a new one with all arrays
    the arrays that are written; those of dots without a point are not. May be NULL

Returns
-------
zelmMeasurePlatePointsResult : named tuple of
    points : ZelmMeasurePlatePoints
        the arrays that are written; those of dots without a point are not. May be NULL
    fit : ZelmMeasurePlateFit
        how they fit the plate (closest rotation: Arun, Huang and Blostein, 1987)

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: too few points, or two parallel cameras

Notes
-----
Cost O(count).

In C: int32_t zelmMeasurePlatePoints(ZelmMeasureRig* rig, const Zelm2ViewPatternDesc* pattern,
int64_t count, const int32_t* grid, const double* left, const double* right, const
ZelmMeasurePlatePoints* points, ZelmMeasurePlateFit* fit)
""",
    "zelmMeasurePlateLengths": """\
Chooses lengths between the dots of one view, in the manner of VDI/VDE 2634 part 1: along rows,
columns and both diagonals, three lines each, up to five lengths a line from a fifth of it to all of
it, and from corner to corner.

Parameters
----------
pattern : Zelm2ViewPatternDesc
    the plate
grid : array of int32, shape (count, 2)
    2 a dot: column and row, each place once

Returns
-------
zelmMeasurePlateLengthsResult : named tuple of
    ends : array of int64, shape (capacity, 2), as many entries as there are
        2 a length: the indices of its dots; or NULL
    nominal : array of float64, shape (capacity,), as many entries as there are
        1 a length: its size on the plate, plate units; or NULL

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count log count).

In C: int32_t zelmMeasurePlateLengths(const Zelm2ViewPatternDesc* pattern, int64_t count, const
int32_t* grid, int64_t capacity, int64_t* ends, double* nominal, int64_t* chosen)
""",
    "zelmMeasureLengthErrors": """\
Errors of lengths between points of space, by region of the volume and by depth.

Parameters
----------
rig : ZelmMeasureRig
    the rig
positions : array of float64, shape (pointCount, 3)
    3 a point: in the frame of the plate of view 0
ends : array of int64, shape (count, 2)
    2 a length: indices of its points
nominal : array of float64, shape (count,)
    1 a length: its true size, greater than 0
lengths : ZelmMeasureLengthErrors, written in place, default a new one with all arrays
    the arrays that are written; may be NULL

Returns
-------
zelmMeasureLengthErrorsResult : named tuple of
    lengths : ZelmMeasureLengthErrors
        the arrays that are written; may be NULL
    summary : ZelmMeasureLengthSummary
        figures of all

Raises
------
ZelmError
    ZELM_ERR_PARAM: also for an end that is no point or not finite
    ZELM_ERR_MEMORY

Notes
-----
Cost O(count).

In C: int32_t zelmMeasureLengthErrors(ZelmMeasureRig* rig, int64_t pointCount, const double*
positions, int64_t count, const int64_t* ends, const double* nominal, const ZelmMeasureLengthErrors*
lengths, ZelmMeasureLengthSummary* summary)
""",
    "zelmMeasureDrift": """\
Looks for drift of the cameras in pairs of pixels that show the same points, of any scene. The
epipolar distances, to first order in the noise of all four coordinates (Sampson, 1982), are
explained by nothing, by each part alone and by all five; F tests, or chi-square tests where the
noise is given, judge the six explanations, corrected for their number (Bonferroni). Wrong matches
are left out: least absolute distances, then Tukey's weights (Holland and Welsch, 1977). Where the
rig has a covariance, the errors that it tells are among what chance may do: all pairs share them,
and the distances are weighed by the inverse of both covariances together. The length of the
baseline is never seen.

Parameters
----------
rig : ZelmMeasureRig
    of two perspective cameras
left : array of float64, shape (count, 2)
    raw pixels, 2 a pair
right : array of float64, shape (count, 2)
    raw pixels, 2 a pair
options : ZelmMeasureDriftOptions, or None, default None
    how to look; NULL: the defaults

Returns
-------
zelmMeasureDriftResult : named tuple of
    statuses : array of int32, shape (count,)
        1 a pair: 1 used, 0 left out as wrong, -1 unusable; or NULL
    drift : ZelmMeasureDrift
        what they tell

Raises
------
ZelmError
    ZELM_ERR_PARAM
    ZELM_ERR_MEMORY
    ZELM_MEASURE_ERR_DATA: a parallel camera, too few pairs, pairs of one place only, or pairs that
        no drift explains

Notes
-----
Cost O(count), some hundred passes.

In C: int32_t zelmMeasureDrift(ZelmMeasureRig* rig, int64_t count, const double* left, const double*
right, const ZelmMeasureDriftOptions* options, int32_t* statuses, ZelmMeasureDrift* drift)
""",
}
