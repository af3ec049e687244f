"""The program ``python3 -m zelm.batch``: options, words and exit codes."""

import argparse
import json
import sys
from typing import Any, Dict, List, Optional, Sequence

from .batchFault import BatchError, BatchUsageError
from .batchJob import runBatch
from .batchSummary import BatchSummary
from .pairList import PairRecord, pairsOfManifest, pairsOfPatterns
from .pairWork import KINDS, Report

_EPILOG = "Exit codes: 0 done, 1 the data did not allow all of it, 2 wrong usage."
_EXAMPLE = """examples:
  python3 -m zelm.batch match --rig out/rig.zcal --left 'l_*.png' --right 'r_*.png' -o results
  python3 -m zelm.batch verify --rig 'rigs/{station}.zcal' --plate plate.json --manifest checks.csv -o checks
  python3 -m zelm.batch drift checks -o drift.csv --plot drift.png
"""
_WORDS = {
    "match": "match pixels of the left images in the right ones and make 3-D points of them",
    "triangulate": "make 3-D points of files of pixel pairs",
    "verify": "check calibrations with images of a plate: lengths, epipolar distances, drift",
    "detect": "find the dots of a plate in single images or pairs",
    "run": "work of your own: module:function, from PairInputs to PairResult",
}


def main(arguments: Optional[Sequence[str]] = None) -> int:
    """Runs the program; returns its exit code."""
    parser = _parser()
    given = parser.parse_args(arguments)
    try:
        if given.command == "drift":
            from .stationDrift import driftCommand

            return driftCommand(given)
        return _work(given)
    except BatchError as error:
        print(f"zelm.batch: {error}", file=sys.stderr)
        return error.exitCode
    except ImportError as error:
        print(f"zelm.batch: {error}", file=sys.stderr)
        return 1


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="python3 -m zelm.batch",
        description="Work on many image pairs, into one store; a job that was stopped goes on where it was.",
        epilog=_EXAMPLE + _EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    commands = parser.add_subparsers(dest="command", required=True, metavar="COMMAND")
    for kind in (*KINDS, "run"):
        command = commands.add_parser(kind, help=_WORDS[kind], description=_WORDS[kind].capitalize() + ".")
        if kind == "run":
            command.add_argument("work", metavar="MODULE:FUNCTION")
            command.add_argument("--options", default="{}", metavar="JSON", help="what the function finds as options")
        _addInputs(command, kind)
        _addOptions(command, kind)
        _addOutputs(command, kind)
    drift = commands.add_parser("drift", help="tell from a store how stations change over the days")
    drift.add_argument("store", help="folder of the results")
    drift.add_argument("-o", "--output", metavar="CSV", help="write the table there; default: stdout")
    drift.add_argument("--plot", metavar="PNG", help="also draw it (needs matplotlib)")
    drift.add_argument("--json", action="store_true", help="print the table as JSON, and nothing else")
    return parser


def _addInputs(command: argparse.ArgumentParser, kind: str) -> None:
    group = command.add_argument_group(
        "pairs", "Either --manifest, or patterns in quotes, with * and ? and {station}, {day}, {time}; or folders"
    )
    group.add_argument("--manifest", metavar="CSV", help="columns: pair or id, left, right, station, day, time, points")
    if kind != "triangulate":
        group.add_argument("--left", metavar="PATTERN", default="", help="left images")
        group.add_argument("--right", metavar="PATTERN", default="", help="right images")
    if kind in ("triangulate", "run"):
        group.add_argument("--points", metavar="PATTERN", default="", help="CSV files of pixel pairs: id,xL,yL,xR,yR")
    if kind != "detect":
        group.add_argument("--rig", metavar="FILE", default="", required=kind != "run",
                           help="the calibration (rig.zcal); one per station: a name with {station} in it")
    if kind in ("verify", "detect", "run"):
        group.add_argument("--plate", metavar="JSON", default="", required=kind in ("verify", "detect"),
                           help="description of the plate")


def _addOptions(command: argparse.ArgumentParser, kind: str) -> None:
    if kind == "match":
        command.add_argument("--grid", type=int, default=8, help="look for the pixels of a grid with this step; 8")
        command.add_argument("--dense", action="store_true", help="look for every pixel with texture")
        command.add_argument("--window", type=int, default=21, help="side of the compared window, pixels, odd; 21")
        command.add_argument("--min-score", type=float, default=0.8, help="smallest score of a match; 0.8")
        command.add_argument("--precision", type=float, default=0.1,
                             help="leave out points whose texture promises less, pixels; 0.1")
        command.add_argument("--noise", type=float, default=0.0, help="of a gray level; 0: estimated from each pair")
        command.add_argument("--depth", metavar="MIN,MAX", default="", help="distances to search, in the plate's unit")
    if kind == "triangulate":
        command.add_argument("--max-error", type=float, default=0.0,
                             help="pixels by which rays may miss each other before it is a mismatch; 0: any")


