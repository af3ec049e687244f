"""The pair family: calibration from drawn plates, and measuring with a made-up calibration."""

import math

import numpy as np
import pytest
import syntheticPair as truth
from hypothesis import given, settings
from hypothesis import strategies as st

from zelm import core

GRAY = np.zeros((480, 640), np.uint8)
REMAPS = (
    ("zelmCstmDrovnRemapImage", GRAY),
    ("zelmCstmDrovnRemapImage_vImagePlanar8", GRAY),
    ("zelmCstmDrovnRemapImage_vImageARGB8888", np.repeat(GRAY[:, :, None], 4, axis=2)),
)
quick = settings(max_examples=25, deadline=None)


@pytest.fixture(scope="module")
def cameras():
    return truth.pair()


@pytest.fixture(scope="module")
def handle(cameras):
    with core.zelm2ViewLoadCalibData(truth.block(*cameras)) as pair:
        yield pair


def testBlockGoesInAndComesOut(cameras, handle):
    block = truth.block(*cameras)
    assert core.zelm2ViewSaveCalibData(handle) == block
    assert core.zelm2ViewGetCalibDataSize(handle) == len(block)
    assert handle.views == 3 and tuple(handle.cameras) == (0, 640, 480, 0, 640, 480)
    intrinsics = core.zelm2ViewGetCamIntParam(handle, "L")
    assert np.array_equal(intrinsics.A.reshape(3, 3), cameras[0].K) and intrinsics.k1 == -0.1
    pose = core.zelm2ViewGetCamExtParam(handle, "R", 2)
    assert np.array_equal(pose.R.reshape(3, 3), cameras[1].R) and np.array_equal(pose.t, cameras[1].t)
    M, inverse = core.zelm2ViewGetCamHomMat(handle, ord("L"))
    np.testing.assert_allclose(M @ inverse, np.eye(3), atol=1e-9)
    F, transposed = core.zelm2ViewGetCamFndMat(handle)
    assert np.array_equal(F.T, transposed)


@quick
@given(st.floats(-80, 80), st.floats(-60, 60), st.floats(-50, 50))
def testPointsAreMeasuredWhereTheyAre(x, y, z):
    left, right = truth.pair()
    with core.zelm2ViewLoadCalibData(truth.block(left, right)) as pair:
        pixels = [camera.project(np.array([[x, y, z]]))[0] for camera in (left, right)]
        for side, pixel in zip("LR", pixels):
            assert tuple(core.zelm2ViewChange3Dto2D(pair, side, (x, y, z))) == pytest.approx(tuple(pixel), abs=1e-8)
            undistorted = core.zelm2ViewUnDistortPoint(pair, side, pixel)
            assert tuple(core.zelm2ViewDistortPoint(pair, side, undistorted)) == pytest.approx(tuple(pixel), abs=1e-8)
        assert tuple(core.zelm2ViewChange2Dto3D(pair, *pixels)) == pytest.approx((x, y, z), abs=1e-5)
        line = core.zelm2ViewCalcEpiLine(pair, "R", pixels[0])
        other = core.zelm2ViewUnDistortPoint(pair, "R", pixels[1])
        assert line.a * other.x + line.b * other.y + line.c == pytest.approx(0, abs=1e-6)


def testCameraFunctionsAgreeWithThePair(cameras, handle):
    intrinsics = core.zelm2ViewGetCamIntParam(handle, "L")
    pose = core.zelm2ViewGetCamExtParam(handle, "L", 0)
    point = (12.0, -7.0, 5.0)
    assert core.zelmCalibChange3Dto2D(point, intrinsics, pose) == core.zelm2ViewChange3Dto2D(handle, "L", point)
    P = core.zelmCalibCameraMatrix(intrinsics.A.reshape(3, 3), pose)
    x = P @ [*point, 1]
    pixel = core.zelmCalibDistortPoint(intrinsics, x[0] / x[2], x[1] / x[2])
    assert pixel == pytest.approx(tuple(core.zelmCalibChange3Dto2D(point, intrinsics, pose)))
    assert core.zelmCalibUnDistortPoint(intrinsics, *pixel) == pytest.approx((x[0] / x[2], x[1] / x[2]))


