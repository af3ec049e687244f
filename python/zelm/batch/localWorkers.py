"""Work on the pairs in processes of this machine: a process and a pipe a worker, no server."""

import ctypes
import multiprocessing
import signal
import threading
from collections import deque
from concurrent.futures import ThreadPoolExecutor
from multiprocessing.connection import Connection, wait
from typing import Any, Deque, Dict, Iterable, Iterator, List, Tuple

from .batchFault import BatchError
from .pairList import PairRecord
from .pairWork import FAILED, Report, Settings, perform

MAX_DEATHS = 2  # of workers that had one pair and no other, before it is told and left
MAX_FALSE_STARTS = 3  # of workers that end before they begin, one after the other, before the job is given up
_PR_SET_PDEATHSIG = 1  # of <sys/prctl.h>
_THREADS = 2  # of a worker: one pair is worked on while the disk takes another's result
_AHEAD = _THREADS + 1  # pairs that a worker has been given: the next one waits in the pipe


def reportsHere(records: Iterable[PairRecord], settings: Settings) -> Iterator[Report]:
    """The pairs one by one in this process, for debugging."""
    for record in records:
        yield perform(record, settings)


def reportsOfProcesses(records: Iterable[PairRecord], settings: Settings, processes: int) -> Iterator[Report]:
    """What becomes of the pairs, in the order in which they are done.

    The pairs of a worker that dies are tried again, one at a time, each in at most MAX_DEATHS workers. When
    the caller ends the iteration, the processes end.
    """
    crew = _Crew(iter(records), settings)
    try:
        crew.hire(processes)
        while crew.feed():
            yield from crew.reports()
    finally:
        crew.dismiss()


class _Worker:
    def __init__(self, settings: Settings) -> None:
        context = multiprocessing.get_context("spawn")
        self.pipe, theirs = context.Pipe()
        self.process = context.Process(target=_serve, args=(theirs, settings), daemon=True, name="zelm-batch")
        self.process.start()
        theirs.close()
        self.given: Deque[PairRecord] = deque()
        self.alone = False  # has a pair over which a worker has died
        self.begun = False

    def give(self, record: PairRecord) -> None:
        self.given.append(record)
        try:
            self.pipe.send(record)
        except OSError:
            pass  # it has died, which is noticed by its end of the pipe

    def take(self) -> List[Report]:
        """What the worker says next, of which there is something: a report, or nothing but that it has begun.

        Raises EOFError or OSError when the worker has died.
        """
        message = self.pipe.recv()
        if not self.begun:
            self.begun = True
            return []
        self.given.remove(message.record)
        return [message]


def _serve(pipe: Connection, settings: Settings) -> None:
    """What a worker's process does, until its pipe is closed."""
    _dieWithParent()
    sending = threading.Lock()

    def work(record: PairRecord) -> None:
        report = perform(record, settings)
        with sending:
            pipe.send(report)

    try:
        pipe.send(True)
        with ThreadPoolExecutor(_THREADS) as pool:
            while True:
                pool.submit(work, pipe.recv())
    except (EOFError, OSError, KeyboardInterrupt):
        pass


def _dieWithParent() -> None:
    """A killed job leaves no workers behind."""
    try:
        ctypes.CDLL(None).prctl(_PR_SET_PDEATHSIG, signal.SIGKILL)
    except (OSError, AttributeError):
        pass  # not Linux: they end with their pair


class _Crew:
    def __init__(self, records: Iterator[PairRecord], settings: Settings) -> None:
        self.records = records
        self.settings = settings
        self.workers: List[_Worker] = []
        self.suspects: Deque[PairRecord] = deque()
        self.deaths: Dict[Tuple[str, str], int] = {}
        self.falseStarts = 0

    def hire(self, count: int) -> None:
        self.workers += [_Worker(self.settings) for _ in range(count)]

    def dismiss(self) -> None:
        for worker in self.workers:
            worker.pipe.close()
            worker.process.terminate()
        for worker in self.workers:
            worker.process.join()

    def feed(self) -> bool:
        """Gives pairs to those that have room; False when all is done."""
        for worker in self.workers:
            if not worker.given:
                worker.alone = bool(self.suspects)
                if worker.alone:
                    worker.give(self.suspects.popleft())
            while not worker.alone and len(worker.given) < _AHEAD:
                record = next(self.records, None)
                if record is None:
                    break
                worker.give(record)
        return any(worker.given for worker in self.workers)

    def reports(self) -> Iterator[Report]:
        """Waits for what comes next."""
        busy = {worker.pipe: worker for worker in self.workers if worker.given}
        for pipe in wait(list(busy)):
            worker = busy[pipe]  # type: ignore[index]
            try:
                reports = worker.take()
            except (EOFError, OSError):
                reports = self._bury(worker)
            yield from reports

    def _bury(self, worker: _Worker) -> List[Report]:
        """A new worker for a dead one; its pairs are tried again, alone, or given up."""
        givenUp = []
        worker.pipe.close()
        worker.process.join()
        self.falseStarts = 0 if worker.begun else self.falseStarts + 1
        if self.falseStarts == MAX_FALSE_STARTS:
            raise BatchError(
                f"worker processes end before they begin (code {worker.process.exitcode}): a script must call the "
                'batch below `if __name__ == "__main__":`'
            )
        self.workers[self.workers.index(worker)] = _Worker(self.settings)
        for record in worker.given:
            key = (record.station, record.pair)
            self.deaths[key] = self.deaths.get(key, 0) + (worker.begun and worker.alone)
            if self.deaths[key] < MAX_DEATHS:
                self.suspects.append(record)
            else:
                givenUp.append(Report(record, FAILED, f"{record.label()}: {_deathOf(worker.process)}"))
        return givenUp


def _deathOf(process: Any) -> str:
    code = process.exitcode
    how = f"killed by signal {-code}" if code is not None and code < 0 else f"ended with code {code}"
    return f"its worker was {how}, each time: too little memory, or an image that crashes what reads it"
