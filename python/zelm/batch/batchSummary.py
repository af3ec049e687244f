"""What came of a batch, in numbers and words."""

from bisect import insort
from collections import Counter
from typing import Any, Dict, List, NamedTuple, Tuple

from .pairWork import FAILED, KEPT, MADE, Report

_MAX_TOLD = 20  # failures that the text names one by one


class Failure(NamedTuple):
    """A pair without a result."""

    station: str
    pair: str
    reason: str


class BatchSummary:
    """Counts of a job, and the pairs that failed with their reasons."""

    def __init__(self, kind: str, store: str, pairs: int) -> None:
        self.kind = kind
        self.store = store
        self.pairs = pairs
        self.counts: Counter = Counter()
        self.failures: List[Failure] = []
        self.stopped = ""  # why the job gave up before its end
        self.seconds = 0.0
        self.waited = 0.0  # for room on the disk, all workers together

    def add(self, report: Report) -> None:
        """Counts a report."""
        self.counts[report.outcome] += 1
        self.waited += report.waited
        if report.outcome == FAILED:
            insort(self.failures, Failure(report.record.station, report.record.pair, report.reason))

    @property
    def made(self) -> int:
        """Results that were written."""
        return self.counts[MADE]

    @property
    def kept(self) -> int:
        """Results that were there already, of the same inputs and job."""
        return self.counts[KEPT]

    @property
    def open(self) -> int:
        """Pairs that were not come to."""
        return self.pairs - self.made - self.kept - len(self.failures)

    @property
    def exitCode(self) -> int:
        """0 when every pair has its result."""
        return 1 if self.failures or self.stopped or self.open else 0

    def toJson(self) -> Dict[str, Any]:
        """All of it, for --json."""
        return {
            "kind": self.kind,
            "store": self.store,
            "pairs": self.pairs,
            "made": self.made,
            "kept": self.kept,
            "failed": len(self.failures),
            "open": self.open,
            "stopped": self.stopped,
            "failures": [failure._asdict() for failure in self.failures],
            "seconds": round(self.seconds, 3),
            "waitedForDisk": round(self.waited, 3),
        }

    def lines(self) -> Tuple[List[str], List[str]]:
        """Words for people: what goes to stdout and, of failures, to stderr."""
        told = [f"{failure.station}/{failure.pair}: {failure.reason}" for failure in self.failures[:_MAX_TOLD]]
        if len(self.failures) > _MAX_TOLD:
            told.append(f"and {len(self.failures) - _MAX_TOLD} more: --json names all")
        if self.stopped:
            told.append(self.stopped)
        rate = self.made / self.seconds if self.seconds > 0 else 0.0
        words = f"{self.kind}: {self.made} of {self.pairs} pairs made, {self.kept} kept, {len(self.failures)} failed"
        words += f", {self.open} open" if self.open else ""
        result = [f"{words}; {self.seconds:.1f} s, {rate:.1f} pairs a second", f"results are in {self.store}"]
        if self.waited:
            result.append(f"workers waited {self.waited:.1f} s for room on the disk")
        if self.failures or self.open:
            result.append("the same command does what is missing, and keeps the rest")
        return result, told
