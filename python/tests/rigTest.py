"""Rigs: files, cameras, and points of pixel pairs against the program and the C functions."""

import copy
import json
import pickle
import shutil
import threading
import warnings

import deskRig
import numpy as np
import pytest
import syntheticPair as truth

import zelm
from zelm import core, measure


@pytest.fixture(scope="module")
def rig():
    return zelm.Rig.load(deskRig.calibrated())


@pytest.fixture()
def files(tmp_path):
    for name in ("rig.zcal", "rig.zcov", "rig.json"):
        shutil.copy(deskRig.calibrated() / name, tmp_path)
    return tmp_path


def testLoadsWhatStandsBesideTheFile(rig, files):
    assert rig.block == (files / "rig.zcal").read_bytes()
    assert rig.covariance_block == (files / "rig.zcov").read_bytes()
    assert rig.summary == json.loads((files / "rig.json").read_text())
    assert (rig.unit, rig.verdict, rig.views) == ("mm", "good", 12)
    assert zelm.Rig.load(files / "rig.zcal").block == rig.block
    (files / "rig.zcov").unlink()
    (files / "rig.json").unlink()
    bare = zelm.Rig.load(str(files))
    assert bare.covariance_block is None and bare.covariance is None and bare.summary is None
    assert bare.unit == "plate units" and bare.verdict is None


def testCamerasHaveTheNumbersOfTheSummary(rig):
    for camera in (rig.left, rig.right):
        told = rig.summary["left" if camera.side == "L" else "right"]
        assert camera.size == (1280, 960) and camera.model == "perspective"
        assert camera.K[0, 0] == told["alpha"] and camera.K[0, 2] == told["cx"] and camera.distortion[0] == told["k1"]
        assert camera.poses.shape == (12, 3, 4)
        np.testing.assert_array_equal(camera.poses[0], np.column_stack([camera.R, camera.t]))
    np.testing.assert_allclose(rig.R, rig.right.R @ rig.left.R.T, atol=1e-12)
    np.testing.assert_allclose(rig.t, rig.right.t - rig.R @ rig.left.t, atol=1e-9)
    assert rig.baseline == pytest.approx(np.linalg.norm(rig.right.centre - rig.left.centre), rel=1e-12)
    assert rig.baseline == pytest.approx(120.0, rel=1e-3)  # of the rendered rig
    assert "1280 x 960" in repr(rig) and "good" in repr(rig) and "left camera" in repr(rig.left)


def testSavesTheSameBytes(rig, tmp_path):
    assert rig.save(tmp_path / "copy.zcal") == tmp_path / "copy.zcal"
    for ending in ("zcal", "zcov", "json"):
        written = (tmp_path / f"copy.{ending}").read_bytes()
        assert written == (deskRig.calibrated() / f"rig.{ending}").read_bytes()
    assert sorted(path.name for path in tmp_path.iterdir()) == ["copy.json", "copy.zcal", "copy.zcov"]
    assert deskRig.run("info", tmp_path / "copy.zcal")["views"] == 12
    zelm.Rig(rig.block).save(tmp_path / "copy.zcal")  # without a covariance: the other one must not stay
    assert not (tmp_path / "copy.zcov").exists()
    with pytest.raises(ValueError, match="ending .zcal"):
        rig.save(tmp_path / "copy.json")
    with pytest.raises(FileNotFoundError):
        rig.save(tmp_path / "nowhere" / "rig.zcal")


def testFolderHasTheFilesAndGoesAgain(rig):
    rig._page = "<html></html>"
    try:
        with rig._folder() as folder:
            assert sorted(p.name for p in folder.iterdir()) == ["report.html", "rig.json", "rig.zcal", "rig.zcov"]
            assert zelm.Rig._from_folder(folder).summary == rig.summary
    finally:
        del rig._page
    assert not folder.exists()


@pytest.mark.parametrize("copied", [copy.deepcopy, lambda rig: pickle.loads(pickle.dumps(rig))])
def testCopiesMeasureTheSame(rig, copied):
    _, left, right = deskRig.randomPairs(rig, 20)
    again = copied(rig)
    assert again.summary == rig.summary and again is not rig
    for one, other in zip(rig.triangulate(left, right, noise=0.05), again.triangulate(left, right, noise=0.05)):
        np.testing.assert_array_equal(one, other)


def testARefusedCalibrationWarnsInTheWordsOfTheProgram(files):
    summary = json.loads((files / "rig.json").read_text())
    summary["verdict"] = {"status": "refused", "sentence": "Refused, not to be measured with: a test."}
    (files / "rig.json").write_text(json.dumps(summary))
    told = deskRig.run("info", files / "rig.zcal")["warnings"]
    with pytest.warns(zelm.MeasurementWarning) as caught:
        rig = zelm.Rig.load(files / "rig.zcal")
    assert [str(warning.message) for warning in caught] == told
    assert caught[0].filename == __file__ and rig.verdict == "refused"


