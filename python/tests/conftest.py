"""Finds the package, its generator and the libraries of the build in this tree."""

import os
import sys
from pathlib import Path

FOLDER = Path(__file__).resolve().parent.parent
ROOT = FOLDER.parent
sys.path[:0] = [str(FOLDER), str(FOLDER / "tools"), str(FOLDER / "tests")]
if not os.environ.get("ZELM_LIBRARY_PATH"):
    build = ROOT / "build" / "gcc"
    os.environ["ZELM_LIBRARY_PATH"] = os.pathsep.join([str(build), str(build / "measure")])

from toolRuns import byHand, noFolderLeft, rig, views  # noqa: E402, F401
