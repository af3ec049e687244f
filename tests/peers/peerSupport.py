"""What the tests with other programs share: the tool, the libraries, and rigs of exact parameters."""
import ctypes
import os
import struct
import subprocess
import sys
import tempfile

import numpy as np

ZELM = os.environ["ZELM_PROGRAM"]
LIBRARY = os.environ["ZELM_MEASURE_LIBRARY"]
SAMPLE = os.environ["ZELM_SAMPLE"]
PIXELS = 1e-9  # two programs' projections may differ by rounding alone: coordinates of thousands, times 2^-52


def zelm(*arguments, status=0):
    """Runs the tool; its stdout and stderr."""
    run = subprocess.run([ZELM, *map(str, arguments)], capture_output=True, text=True)
    assert run.returncode == status, f"zelm {arguments}: {run.returncode}: {run.stderr}"
    return run.stdout, run.stderr


def folder():
    return tempfile.TemporaryDirectory(prefix="zelmPeers")


def close(a, b, tolerance=PIXELS, what=""):
    worst = float(np.max(np.abs(np.asarray(a) - np.asarray(b))))
    assert worst <= tolerance, f"{what}: off by {worst}"
    return worst


def rotation(r):
    """Rodrigues (1840)."""
    r = np.asarray(r, float)
    angle = np.linalg.norm(r)
    if angle == 0:
        return np.eye(3)
    k = r / angle
    K = np.array([[0, -k[2], k[1]], [k[2], 0, -k[0]], [-k[1], k[0], 0]])
    return np.eye(3) + np.sin(angle) * K + (1 - np.cos(angle)) * K @ K


class Camera:
    def __init__(self, size, fx, fy, skew, cx, cy, k1, k2, r, t):
        self.size, self.fx, self.fy, self.skew, self.cx, self.cy, self.k1, self.k2 = size, fx, fy, skew, cx, cy, k1, k2
        self.r, self.t, self.R = np.asarray(r, float), np.asarray(t, float), rotation(r)

    @property
    def K(self):
        return np.array([[self.fx, self.skew, self.cx], [0, self.fy, self.cy], [0, 0, 1.0]])


class Rig:
    """A pair of cameras with one pose each, as bytes of docs/formats.md."""

    def __init__(self, seed, skew=0.0, frame=True):
        g = np.random.default_rng(seed)
        u = lambda a, b: float(g.uniform(a, b))
        size = (1280, 960)
        camera = lambda r, t: Camera(size, u(1500, 1900), u(1500, 1900), skew, 640 + u(-25, 25), 480 + u(-25, 25),
                                     u(-0.2, 0.1), u(-0.05, 0.1), r, t)
        r = [u(-.4, .4), u(-.4, .4), u(-.6, .6)] if frame else [0, 0, 0]
        t = [u(-30, 30), u(-30, 30), u(300, 400)] if frame else [0, 0, 0]
        self.left = camera(r, t)
        turn = rotation([u(-.03, .03), u(.2, .3), u(-.03, .03)])
        shift = np.array([u(-130, -110), u(-5, 5), u(5, 25)])
        self.right = camera(vector(turn @ self.left.R), turn @ self.left.t + shift)
        self.random = g

    def motion(self):
        R = self.right.R @ self.left.R.T
        return R, self.right.t - R @ self.left.t

    def block(self):
        R, t = self.motion()
        tx = np.array([[0, -t[2], t[1]], [t[2], 0, -t[0]], [-t[1], t[0], 0]])
        F = (np.linalg.inv(self.right.K).T @ tx @ R @ np.linalg.inv(self.left.K)).T
        F /= np.abs(F).max()
        data = struct.pack("<i6i", 1, 0, *self.left.size, 0, *self.right.size)
        for c in (self.left, self.right):
            M = c.K @ c.R
            data += M.astype("<f8").tobytes() + np.linalg.inv(M).astype("<f8").tobytes()
        data += F.astype("<f8").tobytes() + F.T.astype("<f8").tobytes()
        for c in (self.left, self.right):
            data += c.K.astype("<f8").tobytes()
            data += struct.pack("<13d", c.fx, c.fy, c.skew, c.cx, c.cy, 0, c.k1, c.k2, *[0] * 5)
        for c in (self.left, self.right):
            data += c.R.astype("<f8").tobytes() + c.t.astype("<f8").tobytes() + c.r.astype("<f8").tobytes()
        return data

    def write(self, path):
        with open(path, "wb") as file:
            file.write(self.block())
        return path

    def points(self, count=200):
        """Before both cameras, all over the left image and somewhat beyond, in the frame of the poses."""
        c = self.left
        x = self.random.uniform(-50, 1330, count)
        y = self.random.uniform(-50, 1010, count)
        depth = self.random.uniform(200, 700, count)
        X = np.stack([(x - c.cx) / c.fx * depth, (y - c.cy) / c.fy * depth, depth], 1)
        return (X - c.t) @ c.R


