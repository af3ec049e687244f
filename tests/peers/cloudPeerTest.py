"""PCL reads the clouds of zelm triangulate and zelm match, with colours and errors."""
import csv
import os
import subprocess

import numpy as np
from peerSupport import SAMPLE, folder, run, zelm

RIG = os.environ["ZELM_DESK_RIG"]


def throughPcl(ply):
    """The points as PCL's reader has them."""
    pcd = ply[:-4] + ".pcd"
    subprocess.run(["pcl_ply2pcd", "-format", "1", ply, pcd], check=True, capture_output=True)
    with open(pcd, "rb") as file:
        header = {}
        while "DATA" not in header:
            words = file.readline().decode().split()
            header[words[0]] = words[1:]
        kinds = [f"{ {'F': 'f', 'I': 'i', 'U': 'u'}[t]}{s}" for t, s in zip(header["TYPE"], header["SIZE"])]
        data = np.frombuffer(file.read(), np.dtype(list(zip(header["FIELDS"], kinds))),
                             count=int(header["POINTS"][0]))
    return data


def table(path):
    with open(path) as file:
        return [row for row in csv.DictReader(file) if row["status"] == "ok"]


def column(rows, name):
    return np.array([float(r[name]) for r in rows])


def targetsOpen():
    with folder() as where:
        pairs = os.path.join(where, "pairs.csv")
        with open(pairs, "w") as file:
            file.write("id,xL,yL,xR,yR\na,377,331,401,334\nb,363,459,374,457\nc,482,313,482,315\n")
        out, ply = os.path.join(where, "points.csv"), os.path.join(where, "points.ply")
        for option in ([], ["--ply-binary"]):
            zelm("triangulate", RIG, pairs, "-o", out, "--ply", ply, *option, "--quiet")
            rows, points = table(out), throughPcl(ply)
            assert len(points) == 3 and points["row"].tolist() == [1, 2, 3]
            assert points["x"].dtype == ("f4" if option else "f8")
            compareTargets(rows, points)


def compareTargets(rows, points):
    for field, name in (("x", "X"), ("y", "Y"), ("z", "Z"), ("error_left", "error_left_px"), ("angle", "angle_deg"),
                        ("sigma_z", "sigma_Z"), ("calibration_sigma_x", "calibration_sigma_X")):
        assert np.allclose(points[field], column(rows, name), rtol=2e-5, atol=1e-6), field


def matchesOpen():
    with folder() as where:
        out, ply = os.path.join(where, "scene.csv"), os.path.join(where, "scene.ply")
        images = [os.path.join(SAMPLE, f"scene_{side}.png") for side in ("left", "right")]
        for option in ([], ["--ply-text"]):
            zelm("match", RIG, *images, "--grid", 32, "-o", out, "--ply", ply, *option, "--quiet")
            compareMatches(table(out), throughPcl(ply))


def compareMatches(rows, points):
    assert len(points) == len(rows) > 200
    for field, name in (("x", "X"), ("y", "Y"), ("z", "Z"), ("depth_sigma", "depth_sigma"),
                        ("depth_sigma_calibration", "depth_sigma_calibration")):
        assert np.allclose(points[field], column(rows, name), rtol=6e-3, atol=1e-4), field
    colours = points["rgb"].view(np.uint32)
    red, green, blue = colours >> 16 & 255, colours >> 8 & 255, colours & 255
    assert (red == green).all() and (green == blue).all() and red.max() > red.min() + 50


run([targetsOpen, matchesOpen])
