"""Rectified and row-aligned images are those of the program."""

import json

import deskRig
import numpy as np
import pytest
from PIL import Image

import zelm


@pytest.fixture(scope="module")
def rig():
    return zelm.Rig.load(deskRig.calibrated())


@pytest.fixture(scope="module")
def images():
    return tuple(np.asarray(Image.open(path)) for path in (deskRig.LEFT, deskRig.RIGHT))


def coloured(image):
    """A picture with colours, of the same size."""
    return np.stack([image, image // 2, 255 - image], axis=-1)


def testRectifiedImagesAreThoseOfTheProgram(rig, images, tmp_path):
    told = deskRig.run("rectify", deskRig.calibrated() / "rig.zcal", deskRig.LEFT, deskRig.RIGHT, "-o", tmp_path)
    made = rig.rectify(*images)
    for side in ("left", "right"):
        np.testing.assert_array_equal(getattr(made, side), np.asarray(Image.open(told[side]["rectified"])))
        assert list(getattr(made, side + "_reference")) == told[side]["reference"]
    fixed = rig.rectify(*images, reference=(600, 400))
    assert fixed.left_reference == fixed.right_reference == (600.0, 400.0)
    assert not np.array_equal(fixed.left, made.left)
    with pytest.raises(ValueError, match="reference"):
        rig.rectify(*images, reference=(1, 2, 3))


def testRowsAreThoseOfTheProgram(rig, images, tmp_path):
    for name, image in zip(("left.png", "right.png"), images):
        Image.fromarray(coloured(image)).save(tmp_path / name)
    words = ["--rows", "--maps", "--size", "900,700", "--depths", "300,700", "-o", tmp_path / "out"]
    calibration = deskRig.calibrated() / "rig.zcal"
    deskRig.run("rectify", calibration, tmp_path / "left.png", tmp_path / "right.png", *words)
    told = json.loads((tmp_path / "out" / "rows.json").read_text())
    made = rig.align_rows(coloured(images[0]), tmp_path / "right.png", size=(900, 700), depths=(300, 700))
    for name in ("R1", "R2", "P1", "P2", "Q"):
        np.testing.assert_array_equal(getattr(made, name), told[name])
    for side in ("left", "right"):
        drawn = np.asarray(Image.open(tmp_path / "out" / f"{side}_rows.png"))
        np.testing.assert_array_equal(getattr(made, side), drawn[..., :3])
        np.testing.assert_array_equal(getattr(made, side + "_map"), np.load(tmp_path / "out" / f"{side}_map.npy"))
        assert list(getattr(made, side + "_seen")) == told[side + "Seen"]
    assert (made.min_disparity, made.num_disparities) == (told["minDisparity"], told["numDisparities"])


def testAlignedPointsLieInOneRow(rig):
    points = deskRig.randomPairs(rig, 50)[0]
    rows = rig.align_rows()
    assert rows.left is None and rows.left_map.shape == (960, 1280, 2)
    camera = points @ rig.left.R.T + rig.left.t
    homogeneous = np.column_stack([camera @ rows.R1.T, np.ones(50)])
    left, right = (homogeneous @ P.T for P in (rows.P1, rows.P2))
    left, right = left[:, :2] / left[:, 2:], right[:, :2] / right[:, 2:]
    np.testing.assert_allclose(left[:, 1], right[:, 1], atol=1e-8)
    disparity = left[:, 0] - right[:, 0]
    again = np.column_stack([left, disparity, np.ones(50)]) @ rows.Q.T
    np.testing.assert_allclose(again[:, :3] / again[:, 3:], homogeneous[:, :3], rtol=1e-9)
    assert np.isnan(rows.points(np.full((2, 3), np.nan))).all() and rows.points(np.ones((2, 3))).shape == (2, 3, 3)


@pytest.mark.parametrize(
    "given", [dict(size=(0, 5)), dict(size=(40000, 5)), dict(focal=-1.0), dict(focal=np.nan), dict(depths=(5, 4))]
)
def testRowsThatCannotBeMeantAreRefused(rig, given):
    with pytest.raises((ValueError, zelm.ZelmError)):
        rig.align_rows(**given)


def testImagesOfAnotherSizeAreRefused(rig, images):
    with pytest.raises(ValueError, match="left: 1279 x 960 pixels"):
        rig.rectify(images[0][:, 1:], images[1])
