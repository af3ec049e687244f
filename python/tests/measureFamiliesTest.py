"""Every function of the measuring library on the sample rig's data, against truth or another function."""

import functools

import deskRig
import numpy as np
import pytest
import syntheticPair as truth
from PIL import Image

import zelm
from zelm import core, measure, records

CALLED = set()


class _Noted:
    """The functions, noted as they are called."""

    def __getattr__(self, name):
        if name in measure.TABLE:
            CALLED.add(name)
        return getattr(measure, name)


m = _Noted()


@functools.lru_cache(maxsize=None)
def image(name):
    return np.asarray(Image.open(deskRig.SAMPLE / f"{name}.png"))


@functools.lru_cache(maxsize=None)
def adjusted():
    """An adjustment of six views of the sample, solved."""
    plate = deskRig.plateRecord()
    with core.zelm2ViewCalibOpen(6, plate, (0, 1280, 960, 0, 1280, 960)) as calib:
        for view in range(6):
            core.zelm2ViewReadPtnImg(calib, view, (image(f"left_{view:02d}"), image(f"right_{view:02d}")))
        core.zelm2ViewCalibCameraParam(calib)
        dots = m.zelmMeasureReadDots(calib, "L", 2)
        ratio = m.zelmMeasurePitchRatio(calib, "R")
        sets = [[m.zelmMeasureReadDots(calib, side, view) for view in range(6)] for side in "LR"]
        rig = m.zelmMeasureRigOfCalib(calib)
    adjustment = m.zelmMeasureAdjustOpen(rig, plate)
    m.zelmMeasureAdjustSolve(adjustment)
    return rig, adjustment, dots, ratio, sets


@pytest.fixture(scope="module")
def desk():
    with measure.zelmMeasureRigOpen((deskRig.calibrated() / "rig.zcal").read_bytes()) as rig:
        measure.zelmMeasureCovarianceLoad(rig, (deskRig.calibrated() / "rig.zcov").read_bytes())
        yield rig


@pytest.fixture(scope="module")
def pairs():
    return deskRig.randomPairs(zelm.Rig.load(deskRig.calibrated()), 60)


def testRigsAndTheirParts(desk):
    block = (deskRig.calibrated() / "rig.zcal").read_bytes()
    rig = m.zelmMeasureRigOpen(block)
    assert m.zelmMeasureRigError(rig) == "" and m.zelmMeasureRigViews(rig) == 12
    camera, pose = m.zelmMeasureRigCamera(rig, "R"), m.zelmMeasureRigPose(rig, "R", 3)
    assert (camera.width, camera.height, camera.model) == (1280, 960, 0)
    calib = m.zelmMeasureRigCalib(rig)
    assert calib.views == 12 and core.zelm2ViewSaveCalibData(calib) == block
    assert core.zelm2ViewGetCamIntParam(calib, "R") == camera.intrinsics
    assert core.zelm2ViewGetCamExtParam(calib, "R", 3) == pose
    np.testing.assert_array_equal(core.zelm2ViewGetCamFndMat(calib)[0], m.zelmMeasureRigFundamental(rig))
    relative = m.zelmMeasureRigRelativePose(rig)
    assert relative.baseline == pytest.approx(np.linalg.norm(relative.t)) == pytest.approx(120, rel=1e-3)
    assert m.zelmMeasureRigCentre(rig).origin == 0
    with pytest.raises(zelm.ZelmDataError) as caught:
        m.zelmMeasureRigTilt(rig, "L")
    assert caught.value.words == m.zelmMeasureRigError(rig) != ""
    assert caught.value.words[1:] in str(caught.value)
    with pytest.raises(ValueError, match="belongs to a rig"):
        core.zelm2ViewReadPtnImg(calib, 0, (image("left_00"), image("right_00")))
    m.zelmMeasureRigClose(rig)
    m.zelmMeasureRigClose(None)
    for use in (lambda: measure.zelmMeasureRigViews(rig), lambda: core.zelm2ViewSaveCalibData(calib)):
        with pytest.raises(ValueError, match="closed"):
            use()


def testParallelCamerasHaveATilt():
    left, right = truth.pair(0, 0)
    block = bytearray(truth.block(left, right))
    assert measure.zelmMeasureRigViews(measure.zelmMeasureRigOpen(bytes(block))) == 3
    block[16:20] = (2).to_bytes(4, "little")  # a parallel right camera, whatever its numbers then mean
    with pytest.raises(zelm.ZelmDataError):
        m.zelmMeasureRigTilt(m.zelmMeasureRigOpen(bytes(block)), "L")


