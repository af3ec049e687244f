"""Work on thousands of image pairs: into one store, by one process or many machines, stopped and gone on with.

``python3 -m zelm.batch --help`` is the program; docs/fleet.md tells how to use both.
"""

from .batchFault import BatchError, BatchUsageError, StoreFullError
from .batchJob import runBatch
from .batchSummary import BatchSummary, Failure
from .pairList import PairRecord, pairsOfManifest, pairsOfPatterns
from .pairStore import pairsOfStore
from .pairWork import PairInputs, PairResult, Report
from .pairWriter import PairArray

__all__ = [
    "BatchError",
    "BatchSummary",
    "BatchUsageError",
    "Failure",
    "PairArray",
    "PairInputs",
    "PairRecord",
    "PairResult",
    "Report",
    "StoreFullError",
    "pairsOfManifest",
    "pairsOfPatterns",
    "pairsOfStore",
    "runBatch",
]
