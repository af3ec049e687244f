#!/usr/bin/env python3
"""Changes single tokens of the libraries, one at a time, and sees whether the tests notice.

A change that no test notices is a gap in the tests, or changes nothing that can be seen; the latter are listed with
their reasons in equivalent.tsv. What was tried is kept in a state file and not tried again unless its file changed, so
a long run can be stopped at any time. Run it from the project's root, on its committed state:

    tests/mutants/runMutants.py --count 1000 --seed 1 --jobs 2
"""

import argparse
import hashlib
import json
import os
import random
import subprocess
import sys
import threading
import time
from concurrent.futures import ThreadPoolExecutor
from typing import Dict, List, NamedTuple, Optional, Tuple

from mutations import Mutant, mutants_of, sources_of

FOLDERS = ("src", "3DLib", "measure")
KILLED, SURVIVED, STILLBORN = "killed", "survived", "stillborn"
_ROOM = 5.0  # a changed program may take so many times as long as it did before, before it hangs
_LEAST_ROOM = 10.0  # seconds


class Test(NamedTuple):
    """A test program."""

    name: str
    target: str
    command: List[str]
    folder: str  # of the sources that it is about, as far as its place tells


class Outcome(NamedTuple):
    """What became of a mutant, and which test told."""

    result: str
    by: str = ""


class Tree:
    """A copy of the sources with a build of its own, in which one mutant at a time is put."""

    def __init__(self, root: str, folder: str) -> None:
        self.root = root
        self.sources = os.path.join(folder, "sources")
        self.build = os.path.join(folder, "build")
        self.times: Dict[str, float] = {}
        self._copy()
        self._configure()
        self.tests = self._listed()

    def _copy(self) -> None:
        os.makedirs(self.sources, exist_ok=True)
        archive = subprocess.Popen(["git", "-C", self.root, "archive", "HEAD"], stdout=subprocess.PIPE)
        subprocess.run(["tar", "-x", "--skip-old-files", "-C", self.sources], stdin=archive.stdout, check=True)
        tracked = subprocess.run(
            ["git", "-C", self.root, "archive", "HEAD", *FOLDERS], stdout=subprocess.PIPE, check=True
        ).stdout
        subprocess.run(["tar", "-x", "-C", self.sources], input=tracked, check=True)  # a mutant that was left behind

    def _configure(self) -> None:
        options = ["-DCMAKE_BUILD_TYPE=Release", "-DZELM_BUILD_TOOL=OFF", "-DZELM_HARDEN=OFF", "-DZELM_WERROR=OFF"]
        command = ["cmake", "-G", "Ninja", "-S", self.sources, "-B", self.build, *options]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)

    def _listed(self) -> List[Test]:
        told = subprocess.run(
            ["ctest", "--test-dir", self.build, "--show-only=json-v1", "-LE", "statistics"],
            stdout=subprocess.PIPE, check=True,
        )
        content = json.loads(told.stdout)
        graph = content["backtraceGraph"]
        found = []
        for test in content["tests"]:
            command = test.get("command", [""])
            target = os.path.basename(command[0])
            if target.startswith("zelm_test_"):
                found.append(Test(test["name"], target, command, _folder_of(test, graph)))
        return found

    def make(self, tests: List[Test]) -> bool:
        """Builds the programs of tests."""
        command = ["ninja", "-C", self.build, "-j1", *sorted({test.target for test in tests})]
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return done.returncode == 0

    def passes(self, test: Test) -> bool:
        """Whether a test passes, in the time that it may take."""
        limit = max(_LEAST_ROOM, _ROOM * self.times[test.name]) if test.name in self.times else None
        begun = time.monotonic()
        try:
            done = subprocess.run(
                [*test.command, "--gtest_brief=1", "--gtest_fail_fast"], cwd=self.build, timeout=limit,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            )
        except subprocess.TimeoutExpired:
            return False
        self.times.setdefault(test.name, time.monotonic() - begun)
        return done.returncode == 0

    def prepare(self) -> None:
        """Builds the unchanged sources, whose tests must pass."""
        if not self.make(self.tests):
            sys.exit(f"{self.build}: does not build")
        for test in self.tests:
            if not self.passes(test):
                sys.exit(f"{self.build}: {test.name} fails without any change")

    def tried(self, mutant: Mutant) -> Outcome:
        """Puts a mutant in, runs the tests until one tells, and takes it out."""
        path = os.path.join(self.sources, mutant.file)
        with open(path, encoding="utf-8") as file:
            source = file.read()
        try:
            _write(path, mutant.applied_to(source))
            return self._outcome(mutant)
        finally:
            _write(path, source)

    def _outcome(self, mutant: Mutant) -> Outcome:
        near, far = _by_nearness(self.tests, mutant.file)
        for tests in (near, far):
            if not self.make(tests):
                return Outcome(STILLBORN)
            for test in sorted(tests, key=lambda test: self.times[test.name]):
                if not self.passes(test):
                    return Outcome(KILLED, test.name)
        return Outcome(SURVIVED)