def testPixelsAndPoints(desk, pairs):
    points, left, right = pairs
    projected = m.zelmMeasureProject(desk, "L", points)
    flat = m.zelmMeasureUndistort(desk, "L", left)
    np.testing.assert_allclose(m.zelmMeasureDistort(desk, "L", flat), left, atol=1e-9)
    lines = m.zelmMeasureEpipolarLines(desk, "L", projected)
    other = m.zelmMeasureUndistort(desk, "R", m.zelmMeasureProject(desk, "R", points))
    np.testing.assert_allclose((lines[:, :2] * other).sum(axis=1) + lines[:, 2], 0, atol=1e-8)
    done = m.zelmMeasureTriangulate(desk, left, right)
    assert np.abs(done.positions - points).max() < 0.5 and (done.statuses == 0).all()
    some = records.ZelmMeasurePoints(positions=np.full((60, 3), np.nan), statuses=np.empty(60, np.int32), maxError=1e-6)
    assert m.zelmMeasureTriangulate(desk, left, right, some) is some
    assert (some.statuses == records.ZelmMeasurePointStatus.MISMATCH).any() and some.errors is None
    with pytest.raises(ValueError, match="statuses has the shape"):
        m.zelmMeasureTriangulate(desk, left[1:], right[1:], some)
    assert m.zelmMeasureOverlap(desk, left) == 1


def testTrueDepths(desk):
    depths = np.asarray(Image.open(deskRig.SAMPLE / "scene_depth_left.png")).astype(np.uint16)
    unit = 0.02
    found = m.zelmMeasureTrueDepths(desk, depths, unit, [[640, 480], [300, 300]])
    near = depths[480, 640] * unit
    assert np.isnan(found.depths[0]) or found.depths[0] == pytest.approx(near, rel=0.05)
    assert set(found.seenByBoth) <= {0, 1}
    with pytest.raises(ValueError, match="map has the shape"):
        m.zelmMeasureTrueDepths(desk, depths[1:], unit, [[1, 1]])


def testUncertainty(desk, pairs):
    points, left, right = pairs
    covariance = m.zelmMeasureRigCovariance(desk)
    assert covariance.matrix.reshape(26, 26)[0, 0] > 0 and covariance.noise < 0.1
    saved = m.zelmMeasureCovarianceSave(desk)
    assert len(saved) == m.zelmMeasureCovarianceSize(desk) and saved[:4] == b"ZCOV"
    with measure.zelmMeasureRigOpen((deskRig.calibrated() / "rig.zcal").read_bytes()) as other:
        with pytest.raises(zelm.ZelmDataError):
            m.zelmMeasureRigCovariance(other)
        m.zelmMeasureRigSetCovariance(other, covariance)
        assert m.zelmMeasureCovarianceSave(other) == saved
        m.zelmMeasureRigSetCovariance(other, None)
        noise = records.ZelmMeasurePixelNoise(sigma=0.1)
        bare = m.zelmMeasurePointCovariance(other, left, right, noise)
        assert bare.calibration is None and np.isfinite(bare.image).all()
        m.zelmMeasureCovarianceLoad(other, saved)
    full = m.zelmMeasurePointCovariance(desk, left, right, noise)
    np.testing.assert_array_equal(full.image, bare.image)
    alike = np.tile([0.01, 0, 0.01], (60, 1))
    told = records.ZelmMeasurePixelNoise(left=alike, right=alike.copy())
    np.testing.assert_allclose(m.zelmMeasurePointCovariance(desk, left, right, told).image, full.image, rtol=1e-12)
    lengths = m.zelmMeasureLengths(desk, left, right, [[0, 1], [2, 3]], noise)
    np.testing.assert_allclose(lengths.lengths, np.linalg.norm(points[[0, 2]] - points[[1, 3]], axis=1), atol=0.5)
    np.testing.assert_allclose(lengths.deviations, np.hypot(lengths.image, lengths.calibration), rtol=1e-12)
    told.left = told.left[1:]
    with pytest.raises(ValueError, match="ZelmMeasurePixelNoise.left"):
        m.zelmMeasurePointCovariance(desk, left, right, told)


