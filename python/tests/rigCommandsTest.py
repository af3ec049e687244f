"""What a rig does by the program is what the same command does in a shell, bit for bit."""

import json
import shutil
import warnings

import numpy as np
import pytest
import zelm
from zelm._png import readPng
from zelm._result import Result, table
from zelm._tables import csvText, readCsv

from toolRuns import SAMPLE, description, filesOf, shell


@pytest.fixture
def byShell(rig, views, tmp_path, monkeypatch):
    """A folder with the rig's files and its views, which is the current one."""
    monkeypatch.chdir(tmp_path)
    for name, content in filesOf(rig).items():
        (tmp_path / name).write_bytes(content)
    for path in views.folder.glob("*.*"):
        shutil.copy(path, tmp_path)
    rows, _ = views.pairs()
    (tmp_path / "pairs.csv").write_text("id,xL,yL,xR,yR\n" + "\n".join(",".join(map(str, row)) for row in rows) + "\n")

    def run(*words, code=0):
        return shell(*words, folder=tmp_path, code=code)

    return run


def agree(mine, told, without=()):
    """A result has all that the tool told, but for what says how the run went."""
    left_out = {"status", "warnings", "exitCode", "message", "cause", "images", *without}
    assert {n: v for n, v in mine.items() if n not in left_out} == {n: v for n, v in told.items() if n not in left_out}


def testVerifyByAPlate(byShell, rig, views):
    paths = ["--left", "left_*.pgm", "--right", "right_*.pgm"]
    told = byShell("verify", "rig.zcal", "--plate", "plate.json", *paths, "--tolerance", "0.5", "-o", "v.csv")
    mine = rig.verify("plate.json", "left_*.pgm", "right_*.pgm", tolerance=0.5)
    assert mine.passed and mine.words == "" and mine.lengths.withinTolerance is True
    agree(mine, told, ["csv", "rig", "passed", "words"])
    lengths = mine.table()
    assert len(lengths) == told["lengths"]["all"]["count"]
    assert np.array_equal(lengths, readCsv("v.csv", ("view", "from", "to", "region")))
    assert np.sqrt(np.mean(lengths["error"] ** 2)) == pytest.approx(mine.lengths.all.rms, rel=1e-6)
    ofArrays = rig.verify(views.plate, views.left, views.right, tolerance=0.5)
    agree(ofArrays["drift"], mine["drift"])
    assert ofArrays.lengths.all == mine.lengths.all


def testAVerdictAgainstTheRigIsNotSilent(byShell, rig, views):
    words = ["--left", "left_*.pgm", "--right", "right_*.pgm", "--tolerance", "1e-5"]
    told = byShell("verify", "rig.zcal", "--plate", "plate.json", *words, code=1)
    with pytest.warns(zelm.MeasurementWarning, match="^rig.zcal: the largest length error of .* exceeds"):
        mine = rig.verify("plate.json", "left_*.pgm", "right_*.pgm", tolerance=1e-5)
    assert not mine.passed and mine.words == told["message"]
    agree(mine, told, ["csv", "rig", "passed", "words"])
    with pytest.raises(zelm.ToolError, match="gone.json"):
        rig.verify("gone.json", "left_*.pgm", "right_*.pgm")


def testVerifyByPairs(byShell, rig, views):
    rows = [row for view in range(len(views.left)) for row in views.pairs(view, 30)[0]]
    rows = [(i, *row[1:]) for i, row in enumerate(rows)]
    mine = rig.verify(pairs=rows, noise=0.01)
    with open("many.csv", "w") as file:
        file.write("id,xL,yL,xR,yR\n" + "\n".join(",".join(map(str, row)) for row in rows) + "\n")
    told = byShell("verify", "rig.zcal", "--pairs", "many.csv", "--noise", "0.01")
    agree(mine, told, ["csv", "rig", "passed", "words"])
    with pytest.raises(KeyError, match="no lengths"):
        mine.table()
    known = rig.verify(pairs=rows, lengths=[(0, 1, float(np.hypot(*np.subtract(*views.pairs(0, 30)[1][:2]))))])
    assert abs(known.table()["error"][0]) < 0.05


@pytest.mark.parametrize("form", ["path", "rows", "fields", "dict"])
def testLengthsOfAnyFormOfPairs(byShell, rig, views, form):
    rows, plane = views.pairs()
    fields = np.array(rows, [("id", "U4"), ("xL", float), ("yL", float), ("xR", float), ("yR", float)])
    forms = {"path": "pairs.csv", "rows": rows, "fields": fields, "dict": {n: fields[n] for n in fields.dtype.names}}
    mine = rig.length(forms[form], [("p0", "p1"), ("p3", "p1")])
    told = byShell("length", "rig.zcal", "pairs.csv", "--between", "p0,p1", "--between", "p3,p1")["lengths"]
    assert [{name: row[name] for name in told[0]} for row in mine] == told
    truth = float(np.hypot(*np.subtract(plane[0], plane[1])))
    assert mine["length"][0] == pytest.approx(truth, abs=5 * mine["sigma"][0])


