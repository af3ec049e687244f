"""What the kinds of work find, against pairs with exact truth; and drift over days."""

import json

import numpy as np
import pytest
import zarr
from fleetSample import contentOfStore
from syntheticPair import HEIGHT, PLATE, WIDTH, block, pair, rotation

from zelm.batch import BatchError, pairsOfManifest, pairsOfPatterns, runBatch
from zelm.batch.batchCommand import main
from zelm.batch.stationDrift import driftTable

FULL_NAMES = dict(zip(("d0", "d1", "d2", "d3", "d4", "d5", "d6", "d7"), (
    "fieldWidth", "fieldHeight", "dotDiameter", "markerDiameter", "dotPitchX", "dotPitchY", "markerDistanceX",
    "markerDistanceY")))


def writeImage(path, image) -> None:
    path.write_bytes(b"P5\n%d %d\n255\n" % image.shape[::-1] + image.tobytes())


def planePoints(camera) -> np.ndarray:
    """Where the pixels of a camera without distortion see the plane z = 0: x and y of each."""
    x, y = np.meshgrid(np.arange(WIDTH), np.arange(HEIGHT))
    H = np.linalg.inv(camera.K @ np.column_stack([camera.R[:, 0], camera.R[:, 1], camera.t]))
    p = np.einsum("ij,jyx->iyx", H, np.stack([x, y, np.ones_like(x)]).astype(float))
    return p[:2] / p[2]


def drawPlate(camera) -> np.ndarray:
    """The plate of syntheticPair, with soft edges as an optical system makes them."""
    u, v = planePoints(camera)
    i, j = np.round(u / PLATE["d4"]), np.round(v / PLATE["d5"])
    marker = ((i == 0) & (j == 0)) | ((i == 3) & (j == 0)) | ((i == 0) & (j == 2))
    radius = np.where(marker, PLATE["d3"], PLATE["d2"]) / 2
    inside = (radius - np.hypot(u - i * PLATE["d4"], v - j * PLATE["d5"])) / 0.55  # plate units a pixel, about
    dot = np.where((np.abs(i) <= 5) & (np.abs(j) <= 4), 0.5 + 0.5 * np.tanh(inside / 0.9), 0.0)
    plate = (np.abs(u) < 115) & (np.abs(v) < 95)
    return np.where(plate, 210 - 170 * dot, 20).round().astype(np.uint8)


def drawTexture(camera) -> np.ndarray:
    """The plane z = 0, covered by a texture of many waves, as the camera sees it; no distortion."""
    u, v = planePoints(camera)
    random = np.random.default_rng(5)
    gray = np.full(u.shape, 128.0)
    for _ in range(60):
        a, b, phase = random.uniform(-1.2, 1.2, 2).tolist() + [random.uniform(0, 6.3)]
        gray += 9 * np.sin(a * u + b * v + phase)
    return np.clip(gray.round(), 0, 255).astype(np.uint8)


def writePoints(path, left, right, count=60, turned=None, noise=0.02, seed=0) -> np.ndarray:
    """Pixel pairs of random points; `turned` is a rotation of the right camera that its calibration does not know."""
    random = np.random.default_rng(seed)
    points = random.uniform([-80, -60, -40], [80, 60, 40], (count, 3))
    seen = right if turned is None else type(right)(right.K, turned @ right.R, turned @ right.t, right.k1, right.k2)
    pixels = np.hstack([left.project(points), seen.project(points)]) + random.normal(0, noise, (count, 4))
    rows = [f"p{i},{','.join(map(repr, row))}" for i, row in enumerate(pixels.tolist())]
    path.write_text("id,xL,yL,xR,yR\n" + "\n".join(rows) + "\n")
    return points


def test_triangulateFindsThePoints(tmp_path):
    left, right = pair()
    (tmp_path / "rig.zcal").write_bytes(block(left, right))
    truth = writePoints(tmp_path / "p_1.csv", left, right, noise=0.0)
    pairs = pairsOfPatterns("", "", str(tmp_path / "p_*.csv"))
    out = tmp_path / "out"
    beside = {"csv": str(tmp_path / "csv"), "ply": str(tmp_path / "ply")}
    summary = runBatch("triangulate", pairs, str(out), str(tmp_path / "rig.zcal"), processes=0, **beside)
    assert summary.made == 1
    group = zarr.open_group(str(out), mode="r")["rig/1"]
    assert np.allclose(group["positions"][:], truth, atol=1e-6)
    assert list(group["ids"][:3]) == ["p0", "p1", "p2"]
    assert group.attrs["figures"]["statuses"]["ok"] == len(truth)
    lines = (tmp_path / "csv/rig/1.csv").read_text().splitlines()
    assert lines[0].startswith("ids,statuses,left_x,left_y,right_x,right_y,positions_X,")
    assert np.allclose([float(cell) for cell in lines[1].split(",")[6:9]], truth[0], atol=1e-6)
    header, data = (tmp_path / "ply/rig/1.ply").read_bytes().split(b"end_header\n")
    assert b"element vertex 60" in header
    assert np.array_equal(np.frombuffer(data).reshape(-1, 3), group["positions"][:])


