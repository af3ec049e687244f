"""The files of a rig: the calibration, and beside it its covariance and its summary."""

import json
from pathlib import Path
from typing import Any, Dict, Optional, Tuple

from . import _records
from ._errors import ZelmDataError
from ._outputs import PathLike, writeTogether

UNKNOWN_UNIT = "plate units"


def calibrationFile(path: PathLike) -> Path:
    """The file of the calibration; a folder has it as rig.zcal."""
    path = Path(path)
    if path.is_dir():
        path = path / "rig.zcal"
        if not path.is_file():
            raise FileNotFoundError(f"{path}: there is no such calibration in this folder")
    elif not path.exists():
        raise FileNotFoundError(f"{path}: there is no such calibration")
    return path


def bytesBeside(path: Path, ending: str) -> Optional[bytes]:
    """What the file of the same name with another ending holds; None where there is none."""
    beside = path.with_suffix(ending)
    return beside.read_bytes() if beside != path and beside.is_file() else None


def summaryOf(content: Optional[bytes]) -> Optional[Dict[str, Any]]:
    """A summary of a calibration; None for anything else, which other programs may keep under such a name."""
    try:
        summary = json.loads(content) if content is not None else None
    except (ValueError, UnicodeDecodeError):
        return None
    return summary if isinstance(summary, dict) else None


def isSummaryOf(summary: Optional[Dict[str, Any]], left: Any, right: Any) -> bool:
    """A summary tells of these cameras when it has their numbers: JSON keeps every bit of them."""
    return summary is not None and (
        _at(summary, "left", "alpha") == left.alpha
        and _at(summary, "right", "alpha") == right.alpha
        and _at(summary, "left", "cx") == left.cx
    )


def textAt(summary: Optional[Dict[str, Any]], *names: str) -> Optional[str]:
    """A text of a summary on one line; None where there is none."""
    value = _at(summary or {}, *names)
    return " ".join(value.split()) if isinstance(value, str) and value else None


def _at(summary: Any, *names: str) -> Any:
    for name in names:
        summary = summary.get(name) if isinstance(summary, dict) else None
    return summary


def named(error: ZelmDataError, path: Path) -> ZelmDataError:
    """The same failure in words that name the file."""
    words = f"{path}: {error.words or error}"
    made = ZelmDataError(words, int(_records.ZELM_MEASURE_ERR_DATA), error.name, error.function)
    made.words = error.words
    return made


def writeRig(path: Path, block: bytes, covariance: Optional[bytes], summary: Optional[bytes]) -> Tuple[Path, ...]:
    """Writes the files together. A covariance of another calibration, which would be refused, does not stay."""
    beside = {".zcov": covariance, ".json": summary}
    if path.suffix in beside:
        raise ValueError(f"{path}: that is the name of a file beside the calibration: give it the ending .zcal")
    contents: Dict[PathLike, bytes] = {path: block}
    contents.update({path.with_suffix(ending): content for ending, content in beside.items() if content is not None})
    written = tuple(writeTogether(contents))
    if covariance is None:
        path.with_suffix(".zcov").unlink(missing_ok=True)
    return written
