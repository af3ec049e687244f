"""Pictures show the numbers that they are of."""

import sys
from types import SimpleNamespace

import numpy as np
import pytest
import zelm
from zelm import plots

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("Agg")
from matplotlib import pyplot  # noqa: E402


@pytest.fixture(autouse=True)
def closed():
    yield
    pyplot.close("all")


def testResidualsAreThoseOfTheViews(rig):
    ax = rig.plot_residuals()
    heights = [bar.get_height() for bar in ax.patches]
    views = rig.summary["views"]
    assert heights == [view[side]["reprojection"]["rms"] for side in ("left", "right") for view in views]
    ax.figure.canvas.draw()


def testCoverageIsWhereTheDotsAre(rig, views):
    """The views are simulated: their truth has the pixels of all dots, which the calibration meets to tenths."""
    for ax, side in zip(rig.plot_coverage(), ("left", "right")):
        shown = np.column_stack(ax.lines[0].get_data())
        truth = np.array([dot["pixel"] for view in views.truth["views"] for dot in view[side]["dots"]])
        assert shown.shape == truth.shape
        assert np.abs(np.sort(shown, axis=0) - np.sort(truth, axis=0)).max() < 0.2
        share = float(ax.get_title().split(": ")[1].split("%")[0]) / 100
        fields = {(int(x // 80), int(y // 80)) for x, y in truth + 0.5}
        assert share == pytest.approx(len(fields) / 48, abs=0.0051)


def testTheRigStandsWhereItStands(rig, views):
    ax = rig.plot_rig()
    corners = np.array(ax.lines[0].get_data_3d()).T
    extent = [views.plate.fieldWidth, views.plate.fieldHeight]
    assert np.allclose(np.abs(corners[:, :2]), np.divide(extent, 2), atol=1e-9) and np.allclose(corners[:, 2], 0)
    last = np.array(ax.lines[len(rig.left.poses) - 1].get_data_3d()).T
    first, pose = rig.left.poses[0], rig.left.poses[-1]
    middle = first[:, :3].T @ (pose[:, 3] - first[:, 3])
    assert np.allclose(last[:4].mean(axis=0), middle)
    texts = {text.get_text(): np.array(text.get_position_3d()) for text in ax.texts}
    assert np.linalg.norm(texts["left"] - texts["right"]) == pytest.approx(rig.baseline, rel=1e-9)


def testUncertaintyIsThatOfTriangulate(rig):
    ax = rig.plot_uncertainty(depth=350.0, noise=0.1)
    shown = np.asarray(ax.images[0].get_array())
    assert shown.shape == (36, 48)
    known = np.isfinite(shown)
    assert 0.5 < known.mean() <= 1
    y, x = np.argwhere(known)[len(np.argwhere(known)) // 2]
    left = np.array([[(x + 0.5) * 640 / 48, (y + 0.5) * 640 / 48]])
    ray = np.linalg.inv(rig.left.K) @ [*rig.left.undistort(left)[0], 1]
    point = rig.left.R.T @ (350.0 * ray - rig.left.t)
    pixels = rig.project(point[None])
    assert np.allclose(pixels[0], left)
    covariance = rig.triangulate(*pixels, noise=0.1)[1][0]
    assert shown[y, x] == pytest.approx(np.sqrt(rig.left.R[2] @ covariance @ rig.left.R[2]), rel=1e-9)
    with pytest.raises(ValueError, match="no point at a depth of 0.01 mm is seen by both"):
        rig.plot_uncertainty(depth=0.01)


def testDepthsOfACloud(rig, views):
    cloud = SimpleNamespace(left=np.array([[8.0, 8], [16, 8], [8, 16]]), depth=np.array([1.0, 2, 3]), unit="mm")
    ax = plots.plot_cloud(cloud, views.left[0])
    (dots,) = ax.collections
    assert np.array_equal(dots.get_offsets(), cloud.left) and np.array_equal(dots.get_array(), cloud.depth)
    assert "3 points, depth 1 to 3 mm" in ax.get_title()
    plots.plot_cloud(cloud).figure.canvas.draw()
    with pytest.raises(ValueError, match="no points"):
        plots.plot_cloud(SimpleNamespace(left=np.empty((0, 2)), depth=np.empty(0), unit="mm"))


def testOneCamera(views):
    camera = zelm.calibrate(views.plate, views.left)
    assert len(camera.plot_residuals().patches) == len(views.left)
    assert len(camera.plot_coverage().lines) == 1


def testGivenAxesAreDrawnInto(rig):
    _, (first, second) = pyplot.subplots(1, 2)
    assert rig.plot_residuals(ax=first) is first
    rig.plot_coverage(ax=[first, second])
    with pytest.raises(ValueError, match="2 axes are needed, not 1"):
        rig.plot_coverage(ax=first)


def testARigWithoutItsSummary(rig):
    bare = zelm.Rig(rig.block)
    with pytest.raises(ValueError, match="rig.json is not beside"):
        bare.plot_residuals()
    assert len(bare.plot_rig().lines) > len(bare.left.poses)


def testWithoutMatplotlibTheRemedyIsTold(rig, monkeypatch):
    monkeypatch.setitem(sys.modules, "matplotlib", None)
    with pytest.raises(ImportError, match="plots need matplotlib: install it"):
        rig.plot_residuals()
