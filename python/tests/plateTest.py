"""Plates: read, made, written and drawn as the tool does."""

import json
import pickle
import re

import numpy as np
import pytest
import zelm
from zelm import records

from toolRuns import SAMPLE, shell

FIELDS = dict(
    fieldWidth=120,
    fieldHeight=100,
    dotPitchX=10,
    dotPitchY=10,
    dotDiameter=4,
    markerDiameter=7,
    markerDistanceX=30,
    markerDistanceY=30,
)
GRID = [(i, j) for j in range(-5, 6) for i in range(-6, 7)]
MEASURED = [[i, j, 10 * i + 0.01 * j, 10 * j - 0.005 * i, 0.002 * i * j] for i, j in GRID]


def normal(path, folder):
    """What the tool itself reads in a description, as it writes it anew."""
    shell("plate", path, "--page", "fit", "--format", "dxf", "-o", "drawn", folder=folder)
    return json.loads((folder / "drawn" / "plate.json").read_text())


def agrees(plate, fields):
    mine = plate.fields()
    assert {name: mine[name] for name in fields if name != "positions"} == {
        name: value for name, value in fields.items() if name != "positions"
    }
    if "positions" in fields:
        assert plate.positions.tolist() == [[*row, 0.0][:5] for row in fields["positions"]]


def testItReadsWhatTheToolReads(tmp_path):
    rows = "\n".join(",".join(map(repr, row)) for row in MEASURED)
    (tmp_path / "dots.csv").write_text(f"column,row,x,y,z\n{rows}\n")
    inline = [row[:4] for row in MEASURED]
    descriptions = {
        "plain": json.dumps(FIELDS),
        "commented": "// mine\n" + json.dumps({**FIELDS, "name": "a // b", "comment": "x"}) + "/* end */",
        "bright": json.dumps({**FIELDS, "polarity": 1, "units": "cm", "minDots": 9, "serial": "7", "markers": 3}),
        "warm": json.dumps({**FIELDS, "expansion": 8.5e-6, "temperature": 20, "minDotArea": 30}),
        "measured": json.dumps({**FIELDS, "positions": inline}),
        "ofFile": json.dumps({**FIELDS, "positions": "dots.csv"}),
        "truth": json.dumps({"pattern": json.loads((SAMPLE / "truth.json").read_text())["pattern"]}),
    }
    for name, text in descriptions.items():
        (tmp_path / f"{name}.json").write_text(text)
        plate = zelm.Plate.load(tmp_path / f"{name}.json")
        agrees(plate, normal(f"{name}.json", tmp_path))
        plate.save(tmp_path / "saved.json")
        again = zelm.Plate.load(tmp_path / "saved.json")
        assert again == plate and hash(again) == hash(plate)
        assert zelm.Plate(**plate.fields()) == plate
        assert pickle.loads(pickle.dumps(plate)) == plate
    assert zelm.Plate.load(tmp_path / "commented.json").name == "a // b"
    assert zelm.Plate.load(tmp_path / "plain.json") != zelm.Plate.load(tmp_path / "bright.json")


@pytest.mark.parametrize(
    "change",
    [
        {"dotPichX": 10},
        {"markerDistanceX": 25},
        {"dotDiameter": -4},
        {"dotDiameter": 11},
        {"fieldWidth": 115},
        {"polarity": "grey"},
        {"expansion": 1e-5},
        {"positions": [[0, 0, 50, 0]]},
        {"positions": [[0.5, 0, 5, 0]]},
        {"minDots": 0},
    ],
)
def testItRefusesWhatTheToolRefusesInItsWords(tmp_path, change):
    fields = {**FIELDS, **change}
    (tmp_path / "plate.json").write_text(json.dumps(fields))
    words = ["plate", "plate.json", "-o", "drawn"]
    byHand = None
    for code in (1, 2):
        try:
            byHand = shell(*words, folder=tmp_path, code=code)
        except AssertionError:
            continue
    assert byHand is not None
    with pytest.raises(zelm.ToolError) as caught:
        zelm.Plate(**fields)
    assert (str(caught.value), caught.value.status) == (byHand["message"], byHand["exitCode"])
    with pytest.raises(zelm.ToolError, match="plate.json: "):
        zelm.Plate.load(tmp_path / "plate.json")


