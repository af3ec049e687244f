"""The sample rig, calibrated once for all tests by the program, and what the program makes of it."""

import atexit
import functools
import json
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import numpy as np

from zelm import records

SAMPLE = Path(__file__).resolve().parent.parent.parent / "samples" / "desk-rig"
LEFT, RIGHT = SAMPLE / "scene_left.png", SAMPLE / "scene_right.png"
TRUTH = json.loads((SAMPLE / "truth.json").read_text())


def plateRecord():
    """The core's record of the sample's plate."""
    given = TRUTH["pattern"]
    lengths = {f"d{i}": given[f"d{i}"] for i in range(8)}
    return records.Zelm2ViewPatternDesc(
        **lengths, markers=3, polarity=given["polarity"], minDotArea=20, minEdgeStrength=3.0, minDots=71
    )


def program():
    """The program, beside the libraries that are tested."""
    for folder in os.environ["ZELM_LIBRARY_PATH"].split(os.pathsep):
        path = Path(folder) / "tools" / "zelm" / "zelm"
        if path.is_file():
            return str(path)
    raise FileNotFoundError("no program zelm beside the libraries of ZELM_LIBRARY_PATH")


def run(*words, cwd=None, code=0):
    """What the program prints with --json."""
    done = subprocess.run([program(), *map(str, words), "--json"], capture_output=True, text=True, cwd=cwd)
    assert done.returncode == code, done.stderr
    return json.loads(done.stdout)


@functools.lru_cache(maxsize=None)
def work():
    """A folder that goes when the tests end."""
    folder = Path(tempfile.mkdtemp(prefix="zelm-tests-"))
    atexit.register(shutil.rmtree, folder, ignore_errors=True)
    return folder


@functools.lru_cache(maxsize=None)
def calibrated():
    """The folder of the sample's calibration: rig.zcal, rig.zcov, rig.json."""
    out = work() / "out"
    images = ["--left", SAMPLE / "left_*.png", "--right", SAMPLE / "right_*.png"]
    run("calibrate", "--plate", SAMPLE / "truth.json", *images, "-o", out, "-q")
    return out


def randomPairs(rig, count, seed=0, noise=0.02):
    """Points of the sample's volume, and their raw pixels in both images with noise."""
    rng = np.random.default_rng(seed)
    points = np.column_stack([rng.uniform(-60, 60, count), rng.uniform(-50, 50, count), rng.uniform(-40, 60, count)])
    left, right = rig.project(points)
    return points, left + rng.normal(0, noise, left.shape), right + rng.normal(0, noise, right.shape)
