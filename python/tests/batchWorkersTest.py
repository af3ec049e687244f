"""A batch in several processes and under a scheduler: the same bytes, whoever is killed."""

import asyncio
import json
import os
import signal
import socket
import subprocess
import sys
import time
from pathlib import Path

import pytest
from conftest import FOLDER
from fleetSample import contentOfStore, writePairs

from zelm.batch import PairRecord, daskWorkers, runBatch

pytest.importorskip("distributed")
BLOBS = "fleetWork:blobs"
PATIENCE = 120  # seconds that a step of these tests may take on a busy machine
ENVIRONMENT = {**os.environ, "PYTHONPATH": os.pathsep.join([str(FOLDER), str(FOLDER / "tests")])}


def waitFor(condition, what: str) -> None:
    end = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < end, f"no {what} within {PATIENCE} s"
        time.sleep(0.02)


def expected(tmp_path, pairs, kind=BLOBS, **options) -> dict:
    """What one process makes of the pairs."""
    runBatch(kind, pairs, str(tmp_path / "expected"), processes=0, options=options)
    return contentOfStore(tmp_path / "expected")


def test_twoProcessesMakeTheSameBytes(tmp_path):
    pairs = writePairs(tmp_path / "in", 12)
    summary = runBatch(BLOBS, pairs, str(tmp_path / "out"), processes=2)
    assert (summary.made, summary.exitCode) == (12, 0)
    assert contentOfStore(tmp_path / "out") == expected(tmp_path, pairs)


def test_aKilledWorkerLosesNothing(tmp_path):
    pairs = writePairs(tmp_path / "in", 10, once="p004")
    options = {"folder": str(tmp_path)}
    summary = runBatch("fleetWork:deadly", pairs, str(tmp_path / "out"), processes=2, options=options)
    assert (tmp_path / "flag").exists()
    assert (summary.made, summary.exitCode) == (10, 0)
    assert contentOfStore(tmp_path / "out") == expected(tmp_path, pairs, "fleetWork:deadly", **options)


def test_aPairThatKillsItsWorkersIsToldAndTheOthersDone(tmp_path):
    pairs = writePairs(tmp_path / "in", 8, killer="p003")
    summary = runBatch("fleetWork:deadly", pairs, str(tmp_path / "out"), processes=2, options={"folder": str(tmp_path)})
    assert (summary.made, summary.exitCode) == (7, 1)
    (failure,) = summary.failures
    assert failure.pair == "killer" and "killed by signal 9, each time" in failure.reason