def testPointsWithoutIdsAndWithTargets(byShell, rig, views):
    rows, _ = views.pairs()
    plain = np.array([row[1:] for row in rows])
    assert np.array_equal(rig.length(plain)["length"], rig.length(rows)["length"])
    told = byShell("length", "rig.zcal", "pairs.csv", "--dots", "left_00.pgm", "right_00.pgm")["lengths"]
    mine = rig.length(rows, dots=(views.left[0], views.right[0]))
    assert mine["length"].tolist() == [row["length"] for row in told]


@pytest.mark.filterwarnings("ignore:.*is no larger than three of its standard deviations")
def testTriangulateFileAndFeatures(byShell, rig, views):
    rows, plane = views.pairs(0, 12)
    (pairs,) = [np.array(rows, [("id", "U4")] + [(n, float) for n in ("xL", "yL", "xR", "yR")])]
    mine = rig.triangulate_file(pairs, "mine.csv", covariance=True, noise=0.01, ply="mine.ply", page="mine.html")
    with open("pairs.csv", "w") as file:
        file.write(csvText({name: pairs[name] for name in pairs.dtype.names}))
    words = ["--covariance", "--noise=0.01", "--ply", "told.ply", "-o", "told.csv"]
    told = byShell("triangulate", "rig.zcal", "pairs.csv", *words)
    agree(mine, told, ["csv", "ply", "page"])
    for ending in ("csv", "ply"):
        assert open(f"mine.{ending}").read() == open(f"told.{ending}").read()
    points = mine.table("list")
    assert points["position"].shape == (12, 3) and np.allclose(points["position"][:, :2], plane, atol=0.05)

    words = ["--plane", "face=p0-p11", "--line", "edge=p0,p7", "--angle", "face:edge"]
    told = byShell("measure", "told.csv", "--rig", "rig.zcal", *words)
    told["features"].sort(key=lambda feature: feature["name"], reverse=True)  # options come by kind
    agree(ofDescription(rig), told)
    columns = readCsv("told.csv", ("id",))
    kinds = {"plane": {"face": "p0-p11"}, "line": {"edge": ["p0", "p7"]}}
    agree(zelm.fit_features(columns, angles=[("face", "edge")], rig=rig, **kinds), told)
    with pytest.raises(TypeError, match="no kind of feature cone"):
        zelm.fit_features(columns, cone={"a": ["p0"]})


def ofDescription(rig):
    features = [("face", "plane", ["p0-p11"]), ("edge", "line", ["p0", "p7"])]
    wanted = {"features": [{"name": name, "kind": kind, "points": ids} for name, kind, ids in features]}
    return zelm.fit_features("told.csv", wanted, angles=[("face", "edge")], rig=rig)


def testFeaturesOfPlainPoints():
    """Without ids points are counted from 1."""
    by = zelm.fit_features([[0, 0, 1], [1, 0, 1], [0, 1, 1], [2, 2, 1]], plane={"top": ["1-4"]}, point={"a": [4]})
    assert np.allclose(np.abs(by.features[0].direction), [0, 0, 1]) and by.features[1].location == [2, 2, 1]


def testRectifiedRows(byShell, rig, views):
    told = byShell("rectify", "rig.zcal", "left_00.pgm", "right_00.pgm", "--rows", "--maps", "-o", "rows")
    rows = rig.rectify_rows(views.left[0], views.right[0])
    for name in ("R1", "R2", "P1", "P2", "Q"):
        assert np.array_equal(getattr(rows, name), told[name])
    assert np.array_equal(rows.left_map, np.load("rows/left_map.npy"))
    assert np.array_equal(rows.left, readPng("rows/left_00_rows.png"))
    assert (rows.min_disparity, rows.left_seen) == (told["minDisparity"], tuple(told["leftSeen"]))
    kept = rig.rectify_rows("left_00.pgm", "right_00.pgm", "kept", size=(320, 240))
    assert kept.left.shape == (240, 320) and open("kept/rows.yml").read(9) == "%YAML:1.0"


