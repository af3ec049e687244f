"""Files that appear whole or not at all."""

import os
import secrets
from pathlib import Path
from typing import Dict, Union

PathLike = Union[str, "os.PathLike[str]"]


def writeWhole(path: PathLike, content: bytes) -> Path:
    """Writes a file under a temporary name in its folder, then gives it its name."""
    return writeTogether({path: content})[0]


def writeTogether(contents: Dict[PathLike, bytes]) -> "list[Path]":
    """Writes several files so; none gets its name before all are written."""
    written: Dict[Path, Path] = {}
    try:
        for path, content in contents.items():
            target = Path(path)
            if not target.parent.is_dir():
                raise FileNotFoundError(f"{target}: there is no folder {target.parent} to write it to")
            temporary = target.parent / f".{target.name}.{secrets.token_hex(6)}"
            # Not by tempfile: that makes files which nobody else may read, as no output is meant to be.
            handle = os.open(temporary, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o666)
            written[temporary] = target
            with os.fdopen(handle, "wb") as file:
                file.write(content)
        for temporary, target in written.items():
            if target.is_dir():
                raise IsADirectoryError(f"{target}: a folder has this name")
        for temporary, target in written.items():
            os.replace(temporary, target)
    finally:
        for temporary in written:
            temporary.unlink(missing_ok=True)
    return list(written.values())


def copyWhole(source: PathLike, target: PathLike) -> Path:
    """Copies a file likewise."""
    return writeWhole(target, Path(source).read_bytes())