def _addOutputs(command: argparse.ArgumentParser, kind: str) -> None:
    group = command.add_argument_group("results and workers")
    group.add_argument("-o", "--output", required=True, metavar="FOLDER", help="the store (Zarr)")
    group.add_argument("--csv", metavar="FOLDER", default="", help="also a CSV a pair there")
    if kind in ("match", "triangulate", "run"):
        group.add_argument("--ply", metavar="FOLDER", default="", help="also a PLY cloud a pair there")
    group.add_argument("--processes", type=int, help="workers on this machine; default: one a processor")
    group.add_argument("--scheduler", metavar="ADDRESS", default="", help="of Dask, as tcp://10.0.0.1:8786")
    group.add_argument("--disk-wait", type=float, default=60.0, metavar="SECONDS",
                       help="to wait for room on a full disk; 60")
    group.add_argument("--json", action="store_true", help="print the summary as JSON, and nothing else, on stdout")
    group.add_argument("-q", "--quiet", action="store_true", help="no text and no progress; errors remain")


def _work(given: argparse.Namespace) -> int:
    pairs = _pairsOf(given)
    with _Bar(len(pairs), given.quiet or given.json) as bar:
        summary = runBatch(
            given.work if given.command == "run" else given.command,
            pairs,
            given.output,
            getattr(given, "rig", ""),
            plate=getattr(given, "plate", ""),
            options=_optionsOf(given),
            processes=given.processes,
            scheduler=given.scheduler,
            csv=given.csv,
            ply=getattr(given, "ply", ""),
            patience=given.disk_wait,
            progress=bar.show,
            notice=bar.say,
        )
    _tell(summary, given)
    return summary.exitCode


def _pairsOf(given: argparse.Namespace) -> List[PairRecord]:
    left, right, points = (getattr(given, name, "") for name in ("left", "right", "points"))
    if given.manifest:
        if left or right or points:
            raise BatchUsageError("--manifest names the images already: leave the patterns out")
        return pairsOfManifest(given.manifest)
    if given.command in ("match", "verify") and not (left and right):
        raise BatchUsageError("both --left and --right are wanted, or --manifest")
    if not (left or right or points):
        raise BatchUsageError("no pairs are named: see --help")
    return pairsOfPatterns(left, right, points)


def _optionsOf(given: argparse.Namespace) -> Dict[str, Any]:
    if given.command == "match":
        options = {"dense": True} if given.dense else {"grid": given.grid}
        options.update(window=given.window, minScore=given.min_score, precision=given.precision, noise=given.noise)
        return {**options, **({"depth": _twoNumbers(given.depth)} if given.depth else {})}
    if given.command == "triangulate":
        return {"maxError": given.max_error}
    if given.command == "run":
        try:
            options = json.loads(given.options)
        except ValueError as error:
            raise BatchUsageError(f"--options: no JSON: {error}") from None
        if not isinstance(options, dict):
            raise BatchUsageError("--options: an object is wanted, as {\"window\": 21}")
        return options
    return {}


def _twoNumbers(text: str) -> List[float]:
    try:
        low, high = (float(part) for part in text.split(","))
    except ValueError:
        raise BatchUsageError(f"--depth {text}: MIN,MAX is wanted, as 300,800") from None
    if not low < high:
        raise BatchUsageError(f"--depth {text}: the first must be less than the second")
    return [low, high]


class _Bar:
    """A progress bar on stderr, where that is a terminal and tqdm is there."""

    def __init__(self, total: int, quiet: bool) -> None:
        self.bar: Any = None
        if not quiet:
            try:
                from tqdm import tqdm

                self.bar = tqdm(total=total, unit="pair", disable=None, file=sys.stderr)
            except ImportError:
                pass

    def show(self, report: Report) -> None:
        if self.bar is not None:
            self.bar.update()

    def say(self, words: str) -> None:
        print(f"zelm.batch: {words}", file=sys.stderr)

    def __enter__(self) -> "_Bar":
        return self

    def __exit__(self, *_: Any) -> None:
        if self.bar is not None:
            self.bar.close()


def _tell(summary: BatchSummary, given: argparse.Namespace) -> None:
    result, failures = summary.lines()
    for line in failures:
        print(f"zelm.batch: {line}", file=sys.stderr)
    if given.json:
        print(json.dumps(summary.toJson(), indent=2))
    elif not given.quiet:
        print("\n".join(result))
