"""Matching images: the points are those of the program, and the files it writes."""

import threading
import warnings

import deskRig
import numpy as np
import pytest
from PIL import Image

import zelm

PART = (360, 300, 120, 96)  # with targets and texture


@pytest.fixture(scope="module")
def rig():
    return zelm.Rig.load(deskRig.calibrated())


@pytest.fixture(scope="module")
def images():
    return tuple(np.asarray(Image.open(path)) for path in (deskRig.LEFT, deskRig.RIGHT))


@pytest.fixture(scope="module")
def sparse(rig, images):
    return rig.match(*images, 24)


def program(folder, *words):
    """The files that `zelm match` writes."""
    names = {kind: folder / f"tool.{kind}" for kind in ("csv", "ply")}
    command = ["match", deskRig.calibrated() / "rig.zcal", deskRig.LEFT, deskRig.RIGHT, "-o", names["csv"], "--ply"]
    deskRig.run(*command, names["ply"], *words)
    return names


def testGridIsThatOfTheProgramBitForBit(sparse, tmp_path):
    files = program(tmp_path, "--grid", "24")
    sparse.to_csv(tmp_path / "own.csv")
    sparse.to_ply(tmp_path / "own.ply")
    assert (tmp_path / "own.csv").read_bytes() == files["csv"].read_bytes()
    assert (tmp_path / "own.ply").read_bytes() == files["ply"].read_bytes()
    program(tmp_path, "--grid", "24", "--ply-text")
    sparse.to_ply(tmp_path / "own.ply", text=True)
    assert (tmp_path / "own.ply").read_bytes() == files["ply"].read_bytes()


def testListsAndSettingsAreThoseOfTheProgram(rig, images, tmp_path):
    rng = np.random.default_rng(3)
    points = np.column_stack([rng.uniform(300, 700, 60), rng.uniform(250, 600, 60)])
    np.savetxt(tmp_path / "points.csv", points, fmt="%.17g", delimiter=",")
    words = ["--window", "15", "--depth", "300,600", "--min-score", "0.7", "--noise", "1.2", "--precision", "0.2"]
    files = program(tmp_path, "--points", tmp_path / "points.csv", *words)
    given = dict(window=15, depth=(300, 600), min_score=0.7, noise=1.2, precision=0.2)
    cloud = rig.match(str(deskRig.LEFT), deskRig.RIGHT, points=points, **given)
    cloud.to_csv(tmp_path / "own.csv")
    assert (tmp_path / "own.csv").read_bytes() == files["csv"].read_bytes()
    again = rig.match(*images, points=points, threads=1, **given)
    np.testing.assert_array_equal(again.xyz, cloud.xyz)


def testPointsAgreeWithTriangulation(rig, sparse):
    assert len(sparse) > 300 and set(sparse.status) > {"ok", "no_texture"}
    assert len(sparse) == sparse.counts["ok"] == (sparse.status == "ok").sum()
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        done = rig.triangulate(sparse.left, sparse.right)
    np.testing.assert_allclose(sparse.xyz[done.ok], done.points[done.ok], atol=1e-6)
    np.testing.assert_allclose(sparse.calibration_cov[done.ok], done.calibration_cov[done.ok], rtol=1e-6, atol=1e-12)
    depth = (sparse.xyz @ rig.left.R.T + rig.left.t)[:, 2]
    np.testing.assert_allclose(sparse.depth, depth, rtol=1e-9)
    assert "Cloud of" in repr(sparse)


def testTableAndMapHaveWhatTheCloudHas(sparse, images):
    table = sparse.to_numpy()
    assert len(table) == len(sparse)
    for name in ("id", "xyz", "left", "right", "score", "depth", "depth_sigma", "error", "gray"):
        np.testing.assert_array_equal(table[name], getattr(sparse, name))
    depths = sparse.depth_map()
    assert depths.shape == (960, 1280) and np.isfinite(depths).sum() == len(sparse)
    x, y = sparse.left.astype(int).T
    np.testing.assert_array_equal(depths[y, x], sparse.depth)
    np.testing.assert_array_equal(sparse.gray, images[0][y, x])