def testMatching(desk):
    left, right = image("scene_left"), image("scene_right")
    options = m.zelmMeasureMatchDefaults(desk)
    assert options.window == 21 and m.zelmMeasureMatchDefaults().limits.leftMin <= options.limits.leftMin
    assert 0.5 < m.zelmMeasureNoise(left) < 2
    grid = np.stack(np.meshgrid(np.arange(400, 480, 8.0), np.arange(330, 400, 8.0)), axis=-1).reshape(-1, 2)
    stages = []
    options.progress = lambda stage, done, total: stages.append(stage)
    found = m.zelmMeasureMatch(desk, left, right, grid, options)
    assert (found.statuses == 0).sum() > 20 and stages
    assert np.isnan(found.positions[found.statuses != 0]).all()
    # A small rig for the dense one: the middle of drawn plates.
    cameras = truth.pair(0, 0)
    drawn = [truth.drawPlate(camera)[160:320, 220:420].copy() for camera in cameras]
    for camera in cameras:
        camera.K = camera.K - np.array([[0, 0, 220], [0, 0, 160], [0, 0, 0]])
    block = bytearray(truth.block(*cameras))
    for at in (8, 20):
        block[at : at + 8] = np.array([200, 160], "<i4").tobytes()
    with measure.zelmMeasureRigOpen(bytes(block)) as rig:
        dense = m.zelmMeasureMatchDense(rig, *drawn)
    assert len(dense.statuses) == 200 * 160
    good = dense.statuses == 0
    assert good.sum() > 200 and abs(np.median(dense.positions[good][:, 2])) < 0.5  # the plate's plane


def testRows(desk, pairs):
    options = records.ZelmMeasureRowOptions(width=400, height=300)
    rows = m.zelmMeasureAlignRows(desk, options)
    assert (rows.width, rows.height) == (400, 300)
    map_ = m.zelmMeasureAlignRowsMap(desk, "L", options)
    assert map_.shape == (300, 400, 2) and map_.dtype == np.float32
    x, y = rows.leftSeen[:2] + rows.leftSeen[2:] // 2
    back = m.zelmMeasureAlignRowsPoints(desk, "L", map_[y, x].astype(float)[None], options)
    np.testing.assert_allclose(back, [[x, y]], atol=1e-3)
    with pytest.raises(ValueError):
        m.zelmMeasureAlignRowsMap(desk, "L", records.ZelmMeasureRowOptions(width=2**31 - 1))


def testDotsOfPlates(desk):
    plate, picture = deskRig.plateRecord(), image("left_03")
    dots, found = m.zelmMeasurePlateDots(picture, plate)
    assert found == len(dots.pixels) == 143 and dots.errors is None
    np.testing.assert_allclose(dots.plane, dots.grid * 10.0)
    centres, statuses = m.zelmMeasureDotCentres(picture, np.vstack([dots.pixels, [[5, 5]]]))
    assert (statuses[:-1] == 0).all() and statuses[-1] == 1 and np.isnan(centres[-1]).all()
    assert np.abs(centres[:-1] - dots.pixels).max() < 0.2
    sharp = m.zelmMeasureSharpness(picture, dots.pixels)
    assert 0.3 < sharp.largest < 1.5 and sharp.dots > 10
    shapes = np.column_stack([dots.pixels, np.tile(sharp.radius * np.eye(2).ravel(), (143, 1))])
    refined = m.zelmMeasureRefineDots(picture, shapes, neighbours=np.full(143, 3 * sharp.radius))
    assert (refined.statuses == 0).sum() > 50  # of dots that are seen as round as these shapes
    good = refined.statuses == 0
    assert np.abs(refined.centres[good] - dots.pixels[good]).max() < 0.3
    diagnosis, spots = m.zelmMeasureDiagnoseImage(picture, plate)
    assert diagnosis.read == 143 and len(spots.verdicts) == spots.capacity == diagnosis.spots >= 143
    assert m.zelmMeasureImageCauseName(diagnosis.cause) == "fine"
    blank = np.full((960, 1280), 128, np.uint8)
    assert m.zelmMeasurePlateTraits(blank, plate).brightLevel == 128
    assert m.zelmMeasureDiagnoseImage(blank, plate).diagnosis.cause != 0
    with pytest.raises(zelm.ZelmError):
        m.zelmMeasurePlateDots(blank, plate)
    figures = m.zelmMeasureFigures([3.0, 1.0, 2.0])
    assert (figures.count, figures.mean, figures.median, figures.max) == (3, 2.0, 2.0, 3.0)


