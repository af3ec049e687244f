"""Rigs with arrays of every form: the same numbers, or a refusal that names the argument."""

import warnings

import numpy as np
import pytest
import syntheticPair as truth
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as npst

import zelm
from zelm import measure, records
from zelm._record import dtypeOf

quick = settings(max_examples=60, deadline=None, suppress_health_check=[HealthCheck.function_scoped_fixture])
RIG = zelm.Rig(truth.block(*truth.pair()))
POINTS = np.random.default_rng(2).uniform(-60, 60, (12, 3))
LEFT, RIGHT = RIG.project(POINTS)
ANY = st.floats(allow_nan=True, allow_infinity=True, width=64)


@pytest.fixture(autouse=True)
def quiet():
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", zelm.MeasurementWarning)
        yield


def testProjectionIsTheTruth():
    for camera, pixels in zip(truth.pair(), (LEFT, RIGHT)):
        np.testing.assert_allclose(camera.project(POINTS), pixels, atol=1e-9)
    np.testing.assert_allclose(RIG.triangulate(LEFT, RIGHT).points, POINTS, atol=1e-6)


def forms(array):
    """The same numbers in other forms."""
    frozen = array.copy()
    frozen.flags.writeable = False
    apart = np.zeros((3 * len(array), array.shape[1] + 2))
    apart[::3, 1:-1] = array
    raw = np.frombuffer(b"\0" + array.tobytes(), np.uint8)[1:].view(np.float64)
    yield from (array, frozen, apart[::3, 1:-1], np.asfortranarray(array), array[::-1].copy()[::-1])
    yield from (array.tolist(), [tuple(row) for row in array], array.astype(">f8"), raw.reshape(array.shape))


def testFormsOfArraysDoNotMatter():
    calls = [
        (lambda a: RIG.triangulate(a, RIGHT).points, LEFT),
        (lambda a: RIG.triangulate(LEFT, a).error, RIGHT),
        (RIG.left.project, POINTS),
        (RIG.right.undistort, RIGHT),
        (RIG.left.distort, LEFT),
        (lambda a: RIG.epipolar_lines(a, "R"), RIGHT),
        (lambda a: RIG.lengths(a, RIGHT, noise=0.1)["length"], LEFT),
    ]
    for call, array in calls:
        wanted, before = call(array), array.copy()
        for form in forms(array):
            np.testing.assert_array_equal(call(form), wanted)
        np.testing.assert_array_equal(array, before)


def testSingleNumbersThatAreExactAreTaken():
    whole = np.round(LEFT)
    for dtype in (np.float32, np.int16, np.uint64):
        np.testing.assert_array_equal(RIG.left.undistort(whole.astype(dtype)), RIG.left.undistort(whole))


@pytest.mark.parametrize("method", ["project", "undistort", "distort"])
@given(shape=npst.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=4))
@quick
def testOtherShapesAreRefusedByName(method, shape):
    columns = 3 if method == "project" else 2
    call = getattr(RIG.left, method)
    if len(shape) == 2 and shape[1] == columns:
        assert call(np.zeros(shape)).shape == (shape[0], 2)
    else:
        with pytest.raises(ValueError, match=f"{method}: (points|pixels) has the shape"):
            call(np.zeros(shape))


@given(npst.arrays(np.float64, st.integers(0, 9).map(lambda n: (n, 2)), elements=ANY), st.data())
@quick
def testAnyNumbersGiveStatusesAndNan(left, data):
    right = data.draw(npst.arrays(np.float64, left.shape, elements=ANY))
    done = RIG.triangulate(left, right)
    assert len(done.points) == len(done.cov) == len(done.status) == len(left)
    assert np.isfinite(done.points[done.ok]).all() and np.isnan(done.points[~done.ok]).all()
    assert not done.ok[~np.isfinite(np.hstack([left, right])).all(axis=1)].any()
    for pixels in (RIG.left.undistort(left), RIG.left.distort(left)):
        assert np.isnan(pixels[~np.isfinite(left).all(axis=1)]).all()
    assert RIG.epipolar_lines(left, "L").shape == (len(left), 3)


