"""Row-aligned images of zelm rectify --rows: OpenCV's block matcher and reprojectImageTo3D take them as they are."""
import json
import os

import cv2
import numpy as np
from peerSupport import SAMPLE, folder, run, zelm

RIG = os.environ["ZELM_DESK_RIG"]
MAX_ROW_RMS = 0.05  # pixels; the dots of good views are read to 0.02 in each image, and once more resampled
MAX_MEDIAN = 0.15   # pixels of disparity: the matcher's steps are 1/16, its windows flat
MIN_NEAR = 0.85     # of the points found that are within a pixel of disparity of the truth: outlines are none


def dots(path):
    with open(path) as file:
        next(file)
        rows = [line.split(",") for line in file]
    return {(r[0], r[1]): (float(r[4]), float(r[5])) for r in rows}


def dotsLieInRows():
    for view in ("00", "05", "09"):
        with folder() as where:
            images = [os.path.join(SAMPLE, f"{side}_{view}.png") for side in ("left", "right")]
            zelm("rectify", RIG, *images, "--rows", "-o", where, "--quiet")
            found = []
            for side in ("left", "right"):
                name = f"{side}_{view}_rows"
                zelm("detect", os.path.join(where, name + ".png"), "--plate", os.path.join(SAMPLE, "truth.json"), "-o",
                     where, "--min-dots", 60, "--quiet")
                found.append(dots(os.path.join(where, name + "_dots.csv")))
            both = sorted(set(found[0]) & set(found[1]))
            assert len(both) >= 60, (view, len(both))
            error = np.array([found[0][k][1] - found[1][k][1] for k in both])
            rms = float(np.sqrt(np.mean(error**2)))
            assert rms < MAX_ROW_RMS, (view, rms)
            print("view", view, "row error RMS", round(rms, 4), "of", len(both))


def blockMatcherSeesTheScene():
    with folder() as where:
        images = [os.path.join(SAMPLE, f"scene_{side}.png") for side in ("left", "right")]
        zelm("rectify", RIG, *images, "--rows", "--maps", "--depths", "330,640", "-o", where, "--quiet")
        rows = json.load(open(os.path.join(where, "rows.json")))
        storage = cv2.FileStorage(os.path.join(where, "rows.yml"), cv2.FILE_STORAGE_READ)
        Q = storage.getNode("Q").mat()
        least, count = int(storage.getNode("min_disparity").real()), int(storage.getNode("num_disparities").real())
        assert (least, count) == (rows["minDisparity"], rows["numDisparities"]) and count % 16 == 0
        assert np.array_equal(Q, np.array(rows["Q"]))
        left, right = (cv2.imread(os.path.join(where, rows[side]), cv2.IMREAD_GRAYSCALE) for side in ("left", "right"))
        # Beyond the image's width to the left there is nothing to match: borders give the matcher its room.
        matcher = cv2.StereoSGBM_create(least, count, 7, 8 * 49, 32 * 49, 1, 0, 10, 100, 2,
                                        cv2.STEREO_SGBM_MODE_HH)  # the others' disparities are off by 0.1
        pad = max(0, least + count)
        padded = [cv2.copyMakeBorder(i, 0, 0, pad, 0, cv2.BORDER_CONSTANT) for i in (left, right)]
        disparity = matcher.compute(*padded)[:, pad:].astype(np.float32) / 16
        found = disparity >= least
        X = cv2.reprojectImageTo3D(disparity, Q.astype(np.float32))
        R1 = np.array(rows["R1"])
        depth = X @ R1[:, 2].astype(np.float32)  # along the left camera's axis: the last column of R1 transposed
        truth = cv2.imread(os.path.join(SAMPLE, "scene_depth_left.png"), cv2.IMREAD_UNCHANGED).astype(np.float32)
        scale = json.load(open(os.path.join(SAMPLE, "scene_truth.json")))["depth_map"]["unit_mm"]
        where_from = np.load(os.path.join(where, "left_map.npy"))
        expected = cv2.remap(truth, where_from, None, cv2.INTER_NEAREST) * scale
        use = found & (where_from[..., 0] >= 0) & (expected > 0)
        perPixel = expected**2 / (rows["P1"][0][0] * abs(rows["P2"][0][3] / rows["P2"][0][0]))
        error = np.abs(depth - expected)[use] / perPixel[use]
        print(int(use.sum()), "points, median", round(float(np.median(error)), 3), "px of disparity,",
              round(float(np.mean(error < 1)), 3), "within one")
        assert use.sum() > 100000
        assert np.median(error) < MAX_MEDIAN and np.mean(error < 1) > MIN_NEAR


run([dotsLieInRows, blockMatcherSeesTheScene])