def testFilesOfOtherCalibrationsAreToldApart(files):
    other = zelm.Rig(truth.block(*truth.pair()))
    (files / "rig.zcal").write_bytes(other.block)
    with pytest.raises(zelm.ZelmDataError, match="rig.zcov: "):
        zelm.Rig.load(files)
    (files / "rig.zcov").unlink()
    assert zelm.Rig.load(files).summary is None  # rig.json tells of other cameras


@pytest.mark.parametrize("content", [b"", b"abc", b"\0" * 3692])
def testDamagedFilesAreRefusedByName(files, content):
    (files / "rig.zcal").write_bytes(content)
    with pytest.raises(zelm.ZelmDataError, match="rig.zcal: "):
        zelm.Rig.load(files)
    with pytest.raises(FileNotFoundError, match="none.zcal"):
        zelm.Rig.load(files / "none.zcal")
    with pytest.raises(FileNotFoundError, match="rig.zcal"):
        zelm.Rig.load(files / "..")


def testTriangulatesAsTheProgramDoes(rig, tmp_path):
    points, left, right = deskRig.randomPairs(rig, 300)
    left[:3] += [[0, 40], [3000, 0], [0, -3]]  # a mismatch, outside, a mismatch
    left[3], right[3] = right[3], left[3] + [300, 0]
    np.savetxt(tmp_path / "pairs.csv", np.hstack([left, right]), fmt="%.17g", delimiter=",")
    told = deskRig.run("triangulate", deskRig.calibrated() / "rig.zcal", tmp_path / "pairs.csv", "-o",
                       tmp_path / "points.csv", "--noise", "0.03")  # fmt: skip
    with pytest.warns(zelm.MeasurementWarning, match="gave no point"):
        done = rig.triangulate(left, right, noise=0.03)
    assert done.max_error == told["maxError"]
    assert list(done.status) == [entry["status"] for entry in told["list"]]
    assert set(done.status) >= {"ok", "mismatch", "outside"}
    for at, entry in enumerate(told["list"]):
        if entry["status"] == "ok":
            assert list(done.points[at]) == entry["position"] and list(done.error[at]) == entry["errorPx"]
            np.testing.assert_allclose(np.sqrt(np.diag(done.cov[at])), entry["sigma"], rtol=1e-14)
            np.testing.assert_array_equal(np.sqrt(np.diag(done.noise_cov[at])), entry["noiseSigma"])
            np.testing.assert_array_equal(np.sqrt(np.diag(done.calibration_cov[at])), entry["calibrationSigma"])
        else:
            assert np.isnan(done.points[at]).all() and np.isnan(done.cov[at]).all()


def testTriangulatesAsTheFunctionOfTheLibrary(rig):
    points, left, right = deskRig.randomPairs(rig, 200)
    with measure.zelmMeasureRigOpen(rig.block) as handle:
        plain = measure.zelmMeasureTriangulate(handle, left, right)
    done = rig.triangulate(left, right, noise=0.02)
    for one, other in ((plain.positions, done.points), (plain.errors, done.error), (plain.angles, done.angle)):
        np.testing.assert_array_equal(one, other)
    miss = points - done.points
    chi = np.einsum("ni,nij,nj->n", miss, np.linalg.inv(done.noise_cov), miss)
    assert chi.mean() == pytest.approx(3.0, abs=6 * np.sqrt(6 / 200))  # chi-square of 3: variance 6
    assert np.linalg.eigvalsh(done.cov).min() > 0
    np.testing.assert_array_equal(rig.triangulate(left, right, noise=0.02, covariance=False).points, done.points)
    assert np.isnan(rig.triangulate(left, right, noise=0.02, covariance=False).cov).all()


def testExactPairsDoNotWarn(rig):
    points = deskRig.randomPairs(rig, 50)[0]
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        done = rig.triangulate(*rig.project(points))
    np.testing.assert_allclose(done.points, points, atol=1e-8)
    points_, cov = done
    assert points_ is done.points and cov is done.cov and done.ok.all()
    again = pickle.loads(pickle.dumps(done))
    np.testing.assert_array_equal(again.angle, done.angle)


