"""Finding, checking, running and stopping the program."""

import os
import pickle
import signal
import subprocess
import threading
import time
import warnings
from pathlib import Path

import numpy as np
import pytest
import zelm
from zelm import _program, _work

PROGRAM = _program.program()


def script(path, text):
    path.write_text(f"#!/bin/sh\n{text}\n")
    path.chmod(0o755)
    return path


def pretend(tmp_path, monkeypatch, text):
    """A program of this version that does something else."""
    path = script(tmp_path / "zelm", f'[ "$1" = --version ] && echo "zelm {zelm.__version__}" && exit\n{text}')
    monkeypatch.setenv("ZELM_PROGRAM", str(path))


def testAProgramThatIsNowhereIsRefusedByPlaces(monkeypatch, tmp_path):
    monkeypatch.delenv("ZELM_PROGRAM", raising=False)
    monkeypatch.setenv("ZELM_LIBRARY_PATH", str(tmp_path / "a"))
    monkeypatch.setenv("PATH", str(tmp_path))
    with pytest.raises(zelm.LibraryError, match="the program zelm was not found") as caught:
        _program.program()
    for place in ("_libs/zelm", f"{tmp_path}/a/zelm", f"{tmp_path}/a/tools/zelm/zelm", "PATH", "ZELM_PROGRAM"):
        assert place in str(caught.value)


def testThePlacesComeInTheirOrder(monkeypatch, tmp_path):
    version = f'echo "zelm {zelm.__version__}"'
    build = tmp_path / "build" / "measure"
    (build.parent / "tools" / "zelm").mkdir(parents=True)
    onPath = script(tmp_path / "zelm", version)
    ofBuild = script(build.parent / "tools" / "zelm" / "zelm", version)
    named = script(tmp_path / "mine", version)
    monkeypatch.delenv("ZELM_PROGRAM", raising=False)
    monkeypatch.delenv("ZELM_LIBRARY_PATH", raising=False)
    monkeypatch.setenv("PATH", str(tmp_path))
    assert _program.program() == str(onPath)
    monkeypatch.setenv("ZELM_LIBRARY_PATH", f"{build}:{build.parent}")
    assert _program.program() == str(ofBuild)
    monkeypatch.setenv("ZELM_PROGRAM", str(named))
    assert _program.program() == str(named)
    monkeypatch.setenv("ZELM_PROGRAM", str(tmp_path / "nothing"))
    with pytest.raises(zelm.LibraryError, match="nothing, which ZELM_PROGRAM names, is no program"):
        _program.program()


def testAProgramOfAnotherVersionIsRefused(monkeypatch, tmp_path):
    monkeypatch.setenv("ZELM_PROGRAM", str(script(tmp_path / "zelm", 'echo "zelm 0.9.0"')))
    with pytest.raises(zelm.LibraryError, match=f"is zelm 0.9.0, this package is zelm {zelm.__version__}"):
        _program.program()
    monkeypatch.setenv("ZELM_PROGRAM", str(script(tmp_path / "broken", "echo lacks libwhat.so >&2; exit 127")))
    with pytest.raises(zelm.LibraryError, match="does not start: lacks libwhat.so"):
        _program.program()


def testAFailureHasTheWordsOfTheTool(tmp_path):
    words = [PROGRAM, "compare", "missing.zcal", "other.zcal"]
    byHand = subprocess.run(words, cwd=tmp_path, capture_output=True, text=True).stderr
    with pytest.raises(zelm.ToolError) as caught:
        zelm.compare("missing.zcal", "other.zcal")
    error = caught.value
    assert f"zelm: {error}\n" == byHand
    assert (error.status, error.cause, error.images, error.function) == (1, "data", [], "zelm compare")
    copy = pickle.loads(pickle.dumps(error))
    assert (str(copy), copy.status, copy.cause, copy.result) == (str(error), 1, "data", error.result)
    assert isinstance(error, zelm.ZelmError)


def testUsageIsToldFromData():
    with pytest.raises(zelm.ToolError) as caught:
        zelm.plan({"volume": {}}, {}, tolerance=-1)
    assert (caught.value.status, caught.value.cause) == (2, "usage")


def testAProgramThatDiesIsNoResult(monkeypatch, tmp_path, noFolderLeft):
    pretend(tmp_path, monkeypatch, "kill -KILL $$")
    with pytest.raises(zelm.ToolError, match="ended by signal SIGKILL; there is no result") as caught:
        zelm.compare("a", "b")
    assert caught.value.status == -signal.SIGKILL
    pretend(tmp_path, monkeypatch, "echo half a resu; echo 'zelm: no room' >&2; exit 3")
    with pytest.raises(zelm.ToolError, match="exit code 3, without a result: no room"):
        zelm.compare("a", "b")


def testAnInterruptStopsTheProgramAndLeavesNothing(monkeypatch, tmp_path, noFolderLeft):
    pretend(tmp_path, monkeypatch, f"echo $$ > {tmp_path}/pid; exec sleep 60")
    start = time.time()
    # A shell that starts the tests in the background has them ignore interrupts.
    before = signal.signal(signal.SIGINT, signal.default_int_handler)

    def interrupt():
        while not (tmp_path / "pid").exists() and time.time() < start + 10:
            time.sleep(0.02)
        time.sleep(0.1)
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=interrupt)
    thread.start()
    with pytest.raises(KeyboardInterrupt):
        zelm.compare("a", "b")
    thread.join()
    signal.signal(signal.SIGINT, before)
    assert time.time() < start + 20
    with pytest.raises(ProcessLookupError):
        os.kill(int((tmp_path / "pid").read_text()), 0)