def testHomographiesAndRotations():
    H = np.array([[1.1, 0.1, 5], [-0.05, 0.9, 3], [1e-4, 2e-4, 1]])
    source = np.random.default_rng(5).uniform(0, 500, (20, 2))
    x = np.column_stack([source, np.ones(20)]) @ H.T
    np.testing.assert_allclose(core.zelmCalibCalcHomography(source, x[:, :2] / x[:, 2:]), H, rtol=1e-6, atol=1e-9)
    normalised, T, inverse = core.zelmCalibNormalizeData(source)
    np.testing.assert_allclose(normalised.mean(axis=0), 0, atol=1e-12)
    np.testing.assert_allclose(T @ inverse, np.eye(3), atol=1e-12)
    assert core.zelmCalibNormalizeData(np.random.default_rng(6).normal(size=(5, 3))).daT.shape == (4, 4)
    R = core.zelmCalibRodrigues(0, daRvec=[0, 0, math.pi / 2])
    np.testing.assert_allclose(R, [[0, -1, 0], [1, 0, 0], [0, 0, 1]], atol=1e-15)
    np.testing.assert_allclose(core.zelmCalibRodrigues(1, daRmat=R), [0, 0, math.pi / 2], atol=1e-14)
    for wrong in (dict(iDirection=2, daRvec=[0, 0, 1]), dict(iDirection=0), dict(iDirection=0, daRmat=R)):
        with pytest.raises(core.ZelmParamError):
            core.zelmCalibRodrigues(**wrong)


def testOneCameraIsCalibratedFromExactDots():
    x, y = np.meshgrid(np.arange(9.0) * 20, np.arange(7.0) * 20)
    plane = np.column_stack([x.ravel(), y.ravel()])
    left, _ = truth.pair()
    views = []
    for a, b in ((0.3, 0.1), (-0.2, 0.3), (0.1, -0.4), (0.35, 0.35)):
        camera = truth.Camera(left.K, truth.rotation(a, b), np.array([-80.0, -60, 600]), left.k1, left.k2)
        views.append((plane, camera.project(np.column_stack([plane, 0 * plane[:, 0]]))))
    intrinsics, poses, error = core.zelmCalibCameraParam(views)
    np.testing.assert_allclose(intrinsics.A.reshape(3, 3), left.K, rtol=1e-5, atol=1e-3)
    assert (intrinsics.k1, intrinsics.k2) == pytest.approx((-0.1, 0.02), abs=1e-4) and error < 1e-5
    assert poses["t"].shape == (4, 3) and poses["t"][:, 2] == pytest.approx(600, rel=1e-4)
    assert core.zelmCalibChange3Dto2D((0, 0, 0), intrinsics, poses[0]).x == pytest.approx(views[0][1][0, 0], abs=1e-4)
    with pytest.raises(core.ZelmError, match="ZELM_ERR_PARAM"):
        core.zelmCalibCameraParam(views[:2])
    with pytest.raises(core.ZelmParamError, match=r"taViews\[1\]\[1\]"):
        core.zelmCalibCameraParam([views[0], (plane, plane[1:])])


def testAFailedCallTellsHowFarItCame():
    camera = core.ZelmCameraIntrinsics(A=np.eye(3), alpha=100, beta=100, k1=-1)  # folds at a radius of 58 pixels
    with pytest.raises(core.ZelmError, match="ZELM_ERR_UNDISTORT") as caught:
        core.zelmCalibUnDistortPoint(camera, 90, 0)
    assert set(caught.value.partial) == {"dX", "dY"} and math.isfinite(caught.value.partial["dX"])
    with pytest.raises(core.ZelmError, match="NOT_POSITIVE_DEFINITE") as caught:
        core.zelmMatCholeskyDecomp([[4.0, 2], [2, -1]])
    assert caught.value.partial["daU"][0].tolist() == [2, 1]
    with pytest.raises(core.ZelmError, match="ZELM_ERR_SINGULAR") as caught:
        core.zelmMatInvert(np.zeros((2, 2)))
    assert caught.value.partial == {}


