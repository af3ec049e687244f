"""A batch from its beginning to its summary."""

import os
import time
import warnings
from typing import Any, Callable, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple

from .._errors import MeasurementWarning, ZelmError
from ..rig import Rig
from .batchFault import BatchError, BatchUsageError
from .batchPlate import digestOfPlate
from .batchSummary import BatchSummary
from .daskWorkers import reportsOfScheduler
from .localWorkers import reportsHere, reportsOfProcesses
from .pairList import PairRecord
from .pairProvenance import canonical, digestOf, jobRecord, libraries
from .pairStore import PairStore
from .pairWork import STOPPED, Report, Settings, digestOfCalibration, workOf

Progress = Callable[[Report], None]
Notice = Callable[[str], None]


def runBatch(
    kind: str,
    pairs: Sequence[PairRecord],
    store: str,
    rig: str = "",
    *,
    plate: str = "",
    options: Optional[Mapping[str, Any]] = None,
    processes: Optional[int] = None,
    scheduler: str = "",
    csv: str = "",
    ply: str = "",
    patience: float = 60.0,
    progress: Optional[Progress] = None,
    notice: Notice = print,
) -> BatchSummary:
    """Does a kind of work on every pair and keeps the results in a Zarr store; goes on with a store that is there.

    Parameters
    ----------
    kind : "match", "triangulate", "verify", "detect", or "module:function" of a function from PairInputs to PairResult
    pairs : of pairsOfManifest() or pairsOfPatterns()
    store : folder of the results
    rig : file of the calibration; ``{station}`` in its name stands for the pair's station
    plate : file that describes the plate, for verify and detect
    options : of the kind of work
    processes : workers on this machine, by default one a processor; 0 works in this process. A script that runs more
        must be importable: keep the call below ``if __name__ == "__main__":``
    scheduler : address of a Dask scheduler, such as ``"tcp://10.0.0.1:8786"``, in place of processes here
    csv, ply : folders for a file a pair beside the store
    patience : seconds to wait for room on a full disk before the job is given up
    progress : called with each report
    notice : called with what the user should know while the job goes on

    Raises
    ------
    BatchError
        The job cannot begin: no pairs, no calibration, another job's store. What goes wrong with single pairs is in
        the summary.
    """
    settings, calibrations, job = _prepared(
        kind, pairs, store, rig, plate, dict(options or {}), csv, ply, patience, notice
    )
    summary = BatchSummary(kind, store, len(pairs))
    began = time.monotonic()
    with PairStore(store, job, calibrations):
        reports = _reports(pairs, settings, processes, scheduler, notice)
        try:
            for report in reports:
                if report.outcome == STOPPED:
                    summary.stopped = report.reason
                    break
                summary.add(report)
                if progress:
                    progress(report)
        except KeyboardInterrupt:
            summary.stopped = "stopped from the keyboard"
        except BatchError as error:  # the scheduler is gone for good
            summary.stopped = str(error)
        finally:
            reports.close()  # type: ignore[attr-defined]
            summary.seconds = time.monotonic() - began
    return summary


def _reports(
    pairs: Sequence[PairRecord], settings: Settings, processes: Optional[int], scheduler: str, notice: Any
) -> Iterator[Report]:
    if scheduler:
        return reportsOfScheduler(pairs, settings, scheduler, notice=notice)
    count = len(os.sched_getaffinity(0)) if processes is None else processes
    if count < 0:
        raise BatchUsageError(f"{count} processes: name 1 or more, or 0 for this process")
    count = min(count, len(pairs))
    return reportsOfProcesses(pairs, settings, count) if count else reportsHere(pairs, settings)


def _prepared(
    kind: str, pairs: Sequence[PairRecord], store: str, rig: str, plate: str, options: Dict[str, Any], csv: str,
    ply: str, patience: float, notice: Notice
) -> Tuple[Settings, Dict[str, str], Dict[str, Any]]:
    if not pairs:
        raise BatchError("no pairs: nothing is to be done")
    workOf(kind)
    description = (os.path.abspath(plate), digestOfPlate(plate)) if plate else ("", "")
    files = calibrationsOf(rig, sorted({record.station for record in pairs}), notice)
    digests = {station: digest for station, (_, digest) in files.items()}
    job = jobRecord(kind, options, description[1])
    settings = Settings(
        kind=kind, options=options, store=os.path.abspath(store), job=digestOf(canonical(job)), loaded=libraries(),
        calibrations=files, plate=description, csv=os.path.abspath(csv) if csv else "",
        ply=os.path.abspath(ply) if ply else "", patience=patience,
    )
    return settings, digests, job


def calibrationsOf(rig: str, stations: List[str], notice: Notice = print) -> Dict[str, Tuple[str, str]]:
    """Path and digest of each station's calibration."""
    if not rig:
        return {}
    if "{station}" not in rig and len(stations) > 1:
        raise BatchUsageError(
            f"{rig}: one calibration for {len(stations)} stations ({stations[0]}, {stations[1]}, ...): "
            "each has its own, put {station} into the name"
        )
    paths = {station: os.path.abspath(rig.replace("{station}", station)) for station in stations}
    for path in sorted(set(paths.values())):
        _checkCalibration(path, notice)
    return {station: (path, digestOfCalibration(path)) for station, path in paths.items()}


def _checkCalibration(path: str, notice: Notice) -> None:
    """Refuses what is none before all pairs would fail by it; warns of one that was refused when it was made."""
    with warnings.catch_warnings(record=True) as told:
        warnings.simplefilter("always", MeasurementWarning)
        try:
            if not os.path.isfile(path):
                raise BatchError(f"{path}: there is no such calibration")
            Rig.load(path)
        except (OSError, ZelmError) as error:
            raise BatchError(str(error)) from None
    for warning in told:
        notice(f"warning: {warning.message}")