def testAdjustment():
    rig, adjustment, read, ratio, _ = adjusted()
    plate = deskRig.plateRecord()
    assert len(read.pixels) == 143 and ratio.isDetermined and ratio.ratio == pytest.approx(1, abs=1e-3)
    dots, found = m.zelmMeasureRigDots(rig, plate, "L", 2)
    assert found == 143 and np.abs(dots.errors).max() < 1
    assert len(m.zelmMeasureRigEpipolar(rig, plate, 2)) == 2 * 143
    before = m.zelmMeasureAdjustSummary(adjustment)
    refined = m.zelmMeasureAdjustRefine(adjustment, "L", 0, image("left_00"))
    assert refined.refined > 130
    added = m.zelmMeasureAdjustAddView(adjustment, image("left_06"), image("right_06"))
    assert min(added) > 130
    with pytest.raises(zelm.ZelmDataError):
        measure.zelmMeasureAdjustDots(adjustment, "L", 0)  # not solved since
    measure.zelmMeasureAdjustSolve(adjustment)
    after = m.zelmMeasureAdjustSummary(adjustment)
    assert after.views == before.views + 1 == 7 and after.leftRms < 0.2
    assert m.zelmMeasureAdjustView(adjustment, 0) == "" and m.zelmMeasureAdjustView(adjustment, 99) is None
    dots = m.zelmMeasureAdjustDots(adjustment, "R", 6)
    assert len(dots.pixels) == dots.capacity == added.rightDots and np.isfinite(dots.residuals).all()
    checks = m.zelmMeasureAdjustChecks(adjustment)
    assert len(checks) >= 8 and all(len(check["text"]) > 10 for check in checks)
    with m.zelmMeasureAdjustRig(adjustment) as done:
        assert measure.zelmMeasureRigCovariance(done).noise > 0
        assert measure.zelmMeasureRigRelativePose(done).baseline == pytest.approx(120, rel=2e-3)
    assert len(m.zelmMeasureAdjustEpipolar(adjustment, 0)) > 200
    camera = m.zelmMeasureAdjustCamera(adjustment, "L")
    assert camera.intrinsics.alpha == pytest.approx(1688.6, rel=2e-3)
    pose = m.zelmMeasureAdjustPose(adjustment, "L", 0)
    np.testing.assert_allclose(pose.R.reshape(3, 3) @ pose.R.reshape(3, 3).T, np.eye(3), atol=1e-9)
    with pytest.raises(zelm.ZelmParamError):
        m.zelmMeasureAdjustCamera(adjustment, 7)
    assert isinstance(m.zelmMeasureAdjustError(adjustment), str)


def testAdjustmentOfPoints():
    _, _, _, _, (left, right) = adjusted()
    rows = [(view, side, dots) for side, all_ in ((76, left), (82, right)) for view, dots in enumerate(all_)]
    points = records.ZelmMeasureTargetPoints(
        views=6,
        count=sum(len(dots.grid) for _, _, dots in rows),
        view=np.concatenate([np.full(len(d.grid), v, np.int32) for v, _, d in rows]),
        side=np.concatenate([np.full(len(d.grid), s, np.int32) for _, s, d in rows]),
        grid=np.concatenate([d.grid for _, _, d in rows]),
        places=np.concatenate([np.column_stack([d.plane, np.zeros(len(d.plane))]) for _, _, d in rows]),
        pixels=np.concatenate([d.pixels for _, _, d in rows]),
        left=records.ZelmMeasurePointCamera(0, 1280, 960),
        right=records.ZelmMeasurePointCamera(0, 1280, 960),
    )
    assert (m.zelmMeasurePointViews(points) == 0).all()
    with m.zelmMeasureAdjustOpenPoints(points) as adjustment:
        with m.zelmMeasureAdjustStartRig(adjustment) as start:
            assert measure.zelmMeasureRigRelativePose(start).baseline == pytest.approx(120, rel=0.02)
        measure.zelmMeasureAdjustSolve(adjustment)
        assert measure.zelmMeasureAdjustSummary(adjustment).leftRms < 0.2
    m.zelmMeasureAdjustClose(adjustment)
    points.count += 1
    with pytest.raises(ValueError, match="ZelmMeasureTargetPoints.view"):
        m.zelmMeasureAdjustOpenPoints(points)


