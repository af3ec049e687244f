"""Every family of the core against closed forms and numpy."""

import math

import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as arrays

from zelm import core

ULPS = 1e-12  # relative error of a few dozen operations in doubles, with room
# Down to 1e-6: what the decompositions do with entries that are 1e300 times smaller than others is not asked here.
numbers = st.floats(-100, 100).map(lambda x: round(x, 6))
points2 = st.tuples(numbers, numbers)
quick = settings(max_examples=25, deadline=None)


def matrices(rows, columns):
    return arrays.arrays(np.float64, (rows, columns), elements=numbers)


# mat


@quick
@given(matrices(3, 4), matrices(4, 2), matrices(3, 2), numbers, numbers)
def testProductsAreThoseOfNumpy(a, b, c, alpha, beta):
    close = dict(rtol=ULPS, atol=1e-6)  # sums of up to 4e6 that cancel
    np.testing.assert_allclose(core.zelmMatMul(a, b), a @ b, **close)
    np.testing.assert_allclose(core.zelmMatGenMul(alpha, a, b, beta, c), alpha * (a @ b) + beta * c, **close)
    np.testing.assert_allclose(core.zelmMatMulTransposed(0, a), a @ a.T, **close)
    np.testing.assert_allclose(core.zelmMatMulTransposed(1, a), a.T @ a, **close)
    np.testing.assert_allclose(core.zelmMatMulTransposed2(0, a, b.T), a @ b, **close)
    np.testing.assert_allclose(core.zelmMatMulTransposed2(1, a.T, b), a @ b, **close)


@quick
@given(matrices(3, 5), matrices(3, 5), numbers)
def testElementwiseOperationsAreExact(a, b, s):
    assert np.array_equal(core.zelmMatAdd(a, b), a + b)
    assert np.array_equal(core.zelmMatSub(a, b), a - b)
    assert np.array_equal(core.zelmMatMulScalar(s, a), s * a)
    assert np.array_equal(core.zelmMatTranspose(a), a.T)
    assert np.array_equal(core.zelmMatCopy(a), a)


def testFilledMatrices():
    assert np.array_equal(core.zelmMatZero(2, 3), np.zeros((2, 3)))
    assert np.array_equal(core.zelmMatDiagonal(2.5, 3), 2.5 * np.eye(3))
    assert core.zelmMatTrace([[1, 2], [3, 4]]) == 5
    assert core.zelmMatZero(0, 3).shape == (0, 3)


@quick
@given(matrices(4, 4), arrays.arrays(np.float64, 4, elements=numbers))
def testSolversAgreeWithNumpy(a, b):
    a = a + 500 * np.eye(4)  # diagonally dominant: condition below 10
    np.testing.assert_allclose(core.zelmMatInvert(a), np.linalg.inv(a), rtol=1e-9, atol=1e-12)
    np.testing.assert_allclose(core.zelmMatSolveLU(a, b), np.linalg.solve(a, b), rtol=1e-9, atol=1e-12)
    np.testing.assert_allclose(core.zelmMatSolveSVD(a, b), np.linalg.solve(a, b), rtol=1e-9, atol=1e-12)
    s = a @ a.T
    np.testing.assert_allclose(core.zelmMatCholeskyDecomp(s), np.linalg.cholesky(s).T, rtol=1e-9, atol=1e-6)


def testDecompositionsReassemble():
    a = np.random.default_rng(1).normal(size=(6, 4))
    u, w, v = core.zelmMatSVD(a)
    np.testing.assert_allclose(u @ np.diag(w) @ v, a, atol=1e-12)
    np.testing.assert_allclose(w, np.linalg.svd(a, compute_uv=False), rtol=1e-12)
    values, vectors = core.zelmMatJacobiEigen(a.T @ a)
    np.testing.assert_allclose(vectors.T @ np.diag(values) @ vectors, a.T @ a, atol=1e-11)


def testAllocatedMatricesAreShared():
    with core.zelmMatMallocMatrix(2, 3) as matrix:
        matrix.array[:] = [[1, 2, 3], [4, 5, 6]]
        assert np.array_equal(core.zelmMatTranspose(matrix.array), matrix.array.T)
    vector = core.zelmMatMallocVector(3)
    vector.array[:] = [3, 4, 0]
    assert core.zelmMathCalcNorm(vector.array) == 5
    core.zelmMatFreeVector(vector)
    core.zelmMatFreeVector(None)
    core.zelmMatFreeMatrix(None)


