"""What the generator writes is what is checked in, and C agrees with it."""

import ast
import ctypes
import inspect
from pathlib import Path

import makeRecords
import pytest
from headerReader import HeaderError, Headers, _Reader, readFolder

from zelm import _library, _records, core

ROOT = Path(__file__).resolve().parent.parent.parent
PACKAGE = ROOT / "python" / "zelm"


@pytest.fixture(scope="module")
def both():
    return [readFolder(ROOT / "include" / "zelm"), readFolder(ROOT / "include" / "zelmMeasure")]


def testGeneratedFilesAreFresh(tmp_path, monkeypatch):
    monkeypatch.setattr("sys.argv", ["makeRecords.py", str(tmp_path)])
    makeRecords.main()
    written = sorted(path.name for path in tmp_path.iterdir())
    assert written == ["_coreDocs.py", "_prototypes.py", "_records.py", "core.pyi"]
    for name in written:
        assert (tmp_path / name).read_text() == (PACKAGE / name).read_text(), f"{name}: run tools/makeRecords.py"


def testRecordsAndEnumsAreThoseOfC(both):
    layout, values = makeRecords.runLayout(both)
    assert len(layout) > 80
    for name, (size, *offsets) in layout.items():
        cls = getattr(_records, name)
        assert ctypes.sizeof(cls) == size, name
        assert [getattr(cls, field[0]).offset for field in cls._fields_] == offsets, name
    assert len(values) > 150
    for name, value in values.items():
        assert getattr(_records, name) == value, name


def testEveryFieldOfAHeaderIsInItsRecord(both):
    for headers in both:
        for record in headers.records:
            assert getattr(_records, record.name)._names_ == tuple(field.name for field in record.fields)


@pytest.mark.parametrize(
    "text",
    ["typedef struct A {\n    double x, y;\n} A;\n", "int f(void);\n", "enum {\n    ZELM_A = 1 << 2,\n};\n"],
)
def testReaderRefusesWhatItDoesNotKnow(text):
    with pytest.raises(HeaderError):
        _Reader("a", Headers()).read(text)


def testALayoutThatDiffersIsRefused(monkeypatch):
    _library.checkLayout()
    monkeypatch.setitem(_records.LAYOUT, "Point2d", (16, 0, 4))
    with pytest.raises(_library.LibraryError, match="Point2d"):
        _library.checkLayout()


def testStubHasEveryFunctionWithItsParameters():
    tree = ast.parse((PACKAGE / "core.pyi").read_text())
    stubs = {node.name: node for node in tree.body if isinstance(node, ast.FunctionDef)}
    for name in core.TABLE:
        arguments = stubs[name].args
        real = inspect.signature(getattr(core, name)).parameters
        assert [argument.arg for argument in arguments.args] == list(real), name
        assert len(arguments.defaults) == sum(p.default is not p.empty for p in real.values()), name


def testDocstringsHaveEveryParameterWithWords():
    wordless = []
    for name in core.TABLE:
        function = getattr(core, name)
        assert function.__doc__ and "Notes" in function.__doc__, name
        for parameter in inspect.signature(function).parameters:
            lines = function.__doc__.split("\n")
            at = next(i for i, line in enumerate(lines) if line.startswith(f"{parameter} : "))
            if not lines[at + 1].startswith("    "):
                wordless.append((name, parameter))
    assert not wordless