def _folder_of(test: Dict, graph: Dict) -> str:
    """The folder of tests/ in which a test is declared."""
    node: Optional[int] = test.get("backtrace")
    while node is not None:
        file = graph["files"][graph["nodes"][node]["file"]]
        folder = os.path.basename(os.path.dirname(file))
        if folder != "tests":
            return folder
        node = graph["nodes"][node].get("parent")
    return ""


def _by_nearness(tests: List[Test], file: str) -> Tuple[List[Test], List[Test]]:
    """The tests of the folder that a file is in, and the others that can see it."""
    parts = file.split(os.sep)
    folder = parts[1] if parts[0] in ("src", "measure") else parts[-2]
    wanted = "measure" + folder if parts[0] == "measure" else folder
    near = [t for t in tests if t.folder == wanted or t.name.lower().startswith(wanted.lower())]
    seen = [t for t in tests if parts[0] != "measure" or t.folder == "measure"]
    return near, [t for t in seen if t not in near]


def _write(path: str, text: str) -> None:
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def _digest(path: str) -> str:
    with open(path, "rb") as file:
        return hashlib.sha256(file.read()).hexdigest()[:16]


class State:
    """What was tried: a line of JSON a mutant."""

    def __init__(self, path: str) -> None:
        self.path = path
        self.known: Dict[Tuple[str, str], Dict] = {}
        self.lock = threading.Lock()
        if os.path.exists(path):
            with open(path, encoding="utf-8") as file:
                for line in file:
                    record = json.loads(line)
                    self.known[(record["name"], record["digest"])] = record

    def add(self, mutant: Mutant, digest: str, outcome: Outcome, seconds: float) -> None:
        """Notes an outcome."""
        record = {
            "name": mutant.name(), "digest": digest, "file": mutant.file, "line": mutant.line, "text": mutant.text,
            "old": mutant.old, "new": mutant.new, "result": outcome.result, "by": outcome.by,
            "seconds": round(seconds, 1),
        }
        with self.lock:
            self.known[(record["name"], digest)] = record
            with open(self.path, "a", encoding="utf-8") as file:
                file.write(json.dumps(record) + "\n")


def equivalents(path: str) -> Dict[str, str]:
    """Reasons why a mutant changes nothing that can be seen, by the mutant's name."""
    with open(path, encoding="utf-8") as file:
        rows = [line.rstrip("\n").split("\t") for line in file if line.strip() and not line.startswith("#")]
    return {row[0]: row[1] for row in rows}


def sampled(root: str, count: int, seed: int, folders: List[str]) -> List[Mutant]:
    """So many mutants, the same ones for the same seed and sources."""
    everything = []
    for name in sources_of(root, folders):
        with open(os.path.join(root, name), encoding="utf-8") as file:
            everything += list(mutants_of(name, file.read()))
    return random.Random(seed).sample(everything, min(count, len(everything)))