def vector(R):
    """Rotation vector of a rotation by less than half a turn."""
    w = np.array([R[2, 1] - R[1, 2], R[0, 2] - R[2, 0], R[1, 0] - R[0, 1]])
    sine = np.linalg.norm(w) / 2
    angle = np.arctan2(sine, (np.trace(R) - 1) / 2)
    return w / (2 * sine) * angle if sine > 0 else np.zeros(3)


class Measure:
    """The measuring library's own view of a calibration."""

    def __init__(self, path):
        self.lib = ctypes.CDLL(LIBRARY)
        self.lib.zelmMeasureRigError.restype = ctypes.c_char_p
        self.lib.zelmMeasureRigCalib.restype = ctypes.c_void_p
        with open(path, "rb") as file:
            block = file.read()
        self.handle = ctypes.c_void_p()
        status = self.lib.zelmMeasureRigOpen(block, ctypes.c_int64(len(block)), ctypes.byref(self.handle))
        assert status == 0, self.lib.zelmMeasureRigError(self.handle)
        self.calib = ctypes.c_void_p(self.lib.zelmMeasureRigCalib(self.handle))

    def project(self, side, points):
        pixels = np.empty((len(points), 2))
        for X, p in zip(points, pixels):
            X3 = (ctypes.c_double * 3)(*X)
            found = (ctypes.c_double * 2)()
            assert self.lib.zelm2ViewChange3Dto2D(self.calib, ctypes.c_char(side.encode()), X3, found) >= 0
            p[:] = found
        return pixels

    def camera(self, side):
        """All that is told of a camera, as bytes."""
        record = (ctypes.c_double * 24)()
        ctypes.cast(record, ctypes.POINTER(ctypes.c_int32))[0] = ctypes.sizeof(record)
        assert self.lib.zelmMeasureRigCamera(self.handle, ord(side), record) == 0
        return bytes(record)

    def pose(self, side):
        """R, t of view 0."""
        record = (ctypes.c_double * 15)()
        assert self.lib.zelmMeasureRigPose(self.handle, ord(side), 0, record) == 0
        return np.array(record[:9]).reshape(3, 3), np.array(record[9:12])


def exported(rig, program, to, *options):
    """Files of a program in a folder, and the one line of what they do not hold."""
    # Rigs made here have no summary that tells their unit.
    _, errors = zelm("export", rig, "--to", program, "-o", to, "--unit", "mm", "--quiet", *options)
    assert errors.count("\n") <= 1, errors
    return errors


def round_trip(rig, program, files, where, same=True):
    """Imports what was exported, exports it again, and so once more: the same bytes, and the same parameters as first.

    The rig's own bytes are a test's, whose fundamental matrix is not the library's to the last bit.
    """
    back = os.path.join(where, "back.zcal")
    folders = [where, os.path.join(where, "again"), os.path.join(where, "oncemore")]
    for source, target in zip(folders, folders[1:]):
        zelm("import", *[os.path.join(source, f) for f in files], "--from", program, "-o", back, "--quiet")
        exported(back, program, target)
    first, second = Measure(rig), Measure(back)
    for side in "LR":
        assert first.camera(side) == second.camera(side), f"{program}: the {side} camera changes"
        if same:
            assert all((a == b).all() for a, b in zip(first.pose(side), second.pose(side))) or program == "mrcal", side
    if same:
        for f in files:
            with open(os.path.join(folders[1], f), "rb") as a, open(os.path.join(folders[2], f), "rb") as b:
                assert a.read() == b.read(), f"{f} changes when it is imported and exported again"
    return back


def run(tests):
    for test in tests:
        test()
        print("ok", test.__name__)
    sys.exit(0)
