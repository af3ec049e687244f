"""Records: made, read, changed, compared; what does not fit is refused."""

import ctypes

import numpy as np
import pytest

from zelm import core, records
from zelm._record import Record, dtypeOf


def testFieldsByOrderAndByName():
    circle = core.Circle2d(1, 2, r=3)
    assert tuple(circle) == (1, 2, 3) and len(circle) == 3 and circle[2] == 3
    assert circle == core.Circle2d(1, 2, 3) and circle != core.Circle2d(1, 2, 4) and circle != (1, 2, 3)
    assert repr(circle) == "Circle2d(x=1.0, y=2.0, r=3.0)"
    assert circle.toArray().tolist() == [1, 2, 3]


@pytest.mark.parametrize(
    "make, error",
    [
        (lambda: core.Circle2d(1, 2, 3, 4), TypeError),
        (lambda: core.Circle2d(1, x=1), TypeError),
        (lambda: core.Circle2d(radius=1), AttributeError),
        (lambda: core.Circle2d("1"), TypeError),
        (lambda: core.Circle2d(1j), TypeError),
        (lambda: core.ZelmRect(1.5), TypeError),
        (lambda: core.ZelmCameraIntrinsics(A=[1, 2, 3]), ValueError),
        (lambda: core.ZelmCameraIntrinsics(A="123456789"), TypeError),
        (lambda: core.ZelmImage(pixels=[1]), TypeError),
        (lambda: core.ZelmImage(pixels=np.zeros(4)), TypeError),
        (lambda: core.ZelmImage(pixels=np.zeros((4, 4), np.uint8)[:, ::2]), ValueError),
        (lambda: hash(core.Point2d()), TypeError),
    ],
)
def testWhatDoesNotFitIsRefused(make, error):
    with pytest.raises(error):
        make()


def testArraysOfRecordsAreViews():
    camera = core.ZelmCameraIntrinsics(A=np.eye(3), k1=0.5)
    camera.A[2] = 7
    assert camera.A.reshape(3, 3)[0, 2] == 7 and camera.k1 == 0.5
    view = camera.A
    del camera
    assert view[2] == 7  # the view keeps the record


def testPointersKeepTheirArrays():
    image = core.ZelmImage(pixels=np.full((2, 3), 9, np.uint8), width=3, height=2)
    assert ctypes.string_at(image._pixels, 6) == b"\t" * 6 and image.pixels.shape == (2, 3)
    image.pixels = None
    assert image._pixels is None


def testRecordsThatBeginWithTheirSizeKnowIt():
    options = records.ZelmMeasureMatchOptions()
    assert options.size == ctypes.sizeof(options)
    pose = records.ZelmMeasureRelativePose(baseline=3.0)
    assert pose.size == 8 + 14 * 8 and pose.R.shape == (9,)


def testArraysOfRecordsHaveTheSameBytes():
    for name in records.LAYOUT:
        cls = getattr(records, name)
        assert issubclass(cls, Record)
        assert dtypeOf(cls).itemsize == ctypes.sizeof(cls)
    blobs = np.zeros(2, dtypeOf(core.ZelmBlob))
    blobs["cx"] = 3, 4
    assert core.ZelmBlob.from_buffer_copy(blobs[1].tobytes()).cx == 4
