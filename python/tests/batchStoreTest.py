"""A batch in one process: what the store holds, going on, refusals, summary, full disks."""

import errno
import json
from pathlib import Path

import numpy as np
import pytest
import zarr
from fleetSample import contentOfStore, writeDisc, writePairs
from syntheticPair import block, pair

from zelm.batch import BatchError, BatchUsageError, pairWriter, pairsOfManifest, pairsOfPatterns, pairsOfStore, runBatch

WORK = "fleetWork:blobs"


def test_theStoreIsAZarrHierarchyOfStationsAndPairs(tmp_path):
    summary = runBatch(WORK, writePairs(tmp_path / "in", 3), str(tmp_path / "out"), processes=0)
    assert (summary.made, summary.kept, summary.exitCode) == (3, 0, 0)
    group = zarr.open_group(str(tmp_path / "out"), mode="r")
    assert sorted(group["rig"].group_keys()) == ["p000", "p001", "p002"]
    found = group["rig/p002"]
    assert found["left"].shape == (64, 2)
    assert found["left"].attrs["unit"] == "pixel"
    assert found.attrs["figures"]["left"]["x"] == pytest.approx(22, abs=0.02)  # the disc of pair 2
    assert set(found.attrs["provenance"]["sha256"]) == {"left", "right"}
    assert found.attrs["provenance"]["library"] == "1.0.0"


def test_whatIsThereIsKeptAndWhatChangedIsMadeAnew(tmp_path):
    pairs = writePairs(tmp_path / "in", 4)
    runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    before = contentOfStore(tmp_path / "out")
    writeDisc(tmp_path / "in" / "l_p001.pgm", 40, 40)
    summary = runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    assert (summary.made, summary.kept) == (1, 3)
    after = contentOfStore(tmp_path / "out")
    assert {name.split("/")[1] for name in before if before[name] != after[name]} == {"p001"}


def test_aDamagedResultIsMadeAnew(tmp_path):
    pairs = writePairs(tmp_path / "in", 2)
    runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    before = contentOfStore(tmp_path / "out")
    (tmp_path / "out" / "rig" / "p000" / ".zattrs").write_text("{")
    (tmp_path / "out" / "rig" / "p001" / "left" / ".zarray").unlink()
    assert runBatch(WORK, pairs, str(tmp_path / "out"), processes=0).made == 2
    assert contentOfStore(tmp_path / "out") == before


def test_otherOptionsAndCalibrationsAreRefused(tmp_path):
    pairs = writePairs(tmp_path / "in", 2)
    rig = tmp_path / "a.zcal"
    rig.write_bytes(block(*pair()))
    out = str(tmp_path / "out")
    runBatch(WORK, pairs, out, str(rig), options={"window": 21}, processes=0)
    before = contentOfStore(tmp_path / "out")
    with pytest.raises(BatchError, match="made with options window 21, not 31: name another store"):
        runBatch(WORK, pairs, out, str(rig), options={"window": 31}, processes=0)
    with pytest.raises(BatchError, match="kind fleetWork:blobs, not fleetWork:tiny"):
        runBatch("fleetWork:tiny", pairs, out, str(rig), options={"window": 21}, processes=0)
    rig.write_bytes(block(*pair(k1=-0.2)))
    with pytest.raises(BatchError, match="another calibration of rig"):
        runBatch(WORK, pairs, out, str(rig), options={"window": 21}, processes=0)
    assert contentOfStore(tmp_path / "out") == before


def test_aFolderThatIsNoStoreIsLeftAlone(tmp_path):
    pairs = writePairs(tmp_path / "in", 1)
    with pytest.raises(BatchError, match="not a store of results, and not empty"):
        runBatch(WORK, pairs, str(tmp_path / "in"), processes=0)
    assert sorted(path.name for path in (tmp_path / "in").iterdir()) == ["l_p000.pgm", "r_p000.pgm"]


def test_twoJobsDoNotShareAStore(tmp_path):
    pairs = writePairs(tmp_path / "in", 2)
    refused = []

    def second(_):
        with pytest.raises(BatchError, match="another job writes"):
            runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
        refused.append(1)

    assert runBatch(WORK, pairs, str(tmp_path / "out"), processes=0, progress=second).exitCode == 0
    assert len(refused) == 2