def testAPairIsCalibratedFromDrawnPlates():
    left, right = truth.pair(0, 0)
    pattern = core.Zelm2ViewPatternDesc(
        **truth.PLATE, markers=3, polarity=0, minDotArea=20, minEdgeStrength=5, minDots=20
    )
    description = core.Zelm2ViewCameraDesc(0, truth.WIDTH, truth.HEIGHT, 0, truth.WIDTH, truth.HEIGHT)
    with core.zelm2ViewCalibOpen(3, pattern, description) as pair:
        poses = []
        for view, (a, b) in enumerate(((0.0, 0.05), (0.3, 0.1), (-0.3, -0.15))):
            turn = truth.rotation(a, b)
            moved = [truth.Camera(c.K, c.R @ turn, c.t) for c in (left, right)]
            images = [truth.drawPlate(camera) for camera in moved]
            poses.append(moved)
            if view == 0:
                core.zelm2ViewReadPtnImg(pair, view, images)
            elif view == 1:
                core.zelm2ViewReadPtnImg_vImagePlanar8(pair, view, *images)
            else:
                argb = [np.repeat(image[:, :, None], 4, axis=2) for image in images]
                core.zelm2ViewReadPtnImg_vImageARGB8888(pair, view, *argb)
            assert core.zelm2ViewGetPtnNum(pair, "L", view) > 60
        found = core.zelm2ViewGetPattern(pair, "R", 1)
        assert len(found) == core.zelm2ViewGetPtnNum(pair, "R", 1)
        grid = np.array([[i * 20.0, j * 20.0, 0] for i in range(-5, 6) for j in range(-4, 5)])
        wanted = poses[1][1].project(grid)
        nearest = np.sqrt(((found[:, None] - wanted[None]) ** 2).sum(axis=2)).min(axis=1)
        assert nearest.max() < 0.3  # pixels: nine samples a pixel, and the bias of ellipses
        result = core.zelm2ViewCalibCameraParam(pair)
        assert result.statusL == result.statusR == 0 and max(result.errorL, result.errorR) < 0.1
        K = core.zelm2ViewGetCamIntParam(pair, "L").A.reshape(3, 3)
        np.testing.assert_allclose(K[[0, 1], [0, 1]], [900, 905], rtol=0.02)
        pixels = [camera.project(np.array([[20.0, 40, 0]]))[0] for camera in poses[0]]
        assert tuple(core.zelm2ViewChange2Dto3D(pair, *pixels)) == pytest.approx((20, 40, 0), abs=1)
        with pytest.raises(core.ZelmError, match="ZELM_ERR_PATTERN_PLATE"):
            core.zelm2ViewReadPtnImg(pair, 0, [np.zeros((480, 640), np.uint8)] * 2)
        with pytest.raises(core.ZelmParamError, match=r"\(480, 640\)"):
            core.zelm2ViewReadPtnImg(pair, 0, [np.zeros((640, 480), np.uint8)] * 2)


def testImagesWithoutDistortionStayAsTheyAre():
    image = np.random.default_rng(7).integers(0, 255, (480, 640), dtype=np.uint8)
    argb = np.repeat(image[:, :, None], 4, axis=2)
    with core.zelm2ViewLoadCalibData(truth.block(*truth.pair(0, 0))) as pair:
        same = core.zelm2ViewUnDistortImage(pair, "L", image)
        assert np.array_equal(same[:-1, :-1], image[:-1, :-1])
        same = core.zelm2ViewUnDistortImage_vImageARGB8888(pair, "L", argb)
        assert np.array_equal(same[:-1, :-1, 1], image[:-1, :-1]) and (same[:, :, 0] == 255).all()
        params = core.Zelm2ViewHomParam(320, 240, 0)
        gray = core.zelm2ViewMakeHomImage(pair, "L", image, params)
        colour = core.zelm2ViewMakeHomImage_vImageARGB8888(pair, "L", argb, params)
        # The two are sampled alike; vector and plain tier may differ by a level.
        assert np.abs(colour[:, :, 2].astype(int) - gray).max() <= 1 and gray.any()
        there = core.zelm2ViewCalcHomImgPoint(pair, "L", (300, 200), params)
        assert tuple(core.zelm2ViewInvHomImgPoint(pair, "L", there, params)) == pytest.approx((300, 200))
        assert core.zelm2ViewChangeHomEpiLine(pair, "L", params, [0, 1, -200]).b != 0


