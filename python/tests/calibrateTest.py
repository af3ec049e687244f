"""Calibrating from Python gives what the same command in a shell gives, bit for bit, and refuses in its words."""

import json
import warnings

import numpy as np
import pytest
import zelm

from toolRuns import DATE, SAMPLE, filesOf, shell

CALIBRATION = ("rig.zcal", "rig.zcov", "rig.json")


def byName(folder, names=CALIBRATION):
    return {name: (folder / name).read_bytes() for name in names}


def testPathsGiveTheFilesOfTheShell(views, byHand, rig, tmp_path):
    told, out = byHand
    assert filesOf(rig) == byName(out)
    rig.report(tmp_path / "report.html")
    assert (tmp_path / "report.html").read_bytes() == (out / "report.html").read_bytes()
    assert told["verdict"]["status"] == rig.summary["verdict"]["status"] == "good"


def testArraysGiveTheSameAsPaths(views, rig, noFolderLeft, monkeypatch, tmp_path):
    monkeypatch.setenv(*next(iter(DATE.items())))
    ofArrays = zelm.calibrate(views.plate, views.left, np.stack(views.right))
    mine, theirs = filesOf(ofArrays), filesOf(rig)
    assert mine["rig.zcal"] == theirs["rig.zcal"] and mine["rig.zcov"] == theirs["rig.zcov"]
    for i in range(len(views.left)):
        for side in ("left", "right"):
            array, path = f"{side}_{i:04d}.pgm".encode(), f"{side}_{i:02d}.pgm".encode()
            mine["rig.json"] = mine["rig.json"].replace(array, path)
    assert mine["rig.json"] == theirs["rig.json"]
    ofArrays.report(tmp_path / "report.html")
    page = (tmp_path / "report.html").read_text()
    assert "left_0003.pgm" in page and str(noFolderLeft) not in page


def testTheSampleAsPathsObjectsAndArrays(monkeypatch, tmp_path):
    """PNG files given by name, by glob, and mixed with arrays."""
    monkeypatch.chdir(SAMPLE)
    left, right = [f"left_0{i}.png" for i in range(3)], [SAMPLE / f"right_0{i}.png" for i in range(3)]
    images = ["--left", *left, "--right", *right]
    told = shell("calibrate", "--plate", "truth.json", *images, "-o", tmp_path, folder=SAMPLE)
    byPaths = zelm.calibrate("truth.json", left, right)
    assert filesOf(byPaths) == byName(tmp_path)
    from zelm._png import readPng

    mixed = [readPng(left[0]), *left[1:]]
    byMixed = zelm.calibrate(zelm.Plate.load("truth.json"), mixed, right)
    assert filesOf(byMixed)["rig.zcal"] == byName(tmp_path)["rig.zcal"]
    assert told["views"][0]["left"]["image"] == "left_00.png"
    assert byMixed.summary["views"][0]["left"]["image"] == "left_0000.pgm"


@pytest.mark.parametrize(
    "words, given",
    [
        (["--no-adjust"], {"adjust": False}),
        (["--no-skew", "--square-pixels"], {"skew": False, "square_pixels": True}),
        (["--reference=2", "--dots=reader"], {"reference": 2, "dots": "reader"}),
        (["--noise=0.02", "--dot-diameters", "--bow"], {"noise": 0.02, "dot_diameters": True, "bow": True}),
        (["--left-model=1", "--left-region=0,0,640,480"], {"left_model": "tilted", "left_region": (0, 0, 640, 480)}),
        (["--min-dots=40", "--min-area=30", "--min-strength=4"], dict(min_dots=40, min_area=30, min_strength=4)),
    ],
)
def testOptionsAreThoseOfTheTool(views, monkeypatch, words, given):
    monkeypatch.chdir(views.folder)
    paths = ["--plate", "plate.json", "--left", "left_*.pgm", "--right", "right_*.pgm", "-o", "other"]
    shell("calibrate", *paths, *words, folder=views.folder)
    with warnings.catch_warnings():
        warnings.simplefilter("ignore", zelm.MeasurementWarning)
        mine = filesOf(zelm.calibrate("plate.json", "left_*.pgm", "right_*.pgm", **given))
    names = [name for name in CALIBRATION if (views.folder / "other" / name).exists()]
    assert mine == byName(views.folder / "other", names)
    for path in (views.folder / "other").iterdir():
        path.unlink()


def testOneCameraAlone(views, monkeypatch, tmp_path):
    monkeypatch.chdir(views.folder)
    monkeypatch.setenv(*next(iter(DATE.items())))
    words = ["calibrate", "--plate", "plate.json", "--left", "left_*.pgm"]
    told = shell(*words, "-o", "out", folder=views.folder)
    camera = zelm.calibrate("plate.json", "left_*.pgm")
    assert isinstance(camera, zelm.Camera)
    camera.save(tmp_path / "camera.json")
    summaries = [json.loads(path.read_text()) for path in (tmp_path / "camera.json", views.folder / "out/camera.json")]
    assert summaries[0] == summaries[1]
    assert (tmp_path / "camera.html").read_bytes() == (views.folder / "out/report.html").read_bytes()
    assert np.array_equal(camera.K, told["camera"]["A"])
    assert np.allclose(np.sqrt(np.diag(camera.covariance)), list(camera.deviations.values()), rtol=1e-12)
    assert np.array_equal(camera.covariance, camera.covariance.T)
    assert camera.poses.shape == (len(views.left), 3, 4) and camera.size == (640, 480)
    assert abs(camera.K[0, 0] - 850) < 5 * camera.deviations["fx"]
    assert "640 x 480, perspective, focal lengths 8" in repr(camera)


