"""Arguments of every wrong kind: refused with words that name them, or converted without a change."""

import inspect
import math
import pickle

import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

from zelm import core
from zelm._coreTable import TABLE

CIRCLE = np.array([[1.0, 0], [0, 1], [-1, 0], [0, -1]])


def asEveryLayout(array):
    """The same numbers, laid out in every way that numpy has."""
    wide = np.zeros((len(array), 7))
    wide[:, 2:4] = array
    yield "list", array.tolist()
    yield "tuples", tuple(map(tuple, array))
    yield "records", [core.Point2d(*row) for row in array]
    yield "columns first", np.asfortranarray(array)
    yield "strided", wide[:, 2:4]
    yield "backwards", array[::-1][::-1]
    yield "negative strides", np.ascontiguousarray(array[::-1, ::-1])[::-1, ::-1]
    yield "other byte order", array.astype(">f8")
    yield "float32", array.astype(np.float32)
    yield "float16", array.astype(np.float16)
    yield "int8", array.astype(np.int8)
    yield "int64", array.astype(np.int64)
    readOnly = array.copy()
    readOnly.flags.writeable = False
    yield "read-only", readOnly
    unaligned = np.frombuffer(b"x" + array.tobytes(), dtype=np.uint8)[1:].view(np.float64).reshape(array.shape)
    yield "unaligned", unaligned


@pytest.mark.parametrize("name, given", list(asEveryLayout(CIRCLE)))
def testEveryLayoutGivesTheSame(name, given):
    assert tuple(core.zelmFitCircle(given)) == tuple(core.zelmFitCircle(CIRCLE)), name


@pytest.mark.parametrize(
    "given, error, words",
    [
        (CIRCLE.astype(complex), TypeError, "complex128"),
        (CIRCLE.astype(object), TypeError, "object"),
        (CIRCLE.astype(str), TypeError, "<U"),
        (CIRCLE.astype(np.longdouble), TypeError, "round"),
        ("points", TypeError, "taPoints"),
        (None, TypeError, "object"),
        (CIRCLE.astype("M8[s]"), TypeError, "datetime"),
        (np.ma.masked_array(CIRCLE, CIRCLE > 0), TypeError, "mask"),
        ([[1, 2], [3]], ValueError, "taPoints"),
        (np.zeros((4, 3)), ValueError, r"\(4, 3\), \(iN, 2\) is wanted"),
        (np.zeros(8), ValueError, r"\(8,\), \(iN, 2\)"),
        (np.zeros((2, 2, 2)), ValueError, r"\(2, 2, 2\)"),
        (5.0, ValueError, r"\(\)"),
        ([], ValueError, r"\(0,\)"),
        (np.zeros((0, 2)), ValueError, "ZELM_ERR_PARAM"),
        (np.full((4, 2), 2**60), ValueError, r"2\^53"),
        (np.full((4, 2), 2**63, np.uint64), ValueError, r"2\^53"),
    ],
)
def testWrongArraysAreRefusedByName(given, error, words):
    with pytest.raises(error, match=words) as caught:
        core.zelmFitCircle(given)
    assert "zelmFitCircle" in str(caught.value)


def testShapesMustAgree():
    with pytest.raises(ValueError, match=r"taDst has the shape \(3, 2\), \(4, 2\) is wanted"):
        core.zelmCalibCalcHomography(CIRCLE, CIRCLE[:3])
    with pytest.raises(ValueError, match=r"daA has the shape \(2, 3\), \(2, 2\) is wanted"):
        core.zelmMatInvert(np.ones((2, 3)))
    with pytest.raises(core.ZelmError) as caught:
        core.zelmMatMul(np.ones((2, 3)), np.ones((2, 3)))
    assert caught.value.name == "ZELM_ERR_DEGENERATE"


@pytest.mark.parametrize("value", ["1", b"1", 1j, None, [1.0], np.array([1.0]), object()])
def testNumbersMustBeNumbers(value):
    with pytest.raises(TypeError, match="zelmMathTransAbcToRq: dB"):
        core.zelmMathTransAbcToRq(1, value, 1)
    with pytest.raises(TypeError, match="zelmMatDiagonal: iN"):
        core.zelmMatDiagonal(1, value)


