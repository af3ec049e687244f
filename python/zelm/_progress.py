"""The program's progress bar, which it draws on terminals alone, shown wherever Python's stderr goes."""

import contextlib
import os
import sys
import threading
from types import TracebackType
from typing import Optional, Type

_ERASE = b"\x1b[K"  # of the bar, before words and at the end


class ProgressPipe:
    """A terminal for the program's stderr. What it draws goes to sys.stderr; its lines of words do not.

    The words come back by other ways, as warnings and exceptions. Where the system gives no terminal, nothing is drawn.
    """

    def __init__(self, wanted: bool) -> None:
        self.childEnd: Optional[int] = None
        self._ownEnd: Optional[int] = None
        self._reader: Optional[threading.Thread] = None
        if wanted:
            with contextlib.suppress(OSError):
                self._ownEnd, self.childEnd = os.openpty()

    def __enter__(self) -> "ProgressPipe":
        return self

    def started(self) -> None:
        """The program has its end; from now on it is the only one that has."""
        if self.childEnd is not None:
            os.close(self.childEnd)
            self.childEnd = None
            self._reader = threading.Thread(target=self._pass, daemon=True)
            self._reader.start()

    def __exit__(
        self, kind: Optional[Type[BaseException]], error: Optional[BaseException], trace: Optional[TracebackType]
    ) -> None:
        if self.childEnd is not None:
            os.close(self.childEnd)
        if self._reader is not None:
            self._reader.join()
        if self._ownEnd is not None:
            os.close(self._ownEnd)

    def _pass(self) -> None:
        assert self._ownEnd is not None
        rest = b""
        while True:
            try:
                piece = os.read(self._ownEnd, 4096)
            except OSError:  # what a terminal says when its other end is closed
                piece = b""
            if not piece:
                break
            rest = _show(rest + piece)
        if rest:
            _show(rest + b"\r")


def _show(drawn: bytes) -> bytes:
    """Passes on what is complete, and returns what is not."""
    *whole, rest = drawn.replace(b"\r\n", b"\n").replace(b"\n", b"\n\r").split(b"\r")
    for piece in whole:
        if piece.removeprefix(_ERASE).startswith(b"zelm: "):
            piece = _ERASE if piece.startswith(_ERASE) else b""
        if piece.strip():
            sys.stderr.write("\r" + piece.decode("utf-8", "replace"))
    sys.stderr.flush()
    return rest
