"""ROS reads what zelm export writes; its stereo model sees and measures the same."""
import os

import camera_calibration_parsers
import numpy as np
from image_geometry import PinholeCameraModel, StereoCameraModel
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run


def infos(where):
    found = []
    for side in ("left", "right"):
        name, info = camera_calibration_parsers.readCalibration(os.path.join(where, side + ".yaml"))
        assert name == side and (info.width, info.height) == (1280, 960) and info.distortion_model == "plumb_bob"
        found.append(info)
    return found


def stereoModelMeasuresAsWeDo():
    for seed in range(5):
        with folder() as where:
            rig = Rig(seed)
            path = rig.write(os.path.join(where, "rig.zcal"))
            assert "frame" in exported(path, "ros", where)
            left, right = infos(where)
            pair = StereoCameraModel()
            pair.fromCameraInfo(left, right)
            ours = Measure(path)
            R, t = ours.pose("L")
            aligned = np.array(left.R).reshape(3, 3)
            for X in rig.points(50):
                Xa = aligned @ (R @ X + t) * 0.001  # metres
                (ul, vl), (ur, vr) = pair.project3dToPixel(Xa)
                assert abs(vl - vr) < 1e-9
                close(pair.projectPixelTo3d((ul, vl), ul - ur), Xa, 1e-9, "3-D")
                # Back to the raw images: the pixels that we say.
                for model, info, pixel, side in ((pair.left, left, (ul, vl), "L"), (pair.right, right, (ur, vr), "R")):
                    close(raw(info, pixel), ours.project(side, [X])[0], 1e-8, side)


def raw(info, pixel):
    """A rectified pixel in the raw image, by what the fields of camera_info are defined to mean."""
    P = np.array(info.P).reshape(3, 4)
    v = np.linalg.inv(P[:, :3]) @ [pixel[0], pixel[1], 1]
    x, y, z = np.array(info.R).reshape(3, 3).T @ v
    x, y = x / z, y / z
    k1, k2, p1, p2, k3 = info.D
    r2 = x * x + y * y
    s = 1 + r2 * (k1 + r2 * (k2 + r2 * k3))
    xd = x * s + 2 * p1 * x * y + p2 * (r2 + 2 * x * x)
    yd = y * s + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y
    K = np.array(info.K).reshape(3, 3)
    return (K @ [xd, yd, 1])[:2]


def comesBack():
    with folder() as where:
        rig = Rig(9, frame=False)
        path = rig.write(os.path.join(where, "rig.zcal"))
        assert exported(path, "ros", where) == ""
        back = round_trip(path, "ros", ["left.yaml", "right.yaml"], where, same=False)
        X = rig.points()
        for side in "LR":
            close(Measure(back).project(side, X), Measure(path).project(side, X), 1e-9, side)


run([stereoModelMeasuresAsWeDo, comesBack])
