"""Every function with arguments of the right types and any values: a result or a Python error, never a crash.

Outputs lie between guards, so that what C writes beyond them is seen.
"""

import os
import zlib

import numpy as np
import pytest
import syntheticPair as truth

from zelm import _build, _coreChecks, core
from zelm._coreTable import TABLE
from zelm._record import Record
from zelm._signature import ARRAY_CODES, parse

DRAWS = int(os.environ.get("ZELM_DRAWS", "40"))
# What a loaded object does not have, and records that chance hardly makes sound; other tests call these in earnest.
REFUSED = ("zelm2ViewGetPtnNum", "zelm2ViewGetPattern", "zelm2ViewReadPtnImg", "zelm2ViewCalibCameraParam")
REFUSED += ("zelmCstmDrovnSearchOnEpiLine", "zelmCalibCameraParam", "zelmEdge1dManual")
GUARD = 64
DOUBLES = [0.0, -0.0, 1.0, -3.5, 2.0, 300.25, 1e-320, 1e300, -1e300, np.nan, np.inf, -np.inf]
INTEGERS = [0, 1, 2, 3, 4, 5, 7, 10, 33, 76, 82, 255, -1, -2, -(2**31), 1000]
NAMED = {"pixels": np.uint8, "mask": np.uint8, "mapX": np.float32, "mapY": np.float32}


class Draw:
    def __init__(self, seed):
        self.rng = np.random.default_rng(seed)
        self.dims = {}

    def double(self):
        kind = self.rng.random()
        if kind < 0.5:
            return float(self.rng.uniform(0, 12))
        return float(self.rng.choice(DOUBLES)) if kind < 0.75 else float(self.rng.normal() * 100)

    def integer(self):
        return int(self.rng.choice(INTEGERS if self.rng.random() < 0.5 else [-1, 0, 1, 2]))

    def dim(self, text):
        if text.isdigit():
            return int(text)
        if text not in self.dims:
            self.dims[text] = int(self.rng.choice([0, 1, 2, 3, 4, 5, 9, 12, 40]))
        return self.dims[text]

    def array(self, shape, dtype):
        if dtype.kind == "f":
            kind = self.rng.random()
            values = self.rng.normal(size=shape) * 100
            if kind < 0.3:
                values = self.rng.choice(DOUBLES, size=shape)
            elif kind < 0.5:
                values = np.round(values / 100)  # points that coincide, singular matrices
            with np.errstate(over="ignore"):
                return np.asarray(values).astype(dtype)
        return self.rng.integers(0, 255, shape).astype(dtype)

    def record(self, cls):
        made = cls()
        for name in cls._names_:
            if name in cls._pointers_:
                if self.rng.random() < 0.8:
                    shape = [getattr(made, f, 0) for f in ("iHeight", "iWidth") if hasattr(made, f)]
                    shape = shape or [made.height, made.width]
                    if self.rng.random() < 0.2:
                        shape = [3, 4]
                    setattr(made, name, self.array([max(n, 0) for n in shape], np.dtype(NAMED[name])))
            elif name in cls._ranges_:
                value = self.integer()
                small = name.lower().endswith(("width", "height", "maxresults")) and self.rng.random() < 0.8
                setattr(made, name, abs(value) % 50 if small else value)
            elif name in cls._arrays_:
                setattr(made, name, self.array(len(getattr(made, name)), cls._arrays_[name]))
            elif isinstance(getattr(made, name), Record):
                setattr(made, name, self.record(type(getattr(made, name))))
            else:
                setattr(made, name, self.double())
        for name in ("mapXStride", "mapYStride"):
            if hasattr(made, name) and self.rng.random() < 0.8:
                setattr(made, name, 4 * max(made.iWidth, 0))
        return made

    def argument(self, item, pair):
        if item.type == "Zelm2ViewCalib":
            return pair
        if item.optional and self.rng.random() < 0.3:
            return None
        if item.type == "int":
            return self.integer()
        if item.type == "float":
            return self.double()
        if item.type == "camera":
            return self.rng.choice(["L", "R"]) if self.rng.random() < 0.9 else self.integer()
        if item.type in ("image", "planar", "argb", "u1"):
            camera = any("tHandle" in dim for dim in item.dims) or self.rng.random() < 0.3
            shape = [480, 640] if camera and item.type != "image" else [self.dim(d) for d in item.dims[:2]]
            if item.type == "argb" or (item.type == "u1" and len(item.dims) == 3):
                shape.append(4)
            return self.rng.integers(0, 255, shape, dtype=np.uint8)
        if item.type in ARRAY_CODES:
            return self.array([self.dim(d) for d in item.dims], np.dtype(item.type))
        if item.type == "views":
            counts = self.rng.choice([0, 3, 4, 12], size=self.dim("iViews"))
            return [tuple(self.array((n, 2), np.dtype("f8")) for _ in range(2)) for n in counts]
        return self.record(getattr(core, item.type))


class Guarded:
    """Makes the arrays of results with guards before and behind them."""

    def __init__(self):
        self.blocks = []

    def block(self, shape, dtype, fill):
        shape = tuple(shape) if isinstance(shape, tuple) else (shape,)
        size = int(np.prod(shape, dtype=object)) * dtype.itemsize
        if size > 1 << 26:
            raise MemoryError
        raw = np.full(size + 2 * GUARD, 0xA5, np.uint8)
        inner = raw[GUARD : GUARD + size].view(dtype).reshape(shape)
        inner[...] = fill
        self.blocks.append((raw, size))
        return inner

    def intact(self):
        return all(
            (raw[:GUARD] == 0xA5).all() and (raw[GUARD + size :] == 0xA5).all() for raw, size in self.blocks
        )


@pytest.fixture(scope="module")
def pair():
    with core.zelm2ViewLoadCalibData(truth.block(*truth.pair())) as handle:
        yield handle


@pytest.mark.parametrize("name", [n for n in TABLE if not parse(TABLE[n]).custom])
def testAnyValues(name, pair, monkeypatch):
    entry, function, guarded = parse(TABLE[name]), getattr(core, name), Guarded()
    scope = function.__globals__
    monkeypatch.setitem(scope, "empty", lambda shape, dtype: guarded.block(shape, dtype, 0))
    monkeypatch.setitem(scope, "full", lambda shape, value: guarded.block(shape, np.dtype("f8"), value))
    monkeypatch.setitem(scope, "zeros", lambda *shape: guarded.block(shape, np.dtype("u1"), 0))
    monkeypatch.setitem(
        scope, "arrayOfRecords", lambda cls, n: guarded.block(n, _build.dtypeOf(cls), np.zeros((), _build.dtypeOf(cls)))
    )
    done = 0
    for seed in range(DRAWS):
        draw = Draw([seed, zlib.crc32(name.encode())])
        asked = [i for i in entry.given() if i.default is None or draw.rng.random() < 0.7]
        given = {item.name: draw.argument(item, pair) for item in asked}
        try:
            function(**given)
            done += 1
        except core.ZelmError as error:
            assert error.function in (name, "zelm", "zelm2ViewGetPattern", "zelmMiscPlotPointsOfLine")
        except MemoryError:
            pass
        assert guarded.intact(), (seed, given)
        guarded.blocks.clear()
    assert done or name.startswith(REFUSED)
    assert pair._readers == 0 and not pair._writing
    assert _coreChecks.zeros is not scope["zeros"]