def summary(records: List[Dict], excused: Dict[str, str]) -> str:
    """The share that the tests notice, and what they do not."""
    killed = sum(record["result"] == KILLED for record in records)
    survivors = [record for record in records if record["result"] == SURVIVED]
    equivalent = [record for record in survivors if record["name"] in excused]
    open_ones = [record for record in survivors if record["name"] not in excused]
    counted = killed + len(open_ones)
    lines = [
        f"{record['name']}  {record['file']}:{record['line']}: {record['old']} -> {record['new']}: {record['text']}"
        for record in open_ones
    ]
    share = 100.0 * killed / counted if counted else 100.0
    lines.append(
        f"{len(records)} mutants: {killed} killed, {len(open_ones)} survived, {len(equivalent)} change nothing, "
        f"{len(records) - killed - len(survivors)} do not compile: {share:.1f} % noticed"
    )
    return "\n".join(lines)


def main() -> int:
    """Runs what is asked for."""
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--count", type=int, default=1000, help="mutants to sample; 1000")
    parser.add_argument("--seed", type=int, default=1, help="of the sample; 1")
    parser.add_argument("--jobs", type=int, default=2, help="mutants at a time, each in a tree of its own; 2")
    parser.add_argument("--hours", type=float, default=1000.0, help="begin no mutant after so many hours")
    parser.add_argument("--folder", action="append", help="of sources, instead of src, 3DLib and measure")
    parser.add_argument("--least", type=float, default=0.0, help="fail when a smaller share is noticed, percent")
    given = parser.parse_args()
    root = subprocess.run(
        ["git", "rev-parse", "--show-toplevel"], stdout=subprocess.PIPE, check=True, text=True
    ).stdout.strip()
    work = os.path.join(root, "build", "mutants")
    os.makedirs(work, exist_ok=True)
    excused = equivalents(os.path.join(os.path.dirname(os.path.abspath(__file__)), "equivalent.tsv"))
    state = State(os.path.join(work, "state.jsonl"))
    wanted = sampled(root, given.count, given.seed, given.folder or list(FOLDERS))
    digests = {mutant.file: _digest(os.path.join(root, mutant.file)) for mutant in wanted}
    untried = [mutant for mutant in wanted if (mutant.name(), digests[mutant.file]) not in state.known]
    _run(untried, digests, state, root, work, given.jobs, given.hours)
    records = [state.known[key] for m in wanted for key in [(m.name(), digests[m.file])] if key in state.known]
    print(summary(records, excused))
    killed = sum(record["result"] == KILLED for record in records)
    missed = sum(record["result"] == SURVIVED and record["name"] not in excused for record in records)
    return 1 if 100.0 * killed < given.least * (killed + missed) else 0


def _run(untried: List[Mutant], digests: Dict[str, str], state: State, root: str, work: str, jobs: int,
         hours: float) -> None:
    if not untried:
        return
    end = time.monotonic() + hours * 3600.0
    trees = []
    for number in range(min(jobs, len(untried))):
        trees.append(Tree(root, os.path.join(work, f"tree{number}")))
        trees[-1].prepare()
    waiting = iter(untried)
    lock = threading.Lock()

    def work_in(tree: Tree) -> None:
        while time.monotonic() < end:
            with lock:
                mutant = next(waiting, None)
            if mutant is None:
                return
            begun = time.monotonic()
            outcome = tree.tried(mutant)
            state.add(mutant, digests[mutant.file], outcome, time.monotonic() - begun)
            print(f"{outcome.result:9} {mutant.file}:{mutant.line}: {mutant.old} -> {mutant.new}  {outcome.by}",
                  flush=True)

    with ThreadPoolExecutor(len(trees)) as pool:
        list(pool.map(work_in, trees))


if __name__ == "__main__":
    sys.exit(main())
