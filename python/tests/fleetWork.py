"""Small work on pairs for the tests of zelm.batch, and workers that die."""

import os
import signal
from pathlib import Path

import numpy as np

from zelm import core
from zelm.batch import PairArray, PairInputs, PairResult


def blobs(inputs: PairInputs) -> PairResult:
    """Number and centroids of the bright blobs of both images, by the core's thresholding and labelling."""
    arrays, figures = {}, {}
    for side in ("left", "right"):
        image = inputs.image(side)
        threshold = core.zelmBinOtsuThresholdImage(image)
        binary = (image > threshold).astype(np.uint8)
        profile = np.stack([binary.sum(axis=0), binary.cumsum(axis=1)[:, -1][: binary.shape[1]]], axis=1)
        circle = core.zelmFitCircle(np.argwhere(binary)[:, ::-1].astype(float))
        meaning = "bright pixels a column and a row"
        arrays[side] = PairArray(profile.astype(np.int32), "pixel", meaning, ("line", "axis"))
        figures[side] = {"threshold": float(threshold), "x": circle.x, "y": circle.y}
    return PairResult(arrays, figures)


def deadly(inputs: PairInputs) -> PairResult:
    """Kills its process for the pair "killer" always, for the pair "once" the first time."""
    flag = Path(inputs.options["folder"]) / "flag"
    pair = inputs.record.pair
    if pair == "killer" or (pair == "once" and not flag.exists()):
        flag.touch()
        os.kill(os.getpid(), signal.SIGKILL)
    return blobs(inputs)


def slow(inputs: PairInputs) -> PairResult:
    """Waits until the test lets it go on, having told that it is at work."""
    folder = Path(inputs.options["folder"])
    (folder / f"at-{inputs.record.pair}").write_text(str(os.getpid()))
    while not (folder / "go").exists() and inputs.record.pair >= "p003":
        signal.sigtimedwait([], 0.02)
    return blobs(inputs)


def tiny(inputs: PairInputs) -> PairResult:
    """Next to nothing, to measure what a pair costs beside its work."""
    image = inputs.image("left")
    return PairResult({f"array{i}": PairArray(image[i : i + 1].astype(float), "gray level", "a row", ("row", "x"))
                       for i in range(7)}, {})