def testNumbersOfOtherTypesAreTaken():
    for one in (1, True, np.float32(1), np.int16(1), np.array(1.0)):
        assert core.zelmMathTransAbcToRq(one, 0.0, 0.0) == core.zelmMathTransAbcToRq(1.0, 0.0, 0.0)
    assert core.zelmMatDiagonal(1, np.int64(2)).shape == (2, 2)


@pytest.mark.parametrize("value", [2**31, -(2**31) - 1, 2**40, 10**30])
def testIntegersDoNotWrapAround(value):
    with pytest.raises(ValueError, match="32 bits"):
        core.zelmMathAddAngle(value, 0, 0, 0)
    with pytest.raises(ValueError, match="32 bits"):
        core.zelmMiscChangeRectToRect2((value, 0, 0, 0))
    with pytest.raises(ValueError, match="outside"):
        core.ZelmRect(x=value)
    with pytest.raises(TypeError):
        core.zelmMatZero(2.0, 2)
    with pytest.raises(ValueError, match="would round"):
        core.zelmMathTransAbcToRq(1, 2**53 + 1, 1)
    with pytest.raises(ValueError, match="double"):
        core.zelmMathTransAbcToRq(1, 10**400, 1)
    with pytest.raises(ValueError, match="-1 entries"):
        core.zelmMatZero(-1, 3)


def testHandlesAndBlocks():
    block = bytes(1052)
    with pytest.raises(ValueError):
        core.zelm2ViewLoadCalibData(block)
    with pytest.raises(TypeError, match="tHandle"):
        core.zelm2ViewDistortPoint(None, "L", (0, 0))


def testArraysThatAreWritten():
    good = np.array([3.0, 4.0])
    assert core.zelmMathNormalization(good) is good and good.tolist() == [0.6, 0.8]
    readOnly = good.copy()
    readOnly.flags.writeable = False
    for bad, error in (
        (readOnly, ValueError),
        (np.zeros(4)[::2], ValueError),
        (good[::-1], ValueError),
        (good.astype(np.float32), TypeError),
        (good.astype(">f8"), TypeError),
        ([3.0, 4.0], TypeError),
        (np.ma.masked_array(good), TypeError),
    ):
        with pytest.raises(error, match="daV"):
            core.zelmMathNormalization(bad)
    zero = np.zeros(2)
    with pytest.raises(core.ZelmError, match="ZELM_ERR_DEGENERATE"):
        core.zelmMathNormalization(zero)


def testInputsStayAsTheyAre():
    before = CIRCLE.copy()
    for function in (core.zelmFitCircle, core.zelmCgConvexHull, core.zelmCalibNormalizeData, core.zelmMatTranspose):
        result = function(CIRCLE)
        assert np.array_equal(CIRCLE, before)
        for array in result if isinstance(result, tuple) else (result,):
            assert not isinstance(array, np.ndarray) or not np.shares_memory(array, CIRCLE)


@settings(max_examples=30, deadline=None)
@given(arrays.arrays(np.float64, (6, 2), elements=st.floats(allow_nan=True, allow_infinity=True)))
def testEveryNumberEndsInAResultOrAnError(points):
    for function in (core.zelmFitCircle, core.zelmFitEllipse, core.zelmFitLine, core.zelmCgConvexHull):
        try:
            function(points)
        except core.ZelmError as error:
            assert error.status < 0 and error.function == function.__name__ and error.name in str(error)
    try:
        core.zelmMatSVD(points)
    except core.ZelmError as error:
        assert error.name == "ZELM_ERR_SVD_FAILED"


def testNotANumberPasses():
    assert core.zelmBinOtsuThresholdGray([10.0, math.nan, 200.0]) == core.zelmBinOtsuThresholdGray([10.0, 200.0])
    assert math.isnan(core.zelmMathPrimeAngle(1, 1, math.nan))


@pytest.mark.parametrize("image", [[[1]], np.zeros((4, 4)), np.zeros((4, 4), np.int8), np.zeros((4, 4), np.uint16)])
def testImagesAreBytes(image):
    with pytest.raises(TypeError, match="uint8"):
        core.zelmMiscBilinearGrayLevel(image, 0, 0)