def testWarningsNameTheCallersLine(monkeypatch, tmp_path):
    pretend(tmp_path, monkeypatch, """echo '{"status": "done", "warnings": ["first", "second"], "units": "mm"}'""")
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        assert dict(zelm.compare("a", "b")) == {"units": "mm"}
    assert [str(warning.message) for warning in caught] == ["first", "second"]
    assert {warning.category for warning in caught} == {zelm.MeasurementWarning}
    assert {warning.filename for warning in caught} == {__file__}


def testPrivateFoldersAreNotNamed(monkeypatch, tmp_path):
    pretend(tmp_path, monkeypatch, """echo "{\\"status\\": \\"failed\\", \\"message\\": \\"$3: bad\\"}"; exit 1""")
    with pytest.raises(zelm.ToolError) as caught:
        zelm.fit_features([[1, 2, 3]])
    assert str(caught.value) == "--features: bad"
    with _work.Work() as work, pytest.raises(zelm.ToolError) as caught:
        work.run("info", work.path("left_0003.pgm"), work.path("left_0003.pgm"))
    assert str(caught.value) == "left_0003.pgm: bad"


def hasTerminals():
    try:
        for end in os.openpty():
            os.close(end)
    except OSError:
        return False
    return True


@pytest.mark.skipif(not hasTerminals(), reason="the system gives no pseudo-terminals")
def testProgressGoesToStderr(monkeypatch, tmp_path, capsys):
    drawn = r"""printf '\rreading [##..] 2/4' >&2; printf '\r\033[K' >&2; echo 'zelm: warning: hush' >&2"""
    pretend(tmp_path, monkeypatch, drawn + """; [ -t 2 ]; echo "{\\"status\\": \\"done\\", \\"tty\\": $?}" """)
    plate = {"d": 1}
    assert zelm.plan({}, plate, progress=True) == {"tty": 0}
    shown = capsys.readouterr().err
    assert "reading [##..] 2/4" in shown and "hush" not in shown
    assert zelm.plan({}, plate) == {"tty": 1}
    assert capsys.readouterr().err == ""


def testWithoutATerminalNoProgressIsDrawn(monkeypatch, tmp_path, capsys):
    def refuse():
        raise OSError("no pseudo-terminals")

    monkeypatch.setattr(os, "openpty", refuse)
    pretend(tmp_path, monkeypatch, """echo '{"status": "done", "units": "mm"}'""")
    assert zelm.plan({}, {"d": 1}, progress=True) == {"units": "mm"}
    assert capsys.readouterr().err == ""


def testArraysBecomeTheFilesThatTheirNamesTell(noFolderLeft):
    gray = np.arange(12, dtype=np.uint8).reshape(3, 4)
    deep = gray.astype(np.uint16) * 300
    colour = np.stack([gray, gray + 50, gray + 100], axis=-1)
    with _work.Work() as work:
        names = work.images([gray, "b.png", deep[:, ::2], colour], "left")
        assert [Path(name).name for name in names] == ["left_0000.pgm", "b.png", "left_0002.pgm", "left_0003.ppm"]
        assert Path(names[0]).read_bytes() == b"P5\n4 3\n255\n" + gray.tobytes()
        assert Path(names[2]).read_bytes() == b"P5\n2 3\n65535\n" + deep[:, ::2].astype(">u2").tobytes()
        assert Path(names[3]).read_bytes() == b"P6\n4 3\n255\n" + colour.tobytes()
        assert work.images(np.zeros((2, 3, 5), np.uint8), "right") == [work.path(f"right_000{i}.pgm") for i in (0, 1)]
        assert work.images("-odd*.png", "left") == ["./-odd*.png"]
        low = Path(work.image(np.full((2, 2), 4095, np.uint16), "low", maxLevel=4095)).read_bytes()
        assert low == b"P5\n2 2\n4095\n" + b"\x0f\xff" * 4


@pytest.mark.parametrize(
    "image, words",
    [
        (np.zeros((3, 4)), "not of float64"),
        (np.zeros((3, 4), bool), "not of bool"),
        (np.zeros((3, 4, 2), np.uint8), r"not \(3, 4, 2\)"),
        (np.zeros((0, 4), np.uint8), r"not \(0, 4\)"),
        (np.ma.masked_equal(np.zeros((3, 4), np.uint8), 0), "mask"),
    ],
)
def testWhatIsNoImageIsRefusedByName(image, words):
    with _work.Work() as work, pytest.raises((TypeError, ValueError), match=f"left_0001: .*{words}"):
        work.images([np.zeros((3, 4), np.uint8), image], "left")


def testLevelsAboveTheLargestAreRefused():
    with _work.Work() as work:
        with pytest.raises(ValueError, match="a level of 4096 is above max_level 4095"):
            work.image(np.full((2, 2), 4096, np.uint16), "a", maxLevel=4095)
        with pytest.raises(ValueError, match="max_level 4095 is no largest level of uint8"):
            work.image(np.zeros((2, 2), np.uint8), "a", maxLevel=4095)
        with pytest.raises(ValueError, match="is one image: give a list"):
            work.images(np.zeros((4, 5, 3), np.uint8), "left")
        with pytest.raises(ValueError, match="left: no image"):
            work.images([], "left")
