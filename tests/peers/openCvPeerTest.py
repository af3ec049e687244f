"""OpenCV reads what zelm export writes, and computes the same with it."""
import json
import os

import cv2
import numpy as np
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run, zelm


def read(path):
    storage = cv2.FileStorage(path, cv2.FILE_STORAGE_READ)
    assert storage.isOpened()
    cameras = {}
    for side in ("left", "right"):
        node = storage.getNode(side)
        cameras[side] = {name: node.getNode(name).mat() for name in
                         ("camera_matrix", "distortion_coefficients", "plate_rotation", "plate_translation")}
        cameras[side]["size"] = (int(node.getNode("image_width").real()), int(node.getNode("image_height").real()))
    pair = {name: storage.getNode(name).mat() for name in ("R", "T", "E", "F", "R1", "R2", "P1", "P2", "Q")}
    return cameras, pair


def projectionsAreOurs():
    for seed in range(5):
        with folder() as where:
            rig = Rig(seed)
            path = rig.write(os.path.join(where, "rig.zcal"))
            exported(path, "opencv", where)
            cameras, pair = read(os.path.join(where, "stereo.yml"))
            X = rig.points()
            ours = Measure(path)
            seen = {}
            for side in ("left", "right"):
                c = cameras[side]
                assert c["size"] == (1280, 960)
                seen[side] = cv2.projectPoints(X, cv2.Rodrigues(c["plate_rotation"])[0], c["plate_translation"],
                                               c["camera_matrix"], c["distortion_coefficients"])[0][:, 0]
                close(seen[side], ours.project(side[0].upper(), X), what=side)
            # The same by R and T from the left camera's frame.
            c = cameras["right"]
            XL = X @ cameras["left"]["plate_rotation"].T + cameras["left"]["plate_translation"].T
            by = cv2.projectPoints(XL, cv2.Rodrigues(pair["R"])[0], pair["T"], c["camera_matrix"],
                                   c["distortion_coefficients"])[0][:, 0]
            close(by, seen["right"], what="R, T")
            # x_right' F x_left = 0 and x_right' E x_left = 0.
            undistorted = {s: cv2.undistortPointsIter(
                seen[s].reshape(-1, 1, 2), cameras[s]["camera_matrix"], cameras[s]["distortion_coefficients"], None,
                cameras[s]["camera_matrix"], (cv2.TERM_CRITERIA_COUNT | cv2.TERM_CRITERIA_EPS, 200, 1e-12))
                for s in seen}
            lines = cv2.computeCorrespondEpilines(undistorted["left"], 1, pair["F"])[:, 0]
            p = undistorted["right"][:, 0]
            close(np.sum(lines[:, :2] * p, 1) + lines[:, 2], 0, 1e-6, "F")  # the iteration ends there
            U, W, V = np.linalg.svd(pair["E"])
            close(W, [W[0], W[0], 0], 1e-9 * W[0], "E")
            close(W[0], np.linalg.norm(pair["T"]), 1e-9 * W[0], "E")


def rowsAreOurs():
    """P1, P2 and Q on rectified pixels give our points; R1 and P1 make our map."""
    with folder() as where:
        rig = Rig(11)
        path = rig.write(os.path.join(where, "rig.zcal"))
        exported(path, "opencv", where)
        cameras, pair = read(os.path.join(where, "stereo.yml"))
        X = rig.points()
        XL = X @ cameras["left"]["plate_rotation"].T + cameras["left"]["plate_translation"].T
        Xa = XL @ pair["R1"].T
        h = np.c_[Xa, np.ones(len(Xa))]
        l = h @ pair["P1"].T
        r = h @ pair["P2"].T
        l, r = l[:, :2] / l[:, 2:], r[:, :2] / r[:, 2:]
        close(l[:, 1], r[:, 1], 1e-9, "rows")
        four = np.c_[l, l[:, 0] - r[:, 0], np.ones(len(l))] @ pair["Q"].T
        close(four[:, :3] / four[:, 3:], Xa, 1e-7, "Q")
        # The right camera's own way to its row-aligned image.
        XR = XL @ pair["R"].T + pair["T"].T
        v = XR @ pair["R2"].T @ pair["P2"][:, :3].T
        close(v[:, :2] / v[:, 2:], r, 1e-9, "R2")
        left = np.full((960, 1280), 90, np.uint8)
        cv2.imwrite(os.path.join(where, "left.png"), left)
        cv2.imwrite(os.path.join(where, "right.png"), left)
        zelm("rectify", path, os.path.join(where, "left.png"), os.path.join(where, "right.png"), "--rows", "--maps",
             "-o", where, "--quiet")
        for side, number in (("left", "1"), ("right", "2")):
            ours = np.load(os.path.join(where, side + "_map.npy"))
            c = cameras[side]
            x, y = cv2.initUndistortRectifyMap(c["camera_matrix"], c["distortion_coefficients"], pair["R" + number],
                                               pair["P" + number], (1280, 960), cv2.CV_32FC1)
            seen = (ours[..., 0] >= 0)
            inside = (x >= 0) & (y >= 0) & (x <= 1279) & (y <= 959)
            assert np.count_nonzero(seen != inside) < 10, side  # where single precision decides
            both = seen & inside
            close(ours[both], np.stack([x, y], -1)[both], 2e-4, "map")  # single precision at 1280
            rows = json.load(open(os.path.join(where, "rows.json")))
            a, b, width, height = rows[side + "Seen"]
            assert seen[b:b + height, a:a + width].all() and width * height > 500000, side


