"""Views to calibrate from, and the tool run by hand, for tests of what Python does with it."""

import json
import os
import subprocess
from pathlib import Path

import numpy as np
import pytest

import zelm
from zelm import _program

SAMPLE = Path(__file__).resolve().parents[2] / "samples" / "desk-rig"
VIEWS = 4
DATE = {"SOURCE_DATE_EPOCH": "1700000000"}  # of reports, which are compared byte by byte


def shell(*words, folder, code=0):
    """The tool as somebody types it: its JSON object."""
    done = subprocess.run(
        ["zelm", *map(str, words), "--json"],
        executable=_program.program(),
        cwd=folder,
        capture_output=True,
        text=True,
        env={**os.environ, **DATE},
    )
    assert done.returncode == code, done.stderr
    return json.loads(done.stdout)


def description():
    """A small pair before a plate of 9 x 7 dots."""
    rig = zelm.simulation_example()
    rig["plate"].update(columns=[-4, 4], rows=[-3, 3], markerColumn=2, markerRow=2)
    for side in ("left", "right"):
        rig[side].update(width=640, height=480, fx=850.0, fy=848.0, cx=321.0, cy=238.0)
    rig["views"].update(count=VIEWS, seed=3)
    return rig


class Views:
    """The same views as files of a folder and as arrays."""

    def __init__(self, folder):
        self.folder = folder
        zelm.simulate(description(), folder=folder, format="pgm")
        self.left = [readPgm(path) for path in sorted(folder.glob("left_*.pgm"))]
        self.right = [readPgm(path) for path in sorted(folder.glob("right_*.pgm"))]
        self.plate = zelm.Plate.load(folder / "plate.json")
        self.truth = json.loads((folder / "truth.json").read_text())

    def pairs(self, view=0, count=5):
        """Pixel pairs of dots, and where they are in space up to the frame: their places on the plate."""
        seen = [self.truth["views"][view][side]["dots"] for side in ("left", "right")]
        step = len(seen[0]) // count
        rows = [
            (f"p{i}", *left["pixel"], *right["pixel"])
            for i, (left, right) in enumerate(zip(seen[0][::step], seen[1][::step]))
        ]
        return rows[:count], [dot["plane"] for dot in seen[0][::step]][:count]


def readPgm(path):
    content = path.read_bytes()
    _, size, _, pixels = content.split(b"\n", 3)
    width, height = map(int, size.split())
    return np.frombuffer(pixels, np.uint8).reshape(height, width)


@pytest.fixture(scope="session")
def views(tmp_path_factory):
    return Views(tmp_path_factory.mktemp("views"))


@pytest.fixture(scope="session")
def byHand(views):
    """A calibration of these files in a shell, and its folder."""
    words = ["calibrate", "--plate", "plate.json", "--left", "left_*.pgm", "--right", "right_*.pgm", "-o", "out"]
    return shell(*words, folder=views.folder), views.folder / "out"


@pytest.fixture(scope="session")
def rig(views):
    with pytest.MonkeyPatch.context() as patch:
        patch.chdir(views.folder)
        patch.setenv(*next(iter(DATE.items())))
        return zelm.calibrate("plate.json", "left_*.pgm", "right_*.pgm")


@pytest.fixture
def noFolderLeft(tmp_path, monkeypatch):
    """Private folders are made here; none is left at the end."""
    import tempfile

    private = tmp_path / "private"
    private.mkdir()
    monkeypatch.setattr(tempfile, "tempdir", str(private))
    yield private
    assert list(private.iterdir()) == []


def filesOf(rig):
    """Name and bytes of the calibration's files."""
    with rig._folder() as folder:
        return {path.name: path.read_bytes() for path in Path(folder).iterdir() if path.stem == "rig"}