def testExpandedImagesMapsAndRemapAgree(handle):
    rng = np.random.default_rng(8)
    image = np.kron(rng.integers(0, 255, (60, 80)), np.ones((8, 8))).astype(np.uint8)
    expansion = core.ZelmCstmExpPrm(dVal=1.0)
    width, height, centre = core.zelmCstmDrovnCalcHomImgMemSize(handle, "L", (200, 150, 200, 160), expansion)
    assert width % 4 == 0 and height % 4 == 0 and width > 100
    destination = core.ZelmCstmExpPrm(width, height, centre.x, centre.y, 0)
    gray = core.zelmCstmDrovnMakeHomImageExp(handle, "L", image, destination, expansion)
    assert gray.shape == (height, width)
    padded = np.zeros((480, 700), np.uint8)
    padded[:, :640] = image
    planar = core.zelmCstmDrovnMakeHomImageExp_vImagePlanar8(handle, "L", padded[:, :640], destination, expansion)
    assert np.array_equal(gray, planar)
    argb = np.repeat(image[:, :, None], 4, axis=2)
    colour = core.zelmCstmDrovnMakeHomImageExp_vImageARGB8888(handle, "L", argb, destination, expansion)
    assert np.abs(colour[:, :, 3].astype(int) - gray).max() <= 1
    maps = core.zelmCstmDrovnMakeHomImageMap(handle, "L", destination, expansion)
    remapped = core.zelmCstmDrovnRemapImage(maps, image)
    assert np.array_equal(remapped, core.zelmCstmDrovnRemapImage_vImagePlanar8(maps, image))
    assert np.abs(remapped.astype(int) - gray).max() <= 1
    assert np.abs(core.zelmCstmDrovnRemapImage_vImageARGB8888(maps, argb)[:, :, 1].astype(int) - gray).max() <= 1
    kernel = core.remapImage_8uC1(image, maps.mapX, maps.mapY)
    assert np.abs(kernel.astype(int) - gray).max() <= 1
    assert np.abs(core.remapImage_8uC4(argb, maps.mapX, maps.mapY)[:, :, 1].astype(int) - gray).max() <= 1
    there = core.zelmCstmDrovnChangeOrg2DtoHom2DExp(handle, "L", destination, expansion, (300, 230))
    assert there == core.zelmCstmDrovnChangeOrg2DtoHom2D(handle, "L", destination, (300, 230))
    back = core.zelmCstmDrovnInvHomImgPointExp(handle, "L", there, destination, expansion)
    assert tuple(back) == pytest.approx((300, 230), abs=1e-6)
    line = core.zelmCstmDrovnChangeHomEpiLineExp(handle, "L", destination, expansion, (0, 1, -230))
    assert math.hypot(line.a, line.b) == pytest.approx(1)
    left, right = core.zelmCstmDrovnCalcMagnification(handle, 0, 1000)
    assert left == pytest.approx(1.8, rel=0.1) and right == pytest.approx(1.8, rel=0.1)
    for wrong in (width + 1, 0):
        maps.iWidth = wrong
        for call, source in REMAPS:
            with pytest.raises(core.ZelmParamError, match="mapX"):
                getattr(core, call)(maps, source)
        with pytest.raises(core.ZelmParamError, match="mapX"):
            core.zelmCstmDrovnMakeHomImageMap(handle, "L", destination, expansion, maps)
    maps = core.zelmCstmDrovnMakeHomImageMap(handle, "L", destination, expansion)
    for call, source in REMAPS:
        with pytest.raises(core.ZelmParamError, match="share"):
            getattr(core, call)(maps, source, source)
    maps.mapX = None
    with pytest.raises(core.ZelmParamError, match="mapX has no array"):
        core.zelmCstmDrovnRemapImage(maps, image)


def testMagnifiedImages(handle):
    image = np.tile(np.arange(640) % 256, (480, 1)).astype(np.uint8)
    expansion = core.ZelmCstmExpPrm(40, 20, 100, 50, 2)
    big = core.zelmCstmDrovnExpandImage(handle, "L", image, expansion)
    assert big[5].tolist() == [math.floor(90 + c / 2 + 0.5) for c in range(40)]
    assert np.array_equal(core.zelmCstmDrovnExpandImage_vImagePlanar8(handle, "L", image, expansion), big)
    argb = np.repeat(image[:, :, None], 4, axis=2)
    assert np.array_equal(core.zelmCstmDrovnExpandImage_vImageARGB8888(handle, "L", argb, expansion)[:, :, 1], big)
    assert tuple(core.zelmCstmDrovnChangeOrg2DtoExp2D(expansion, (101, 50))) == (22, 10)


def testKernelWithTheIdentityCopies():
    image = np.random.default_rng(9).integers(0, 255, (40, 60), dtype=np.uint8)
    camera = core.ZelmCameraIntrinsics(A=np.eye(3), alpha=1, beta=1)
    same = core.perspectiveTransAndDistortImage_8uC1(np.eye(3), camera, image, 60, 40)
    assert np.array_equal(same[:-1, :-1], image[:-1, :-1]) and not same[-1].any()
    argb = np.repeat(image[:, :, None], 4, axis=2)
    same = core.perspectiveTransAndDistortImage_8uC4(np.eye(3), camera, argb, 60, 40)
    assert np.array_equal(same[:-1, :-1], argb[:-1, :-1])