def test_matchFindsThePlane(tmp_path):
    left, right = pair(0.0, 0.0)
    (tmp_path / "rig.zcal").write_bytes(block(left, right))
    writeImage(tmp_path / "l_a.pgm", drawTexture(left))
    writeImage(tmp_path / "r_a.pgm", drawTexture(right))
    pairs = pairsOfPatterns(str(tmp_path / "l_*.pgm"), str(tmp_path / "r_*.pgm"))
    options = {"grid": 40, "window": 21, "minScore": 0.8, "precision": 0.1, "noise": 0.0}
    summary = runBatch("match", pairs, str(tmp_path / "out"), str(tmp_path / "rig.zcal"), options=options, processes=0)
    assert summary.failures == []
    group = zarr.open_group(str(tmp_path / "out"), mode="r")["rig/a"]
    good = group["statuses"][:] == 0
    assert good.sum() > 0.6 * len(good)
    # A pixel along the line is 1.4 plate units in depth here; the noise of rounding promises a hundredth of a pixel.
    assert np.abs(group["positions"][:][good][:, 2]).max() < 0.1
    assert group.attrs["figures"]["score"] > 0.99


@pytest.fixture
def plates(tmp_path):
    left, right = pair(0.0, 0.0)
    (tmp_path / "rig.zcal").write_bytes(block(left, right))
    writeImage(tmp_path / "l_a.pgm", drawPlate(left))
    writeImage(tmp_path / "r_a.pgm", drawPlate(right))
    (tmp_path / "plate.json").write_text(json.dumps({FULL_NAMES[name]: value for name, value in PLATE.items()}))
    return tmp_path


def test_verifyAndDetectReadThePlate(plates):
    pairs = pairsOfPatterns(str(plates / "l_*.pgm"), str(plates / "r_*.pgm"))
    rig, plate = str(plates / "rig.zcal"), str(plates / "plate.json")
    for kind in ("verify", "detect"):
        summary = runBatch(kind, pairs, str(plates / kind), rig, plate=plate, processes=0)
        assert summary.failures == []
    found = zarr.open_group(str(plates / "verify"), mode="r")["rig/a"]
    figures = found.attrs["figures"]
    assert figures["dots"] == 99  # 11 x 9
    assert np.allclose(found["positions"][:][:, :2], 20 * found["grid"][:], atol=0.1)
    assert figures["lengths"]["count"] > 40 and figures["lengths"]["rms"] < 0.05
    assert abs(figures["scale"]["value"]) < 1e-3 and figures["drift"]["found"] is False
    dots = zarr.open_group(str(plates / "detect"), mode="r")["rig/a"]
    left, _ = pair(0.0, 0.0)
    truth = left.project(np.column_stack([20 * dots["leftGrid"][:], np.zeros(99)]))
    assert np.hypot(*(dots["leftPixels"][:] - truth).T).max() < 0.3  # ellipse centres, drawn without smoothing


def test_measuredPlacesOfDotsAreTheTrueLengths(plates):
    content = json.loads((plates / "plate.json").read_text())
    grid = [(i, j) for i in range(-5, 6) for j in range(-4, 5)]
    content["positions"] = "places.csv"
    rows = [f"{i},{j},{20.2 * i},{20.2 * j}\n" for i, j in grid]
    (plates / "places.csv").write_text("column,row,x,y\n" + "".join(rows))
    (plates / "plate.json").write_text(json.dumps(content))
    pairs = pairsOfPatterns(str(plates / "l_*.pgm"), str(plates / "r_*.pgm"))
    arguments = ("verify", pairs, str(plates / "out"), str(plates / "rig.zcal"))
    runBatch(*arguments, plate=str(plates / "plate.json"), processes=0)
    found = zarr.open_group(str(plates / "out"), mode="r")["rig/a"]
    assert found.attrs["figures"]["scale"]["value"] == pytest.approx(-0.0099, abs=1e-3)  # 20 / 20.2
    (plates / "places.csv").write_text("0,0,0,0\n")
    with pytest.raises(BatchError, match="made with plate"):
        runBatch(*arguments, plate=str(plates / "plate.json"), processes=0)