def testImagesOfEveryLayout():
    image = np.arange(48, dtype=np.uint8).reshape(6, 8)
    for other in (np.asfortranarray(image), np.repeat(image, 2, axis=1)[:, ::2], image[::-1][::-1].copy()[:, :]):
        assert core.zelmMiscBilinearGrayLevel(other, 3, 2) == 19
    flipped = image[::-1]
    assert core.zelmMiscBilinearGrayLevel(flipped, 0, 0) == 40
    argb = np.repeat(image[:, :, None], 4, axis=2)
    for other in (argb[::-1], argb[:, ::-1], argb[:, 1:5], np.asfortranarray(argb)):
        gray = core.zelmConvertColorToGray_vImageARGB8888toPlanar8(other)
        assert np.array_equal(gray, other[:, :, 1])
    for wrong in (image, argb[:, :, :3]):
        with pytest.raises(ValueError, match="tSrc"):
            core.zelmConvertColorToGray_vImageARGB8888toPlanar8(wrong)


@pytest.mark.parametrize("name", list(TABLE))
def testEveryFunctionRefusesObjectsInPlaceOfItsArguments(name):
    """Nothing but Python errors, whatever argument is nonsense."""
    function = getattr(core, name)
    parameters = inspect.signature(function).parameters
    for nonsense in (object(), "x", 1j, np.zeros((1, 1, 1, 1)), np.array(["a"])):
        with pytest.raises((TypeError, ValueError)):
            function(*[nonsense] * len(parameters))


def testMapsBeyondTheDestinationAreRefused():
    image, maps = np.zeros((9, 9), np.uint8), np.zeros((4, 5), np.float32)
    assert core.remapImage_8uC1(image, maps, maps, iX0=3, iX1=2).shape == (4, 5)
    colour = np.zeros((9, 9, 4), np.uint8)
    for box in (dict(iX1=5), dict(iY1=4), dict(iX0=-1), dict(iY0=-1)):
        with pytest.raises(core.ZelmParamError, match="leaves the destination"):
            core.remapImage_8uC1(image, maps, maps, **box)
        with pytest.raises(core.ZelmParamError, match="leaves the destination"):
            core.remapImage_8uC4(colour, maps, maps, **box)
    with pytest.raises(TypeError, match="round"):
        core.remapImage_8uC1(image, maps.astype(float), maps)
    with pytest.raises(core.ZelmParamError, match="share"):
        core.remapImage_8uC1(image[:4], *[np.zeros((9, 9), np.float32)] * 2, ucDst=image)
    with pytest.raises(core.ZelmParamError, match="share"):
        core.remapImage_8uC4(colour[:4], *[np.zeros((9, 9), np.float32)] * 2, ucDst=colour)


def testErrorsArePickledWithAllTheyHold():
    with pytest.raises(ValueError) as caught:
        core.zelmFitCircle(CIRCLE[:1])
    again = pickle.loads(pickle.dumps(caught.value))
    assert (again.status, again.name, again.function) == (-2, "ZELM_ERR_PARAM", "zelmFitCircle")
    assert str(again) == str(caught.value) and isinstance(again, core.ZelmParamError)
    assert issubclass(core.ZelmMemoryError, MemoryError) and issubclass(core.ZelmParamError, ValueError)


def testResultsArePickled():
    result = core.zelmMatSVD(np.eye(2))
    again = pickle.loads(pickle.dumps(result))
    assert type(again) is type(result) and np.array_equal(again.daW, result.daW)


def testErrorsSpeakTheWordsOfTheHeader():
    with pytest.raises(core.ZelmError) as caught:
        core.zelmClp2dLineTwoPoints((1, 1), (1, 1))
    error = caught.value
    assert (error.status, error.name, error.function) == (-100, "ZELM_ERR_DEGENERATE", "zelmClp2dLineTwoPoints")
    assert "Degenerate geometry or data" in str(error) and "closer than 1e-14" in str(error)
    with pytest.raises(core.ZelmError, match="Too few usable points for a fit") as caught:
        core.zelmFitMean1dim([1.0, np.nan, 2.0], 1, 3)
    assert "residuals that are not numbers" in str(caught.value)