def test_brokenImagesAreToldAndTheOthersDone(tmp_path):
    pairs = writePairs(tmp_path / "in", 5)
    (tmp_path / "in" / "l_p001.pgm").write_bytes(b"P5\n64 64\n255\nshort")
    (tmp_path / "in" / "r_p003.pgm").unlink()
    summary = runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    assert (summary.made, summary.exitCode) == (3, 1)
    told = {failure.pair: failure.reason for failure in summary.failures}
    assert "l_p001.pgm: not a complete PNM image" in told["p001"]
    assert "r_p003.pgm: cannot be read: No such file" in told["p003"]
    assert not (tmp_path / "out" / "rig" / "p001").exists()


def test_aResultDoesNotDependOnWhereTheImagesAre(tmp_path):
    for place in "ab":
        runBatch(WORK, writePairs(tmp_path / place, 3), str(tmp_path / f"out{place}"), processes=0)
    assert contentOfStore(tmp_path / "outa") == contentOfStore(tmp_path / "outb")


@pytest.fixture
def fullDisk(monkeypatch):
    """Makes the next writes of files fail as on a full disk; gives the counter of how many still do."""
    left = [0]
    real = pairWriter._writeTree

    def write(folder, files):
        if left[0] > 0:
            left[0] -= 1
            Path(folder).mkdir(parents=True)
            (Path(folder) / "half").write_bytes(b"x")
            raise OSError(errno.ENOSPC, "No space left on device")
        real(folder, files)

    monkeypatch.setattr(pairWriter, "_writeTree", write)
    monkeypatch.setattr(pairWriter, "_WAITS", (0.01,))
    return left


def test_aDiskThatIsFullForAWhileIsWaitedFor(tmp_path, fullDisk):
    pairs = writePairs(tmp_path / "in", 3)
    fullDisk[0] = 5
    summary = runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    assert (summary.made, summary.exitCode) == (3, 0)
    assert summary.waited > 0.03
    assert "half" not in " ".join(contentOfStore(tmp_path / "out"))


def test_aDiskThatStaysFullStopsTheJobWhichGoesOnLater(tmp_path, fullDisk):
    pairs = writePairs(tmp_path / "in", 4)
    whole = contentOfStore(tmp_path / "out") if runBatch(WORK, pairs, str(tmp_path / "out"), processes=0) else {}

    def fillAfterTwo(_report, done=[]):
        done.append(1)
        fullDisk[0] = 10**9 if len(done) == 2 else fullDisk[0]

    summary = runBatch(WORK, pairs, str(tmp_path / "new"), processes=0, patience=0.05, progress=fillAfterTwo)
    assert (summary.made, summary.open, summary.exitCode) == (2, 2, 1)
    assert "No space left on device" in summary.stopped
    fullDisk[0] = 0
    assert runBatch(WORK, pairs, str(tmp_path / "new"), processes=0).kept == 2
    assert contentOfStore(tmp_path / "new") == whole


def test_aManifestNamesPairs(tmp_path):
    writePairs(tmp_path, 2)
    (tmp_path / "m.csv").write_text(
        "\ufeffID;Station;Day;Time;left;right;remark\n7;north;2025-03-31;14:05;l_p000.pgm;r_p000.pgm;x\n"
        "\n7;south;2025-04-01;;l_p001.pgm;r_p001.pgm;\n"
    )
    north, south = pairsOfManifest(str(tmp_path / "m.csv"))
    assert (north.station, north.pair, north.day, north.time) == ("north", "7", "2025-03-31", "14:05")
    assert north.left == str(tmp_path / "l_p000.pgm")
    assert runBatch(WORK, [north, south], str(tmp_path / "out"), processes=0).made == 2
    results = pairsOfStore(str(tmp_path / "out"))
    found = [(station, pair, attributes["provenance"]["day"]) for station, pair, attributes in results]
    assert found == [("north", "7", "2025-03-31"), ("south", "7", "2025-04-01")]


@pytest.mark.parametrize(
    "text, words",
    [
        ("left,right\na,b\n", "no column pair or id"),
        ("pair,left\n", "no pairs below"),
        ("pair,left\na/b,c\n", "'a/b' cannot name a folder"),
        ("pair,left\n..,c\n", "'..' cannot name a folder"),
        ("pair,station,left\na,.tmp,c\n", "station '.tmp' cannot name"),
        ("pair,left\na,b\na,c\n", "two pairs are named rig/a"),
        ("pair,day\na,31.3.2025\n", "m.csv:2: the day '31.3.2025'"),
        ("pair,day\na,2025-02-30\n", "m.csv:2: the day '2025-02-30'"),
        ("pair,time\na,25:00\n", "m.csv:2: the time '25:00'"),
        ('pair,left\na,"b\n', "m.csv:.*unexpected end of data"),
    ],
)
def test_manifestsThatCannotBeMeantAreRefused(tmp_path, text, words):
    (tmp_path / "m.csv").write_text(text)
    with pytest.raises(BatchError, match=words):
        pairsOfManifest(str(tmp_path / "m.csv"))