def testWhatSpeaksAgainstPointsIsWarnedOf(rig):
    points, left, right = deskRig.randomPairs(rig, 40, noise=0.2)
    with pytest.warns(zelm.MeasurementWarning, match=r"pass each other, by .* say with noise="):
        rig.triangulate(left, right)
    with pytest.warns(zelm.MeasurementWarning, match="miss each other by more than"):
        rig.triangulate(left, right + [0, 25])
    with pytest.warns(zelm.MeasurementWarning) as caught:
        done = rig.triangulate([[150, 480], *left], [[1200, 480], *right], noise=1.0, max_error=500)
    assert done.status[0] == "behind" and done.ok[1:].all() and np.isnan(done.points[0]).all()
    assert [str(warning.message) for warning in caught] == ["1 of 41 pixel pairs gave no point: 1 behind"]


def testARigWithoutCovarianceTellsPointsAlone(rig):
    bare = zelm.Rig(rig.block)
    _, left, right = deskRig.randomPairs(rig, 10)
    points, cov = bare.triangulate(left, right)
    np.testing.assert_array_equal(points, rig.triangulate(left, right, noise=1.0).points)
    assert np.isnan(cov).all()
    with pytest.raises(ValueError, match="rig.zcov"):
        bare.triangulate(left, right, noise=0.1)
    with pytest.raises(ValueError, match="give noise="):
        bare.lengths(left, right)
    one, other = (r.lengths(left, right, noise=0.1) for r in (bare, rig))
    for name in ("length", "noise_sigma"):
        np.testing.assert_array_equal(one[name], other[name])
    assert np.isnan(one["sigma"]).all() and np.isfinite(other["sigma"]).all()


def testLengthsAreThoseOfTheProgram(rig, tmp_path):
    _, left, right = deskRig.randomPairs(rig, 6)
    rows = np.column_stack([np.arange(6), left, right])
    np.savetxt(tmp_path / "pairs.csv", rows, fmt=["%d"] + ["%.17g"] * 4, delimiter=",", comments="",
               header="id,xL,yL,xR,yR")  # fmt: skip
    ends = [(0, 1), (1, 2), (3, 5)]
    between = [word for a, b in ends for word in ("--between", f"{a},{b}")]
    told = deskRig.run("length", deskRig.calibrated() / "rig.zcal", tmp_path / "pairs.csv", *between, "--noise", "0.02")
    done = rig.lengths(left, right, ends, noise=0.02)
    names = {"length": "length", "u95": "U95", "sigma": "sigma", "noise_sigma": "noiseSigma"}
    for row, entry in zip(done, told["lengths"]):
        assert row["status"] == "ok"
        for name, other in {**names, "calibration_sigma": "calibrationSigma"}.items():
            assert row[name] == entry[other]
    with pytest.raises(ValueError, match="pairs of ends"):
        rig.lengths(left[:5], right[:5])
    assert len(rig.lengths(left, right)) == 3


def testPixelsAgreeWithTheCore(rig):
    points, left, right = deskRig.randomPairs(rig, 25)
    with core.zelm2ViewLoadCalibData(rig.block) as pair:
        for camera, raw in ((rig.left, left), (rig.right, right)):
            side = camera.side
            flat = camera.undistort(raw)
            lines = rig.epipolar_lines(raw, side)
            for at in range(25):
                assert tuple(camera.project(points)[at]) == tuple(core.zelm2ViewChange3Dto2D(pair, side, points[at]))
                assert tuple(flat[at]) == tuple(core.zelm2ViewUnDistortPoint(pair, side, raw[at]))
                assert tuple(camera.distort(flat)[at]) == tuple(core.zelm2ViewDistortPoint(pair, side, flat[at]))
                line = core.zelm2ViewCalcEpiLine(pair, "R" if side == "L" else "L", raw[at])
                assert tuple(lines[at]) == (line.a, line.b, line.c)
            np.testing.assert_allclose(camera.distort(flat), raw, atol=1e-9)
    flat = rig.right.undistort(rig.right.project(points))
    distances = (rig.epipolar_lines(rig.left.project(points), "L") * np.column_stack([flat, np.ones(25)])).sum(axis=1)
    np.testing.assert_allclose(distances, 0, atol=1e-8)


def testThreadsShareARig(rig):
    _, left, right = deskRig.randomPairs(rig, 2000)
    wanted = rig.triangulate(left, right, noise=1.0)
    failures = []

    def work():
        for _ in range(5):
            done = rig.triangulate(left, right, noise=1.0)
            if not np.array_equal(done.points, wanted.points) or not np.array_equal(done.cov, wanted.cov):
                failures.append(done)

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures


def testCamerasByName(rig):
    assert rig.camera("left") is rig.left is rig.camera("L") and rig.camera("R") is rig.right
    with pytest.raises(ValueError):
        rig.camera("middle")