@given(npst.arrays(np.float64, st.integers(0, 9).map(lambda n: (n, 3)), elements=ANY))
@quick
def testAnyPointsGivePixelsOrNan(points):
    pixels = RIG.left.project(points)
    good = np.isfinite(pixels).all(axis=1)
    assert (np.isfinite(pixels) == good[:, None]).all()
    with np.errstate(all="ignore"):
        depth = points @ RIG.left.R[2] + RIG.left.t[2]
    assert not good[~(depth > 0)].any()


@pytest.mark.parametrize(
    ("value", "error"),
    [
        ("text", TypeError),
        (None, TypeError),
        ([["a", "b"]], TypeError),
        ([[1j, 2]], TypeError),
        ([[1, 2], [3]], ValueError),
        (np.ma.masked_array(LEFT), TypeError),
        (LEFT.astype(object), TypeError),
        (LEFT > 3, None),
        (np.full((12, 2), 2**60), ValueError),
        (LEFT[:5], ValueError),
        (LEFT.ravel(), ValueError),
    ],
)
def testOtherTypesAreRefusedByName(value, error):
    if error is None:
        assert not RIG.triangulate(value, RIGHT).ok.any()
        return
    with pytest.raises(error, match="triangulate: (left_xy|right_xy)"):
        RIG.triangulate(value, RIGHT)


@pytest.mark.parametrize("given_", [dict(max_error=0), dict(max_error=np.nan), dict(max_error=-1), dict(max_error="a")])
def testLimitsThatCannotBeMeantAreRefused(given_):
    with pytest.raises((ValueError, TypeError), match="max_error"):
        RIG.triangulate(LEFT, RIGHT, **given_)
    with pytest.raises((ValueError, TypeError), match="noise"):
        RIG.lengths(LEFT, RIGHT, noise=given_["max_error"])


@pytest.mark.parametrize("ends", [[[0, 12]], [[-1, 0]], [[0.5, 1]], [[0, 1, 2]], "ab", [[2**63, 0]]])
def testEndsThatAreNoPointsAreRefused(ends):
    with pytest.raises((ValueError, TypeError)):
        RIG.lengths(LEFT, RIGHT, ends, noise=0.1)


def testNothingIsAResultToo():
    nothing = np.empty((0, 2))
    points, cov = RIG.triangulate(nothing, nothing)
    assert points.shape == (0, 3) and cov.shape == (0, 3, 3)
    assert "0 points of 0" in repr(RIG.triangulate(nothing, nothing))
    assert RIG.left.project(np.empty((0, 3))).shape == (0, 2) and len(RIG.lengths(nothing, nothing, noise=1)) == 0


@given(st.binary(max_size=4000))
@quick
def testAnyBytesAreARigOrRefused(content):
    with pytest.raises(zelm.ZelmError):
        zelm.Rig(content)
    with pytest.raises(zelm.ZelmDataError):
        zelm.Rig(RIG.block, content)


@given(st.integers(0, 1500), st.integers(0, 255))
@quick
def testADamagedBlockIsRefusedOrHasNumbers(at, value):
    damaged = bytearray(RIG.block)
    damaged[at % len(damaged)] = value
    try:
        rig = zelm.Rig(bytes(damaged))
    except zelm.ZelmError:
        return
    assert np.isfinite(rig.left.K).all() and repr(rig) and len(rig.triangulate(LEFT, RIGHT).status) == 12


def testRecordsThatLieAboutTheirSizeAreRefused():
    with measure.zelmMeasureRigOpen(RIG.block) as handle:
        rows = records.ZelmMeasureRowOptions()
        rows.size = 4096
        with pytest.raises(ValueError, match="size is 4096"):
            measure.zelmMeasureAlignRows(handle, rows)
        plate = records.Zelm2ViewPatternDesc(**truth.PLATE, markers=3, minDotArea=9, minEdgeStrength=2.0, minDots=9)
        cameras = np.zeros(2, dtypeOf(records.ZelmMeasureCamera))
        with pytest.raises(ValueError, match="cameras has a record whose size"):
            measure.zelmMeasurePlateDesign(plate, cameras)
        with pytest.raises(TypeError, match="rig"):
            measure.zelmMeasureRigViews(None)
        with pytest.raises(TypeError, match="first"):
            measure.zelmMeasureCompare("rig", handle)