def testPointsOfDisparities(byShell, rig, views):
    """Dots of the plate lie where the plate says, by the rows' Q."""
    rows = rig.rectify_rows(views.left[0], views.right[0])
    pairs, plane = views.pairs(0, 6)
    aligned = []
    for pair in pairs:
        left, right = (nearest(m, np.array(p)) for m, p in ((rows.left_map, pair[1:3]), (rows.right_map, pair[3:])))
        disparity = np.full(rows.left.shape, np.nan)
        disparity[tuple(np.round(left[::-1]).astype(int))] = left[0] - right[0]
        points = rows.points(disparity)
        aligned.append(points[np.isfinite(points).all(axis=-1)][0])
    first = np.linalg.norm(np.diff(np.array(aligned), axis=0), axis=1)
    truth = np.linalg.norm(np.diff(np.array(plane), axis=0), axis=1)
    assert np.allclose(first, truth, rtol=0.05)


def nearest(pixelMap, pixel):
    distance = np.linalg.norm(pixelMap - pixel, axis=-1)
    y, x = np.unravel_index(np.argmin(distance), distance.shape)
    return np.array([x, y], dtype=float)


def testImagesAreThoseOfTheTool(byShell, rig, views):
    byShell("undistort", "rig.zcal", "left_00.pgm", "left_01.pgm", "-o", "told")
    paths = rig.undistort_files(["left_00.pgm", views.left[1]], "mine", camera="left")
    assert [path.name for path in paths] == ["left_00_undistorted.png", "left_0001_undistorted.png"]
    for mine, told in zip(paths, ("left_00", "left_01")):
        assert mine.read_bytes() == open(f"told/{told}_undistorted.png", "rb").read()
    told = byShell("rectify", "rig.zcal", "left_00.pgm", "right_00.pgm", "-o", "both", "--lines", "3")
    mine = rig.rectify_files("left_00.pgm", "right_00.pgm", "both2", lines=3)
    assert mine.lines == told["lines"]
    assert open(mine.pair, "rb").read() == open(told["pair"], "rb").read()
    with pytest.raises(zelm.ToolError, match="image_0000.pgm"):
        rig.undistort_files([views.left[0]], "mine")


def testEpipolarLines(byShell, rig, views):
    rows, _ = views.pairs()
    told = byShell("epiline", "rig.zcal", "--in", "left", "--point", "300,200", "--point", "20.5,10")["lines"]
    mine = rig.epilines([[300, 200], [20.5, 10]], "left", views.right[0], "lines.png")
    assert [(row["a"], row["b"], row["c"]) for row in mine] == [(row["a"], row["b"], row["c"]) for row in told]
    assert readPng("lines.png").shape == (480, 640, 3)


def testMatchesInFiles(byShell, rig, views):
    outputs = ["-o", "told.csv", "--ply", "told.ply"]
    told = byShell("match", "rig.zcal", "left_00.pgm", "right_00.pgm", "--grid", "32", *outputs)
    mine = rig.match_files(views.left[0], views.right[0], "mine.csv", grid=32, ply="mine.ply", picture="mine.png")
    agree(mine, told, ["csv", "ply", "picture", "seconds", "processorSeconds"])
    assert open("mine.csv").read() == open("told.csv").read()
    assert open("mine.ply", "rb").read() == open("told.ply", "rb").read()


@pytest.mark.parametrize("program", ["opencv", "ros", "kalibr", "matlab", "mrcal", "numpy"])
def testExportAndImport(byShell, rig, program):
    byShell("export", "rig.zcal", "--to", program, "-o", "told")
    with pytest.warns(zelm.MeasurementWarning, match="^rig.zcal: what .* does not hold"):
        paths = rig.export(program, "mine")
    for path in paths:
        told, mine = (path.parent.parent / "told" / path.name).read_bytes(), path.read_bytes()
        assert mine == told or program in ("matlab", "numpy")  # which hold the time
    byShell("import", *[f"told/{path.name}" for path in paths], "--from", program, "-o", "again.zcal")
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        again = zelm.import_rig(paths, program)
    assert filesOf(again)["rig.zcal"] == open("again.zcal", "rb").read()
    assert again.imported.format == program
    if len(paths) == 1:
        with pytest.warns(zelm.MeasurementWarning):
            assert [path.name for path in rig.export(program, "one" + paths[0].suffix)] == ["one" + paths[0].suffix]


def testAFormatOfTwoFilesTakesAFolder(byShell, rig, tmp_path):
    before = sorted(tmp_path.iterdir())
    with pytest.warns(zelm.MeasurementWarning), pytest.raises(ValueError, match="left.yaml, right.yaml: give a folder"):
        rig.export("ros", "mine.yaml")
    assert sorted(tmp_path.iterdir()) == before