# math


@quick
@given(st.lists(numbers, min_size=3, max_size=3), st.lists(numbers, min_size=3, max_size=3))
def testVectorsAreThoseOfNumpy(u, v):
    assert core.zelmMathCalcInnerProduct(u, v) == pytest.approx(np.dot(u, v), rel=ULPS, abs=1e-8)
    assert core.zelmMathCrossCorrelation(u, v) == core.zelmMathCalcInnerProduct(u, v)
    np.testing.assert_allclose(core.zelmMathCalcOuterProduct(u, v), np.cross(u, v), rtol=ULPS, atol=1e-8)
    assert core.zelmMathCalcNorm(u) == pytest.approx(np.linalg.norm(u), rel=ULPS)


def testStatisticsAnglesAndFrames():
    data = np.arange(10.0)
    mean, variance, deviation = core.zelmMathStat(data)
    assert (mean, variance) == (4.5, 8.25) and deviation == math.sqrt(8.25)
    assert core.zelmMathCalcAngle([1, 0], [0, 2]) == pytest.approx(math.pi / 2)
    assert core.zelmMathCalcArgument((0, 3)) == pytest.approx(math.pi / 2)
    assert core.zelmMathNormalization(np.array([3.0, 4.0])) == pytest.approx([0.6, 0.8])
    assert core.zelmMathAreaTriangle(0, 0, 4, 0, 0, 3) == 6
    assert core.zelmMathSignAreaTriangle(0, 0, 0, 3, 4, 0) == -6
    assert core.zelmMathRotatePoint(1, 1, math.pi / 2, 2, 1) == pytest.approx((1, 2))
    assert core.zelmMathCreateTransParam(1, 1, 2, 1, 5) == pytest.approx((1, 2, math.pi / 2))
    frame = (3.0, -2.0, 0.7)
    moved = core.zelmMathTransCoordOfPoint(*frame, 5, 6)
    assert core.zelmMathInvTransCoordOfPoint(*frame, *moved) == pytest.approx((5, 6))
    assert core.zelmMathTransCoord(*core.zelmMathInvCoord(*frame), *moved) == pytest.approx((5, 6))
    assert core.zelmMathComposeCoord(*frame, *core.zelmMathInvCoord(*frame)) == pytest.approx((0, 0, 0), abs=1e-12)
    assert core.zelmMathAddAngle(1, 1, 170, 20) == -170
    assert core.zelmMathPrimeAngle(1, 1, 370) == 10
    assert core.zelmMathCheckAngle(0.1, 0.1 + 2 * math.pi, 1e-9) == 1
    assert core.zelmMathCrossAngle(1, 0, -1, 0, 1, -1) == pytest.approx(math.pi / 2)


def testLinesAndCirclesOfCoefficients():
    assert core.zelmMathGetDistFromPointToPoint(0, 0, 3, 4) == 5
    assert core.zelmMathGetDistFromPointToLine(0, 2, -2, 7, 4) == 3
    assert core.zelmMathGetDistAndCrossPointFromPointToLine(0, 1, -1, 7, 4) == (3, 7, 1)
    assert core.zelmMathCrossPoint(1, 0, -2, 0, 1, -3) == (2, 3)
    a, b, c = core.zelmMathGetLineFrom2Points(0, 1, 5, 1)
    assert (a, abs(b), abs(c)) == (0, 1, 1)
    assert core.zelmMathGetOrthogonalLineFromLineAndPoint(0, 1, -1, 7, 4) == (1, 0, -7)
    assert core.zelmMathTransAbcToRq(0, 1, -3) == pytest.approx((3, math.pi / 2))
    assert core.zelmMathGetDistFromPointToCircle(0, 0, 2, 5, 0) == (3, 2, 0)
    assert core.zelmMathExtremumOfQuadraticCurves(1, -4, 7) == (3, 2)
    assert core.zelmMathExtremumOfQuadraticSurface(1, 0, 1, -2, -4, 5) == (0, 1, 2)


