"""SciPy reads the MAT-file that zelm export writes; MATLAB's conventions give our projections."""
import os

import numpy as np
import scipy.io
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run, zelm


def load(path):
    return scipy.io.loadmat(path, squeeze_me=True, struct_as_record=False)["stereoParams"]


def project(camera, X):
    """worldToImage: rows for vectors, the first pixel's centre at (1, 1), the lens before the camera matrix."""
    x, y = X[:, 0] / X[:, 2], X[:, 1] / X[:, 2]
    k1, k2 = camera.RadialDistortion
    p1, p2 = camera.TangentialDistortion
    r2 = x * x + y * y
    s = 1 + k1 * r2 + k2 * r2 * r2
    xd, yd = x * s + 2 * p1 * x * y + p2 * (r2 + 2 * x * x), y * s + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y
    return (np.stack([xd, yd, np.ones(len(x))], 1) @ camera.IntrinsicMatrix)[:, :2]


def projectionsAreOurs():
    for seed, skew in ((0, 0.0), (1, 0.4), (2, -3.0)):
        with folder() as where:
            rig = Rig(seed, skew=skew)
            path = rig.write(os.path.join(where, "rig.zcal"))
            assert exported(path, "matlab", where) == ""
            s = load(os.path.join(where, "stereo.mat"))
            ours = Measure(path)
            R, t = ours.pose("L")
            X = rig.points()
            X1 = X @ R.T + t
            X2 = X1 @ s.RotationOfCamera2 + s.TranslationOfCamera2
            close(project(s.CameraParameters1, X1) - 1, ours.project("L", X), what="camera 1")
            close(project(s.CameraParameters2, X2) - 1, ours.project("R", X), what="camera 2")
            assert tuple(s.CameraParameters1.ImageSize) == (960, 1280)
            # [p2 1] F [p1 1]' = 0 of undistorted points, counted from 1.
            h1 = np.c_[X1 / X1[:, 2:]] @ s.CameraParameters1.IntrinsicMatrix
            h2 = np.c_[X2 / X2[:, 2:]] @ s.CameraParameters2.IntrinsicMatrix
            lines = h1 @ s.FundamentalMatrix.T
            distance = np.sum(h2 * lines, 1) / np.hypot(lines[:, 0], lines[:, 1])
            close(distance, 0, 1e-8, "F")


def returnsBitByBit():
    with folder() as where:
        path = Rig(5, skew=0.25).write(os.path.join(where, "rig.zcal"))
        exported(path, "matlab", where)
        round_trip(path, "matlab", ["stereo.mat"], where)


def compressedFiles():
    """As MATLAB saves: compressed, of the new names, without our fields."""
    with folder() as where:
        rig = Rig(6, frame=False)
        R, t = rig.motion()
        camera = lambda c: {"K": c.K + [[0, 0, 1], [0, 0, 1], [0, 0, 0]], "RadialDistortion": [c.k1, c.k2],
                            "TangentialDistortion": [0, 0], "ImageSize": [960, 1280],
                            "WorldPoints": np.full((4, 2), np.nan)}
        s = {"CameraParameters1": camera(rig.left), "CameraParameters2": camera(rig.right), "RotationOfCamera2": R.T,
             "TranslationOfCamera2": t, "WorldUnits": "mm"}
        file = os.path.join(where, "saved.mat")
        scipy.io.savemat(file, {"stereoParams": s, "other": np.arange(6).reshape(2, 3)}, do_compression=True)
        back = os.path.join(where, "back.zcal")
        zelm("import", file, "--from", "matlab", "-o", back, "--quiet")
        path = rig.write(os.path.join(where, "rig.zcal"))
        X = rig.points()
        for side in "LR":
            close(Measure(back).project(side, X), Measure(path).project(side, X), 1e-8, side)
        cut = open(file, "rb").read()
        for length in (0, 100, 128, 140, len(cut) // 2, len(cut) - 9):
            with open(file, "wb") as f:
                f.write(cut[:length])
            zelm("import", file, "--from", "matlab", "-o", os.path.join(where, "no.zcal"), status=1)
            assert not os.path.exists(os.path.join(where, "no.zcal"))


run([projectionsAreOurs, returnsBitByBit, compressedFiles])
