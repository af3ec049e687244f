"""What the generator writes is what is checked in, and C agrees with it."""

import ast
import ctypes
import inspect
import re
from pathlib import Path

import makeRecords
import pytest
from headerReader import HeaderError, Headers, _Reader, readFolder

from zelm import _library, _records, core, measure
from zelm._measureChecks import ROOMS

# Records of arrays with checks that are written by hand, and one with a pointer for the caller's function.
OWN_CHECKS = ("ZelmMeasureImageSet", "ZelmMeasureFeatureResult", "ZelmMeasureMatchOptions")
ROOT = Path(__file__).resolve().parent.parent.parent
PACKAGE = ROOT / "python" / "zelm"


@pytest.fixture(scope="module")
def both():
    return [readFolder(ROOT / "include" / "zelm"), readFolder(ROOT / "include" / "zelmMeasure")]


def testGeneratedFilesAreFresh(tmp_path, monkeypatch):
    monkeypatch.setattr("sys.argv", ["makeRecords.py", str(tmp_path)])
    makeRecords.main()
    written = sorted(path.name for path in tmp_path.iterdir())
    assert written == [
        "_coreDocs.py",
        "_measureDocs.py",
        "_prototypes.py",
        "_records.py",
        "core.pyi",
        "measure.pyi",
    ]
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


@pytest.mark.parametrize("module", [core, measure], ids=["core", "measure"])
def testStubHasEveryFunctionWithItsParameters(module):
    tree = ast.parse((PACKAGE / f"{module.__name__.rpartition('.')[2]}.pyi").read_text())
    stubs = {node.name: node for node in tree.body if isinstance(node, ast.FunctionDef)}
    for name in module.TABLE:
        arguments = stubs[name].args
        real = inspect.signature(getattr(module, name)).parameters
        assert [argument.arg for argument in arguments.args] == list(real), name
        assert len(arguments.defaults) == sum(p.default is not p.empty for p in real.values()), name


@pytest.mark.parametrize("module", [core, measure], ids=["core", "measure"])
def testDocstringsHaveEveryParameterWithWords(module):
    wordless = []
    for name in module.TABLE:
        function = getattr(module, name)
        assert function.__doc__ and "Notes" in function.__doc__, name
        for parameter in inspect.signature(function).parameters:
            lines = function.__doc__.split("\n")
            at = next(i for i, line in enumerate(lines) if line.startswith(f"{parameter} : "))
            if not lines[at + 1].startswith("    "):
                wordless.append((name, parameter))
    assert not wordless


def testFailuresHaveTheWordsOfTheirHeader():
    from zelm._measureDocs import STATUSES, WORDS

    assert "do not allow" in STATUSES["ZELM_MEASURE_ERR_DATA"]
    assert WORDS["zelmMeasureRigOpen"]["ZELM_MEASURE_ERR_DATA"] == "the block is refused"
    assert "parallel cameras" in WORDS["zelmMeasureTriangulate"]["ZELM_MEASURE_ERR_DATA"]
    assert "parallel camera" in WORDS["zelmMeasureCompareImage"]["ZELM_MEASURE_ERR_DATA"]


def testRoomsAreAsTheHeadersSay(both):
    words = {"places": 3, "grid": 2, "placeGrid": 2, "points": 3, "noise": 6}
    told = {record.name: {field.name: field.doc for field in record.fields} for record in both[1].records}
    for name, fields in ROOMS.items():
        for field, each in fields.items():
            number = re.match(r"(?:\[in\] )?(\d) a ", told[name][field])
            assert int(number.group(1)) if number else 1, (name, field)
            assert (int(number.group(1)) if number else words.get(field, each)) == each, (name, field)
    arrays = {
        record.name
        for record in both[1].records
        if sum(field.isPointer for field in record.fields) > 1 and record.name not in OWN_CHECKS
    }
    assert arrays == set(ROOMS)
