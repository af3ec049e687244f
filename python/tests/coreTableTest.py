"""The call table names every function, and every argument of its prototype, by what it is in C."""

import re
import shutil
import subprocess

import pytest

from zelm import _coreTable, _library, _measureTable, core, measure
from zelm._prototypes import CORE, MEASURE
from zelm._signature import HANDLES, TableError, declaredNames, parse

TABLE = {**_coreTable.TABLE, **_measureTable.TABLE}
PROTOTYPES = {**CORE, **MEASURE}

FLAT = {"f8": ("double", "Point2d", "Point3d"), "f4": ("float",), "i4": ("int32_t", "Point2i"), "u4": ("uint32_t",)}
FLAT.update(u1=("uint8_t", "unsigned char"), i8=("int64_t",), u2=("uint16_t",), bytes=("void",))
IMAGES = {"image": "ZelmImage", "planar": "vImage_Buffer", "argb": "vImage_Buffer", "gray": "ZelmMeasureImage"}
INTEGERS = ("int32_t", "int64_t")
# Counts that functions written by hand find out themselves.
UNNAMED = {
    "zelmBinBlob": {"iCount"},
    "zelm2ViewLoadCalibData": {"iSize"},
    "zelmMeasureAdjustDots": {"count"},
    "zelmMeasureRigDots": {"placed"},
    "zelmMeasurePlateDots": {"placed"},
    "zelmMeasureReadDots": {"count"},
    "zelmMeasureExport": {"capacity", "length"},
    "zelmMeasureCovarianceSave": {"capacity"},
    "zelmMeasureImport": {"count", "sizes"},
    "zelmMeasurePairImages": {"capacity"},
}


def testTableHasEveryFunctionInTheOrderOfTheHeaders():
    assert list(_coreTable.TABLE) == list(CORE)
    assert list(_measureTable.TABLE) == list(MEASURE)
    assert len(CORE) == 202
    assert len(MEASURE) == 87


@pytest.mark.skipif(not shutil.which("nm"), reason="needs nm")
@pytest.mark.parametrize("which", ["core", "measure"])
def testLibraryExportsWhatTheHeadersDeclare(which):
    library = getattr(_library, which)()
    printed = subprocess.run(["nm", "-D", "--defined-only", library._name], capture_output=True, text=True, check=True)
    exported = {line.split()[2] for line in printed.stdout.splitlines() if line.split()[1] == "T"}
    exported -= {"_init", "_fini"}
    assert exported == set({"core": CORE, "measure": MEASURE}[which])


@pytest.mark.parametrize("name", list(TABLE))
def testEveryArgumentIsNamedOnce(name):
    entry = parse(TABLE[name])
    wanted = [argument.rsplit(" ", 1)[1] for argument in PROTOTYPES[name][1:]]
    named = declaredNames(entry)
    assert len(set(named)) == len(named)
    if entry.custom:  # sizes follow from the bytes, results have a name of their own
        assert {n for n in wanted if n not in named} <= UNNAMED.get(name, set())
        return
    assert [n for n in wanted if n not in named] == []
    own = {item.name for item in entry.results if item.expression == "return"}
    free = {"h", "w", "h2", "w2", "h3", "w3", "h4", "w4"}
    # A dimension may have a name that only this entry knows, when an image's record carries it.
    assert {n for n in named if n not in wanted and n not in own and n not in free and n.isidentifier()} <= {"iView"}


@pytest.mark.parametrize("name", [n for n in TABLE if not parse(TABLE[n]).custom])
def testTypesAreThoseOfThePrototype(name):
    entry = parse(TABLE[name])
    types = {argument.rsplit(" ", 1)[1]: argument.rsplit(" ", 1)[0] for argument in PROTOTYPES[name][1:]}
    arguments = {item.name for item in entry.arguments}
    for item in [*entry.arguments, *(r for r in entry.results if r.type)]:
        kind = types[item.name]
        base = re.sub(r"^const |\*+$", "", kind)
        result = item.name not in arguments
        if item.expression is not None or item.type in ("int", "camera", "float"):
            kinds = ("double",) if item.type == "float" else ("int32_t",) if item.type == "camera" else INTEGERS
            assert re.sub(r"\*$", "", kind) in kinds and kind.endswith("*") == result
        elif item.type in FLAT:
            assert base in FLAT[item.type]
        elif item.type in IMAGES:
            assert base == IMAGES[item.type]
        elif item.type == "views":
            assert base == "Zelm2ViewPtnEntry"
        else:
            assert base == item.type or (item.name, item.type) == ("daCamera", "ZelmCameraIntrinsics")
        if item.type in HANDLES:  # the object serves one call at a time, whether the call changes it or not
            assert kind.endswith("**") == result
        elif kind.endswith("*") and item.type not in ("planar", "argb"):  # these records are const, their pixels not
            arrays = base.startswith("ZelmMeasure") and item.inOut  # the record is const, its arrays are written
            assert kind.startswith("const ") == (not result and (arrays or not item.inOut)), item.name
        if item.dims and base in ("Point2d", "Point3d", "Point2i"):
            assert item.dims[-1] == base[5], item.name


@pytest.mark.parametrize("name", [n for n in TABLE if not parse(TABLE[n]).custom])
def testArgumentsAndResultsAreInTheOrderOfC(name):
    entry = parse(TABLE[name])
    order = [argument.rsplit(" ", 1)[1] for argument in PROTOTYPES[name][1:]]
    for items in ([i for i in entry.arguments if i.expression is None], [i for i in entry.results if i.name in order]):
        places = [order.index(item.name) for item in items]
        assert places == sorted(places)
    own = [item.expression for item in entry.results]
    assert "return" not in own[1:]


def testReturnValueOfEveryFunctionHasAPlace():
    for name, entry in ((name, parse(text)) for name, text in TABLE.items()):
        if PROTOTYPES[name][0] == "double":
            assert [item.expression for item in entry.results].count("return") == 1, name


@pytest.mark.parametrize("text", ["a:f8[ -> b:int", "a b:: -> ", "a:f8[n]"])
def testEntriesThatCannotBeReadAreRefused(text):
    with pytest.raises((TableError, ValueError)):
        parse(text)


def testModuleListsItsFunctions():
    assert set(CORE) <= set(dir(core))
    assert set(MEASURE) <= set(dir(measure))
    assert core.zelmFitLine is core.zelmFitLine
    assert core.zelmMatSVDResult._fields == ("daU", "daW", "daV")
    for name in ("zelmNothing", "zelmFitLineResult"):
        with pytest.raises(AttributeError):
            getattr(core, name)
