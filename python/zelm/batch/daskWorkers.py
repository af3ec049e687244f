"""Work on the pairs by a scheduler of Dask, on any number of machines that share the folders."""

import asyncio
import concurrent.futures
import logging
import queue
import time
from typing import Any, Callable, Dict, Iterable, Iterator, List

from .batchFault import BatchError
from .pairList import PairRecord
from .pairWork import FAILED, Report, Settings, perform

_AHEAD = 3  # pairs given for each thread of a worker
_MIN_GIVEN = 8  # while no workers are known
_POLL = 1.0  # seconds between looks at a scheduler that answers, but has no news
_TRY_AGAIN = 1.0  # seconds between attempts to reach a scheduler
_CONNECT = 5  # seconds for one attempt
_START = 30.0  # seconds to wait for the scheduler when the job begins

_LOGGERS = ("distributed", *(f"distributed.{part}" for part in ("client", "core", "utils")), "tornado", "asyncio")
_CANCELLED = (asyncio.CancelledError, concurrent.futures.CancelledError)

Notice = Callable[[str], None]


def reportsOfScheduler(
    records: Iterable[PairRecord], settings: Settings, address: str, patience: float = 300.0, notice: Notice = print
) -> Iterator[Report]:
    """What becomes of the pairs, in the order in which they are done.

    Pairs of dead workers are given to others by the scheduler. When the scheduler itself is lost, it is waited for, at
    most `patience` seconds, and given again what it had.
    """
    source = iter(records)
    pending: List[PairRecord] = []
    first = True
    while True:
        client = _clientOf(address, _START if first else patience)
        first = False
        session = _Session(client, settings, source, pending)
        try:
            yield from session.reports()
            return
        except _Lost as lost:
            pending = session.unfinished()
            notice(f"{address}: the scheduler was lost ({lost}); waiting for it, to give {len(pending)} pairs again")
        finally:
            session.close()


class _Lost(Exception):
    """The scheduler does not answer."""


def _clientOf(address: str, patience: float) -> Any:
    try:
        import distributed
    except ImportError:
        raise BatchError("--scheduler needs Dask (python3-distributed): install it, or leave the option out") from None
    for name in _LOGGERS:  # what matters of a lost connection is told by the reports
        logging.getLogger(name).setLevel(logging.CRITICAL + 1)
    end = time.monotonic() + patience
    while True:
        try:
            return distributed.Client(address, timeout=_CONNECT, set_as_default=False)
        except (OSError, TimeoutError, ValueError, ImportError) as error:
            if time.monotonic() > end or isinstance(error, (ValueError, ImportError)):
                words = str(error).splitlines()[0] if str(error) else type(error).__name__
                raise BatchError(f"{address}: no scheduler answers ({words}): start dask-scheduler there") from None
            time.sleep(_TRY_AGAIN)


def _nameOf(client: Any) -> str:
    """The name that each scheduler makes for itself when it starts."""
    return str(client.scheduler_info().get("id", ""))


class _Session:
    """What one connection to a scheduler has been given."""

    def __init__(self, client: Any, settings: Settings, source: Iterator[PairRecord], again: List[PairRecord]) -> None:
        self.client = client
        self.settings = settings
        self.source = source
        self.again = list(reversed(again))
        self.scheduler = _nameOf(client)
        self.given: Dict[Any, PairRecord] = {}  # by future
        self.finished: "queue.Queue[Any]" = queue.Queue()

    def reports(self) -> Iterator[Report]:
        self._feed()
        while self.given:
            try:
                future = self.finished.get(timeout=_POLL)
            except queue.Empty:
                self._checkAlive()
                continue
            self._checkAlive()
            report = self._reportOf(future)
            del self.given[future]
            future.release()
            self._feed()
            yield report

    def _checkAlive(self) -> None:
        """Whether the scheduler is still the one that was given the pairs: a new one does not know them."""
        if self.client.status != "running" or _nameOf(self.client) != self.scheduler:
            raise _Lost(self.client.status)
        if any(future.cancelled() for future in self.given):
            raise _Lost("its pairs are forgotten")

    def _reportOf(self, future: Any) -> Report:
        record = self.given[future]
        if future.status in ("cancelled", "lost"):
            raise _Lost(future.status)
        try:
            error = future.exception() if future.status == "error" else None
            if error is None:
                report: Report = future.result()
                return report
        except (OSError, TimeoutError, *_CANCELLED) as broken:  # the scheduler went while it was asked
            raise _Lost(type(broken).__name__) from None
        words = str(error).splitlines()[0] if str(error) else ""
        return Report(record, FAILED, f"{record.label()}: {type(error).__name__}: {words}")

    def _feed(self) -> None:
        room = max(_MIN_GIVEN, _AHEAD * self._threads()) - len(self.given)
        for _ in range(room):
            record = self.again.pop() if self.again else next(self.source, None)
            if record is None:
                return
            try:
                future = self.client.submit(perform, record, self.settings, pure=False)
            except Exception as error:
                self.again.append(record)
                raise _Lost(type(error).__name__) from None
            self.given[future] = record
            future.add_done_callback(self.finished.put)

    def _threads(self) -> int:
        workers = self.client.scheduler_info().get("workers", {})
        return sum(int(worker.get("nthreads", 1)) for worker in workers.values())

    def unfinished(self) -> List[PairRecord]:
        return list(self.given.values()) + self.again[::-1]

    def close(self) -> None:
        try:
            self.client.close(timeout=_CONNECT)
        except Exception:  # a client whose scheduler is gone may fail to say goodbye
            pass
