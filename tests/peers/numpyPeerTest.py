"""NumPy loads what zelm export writes, bit by bit."""
import os

import numpy as np
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run, zelm


def holdsEveryBit():
    with folder() as where:
        rig = Rig(1, skew=0.8)
        path = rig.write(os.path.join(where, "rig.zcal"))
        assert exported(path, "numpy", where) == ""
        a = np.load(os.path.join(where, "stereo.npz"))
        for side, c in (("left", rig.left), ("right", rig.right)):
            assert np.array_equal(a["K_" + side], c.K) and np.array_equal(a["R_" + side], c.R)
            assert np.array_equal(a["t_" + side].ravel(), c.t) and a["size_" + side].tolist() == [1280, 960]
            assert a["D_" + side].tolist() == [c.k1, c.k2, 0, 0, 0]
        round_trip(path, "numpy", ["stereo.npz"], where)


def compressedFiles():
    """As numpy.savez_compressed writes them, columns first and single precision among them."""
    with folder() as where:
        rig = Rig(2, frame=False)
        R, t = rig.motion()
        file = os.path.join(where, "mine.npz")
        np.savez_compressed(file, K1=rig.left.K, D1=[rig.left.k1, rig.left.k2, 0, 0], K2=np.asfortranarray(rig.right.K),
                            D2=[[rig.right.k1, rig.right.k2, 0, 0, 0]], R=R, T=t, imageSize=np.array([1280, 960]),
                            names=np.array(["a", "b"]), images=np.zeros((2, 3, 4)))
        back = os.path.join(where, "back.zcal")
        zelm("import", file, "--from", "numpy", "-o", back, "--quiet")
        path = rig.write(os.path.join(where, "rig.zcal"))
        X = rig.points()
        for side in "LR":
            close(Measure(back).project(side, X), Measure(path).project(side, X), 1e-9, side)
        whole = open(file, "rb").read()
        for length in (0, 30, len(whole) // 2, len(whole) - 5):
            with open(file, "wb") as f:
                f.write(whole[:length])
            _, errors = zelm("import", file, "--from", "numpy", "-o", os.path.join(where, "no.zcal"), status=1)
            assert errors.count("\n") == 1, errors


run([holdsEveryBit, compressedFiles])
