"""Functions of the measuring library with any values: a result or a Python error, never a crash.

Results lie between guards, so that what C writes beyond them is seen.
"""

import os
import zlib

import deskRig
import numpy as np
import pytest
import syntheticPair as truth
from randomArgumentsTest import Draw, Guarded

from zelm import _build, core, measure
from zelm._measureChecks import ROOMS
from zelm._measureTable import TABLE
from zelm._signature import ARRAY_CODES, parse

DRAWS = int(os.environ.get("ZELM_DRAWS", "20"))
# Handles that chance does not make, and what takes seconds a call; other tests call these in earnest.
SLOW = ("zelmMeasureMatch", "zelmMeasureMatchDense", "zelmMeasureCompare", "zelmMeasurePitchRatio")
TAKEN = ("ZelmMeasureAdjustment", "ZelmMeasurePlan")
# What chance hardly makes sound.
REFUSED = ("zelmMeasureAdjustOpen", "zelmMeasurePlanO", "zelmMeasureRigOpen", "zelmMeasureRigTilt")
REFUSED += ("zelmMeasureCovarianceLoad", "zelmMeasureDrift", "zelmMeasureLength", "zelmMeasurePlateExpanded")
REFUSED += ("zelmMeasurePlatePoints", "zelmMeasurePointViews", "zelmMeasureRefinePlate", "zelmMeasureCircles")


def isMeant(name):
    entry = parse(TABLE[name])
    return not entry.custom and name not in SLOW and not any(item.type in TAKEN for item in entry.arguments)


class MeasureDraw(Draw):
    def record(self, cls):
        made = super().record(cls) if not cls._pointers_ and not cls._callbacks_ else cls()
        if cls.__name__ in ROOMS:
            count = self.dims.get("count", 5) if self.rng.random() < 0.9 else 3
            for field, each in ROOMS[cls.__name__].items():
                if self.rng.random() < 0.7:
                    setattr(made, field, self.array((count, each), np.dtype(cls._pointers_[field])))
        for field in ("width", "height"):
            if hasattr(made, field) and self.rng.random() < 0.9:
                setattr(made, field, abs(getattr(made, field)) % 200)
        if cls._sized_ and self.rng.random() < 0.95:
            made.size = cls().size
        return made

    def argument(self, item, rig):
        if item.type == "ZelmMeasureRig":
            return rig
        if item.optional and self.rng.random() < 0.3:
            return None
        if item.type == "gray":
            shape = (480, 640) if self.rng.random() < 0.3 else [self.dim(d) for d in item.dims]
            return self.rng.integers(0, 255, shape, dtype=np.uint8)
        if item.type == "bytes":
            return self.rng.integers(0, 255, self.integer() % 3000, dtype=np.uint8).tobytes()
        if item.dims and item.type not in ARRAY_CODES:
            return [self.record(getattr(measure, item.type)) for _ in range(self.dim(item.dims[0]) % 6)]
        if item.type in ARRAY_CODES:
            shape = [{"leftHeight(rig)": 480, "leftWidth(rig)": 640}.get(d) or self.dim(d) for d in item.dims]
            values = self.array(shape, np.dtype(item.type))
            return values * 10 if values.dtype.kind == "f" and self.rng.random() < 0.5 else values
        if item.type in ("int", "float", "camera"):
            return super().argument(item, rig)
        return self.record(getattr(measure, item.type))


@pytest.fixture()
def rigs():
    """One without a covariance and one with."""
    with measure.zelmMeasureRigOpen(truth.block(*truth.pair())) as bare:
        with measure.zelmMeasureRigOpen((deskRig.calibrated() / "rig.zcal").read_bytes()) as full:
            measure.zelmMeasureCovarianceLoad(full, (deskRig.calibrated() / "rig.zcov").read_bytes())
            yield bare, full


@pytest.mark.parametrize("name", [n for n in TABLE if isMeant(n)])
@pytest.mark.filterwarnings("ignore::RuntimeWarning")
def testAnyValues(name, rigs, monkeypatch):
    entry, function, guarded = parse(TABLE[name]), getattr(measure, name), Guarded()
    scope = function.__globals__
    monkeypatch.setitem(scope, "empty", lambda shape, dtype: guarded.block(shape, dtype, 0))
    monkeypatch.setitem(scope, "full", lambda shape, value: guarded.block(shape, np.dtype("f8"), value))
    monkeypatch.setitem(
        scope, "arrayOfRecords", lambda cls, n: guarded.block(n, _build.dtypeOf(cls), _build.arrayOfRecords(cls, 1)[0])
    )
    done = 0
    for seed in range(DRAWS):
        draw = MeasureDraw([seed, zlib.crc32(name.encode())])
        rig = rigs[seed % 2]
        given = {}
        for item in entry.given():
            if item.type == "Zelm2ViewCalib":
                given[item.name] = measure.zelmMeasureRigCalib(rig)
            elif item.default is None or draw.rng.random() < 0.5:
                given[item.name] = draw.argument(item, rig)
        try:
            function(**given)
            done += 1
        except core.ZelmError as error:
            assert error.function.startswith("zelmMeasure"), seed
        except (MemoryError, TypeError):
            pass
        assert guarded.intact(), (seed, given)
        guarded.blocks.clear()
    assert done or name.startswith(REFUSED), name
    assert all(rig._readers == 0 and not rig._writing for rig in rigs)