def testRegionLooksForItsPixelsAlone(rig, images):
    x, y, width, height = PART
    cloud = rig.match(*images, 6, region=PART)
    inside = (cloud.pixels >= [x, y]) & (cloud.pixels < [x + width, y + height])
    assert inside.all() and len(cloud.pixels) == 20 * 16 and ((cloud.pixels - 3) % 6 == 0).all()
    part = (x, y, 60, 40)
    dense = rig.match(*images, dense=True, region=part, depth=(350, 450))
    assert len(dense) > 0.5 * 60 * 40 and set(dense.status) <= {"ok", "no_match", "ambiguous", "inconsistent"}


def testArraysOfAnyFormAreTheSameImage(rig, images, sparse):
    left, right = images
    wide = np.zeros((960, 1500), np.uint8)
    wide[:, 100:1380] = right
    frozen = np.repeat(left[:, :, None], 3, axis=2).astype(np.uint16) * 257
    frozen.flags.writeable = False
    cloud = rig.match(frozen, wide[:, 100:1380], 24)
    np.testing.assert_array_equal(cloud.xyz, sparse.xyz)


def testProgressIsToldAndEndsTheWork(rig, images):
    told = []
    rig.match(*images, 16, region=PART, progress=lambda *what: told.append(what))
    stages = {stage for stage, _, _ in told}
    assert stages and all(0 <= done <= total for _, done, total in told)
    with pytest.raises(zelm.ZelmCancelledError):
        rig.match(*images, 16, region=PART, progress=lambda *_: True)

    class Stop(Exception):
        pass

    def stop(*_):
        raise Stop("enough")

    with pytest.raises(Stop, match="enough"):
        rig.match(*images, 16, region=PART, progress=stop)


def testImagesThatDoNotBelongTogetherAreWarnedOf(rig, images):
    rng = np.random.default_rng(1)
    noise = rng.integers(0, 255, (960, 1280), dtype=np.uint8)
    with pytest.warns(zelm.MeasurementWarning, match="belong together"):
        rig.match(images[0], noise, 8, region=PART)


@pytest.mark.parametrize(
    ("given", "words"),
    [
        (dict(step=0), "step is 0"),
        (dict(window=20), "must be odd"),
        (dict(window=1001), "larger than images"),
        (dict(depth=(400, 300)), "empty range"),
        (dict(depth=(1, 2)), "see nothing in common"),
        (dict(region=(1200, 0, 100, 100)), "not inside"),
        (dict(region=(0, 0, 1, 1), step=100), "no pixel of the grid"),
        (dict(points=[[1, 2, 3]]), "points has the shape"),
        (dict(dense=True, points=[[1, 2]]), "give one of them"),
    ],
)
def testSettingsThatCannotBeMeantAreRefused(rig, images, given, words):
    with pytest.raises((ValueError, zelm.ZelmError), match=words):
        rig.match(*images, **given)


def testWrongImagesAreRefusedByName(rig, images):
    with pytest.raises(ValueError, match="right: 1280 x 959 pixels, but the right camera was calibrated with"):
        rig.match(images[0], images[1][1:])
    with pytest.raises(TypeError, match="there is no argument 'windw'"):
        rig.match(*images, windw=5)


def testThreadsMatchAtTheSameTime(rig, images):
    wanted = rig.match(*images, 12, region=PART)
    results = []
    threads = [threading.Thread(target=lambda: results.append(rig.match(*images, 12, region=PART))) for _ in range(3)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(results) == 3 and all(np.array_equal(cloud.xyz, wanted.xyz) for cloud in results)


def testNothingIsHalfWritten(sparse, tmp_path):
    (tmp_path / "cloud.ply").mkdir()
    with pytest.raises(IsADirectoryError):
        sparse.to_ply(tmp_path / "cloud.ply")
    with pytest.raises(FileNotFoundError):
        sparse.to_csv(tmp_path / "nowhere" / "cloud.csv")
    assert [path.name for path in tmp_path.iterdir()] == ["cloud.ply"]