def returnsBitByBit():
    for seed in (3, 4):
        with folder() as where:
            path = Rig(seed, skew=0.37).write(os.path.join(where, "rig.zcal"))
            lost = exported(path, "opencv", where)
            assert "skew" in lost and lost.count("\n") == 1, lost
            round_trip(path, "opencv", ["stereo.yml"], where)


def filesOfStereoCalib():
    """The two files of OpenCV's stereo sample, with a lens of five terms: as close as is told."""
    with folder() as where:
        rig = Rig(21, frame=False)
        R, T = rig.motion()
        D = np.array([[-0.11, 0.07, 0.0007, -0.0004, 0.02]])
        inner = cv2.FileStorage(os.path.join(where, "intrinsics.yml"), cv2.FILE_STORAGE_WRITE)
        for name, value in (("M1", rig.left.K), ("D1", D), ("M2", rig.right.K), ("D2", 0.5 * D)):
            inner.write(name, value)
        inner.release()
        outer = cv2.FileStorage(os.path.join(where, "extrinsics.yml"), cv2.FILE_STORAGE_WRITE)
        for name, value in (("R", R), ("T", T.reshape(3, 1))):
            outer.write(name, value)
        outer.release()
        files = [os.path.join(where, f) for f in ("intrinsics.yml", "extrinsics.yml")]
        back = os.path.join(where, "back.zcal")
        _, errors = zelm("import", *files, "--from", "opencv", "-o", back, status=1)
        assert "--size" in errors and not os.path.exists(back), errors
        _, errors = zelm("import", *files, "--from", "opencv", "-o", back, "--size", "1280,960", status=1)
        assert "tolerance" in errors and not os.path.exists(back), errors
        told = json.loads(zelm("import", *files, "--from", "opencv", "-o", back, "--size", "1280,960", "--json",
                               "--tolerance", "0.5")[0])
        ours = Measure(back)
        g = np.random.default_rng(1)
        for side, K, d, pose in (("left", rig.left.K, D, (np.eye(3), np.zeros(3))),
                                 ("right", rig.right.K, 0.5 * D, (R, T))):
            pixels = g.uniform([0, 0], [1279, 959], (300, 2))
            rays = cv2.undistortPointsIter(pixels.reshape(-1, 1, 2), K, d, None, None,
                                           (cv2.TERM_CRITERIA_COUNT | cv2.TERM_CRITERIA_EPS, 300, 1e-13))[:, 0]
            points = (np.c_[rays, np.ones(len(rays))] * 400 - pose[1]) @ pose[0]
            off = np.linalg.norm(ours.project(side[0].upper(), points) - pixels, axis=1)
            stated = told["lens"][side]
            assert 0.05 < stated["worst"] < 0.5 and off.max() < 1.02 * stated["worst"] + 1e-6, (off.max(), stated)
            assert abs(np.sqrt(np.mean(off**2)) / stated["rms"] - 1) < 0.2, (off, stated)


run([projectionsAreOurs, rowsAreOurs, returnsBitByBit, filesOfStereoCalib])
