"""Handles: closed, forgotten, shared by threads; what the library allocates is freed."""

import copy
import gc
import os
import pickle
import threading
import time

import numpy as np
import pytest
import syntheticPair as truth

from zelm import core


def load():
    return core.zelm2ViewLoadCalibData(truth.block(*truth.pair()))


def testAClosedHandleIsRefused():
    pair = load()
    assert not pair.closed and repr(pair) == "<Zelm2ViewCalib>"
    core.zelm2ViewCalibClose(pair)
    core.zelm2ViewCalibClose(pair)
    core.zelm2ViewCalibClose(None)
    assert pair.closed and repr(pair) == "<Zelm2ViewCalib, closed>"
    for call in (core.zelm2ViewGetCalibDataSize, core.zelm2ViewSaveCalibData, core.zelm2ViewCalibCameraParam):
        with pytest.raises(ValueError, match="closed"):
            call(pair)
    with pytest.raises(ValueError, match="closed"):
        with pair:
            pass


def testHandlesCannotBeCopied():
    with load() as pair:
        for make in (copy.copy, copy.deepcopy, pickle.dumps):
            with pytest.raises(TypeError, match="Zelm2ViewCalib"):
                make(pair)


def testAFailedCallLetsGoOfTheHandle():
    with load() as pair:
        with pytest.raises(core.ZelmParamError):
            core.zelm2ViewGetCamExtParam(pair, "L", 99)
        with pytest.raises(core.ZelmParamError, match="'L' or 'R'"):
            core.zelm2ViewGetCamIntParam(pair, "X")
        with pytest.raises(core.ZelmParamError, match="no camera"):
            core.zelm2ViewUnDistortImage(pair, 7, np.zeros((480, 640), np.uint8))
        with pytest.raises(core.ZelmParamError):
            core.zelm2ViewCalibCameraParam(pair)  # a loaded object
        with pytest.raises(core.ZelmParamError):
            core.zelm2ViewGetPattern(pair, "L", 0)
        assert pair._readers == 0 and not pair._writing


@pytest.mark.parametrize("at, value", [(0, 4), (0, 0), (0, -1), (4, 3), (8, 0), (20, -5)])
def testDamagedBlocksAreRefused(at, value):
    block = bytearray(truth.block(*truth.pair()))
    block[at : at + 4] = value.to_bytes(4, "little", signed=True)
    with pytest.raises(core.ZelmParamError, match="zelm2ViewLoadCalibData"):
        core.zelm2ViewLoadCalibData(block)


def testBlocksOfOtherSizesAreRefused():
    block = truth.block(*truth.pair())
    for wrong in (b"", block[:-1], block + b"x", block[:1000]):
        with pytest.raises(core.ZelmParamError):
            core.zelm2ViewLoadCalibData(wrong)
    with pytest.raises(TypeError):
        core.zelm2ViewLoadCalibData("block")
    assert core.zelm2ViewLoadCalibData(np.frombuffer(block, np.uint8)).views == 3


def testMemoryInUseIsNotFreed():
    vector = core.zelmMatMallocVector(4)
    array = vector.array
    part = array[1:]
    del array
    with pytest.raises(BufferError):
        core.zelmMatFreeVector(vector)
    part[:] = 5
    del part
    core.zelmMatFreeVector(vector)
    with pytest.raises(ValueError, match="closed"):
        vector.array
    forgotten = core.zelmMatMallocMatrix(2, 2).array
    gc.collect()
    forgotten[:] = 1  # the array keeps its owner
    assert forgotten.sum() == 4
    for wrong in (0, -3):
        with pytest.raises(core.ZelmParamError):
            core.zelmMatMallocVector(wrong)
        with pytest.raises(core.ZelmParamError):
            core.zelmMatMallocMatrix(wrong, 2)
    with pytest.raises(TypeError, match="ZelmMatrix"):
        core.zelmMatFreeMatrix(vector)


def residentBytes():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1]) * os.sysconf("SC_PAGE_SIZE")


@pytest.mark.skipif(not os.path.exists("/proc/self/statm"), reason="needs /proc")
def testManyCallsLeakNothing():
    block = truth.block(*truth.pair(), views=40)
    image = np.zeros((64, 64), np.uint8)
    image[::4, ::4] = 255  # 225 blobs of 64 bytes, in steps of 1000
    points = np.random.default_rng(1).normal(size=(200, 2))

    def round_():
        core.zelm2ViewLoadCalibData(block)
        core.zelmBinBlob(image, 128)
        core.zelmMatMallocVector(1000)
        core.zelmFitCircle(points)
        try:
            core.zelmFitCircle(points[:1])
        except core.ZelmError:
            pass

    for _ in range(200):
        round_()
    before = residentBytes()
    for _ in range(2000):
        round_()
    # A leak of one blob list, block or vector a round would be 128, 20 or 16 MB.
    assert residentBytes() - before < 4e6


def testOtherThreadsRunDuringALongCall():
    """The library is called without the interpreter's lock."""
    signal = np.random.default_rng(2).normal(size=12000)
    core.zelmMathAutoCorrelation(signal, 1)  # what a first call makes is Python's work, in which threads take turns
    ticks, stop = [], threading.Event()

    def tick():
        while not stop.is_set():
            ticks.append(time.perf_counter())
            time.sleep(0.001)

    thread = threading.Thread(target=tick)
    thread.start()
    begin = time.perf_counter()
    core.zelmMathAutoCorrelation(signal, len(signal))
    end = time.perf_counter()
    stop.set()
    thread.join()
    # Less a tenth at both ends, where the call is prepared and where it has returned.
    margin = (end - begin) / 10
    assert sum(begin + margin < t < end - margin for t in ticks) >= 3, (end - begin, len(ticks))


def testReadersShareAndWritersAreAlone():
    with load() as pair:
        pair._enter()
        pair._enter()
        entered = threading.Event()
        writer = threading.Thread(target=lambda: (pair._enterAlone(), entered.set()))
        writer.start()
        pair._leave()
        assert not entered.wait(0.05)
        pair._leave()
        assert entered.wait(10)
        writer.join()
        reader = threading.Thread(target=lambda: (pair._enter(), pair._leave()))
        reader.start()
        reader.join(0.05)
        assert reader.is_alive()
        pair._leave()
        reader.join(10)
        assert not reader.is_alive()


def testClosingDuringACallWaitsForItsEnd():
    pair = load()
    pair._enter()
    pair.close()
    assert pair.closed and pair._finalizer.alive
    with pytest.raises(ValueError, match="closed"):
        core.zelm2ViewGetCalibDataSize(pair)
    pair._leave()
    assert not pair._finalizer.alive


def testManyThreadsUseAndCloseOnePair():
    for _ in range(20):
        pair = load()
        failures = []

        def use():
            try:
                while True:
                    core.zelm2ViewChange3Dto2D(pair, "L", (1, 2, 3))
            except ValueError:
                pass
            except BaseException as error:  # noqa: B902
                failures.append(error)

        threads = [threading.Thread(target=use) for _ in range(4)]
        for thread in threads:
            thread.start()
        time.sleep(0.005)
        pair.close()
        for thread in threads:
            thread.join(10)
        assert not failures and not pair._finalizer.alive
