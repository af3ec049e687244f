"""Finds, checks and runs the program `zelm`, and turns what it says into results, warnings and exceptions."""

import json
import os
import re
import shutil
import signal
import subprocess
import sys
import warnings
from pathlib import Path
from typing import Any, Dict, Iterator, List, Optional, Sequence, Tuple

from ._errors import MeasurementWarning, ZelmError
from ._library import FOLDER_VARIABLE, LibraryError
from ._progress import ProgressPipe

PROGRAM_VARIABLE = "ZELM_PROGRAM"
_PACKAGE = Path(__file__).resolve().parent
_SECONDS_TO_STOP = 5.0  # what an interrupted program gets to take its unfinished files away
_checked: Dict[Tuple[str, int], str] = {}


class ToolError(ZelmError):
    """The program `zelm` refused or failed; `str()` is its line, with what to try.

    Attributes
    ----------
    status : int
        Its exit code: 1 the data did not allow it, 2 wrong usage; the negative signal that ended it.
    cause : str
        A word for programs: ``"data"``, ``"usage"``, or a closer one such as ``"list-shifted"`` or ``"drift"``.
    images : list of str
        The images at fault, as far as they are known.
    result : dict
        All that the program told of the failure, the verdict of a refused calibration included.
    """

    def __init__(self, message: str, status: int, result: Optional[Dict[str, Any]] = None, command: str = "") -> None:
        self.result = result or {}
        self.cause: str = self.result.get("cause", "program")
        self.images: List[str] = self.result.get("images", [])
        super().__init__(message, status, self.cause, f"zelm {command}".strip())

    def __reduce__(self):  # type: ignore[no-untyped-def]
        return self.__class__, (self.args[0], self.status, self.result, self.function[len("zelm") :].strip())


def program() -> str:
    """The path of the program, of the version of this package.

    It is looked for in the package's own folder, then where ZELM_PROGRAM says, then in and beside the folders of
    ZELM_LIBRARY_PATH, then on PATH. The first one that is there is taken, or refused when it is of another version.
    """
    looked: List[str] = []
    for path in _candidates():
        if path.is_file() and os.access(path, os.X_OK):
            _checkVersion(path)
            return str(path)
        looked.append(str(path))
        if os.environ.get(PROGRAM_VARIABLE) == str(path):
            raise LibraryError(f"{path}, which {PROGRAM_VARIABLE} names, is no program that can be run")
    found = shutil.which("zelm")
    if found is None:
        raise LibraryError(
            f"the program zelm was not found. Looked at: {'; '.join(looked)}; the folders of PATH. Install it (Debian: "
            f"zelm-tools), or set {PROGRAM_VARIABLE} to its path."
        )
    _checkVersion(Path(found))
    return found


def _candidates() -> Iterator[Path]:
    yield _PACKAGE / "_libs" / "zelm"
    if os.environ.get(PROGRAM_VARIABLE):
        yield Path(os.environ[PROGRAM_VARIABLE])
    for folder in os.environ.get(FOLDER_VARIABLE, "").split(os.pathsep):
        if folder:
            yield Path(folder) / "zelm"
            yield Path(folder) / "tools" / "zelm" / "zelm"  # a build's folder
            yield Path(folder).parent / "bin" / "zelm"  # an installed one's


def _checkVersion(path: Path) -> None:
    from . import __version__

    key = (str(path), path.stat().st_mtime_ns)
    if key not in _checked:
        try:
            done = subprocess.run([str(path), "--version"], stdin=subprocess.DEVNULL, capture_output=True, text=True)
        except OSError as error:
            raise LibraryError(f"{path} cannot be run: {error}") from None
        if done.returncode != 0:
            raise LibraryError(f"{path} does not start: {(done.stderr or done.stdout).strip()}")
        _checked[key] = done.stdout.strip()
    if _checked[key] != f"zelm {__version__}":
        raise LibraryError(
            f"{path} is {_checked[key] or 'not zelm'}, this package is zelm {__version__}: install the two together, "
            f"or set {PROGRAM_VARIABLE} to the path of the right one"
        )


def run(
    command: str, arguments: Sequence[str], folders: Sequence[str] = (), progress: bool = False
) -> Dict[str, Any]:
    """Runs a subcommand and returns its JSON object; its warnings become Python warnings.

    Names of files that stand in one of `folders`, which are private, are told without the folder.
    """
    code, output, errors = _communicate([program(), command, *arguments, "--json"], progress)
    try:
        result = _withoutFolders(json.loads(output), folders)
    except ValueError:
        raise ToolError(_lastWords(command, code, errors), code, command=command) from None
    for words in result.get("warnings", []):
        warn(words)
    if code != 0:
        raise ToolError(result.get("message", _lastWords(command, code, errors)), code, result, command)
    return result


def text(command: str, *arguments: str) -> str:
    """What a subcommand prints for people."""
    code, output, errors = _communicate([program(), command, *arguments], progress=False)
    if code != 0:
        raise ToolError(_lastWords(command, code, errors), code, command=command)
    return output


def warn(words: str) -> None:
    """A Python warning that names the line which called the package."""
    level, frame = 1, sys._getframe()
    while frame is not None and str(frame.f_code.co_filename).startswith(str(_PACKAGE)):
        level, frame = level + 1, frame.f_back  # type: ignore[assignment]
    warnings.warn(words, MeasurementWarning, stacklevel=level)


def _communicate(words: List[str], progress: bool) -> Tuple[int, str, str]:
    """Runs until the end: exit code, stdout and stderr. Whatever interrupts the wait stops the program."""
    with ProgressPipe(progress) as pipe:
        process = subprocess.Popen(
            ["zelm", *words[1:]],
            executable=words[0],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=pipe.childEnd or subprocess.PIPE,
            encoding="utf-8",
            errors="replace",
        )
        pipe.started()
        try:
            output, errors = process.communicate()
        except BaseException:
            _stop(process)
            raise
    return process.returncode, output, errors or ""


def _stop(process: "subprocess.Popen[str]") -> None:
    process.terminate()
    try:
        process.wait(_SECONDS_TO_STOP)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def _withoutFolders(value: Any, folders: Sequence[str]) -> Any:
    if isinstance(value, str):
        for folder in folders:
            value = value.replace(folder + os.sep, "")
        return value
    if isinstance(value, list):
        return [_withoutFolders(item, folders) for item in value]
    if isinstance(value, dict):
        return {key: _withoutFolders(item, folders) for key, item in value.items()}
    return value


def _lastWords(command: str, code: int, errors: str) -> str:
    if code < 0:
        try:
            name = signal.Signals(-code).name
        except ValueError:
            name = str(-code)
        return f"zelm {command} was ended by signal {name}; there is no result"
    lines = [line for line in errors.splitlines() if line.strip()]
    words = re.sub(r"^zelm: ", "", lines[-1]) if lines else "it said nothing"
    return f"zelm {command} ended with exit code {code}, without a result: {words}"