def testWhatIsNotWrittenIsNotANumber():
    distance, x, y = core.zelmMathGetDistAndCrossPointFromPointToLine(0, 0, 1, 7, 4)
    assert distance == math.inf and math.isnan(x) and math.isnan(y)
    assert np.isnan(core.zelmMathInvMatrixOfSyn3X3(np.ones((3, 3)))).all()
    kind, point = core.zelmCgIntersectionOfTwoSegments((0, 0), (1, 0), (0, 1), (1, 1))
    assert kind == core.ZELM_SEGMENTS_APART and math.isnan(point.x) and math.isnan(point.y)
    found, point, strength = core.zelmEdge1dDiffMax(np.full((20, 20), 9, np.uint8), (2, 9), (17, 9))
    assert found == 0 and math.isnan(point.x) and math.isnan(strength)


def testInverseByAdjugate():
    m = np.array([[2.0, 1, 0], [0, 3, 1], [1, 0, 4]])
    np.testing.assert_allclose(core.zelmMathInvMatrixOfSyn3X3(m), np.linalg.inv(m), rtol=ULPS, atol=1e-14)


@quick
@given(st.lists(st.integers(-20, 20), min_size=2, max_size=4, unique=True))
def testRootsOfPolynomials(roots):
    finder = {2: core.zelmMathQuadraticRoots, 3: core.zelmMathCubicRoots, 4: core.zelmMathQuarticRoots}[len(roots)]
    found = finder(np.poly(roots))
    assert sorted(found) == pytest.approx(sorted(roots), abs=1e-3)
    assert core.zelmMathQuadraticRoots([1, 0, 1]).shape == (0,)


def testCorrelations():
    signal = np.array([0.0, 1, 3, 1, 0, 0])
    np.testing.assert_allclose(
        core.zelmMathAutoCorrelation(signal, 6), [signal @ np.roll(signal, -k) for k in range(6)], rtol=ULPS
    )
    assert core.zelmMathNormAutoCorrelation(signal, 1) == pytest.approx([1])
    assert core.zelmMathNormCorrelation(signal, 2 * signal) == pytest.approx(1)
    index, score = core.zelmMathSearchOf1DWithNormCorrelation(signal, [1, 3, 1])
    assert index == 1 and score == pytest.approx(1)
    assert core.zelmMathOtsuThreshold1d([1, 2, 9, 10]) == 5.5
    x, y, distance = core.zelmMathGetDistFromPointToEllipse(0, 0, 3, 2, 0, 5, 1e-3)
    assert (x, y, distance) == pytest.approx((3, 0, 2), abs=1e-2)


# clp2d, clp3d, cg


@quick
@given(points2, points2)
def testPlanePrimitives(p, q):
    distance = math.dist(p, q)
    assert core.zelmClp2dDistanceTwoPoints(p, q) == pytest.approx(distance, rel=ULPS)
    assert tuple(core.zelmClp2dCenterTwoPoints(p, q)) == pytest.approx(((p[0] + q[0]) / 2, (p[1] + q[1]) / 2))
    if distance > 1e-3:
        line = core.zelmClp2dLineTwoPoints(p, q)
        assert math.hypot(line.a, line.b) == pytest.approx(1)
        assert core.zelmClp2dDistancePointToLine(q, line) == pytest.approx(0, abs=1e-9)
        middle = core.zelmClp2dMidperpendicularTwoPoints(p, q)
        assert core.zelmClp2dAngleTwoLines(line, middle) == pytest.approx(math.pi / 2)
        circle = core.zelmClp2dCircleTwoPoints(p, q)
        assert circle.r == pytest.approx(distance / 2)


def testPlaneConstructions():
    horizontal, vertical = core.Line2d(0, 1, -2), core.Line2d(1, 0, -3)
    assert tuple(core.zelmClp2dIntersectionTwoLines(horizontal, vertical)) == pytest.approx((3, 2))
    assert tuple(core.zelmClp2dFootOfPerpendicularToLine((7, 9), horizontal)) == pytest.approx((7, 2))
    assert abs(core.zelmClp2dVerticalLinePointAndLine((7, 9), horizontal).a) == 1
    assert core.zelmClp2dTranslationOfLine(horizontal, (0, 5)).c == -7
    assert core.zelmClp2dLinePointAndSlope((0, 2), 0).b == pytest.approx(1)
    assert abs(core.zelmClp2dCenterLineOfTwoLines(horizontal, (0, 1, -4)).c) == pytest.approx(3)
    assert core.zelmClp2dAreaTriangle((0, 0), (4, 0), (0, 3)) == 6
    assert core.zelmClp2dSignAreaTriangle((0, 0), (0, 3), (4, 0)) == -6
    circle = core.zelmClp2dCircleThreePoints((1, 0), (0, 1), (-1, 0))
    assert tuple(circle) == pytest.approx((0, 0, 1), abs=1e-12)
    q1, q2 = core.zelmClp2dIntersectionLineAndCircle((0, 1, 0), (0, 0, 2))
    assert {round(q1.x), round(q2.x)} == {2, -2}
    tangents = core.zelmClp2dTangentPointToCircle((2, 0), (0, 0, 1))
    assert tangents.tPoint1.x == pytest.approx(0.5) and tangents.tPoint2.x == pytest.approx(0.5)
    point, distance = core.zelmClp2dClosestToCircle((0, 5), (0, 0, 2))
    assert tuple(point) == pytest.approx((0, 2)) and distance == pytest.approx(3)