def test_patternsPairByWhatTheirWildcardsStandFor(tmp_path):
    for name in ("n/2025-03-31/l_1.pgm", "n/2025-03-31/r_1.pgm", "s/2025-04-01/l_1.pgm", "s/2025-04-01/r_2.pgm"):
        (tmp_path / name).parent.mkdir(parents=True, exist_ok=True)
        writeDisc(tmp_path / name, 30, 30)
    pairs = pairsOfPatterns(f"{tmp_path}/{{station}}/{{day}}/l_*.pgm", f"{tmp_path}/{{station}}/{{day}}/r_*.pgm")
    assert [pair.label() for pair in pairs] == ["n/2025-03-31_1", "s/2025-04-01_1", "s/2025-04-01_2"]
    assert pairs[0].day == "2025-03-31" and not pairs[0].trouble
    assert "r_*.pgm goes with" in pairs[1].trouble and "l_*.pgm goes with" in pairs[2].trouble
    summary = runBatch(WORK, pairs, str(tmp_path / "out"), processes=0)
    assert (summary.made, len(summary.failures)) == (1, 2)


def test_foldersPairByName(tmp_path):
    for side in ("left", "right"):
        (tmp_path / side).mkdir()
        for name in ("a.pgm", "b [1].pgm", "notes.txt"):
            writeDisc(tmp_path / side / name, 30, 30)
    (tmp_path / "left" / "b [1].pgm").rename(tmp_path / "left" / "b.pgm")
    (tmp_path / "right" / "b [1].pgm").rename(tmp_path / "right" / "b.pgm")
    assert [pair.pair for pair in pairsOfPatterns(str(tmp_path / "left"), str(tmp_path / "right"))] == ["a", "b"]
    with pytest.raises(BatchUsageError, match="both"):
        pairsOfPatterns(str(tmp_path / "left"), str(tmp_path / "left"))


def test_oneCalibrationDoesNotServeTwoStations(tmp_path):
    pairs = writePairs(tmp_path / "in", 2)
    pairs = [pairs[0], pairs[1]._replace(station="other")]
    (tmp_path / "rig.zcal").write_bytes(block(*pair()))
    (tmp_path / "other.zcal").write_bytes(block(*pair(k1=-0.2)))
    with pytest.raises(BatchUsageError, match="one calibration for 2 stations"):
        runBatch(WORK, pairs, str(tmp_path / "out"), str(tmp_path / "rig.zcal"), processes=0)
    assert runBatch(WORK, pairs, str(tmp_path / "out"), str(tmp_path / "{station}.zcal"), processes=0).made == 2
    content = json.loads((tmp_path / "out" / ".zattrs").read_text())
    assert sorted(content["zelmBatch"]["calibrations"]) == ["other", "rig"]


def test_exportsStandBesideTheStore(tmp_path):
    pairs = writePairs(tmp_path / "in", 2)
    csv, out = str(tmp_path / "csv"), str(tmp_path / "out")
    runBatch(WORK, pairs, out, processes=0)
    assert runBatch(WORK, pairs, out, csv=csv, processes=0).kept == 2
    lines = (tmp_path / "csv" / "rig" / "p001.csv").read_text().splitlines()
    assert lines[0] == "left_x,left_y,right_x,right_y"
    values = np.array([line.split(",") for line in lines[1:]], dtype=int)
    assert np.array_equal(values[:, :2], zarr.open_group(out, mode="r")["rig/p001/left"][:])


def test_aCalibrationThatIsNoneIsRefusedAtOnce(tmp_path):
    (tmp_path / "rig.zcal").write_bytes(b"short")
    for name in ("rig.zcal", "none.zcal"):
        with pytest.raises(BatchError, match=name):
            runBatch(WORK, writePairs(tmp_path / "in", 2), str(tmp_path / "out"), str(tmp_path / name), processes=0)
    assert not (tmp_path / "out").exists()


def test_workThatIsNotThereIsRefused(tmp_path):
    with pytest.raises(BatchError, match="no such work"):
        runBatch("fleetWork:nothing", writePairs(tmp_path / "in", 1), str(tmp_path / "out"), processes=0)
    assert not (tmp_path / "out").exists()