def batchProcess(tmp_path, pairs, kind: str, store: str, *extra: str) -> subprocess.Popen:
    command = [sys.executable, "-m", "zelm.batch", "run", kind, "--left", f"{tmp_path}/in/l_*.pgm"]
    command += ["--right", f"{tmp_path}/in/r_*.pgm", "-o", store, "--json"]
    command += ["--options", json.dumps({"folder": str(tmp_path)}), *extra]
    return subprocess.Popen(command, env=ENVIRONMENT, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def test_aJobKilledInTheMiddleGoesOn(tmp_path):
    pairs = writePairs(tmp_path / "in", 8)
    store = tmp_path / "out"
    job = batchProcess(tmp_path, pairs, "fleetWork:slow", str(store), "--processes", "2")
    waitFor(lambda: len(list(tmp_path.glob("at-p00[3-7]"))) == 2, "two workers in the middle")
    job.kill()
    job.communicate()
    assert 1 <= len(list(store.glob("rig/p*"))) <= 3
    (tmp_path / "go").touch()
    job = batchProcess(tmp_path, pairs, "fleetWork:slow", str(store), "--processes", "2")
    summary = json.loads(job.communicate(timeout=PATIENCE)[0])
    assert job.returncode == 0
    assert summary["kept"] >= 1 and summary["made"] + summary["kept"] == 8
    assert contentOfStore(store) == expected(tmp_path, pairs, "fleetWork:slow", folder=str(tmp_path))


def freePort() -> int:
    with socket.socket() as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


class Cluster:
    """A scheduler and workers as processes of their own, on the loopback address."""

    def __init__(self, folder: Path) -> None:
        self.folder = folder
        self.port = freePort()
        self.address = f"tcp://127.0.0.1:{self.port}"
        self.processes: list = []

    def start(self, workers: int) -> None:
        self.scheduler = self.run("dask_scheduler", "--host", "127.0.0.1", "--port", str(self.port), "--no-dashboard")
        self.workers = [
            self.run("dask_worker", self.address, "--nthreads", "1", "--no-nanny", "--no-dashboard",
                     "--local-directory", str(self.folder))
            for _ in range(workers)
        ]

    def run(self, module: str, *arguments: str) -> subprocess.Popen:
        command = [sys.executable, "-m", f"distributed.cli.{module}", *arguments]
        log = open(self.folder / f"{module}.{len(self.processes)}.log", "w")
        self.processes.append(subprocess.Popen(command, env=ENVIRONMENT, stdout=log, stderr=log))
        log.close()
        return self.processes[-1]

    def stop(self) -> None:
        for process in self.processes:
            process.kill()
            process.wait()


@pytest.fixture
def cluster(tmp_path):
    (tmp_path / "dask").mkdir()
    made = Cluster(tmp_path / "dask")
    yield made
    made.stop()


def test_twoWorkersOfASchedulerMakeTheSameBytesThoughOneIsKilled(tmp_path, cluster):
    pairs = writePairs(tmp_path / "in", 8, once="p004")
    cluster.start(3)
    options = {"folder": str(tmp_path)}
    summary = runBatch("fleetWork:deadly", pairs, str(tmp_path / "out"), scheduler=cluster.address, options=options)
    waitFor(lambda: any(worker.poll() == -signal.SIGKILL for worker in cluster.workers), "worker killed")
    # What the killed one had written before its report was lost is kept.
    assert (summary.made + summary.kept, summary.exitCode, summary.failures) == (8, 0, [])
    assert contentOfStore(tmp_path / "out") == expected(tmp_path, pairs, "fleetWork:deadly", **options)


def test_aSchedulerThatIsRestartedLosesNothing(tmp_path, cluster):
    pairs = writePairs(tmp_path / "in", 8)
    cluster.start(2)
    job = batchProcess(tmp_path, pairs, "fleetWork:slow", str(tmp_path / "out"), "--scheduler", cluster.address)
    waitFor(lambda: any(tmp_path.glob("at-p00[3-7]")), "worker in the middle")
    cluster.stop()
    for place in tmp_path.glob("at-*"):
        place.unlink()
    cluster.start(2)
    waitFor(lambda: any(tmp_path.glob("at-p00[3-7]")), "worker in the middle again")
    (tmp_path / "go").touch()
    out, err = job.communicate(timeout=PATIENCE)
    assert "the scheduler was lost" in err
    assert job.returncode == 0, err
    assert json.loads(out)["made"] + json.loads(out)["kept"] == 8
    assert contentOfStore(tmp_path / "out") == expected(tmp_path, pairs, "fleetWork:slow", folder=str(tmp_path))


class LostFuture:
    """A pair that is done, whose scheduler goes while the report is fetched."""

    status = "finished"

    def __init__(self, error: BaseException) -> None:
        self.error = error

    def result(self):
        raise self.error


@pytest.mark.parametrize("error", [OSError("closed"), TimeoutError(), asyncio.CancelledError()])
def test_aSchedulerThatGoesWhileAReportIsFetchedIsLost(error):
    session = object.__new__(daskWorkers._Session)
    future = LostFuture(error)
    session.given = {future: PairRecord("rig", "p")}
    with pytest.raises(daskWorkers._Lost):
        session._reportOf(future)


def test_aSchedulerThatIsNotThereIsTold(tmp_path, monkeypatch):
    monkeypatch.setattr("zelm.batch.daskWorkers._START", 0.5)
    summary = runBatch(BLOBS, writePairs(tmp_path / "in", 1), str(tmp_path / "out"),
                       scheduler=f"tcp://127.0.0.1:{freePort()}")
    assert "no scheduler answers" in summary.stopped and summary.exitCode == 1