def testSpaceConstructions():
    axis, plane = core.zelmClp3dLineTwoPoints((0, 0, 0), (0, 0, 9)), (0, 0, 1, -2)
    assert tuple(axis) == (0, 0, 0, 0, 0, 1)
    assert core.zelmClp3dDistanceTwoPoints((1, 2, 3), (1, 2, 8)) == 5
    assert tuple(core.zelmClp3dCenterTwoPoints((1, 2, 3), (1, 2, 8))) == (1, 2, 5.5)
    assert tuple(core.zelmClp3dFootOfPerpendicularToLine((3, 4, 7), axis)) == (0, 0, 7)
    assert core.zelmClp3dVerticalLinePointAndLine((3, 4, 7), axis).dx == pytest.approx(-0.6)
    assert core.zelmClp3dDistancePointToLine((3, 4, 7), axis) == 5
    assert core.zelmClp3dDistanceTwoLines(axis, (5, 0, 0, 0, 1, 0)) == 5
    assert tuple(core.zelmClp3dPlaneThreePoints((0, 0, 2), (1, 0, 2), (0, 1, 2))) == plane
    assert tuple(core.zelmClp3dVerticalPlanePointAndVector((7, 7, 2), (0, 0, 3))) == plane
    assert tuple(core.zelmClp3dVerticalLinePointAndPlane((7, 7, 7), plane)) == (7, 7, 7, 0, 0, 1)
    assert core.zelmClp3dDistancePointToPlane((7, 7, 7), plane) == 5
    assert tuple(core.zelmClp3dIntersectionLineAndPlane(axis, plane)) == (0, 0, 2)
    assert tuple(core.zelmClp3dFootOfPerpendicularToPlane((7, 8, 9), plane)) == (7, 8, 2)
    assert core.zelmClp3dAngleLineAndPlane(axis, plane) == pytest.approx(math.pi / 2)
    crossing = core.zelmClp3dIntersectionTwoPlanes(plane, (1, 0, 0, 0))
    assert tuple(crossing) == pytest.approx((0, 0, 2, 0, 1, 0))
    assert core.zelmClp3dAngleTwoPlanes(plane, (1, 0, 0, 0)) == pytest.approx(math.pi / 2)


def testPolygons():
    square = np.array([[0.0, 0], [4, 0], [4, 4], [0, 4]])
    cloud = np.vstack([square, np.random.default_rng(2).uniform(1, 3, (50, 2))])
    assert np.array_equal(core.zelmCgConvexHull(cloud), square)
    assert np.array_equal(core.zelmCgSortByArgument(square[::-1]), square)
    centre, radius = core.zelmCgSmallestEnclosingCircle(cloud)
    assert tuple(centre) == pytest.approx((2, 2), abs=0.05) and radius == pytest.approx(math.sqrt(8), abs=0.05)
    assert [core.zelmCgPointInConvexPolygon(square, p) for p in ((2, 2), (5, 2), (4, 2))] == [1, 0, 2]
    crossings = core.zelmCgIntersectionLineAndConvexPolygon(square, (0, 1, -1))
    assert sorted(map(tuple, crossings)) == [(0, 1), (4, 1)]
    assert len(core.zelmCgIntersectionLineAndConvexPolygon(square, (0, 1, -9))) == 0
    assert core.zelmCgIntersectionSegmentAndConvexPolygon(square, (2, 2), (9, 2)).tolist() == [[4, 2]]
    kind, point = core.zelmCgIntersectionOfTwoSegments((0, 0), (2, 2), (0, 2), (2, 0))
    assert kind == core.ZELM_SEGMENTS_CROSS and tuple(point) == pytest.approx((1, 1))


