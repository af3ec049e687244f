"""Measures what docs/fleet.md tells of batches: cost of a pair beside its work, workers side by side, memory.

ZELM_LIBRARY_PATH=build/gcc:build/gcc/measure PYTHONPATH=python:python/tools:python/tests \\
    python3 python/tools/measureFleet.py [--folder FOLDER] [--pairs 1000]
"""

import argparse
import os
import resource
import shutil
import sys
import tempfile
import time
from pathlib import Path
from typing import List

import numpy as np
from distributed import LocalCluster

from zelm.batch import PairArray, PairInputs, PairRecord, PairResult, runBatch

_SIZE = (240, 320)  # of the crops
_SIDES = {"left": "l", "right": "r"}


def tiny(inputs: PairInputs) -> PairResult:
    """As many and as large arrays as a small match has, and no work."""
    image = inputs.image("left")
    inputs.image("right")
    points = np.stack([image.ravel()[:500], image.ravel()[500:1000]], axis=1).astype(float)
    names = ("left", "right", "positions", "depths", "deviations", "scores", "statuses")
    array = PairArray(points, "pixel", "two numbers a point", ("point", "axis"))
    return PairResult({name: array for name in names}, {})


def remembered(inputs: PairInputs) -> PairResult:
    """A match that notes the memory of its worker beside the store."""
    from zelm.batch import pairKinds

    result = pairKinds.match(inputs)
    with open("/proc/self/statm", encoding="ascii") as file:
        resident = int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")
    with open(os.path.join(inputs.options["folder"], f"{os.getpid()}.memory"), "a", encoding="ascii") as file:
        file.write(f"{resident}\n")
    return result


def writeCrops(folder: Path, count: int) -> List[PairRecord]:
    """Pairs of crops of textured noise that one camera sees as the other does, and a rig whose cameras look alike."""
    from syntheticPair import Camera, block

    K = np.array([[400.0, 0, 160], [0, 400, 120], [0, 0, 1]])
    left = Camera(K, np.eye(3), np.array([0.0, 0, 400]))
    right = Camera(K, np.eye(3), np.array([-20.0, 0, 400]))
    data = bytearray(block(left, right))
    for camera in (0, 1):  # model, width, height of each camera
        data[4 + 12 * camera : 16 + 12 * camera] = np.array([0, _SIZE[1], _SIZE[0]], np.int32).tobytes()
    (folder / "rig.zcal").write_bytes(bytes(data))
    random = np.random.default_rng(1)
    records = []
    for i in range(count):
        rough = random.integers(0, 256, (_SIZE[0] // 2 + 1, _SIZE[1] // 2 + 32)).repeat(2, 0).repeat(2, 1)
        smooth = (rough[1:, 1:] + rough[:-1, 1:] + rough[1:, :-1] + rough[:-1, :-1]) // 4
        paths = {}
        for side, shift in (("left", 0), ("right", 20)):  # 400 * 20 / 400 pixels
            image = smooth[: _SIZE[0], shift : shift + _SIZE[1]].astype(np.uint8)
            path = folder / f"{_SIDES[side]}_{i:05}.pgm"
            path.write_bytes(b"P5\n%d %d\n255\n" % _SIZE[::-1] + image.tobytes())
            paths[side] = str(path)
        records.append(PairRecord("rig", f"{i:05}", **paths))
    return records


def seconds(
    folder: Path, kind: str, records: List[PairRecord], processes: int, options: dict, scheduler: str = ""
) -> float:
    """Wall time of a batch without the start of its workers, which the first reports tell."""
    shutil.rmtree(folder / "store", ignore_errors=True)
    times: List[float] = []
    began = time.perf_counter()
    summary = runBatch(kind, records, str(folder / "store"), str(folder / "rig.zcal"), options=options,
                       processes=processes, scheduler=scheduler, progress=lambda _: times.append(time.perf_counter()))
    if summary.exitCode:
        sys.exit(f"{kind}: {summary.failures[:1]} {summary.stopped}")
    skipped = min(2 * processes + 2, len(times) // 2)
    workers = f"{processes} workers{' of a scheduler' if scheduler else ''}"
    print(f"  {kind}, {workers}: first result after {times[0] - began:.2f} s, "
          f"then {(len(times) - skipped) / (times[-1] - times[skipped - 1]):.1f} pairs a second")
    return (times[-1] - times[skipped - 1]) / (len(times) - skipped)


def processorTime(folder: Path, records: List[PairRecord]) -> float:
    """Of the worker for a pair, seconds: what many pairs take more than a few."""
    used = []
    for count in (len(records) // 10, len(records)):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        seconds(folder, "measureFleet:tiny", records[:count], 1, {})
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        used.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return (used[1] - used[0]) / (len(records) - len(records) // 10)


def measureMemory(folder: Path, records: List[PairRecord]) -> None:
    for old in folder.glob("*.memory"):
        old.unlink()
    seconds(folder, "measureFleet:remembered", records, 2, {"grid": 32, "folder": str(folder)})
    for path in sorted(folder.glob("*.memory")):
        sizes = [int(line) / 2**20 for line in path.read_text().split()]
        places = [i for i in (9, len(sizes) // 2, len(sizes) - 1) if i < len(sizes)]
        marks = ", ".join(f"{sizes[i]:.1f} after {i + 1}" for i in places)
        print(f"  memory of a worker, MiB: {marks}")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--folder", help="where to work; default: a temporary one")
    parser.add_argument("--pairs", type=int, default=1000)
    given = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="fleet", dir=given.folder) as name:
        folder = Path(name)
        records = writeCrops(folder, given.pairs)
        print("cost of a pair beside its work")
        one = seconds(folder, "measureFleet:tiny", records, 1, {})
        two = seconds(folder, "measureFleet:tiny", records, 2, {})
        print(f"  {1e3 * processorTime(folder, records):.2f} ms of processor time")
        print(f"  {1e3 * one:.2f} ms with one worker, {1e3 * two:.2f} ms with two")
        with LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1", dashboard_address=None) as cluster:
            three = seconds(folder, "measureFleet:tiny", records, 2, {}, cluster.scheduler_address)
        print(f"  {1e3 * three:.2f} ms with two of a scheduler")
        print("workers side by side, a match of crops")
        few = records[: max(20, given.pairs // 10)]
        one, two = (seconds(folder, "match", few, processes, {"grid": 12}) for processes in (1, 2))
        print(f"  two workers are {one / two:.2f} times as fast as one")
        print("memory")
        measureMemory(folder, records)


if __name__ == "__main__":
    main()