def test_imagesOfAnotherSizeAreTold(plates):
    writeImage(plates / "l_a.pgm", np.zeros((10, 20), np.uint8))
    pairs = pairsOfPatterns(str(plates / "l_*.pgm"), str(plates / "r_*.pgm"))
    plate = str(plates / "plate.json")
    summary = runBatch("verify", pairs, str(plates / "out"), str(plates / "rig.zcal"), plate=plate, processes=0)
    assert "20 x 10 pixels, but the left camera was calibrated with 640 x 480" in summary.failures[0].reason


@pytest.fixture
def fortnight(tmp_path):
    """Two stations over five days; the right camera of "south" turns by 0.01 degree a day about its x axis."""
    left, right = pair()
    rows = ["pair,station,day,points"]
    for station in ("north", "south"):
        (tmp_path / f"{station}.zcal").write_bytes(block(left, right))
        for day in range(5):
            turned = rotation(np.radians(0.01 * day), 0) if station == "south" else None
            for i in range(2):
                name = f"{station}_{day}_{i}.csv"
                writePoints(tmp_path / name, left, right, turned=turned, seed=100 * day + 10 * i + len(rows))
                rows.append(f"d{day}_{i},{station},2025-03-0{day + 1},{name}")
    (tmp_path / "m.csv").write_text("\n".join(rows) + "\n")
    return tmp_path


def test_driftShowsByStationAndDay(fortnight):
    pairs = pairsOfManifest(str(fortnight / "m.csv"))
    out = str(fortnight / "out")
    assert runBatch("triangulate", pairs, out, str(fortnight / "{station}.zcal"), processes=0).made == 20
    rows = {(row["station"], row["day"]): row for row in driftTable(out)}
    assert len(rows) == 10
    for day in range(5):
        north, south = rows["north", f"2025-03-0{day + 1}"], rows["south", f"2025-03-0{day + 1}"]
        assert north["epipolar_rms_px"] == pytest.approx(0.02, rel=0.3) and north["drift_pairs"] == 0
        # 0.01 degree moves pixels by 0.157 across the lines; both images share it.
        expected = np.hypot(0.02, 0.157 * day / np.sqrt(2))
        assert south["epipolar_rms_px"] == pytest.approx(expected, rel=0.3)
        assert south["drift_pairs"] == (2 if day else 0)


def test_theProgramDrawsAndWritesTheTable(fortnight, capsys):
    common = ["triangulate", "--rig", str(fortnight / "{station}.zcal"), "--manifest", str(fortnight / "m.csv")]
    assert main([*common, "-o", str(fortnight / "out"), "--processes", "0", "--json"]) == 0
    assert json.loads(capsys.readouterr().out)["made"] == 20
    plot, table = fortnight / "drift.png", fortnight / "drift.csv"
    assert main(["drift", str(fortnight / "out"), "-o", str(table), "--plot", str(plot)]) == 0
    assert plot.read_bytes()[:4] == b"\x89PNG"
    assert len(table.read_text().splitlines()) == 11
    assert main(["drift", str(fortnight), "-o", str(table)]) == 1
    assert "not a store of results" in capsys.readouterr().err


def test_theProgramTellsFailuresAndUsage(tmp_path, capsys):
    left, right = pair()
    (tmp_path / "rig.zcal").write_bytes(block(left, right))
    writePoints(tmp_path / "p_1.csv", left, right)
    (tmp_path / "p_2.csv").write_text("1,2,3\n")
    common = ["triangulate", "--rig", str(tmp_path / "rig.zcal"), "-o", str(tmp_path / "out"), "--processes", "0"]
    assert main([*common, "--points", str(tmp_path / "p_*.csv")]) == 1
    shown = capsys.readouterr()
    assert "1 of 2 pairs made, 0 kept, 1 failed" in shown.out and "the same command does what is missing" in shown.out
    assert "rig/2: " in shown.err and "p_2.csv:1: four pixel coordinates" in shown.err
    assert main([*common, "--manifest", "m.csv", "--points", "p"]) == 2
    assert main([*common, "--points", str(tmp_path / "none_*.csv")]) == 1
    assert main(common) == 2
    (tmp_path / "rig.zcal").write_bytes(b"short")
    common[4] = str(tmp_path / "new")
    assert main([*common, "--points", str(tmp_path / "p_1.csv")]) == 1
    assert "rig.zcal" in capsys.readouterr().err
    with pytest.raises(SystemExit) as usage:
        main(["match", "-o", "x"])
    assert usage.value.code == 2


def test_processesGiveTheBytesOfOne(fortnight):
    pairs = pairsOfManifest(str(fortnight / "m.csv"))
    for count in (0, 2):
        runBatch("triangulate", pairs, str(fortnight / str(count)), str(fortnight / "{station}.zcal"), processes=count)
    assert contentOfStore(fortnight / "0") == contentOfStore(fortnight / "2")