def testImageSets():
    _, _, _, _, (left, right) = adjusted()
    order = [1, 2, 3, 4, 5, 0]  # the right list is shifted

    def images(others):
        return records.ZelmMeasureImageSet(
            views=6,
            pattern=deskRig.plateRecord(),
            cameras=records.Zelm2ViewCameraDesc(0, 1280, 960, 0, 1280, 960),
            leftCounts=np.array([len(d.grid) for d in left]),
            leftPlane=np.concatenate([d.plane for d in left]),
            leftPixels=np.concatenate([d.pixels for d in left]),
            rightCounts=np.array([len(others[v].grid) for v in range(6)]),
            rightPlane=np.concatenate([others[v].plane for v in range(6)]),
            rightPixels=np.concatenate([others[v].pixels for v in range(6)]),
        )

    views, causes, pairing = m.zelmMeasurePairImages(images(right))
    assert len(views) == 6 and causes == [] and pairing.causes == 0 and pairing.agreeing == 6
    views, causes, pairing = m.zelmMeasurePairImages(images([right[v] for v in order]))
    assert [cause.kind for cause in causes] == [records.ZelmMeasureSetCauseKind.SHIFTED]
    wrong = images(right)
    wrong.leftCounts = wrong.leftCounts + 1
    with pytest.raises(ValueError, match="leftPlane"):
        m.zelmMeasurePairImages(wrong)


def testComparing(desk):
    block = (deskRig.calibrated() / "rig.zcal").read_bytes()
    with measure.zelmMeasureRigOpen(block) as other:
        same = m.zelmMeasureCompare(desk, other)
        assert same.left.rms < 1e-9 and same.baseline == 0.0
        assert m.zelmMeasureCompare(desk, desk).volume.count > 100  # one object twice locks nothing up
        differences = m.zelmMeasureCompareImage(desk, other, "R", [[100.0, 100.0], [600.0, 500.0]])
        np.testing.assert_allclose(differences, 0, atol=1e-8)


def testFilesOfOtherPrograms(desk):
    options = records.ZelmMeasureExportOptions(format=records.ZelmMeasureFileFormat.MRCAL)
    files = [m.zelmMeasureExport(desk, options, side) for side in "LR"]
    loss = m.zelmMeasureExportLoss(desk, options)
    assert loss.covariance == 1 and loss.views == 11
    given = records.ZelmMeasureImportOptions(format=records.ZelmMeasureFileFormat.MRCAL)
    rig, imported = m.zelmMeasureImport(given, files)
    with rig:
        assert imported.leftLensWorst < 1e-6
        baseline = measure.zelmMeasureRigRelativePose(rig).baseline
        assert baseline == pytest.approx(measure.zelmMeasureRigRelativePose(desk).baseline, rel=1e-9)
    with pytest.raises(zelm.ZelmDataError):
        m.zelmMeasureImport(given, [b"nothing", b"at all"])


def testFeatures(desk, pairs):
    points = pairs[0]
    flat = np.column_stack([points[:40, :2], np.full(40, 7.0)])
    all_ = np.vstack([flat, [[0, 0, 10], [0, 0, 20]]])
    given = records.ZelmMeasureFeaturePoints(count=42, points=all_)
    plane = records.ZelmMeasureFeature(kind=2, count=40, points=np.arange(40))
    line = records.ZelmMeasureFeature(kind=1, count=2, points=np.array([40, 41]))
    angle = records.ZelmMeasureRelation(kind=2, first=0, second=1)
    results, relations = m.zelmMeasureFeatures(given, [plane, line], desk, [angle])
    np.testing.assert_allclose(results[0].values[3:6], [0, 0, 1], atol=1e-9)
    assert results[0].used == 40 and (results[0].uses == 1).all() and np.abs(results[0].distances).max() < 1e-9
    assert relations[0].value == pytest.approx(np.pi / 2)
    results, relations = m.zelmMeasureFeatures(given, [plane])
    assert results[0].values[2] == pytest.approx(7.0) and relations == []
    plane.count = 41
    with pytest.raises(ValueError, match=r"features\[0\]"):
        m.zelmMeasureFeatures(given, [plane])


