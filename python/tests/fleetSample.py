"""Small images of bright discs in pairs, and what a store holds, for the tests of zelm.batch."""

import hashlib
import os
from pathlib import Path
from typing import Dict

import numpy as np

from zelm.batch.pairList import pairsOfPatterns


def writeDisc(path: Path, x: float, y: float, radius: float = 12.0, size: int = 64) -> None:
    """A bright disc on a dark ground, as PGM."""
    grid = np.arange(size)
    bright = np.hypot(grid - x, grid[:, None] - y) < radius
    path.write_bytes(b"P5\n%d %d\n255\n" % (size, size) + np.where(bright, 200, 20).astype(np.uint8).tobytes())


def writePairs(folder: Path, count: int, **named: str) -> list:
    """Pairs p000, p001, ...; names given are pairs in place of those of a number: killer="p001"."""
    folder.mkdir(parents=True, exist_ok=True)
    other = {number: name for name, number in named.items()}
    for i in range(count):
        name = other.get(f"p{i:03}", f"p{i:03}")
        writeDisc(folder / f"l_{name}.pgm", 20 + i % 20, 30)
        writeDisc(folder / f"r_{name}.pgm", 18 + i % 20, 30)
    return pairsOfPatterns(str(folder / "l_*.pgm"), str(folder / "r_*.pgm"))


def contentOfStore(store: Path) -> Dict[str, str]:
    """Digest of every file but the lock, by its name within the store."""
    files = {}
    for folder, _, names in os.walk(store):
        for name in names:
            path = Path(folder) / name
            if name != ".lock":
                files[str(path.relative_to(store))] = hashlib.sha256(path.read_bytes()).hexdigest()
    return files