def testAMissingFileIsNamed(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    with pytest.raises(zelm.ToolError, match=r"^nothing.json: cannot open a plate description: No such file"):
        zelm.Plate.load("nothing.json")


def undated(path):
    """The bytes of a drawing without the second of its making, which a PDF tells."""
    return re.sub(rb"D:\d{14}", b"", path.read_bytes())


@pytest.mark.parametrize("ending", ["pdf", "svg", "png", "dxf"])
def testItDrawsWhatTheToolDraws(tmp_path, ending):
    plate = zelm.Plate(**FIELDS, name="mine")
    plate.save(tmp_path / "plate.json")
    byHand = ["plate", "plate.json", "--page", "fit", "--dpi", "60", "--format", ending, "-o", "drawn"]
    told = shell(*byHand, folder=tmp_path)
    done = plate.draw(tmp_path / f"mine.{ending}", page="fit", dpi=60)
    assert undated(tmp_path / f"mine.{ending}") == undated(tmp_path / "drawn" / f"plate.{ending}")
    assert (done.page, done.dots, done.findings) == (told["page"], 143, [])


def testADesignIsThatOfTheTool(tmp_path):
    told = shell(*"plate --field 80x60 --pitch 10x5 --name a --dot 2 --format dxf -o drawn".split(), folder=tmp_path)
    plate = zelm.Plate.design(field=(80, 60), pitch=(10, 5), name="a", dot=2)
    agrees(plate, told["plate"])
    assert (plate.columns, plate.rows) == (9, 13)


def testDrawingRefuses(tmp_path):
    plate = zelm.Plate(**{**FIELDS, "markerDiameter": 5.5})
    with pytest.raises(zelm.ToolError, match="plate.json: markers are only 1.38 times as wide as the dots"):
        plate.draw(tmp_path / "plate.pdf")
    with pytest.raises(ValueError, match="plate.jpg: a plate is drawn as"):
        plate.draw(tmp_path / "plate.jpg")
    with pytest.raises(FileNotFoundError, match="there is no folder .*none"):
        zelm.Plate(**FIELDS).draw(tmp_path / "none" / "plate.svg")
    assert list(tmp_path.iterdir()) == []
    with pytest.warns(zelm.MeasurementWarning, match="markers are only 1.5 times"):
        zelm.Plate(**{**FIELDS, "markerDiameter": 6}).draw(tmp_path / "plate.svg", page="fit")


def testTheRecordIsThatOfTheCore():
    plate = zelm.Plate(**FIELDS, polarity="bright", minDots=50)
    record = plate.record()
    assert isinstance(record, records.Zelm2ViewPatternDesc)
    assert [getattr(record, f"d{i}") for i in range(8)] == [120, 100, 4, 7, 10, 10, 30, 30]
    assert (record.markers, record.polarity, record.minDots, record.minDotArea) == (3, 1, 50, 20)
    assert record.minEdgeStrength == 3


def testDotsAreThoseOfTheGridOrMeasured():
    plate = zelm.Plate(**FIELDS, positions=np.array(MEASURED)[:2])
    dots = plate.dots()
    assert dots.shape == (143, 5)
    assert np.array_equal(dots[:2], MEASURED[:2])
    assert np.array_equal(dots[2:, 2:], np.column_stack([10 * dots[2:, :2], np.zeros(141)]))
    assert zelm.Plate(**FIELDS).positions is None


def testItsReprTellsIt():
    plate = zelm.Plate(**FIELDS, name="P1", positions=MEASURED)
    assert repr(plate) == (
        "<zelm.Plate 'P1', 13 x 11 dark dots, field 120 x 100 mm, pitch 10, diameter 4, markers 7 at 30 and 30, "
        "143 measured positions>"
    )
    with pytest.raises(AttributeError, match="no field pitch"):
        plate.pitch