def testPlans(desk):
    plate = deskRig.plateRecord()
    options = records.ZelmMeasurePlanOptions()
    options.centre, options.extent = [0, 0, 380], [120, 100, 60]
    with m.zelmMeasurePlanOfRig(desk, plate, options) as plan:
        assert m.zelmMeasurePlanViews(plan) == 12 and m.zelmMeasurePlanError(plan) == ""
        assert m.zelmMeasurePlanView(plan, 0).taken == 1
        figures = m.zelmMeasurePlanFigures(plan)
        following = m.zelmMeasurePlanNext(plan)
        assert following.worst < figures.worst
        m.zelmMeasurePlanTake(plan, [following.pose])
        assert m.zelmMeasurePlanFigures(plan).worst == pytest.approx(following.worst, rel=1e-6)
    cameras = [measure.zelmMeasureRigCamera(desk, side) for side in "LR"]
    with m.zelmMeasurePlanOpen(*cameras, measure.zelmMeasureRigRelativePose(desk), plate, options) as plan:
        m.zelmMeasurePlanFewest(plan, 0.0, 5)
        assert m.zelmMeasurePlanViews(plan) == 5
        with pytest.raises(zelm.ZelmDataError) as caught:
            m.zelmMeasurePlanFewest(plan, 1e-9, 5)
        assert caught.value.words == m.zelmMeasurePlanError(plan)
    m.zelmMeasurePlanClose(plan)


def testPlates(desk):
    plate = deskRig.plateRecord()
    assert len(m.zelmMeasurePlateDesign(plate)) == 0
    cameras = [measure.zelmMeasureRigCamera(desk, side) for side in "LR"]
    far = m.zelmMeasurePlateDesign(plate, cameras, 300.0, 20000.0)
    flaws = records.ZelmMeasurePlateFlaw
    assert flaws.DOTS_SMALL in far["flaw"] and set(far["camera"]) == {0, 1}
    expanded, places, factor = m.zelmMeasurePlateExpanded(plate, 1e-5, 10.0, [[10.0, 0.0, 0.0]])
    assert factor == pytest.approx(1.0001) and expanded.d4 == pytest.approx(10.001) and places[0, 0] == 10.0 * factor
    assert m.zelmMeasurePlateExpanded(plate, 1e-5, 10.0).expandedPlaces.shape == (0, 3)


def testVerifying(desk):
    plate = deskRig.plateRecord()
    pictures = [image("left_05"), image("right_05")]
    dots = [zelm.detect(plate, picture) for picture in pictures]
    assert np.array_equal(dots[0]["grid"], dots[1]["grid"])
    grid, left, right = dots[0]["grid"].copy(), dots[0]["pixel"].copy(), dots[1]["pixel"].copy()
    refined = m.zelmMeasureRefinePlate(desk, plate, *pictures, grid, left, right)
    assert refined.left is left and (refined.statuses == 0).sum() > 130
    points, fit = m.zelmMeasurePlatePoints(desk, plate, grid, left, right)
    assert fit.count == 143 and fit.rms < 0.02 and abs(fit.scale) < 1e-3
    ends, nominal = m.zelmMeasurePlateLengths(plate, grid)
    assert len(ends) == len(nominal) > 20 and ends.dtype == np.int64
    errors, summary = m.zelmMeasureLengthErrors(desk, points.positions, ends, nominal)
    np.testing.assert_allclose(errors.measured, nominal, atol=0.05)
    assert summary.all.count == len(ends) and abs(summary.all.rms) < 0.02
    statuses, drift = m.zelmMeasureDrift(desk, left, right)
    assert drift.used + drift.wrong + drift.unusable == 143 and len(statuses) == 143 and not drift.found
    with pytest.raises(ValueError, match="read-only"):
        left.flags.writeable = False
        m.zelmMeasureRefinePlate(desk, plate, *pictures, grid, left, right)


def testRoundTargets(desk):
    plate = deskRig.plateRecord()
    pictures = [image("left_05"), image("right_05")]
    dots = [zelm.detect(plate, picture)["pixel"][60:63].copy() for picture in pictures]
    targets = m.zelmMeasureCircles(desk, *pictures, *dots)
    assert (targets.statuses <= 1).all() and targets.covariances.shape == (3, 9)
    radius = targets.radii[targets.statuses == 0]
    np.testing.assert_allclose(radius, 2.0, atol=0.2)


def testEveryFunctionIsCalledHere():
    if len(CALLED) < 40:
        pytest.skip("the other tests of this file did not run")
    assert set(measure.TABLE) - CALLED == set()
