"""Finding and refusing libraries."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

from zelm import _library

PACKAGE = Path(_library.__file__).resolve().parent


def testASearchThatFailsNamesWhereItLooked(monkeypatch):
    monkeypatch.setenv(_library.FOLDER_VARIABLE, os.pathsep.join(["/no/such", "/nor/this"]))
    with pytest.raises(_library.LibraryError) as caught:
        _library.open_("libzelmNothing.so.1")
    for place in (str(PACKAGE / "_libs"), "/no/such", "/nor/this", "system's library path", "ZELM_LIBRARY_PATH"):
        assert place in str(caught.value)
    monkeypatch.delenv(_library.FOLDER_VARIABLE)
    with pytest.raises(_library.LibraryError, match="not set"):
        _library.open_("libzelmNothing.so.1")


def testAFileThatIsNoLibraryIsNamed(monkeypatch, tmp_path):
    (tmp_path / "libzelmLib.so.1").write_text("not a library")
    monkeypatch.setenv(_library.FOLDER_VARIABLE, str(tmp_path))
    with pytest.raises(_library.LibraryError, match="does not load"):
        _library.open_("libzelmLib.so.1")


def testALibraryThatLacksFunctionsIsRefused():
    with pytest.raises(_library.LibraryError, match="lacks zelmNothing"):
        _library.bind(_library.core(), {"zelmNothing": ("void",)})


def testBothLibrariesAreBound():
    assert _library.measure() is _library.measure()
    assert _library.measure().zelmMeasureRigError.restype is _library.ctypes.c_char_p
    assert _library.core().zelmMathCalcNorm.restype is _library.ctypes.c_double


def run(code, environment, folder):
    command = [sys.executable, "-c", code]
    return subprocess.run(command, env=environment, cwd=folder, capture_output=True, text=True)


def testThePackagesOwnFolderComesFirst(tmp_path):
    """In a process of its own: a package that has its libraries finds them without the environment."""
    package = tmp_path / "zelm"
    shutil.copytree(PACKAGE, package, ignore=shutil.ignore_patterns("__pycache__", "_libs"))
    (package / "_libs").mkdir()
    shutil.copy(_library.core()._name, package / "_libs" / "libzelmLib.so.1")
    code = "from zelm.core import library, zelmMathCalcNorm; zelmMathCalcNorm([3, 4]); print(library()._name)"
    environment = {**os.environ, "PYTHONPATH": str(tmp_path), "ZELM_LIBRARY_PATH": "/no/such"}
    done = run(code, environment, tmp_path)
    assert done.stdout.strip() == str(package / "_libs" / "libzelmLib.so.1"), done.stderr


def testImportingNeedsNoLibrary(tmp_path):
    """Documentation and records work without; the first call tells what is missing."""
    code = (
        "import zelm\nprint(zelm.core.Point2d(1, 2))\n"
        "try: zelm.core.zelmMathCalcNorm([3, 4])\nexcept zelm.LibraryError as error: print('refused', error)"
    )
    environment = {**os.environ, "PYTHONPATH": str(PACKAGE.parent), "ZELM_LIBRARY_PATH": "/no/such"}
    done = run(code, environment, tmp_path)
    assert "Point2d(x=1.0, y=2.0)" in done.stdout, done.stderr
    if shutil.which("ldconfig") and "libzelmLib" not in subprocess.getoutput("ldconfig -p"):
        assert "refused libzelmLib.so.1 was not found" in done.stdout