def testComparisons(byShell, rig, views):
    agree(rig.compare("truth.json"), byShell("compare", "rig.zcal", "truth.json"))
    other = zelm.calibrate("plate.json", "left_*.pgm", "right_*.pgm", skew=False)
    for name, content in filesOf(other).items():
        open(f"other{name[3:]}", "wb").write(content)
    agree(rig.compare(other), byShell("compare", "rig.zcal", "other.zcal"))
    agree(zelm.compare("rig.zcal", other), rig.compare(other))


def testPlans(byShell, rig, tmp_path):
    volume = {"volume": {"distance": np.float64(350), "size": np.array([80, 60, 60])}}
    (tmp_path / "volume.json").write_text(json.dumps({"volume": {"distance": 350.0, "size": [80, 60, 60]}}))
    told = byShell("plan", "volume.json", "--plate", "plate.json", "--rig", "rig.zcal", "--views", "6")
    mine = rig.plan(volume, "plate.json", views=6, folder="plan")
    agree(mine, told)
    assert (tmp_path / "plan" / "pictures.txt").exists() and len(mine.pictures) == 6
    with pytest.raises(zelm.ToolError, match="station.json: volum: unknown field"):
        zelm.plan({"volum": {}}, "plate.json", views=6)


def testSimulatedViews(views, tmp_path):
    simulated = zelm.simulate(description())
    assert all(np.array_equal(a, b) for a, b in zip(simulated.left, views.left))
    assert simulated.plate == views.plate and simulated.truth["seed"] == 3
    assert "4 views, 640 x 480" in repr(simulated)


def testTheReportOfALoadedRigIsNotThere(rig):
    with rig._folder() as folder:
        loaded = type(rig)._from_folder(folder)
    with pytest.raises(ValueError, match="calibrate wrote it"):
        loaded.report("report.html")


@pytest.mark.parametrize("name", ["left_00", "scene_depth_left"])
def testPngFilesAreReadAsOpenCVReadsThem(name):
    cv2 = pytest.importorskip("cv2")
    path = SAMPLE / f"{name}.png"
    theirs = cv2.imread(str(path), cv2.IMREAD_UNCHANGED)
    if theirs.dtype != np.uint8:
        with pytest.raises(ValueError, match="of 16 bits"):
            readPng(path)
        return
    assert np.array_equal(readPng(path), theirs)


@pytest.mark.parametrize("strategy", range(5))
@pytest.mark.parametrize("channels", [1, 3])
def testEveryFilterOfPng(tmp_path, strategy, channels):
    import struct
    import zlib

    random = np.random.default_rng(strategy)
    image = random.integers(0, 256, (7, 9, channels), dtype=np.uint8)
    rows = []
    for y, row in enumerate(image.astype(int)):
        above = image[y - 1].astype(int) if y else np.zeros_like(row)
        left, corner = np.roll(row, 1, axis=0), np.roll(above, 1, axis=0)
        left[0] = corner[0] = 0
        p = left + above - corner
        paeth = np.where(
            (abs(p - left) <= abs(p - above)) & (abs(p - left) <= abs(p - corner)),
            left,
            np.where(abs(p - above) <= abs(p - corner), above, corner),
        )
        guess = [0, left, above, (left + above) // 2, paeth][strategy]
        rows.append(bytes([strategy]) + ((row - guess) & 0xFF).astype(np.uint8).tobytes())
    head = struct.pack(">IIBBBBB", 9, 7, 8, 0 if channels == 1 else 2, 0, 0, 0)
    chunks = [(b"IHDR", head), (b"IDAT", zlib.compress(b"".join(rows))), (b"IEND", b"")]
    body = b"".join(struct.pack(">I", len(c)) + k + c + struct.pack(">I", zlib.crc32(k + c)) for k, c in chunks)
    (tmp_path / "a.png").write_bytes(b"\x89PNG\r\n\x1a\n" + body)
    assert np.array_equal(readPng(tmp_path / "a.png").reshape(image.shape), image)


def testResultsAndTables():
    result = Result({"a": {"b": 1.5}, "list": [{"x": 1, "y": [1, 2]}, {"x": None, "y": None}], "word": "w"})
    assert result.a.b == 1.5 and result["a"]["b"] == 1.5
    rows = result.table("list")
    assert np.isnan(rows["x"][1]) and np.isnan(rows["y"][1]).all() and rows["y"][0].tolist() == [1, 2]
    with pytest.raises(AttributeError, match="no field c: there are a, list, word"):
        result.c
    assert repr(result) == "a:\n  b: 1.5\nlist: 2 x {x, y}\nword: w"
    assert table([{"n": 1, "f": True, "in": {"s": "u"}}]).dtype.names == ("n", "f", "in_s")