# fit, match


@quick
@given(numbers, numbers, st.floats(0.5, 50), st.integers(8, 60))
def testFitsOfExactPointsGiveTheTruth(x, y, r, n):
    angles = np.linspace(0, 2 * np.pi, n, endpoint=False)
    around = np.column_stack([x + r * np.cos(angles), y + r * np.sin(angles)])
    assert tuple(core.zelmFitCircle(around)) == pytest.approx((x, y, r), abs=1e-8)
    assert tuple(core.zelmFitCircle(around, 1, 3.5)) == pytest.approx((x, y, r), abs=1e-8)
    ellipse = core.zelmFitEllipse(around * [1, 0.5])
    assert (ellipse.x, ellipse.y, ellipse.a, ellipse.b) == pytest.approx((x, y / 2, r, r / 2), abs=1e-5)
    assert tuple(core.zelmFitMean2dim(around)) == pytest.approx((x, y), abs=1e-9)
    for fit in (core.zelmFitEllipseC, core.zelmFitConics):
        a, b, c, d, e, f = fit(around)
        px, py = around.T
        # Coefficients scale with the points' own size: up to 1e4 at these places.
        value = a * px**2 + b * px * py + c * py**2 + d * px + e * py + f
        assert np.abs(value).max() < 1e-9 * max(map(abs, (a, b, c, d, e, f)))


def testFitsOfLinesPlanesAndQuadrics():
    rng = np.random.default_rng(3)
    t = rng.uniform(-5, 5, 30)
    line = core.zelmFitLine(np.column_stack([t, 2 * t + 1]))
    assert line.a / line.b == pytest.approx(-2) and line.c / line.b == pytest.approx(-1)
    in3d = core.zelmFitLineIn3d(np.column_stack([t, 2 * t, 1 + 0 * t]))
    assert abs(in3d[1] @ [1, 2, 0]) == pytest.approx(math.sqrt(5)) and in3d[0][2] == pytest.approx(1)
    xy = rng.uniform(-5, 5, (30, 2))
    plane = core.zelmFitPlane(np.column_stack([xy, np.full(30, 2.0)]))
    assert np.abs(plane) == pytest.approx([0, 0, 1, 2], abs=1e-9)
    assert core.zelmFitMean1dim([1, 2, 3]) == 2
    assert tuple(core.zelmFitMean3dim([[1, 2, 3], [3, 4, 5]])) == (2, 3, 4)
    ball = rng.normal(size=(60, 3))
    ball /= np.linalg.norm(ball, axis=1)[:, None]
    ellipsoid = core.zelmFitEllipsoid(ball * [5, 4, 3] + [1, 2, 3])
    assert tuple(ellipsoid)[:6] == pytest.approx((1, 2, 3, 5, 4, 3), abs=1e-6)
    h, phi = rng.uniform(1, 2, 60), rng.uniform(0, 6.28, 60)
    cone = core.zelmFitCone(np.column_stack([h * np.cos(phi), h * np.sin(phi), 2 * h]))
    assert cone[:3] / cone[0] == pytest.approx([1, 1, -0.25], abs=1e-6)


def testRegistrationFindsTheMotion():
    rng = np.random.default_rng(4)
    model = rng.uniform(-10, 10, (12, 2))
    c, s = np.cos(0.3), np.sin(0.3)
    reference = 1.5 * model @ np.array([[c, s], [-s, c]]) + [4, -2]
    for mode in (core.ZELM_MATCH_SIMILARITY, core.ZELM_MATCH_SIMILARITY_ROBUST):
        pose = core.zelmMatchBasic(reference, model, iMode=mode)
        assert tuple(pose) == pytest.approx((4, -2, 0.3, 1.5), abs=1e-9)
    moved, distance = core.zelmMatchPoints(reference, model, core.ZelmMatchPose(), pose)
    np.testing.assert_allclose(moved, reference, atol=1e-9)
    assert distance.max() < 1e-9
    assert tuple(core.zelmMatchDelta((1, 2, 0.1, 1), (4, 6, 0.3, 2))) == pytest.approx((3, 4, 0.2, 2))