def pointRows(views):
    for number, view in enumerate(views.truth["views"]):
        for side in ("left", "right"):
            for dot in view[side]["dots"]:
                yield (f"v{number}", side, "/".join(map(str, dot["grid"])), *dot["pixel"], *dot["plane"])


def testPointsOfArraysAndFiles(views, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    rows = list(pointRows(views))
    text = "\n".join(",".join(map(str, row)) for row in rows)
    (tmp_path / "points.csv").write_text(f"view,camera,id,x,y,X,Y\n{text}\n")
    words = ["calibrate", "--points", "points.csv", "--left-size", "640x480", "--right-size", "640x480", "-o", "out"]
    shell(*words, "--noise=0.01", folder=tmp_path)
    columns = dict(zip(("view", "camera", "id", "x", "y", "X", "Y"), zip(*rows)))
    fields = np.array(rows, [(n, "U9") for n in ("view", "camera", "id")] + [(n, float) for n in "xyXY"])
    for points in ("points.csv", rows, columns, fields):
        rig = zelm.calibrate_points(points, left_size=(640, 480), right_size=(640, 480), noise=0.01)
        assert filesOf(rig) == byName(tmp_path / "out")
    assert rig.summary["left"]["alpha"] == pytest.approx(850, abs=1e-6)
    left = [row for row in rows if row[1] == "left"]
    assert isinstance(zelm.calibrate_points(left, left_size=(640, 480), noise=0.01), zelm.Camera)
    with pytest.raises(ValueError, match="points.csv: no column Y"):
        zelm.calibrate_points({name: columns[name] for name in ("view", "camera", "id", "x", "y", "X")})


def testOverlaysAndPicturesOfFailures(views, tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    empty = np.where(np.indices(views.left[3].shape).sum(axis=0) % 80 < 40, 60, 180).astype(np.uint8)
    cut, bad = [*views.left[:3], empty], [*views.right[:3], empty[::-1]]
    with pytest.warns(zelm.MeasurementWarning, match="skipping a view: left_0003.pgm and right_0003.pgm: "):
        zelm.calibrate(views.plate, cut, bad, overlays="drawn", failed="unread")
    assert sorted(path.name for path in (tmp_path / "drawn").iterdir())[0] == "view00_left.png"
    names = sorted(path.name for path in (tmp_path / "unread").iterdir())
    assert names == ["left_0003_failed.png", "right_0003_failed.png"]
    with pytest.raises(zelm.ToolError, match="; unread2/left_0003_failed.png shows what was found$"):
        zelm.calibrate(views.plate, cut, views.right, strict=True, failed="unread2")
    assert (tmp_path / "unread2" / "left_0003_failed.png").exists()
    with pytest.raises(zelm.ToolError, match="^left_0003.pgm: .*; failed=FOLDER keeps a picture of what was found$"):
        zelm.calibrate(views.plate, cut, views.right, strict=True)


def testAMissingFile(views, monkeypatch, noFolderLeft):
    with pytest.raises(zelm.ToolError, match="^none.pgm: no such file: check the name given to --left$") as caught:
        zelm.calibrate(views.plate, ["none.pgm", *views.left[1:]], views.right)
    assert (caught.value.status, caught.value.images) == (1, [])


@pytest.mark.filterwarnings("ignore:skipping")
def testAnotherPlate(views):
    other = zelm.Plate(**{**views.plate.fields(), "markerDistanceX": 30.0})
    with pytest.raises(zelm.ToolError) as caught:
        zelm.calibrate(other, views.left, views.right)
    assert caught.value.status == 1 and "left_0000.pgm" in str(caught.value)


def testARefusedCalibrationWithAndWithoutForce(views, noFolderLeft):
    shifted = [*views.right[1:], views.right[0]]
    with pytest.raises(zelm.ToolError, match="left_0000.pgm and right_0000.pgm: .*show different poses") as caught:
        zelm.calibrate(views.plate, views.left, shifted)
    assert caught.value.result["verdict"]["status"] == "refused"
    assert caught.value.cause == "list-shifted" and "left_0000.pgm" in caught.value.images
    with pytest.warns(zelm.MeasurementWarning, match="show different poses"):
        forced = zelm.calibrate(views.plate, views.left, shifted, force=True)
    assert forced.summary["verdict"]["status"] == "refused"
    with pytest.warns(zelm.MeasurementWarning, match="^rig.zcal: rig.json says of this calibration: Refused"):
        forced.epilines([[300, 200]], "left")


def testWhatCannotBeMeantIsRefused(views):
    with pytest.raises(ValueError, match="'fisheye' is no camera model"):
        zelm.calibrate(views.plate, views.left, views.right, left_model="fisheye")
    with pytest.raises(zelm.ToolError) as caught:
        zelm.calibrate(views.plate, views.left, views.right[:-1])
    assert caught.value.status == 2
